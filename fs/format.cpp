#include <unistd.h>

#include <cstdio>
#include <string_view>

#include "fs/file_commands.h"
#include "fs/names/name_rules.h"
#include "fs/working_directory.h"
#include "shell/command/parameter.h"
#include "shell/tool/tool_line.h"
#include "term/prompts.h"
#include "util/fixed_text.h"
#include "util/new_file.h"
#include "util/result.h"

namespace {

constexpr char kNoDevice[] = "%s doesn't exist.\r\n";
constexpr char kFormatQuestion[] = "All data on %s will be lost, proceed with format? [Y/N]:";
constexpr char kScript[] = "/etc/pkg/esh/format.sh";
constexpr char kScratchFolder[] = "/tmp/";

}  // namespace

std::uint32_t ESH_ProcFormat() {
  const std::string_view root = DeviceNameOf(g_szDiskName);  // it may have been typed with its slash
  FixedText<sizeof(g_szDiskName)> device;
  device.AppendText(root.empty() ? g_szDiskName : root);
  FixedText<kNameRoom> medium;
  medium.Append("%s/%s", kMediaRoot, device.Text());
  if (access(medium.Text(), F_OK) != 0) {
    std::printf(kNoDevice, device.Text());
    return ESH_ERR_FAIL;
  }
  std::printf(kFormatQuestion, device.Text());
  if (!IsConfirmed()) return ESH_ERR_FAIL;
  (void)!chdir(kScratchFolder);  // a medium that is the working directory is busy
  ToolLine line;
  line.Append("%s %s", kScript, device.Text());
  const std::uint32_t verdict = RunTool(line);
  SyncMediumOf(medium.Text());
  (void)ESH_SetPwd();  // whatever the script said
  return verdict;
}

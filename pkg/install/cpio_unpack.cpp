#include "pkg/install/cpio_unpack.h"

#include <unistd.h>

#include <string_view>

#include "fs/working_directory.h"
#include "pkg/install/process_runner.h"
#include "util/fixed_text.h"
#include "util/result.h"

const char* const g_apcCpioSuffixType[kCpioSuffixes] = {".gz", ".lzma", ".xz"};
const char* const g_apcDecompressType[kCpioSuffixes] = {"/bin/gunzip -c ", "/bin/lzma -dc ", "/bin/xzdec -dc "};

namespace {

constexpr char kExtract[] = " | /bin/cpio -i -d --quiet -u";
constexpr std::size_t kCommandRoom = 512;

/// @return the start of the command line that unpacks the archive, or NULL.
const char* DecompressorOf(std::string_view archive) {
  for (std::size_t i = 0; i < kCpioSuffixes; ++i)
    if (archive.ends_with(g_apcCpioSuffixType[i])) return g_apcDecompressType[i];
  return nullptr;
}

}  // namespace

std::uint32_t PKG_CpioUnpackerProc(const char* archivePath, const char* targetDir) {
  const char* decompressor = DecompressorOf(archivePath);
  if (decompressor == nullptr) return ESH_ERR_FAIL;
  const WorkingDirectoryKept kept;
  if (chdir(targetDir) != 0) return kSuccess;
  FixedText<kCommandRoom> command;
  command.Append("%s%s%s", decompressor, archivePath, kExtract);
  return command.Truncated() ? ESH_ERR_FAIL : PKG_SystemProc(command.Text());
}

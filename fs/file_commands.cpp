#include "fs/file_commands.h"

#include "fs/dir.h"
#include "fs/file_help.h"
#include "fs/pwd.h"
#include "fs/user_file.h"
#include "shell/command_table.h"
#include "shell/parameter.h"

namespace {

constexpr char kFileName[] = "STRING<1-511>";

constexpr CommandWord kDir = Word("dir", "List files or folders");
constexpr CommandWord kAll = Word("/all", "List all files on storage media");
constexpr CommandWord kListed = Param(ESH_ELEM_STRING, kFileName, "[drive][path][file name]", ESH_RecordSourceFile,
                                      ESH_FS_CheckInvalidFileDir, HelpDir);

constexpr CommandRow kFileCommands[] = {
    {ESH_ProcDir, kUserView, {kDir}},
    {ESH_ProcDirAll, kUserView, {kDir, kAll}},
    {ESH_ProcDirFile, kUserView, {kDir, kListed}},
    {ESH_ProcDirAllFile, kUserView, {kDir, kAll, kListed}},
    {ESH_ProcPwd, kUserView, {Word("pwd", "Display the current path")}},
};
static_assert(WellFormed(kFileCommands));

}  // namespace

void ESH_Fs_Init() { RegisterCommands(kFileCommands); }

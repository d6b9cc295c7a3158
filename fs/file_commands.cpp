#include "fs/file_commands.h"

#include "fs/help_callbacks.h"
#include "fs/listing.h"
#include "fs/user_file.h"
#include "shell/command/command_table.h"
#include "shell/command/parameter.h"

namespace {

constexpr char kFileHelp[] = "[drive][path][file name]";
constexpr char kDirectoryHelp[] = "[drive][path]";

constexpr CommandWord FileName(const char* help, ESH_CMD_HELP_F list_values, ESH_CMD_CHECK_F check,
                               ESH_CMD_RECORD_F record) {
  return Param(ESH_ELEM_STRING, "STRING<1-511>", help, record, check, list_values);
}

/// Something below a medium's root.
constexpr CommandWord Source(const char* help, ESH_CMD_HELP_F list_values) {
  return FileName(help, list_values, ESH_FS_CheckUserManipulatedFile, ESH_RecordSourceFile);
}

/// Any place on a medium.
constexpr CommandWord Destination(ESH_CMD_HELP_F list_values) {
  return FileName(kFileHelp, list_values, ESH_FS_CheckInvalidFileDir, ESH_RecordDestFile);
}

constexpr CommandWord kDir = Word("dir", "List files or folders");
constexpr CommandWord kAll = Word("/all", "List all files on storage media");
constexpr CommandWord kListed = FileName(kFileHelp, HelpDir, ESH_FS_CheckInvalidFileDir, ESH_RecordSourceFile);
// "mkdir" records into the destination, "rmdir" into the source: deliberately, the handlers read them there.
constexpr CommandWord kNewDirectory =
    FileName(kDirectoryHelp, HelpMkdir, ESH_FS_CheckUserManipulatedFile, ESH_RecordDestFile);
constexpr CommandWord kDrive =
    Param(ESH_ELEM_STRING, "STRING<1-15>", "[drive]", ESH_RecordDiskName, CheckFormat, HelpFormat);

constexpr CommandRow kFileCommands[] = {
    {ESH_ProcDir, kUserView, {kDir}},
    {ESH_ProcDirAll, kUserView, {kDir, kAll}},
    {ESH_ProcDirFile, kUserView, {kDir, kListed}},
    {ESH_ProcDirAllFile, kUserView, {kDir, kAll, kListed}},
    {ESH_ProcPwd, kUserView, {Word("pwd", "Display the current path")}},
    {ESH_ProcCopy,
     kUserView,
     {Word("copy", "Copy a file"), Source(kFileHelp, HelpCopySource), Destination(HelpCopyDest)}},
    {ESH_ProcDelete, kUserView, {Word("delete", "Delete a file"), Source(kFileHelp, HelpDelete)}},
    {ESH_ProcMkdir, kUserView, {Word("mkdir", "Create a new directory"), kNewDirectory}},
    {ESH_ProcRmdir, kUserView, {Word("rmdir", "Remove an existing directory"), Source(kDirectoryHelp, HelpRmdir)}},
    {ESH_ProcMove,
     kUserView,
     {Word("move", "Move a file"), Source(kFileHelp, HelpMoveSource), Destination(HelpMoveDest)}},
    {ESH_ProcMore, kUserView, {Word("more", "Display the contents of a file"), Source(kFileHelp, HelpMore)}},
    {ESH_ProcFormat, kUserView, {Word("format", "Format the storage medium"), kDrive}},
};
static_assert(WellFormed(kFileCommands));

}  // namespace

void ESH_Fs_Init() { RegisterCommands(kFileCommands); }

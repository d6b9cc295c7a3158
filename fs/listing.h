#pragma once

#include <cstddef>
#include <cstdint>

/// The handlers of "dir", "dir /all", "dir <name>" and "dir /all <name>".
std::uint32_t ESH_ProcDir();         ///< "dir"
std::uint32_t ESH_ProcDirAll();      ///< "dir /all"
std::uint32_t ESH_ProcDirFile();     ///< "dir <name>"
std::uint32_t ESH_ProcDirAllFile();  ///< "dir /all <name>"

/// Lists the working directory and its medium's space.
/// @param all whether hidden entries are included.
/// @return 0, or ESH_ERR_FAIL when it is gone, cannot be entered, or the user stopped.
std::uint32_t ESH_DirFileInHomePath(bool all);

/// Lists a named directory or file and its medium's space. @param name as typed.
/// @return 0, or ESH_ERR_FAIL when there is no such name, it cannot be entered, or the user stopped.
std::uint32_t ESH_DirFileInDirectory(const char* name, bool all);

/// Prints the lines of one directory.
/// @param full the directory's full name.
/// @return 0, or ESH_ERR_FAIL when it cannot be entered or the user stopped at a More prompt.
std::uint32_t ESH_ListFileInfoInDir(const char* full, bool all);

/// Prints the line of one entry; nothing when the entry has vanished.
/// @param index the number at the start of the line.
/// @return 0, or ESH_ERR_FAIL when the user stopped at a More prompt.
std::uint32_t ESH_DirOneFileOfList(const char* full, std::uint32_t index);

/// Prints how much room the medium of a name has; nothing when that cannot be told.
void ESH_DirFsInfo(const char* full);

/// Turns a typed name into the full name of something that exists, or says that it does not. The name is "Fulle".
/// @param size room of `full` in bytes.
[[nodiscard]] std::uint32_t ESH_GetFulleDirName(const char* name, std::size_t size, char* full);

#pragma once

#include <cstdint>

/// Registers the file commands in the user view.
void ESH_Fs_Init();

/// The handler of "copy": copies one regular file. A declined question is a success.
std::uint32_t ESH_ProcCopy();

/// The handler of "delete": removes one file.
std::uint32_t ESH_ProcDelete();

/// The handler of "mkdir": creates one directory.
std::uint32_t ESH_ProcMkdir();

/// The handler of "rmdir": removes one empty directory.
std::uint32_t ESH_ProcRmdir();

/// The handler of "format": runs the format script on a medium.
std::uint32_t ESH_ProcFormat();

/// The handler of "more": shows a text file through the pager.
std::uint32_t ESH_ProcMore();

/// The handler of "move": moves one regular file with the mv tool.
std::uint32_t ESH_ProcMove();

/// The handler of "pwd": prints the working directory's display name.
std::uint32_t ESH_ProcPwd();

#pragma once

/// The shell within this process, in a root directory of its own: every command registered (there is an IP stack),
/// one medium, "flash:", whose root is the working directory. Paging is off.
void StartOwnShell();

/// Hands one line to the parser. @param line ends in the key that ended it.
void RunLine(const char* line);

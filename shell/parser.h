#pragma once

/// Acts on a line from the editor: runs it, lists help, completes it or returns to the user view, as its last
/// character tells.
/// @param line the edit buffer: at most 512 characters, ending in the key that ended the read (CR, LF, TAB, "?" or
///             Ctrl+Z). It is changed.
void ESH_CmdParser(char* line);

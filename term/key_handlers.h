#pragma once

#include <cstdint>

/// The key handlers take the byte read and return 1 when they accepted it and 0 when they refuse it (bell).

std::uint16_t LINE_KeyDefault(int key);    ///< control characters are ignored, all else is inserted
std::uint16_t LINE_KeyInsert(int key);     ///< inserts it at the cursor; a full line rings and refuses
std::uint16_t LINE_KeyCtrlA(int key);      ///< to the start of the line
std::uint16_t LINE_KeyCtrlE(int key);      ///< to the end of the line
std::uint16_t LINE_KeyLeft(int key);       ///< refused at the start
std::uint16_t LINE_KeyRight(int key);      ///< refused at the end
std::uint16_t LINE_KeyBackspace(int key);  ///< deletes what stands left of the cursor, if anything does
std::uint16_t LINE_KeyDelete(int key);     ///< deletes what stands under the cursor, if anything does
std::uint16_t LINE_KeyEnter(int key);      ///< ends the read
std::uint16_t LINE_KeyTab(int key);        ///< ends the read of a command line, else ignored
std::uint16_t LINE_KeyHelp(int key);       ///< is inserted, and ends the read of a command line
std::uint16_t LINE_KeyCtrlC(int key);      ///< ends a read that is no command line, with the byte 3 alone
std::uint16_t LINE_KeyCtrlZ(int key);      ///< ends the read of a command line, with its byte alone
std::uint16_t LINE_KeyEscape(int key);     ///< reads and acts on the rest of an escape sequence (ECMA-48 cursor keys)

/// Deletes the characters from the smaller to the larger of two positions, both included. @return 1.
std::uint16_t LINE_DeleteText(std::uint64_t a, std::uint64_t b);

/// Fills the editor's key table.
void BindKeys();

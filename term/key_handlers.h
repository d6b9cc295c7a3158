#pragma once

#include <cstdint>

/// The key handlers take the byte read and return 1 when they accepted it and 0 when they refuse it (bell).

std::uint16_t LINE_KeyDefault(int key);  ///< control characters are ignored, all else is inserted
std::uint16_t LINE_KeyInsert(int key);
std::uint16_t LINE_KeyCtrlA(int key);
std::uint16_t LINE_KeyCtrlE(int key);
std::uint16_t LINE_KeyLeft(int key);
std::uint16_t LINE_KeyRight(int key);
std::uint16_t LINE_KeyBackspace(int key);
std::uint16_t LINE_KeyDelete(int key);
std::uint16_t LINE_KeyEnter(int key);
std::uint16_t LINE_KeyTab(int key);
std::uint16_t LINE_KeyHelp(int key);
std::uint16_t LINE_KeyCtrlC(int key);
std::uint16_t LINE_KeyCtrlZ(int key);
std::uint16_t LINE_KeyEscape(int key);  ///< reads and acts on the rest of an escape sequence (ECMA-48 cursor keys)

/// Deletes the characters from the smaller to the larger of two positions, both included. @return 1.
std::uint16_t LINE_DeleteText(std::uint64_t a, std::uint64_t b);

/// Fills the editor's key table.
void BindKeys();

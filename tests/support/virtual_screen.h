#pragma once

#include <string>
#include <string_view>

/// What an operator would see, and where the cursor stands, counted from 0.
struct VirtualScreen {
  std::string text;
  int row;
  int column;
};

/// The screen of a terminal that was empty and has obeyed these bytes (libvterm, an ECMA-48 terminal with automatic
/// margins).
[[nodiscard]] VirtualScreen ScreenAfter(std::string_view bytes, int rows, int columns);

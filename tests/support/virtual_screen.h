#pragma once

#include <vterm.h>

#include <memory>
#include <string>
#include <string_view>

/// What an operator would see: a terminal that obeys what is written to it (libvterm, an ECMA-48 terminal with
/// automatic margins).
class VirtualScreen {
 public:
  struct Place {
    int row;
    int column;
    bool operator==(const Place&) const = default;
  };

  /// An empty screen, the cursor home.
  VirtualScreen(int rows, int columns);

  /// Obeys these bytes; a sequence may be cut anywhere and go on in the next call.
  void Write(std::string_view bytes);
  /// Clears the screen and puts the cursor home.
  void Reset();

  /// All rows down to the last that is not empty.
  [[nodiscard]] std::string Text() const;
  /// Counted from 0.
  [[nodiscard]] Place Cursor() const;
  /// The screen's height.
  [[nodiscard]] int Rows() const { return rows_; }

 private:
  struct Freer {
    void operator()(VTerm* terminal) const { vterm_free(terminal); }
  };
  int rows_;
  int columns_;
  std::unique_ptr<VTerm, Freer> terminal_;
  VTermScreen* screen_;
};

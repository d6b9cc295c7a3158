#include "tests/support/virtual_screen.h"

#include <cstddef>

namespace {

std::string WithoutTrailing(std::string text, char character) {
  text.resize(text.find_last_not_of(character) + 1);
  return text;
}

}  // namespace

VirtualScreen::VirtualScreen(int rows, int columns)
    : rows_(rows),
      columns_(columns),
      terminal_(vterm_new(rows, columns)),
      screen_(vterm_obtain_screen(terminal_.get())) {
  Reset();
}

void VirtualScreen::Write(std::string_view bytes) { vterm_input_write(terminal_.get(), bytes.data(), bytes.size()); }

void VirtualScreen::Reset() { vterm_screen_reset(screen_, 1); }

std::string VirtualScreen::Text() const {
  std::string text;
  std::string row(static_cast<std::size_t>(columns_) * 4, '\0');
  for (int i = 0; i < rows_; ++i) {
    const std::size_t length = vterm_screen_get_text(screen_, row.data(), row.size(), {i, i + 1, 0, columns_});
    text += WithoutTrailing(row.substr(0, length), ' ') + "\n";
  }
  return WithoutTrailing(std::move(text), '\n');
}

VirtualScreen::Place VirtualScreen::Cursor() const {
  VTermPos position{};
  vterm_state_get_cursorpos(vterm_obtain_state(terminal_.get()), &position);
  return {position.row, position.col};
}

#include "tests/support/virtual_screen.h"

#include <vterm.h>

#include <memory>

VirtualScreen ScreenAfter(std::string_view bytes, int rows, int columns) {
  const std::unique_ptr<VTerm, decltype(&vterm_free)> terminal(vterm_new(rows, columns), vterm_free);
  VTermScreen* screen = vterm_obtain_screen(terminal.get());
  vterm_screen_reset(screen, 1);
  vterm_input_write(terminal.get(), bytes.data(), bytes.size());
  std::string text(static_cast<std::size_t>(rows * (columns + 1)) * 4, '\0');
  text.resize(vterm_screen_get_text(screen, text.data(), text.size(), {0, rows, 0, columns}));
  VTermPos cursor{};
  vterm_state_get_cursorpos(vterm_obtain_state(terminal.get()), &cursor);
  return {text, cursor.row, cursor.col};
}

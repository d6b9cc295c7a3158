#include "term/console_mode.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <initializer_list>

#include "term/line_state.h"

namespace {

int Console() { return fileno(stdout); }

void DisableSpecialKeys(termios& settings) {
  for (const int key : {VQUIT, VSTART, VSTOP, VSUSP}) settings.c_cc[key] = _POSIX_VDISABLE;
}

/// Output that a Ctrl+S has stopped goes on: the key that would start it is disabled. The terminal heeds a start only
/// where it was stopped by the same call.
void StartOutput() {
  tcflow(Console(), TCOOFF);
  tcflow(Console(), TCOON);
}

/// The console's settings with everything that raw mode changes put back as saved.
/// @param echo 1: as saved; any other value: off.
termios SettingsAsSaved(std::uint16_t echo) {
  const termios& saved = g_stESh_Line.stSavedTermios;
  termios settings{};
  tcgetattr(Console(), &settings);
  settings.c_lflag = saved.c_lflag;
  for (const int key : {VTIME, VMIN, VSUSP, VSTART, VSTOP, VQUIT}) settings.c_cc[key] = saved.c_cc[key];
  if (echo != 1) settings.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL);
  return settings;
}

}  // namespace

void SaveTermiosMode() { tcgetattr(Console(), &g_stESh_Line.stSavedTermios); }

void LINE_SetTermiosMode(const termios& settings) {
  (void)TEMP_FAILURE_RETRY(tcsetattr(Console(), TCSANOW, &settings));
}

int ESH_LINE_SetTermiosMode() {
  termios settings{};
  tcgetattr(Console(), &settings);
  settings.c_lflag = 0;
  settings.c_cc[VMIN] = 0;
  settings.c_cc[VTIME] = kReadTimeoutTenths;
  DisableSpecialKeys(settings);
  LINE_SetTermiosMode(settings);
  StartOutput();
  return fcntl(STDERR_FILENO, F_SETFL, fcntl(STDERR_FILENO, F_GETFL) & ~O_NONBLOCK);
}

void ESH_LINE_RestoreTermiosMode(std::uint16_t echo) { LINE_SetTermiosMode(SettingsAsSaved(echo)); }

void ESH_LINE_MaskSpecKey() {
  termios settings{};
  if (tcgetattr(Console(), &settings) != 0) return;
  DisableSpecialKeys(settings);
  LINE_SetTermiosMode(settings);
}

ConsoleKept::ConsoleKept() : known_(tcgetattr(Console(), &settings_) == 0) {}

void ConsoleKept::PutBack() const {
  termios settings{};
  if (!known_ || tcgetattr(Console(), &settings) != 0) return;
  settings.c_iflag = settings_.c_iflag;
  settings.c_oflag = settings_.c_oflag;
  settings.c_lflag = settings_.c_lflag;
  std::memcpy(settings.c_cc, settings_.c_cc, sizeof(settings.c_cc));
  LINE_SetTermiosMode(settings);
}

void SetToolMode(std::uint16_t echo) {
  termios settings = SettingsAsSaved(echo);
  DisableSpecialKeys(settings);
  LINE_SetTermiosMode(settings);
}

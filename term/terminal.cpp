#include "term/terminal.h"

#include <curses.h>
// curses.h first: term.h needs its types.
#include <term.h>

#include <cstdio>
#include <cstdlib>

namespace {

/// What an unknown terminal is taken for: nearly all that is plugged into a console understands the first.
constexpr const char* kStandInTerminals[] = {"vt100", "dumb"};
constexpr char kUnknownTerminal[] = "Terminal type \"%s\" is unknown, \"%s\" is used instead.\r\n";
constexpr char kNoTerminal[] = "Terminal type \"%s\" is unknown, lines cannot be edited on the screen.\r\n";

/// Gives the capability, or NULL when the terminal lacks it (tigetstr marks a wrong name by an all-ones pointer).
const char* FindString(const char* name) {
  const char* capability = tigetstr(name);
  return reinterpret_cast<std::intptr_t>(capability) == -1 ? nullptr : capability;
}

bool Write(const char* name) {
  const char* capability = FindString(name);
  if (capability == nullptr) return false;
  putp(tparm(capability));
  return true;
}

/// Writes the counted capability once, or the single step `count` times.
void Move(const char* counted, const char* single, std::uint64_t count) {
  const char* capability = FindString(counted);
  if (capability != nullptr) {
    putp(tparm(capability, static_cast<long>(count)));
    return;
  }
  for (std::uint64_t i = 0; i < count; ++i)
    if (!Write(single)) return;
}

std::uint64_t ZeroExtended(int number) { return static_cast<std::uint32_t>(number); }

bool LoadDescription(const char* type) {
  int verdict = 0;
  return setupterm(type, fileno(stdout), &verdict) == OK;
}

}  // namespace

void SetUpTerminal() {
  if (LoadDescription(nullptr)) return;
  const char* wanted = std::getenv("TERM");
  wanted = wanted == nullptr ? "" : wanted;
  for (const char* type : kStandInTerminals) {
    if (LoadDescription(type)) {
      std::printf(kUnknownTerminal, wanted, type);
      return;
    }
  }
  std::printf(kNoTerminal, wanted);
}

std::uint64_t ESH_TERM_GetScrCols() { return ZeroExtended(tigetnum("cols")); }

std::uint64_t ESH_TERM_GetScrLines() { return ZeroExtended(tigetnum("lines")); }

int ESH_TERM_OFlush() { return std::fflush(stdout); }

void EndTypedLine() {
  std::puts("\r");
  ESH_TERM_OFlush();
}

void ESH_TERM_Erase2LineEnd() { Write("el"); }

void ESH_TERM_Erase2LineBegin() { Write("el1"); }

void ESH_TERM_EraseLine() {
  ESH_TERM_Erase2LineBegin();
  ESH_TERM_Erase2LineEnd();
}

void ESH_TERM_Erase2ScrEnd() { Write("ed"); }

void ESH_TERM_EraseScreen() {
  if (Write("clear")) return;
  const char* home = FindString("cup");
  if (home != nullptr) {
    putp(tparm(home, 0L, 0L));
    ESH_TERM_Erase2ScrEnd();
  }
}

void ESH_TERM_Bell() { Write("bel"); }

void ESH_TERM_CursorBack(std::uint64_t count) { Move("cub", "cub1", count); }

void ESH_TERM_CursorForward(std::uint64_t count) { Move("cuf", "cuf1", count); }

void ESH_TERM_CursorUp(std::uint64_t count) { Move("cuu", "cuu1", count); }

void ESH_TERM_CursorDown(std::uint64_t count) { Move("cud", "cud1", count); }

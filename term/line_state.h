#pragma once

#include <termios.h>

#include <cstddef>
#include <cstdint>

/// What a read is for (`ulMode`).
enum ESH_LINE_MODE_E : std::uint32_t {
  ESH_LINE_MODE_COMMAND = 0,
  ESH_LINE_MODE_PLAIN = 1,   ///< a user name
  ESH_LINE_MODE_MASKED = 2,  ///< a password: one "*" per character
  ESH_LINE_MODE_CONFIRM = 3,
};

/// Why a read ended (`ulEndKey`).
enum ESH_LINE_END_E : std::uint32_t {
  ESH_LINE_END_NONE = 0,
  ESH_LINE_END_ENTER = 1,
  ESH_LINE_END_CTRL_C = 2,
  ESH_LINE_END_TAB = 3,
  ESH_LINE_END_HELP = 4,
  ESH_LINE_END_CTRL_Z = 5,
};

inline constexpr std::size_t kLineRoom = 2048;
inline constexpr std::size_t kPromptRoom = 32;
inline constexpr std::size_t kKeys = 256;
inline constexpr std::uint64_t kMaxCommandLine = 511;

inline constexpr char kKeyCtrlC = 3;
inline constexpr char kKeyBackspace = 8;
inline constexpr char kKeyCtrlZ = 26;
inline constexpr char kKeyEscape = 27;
inline constexpr char kKeyDel = 127;

/// Acts on one byte: 1 = accepted, anything else = refused (the bell rings).
using LINE_KEY_F = std::uint16_t (*)(int key);

/// The line editor's state. Positions are indexes into `pcBuf`; screen columns add the prompt's length.
struct ESH_LINE_S {
  char* pcLastBuf;  ///< the text as last shown, kLineRoom bytes
  char* pcBuf;      ///< the edit buffer, kLineRoom bytes, terminated
  char* pcPrompt;   ///< kPromptRoom bytes
  std::uint64_t ulMaxLen;
  std::uint64_t ulPromptLen;
  std::uint64_t ulCursor;
  std::uint64_t ulLen;
  std::uint64_t ulLastCursor;  ///< cursor and length as last shown
  std::uint64_t ulLastLen;
  std::uint16_t usKeepBuf;        ///< 1 = the next read goes on with the text that ESH_LINE_SetCmdString prepared
  std::uint16_t usConfirmChosen;  ///< confirmation: a Y or N has been typed
  std::uint16_t usConfirmYes;     ///< confirmation: the one that has been typed was Y
  std::uint32_t ulMode;
  std::uint32_t ulEndKey;
  LINE_KEY_F apfnKeyProc[kKeys];
  termios stSavedTermios;  ///< the console's settings as found at start
};

extern ESH_LINE_S g_stESh_Line;

/// Paging: counters are kept over all the output of one command.
struct ESH_DISPLAY_S {
  std::uint32_t ulScrLines;   ///< page length in lines; 0 switches paging off
  std::uint32_t ulMoreLines;  ///< lines that may be shown before the next More prompt
  std::uint32_t ulCurLines;   ///< lines shown since the last one
};

extern ESH_DISPLAY_S g_stESh_Display;

/// Set to 1 by whoever wrote to the console while a read was pending: the next wait for a key draws the input anew.
extern std::uint16_t g_bESh_SynInput;

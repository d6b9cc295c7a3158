#pragma once

#include <cstdint>

struct VEC_S;
struct ESH_CMD_ELEMENT_S;

/// Handler of a command. It takes its inputs from the record buffers (shell/command/parameter.h) and prints its own
/// messages.
using ESH_CMD_PROC_F = std::uint32_t (*)();
/// Lists the possible values of a parameter: adds help lines for those that continue the partial word.
using ESH_CMD_HELP_F = std::uint32_t (*)(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* element);
/// Has the last word on a parameter: 1 = valid, 0 = invalid.
using ESH_CMD_CHECK_F = std::uint16_t (*)(const char* word);
/// Stores a parameter's value before the handler runs.
using ESH_CMD_RECORD_F = std::uint32_t (*)(const char* word);

/// Kinds of a word position.
enum ESH_ELEM_TYPE_E : std::uint32_t {
  ESH_ELEM_KEYWORD = 0,
  ESH_ELEM_STRING = 1,
  ESH_ELEM_IPV4 = 2,
  ESH_ELEM_IPV4MASK = 3,
  ESH_ELEM_IPV6 = 4,
  ESH_ELEM_IPV6PREFIX = 5,
  ESH_ELEM_INTEGER = 6,
  ESH_ELEM_CR = 7,
};

/// The links of the circular list that a template and its elements form. The template is the list's sentinel, so
/// the last element's `pstNext` is the template again.
struct ESH_CMD_LINK_S {
  ESH_CMD_LINK_S* pstPrev;
  ESH_CMD_LINK_S* pstNext;
};

/// One word position of a template.
struct ESH_CMD_ELEMENT_S : ESH_CMD_LINK_S {
  const char* pcKeyWord;  ///< the keyword, a placeholder such as "STRING<1-15>", or "<cr>"
  const char* pcHelp;     ///< its description
  ESH_CMD_HELP_F pfnHelp;
  ESH_CMD_CHECK_F pfnCheck;
  ESH_CMD_RECORD_F pfnRecord;
  std::uint32_t ulType;    ///< one of ESH_ELEM_TYPE_E; any other value matches nothing
  std::uint64_t ulKeyLen;  ///< length of a keyword, 0 for every other type
  std::uint64_t ulMin;     ///< bounds of an INTEGER's value or a STRING's length, otherwise 0
  std::uint64_t ulMax;
};

/// One command: a fixed sequence of words that ends in "<cr>", and its handler.
struct ESH_CMD_THREAD_S : ESH_CMD_LINK_S {
  ESH_CMD_PROC_F pfnProc;
};

/// A view: its prompt, which is also its identity, and the commands that are valid in it, in registration order.
struct ESH_VIEW_S {
  const char* pcPrompt;
  VEC_S* pstCmdVec;
};

inline constexpr char kUserPrompt[] = "<boot>";
inline constexpr char kSystemPrompt[] = "[boot]";
inline constexpr char kInterfacePrompt[] = "[boot-m-eth0]";
inline constexpr char kCrWord[] = "<cr>";

/// The three views, made by ESH_View_Init, and the view in force, which only ESH_SetCmdMode changes.
extern ESH_VIEW_S* g_pstEshUserView;
extern ESH_VIEW_S* g_pstEshSysView;
extern ESH_VIEW_S* g_pstEshMthView;
extern ESH_VIEW_S* g_pstEshCurrentView;

/// Makes a view without commands. @param prompt kept, not copied. @return NULL when memory is short.
[[nodiscard]] ESH_VIEW_S* ViewInfoAlloc(const char* prompt);

/// Makes a command without words. @return NULL when memory is short.
[[nodiscard]] ESH_CMD_THREAD_S* ESH_CmdThread_Init(ESH_CMD_PROC_F handler);

/// Appends one word position to a command. The texts are kept, not copied. When memory is short nothing is appended.
void ESH_CmdThread_AddCmdElement(ESH_CMD_THREAD_S* thread, const char* keyword, const char* help,
                                 ESH_CMD_HELP_F help_values, ESH_CMD_CHECK_F check, ESH_CMD_RECORD_F record,
                                 std::uint32_t type);

/// Appends the end of the command, without which it can never be executed.
void ESH_CmdThread_AddCr(ESH_CMD_THREAD_S* thread);

/// Adds a command to a view; the same command may be added to several. A view that is missing (NULL) misses it, and so
/// does every view a command without its end, for want of memory when it was made: it could never be executed.
void ESH_CmdThread_Reg2View(ESH_VIEW_S* view, ESH_CMD_THREAD_S* thread);

/// Adds a command to the user, system and management-interface views, in that order.
void ESH_CmdThread_Reg2AllView(ESH_CMD_THREAD_S* thread);

/// The command's first word position, or NULL when it has none.
[[nodiscard]] inline ESH_CMD_ELEMENT_S* FirstElement(const ESH_CMD_THREAD_S& thread) {
  return thread.pstNext == &thread ? nullptr : static_cast<ESH_CMD_ELEMENT_S*>(thread.pstNext);
}

/// The word position after one that is not the end of its command; NULL behind the last.
[[nodiscard]] ESH_CMD_ELEMENT_S* NextElement(const ESH_CMD_THREAD_S& thread, const ESH_CMD_ELEMENT_S& element);

/// The command that a "<cr>" ends.
[[nodiscard]] ESH_CMD_THREAD_S* ThreadOfCr(const ESH_CMD_ELEMENT_S& cr);

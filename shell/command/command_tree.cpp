#include "shell/command/command_tree.h"

#include <cstring>
#include <memory>
#include <new>
#include <string_view>

#include "util/decimal.h"
#include "util/fixed_text.h"
#include "util/vector.h"

ESH_VIEW_S* g_pstEshUserView = nullptr;
ESH_VIEW_S* g_pstEshSysView = nullptr;
ESH_VIEW_S* g_pstEshMthView = nullptr;
ESH_VIEW_S* g_pstEshCurrentView = nullptr;

namespace {

constexpr std::size_t kBoundDigits = 10;  // longest bound that is read

/// Reads one bound of a range such as "<1-15>".
bool ReadBound(std::string_view digits, std::uint64_t& bound) {
  FixedText<kBoundDigits + 1> text;
  text.AppendText(digits);
  return !text.Truncated() && ReadDecimal(text.Text(), bound);
}

/// Takes the range out of a placeholder such as "INTEGER<1-31>"; anything malformed leaves both bounds 0.
void ReadRange(std::string_view placeholder, ESH_CMD_ELEMENT_S& element) {
  const std::size_t open = placeholder.find('<');
  const std::size_t dash = placeholder.find('-', open);  // behind nothing, here and below, nothing is found
  const std::size_t close = placeholder.find('>', dash);
  std::uint64_t min = 0;
  std::uint64_t max = 0;
  if (close + 1 != placeholder.size() || !ReadBound(placeholder.substr(open + 1, dash - open - 1), min) ||
      !ReadBound(placeholder.substr(dash + 1, close - dash - 1), max) || min > max)
    return;
  element.ulMin = min;
  element.ulMax = max;
}

bool EndsInCr(const ESH_CMD_THREAD_S& thread) {
  return thread.pstPrev != &thread && static_cast<const ESH_CMD_ELEMENT_S*>(thread.pstPrev)->ulType == ESH_ELEM_CR;
}

void Append(ESH_CMD_THREAD_S& thread, ESH_CMD_ELEMENT_S& element) {
  element.pstPrev = thread.pstPrev;
  element.pstNext = &thread;
  thread.pstPrev->pstNext = &element;
  thread.pstPrev = &element;
}

}  // namespace

ESH_VIEW_S* ViewInfoAlloc(const char* prompt) {
  std::unique_ptr<ESH_VIEW_S> view(new (std::nothrow) ESH_VIEW_S{prompt, VEC_Alloc(kUsualSlots)});
  return view != nullptr && view->pstCmdVec != nullptr ? view.release() : nullptr;
}

ESH_CMD_THREAD_S* ESH_CmdThread_Init(ESH_CMD_PROC_F handler) {
  auto* thread = new (std::nothrow) ESH_CMD_THREAD_S{};
  if (thread == nullptr) return nullptr;
  thread->pstPrev = thread;
  thread->pstNext = thread;
  thread->pfnProc = handler;
  return thread;
}

void ESH_CmdThread_AddCmdElement(ESH_CMD_THREAD_S* thread, const char* keyword, const char* help,
                                 ESH_CMD_HELP_F help_values, ESH_CMD_CHECK_F check, ESH_CMD_RECORD_F record,
                                 std::uint32_t type) {
  auto* element = new (std::nothrow) ESH_CMD_ELEMENT_S{};
  if (element == nullptr) return;
  element->pcKeyWord = keyword;
  element->pcHelp = help;
  element->pfnHelp = help_values;
  element->pfnCheck = check;
  element->pfnRecord = record;
  element->ulType = type;
  if (type == ESH_ELEM_KEYWORD) element->ulKeyLen = std::strlen(keyword);
  if (type == ESH_ELEM_STRING || type == ESH_ELEM_INTEGER) ReadRange(keyword, *element);
  Append(*thread, *element);
}

void ESH_CmdThread_AddCr(ESH_CMD_THREAD_S* thread) {
  ESH_CmdThread_AddCmdElement(thread, kCrWord, " ", nullptr, nullptr, nullptr, ESH_ELEM_CR);
}

void ESH_CmdThread_Reg2View(ESH_VIEW_S* view, ESH_CMD_THREAD_S* thread) {
  if (view != nullptr && EndsInCr(*thread)) VEC_Add(view->pstCmdVec, kNoIndex, thread);
}

void ESH_CmdThread_Reg2AllView(ESH_CMD_THREAD_S* thread) {
  ESH_CmdThread_Reg2View(g_pstEshUserView, thread);
  ESH_CmdThread_Reg2View(g_pstEshSysView, thread);
  ESH_CmdThread_Reg2View(g_pstEshMthView, thread);
}

ESH_CMD_ELEMENT_S* NextElement(const ESH_CMD_THREAD_S& thread, const ESH_CMD_ELEMENT_S& element) {
  return element.pstNext == &thread ? nullptr : static_cast<ESH_CMD_ELEMENT_S*>(element.pstNext);
}

ESH_CMD_THREAD_S* ThreadOfCr(const ESH_CMD_ELEMENT_S& cr) { return static_cast<ESH_CMD_THREAD_S*>(cr.pstNext); }

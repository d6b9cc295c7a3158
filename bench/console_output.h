#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "tests/support/console.h"

/// What a console prints, as raw bytes, read straight from its terminal: an operator's pace and not the test's is
/// measured. A console that stays silent for long, or ends, ends the benchmark.

/// Waits for output and reads until none has come for a moment.
[[nodiscard]] std::string ReadAnswer(const Console& console);

/// Reads until what was read ends in one of these marks, behind which the console waits for a key.
[[nodiscard]] std::string ReadUntilOneOf(const Console& console, std::initializer_list<std::string_view> marks);

/// Reads until nobody is at the far end any more.
[[nodiscard]] std::string ReadToEnd(const Console& console);

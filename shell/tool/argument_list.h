#pragma once

#include <memory>
#include <string_view>

struct VEC_S;

/// The arguments of a program, as a vector of text buffers.

/// Frees a vector of plain text buffers and the buffers. NULL is allowed.
void ParserVecFree(VEC_S* vec);

struct ArgumentsFreer {
  void operator()(VEC_S* arguments) const { ParserVecFree(arguments); }
};
using UniqueArguments = std::unique_ptr<VEC_S, ArgumentsFreer>;

/// Splits a command line at runs of blanks; nothing else separates or quotes.
/// @param blanks the characters that separate.
/// @return NULL when memory is short.
[[nodiscard]] UniqueArguments SplitCommandLine(std::string_view line, std::string_view blanks);

/// What execv(3) takes: the arguments, with NULL behind them. They stay the vector's.
/// @return NULL when there are none, or memory is short.
[[nodiscard]] char* const* ArgumentsOf(VEC_S* arguments);

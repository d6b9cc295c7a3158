#include "shell/tool/argument_list.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "util/result.h"
#include "util/unique_handle.h"
#include "util/vector.h"

namespace {

bool AppendCopy(VEC_S& arguments, std::string_view text) {
  UniqueText copy(strndup(text.data(), text.size()));
  if (copy == nullptr || VEC_Add(&arguments, kNoIndex, copy.get()) == kNoIndex) return false;
  (void)copy.release();  // the vector's now
  return true;
}

}  // namespace

void ParserVecFree(VEC_S* vec) { FreeVectorOf<char>(vec, std::free); }

UniqueArguments SplitCommandLine(std::string_view line, std::string_view blanks) {
  UniqueArguments arguments(VEC_Alloc(kUsualSlots));
  std::size_t start = line.find_first_not_of(blanks);
  while (arguments != nullptr && start != std::string_view::npos) {
    const std::size_t end = std::min(line.find_first_of(blanks, start), line.size());
    if (!AppendCopy(*arguments, line.substr(start, end - start))) return nullptr;
    start = line.find_first_not_of(blanks, end);
  }
  return arguments;
}

char* const* ArgumentsOf(VEC_S* arguments) {
  const std::uint64_t count = VEC_GetCount(arguments);
  // The terminating NULL needs a slot of its own, which a full vector lacks.
  return count > 0 && VEC_Enlarge(arguments, count + 1) == kSuccess ? reinterpret_cast<char**>(arguments->ppvArray)
                                                                    : nullptr;
}

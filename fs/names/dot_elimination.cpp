#include "fs/names/dot_elimination.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "util/fixed_text.h"
#include "util/result.h"

namespace {

constexpr std::size_t kWorkRoom = 8192;

/// A name as far as it is resolved. It never outgrows the name itself, whose length is checked.
struct Resolved {
  FixedText<kWorkRoom> text;
  std::uint32_t depth = 0;  ///< components; the root is one
};

bool TakeComponent(std::string_view component, std::uint32_t floor, Resolved& resolved) {
  if (component == ".") return resolved.depth > 0;
  if (component == "..") {
    if (resolved.depth <= floor) return false;
    resolved.text.CutTo(resolved.text.View().rfind('/'));
    --resolved.depth;
    return true;
  }
  if (resolved.depth > 0) resolved.text.AppendText("/");
  resolved.text.AppendText(component);
  ++resolved.depth;
  return !component.empty();
}

}  // namespace

std::uint32_t eliminatePoint(const char* name, std::uint32_t floor, std::size_t size, char* output) {
  std::string_view rest(name);
  if (!CopyBounded(output, size, "") || rest.size() >= kWorkRoom) return ESH_ERR_FAIL;
  Resolved resolved;
  if (rest.starts_with('/')) {
    rest.remove_prefix(1);
    resolved.depth = 1;
  }
  while (!rest.empty()) {
    const std::string_view component = rest.substr(0, rest.find('/'));
    rest.remove_prefix(std::min(component.size() + 1, rest.size()));
    if (!TakeComponent(component, floor, resolved)) return ESH_ERR_FAIL;
  }
  const std::string_view result = resolved.text.Length() == 0 ? "/" : resolved.text.View();
  return resolved.depth > 0 && CopyBounded(output, size, result) ? kSuccess : ESH_ERR_FAIL;
}

#include "fs/dot_elimination.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "shell/result.h"
#include "util/fixed_text.h"
#include "util/unique_handle.h"

namespace {

constexpr std::size_t kWorkRoom = 8192;
constexpr std::size_t kMinStackEntries = 1012;
constexpr std::string_view kRootMarker = "/";

/// The components that a name has come to so far; the root is one.
class ComponentStack {
 public:
  explicit ComponentStack(std::size_t capacity)
      : entries_(static_cast<std::string_view*>(std::malloc(capacity * sizeof(std::string_view)))),
        capacity_(entries_ == nullptr ? 0 : capacity) {}

  [[nodiscard]] bool Push(std::string_view component) {
    if (depth_ == capacity_) {
      return false;
    }
    entries_.get()[depth_++] = component;
    return true;
  }
  void Pop() { --depth_; }
  [[nodiscard]] std::size_t Depth() const { return depth_; }
  [[nodiscard]] std::string_view At(std::size_t index) const { return entries_.get()[index]; }

 private:
  std::unique_ptr<std::string_view, MemoryFreer> entries_;
  std::size_t capacity_;
  std::size_t depth_ = 0;
};

bool TakeComponent(std::string_view component, bool is_first, std::uint32_t floor, ComponentStack& stack) {
  if (component == ".") {
    return !is_first;
  }
  if (component != "..") {
    return stack.Push(component);
  }
  if (stack.Depth() <= floor) {
    return false;
  }
  stack.Pop();
  return true;
}

bool TakeAllComponents(std::string_view name, std::uint32_t floor, ComponentStack& stack) {
  std::size_t start = 0;
  if (name.starts_with('/')) {
    if (!stack.Push(kRootMarker)) {
      return false;
    }
    start = 1;
  }
  while (start < name.size()) {
    const std::size_t end = std::min(name.find('/', start), name.size());
    if (end == start || !TakeComponent(name.substr(start, end - start), start == 0, floor, stack)) {
      return false;
    }
    start = end + 1;
  }
  return stack.Depth() > 0;
}

bool Rebuild(const ComponentStack& stack, std::size_t size, char* output) {
  std::size_t length = 0;
  const auto append = [&](std::string_view text) {
    const bool fits = length + text.size() < size;
    CopyBounded(output + length, size - length, text);
    length += std::min(text.size(), size - length - 1);
    return fits;
  };
  bool fits = true;
  for (std::size_t i = 0; fits && i < stack.Depth(); ++i) {
    const bool wants_slash = i > 0 && stack.At(i - 1) != kRootMarker;
    fits = (!wants_slash || append("/")) && append(stack.At(i));
  }
  return fits;
}

}  // namespace

std::uint32_t eliminatePoint(const char* name, std::uint32_t floor, std::size_t size, char* output) {
  const std::string_view whole(name);
  if (whole.size() >= kWorkRoom) {
    return ESH_ERR_FAIL;
  }
  ComponentStack stack(std::max(whole.size() / 2 + 1, kMinStackEntries));
  return TakeAllComponents(whole, floor, stack) && Rebuild(stack, size, output) ? kSuccess : ESH_ERR_FAIL;
}

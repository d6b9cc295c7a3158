#include "fs/dot_elimination.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "shell/result.h"
#include "util/fixed_text.h"

namespace {

constexpr std::size_t kWorkRoom = 8192;
constexpr std::size_t kMinStackEntries = 1012;
constexpr std::size_t kMostStackEntries = kWorkRoom / 2;
constexpr std::string_view kRootMarker = "/";

/// The components that a name has come to so far; the root is one. They are kept without malloc: no name may
/// look wrong because memory is short.
class ComponentStack {
 public:
  explicit ComponentStack(std::string_view name)
      : name_(name), capacity_(std::max(name.size() / 2 + 1, kMinStackEntries)) {}

  /// @param component a part of the name.
  [[nodiscard]] bool Push(std::string_view component) {
    if (depth_ == capacity_) {
      return false;
    }
    entries_[depth_++] = {static_cast<std::uint16_t>(component.data() - name_.data()),
                          static_cast<std::uint16_t>(component.size())};
    return true;
  }
  void Pop() { --depth_; }
  [[nodiscard]] std::size_t Depth() const { return depth_; }
  [[nodiscard]] std::string_view At(std::size_t index) const {
    return name_.substr(entries_[index].start, entries_[index].length);
  }

 private:
  /// Not a string_view, which would be initialised 4096 times for a few components.
  struct Entry {
    std::uint16_t start;
    std::uint16_t length;
  };

  std::string_view name_;
  std::size_t capacity_;
  std::size_t depth_ = 0;
  Entry entries_[kMostStackEntries];
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
    if (!stack.Push(name.substr(0, kRootMarker.size()))) {
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
  if (!CopyBounded(output, size, "") || whole.size() >= kWorkRoom) {
    return ESH_ERR_FAIL;
  }
  ComponentStack stack(whole);
  return TakeAllComponents(whole, floor, stack) && Rebuild(stack, size, output) ? kSuccess : ESH_ERR_FAIL;
}

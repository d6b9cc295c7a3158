#include "pkg/identity/system_identity.h"

#include "util/kernel_setting.h"

namespace {

constexpr int kSysObjectId[] = {61000, 1};
constexpr int kBriefVersion[] = {61000, 2};
constexpr int kBootImageName[] = {61000, 3};

}  // namespace

std::uint32_t ESH_GetSysObjectID(std::size_t& size, std::uint64_t* parts) {
  std::size_t count = size / sizeof(*parts);
  const std::uint32_t result = ReadKernelNumbers(kSysObjectId, count, parts);
  size = count * sizeof(*parts);
  return result;
}

std::uint32_t ESH_GetBootImageName(char* name) { return ReadKernelText(kBootImageName, kBootImageNameRoom, name); }

std::uint32_t ESH_GetBriefVerInfo(std::size_t size, char* text) { return ReadKernelText(kBriefVersion, size, text); }

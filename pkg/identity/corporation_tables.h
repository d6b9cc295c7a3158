#pragma once

#include <cstddef>
#include <cstdint>

/// Corporations under whose names the device is sold, by corporation id; 0 is the maker. A slot without a text is NULL.
inline constexpr std::size_t kCorporations = 43;

/// The one whose versions and banner differ from everybody else's.
inline constexpr std::uint32_t kDurell = 2;
/// The one whose copyright line tells a single year in the first year.
inline constexpr std::uint32_t kTalvo = 6;
/// From the next id on, software name and copyright line stand in the corporation file.
inline constexpr std::uint32_t kLastBuiltInCorporation = 8;

extern const char* const g_apcCorpName[kCorporations];
extern const char* const g_apcSoftwareName[kCorporations];
/// Each with one "%s", which stands for the build year.
extern const char* const g_apcCopyRight[kCorporations];

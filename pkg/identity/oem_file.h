#pragma once

#include <cstddef>
#include <string_view>

#include "pkg/identity/identity_record.h"

/// The OEM data file: sections that begin with a line holding a name in square brackets, and in them fields of the
/// form key, colon, value, where a value may go on over several lines. Texts here come as they stand in the file.

inline constexpr std::size_t kOemKeys = 10;
extern const char* const g_apcKeyWordTab[kOemKeys];

/// Sets the fields that a section gives; what it does not name, or names wrongly, stays.
/// @param section its name with the brackets; a file without it changes nothing.
void ApplyOemSection(std::string_view text, std::string_view section, OEM_CONSUMER_INFO_S& info);

/// What the markers of a description stand for.
struct MarkerTexts {
  std::string_view version;
  std::string_view product_name;
  std::string_view copyright;
};

/// Replaces the markers "[VERSION]", "[PRODUCTNAME]" and "[COPYRIGHT]" of the description. Whatever their order was,
/// they come in this one, each followed by the text that stood behind it.
void ExpandMarkers(const MarkerTexts& texts, OEM_CONSUMER_INFO_S& info);

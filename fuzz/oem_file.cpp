#include "pkg/identity/oem_file.h"

#include <cstdint>
#include <cstring>

#include "fuzz/require.h"
#include "pkg/identity/corporation_tables.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  OEM_CONSUMER_INFO_S info = {};
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  for (const char* section : {"[default]", "[1.3.6.1.4.1.99]"}) {
    ApplyOemSection(text, section, info);
    ExpandMarkers({.version = "[PRODUCTNAME]", .product_name = "name", .copyright = "(c)"}, info);
  }
  Require(info.uiCorpId < kCorporations);
  for (const char* field : {info.sysDescr, info.sysContact, info.sysLocation})
    Require(std::memchr(field, '\0', sizeof(info.sysDescr)) != nullptr);
  Require(std::memchr(info.sysName, '\0', sizeof(info.sysName)) != nullptr);
  Require(std::memchr(info.productName, '\0', sizeof(info.productName)) != nullptr);
  Require(std::memchr(info.corpName, '\0', sizeof(info.corpName)) != nullptr);
  return 0;
}

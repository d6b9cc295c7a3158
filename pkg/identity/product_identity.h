#pragma once

#include <pthread.h>

#include <cstddef>
#include <cstdint>

#include "pkg/identity/identity_record.h"

/// Under which names the device is sold: from the defaults of the maker, the OEM data file and the corporation file.
/// The getters build the record when the first of them is called; from then on it is only read.

/// Room for a name, and for a copyright line.
inline constexpr std::size_t kIdentityRoom = 257;

extern OEM_CONSUMER_INFO_S g_stOemConsumerInfo;
extern pthread_once_t g_stOemDataLock;

/// Builds the record. Only pthread_once calls it.
void setGlobalOemDataLocked();

/// Takes the OEM data into the record: the default section that fits the device's object identifier, then the
/// device's own. @param text of the OEM data file.
void parseOemFile(const char* text);

/// Looks up the corporation file, /etc/oemcorp. Results are those of ReadKeyedLine.
/// @param value room for kIdentityRoom bytes.
std::uint32_t GetDefaultInfo(const char* key, char* value);

/// The getters fill room for kIdentityRoom bytes; what is not known is empty.

void ESH_GetOemCorp(std::uint32_t* out);  ///< the number of the corporation that sells it
void ESH_GetCorpName(char* name);         ///< its name
void ESH_GetProductName(char* name);      ///< the device
void ESH_GetSoftwareName(char* name);     ///< the full operating system
/// The software name that the corporation file gives.
void GetSoftwareNameWithFile(char* name);
/// With the year in which the boot image was built.
void ESH_GetCopyright(char* line);
/// @param size room of `version` in bytes.
void ESH_GetSoftVersion(std::size_t size, char* version);

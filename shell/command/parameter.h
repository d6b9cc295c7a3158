#pragma once

#include <cstdint>

/// The record buffers: terminated text, written by the record functions below and read by the command handlers. They
/// keep their values between commands, so a handler reads only those that its own command fills.
extern char g_szIPv4Address[16];
extern char g_szIPv4Mask[16];
extern char g_szIPv6Address[48];
extern char g_szIPv4MaskLen[8];
extern char g_szIPv6PreLen[8];
extern char g_szUserName[16];
extern char g_szPassword[16];
extern char g_szLocalFile[512];
extern char g_szRemoteFile[512];
extern char g_szSourceFile[512];
extern char g_szDestFile[512];
extern char g_szCount[16];
extern char g_szSize[16];
extern char g_szDiskName[16];
extern char g_szPkgFlie[128];  ///< "Flie" is the name

/// The checks answer 1 for valid and 0 for invalid.

/// Four dotted decimal parts, as inet_pton(3) takes them.
[[nodiscard]] std::uint16_t ESH_CheckIPv4(const char* text);
/// An IPv6 address without a prefix length.
[[nodiscard]] std::uint16_t ESH_CheckIPv6(const char* text);
/// An IPv6 address, "/" and a prefix length from 1 to 128.
[[nodiscard]] std::uint16_t ESH_CheckIPv6Prefix(const char* text);
/// A decimal number from min to max, digits only; leading zeros are skipped, and no digit at all is 0.
[[nodiscard]] std::uint16_t ESH_CheckInteger(const char* text, std::uint64_t min, std::uint64_t max);
/// Printable ASCII text of min to max characters, never more than 512.
[[nodiscard]] std::uint16_t ESH_CheckString(const char* text, std::uint64_t min, std::uint64_t max);
/// 1 when the text is a parameter's placeholder rather than a keyword.
[[nodiscard]] std::uint16_t ESH_Variable(const char* text);

/// The record functions empty their buffer and store the word, cut to the buffer's bound. They return 0; those that
/// convert return ESH_ERR_FAIL for a word that does not convert and leave the buffer empty.

std::uint32_t ESH_RecordIPv4(const char* word);         ///< canonical dotted form
std::uint32_t ESH_RecordIPv4Mask(const char* word);     ///< canonical dotted form
std::uint32_t ESH_RecordIPv6(const char* word);         ///< canonical text form (RFC 5952, as inet_ntop(3) writes it)
std::uint32_t ESH_RecordIPv4MaskLen(const char* word);  ///< its number, at most 3 characters
std::uint32_t ESH_RecordIPv6PreLen(const char* word);   ///< its number, at most 4 characters
std::uint32_t ESH_RecordUserName(const char* word);     ///< as typed, like all below
std::uint32_t ESH_RecordPassword(const char* word);     ///< nothing stays of a longer one before
std::uint32_t ESH_RecordLocalFile(const char* word);    ///< a name on this device
std::uint32_t ESH_RecordRemoteFile(const char* word);   ///< a name on the other host
std::uint32_t ESH_RecordSourceFile(const char* word);   ///< what a file command works on
std::uint32_t ESH_RecordDestFile(const char* word);     ///< what it makes
std::uint32_t ESH_RecordCount(const char* word);        ///< at most 10 characters
std::uint32_t ESH_RecordSize(const char* word);         ///< at most 10 characters; bytes
std::uint32_t ESH_RecordDiskName(const char* word);     ///< a medium
std::uint32_t ESH_RecordPkgFile(const char* word);      ///< a package

#pragma once

#include <string_view>

struct ESH_HELP_INFO_S;

/// Memory for the records of help lists. Records with room for two texts of 512 characters would take 100 MB for the
/// 100,000 names of a long directory, more than a device may have to spare. What the texts leave of their room is
/// other records', so it must never be written to: a record's texts stay as they are made.

/// Makes a record. @param keyword cut to 512 characters. @param help likewise.
/// @return the record, to be freed with FreeHelpRecord; NULL when memory is short.
[[nodiscard]] ESH_HELP_INFO_S* NewHelpRecord(std::string_view keyword, std::string_view help);

/// Frees one record. NULL is allowed.
void FreeHelpRecord(ESH_HELP_INFO_S* record);

#pragma once

struct ESH_HELP_INFO_S;

/// Memory for the records of help lists. A list of 100,000 file names takes 100 MB, most of it never written to.

/// @return an uninitialised record, to be freed with FreeHelpRecord; NULL when memory is short.
[[nodiscard]] ESH_HELP_INFO_S* NewHelpRecord();

/// Frees one record. NULL is allowed.
void FreeHelpRecord(ESH_HELP_INFO_S* record);

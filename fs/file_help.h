#pragma once

#include <cstdint>

struct VEC_S;

/// What a file-name argument may be. FS_HELP_NEW_FILE and FS_HELP_LAST are used by no command; FS_HELP_LAST is offered
/// like an existing file and ends the range.
enum FS_HELP_KIND_E : std::uint32_t {
  FS_HELP_EXISTING_FILE = 0,
  FS_HELP_DESTINATION = 1,
  FS_HELP_EXISTING_DIRECTORY = 2,
  FS_HELP_NEW_DIRECTORY = 3,
  FS_HELP_FILE_OR_DIRECTORY = 4,
  FS_HELP_NEW_FILE = 5,
  FS_HELP_MEDIUM = 6,
  FS_HELP_PACKAGE = 7,  ///< looked for in a medium's root only
  FS_HELP_LAST = 8,
};

/// Decides on a full name: 0 = offer it, anything else = leave it out.
using FS_HELP_FILTER_F = std::uint32_t (*)(const char* full);

/// Lists what may continue a typed file name: media, and the entries of the directory that it leads to, each as the
/// text to type.
/// @param word   the typed word; one that begins with "?" lists the media.
/// @param filter NULL for none.
/// @param help   help list that gets the lines.
/// @return 0, or ESH_ERR_FAIL for a NULL word or an unknown kind.
std::uint32_t FS_HelpBaseEx(const char* word, std::uint32_t kind, FS_HELP_FILTER_F filter, VEC_S* help);

/// Adds the media whose device name continues the word; all of them for an empty word.
void ESH_HelpMntDir(const char* word, VEC_S* help);

/// Adds media, then the files and folders that continue the word, then a generic line for what need not exist yet.
void PartlyHelp(const char* word, std::uint32_t kind, FS_HELP_FILTER_F filter, VEC_S* help);

/// How an offer is spelled: the entry's name in place of the word's last component, or the word itself.
enum FS_OFFER_MODE_E : std::uint32_t { FS_OFFER_COMPLETION = 0, FS_OFFER_EXACT = 1 };

/// Offers one candidate, if it exists and its kind and the filter allow it.
/// @param full its full name.
void ESH_HelpStatSwitch(const char* word, const char* full, std::uint32_t kind, FS_HELP_FILTER_F filter,
                        std::uint32_t mode, VEC_S* help);

#pragma once

#include <cstdint>

struct VEC_S;
struct ESH_CMD_ELEMENT_S;

/// Help callbacks of file-name parameters: each lists what its command can take. The element is not looked at.

std::uint32_t HelpMore(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* element);        ///< an existing file
std::uint32_t HelpCopySource(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* element);  ///< as HelpMore
std::uint32_t HelpCopyDest(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* element);    ///< as HelpMoveDest
std::uint32_t HelpMoveSource(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* element);  ///< as HelpMore
std::uint32_t HelpMoveDest(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* element);    ///< or a new name
std::uint32_t HelpDelete(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* element);      ///< as HelpMore
std::uint32_t HelpMkdir(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* element);       ///< a parent directory
std::uint32_t HelpRmdir(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* element);   ///< an existing directory
std::uint32_t HelpDir(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* element);     ///< a file or a directory
std::uint32_t HelpFormat(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* element);  ///< a present medium
std::uint32_t HelpExistFile(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* element);  ///< as HelpMore
std::uint32_t HelpBothFile(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* element);   ///< as HelpMoveDest

/// Help filter: 0 for the root of a present medium, anything else is left out.
[[nodiscard]] std::uint32_t HelpDeviceFilter(const char* full);

/// Check callback of "format": 1 when the word names the root of a present medium, else 0.
[[nodiscard]] std::uint16_t CheckFormat(const char* word);

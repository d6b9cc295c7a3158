#include "tools/mkpkg/description.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <iterator>
#include <optional>

#include "pkg/format/package_format.h"
#include "util/ascii.h"

namespace mkpkg {
namespace {

struct NamedValue {
  std::string_view name;
  std::uint32_t value;
};
constexpr NamedValue kTypes[] = {{"system", kSystemPackage}};
constexpr NamedValue kByteOrders[] = {{"big-endian", 0}, {"host", 1}};
constexpr NamedValue kSections[] = {
    {"image", kSystemImageFile}, {"compatibility", kCompatibilityFile}, {"description", kDescriptionFile}};
constexpr std::string_view kNotCompressed = "none";
constexpr std::string_view kOtherFile = "file ";  // "[file 0x...]"

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r";
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

/// Reads a number in decimal or with "0x" in hexadecimal digits.
std::optional<std::uint32_t> ReadNumber(std::string_view text) {
  const std::string digits(text);
  if (!IsDigit(digits[0])) return std::nullopt;
  char* end = nullptr;
  errno = 0;
  const unsigned long number = std::strtoul(digits.c_str(), &end, digits.starts_with("0x") ? 16 : 10);
  if (*end != '\0' || errno != 0 || number > 0xFFFFFFFFUL) return std::nullopt;
  return static_cast<std::uint32_t>(number);
}

template <std::size_t kCount>
std::optional<std::uint32_t> ValueNamed(const NamedValue (&values)[kCount], std::string_view name) {
  for (const NamedValue& value : values)
    if (value.name == name) return value.value;
  return std::nullopt;
}

/// Reads "gz, 7z" and the like, or "none".
bool ReadCompressions(std::string_view text, std::vector<Compression>& compressions) {
  if (text == kNotCompressed) return true;
  for (std::string_view rest = text; !rest.empty();) {
    const std::size_t comma = std::min(rest.find(','), rest.size());
    const std::optional<Compression> compression = CompressionNamed(Trimmed(rest.substr(0, comma)));
    // 7z is what the package tells of the data, so it comes last.
    if (!compression || (!compressions.empty() && compressions.back() == Compression::k7z)) return false;
    compressions.push_back(*compression);
    rest.remove_prefix(std::min(comma + 1, rest.size()));
  }
  return !compressions.empty();
}

bool StoreNumber(std::optional<std::uint32_t> number, std::uint32_t& place) {
  place = number.value_or(place);
  return number.has_value();
}

bool StoreText(std::string_view text, std::string& place) {
  place = text;
  return !text.empty();
}

struct PackageKey {
  std::string_view name;
  bool (*store)(std::string_view value, PackageDescription& package);
};
constexpr PackageKey kPackageKeys[] = {
    {"product-tag", [](auto value, auto& package) { return StoreNumber(ReadNumber(value), package.product_tag); }},
    {"type",
     [](auto value, auto& package) {
       const auto named = ValueNamed(kTypes, value);
       return StoreNumber(named ? named : ReadNumber(value), package.type);
     }},
    {"attribute", [](auto value, auto& package) { return StoreNumber(ReadNumber(value), package.attribute); }},
    {"byte-order",
     [](auto value, auto& package) {
       const auto named = ValueNamed(kByteOrders, value);
       package.host_order = named == 1U;
       return named.has_value();
     }},
};

struct FileKey {
  std::string_view name;
  bool (*store)(std::string_view value, FileDescription& file);
  bool repeats = false;
};
constexpr FileKey kFileKeys[] = {
    {"name", [](auto value, auto& file) { return StoreText(value, file.name); }},
    {"device-tag", [](auto value, auto& file) { return StoreNumber(ReadNumber(value), file.device_tag); }},
    {"file", [](auto value, auto& file) { return StoreText(value, file.file); }},
    {"directory", [](auto value, auto& file) { return StoreText(value, file.directory); }},
    {"compression", [](auto value, auto& file) { return ReadCompressions(value, file.compressions); }},
    {"text",
     [](auto value, auto& file) {
       file.text.append(value).append("\n");
       return true;
     },
     true},
};

/// Reads a description line by line; the first line that is wrong ends it.
class Parser {
 public:
  Parser(const std::string& origin, PackageDescription& description) : origin_(origin), package_(description) {}

  std::string Parse(std::string_view text) {
    package_ = {};
    package_.type = kSystemPackage;
    while (!text.empty() && problem_.empty()) {
      const std::size_t end = std::min(text.find('\n'), text.size());
      ++line_;
      ParseLine(Trimmed(text.substr(0, end)));
      text.remove_prefix(std::min(end + 1, text.size()));
    }
    if (problem_.empty()) EndSection();
    if (problem_.empty() && !has_product_tag_) Refuse("there is no product-tag");
    return problem_;
  }

 private:
  void Refuse(const std::string& reason) { problem_ = origin_ + ":" + std::to_string(line_) + ": " + reason; }

  void ParseLine(std::string_view line) {
    if (line.empty() || line[0] == '#') return;
    if (line[0] == '[') return BeginSection(line);
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) return Refuse("expected \"key: value\" or \"[section]\"");
    const std::string_view key = Trimmed(line.substr(0, colon));
    const std::string_view value = Trimmed(line.substr(colon + 1));
    package_.files.empty() ? StoreOf(kPackageKeys, key, value, package_)
                           : StoreOf(kFileKeys, key, value, package_.files.back());
  }

  void BeginSection(std::string_view line) {
    EndSection();
    if (!problem_.empty()) return;
    if (!line.ends_with(']')) return Refuse("a section's name ends with \"]\"");
    const std::string_view name = line.substr(1, line.size() - 2);
    const auto id = name.starts_with(kOtherFile) ? ReadNumber(Trimmed(name.substr(kOtherFile.size())))
                                                 : ValueNamed(kSections, name);
    if (!id) return Refuse("a section is [description], [compatibility], [image] or [file NUMBER]");
    package_.files.push_back({});
    package_.files.back().id = *id;
    package_.files.back().line = line_;
    seen_.clear();
  }

  void EndSection() {
    if (package_.files.empty()) return;
    const FileDescription& file = package_.files.back();
    const int sources = !file.text.empty() + !file.file.empty() + !file.directory.empty();
    if (sources == 1) return;
    line_ = file.line;
    Refuse("a file's data come from either text:, file: or directory:");
  }

  template <typename Key, std::size_t kCount, typename Record>
  void StoreOf(const Key (&keys)[kCount], std::string_view name, std::string_view value, Record& record) {
    const auto* key = std::ranges::find(keys, name, &Key::name);
    if (key == std::end(keys)) return Refuse("there is no key \"" + std::string(name) + "\" here");
    if (!MayRepeat(*key) && std::find(seen_.begin(), seen_.end(), name) != seen_.end())
      return Refuse(std::string(name) + " is given twice");
    seen_.push_back(key->name);
    has_product_tag_ = has_product_tag_ || name == "product-tag";
    if (!key->store(value, record)) Refuse("\"" + std::string(value) + "\" is no value for " + std::string(name));
  }

  static bool MayRepeat(const PackageKey& /*key*/) { return false; }
  static bool MayRepeat(const FileKey& key) { return key.repeats; }

  const std::string& origin_;
  PackageDescription& package_;
  std::string problem_;
  std::vector<std::string_view> seen_;  ///< keys of this section
  bool has_product_tag_ = false;
  int line_ = 0;
};

}  // namespace

std::string ParseDescription(std::string_view text, const std::string& origin, PackageDescription& description) {
  return Parser(origin, description).Parse(text);
}

}  // namespace mkpkg

#include "tools/mkpkg/report.h"

#include <algorithm>
#include <cstdio>

#include "pkg/format/fingerprint_trailer.h"
#include "pkg/format/package_format.h"
#include "tools/mkpkg/files.h"
#include "tools/mkpkg/warnings.h"
#include "util/ascii.h"
#include "util/fixed_text.h"

namespace mkpkg {
namespace {

constexpr std::size_t kLineRoom = 512;

template <typename... Values>
void AppendLine(std::string& text, const char* format, Values... values) {
  FixedText<kLineRoom> line;
  line.Append(format, values...);
  text.append(line.Text()).append("\n");
}

const char* RoleOf(std::uint32_t id) {
  switch (id) {
    case kSystemImageFile:
      return "image";
    case kCompatibilityFile:
      return "compatibility";
    case kDescriptionFile:
      return "description";
    default:
      return "file";
  }
}

const char* PackingOf(const ContainedFile& file) {
  if (file.compression == kStoredAsIs) return "stored";
  return file.compression == kPacked7z ? "7z" : "unknown";
}

const char* FormOf(const PackageModel& package) {
  if (package.IsSignedInHead()) return package.head.signature_length == 0 ? "none" : "head";
  return package.trailer.empty() ? "none" : "trailer";
}

void AppendFile(std::string& text, const ContainedFile& file) {
  AppendLine(text, "%-14s 0x%08X  %s  %ju bytes, %s%s", RoleOf(file.id), file.id, Printable(file.name).c_str(),
             std::uintmax_t{file.size}, PackingOf(file), file.compression == kStoredAsIs ? "" : " in the package");
  if (file.id == kSystemImageFile) AppendLine(text, "  device tag   0x%08X", file.device_code);
  if (file.room) {
    AppendLine(text, "  room needed  %ju bytes in /tmp while it is unpacked, then %ju bytes in %ju files",
               std::uintmax_t{file.size}, std::uintmax_t{file.room->bytes}, std::uintmax_t{file.room->files});
  }
  if (!file.problem.empty()) AppendLine(text, "  no data      %s", file.problem.c_str());
  if (!file.IsText()) return;
  for (const std::string& line : LinesOf(file.begin)) text += "  | " + Printable(line) + "\n";
}

void AppendFile(JsonWriter& json, const ContainedFile& file) {
  json.BeginObject();
  json.Number("id", file.id);
  json.Text("role", RoleOf(file.id));
  json.Text("name", file.name);
  json.Number("device_tag", file.device_code);
  json.Text("packing", PackingOf(file));
  json.Number("stored_size", file.stored_size);
  json.Number("size", file.size);
  if (!file.problem.empty()) json.Text("problem", file.problem);
  if (file.room) {
    json.BeginObject("room");
    json.Number("temporary", file.size);
    json.Number("bytes", file.room->bytes);
    json.Number("files", file.room->files);
    json.EndObject();
  }
  if (file.IsText()) json.Texts("lines", LinesOf(file.begin));
  json.EndObject();
}

}  // namespace

std::string Printable(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return !IsPrintable(c); }, '?');
  return text;
}

std::string TextReport(const PackageModel& package, const std::string& path) {
  const PackageMainHead& head = package.head;
  std::string text = "Package " + Printable(path) + ", " + std::to_string(package.size) + " bytes\n";
  AppendLine(text, "product tag    0x%08X", head.product_tag);
  AppendLine(text, "type           %u%s", head.package_type, head.package_type == kSystemPackage ? " (system)" : "");
  AppendLine(text, "attribute      %u", head.attributes);
  AppendLine(text, "byte order     %s", head.byte_order == kHostOrder ? "host" : "big-endian");
  AppendLine(text, "signature      %s", FormOf(package));
  if (!package.trailer.empty())
    AppendLine(text, "key            %s", Printable(TrailerField(package.trailer, kKeyLabel)).c_str());
  for (const ContainedFile& file : package.files) AppendFile(text, file);
  for (const std::string& warning : AllWarningsFor(package, BaseName(path)))
    text += "warning: " + Printable(warning) + "\n";
  return text;
}

void AddReport(JsonWriter& json, const PackageModel& package, const std::string& path) {
  const PackageMainHead& head = package.head;
  json.Text("package", path);
  json.Number("size", package.size);
  json.Number("product_tag", head.product_tag);
  json.Number("type", head.package_type);
  json.Number("attribute", head.attributes);
  json.Text("byte_order", head.byte_order == kHostOrder ? "host" : "big-endian");
  json.Text("signature", FormOf(package));
  if (!package.trailer.empty()) json.Text("key", TrailerField(package.trailer, kKeyLabel));
  json.BeginArray("files");
  for (const ContainedFile& file : package.files) AppendFile(json, file);
  json.EndArray();
}

}  // namespace mkpkg

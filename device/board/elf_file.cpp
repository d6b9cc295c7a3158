#include "device/board/elf_file.h"

#include <elf.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "device/board/file_bytes.h"

namespace device {
namespace {

constexpr unsigned char kByteOrder = std::endian::native == std::endian::little ? ELFDATA2LSB : ELFDATA2MSB;

/// The bytes of an ELF file. What points outside of them reads as zeros or as an empty text.
class ElfBytes {
 public:
  explicit ElfBytes(std::string bytes) : bytes_(std::move(bytes)) {}

  template <typename Record>
  [[nodiscard]] Record At(std::uint64_t offset) const {
    Record record{};
    if (offset <= bytes_.size() && bytes_.size() - offset >= sizeof(record))
      std::memcpy(&record, bytes_.data() + offset, sizeof(record));
    return record;
  }
  [[nodiscard]] std::string TextAt(std::uint64_t offset) const {
    if (offset >= bytes_.size()) return "";
    const std::string_view rest = std::string_view(bytes_).substr(offset);
    return std::string(rest.substr(0, rest.find('\0')));
  }
  [[nodiscard]] bool IsElf() const {
    const auto head = At<Elf64_Ehdr>(0);
    return std::memcmp(head.e_ident, ELFMAG, SELFMAG) == 0 && head.e_ident[EI_CLASS] == ELFCLASS64 &&
           head.e_ident[EI_DATA] == kByteOrder;
  }
  /// @return all segments of one type.
  [[nodiscard]] std::vector<Elf64_Phdr> Segments(Elf64_Word type) const {
    std::vector<Elf64_Phdr> found;
    const auto head = At<Elf64_Ehdr>(0);
    for (std::uint64_t i = 0; i < head.e_phnum; ++i) {
      const auto segment = At<Elf64_Phdr>(head.e_phoff + i * sizeof(Elf64_Phdr));
      if (segment.p_type == type) found.push_back(segment);
    }
    return found;
  }
  /// @return where in the file stands what is loaded at an address.
  [[nodiscard]] std::uint64_t OffsetOf(Elf64_Addr address) const {
    for (const Elf64_Phdr& segment : Segments(PT_LOAD))
      if (address >= segment.p_vaddr && address - segment.p_vaddr < segment.p_filesz)
        return segment.p_offset + (address - segment.p_vaddr);
    return bytes_.size();
  }

 private:
  std::string bytes_;
};

std::vector<std::string> NeededLibraries(const ElfBytes& elf) {
  std::vector<std::uint64_t> names;  // offsets into the table of texts
  std::uint64_t texts = 0;
  for (const Elf64_Phdr& segment : elf.Segments(PT_DYNAMIC)) {
    for (std::uint64_t offset = 0; offset < segment.p_filesz; offset += sizeof(Elf64_Dyn)) {
      const auto entry = elf.At<Elf64_Dyn>(segment.p_offset + offset);
      if (entry.d_tag == DT_NEEDED) names.push_back(entry.d_un.d_val);
      if (entry.d_tag == DT_STRTAB) texts = elf.OffsetOf(entry.d_un.d_ptr);
    }
  }
  std::vector<std::string> libraries;
  libraries.reserve(names.size());
  for (const std::uint64_t name : names) libraries.push_back(elf.TextAt(texts + name));
  return libraries;
}

}  // namespace

std::optional<ElfNeeds> ReadElfNeeds(const std::string& path) {
  const ElfBytes elf(FileBytes(path).value_or(""));
  if (!elf.IsElf()) return std::nullopt;
  ElfNeeds needs;
  for (const Elf64_Phdr& segment : elf.Segments(PT_INTERP)) needs.loader = elf.TextAt(segment.p_offset);
  needs.libraries = NeededLibraries(elf);
  return needs;
}

}  // namespace device

#include "pkg/format/package_format.h"

#include <span>

#include "pkg/format/byte_order.h"

void ConvertMainHead(PackageMainHead& head, std::uint32_t file_count) {
  for (std::uint32_t* word :
       {&head.words0, &head.file_count, &head.product_tag, &head.minimum_payload, &head.signature_format,
        &head.signature_length, &head.byte_order, &head.words5172, &head.attributes, &head.package_type, &head.crc})
    *word = FromBig32(*word);
  for (std::uint16_t& half_word : head.half_words24) half_word = FromBig16(half_word);
  FromBig32(head.words12);
  FromBig32(head.words3112);
  FromBig32(head.reserved);
  for (PackageFileEntry& file : std::span(head.files).first(file_count))
    for (std::uint32_t* word :
         {&file.file_id, &file.head_offset, &file.total_length, &file.check_b, &file.check_a, &file.spare})
      *word = FromBig32(*word);
}

void ConvertFileHead(PackageFileHead& head) {
  for (std::uint32_t* word : {&head.check_a, &head.words16, &head.device_code, &head.stored_size, &head.unpacked_size,
                              &head.byte_order, &head.data_length, &head.check_b, &head.compression})
    *word = FromBig32(*word);
  FromBig32(head.words0);
  FromBig32(head.words28);
  FromBig32(head.words48);
}

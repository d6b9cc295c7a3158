#pragma once

#include <cstdint>

#include "pkg/format/line_reader.h"
#include "pkg/format/verdict.h"

struct PKG_READER_S;
struct PackageFileEntry;

/// What "install load" asks the device that it is to run on: in this order and only as far as a package gets, so that a
/// device can say what it is about to do.
class LoadDevice {
 public:
  virtual ~LoadDevice() = default;

  /// JudgePackage (head_check.h) with the device's product and keys.
  [[nodiscard]] virtual PackageVerdict Verify(PKG_READER_S* package) = 0;
  /// OpenPackageText (package_text.h), by the device's way of unpacking.
  [[nodiscard]] virtual UniqueLines OpenText(PKG_READER_S* package, std::uint32_t file_id) = 0;
  /// @param version room for kRunningVersionRoom bytes (compatibility.h); empty when it is not known.
  virtual void ReadRunningVersion(char* version) = 0;
  /// The package is good, and its image comes next.
  virtual void BeginImage() {}
  /// @return kUnknownTag when it is not known.
  [[nodiscard]] virtual std::uint32_t DeviceTag() = 0;
  /// Takes the data of the image. @return false when there are none.
  [[nodiscard]] virtual bool TakeImage(PKG_READER_S* package, const PackageFileEntry& image) = 0;
};

/// The part of the judgement that is about the image.
/// @param device_tag which devices' image is taken.
[[nodiscard]] PackageVerdict JudgeImage(PKG_READER_S* package, std::uint32_t device_tag, LoadDevice& device);

/// Whether a device loads an open package: the judgement of the shell and of the tool that foretells it.
/// @return kGood when the device has taken the image, otherwise what speaks against it.
[[nodiscard]] PackageVerdict JudgeLoad(PKG_READER_S* package, LoadDevice& device);

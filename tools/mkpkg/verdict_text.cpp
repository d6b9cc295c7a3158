#include "tools/mkpkg/verdict_text.h"

#include <algorithm>

namespace mkpkg {
namespace {

constexpr VerdictText kVerdictTexts[] = {
    {PackageVerdict::kGood, "good", "nothing speaks against it"},
    {PackageVerdict::kFirstUnit, "primary-partition", "only the first unit of a medium may hold it"},
    {PackageVerdict::kName, "name", "a package's name ends in .bin and holds no ~"},
    {PackageVerdict::kCannotOpen, "cannot-open", "there is no such file, or it is no regular, readable one"},
    {PackageVerdict::kNoMainHead, "no-main-head", "it is shorter than the main head of a package"},
    {PackageVerdict::kByteOrder, "byte-order", "the byte-order word of its main head is neither 0 nor 0xFFFFFFFF"},
    {PackageVerdict::kTooManyFiles, "too-many-files", "its main head tells of more than 128 files"},
    {PackageVerdict::kNoMemory, "no-memory", "there is not enough memory"},
    {PackageVerdict::kPackageType, "system-package", "its attribute is not 0 or its type not 2"},
    {PackageVerdict::kProductTag, "product-tag", "it is made for another product"},
    {PackageVerdict::kKind, "kind", "the attribute word has bit 0 set but is not 1"},
    {PackageVerdict::kHeadCrc, "head-crc", "the CRC of its main head does not fit"},
    {PackageVerdict::kLink, "link", "its path is a symbolic link"},
    {PackageVerdict::kReplaced, "replaced", "the file was replaced while it was checked"},
    {PackageVerdict::kShorterThanPayload, "shorter-than-payload", "it is shorter than its main head says"},
    {PackageVerdict::kNoTrailer, "no-trailer", "it has no signature trailer"},
    {PackageVerdict::kTrailerLength, "trailer-length", "the trailer cannot have the length that it tells"},
    {PackageVerdict::kTrailerHoldsNul, "trailer-holds-nul", "the trailer holds a NUL byte"},
    {PackageVerdict::kTrailerForm, "trailer-form", "the trailer does not consist of its seven lines"},
    {PackageVerdict::kSignatureText, "signature-text", "the signature in the trailer is no base64 text, or too long"},
    {PackageVerdict::kSignatureLength, "signature-length", "the signature is longer than the main head has room for"},
    {PackageVerdict::kKeyName, "key-name", "the trailer names a key that cannot be a file's plain name"},
    {PackageVerdict::kKeyFile, "key-file", "the key file is missing, a symbolic link or of a wrong size"},
    {PackageVerdict::kKeyValue, "key-value", "the key is one that anybody can sign with"},
    {PackageVerdict::kUnreadable, "unreadable", "the file could not be read to its end"},
    {PackageVerdict::kWrongSignature, "wrong-signature", "the signature does not fit the package and the key"},
    {PackageVerdict::kCompatibilityList, "compatibility-list", "the package has no compatibility list"},
    {PackageVerdict::kCompatible, "compatible", "the version of the boot image is unknown"},
    {PackageVerdict::kDeviceTag, "device-tag", "the device's version file has no DeviceTag"},
    {PackageVerdict::kImage, "image", "the package has no image for this device's tag"},
    {PackageVerdict::kImageName, "image-name",
     "the image's name holds more than letters, digits, \".\", \"_\", \"-\" and \"+\""},
    {PackageVerdict::kDescription, "description", "the package has no description"},
};

}  // namespace

const VerdictText& VerdictTextOf(PackageVerdict verdict) {
  return *std::ranges::find(kVerdictTexts, verdict, &VerdictText::verdict);
}

}  // namespace mkpkg

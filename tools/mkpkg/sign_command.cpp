#include <fcntl.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "tools/mkpkg/commands.h"
#include "tools/mkpkg/exit_status.h"
#include "tools/mkpkg/files.h"
#include "tools/mkpkg/key_option.h"
#include "tools/mkpkg/messages.h"
#include "tools/mkpkg/package_signer.h"
#include "util/unique_handle.h"

namespace mkpkg {
namespace {

constexpr char kHelp[] =
    "usage: mkpkg sign FORM --private-key=PEM PACKAGE\n"
    "       mkpkg sign FORM --show-digest PACKAGE\n"
    "       mkpkg sign FORM --write-block=FILE PACKAGE\n"
    "       mkpkg sign FORM --attach=SIGNATURE [--public-key=PEM] PACKAGE\n"
    "Signs a package in place; a signature that it has is replaced. Where the private key is elsewhere, the digest or\n"
    "the whole block that is to be signed is given out, and the signature, 256 bytes, is attached when it is back.\n"
    "All steps need the same FORM:\n"
    "\n"
    "  --key-name=NAME       the device's key file NAME.key; the signature becomes a trailer of the package\n"
    "  --markers=generic|kelvane  which marker lines the trailer has; generic without this option\n"
    "  --in-head             the older form: the signature stands in the main head and the device's key file is\n"
    "                        digital_sign_old_public.key; it does not cover the main head\n"
    "  --digest-info         sign the digest with its algorithm's name before it, as most signing services do; only\n"
    "                        device keys of 516 bytes take it. Without: the 32 bytes of the digest alone\n"
    "\n"
    "  --private-key=PEM     an RSA key of 2048 bits\n"
    "  --passphrase-file=FILE  the first line of FILE opens an encrypted PEM; without it the terminal is asked\n"
    "  --show-digest         print the SHA-256 digest to be signed in hexadecimal\n"
    "  --write-block=FILE    write the block to be signed; what is left to do is PKCS #1 type 1 padding and RSA:\n"
    "                        openssl pkeyutl -sign -inkey PEM -pkeyopt rsa_padding_mode:pkcs1 -in FILE -out SIGNATURE\n"
    "  --attach=SIGNATURE    a file with the signature\n"
    "  --public-key=PEM      refuse a signature that does not fit this key\n"
    "\n"
    "Exit status: 0 done, 2 wrong command line, 3 the package, key or signature is missing or wrong, 4 the result\n"
    "could not be written; the package is then as it was.\n";

constexpr Option kOptions[] = {{"key-name", true},    {"markers", true},        {"in-head"},           {"digest-info"},
                               {"private-key", true}, {"show-digest"},          {"write-block", true}, {"attach", true},
                               {"public-key", true},  {"passphrase-file", true}};
constexpr const char* kActions[] = {"private-key", "show-digest", "write-block", "attach"};
constexpr std::size_t kSignatureSize = kKeyBits / 8;

std::string ReadForm(const Arguments& arguments, SignatureForm& form) {
  form.in_head = arguments.Has("in-head");
  form.digest_info = arguments.Has("digest-info");
  form.key_name = arguments.Value("key-name");
  const std::string markers = arguments.Value("markers", "generic");
  form.vendor_markers = markers == "kelvane";
  if (markers != "generic" && !form.vendor_markers) return "--markers is generic or kelvane";
  if (form.in_head && (arguments.Has("key-name") || arguments.Has("markers")))
    return "a signature in the head names no key and has no markers";
  if (!form.in_head && !arguments.Has("key-name")) return "--key-name or --in-head is missing";
  int actions = 0;
  for (const char* action : kActions) actions += arguments.Has(action) ? 1 : 0;
  if (actions != 1) return "one of --private-key, --show-digest, --write-block and --attach is needed";
  if (arguments.Has("public-key") && !arguments.Has("attach")) return "--public-key goes with --attach";
  return form.in_head ? "" : ReasonAgainstKeyName(form.key_name);
}

std::string SignatureWithKey(const Arguments& arguments, const std::string& block, std::string& signature,
                             std::vector<std::string>& warnings) {
  const std::string origin = arguments.Value("private-key");
  UniqueKey key;
  if (std::string problem = ReadKey(arguments, origin, KeyPart::kPrivate, key); !problem.empty()) return problem;
  if (HasSmallExponent(key)) warnings.push_back(origin + " has a public exponent below 65537: use it for no device");
  return SignBlock(key, block, signature);
}

std::string SignatureFromElsewhere(const Arguments& arguments, const std::string& block, std::string& signature) {
  const std::string origin = arguments.Value("attach");
  if (std::string problem = ReadWholeFile(origin, signature); !problem.empty()) return problem;
  if (signature.size() != kSignatureSize)
    return origin + " holds " + std::to_string(signature.size()) + " bytes; a signature has 256";
  if (!arguments.Has("public-key")) return "";
  const std::string key_origin = arguments.Value("public-key");
  UniqueKey key;
  if (std::string problem = ReadKey(arguments, key_origin, KeyPart::kPublic, key); !problem.empty()) return problem;
  return OpensTo(key, signature, block) ? "" : origin + " is not the signature of this package with " + key_origin;
}

std::string InHex(const std::string& bytes) {
  std::string text;
  for (const char byte : bytes) {
    char digits[sizeof("00")];
    (void)std::snprintf(digits, sizeof(digits), "%02x", static_cast<unsigned>(static_cast<unsigned char>(byte)));
    text += digits;
  }
  return text;
}

int Run(const Arguments& arguments) {
  SignatureForm form;
  if (std::string problem = ReadForm(arguments, form); !problem.empty())
    return Fail(kUsage, problem + "; see \"mkpkg sign --help\"");
  const std::string& path = arguments.Operands()[0];
  const bool writes = arguments.Has("private-key") || arguments.Has("attach");
  const UniqueFd fd(open(path.c_str(), (writes ? O_RDWR : O_RDONLY) | O_CLOEXEC));
  if (!fd) return Fail(kBadInput, "cannot open " + path + ": " + std::strerror(errno));
  PreparedPackage package;
  std::string digest;
  std::string problem = PrepareForSigning(form, fd.Get(), package);
  if (problem.empty()) problem = DigestToSign(form, fd.Get(), package, digest);
  if (!problem.empty()) return Fail(kBadInput, path + ": " + problem);
  const std::string block = BlockToSign(form, digest);
  std::vector<std::string> warnings;
  if (arguments.Has("write-block")) {
    problem = WriteWholeFile(arguments.Value("write-block"), block);
    if (!problem.empty()) return Fail(kCannotWrite, problem);
  } else if (writes) {
    std::string signature;
    problem = arguments.Has("attach") ? SignatureFromElsewhere(arguments, block, signature)
                                      : SignatureWithKey(arguments, block, signature, warnings);
    if (problem.empty()) problem = ReasonAgainstSignature(form, signature);
    if (!problem.empty()) return Fail(kBadInput, problem);
    if (!AttachSignature(form, signature, fd.Get(), package))
      return Fail(kCannotWrite, "cannot write " + path + ": " + std::strerror(errno));
  } else if (!arguments.Has(kJson.name)) {
    std::printf("%s\n", InHex(digest).c_str());
  }
  return Conclude(arguments, warnings, [&](JsonWriter& json) {
    json.Text("package", path);
    json.Text("digest", InHex(digest));
    json.Flag("is_signed", writes);
  });
}

}  // namespace

const Command kSignCommand = {"sign", kHelp, kOptions, {"PACKAGE"}, Run};

}  // namespace mkpkg

#include <sys/stat.h>
#include <unistd.h>

#include "pkg/format/public_key.h"
#include "tools/mkpkg/commands.h"
#include "tools/mkpkg/device_key.h"
#include "tools/mkpkg/exit_status.h"
#include "tools/mkpkg/files.h"
#include "tools/mkpkg/key_option.h"
#include "tools/mkpkg/messages.h"
#include "util/decimal.h"

namespace mkpkg {
namespace {

constexpr char kHelp[] =
    "usage: mkpkg key new [--exponent=N] PRIVATE_PEM PUBLIC_PEM\n"
    "       mkpkg key device [--size=514|516] [--passphrase-file=FILE] PEM KEYFILE\n"
    "new     makes an RSA key pair of 2048 bits. The private key is readable by its owner only, not encrypted, and\n"
    "        never replaces a file.\n"
    "device  makes the file that a device keeps in /etc/sign_pub_key, as NAME.key, from a public (or private) key.\n"
    "\n"
    "  --exponent=N  the public exponent, odd, at least 65537 (which it is without this option)\n"
    "  --size=514    a key that takes signatures of the digest alone (the usual)\n"
    "  --size=516    a key that also takes signatures of the digest with its algorithm's name before it\n"
    "  --passphrase-file=FILE  the first line of FILE opens an encrypted PEM\n"
    "\n"
    "Exit status: 0 done, 2 wrong command line, 3 the key cannot be read or is none that a device should have,\n"
    "4 a file could not be written.\n";

constexpr Option kOptions[] = {{"exponent", true}, {"size", true}, {"passphrase-file", true}};
constexpr mode_t kPrivateMode = 0600;

int NewPair(const Arguments& arguments) {
  std::uint64_t exponent = kLeastExponent;
  if (arguments.Has("exponent") &&
      (!ReadDecimal(arguments.Value("exponent").c_str(), exponent) || exponent > 0xFFFFFFFF))
    return Fail(kUsage, "--exponent needs a number of at most 32 bits");
  UniqueKey key;
  if (std::string problem = GenerateKey(static_cast<std::uint32_t>(exponent), key); !problem.empty())
    return Fail(kUsage, problem);
  const std::string private_pem = PrivatePem(key);
  const std::string public_pem = PublicPem(key);
  if (private_pem.empty() || public_pem.empty()) return Fail(kBadInput, "out of memory");
  const std::string& private_path = arguments.Operands()[1];
  const std::string& public_path = arguments.Operands()[2];
  std::string problem = WriteWholeFile(private_path, private_pem, kPrivateMode, false);
  if (!problem.empty()) return Fail(kCannotWrite, problem);
  problem = WriteWholeFile(public_path, public_pem);
  if (!problem.empty()) {
    (void)unlink(private_path.c_str());  // half a pair is of no use to anybody
    return Fail(kCannotWrite, problem);
  }
  return Conclude(arguments, {}, [&](JsonWriter& json) {
    json.Text("private_key", private_path);
    json.Text("public_key", public_path);
  });
}

int DeviceKey(const Arguments& arguments) {
  const std::string size = arguments.Value("size", "514");
  if (size != "514" && size != "516") return Fail(kUsage, "--size is 514 or 516");
  const std::string& origin = arguments.Operands()[1];
  std::string file;
  UniqueKey key;
  if (std::string problem = ReadKey(arguments, origin, KeyPart::kPublic, key); !problem.empty())
    return Fail(kBadInput, problem);
  if (std::string problem = EncodeDeviceKey(key, size == "514" ? kShortKeyFile : kLongKeyFile, file); !problem.empty())
    return Fail(kBadInput, origin + ": " + problem);
  const std::string& path = arguments.Operands()[2];
  if (std::string problem = WriteWholeFile(path, file); !problem.empty()) return Fail(kCannotWrite, problem);
  std::vector<std::string> warnings;
  if (!path.ends_with(kKeySuffix))
    warnings.push_back("a device looks for files whose name ends in \".key\", not for " + BaseName(path));
  return Conclude(arguments, warnings, [&](JsonWriter& json) {
    json.Text("key_file", path);
    json.Number("size", file.size());
  });
}

int Run(const Arguments& arguments) {
  const std::string& action = arguments.Operands()[0];
  if (action == "new" && !arguments.Has("size") && !arguments.Has("passphrase-file")) return NewPair(arguments);
  if (action == "device" && !arguments.Has("exponent")) return DeviceKey(arguments);
  return Fail(kUsage, "it is \"mkpkg key new\" or \"mkpkg key device\"; see \"mkpkg key --help\"");
}

}  // namespace

const Command kKeyCommand = {"key", kHelp, kOptions, {"ACTION", "PEM", "FILE"}, Run};

}  // namespace mkpkg

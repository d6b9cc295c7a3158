#include <sys/wait.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>

#include "tests/support/package_fixture.h"
#include "tools/mkpkg/files.h"
#include "util/fixed_text.h"

namespace {

/// The tool as a maker calls it.
struct Mkpkg : PackageTest {
  void SetUp() override {
    PackageTest::SetUp();
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1);  // for which the tool would have to find itself in /proc
    WriteFile("/tmp/good.bin", GoodPackage());
    WriteFile("/tmp/boot.bin", Compose(Contents()));
    std::filesystem::create_symlink("good.bin", "/tmp/link.bin");
    mkpkg::PackageContents odd = Contents();
    odd.files[1].name = "a/b";
    odd.files[2].name = ".a";
    odd.files[3].name = "a\n";
    odd.files.push_back(odd.files[0]);
    WriteFile("/tmp/odd.bin", Compose(odd));
  }

  /// @return what the tool prints, behind its exit status.
  static std::string Say(const std::string& arguments, const std::string& before = "") {
    // Where the private root keeps the machine's files.
    const std::string tool = "cd /tmp; " + before + "/host" ESH_MKPKG " > said 2> warned ";
    const int status = std::system((tool + arguments).c_str());  // NOLINT(cert-env33-c)
    return std::to_string(WEXITSTATUS(status)) + " " + ReadFile("/tmp/said") + ReadFile("/tmp/warned");
  }
};

/// The files and keys that the calls below name.
constexpr char kMakeFiles[] = R"((echo word > word; head -c 256 /dev/zero > zeros; mkdir big; truncate -s 4G big/a
printf 'product-tag: 1\n[image]\nname: a\0b\nfile: word' > nul
printf 'product-tag: 1\n[image]\ndevice-tag: 1\ndirectory: big' > huge
(echo product-tag: 1; for i in $(seq 129); do printf "[file $i]\ntext: a\n"; done) > many
openssl genpkey -algorithm ED25519 -out ed.pem; openssl genrsa -out short.pem 1024
openssl genrsa -3 -aes128 -passout pass:word -out three.pem 2048) 2> no.bin; )";

TEST_F(Mkpkg, TellsHowItWent) {
  EXPECT_EQ(Say("--version", kMakeFiles).substr(0, 8), "0 mkpkg ");
  const std::string ask = "check --version-file=/etc/pkg/version/1_0_package --keys=/etc/sign_pub_key ";
  const std::pair<std::string, const char*> kCalls[] = {
      {ask + "--boot-image=boot.bin good.bin", "0 display install package: accepted\ninstall load: accepted\ndevices"},
      {ask + "good.bin",
       "1 display install package: accepted\ninstall load: refused at step \"compatible\": the version"},
      {ask + "--name=x:/a boot.bin", "1 display install package: refused at step \"typed-name\": x:/a is no name"},
      {ask + "gone.bin", "3 mkpkg: cannot read gone.bin: No such file or directory\n"},
      {ask + "--boot-image=gone good.bin", "3 mkpkg: cannot read gone: No such file or directory\n"},
      {ask + "link.bin", "1 display install package: accepted\n"},
      {"check --keys=a good.bin", "2 mkpkg: --version-file and --keys are needed; see \"mkpkg check --help\"\n"},
      {"check --version-file=a good.bin", "2 mkpkg: --version-file and --keys are needed"},
      {"check --version-file=good.bin --keys=good.bin good.bin", "3 mkpkg: good.bin is no directory\n"},
      {"info good.bin", "0 Package good.bin, "},
      {"info gone.bin", "3 mkpkg: gone.bin: there is no such file, or it is no regular, readable one\n"},
      {"info said", "3 mkpkg: said: it is shorter than the main head of a package\n"},
      {"info good.bin -- --json", "2 mkpkg: operand --json is one too many; see"},
      {"info --nonsense good.bin", "2 mkpkg: there is no option --nonsense; see"},
      {"info -n", "2 mkpkg: there is no option -n; see"},
      {"info --json --json -", "2 mkpkg: option --json is given twice; see"},
      {"info --json=1 -", "2 mkpkg: option --json takes no value; see"},
      {"check - --name", "2 mkpkg: option --name needs a value; see"},
      {"info -h", "0 usage: mkpkg info"},
      {"help info", "0 usage: mkpkg info"},
      {"extract good.bin out", "0 out/compatible.txt\nout/description.txt\nout/other.gz\nout/system.gz\n"},
      {"extract good.bin out", "4 mkpkg: cannot write out/compatible.txt: File exists\n"},
      {"extract --json good.bin new", "0 {\n  \"files\": [\n    \"new/compatible.txt\",\n    \"new/description.txt\","},
      {"extract odd.bin odd", "0 odd/compatible.txt\nodd/2-040000F0\nodd/3-04000000\nodd/4-04000000\nodd/5-"},
      {"extract good.bin gone/out", "4 mkpkg: cannot make gone/out: No such file or directory\n"},
      {"info good.bin > /dev/full", "4 mkpkg: cannot write to standard output\n"},
      {"info --json good.bin > /dev/full", "4 mkpkg: cannot write to standard output\n"},
      {"--help", "0 usage: mkpkg COMMAND"},
      {"help", "0 usage: mkpkg COMMAND"},
      {"help nonsense", "2 mkpkg: there is no command \"nonsense\"; see \"mkpkg --help\"\n"},
      {"", "2 mkpkg: a command is missing; see \"mkpkg --help\"\n"},
      {"sign --key-name='a b' --attach=a good.bin", "2 mkpkg: the key name must be printable and hold no blank; see"},
      {"sign --key-name=.a --attach=a good.bin", "2 mkpkg: the key name .a begins with a dot; see"},
      {"sign --key-name=/a --attach=a good.bin", "2 mkpkg: the key name /a holds a slash; see"},
      {"sign --key-name= --attach=a good.bin", "2 mkpkg: a trailer must name its key; see"},
      {"sign --write-block=block good.bin", "2 mkpkg: --key-name or --in-head is missing; see"},
      {"sign --in-head --key-name=a good.bin", "2 mkpkg: a signature in the head names no key and has no markers; see"},
      {"sign --in-head --markers=generic good.bin", "2 mkpkg: a signature in the head names no key and has no markers"},
      {"sign --markers=none good.bin", "2 mkpkg: --markers is generic or kelvane; see"},
      {"sign --in-head --show-digest --attach=a good.bin", "2 mkpkg: one of --private-key, --show-digest"},
      {"sign --in-head --show-digest --public-key=a good.bin", "2 mkpkg: --public-key goes with --attach; see"},
      {"sign --in-head --show-digest good.bin; sed -i 's/\\w\\{64\\}/D/' said", "0 D\n"},
      {"sign --in-head --attach=word good.bin", "3 mkpkg: word holds 5 bytes; a signature has 256\n"},
      {"sign --in-head --attach=zeros --public-key=three.pem --passphrase-file=word good.bin",
       "3 mkpkg: zeros is not the signature of this package with three.pem\n"},
      {"sign --in-head --passphrase-file=word --private-key=three.pem good.bin", "0 mkpkg: warning: three.pem"},
      {"sign --key-name=a --write-block=block no.bin", "3 mkpkg: no.bin: it is no package\n"},
      {"key device gone.pem key", "3 mkpkg: cannot read gone.pem: No such file or directory\n"},
      {"key device . key", "3 mkpkg: cannot read .: Is a directory\n"},
      {"key device ed.pem key", "3 mkpkg: ed.pem holds no RSA key\n"},
      {"key device short.pem key", "3 mkpkg: short.pem holds a key of 1024 bits; a device reads 2048\n"},
      {"key device --passphrase-file=no.bin three.pem key", "3 mkpkg: cannot read a private key in PEM form"},
      {"key device --passphrase-file=word three.pem key", "3 mkpkg: three.pem: the public exponent is below 65537"},
      {"key device --size=515 public.pem key", "2 mkpkg: --size is 514 or 516\n"},
      {"key new --size=514 a b", "2 mkpkg: it is \"mkpkg key new\" or \"mkpkg key device\"; see"},
      {"key new --exponent=65535 a b", "2 mkpkg: the exponent must be an odd number from 65537 on"},
      {"key new --exponent=65538 a b", "2 mkpkg: the exponent must be an odd number from 65537 on"},
      {"key new --exponent=4294967297 a b", "2 mkpkg: --exponent needs a number of at most 32 bits\n"},
      {"key new --exponent=4294967295 a gone/b", "4 mkpkg: cannot write gone/b: No such file or directory\n"},
      {"key new --json a b; stat -c %a a b >> said",
       "0 {\n  \"private_key\": \"a\",\n  \"public_key\": \"b\",\n  \"warnings\": []\n}\n600\n644\n"},
      {"key device --json b c.key", "0 {\n  \"key_file\": \"c.key\",\n  \"size\": 514,\n  \"warnings\": []\n}\n"},
      {"sign --in-head --private-key=a --json good.bin; sed -i 's/\\w\\{64\\}/D/' said",
       "0 {\n  \"package\": \"good.bin\",\n  \"digest\": \"D\",\n  \"is_signed\": true,\n  \"warnings\": []\n}\n"},
      {"key device b key", "0 mkpkg: warning: a device looks for files whose name ends in \".key\", not for key\n"},
      {"build nul new", "3 mkpkg: a name holds a NUL byte\n"},
      {"build many new", "3 mkpkg: a package holds at most 128 files, not 129\n"},
      {"build huge new", "3 mkpkg: cannot archive big/a: File is too large for this format.\n"},
      {"build good.bin", "2 mkpkg: operand PACKAGE is missing; see \"mkpkg build --help\"\n"},
      {"build a good.bin", "4 mkpkg: good.bin exists; --force replaces it\n"},
  };
  for (const auto& [arguments, said] : kCalls)
    EXPECT_EQ(Say(arguments).substr(0, std::string_view(said).size()), said) << arguments;
  EXPECT_EQ(ReadFile("/tmp/out/system.gz"), "the image");
}

TEST_F(Mkpkg, ShowsOnATerminalHowFarItIs) {
  WriteFile("/tmp/d", "product-tag: 1\n[image]\ndevice-tag: 1\nfile: big\n");
  FixedText<1000> shown;
  for (int piece = 0; piece <= 16; ++piece) shown.Append("\rReading big ... %3d %%", piece * 100 / 16);
  shown.Append("\r%21s\r", "");
  const std::string said = Say("build d p.bin 2>&0' /dev/null > said", "truncate -s 4194304 big; script -qc '");
  EXPECT_EQ(said.substr(2, shown.Length()), shown.View());
}

TEST_F(Mkpkg, GivesAnArchiveTheTimeOfItsSources) {
  WriteFile("/tmp/root/file", "text");
  WriteFile("/tmp/d", "product-tag: 1\n[image]\ndevice-tag: 1\ndirectory: root\ncompression: none\n");
  EXPECT_EQ(Say("build d unset", "unset SOURCE_DATE_EPOCH; ")[0], '0');
  for (const auto& [time, status] :
       {std::pair("0", '0'), {"-5", '3'}, {"", '3'}, {"4294967295", '0'}, {"4294967296", '3'}, {"86399", '0'}}) {
    EXPECT_EQ(Say(std::string("build d at") + time, std::string("export SOURCE_DATE_EPOCH=") + time + "; ")[0], status)
        << time;
  }
  EXPECT_EQ(ReadFile("/tmp/unset"), ReadFile("/tmp/at0"));
  EXPECT_NE(ReadFile("/tmp/at86399").find("0001517f"), std::string::npos) << "the time of the archive's entries";
}

TEST_F(Mkpkg, WithoutRoomLeavesWhatWasThere) {
  const std::string before = GoodPackage(true);
  WriteFile("/tmp/p.bin", before);
  EXPECT_EQ(Say("key new k.pem public.pem"), "0 ");
  const std::string full = "trap '' XFSZ; ulimit -f " + std::to_string(before.size() / 512 + 1) + "; ";
  EXPECT_EQ(Say("sign --key-name=maker --private-key=k.pem p.bin", full),
            "4 mkpkg: cannot write p.bin: File too large\n");
  EXPECT_EQ(ReadFile("/tmp/p.bin"), before);
  WriteFile("/tmp/d", "product-tag: 1\n");
  EXPECT_EQ(Say("build d new.bin", "trap '' XFSZ; ulimit -f 2; "), "4 mkpkg: cannot write new.bin: File too large\n");
  EXPECT_FALSE(std::filesystem::exists("/tmp/new.bin"));
}

TEST_F(Mkpkg, InterruptedLeavesWhatWasThere) {
  WriteFile("/tmp/place/file", "old");
  const mkpkg::FillFile press_ctrl_c = [](int /*fd*/) { return raise(SIGINT) == 0 ? "" : "it goes on"; };
  EXPECT_EXIT((void)mkpkg::WriteFile("/tmp/place/file", press_ctrl_c, 0666, true), testing::KilledBySignal(SIGINT), "");
  EXPECT_EQ(ReadFile("/tmp/place/file"), "old");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator("/tmp/place"), {}), 1) << "a temporary file is left";
}

}  // namespace

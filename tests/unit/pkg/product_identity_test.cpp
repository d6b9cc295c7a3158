#include "pkg/product_identity.h"

#include <unistd.h>

#include <cstring>

#include "pkg/corporation_tables.h"
#include "pkg/product_code.h"
#include "pkg/system_identity.h"
#include "pkg/version_display.h"
#include "pkg/version_file.h"
#include "tests/support/private_root.h"

namespace {

constexpr char kObjectId[] = "/proc/sys/61000/1";

struct ProductIdentity : PrivateRootTest {
  void SetUp() override {
    PrivateRootTest::SetUp();
    WriteFile(kVersionFile,
              "Vendor: Ostrel\nplatform VERSION: 7.1.9\nProduct version: R6\nPkgTime: Mar 14 2026 10:20:30\n");
  }

  /// The record that a device with these files builds.
  static const OEM_CONSUMER_INFO_S& Record(const std::string& oem, const std::string& object_id = "1.2.3\n",
                                           const std::string& corporation = "") {
    unlink("/etc/oem");
    unlink("/etc/oemcorp");
    if (!oem.empty()) WriteFile("/etc/oem", oem);
    if (!corporation.empty()) WriteFile("/etc/oemcorp", corporation);
    WriteFile(kObjectId, object_id);
    setGlobalOemDataLocked();
    return g_stOemConsumerInfo;
  }

  template <typename Getter>
  static std::string TextOf(Getter get) {
    char text[kIdentityRoom] = "not touched";
    get(text);
    return text;
  }
};

TEST_F(ProductIdentity, IsTheMakersWithoutFiles) {
  unlink(kVersionFile);
  const OEM_CONSUMER_INFO_S& record = Record("");
  EXPECT_EQ(record.uiCorpId, 0U);
  EXPECT_STREQ(record.sysDescr, "Ostrel Tessaro Platform Software Version 7.1");
  EXPECT_EQ(TextOf(ESH_GetCorpName), "Ostrel");
  EXPECT_EQ(TextOf(ESH_GetSoftwareName), "Tessaro");
  EXPECT_EQ(TextOf(ESH_GetCopyright), "Copyright (c) 2004- Ostrel Networks Ltd. All rights reserved.");
  EXPECT_EQ(TextOf([](char* text) { ESH_GetSoftVersion(kIdentityRoom, text); }), "7.10");
  EXPECT_EQ(TextOf([](char* text) { GetVersion(kIdentityRoom, text); }), "");
}

TEST_F(ProductIdentity, SectionFollowsTheObjectId) {
  const std::string oem =
      "[default]\nsysName: plain\n[default-Kelvane]\nsysName: Kelvane\n[default-Durell]\nsysName: Durell\n"
      "[default-Sorvik]\nsysName: Sorvik\n[default-Talvo]\nsysName: Talvo\n[default-Own]\nsysName: own\n"
      "[1.3.6.1.4.1.206.1.7]\nsysContact: section of the device\n[1.3.6.1.4.1.206.1.70]\nsysContact: a neighbour\n";
  const struct {
    const char* object_id;
    const char* corporation;
    const char* name;
  } cases[] = {
      {"1.3.6.1.4.1.47213.11.4", "", "Kelvane"},
      {"1.3.6.1.4.1.38.2.3.7.15.1", "", "Kelvane"},
      {"1.3.6.1.4.1.206.1.7", "", "Durell"},
      {"1.3.6.1.4.1.206.1", "default-oem: [default-Own]\n", "Durell"},
      {"1.3.6.1.4.1.47213.12.1.1.5", "", "Sorvik"},
      {"1.3.6.1.4.1.47213.12.1.1", "", "plain"},
      {"1.3.6.1.4.1.47213.12.1.4.18446744073709551615", "", "Talvo"},
      {"1.3.6.1.4.1.9", "Default-OEM: [default-Own]\n", "own"},
      {"1.3.6.1.4.1.9", "default-oem: [default-Gone]\n", "Ostrel"},
      {"no numbers", "default-oem: [default-Own]\n", "plain"},
  };
  for (const auto& c : cases) {
    const OEM_CONSUMER_INFO_S& record = Record(oem, c.object_id, c.corporation);
    EXPECT_STREQ(record.sysName, c.name) << c.object_id;
    EXPECT_EQ(std::strcmp(record.sysContact, "section of the device") == 0,
              std::strcmp(c.object_id, "1.3.6.1.4.1.206.1.7") == 0)
        << c.object_id;
  }
}

TEST_F(ProductIdentity, FieldsAreReadAsTheyAreWritten) {
  const struct {
    const char* why;
    std::string section;
    const char* name;
    const char* contact;
    std::uint32_t corporation;
  } cases[] = {
      {"the key is not at the begin of a line", "\nx productName: y\n", "Ostrel", "Ostrel Networks Ltd.", 0},
      {"blanks around the colon", "\r\nproductName  :   A B  \r\n", "A B", "Ostrel Networks Ltd.", 0},
      {"no colon", "\nproductName A\n", "Ostrel", "Ostrel Networks Ltd.", 0},
      {"only a key's begin", "\nproductNames: A\n", "Ostrel", "Ostrel Networks Ltd.", 0},
      {"an empty contact", "\nsysContact:\nproductName:\n", "Ostrel", "", 0},
      {"a value over lines", "\nsysContact: a\nb: c\r\n\r\nproductName: n", "n", "a\nb: c", 0},
      {"a written line break", "\nsysContact: a\\r\\nb\\r\\\\r\\n\n", "Ostrel", "a\r\nb\\r\\\r\n", 0},
      {"a corporation in any case", "\noem: dURELL\n", "Ostrel", "Ostrel Networks Ltd.", 2},
      {"a corporation's begin", "\noem: Ilver\n", "Ostrel", "Ostrel Networks Ltd.", 42},
      {"no such corporation", "\noem: Durells\n", "Ostrel", "Ostrel Networks Ltd.", 0},
      {"a header inside a line", "\nsysContact: x [default-y]\nproductName: n\n", "n", "x [default-y]", 0},
      {"the next section", "\n[default-Other]\nproductName: n\n", "Ostrel", "Ostrel Networks Ltd.", 0},
  };
  for (const auto& c : cases) {
    const OEM_CONSUMER_INFO_S& record = Record("[default]" + c.section);
    EXPECT_STREQ(record.productName, c.name) << c.why;
    EXPECT_STREQ(record.sysContact, c.contact) << c.why;
    EXPECT_EQ(record.uiCorpId, c.corporation) << c.why;
  }
  const OEM_CONSUMER_INFO_S& record =
      Record("[default]\nproductName: " + std::string(300, 'p') + "\nsysName: " + std::string(65, 's') +
             "\ncorpIDMac: 0A-0b-FF-00-1-7f\nbridgeMac: 1-2-3\n");
  EXPECT_EQ(record.productName, std::string(256, 'p'));
  EXPECT_EQ(record.sysName, std::string(64, 's'));
  EXPECT_EQ(std::memcmp(record.corpIDMac, "\x0A\x0B\xFF\x00\x01\x7F", 6), 0);
  EXPECT_EQ(std::memcmp(record.bridgeMac, "\x02\x5A\xC1\x07\xF2\x0E", 6), 0) << "half an address is none";
}

TEST_F(ProductIdentity, MarkersOfTheDescriptionExpandInAFixedOrder) {
  const std::string version = "Version 7.1.9, R6";
  const std::string copyright = "Copyright (c) 2004-2026 Ostrel Networks Ltd. All rights reserved.";
  const struct {
    std::string written;
    std::string expanded;
  } cases[] = {
      {"a [VERSION] b", "a " + version + " b"},
      {"a [COPYRIGHT] c [PRODUCTNAME] p [VERSION] v", "a " + version + " vOstrel p " + copyright + " c "},
      {"[VERSION][VERSION]", version + "[VERSION]"},
      {"[PRODUCTNAME]", "Ostrel"},
      {"none", "none"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Record("[default]\nsysDescr: " + c.written).sysDescr, c.expanded) << c.written;
  }
  EXPECT_EQ(std::strlen(Record("[default]\nsysDescr: " + std::string(500, 'x') + "[COPYRIGHT]").sysDescr), 512U);
  EXPECT_STREQ(Record("[default]\noem: Vantrel\nsysDescr: [COPYRIGHT]", "1.2", "copyright: (c) %s%n%s\n").sysDescr,
               "(c) 2026%n%s")
      << "a text of a file is no format";
}

TEST_F(ProductIdentity, NamesAndVersionsFollowTheCorporation) {
  const struct {
    const char* corporation;
    const char* software;
    const char* copyright;
    const char* version;
  } cases[] = {
      {"Durell", "Durell Tessaro", "Copyright (c) 2010-2026 Durell Communications. All rights reserved.", "R6"},
      {"Halden", "Halden OS", "Copyright (c) 2015-2026 Halden Data. All rights reserved.", "7.1.9"},
      {"Quintrel", "From File", "", "7.1.9"},
      {"Vantrel", "From File", "Copyright (c) 2016-2026 Vantrel Corporation. All rights reserved.", "7.1.9"},
  };
  for (const auto& c : cases) {
    (void)Record(std::string("[default]\noem: ") + c.corporation, "1.2", "SoftwareName: From File\n");
    EXPECT_EQ(TextOf(ESH_GetSoftwareName), c.software);
    EXPECT_EQ(TextOf(ESH_GetCopyright), c.copyright);
    EXPECT_EQ(TextOf([](char* text) { ESH_GetSoftVersion(kIdentityRoom, text); }), c.version);
  }
  (void)Record("[default]\noem: Talvo");
  EXPECT_EQ(TextOf(ESH_GetCopyright), "Copyright (c) 2014-2026 Talvo Technologies. All rights reserved.");
  WriteFile(kVersionFile, "PkgTime: Mar 14 2014 10:20:30\n");
  EXPECT_EQ(TextOf(ESH_GetCopyright), "Copyright (c) 2014 Talvo Technologies. All rights reserved.");
}

TEST_F(ProductIdentity, TablesHaveTheirSlots) {
  std::size_t names = 0;
  for (std::size_t id = 0; id < kCorporations; ++id) {
    names += g_apcCorpName[id] != nullptr ? 1 : 0;
    EXPECT_EQ(g_apcSoftwareName[id] != nullptr, id <= 8 || id == 17) << id;
    EXPECT_EQ(g_apcCopyRight[id] != nullptr, id <= 8 || id == 17) << id;
  }
  EXPECT_EQ(names, 24U);
}

TEST_F(ProductIdentity, UptimeCountsInWholeUnits) {
  const struct {
    const char* file;  // NULL: there is none
    const char* line;
  } cases[] = {
      {"694860.99 1.0\n", "Ostrel uptime is 1 week, 1 day, 1 hour, 1 minute\r\n"},
      {"0.59 0.1\n", "Ostrel uptime is 0 weeks, 0 days, 0 hours, 0 minutes\r\n"},
      {"694859.99 1.0\n", "Ostrel uptime is 1 week, 1 day, 1 hour, 0 minutes\r\n"},
      {"1814399 7", "Ostrel uptime is 2 weeks, 6 days, 23 hours, 59 minutes\r\n"},
      {nullptr, "reserved.\r\n\r\nBoot image: "},
  };
  (void)Record("");
  WriteFile("/proc/sys/61000/2", "two\nlines\n");
  WriteFile("/proc/sys/61000/3", "flash:/boot.bin\n");
  for (const auto& c : cases) {
    unlink("/proc/uptime");  // the private root's link to the machine's
    if (c.file != nullptr) WriteFile("/proc/uptime", c.file);
    testing::internal::CaptureStdout();
    ESH_ProcDisVersion();
    const std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_NE(printed.find(c.line), std::string::npos) << printed;
    EXPECT_TRUE(
        printed.ends_with("\r\n\r\nBoot image: flash:/boot.bin\r\nBoot image version: 7.1.9\r\n"
                          "\r\ntwo\nlines\r\n"))
        << printed;
  }
}

}  // namespace

#include "pkg/identity/product_identity.h"

#include <unistd.h>

#include <cstring>
#include <sstream>
#include <tuple>
#include <utility>

#include "pkg/format/product_code.h"
#include "pkg/identity/version_display.h"
#include "pkg/identity/version_file.h"
#include "tests/support/private_root.h"
#include "tests/support/scripted_stdio.h"

namespace {

struct ProductIdentity : PrivateRootTest {
  void SetUp() override {
    unlink("/proc/uptime");  // the machine's
    WriteFile(kVersionFile,
              "Vendor: Ostrel\nplatform VERSION: 7.1.9\nProduct version: R6\nPkgTime: Mar 14 2026 10:20:30\n");
  }

  /// The record that a device with these files builds.
  static OEM_CONSUMER_INFO_S Record(const std::string& oem, const std::string& object_id = "1.2.3",
                                    const std::string& corporation = "") {
    WriteFile("/etc/oem", oem);
    WriteFile("/etc/oemcorp", corporation);
    WriteFile("/proc/sys/61000/1", object_id + "\n");
    setGlobalOemDataLocked();
    return g_stOemConsumerInfo;
  }

  static std::string Version() {
    ScriptedStdio stdio;
    (void)ESH_ProcDisVersion();
    return stdio.TakeOutput();
  }
};

TEST_F(ProductIdentity, IsTheMakersWithoutFiles) {
  unlink(kVersionFile);
  setGlobalOemDataLocked();
  EXPECT_STREQ(g_stOemConsumerInfo.sysDescr, "Ostrel Tessaro Platform Software Version 7.1");
  EXPECT_STREQ(g_stOemConsumerInfo.sysLocation, "Utrecht, The Netherlands");
  EXPECT_EQ(Version(),
            "Ostrel Tessaro Software\r\nCopyright (c) 2004- Ostrel Networks Ltd. All rights reserved.\r\n\r\n"
            "Boot image: \r\nBoot image version: 7.10\r\n\r\n\r\n");
}

TEST_F(ProductIdentity, SectionFollowsTheObjectId) {
  std::string oem =
      "[default]\nsysName: plain\n"
      "[1.3.6.1.4.1.206.1.7]\nsysContact: of the device\n[1.3.6.1.4.1.206.1.70]\nsysContact: of a neighbour\n";
  for (const char* name : {"Kelvane", "Durell", "Pellam", "Sorvik", "Brenna", "Talvo", "Morrel", "Own"})
    oem.append("[default-").append(name).append("]\nsysName: ").append(name).append("\n");
  std::istringstream cases(
      "47213.11.4 - Kelvane 206.1.7 - Durell 206.1 Own Durell 47213.12.1.1.5 - Sorvik 47213.12.1.1 - plain "
      "47213.12.1.4.18446744073709551615 - Talvo 38.2.3.7.15.1 - Kelvane 61447 - Pellam 47213.12.1.2.5 - Brenna "
      "5823 - Morrel 9 Own Own 9 Gone Ostrel no-number Own Own");
  for (std::string id, file, name; cases >> id >> file >> name;) {
    const std::string corporation = file == "-" ? "" : "Default-OEM: [default-" + file + "]\n";
    EXPECT_EQ(Record(oem, "1.3.6.1.4.1." + id, corporation).sysName, name) << id;
  }
  EXPECT_STREQ(Record(oem, "1.3.6.1.4.1.206.1.7").sysContact, "of the device");
}

TEST_F(ProductIdentity, FieldsAreReadAsTheyAreWritten) {
  // The product's name, the contact and the corporation.
  const std::string unchanged = "Ostrel|Ostrel Networks Ltd.|0";
  const std::tuple<const char*, const char*, std::string> cases[] = {
      {"the key is not at the start of a line", "\nx productName: y\n", unchanged},
      {"behind the header", "productName: y\n", unchanged},
      {"blanks around the colon", "\r\nproductName  :   A B  \r\n", "A B|Ostrel Networks Ltd.|0"},
      {"no colon", "\nproductName A\n", unchanged},
      {"an empty contact", "\nsysContact:\nproductName:\n", "Ostrel||0"},
      {"a value over lines", "\nsysContact: a\nb: c\r\n\r\nproductName: n", "n|a\nb: c|0"},
      {"a written line break", "\nsysContact: a\\r\\nb\\r\\\\r\\n\n", "Ostrel|a\r\nb\\r\\\r\n|0"},
      {"a corporation in any case", "\noem: dURELL\n", "Ostrel|Ostrel Networks Ltd.|2"},
      {"only the first letters of a corporation", "\noem: Ilver\n", "Ostrel|Ostrel Networks Ltd.|42"},
  };
  for (const auto& [why, section, told] : cases) {
    const OEM_CONSUMER_INFO_S record = Record(std::string("[default]") + section);
    const std::string id = std::to_string(record.uiCorpId);
    EXPECT_EQ(std::string(record.productName) + "|" + record.sysContact + "|" + id, told) << why;
  }
  const OEM_CONSUMER_INFO_S record =
      Record("[default]\nsysName: " + std::string(65, 's') +
             "\nsysLocation: here\ncorpName: C\ncorpIDMac: 0A-0b-FF-00-1-7f\nbridgeMac: 1-2-3\ntolkMac: 0-1-2-3-4-5\n");
  EXPECT_STREQ(record.sysLocation, "here");
  EXPECT_STREQ(record.corpName, "C");
  EXPECT_EQ(record.sysName, std::string(64, 's'));
  EXPECT_EQ(std::memcmp(record.corpIDMac, "\x0A\x0B\xFF\x00\x01\x7F", 6), 0);
  EXPECT_EQ(std::memcmp(record.bridgeMac, "\x02\x5A\xC1\x07\xF2\x0E", 6), 0) << "half an address is none";
  EXPECT_EQ(std::memcmp(record.tolkMac, "\0\1\2\3\4\5", 6), 0);
  EXPECT_EQ(std::memcmp(Record("").corpIDMac, "\x02\x5A\xC1\0\0\0", 6), 0);
  EXPECT_EQ(std::memcmp(g_stOemConsumerInfo.tolkMac, record.bridgeMac, 6), 0);
}

TEST_F(ProductIdentity, MarkersOfTheDescriptionExpandInAFixedOrder) {
  const std::string version = "Version 7.1.9, R6";
  const std::string copyright = "Copyright (c) 2004-2026 Ostrel Networks Ltd. All rights reserved.";
  const std::pair<std::string, std::string> cases[] = {
      {"a [VERSION] b", "a " + version + " b"},
      {"a [COPYRIGHT] c [PRODUCTNAME] p [VERSION] v", "a " + version + " vOstrel p " + copyright + " c "},
      {std::string(512, 'x') + "[COPYRIGHT]", std::string(512, 'x')},
  };
  for (const auto& [written, expanded] : cases)
    EXPECT_EQ(Record("[default]\nsysDescr: " + written).sysDescr, expanded) << written;
  EXPECT_STREQ(Record("[default]\noem: Vantrel\nsysDescr: [COPYRIGHT]", "1.2", "copyright: (c) %s%n%s\n").sysDescr,
               "(c) 2026%n%s")
      << "a text of a file is no format";
}

/// What a device of a corporation displays. @param year none without a copyright.
std::string Shown(const std::string& name, const std::string& system, const std::string& year,
                  const std::string& form) {
  const std::string owner = " (c) " + year + "-2026 " + name + " " + form + ". All rights reserved.";
  return (name == "Durell" ? "Tessaro" : "Ostrel " + name + system) + " Software\r\n" +
         (year.empty() ? "" : "Copyright" + owner) +
         "\r\n\r\nBoot image: \r\nBoot image version: " + (name == "Durell" ? "R6" : "7.1.9") + "\r\n\r\n\r\n";
}

TEST_F(ProductIdentity, NamesAndVersionsFollowTheCorporation) {
  const std::tuple<std::string, std::string, std::string, std::string> cases[] = {
      {"Kelvane", " NOS", "2009", "Inc"},          {"Durell", "", "2010", "Communications"},
      {"Pellam", "OS", "2011", "Systems"},         {"Sorvik", " SwitchOS", "2012", "AS"},
      {"Brenna", " NetOS", "2012", "Networks"},    {"Talvo", " RouteOS", "2014", "Technologies"},
      {"Morrel", " CoreOS", "2013", "Group"},      {"Halden", " OS", "2015", "Data"},
      {"Vantrel", " File", "2016", "Corporation"}, {"Quintrel", " File", "", ""}};
  for (const auto& [name, system, year, form] : cases) {
    (void)Record("[default]\noem: " + name, "1.2", "SoftwareName: " + name + " File\n");
    EXPECT_EQ(Version(), Shown(name, system, year, form));
  }
  std::istringstream others(
      "Quintrel 9 Averley 10 Norvane 11 Vantrel 17 Castrel 19 Lindow 24 Marsten 25 Oxenby 26 Tarrick 27 Ulvern 28 "
      "Wexcombe 29 Zelbury 31 Fenwold 39 Garrowby 40 Ilverton 42");
  std::uint32_t id = 0;
  for (std::string name; others >> name >> id;) EXPECT_EQ(Record("[default]\noem: " + name).uiCorpId, id) << name;
  (void)Record("[default]\noem: Talvo");
  WriteFile(kVersionFile, "PkgTime: Fri Mar 14 2014 10:20:30\n");
  EXPECT_NE(Version().find("\nCopyright (c) 2014 Talvo Technologies. All rights reserved.\r\n"), std::string::npos);
}

TEST_F(ProductIdentity, UptimeCountsInWholeUnits) {
  const std::tuple<const char*, const char*, std::string, std::string> cases[] = {
      {"694860.99 1.0\n", "1 week, 1 day, 1 hour, 1 minute", "flash:/boot.bin\n", "flash:/boot.bin"},
      {"0.59 0.1\n", "0 weeks, 0 days, 0 hours, 0 minutes", "", ""},
      {"1814399 7", "2 weeks, 6 days, 23 hours, 59 minutes", std::string(65, 'b'), std::string(64, 'b')},
  };
  (void)Record("");
  WriteFile("/proc/sys/61000/2", "two\nlines\n\n");
  const auto shown = [](const std::string& told, const std::string& name) {
    return "Ostrel Tessaro Software\r\nCopyright (c) 2004-2026 Ostrel Networks Ltd. All rights reserved.\r\nOstrel "
           "uptime is " +
           told + "\r\n\r\nBoot image: " + name + "\r\nBoot image version: 7.1.9\r\n\r\ntwo\nlines\n\r\n";
  };
  for (const auto& [uptime, told, boot_image, name] : cases) {
    WriteFile("/proc/uptime", uptime);
    WriteFile("/proc/sys/61000/3", boot_image);
    EXPECT_EQ(Version(), shown(told, name));
  }
}

}  // namespace

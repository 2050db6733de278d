#include <filesystem>

#include <gmock/gmock.h>
#include <plist/plist.h>

#include "Action/Library/PreferenceKeys.h"
#include "Action/Library/ProfieController.h"
#include "Action/Service/DaemonMessages.h"
#include "Kit/Core/PreferenceFile.h"
#include "Tests/Support/ActionTest.h"
#include "Tests/Support/JsonFixture.h"

// The preferences that the background service also reads.

namespace {

namespace fs = std::filesystem;

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

std::string xmlList(const std::string& inner) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + inner +
         "</dict></plist>\n";
}

// A dictionary with a string "Other" and an integer "OSDTag", in binary form.
std::string binaryList(std::uint64_t osd) {
  plist_t root = plist_new_dict();
  plist_dict_set_item(root, "Other", plist_new_string("service"));
  plist_dict_set_item(root, "OSDTag", plist_new_uint(osd));
  char* bytes = nullptr;
  std::uint32_t length = 0;
  plist_to_bin(root, &bytes, &length);
  const std::string text(bytes, length);
  plist_to_bin_free(bytes);
  plist_free(root);
  return text;
}

class Preferences : public ActionTest {
 protected:
  // What is there beside the lock.
  std::vector<std::string> preferenceNames() const {
    std::vector<std::string> names = namesIn(preferenceFile().parent_path());
    std::erase(names, ".com.corvex.NerinOption.plist.lock");
    return names;
  }

  std::string text() const { return textOfFile(preferenceFile()); }
  PreferenceFile file() const { return PreferenceFile(preferenceFile()); }
};

TEST_F(Preferences, LieUnderTheBundleIdentifier) {
  EXPECT_TRUE(library().setIsOSD(false));
  EXPECT_TRUE(fs::exists(home() / "Library" / "Preferences" / "com.corvex.NerinOption.plist"));
}

TEST_F(Preferences, HaveTheKeysOfTheTable) {
  EXPECT_EQ(protocolTable("preference_keys").at("rows").at(0).at(0), preferencekeys::osd);
  EXPECT_EQ(protocolTable("preference_keys").at("rows").at(3).at(0), preferencekeys::linkApp);
  EXPECT_EQ(preferencekeys::profile(10), "Profile_10");
  EXPECT_EQ(preferencekeys::launchPath(3, 15), "Profile_3_15");
  EXPECT_EQ(preferencekeys::linkIsActive(0), "IsActive_Profile_0");
}

TEST_F(Preferences, TheDisplayIsOnWhenNothingSaysOtherwiseAndThatIsStored) {
  EXPECT_TRUE(NerinAction::daemonGetOsd());
  EXPECT_FALSE(fs::exists(preferenceFile()));
  EXPECT_TRUE(library().isOSD());
  EXPECT_EQ(file().boolFor("OSDTag"), true);
  EXPECT_TRUE(NerinAction::daemonGetOsd());
}

TEST_F(Preferences, TheServiceFindsTheDisplayOnWithoutTheKey) {
  EXPECT_TRUE(library().setLaunchPath("/bin/x", 0, 0));
  EXPECT_TRUE(NerinAction::daemonGetOsd());
}

TEST_F(Preferences, TheDisplayIsSwitchedForBothSides) {
  EXPECT_TRUE(library().setIsOSD(false));
  EXPECT_FALSE(library().isOSD());
  EXPECT_FALSE(NerinAction::daemonGetOsd());
  endProgram();
  EXPECT_FALSE(library().isOSD());
  EXPECT_TRUE(library().setIsOSD(true));
  EXPECT_TRUE(NerinAction::daemonGetOsd());
}

TEST_F(Preferences, AnIntegerCountsAsABoolean) {
  writeText(preferenceFile(), xmlList("<key>OSDTag</key><integer>0</integer>"));
  EXPECT_FALSE(library().isOSD());
  EXPECT_FALSE(NerinAction::daemonGetOsd());
  writeText(preferenceFile(), xmlList("<key>OSDTag</key><integer>7</integer>"));
  EXPECT_TRUE(library().isOSD());
  writeText(preferenceFile(),
            xmlList("<key>LinkApp</key><dict><key>Profile_2</key><string>/app</string>"
                    "<key>IsActive_Profile_2</key><integer>1</integer></dict>"));
  bool isActive = false;
  EXPECT_EQ(library().getLinkAppPath(2, isActive), "/app");
  EXPECT_TRUE(isActive);
  EXPECT_EQ(NerinAction::daemonGetLinkAppPath(2), "/app");
}

TEST_F(Preferences, AnIntegerLinkRecordIsTakenAsItIs) {
  writeText(preferenceFile(), xmlList("<key>Profile_4</key><integer>12</integer>"));
  EXPECT_EQ(library().getFWProfileIdByIndex(4), 12);
  EXPECT_EQ(library().fwProfileID()[4], 12U);
}

TEST_F(Preferences, LaunchPathsAreKeptBySlotAndButton) {
  EXPECT_EQ(library().getLaunchPath(2, 7), std::nullopt);
  EXPECT_TRUE(library().setLaunchPath("/usr/bin/game", 2, 7));
  EXPECT_EQ(library().getLaunchPath(2, 7), "/usr/bin/game");
  EXPECT_EQ(NerinAction::daemonGetLaunchPath(2, 7), "/usr/bin/game");
  EXPECT_EQ(library().getLaunchPath(7, 2), std::nullopt);
  EXPECT_EQ(NerinAction::daemonGetLaunchPath(2, 8), std::nullopt);
}

TEST_F(Preferences, ALaunchPathIsKeptWholeWhateverItsLength) {
  const std::string path = "/" + std::string(1000, 'p') + "/Sp\xC3\xA4ter & <co>";
  EXPECT_TRUE(library().setLaunchPath(path, 0, 0));
  EXPECT_EQ(library().getLaunchPath(0, 0), path);
}

TEST_F(Preferences, AProgramLinkHasItsPathAndItsSwitch) {
  bool isActive = true;
  EXPECT_EQ(library().getLinkAppPath(3, isActive), std::nullopt);
  EXPECT_FALSE(isActive);
  EXPECT_EQ(NerinAction::daemonGetLinkAppPath(3), std::nullopt);
  EXPECT_TRUE(library().setLinkAppPath("/app", 3, true));
  EXPECT_EQ(library().getLinkAppPath(3, isActive), "/app");
  EXPECT_TRUE(isActive);
  EXPECT_EQ(NerinAction::daemonGetLinkAppPath(3), "/app");
  EXPECT_EQ(library().getLinkAppPath(4, isActive), std::nullopt);
  EXPECT_FALSE(isActive);
}

TEST_F(Preferences, ALinkWithoutAPathIsAnEmptyOne) {
  EXPECT_TRUE(library().setLinkAppPath(std::nullopt, 3, true));
  bool isActive = false;
  EXPECT_EQ(library().getLinkAppPath(3, isActive), "");
  EXPECT_TRUE(isActive);
  EXPECT_EQ(NerinAction::daemonGetLinkAppPath(3), "");
  EXPECT_TRUE(library().setLinkAppPath(std::nullopt, 3, false));
  EXPECT_EQ(NerinAction::daemonGetLinkAppPath(3), std::nullopt);
}

TEST_F(Preferences, ALinkThatIsSwitchedOffIsHiddenFromTheServiceOnly) {
  EXPECT_TRUE(library().setLinkAppPath("/app", 3, false));
  bool isActive = true;
  EXPECT_EQ(library().getLinkAppPath(3, isActive), "/app");
  EXPECT_FALSE(isActive);
  EXPECT_EQ(NerinAction::daemonGetLinkAppPath(3), std::nullopt);
}

TEST_F(Preferences, LinksAndLinkRecordsOfOneNameAreKeptApart) {
  library().setFwProfileId(5, 2);
  EXPECT_TRUE(library().saveFWProfileIdByIndex(3));
  EXPECT_TRUE(library().setLinkAppPath("/app", 3, true));
  EXPECT_EQ(library().getFWProfileIdByIndex(3), 1);
  bool isActive = false;
  EXPECT_EQ(library().getLinkAppPath(3, isActive), "/app");
}

TEST_F(Preferences, ANewFileIsXml) {
  EXPECT_TRUE(library().setIsOSD(true));
  EXPECT_THAT(text(), AllOf(StartsWith("<?xml"), HasSubstr("<key>OSDTag</key>")));
}

TEST_F(Preferences, ABinaryFileStaysBinary) {
  writeText(preferenceFile(), binaryList(0));
  EXPECT_FALSE(library().isOSD());
  EXPECT_TRUE(library().setLaunchPath("/bin/x", 1, 2));
  EXPECT_THAT(text(), StartsWith("bplist00"));
  EXPECT_EQ(library().getLaunchPath(1, 2), "/bin/x");
  EXPECT_EQ(file().stringFor("Other"), "service");
  EXPECT_FALSE(library().isOSD());
}

TEST_F(Preferences, WhatTheServiceWroteMeanwhileSurvives) {
  EXPECT_TRUE(library().setIsOSD(true));
  writeText(preferenceFile(),
            xmlList("<key>ServiceKey</key><array><integer>1</integer><data>AAEC</data></array>"
                    "<key>LinkApp</key><dict><key>Foreign</key><real>1.5</real></dict>"));
  EXPECT_TRUE(library().setLaunchPath("/bin/x", 1, 2));
  EXPECT_TRUE(library().setLinkAppPath("/app", 0, true));
  EXPECT_THAT(text(), AllOf(HasSubstr("<key>ServiceKey</key>"), HasSubstr("AAEC"),
                            HasSubstr("<key>Foreign</key>"), HasSubstr("/bin/x")));
  EXPECT_EQ(file().boolFor("OSDTag"), std::nullopt);
}

TEST_F(Preferences, ABrokenFileIsSetAsideBeforeItIsReplaced) {
  for (const std::string broken : {"no list at all", "<?xml version=\"1.0\"?><plist><dict>",
                                   "bplist00garbage", "<plist><array/></plist>"}) {
    fs::remove_all(preferenceFile().parent_path());
    writeText(preferenceFile(), broken);
    EXPECT_TRUE(NerinAction::daemonGetOsd());
    EXPECT_EQ(library().getLaunchPath(1, 2), std::nullopt);
    EXPECT_EQ(text(), broken) << "reading must not change it";
    EXPECT_TRUE(library().setLaunchPath("/bin/x", 1, 2));
    EXPECT_EQ(library().getLaunchPath(1, 2), "/bin/x");
    const auto names = preferenceNames();
    ASSERT_EQ(names.size(), 2U) << broken;
    EXPECT_EQ(textOfFile(preferenceFile().parent_path() / names.back()), broken);
  }
}

TEST_F(Preferences, EveryBrokenFileIsKept) {
  for (int n = 0; n < 3; ++n) {
    writeText(preferenceFile(), "broken " + std::to_string(n));
    EXPECT_TRUE(library().setIsOSD(true));
  }
  const auto names = preferenceNames();
  EXPECT_EQ(names.size(), 4U);
  for (int n = 0; n < 3; ++n) {
    std::vector<std::string> texts;
    for (const auto& name : names) {
      texts.push_back(textOfFile(preferenceFile().parent_path() / name));
    }
    EXPECT_THAT(texts, Contains("broken " + std::to_string(n)));
  }
}

TEST_F(Preferences, ValuesOfAnotherKindCountAsMissing) {
  writeText(preferenceFile(), xmlList("<key>OSDTag</key><string>no</string>"
                                      "<key>Profile_1_2</key><integer>3</integer>"
                                      "<key>Profile_5</key><dict/>"
                                      "<key>LinkApp</key><string>x</string>"));
  EXPECT_TRUE(NerinAction::daemonGetOsd());
  EXPECT_EQ(library().getLaunchPath(1, 2), std::nullopt);
  EXPECT_EQ(library().getFWProfileIdByIndex(5), -1);
  EXPECT_EQ(NerinAction::daemonGetLinkAppPath(0), std::nullopt);
  EXPECT_TRUE(library().setLinkAppPath("/app", 0, true));
  EXPECT_EQ(NerinAction::daemonGetLinkAppPath(0), "/app");
}

TEST_F(Preferences, AWriteThatFailsLosesNothing) {
  fs::create_directories(preferenceFile());
  EXPECT_FALSE(library().setIsOSD(false));
  EXPECT_TRUE(fs::is_directory(preferenceFile()));
  EXPECT_TRUE(NerinAction::daemonGetOsd());
}

}  // namespace

#include <filesystem>

#include <gmock/gmock.h>

#include "Action/Catalogue/MacroInfo.h"
#include "Action/Catalogue/MenuInfo.h"
#include "Kit/Core/LXAction.h"
#include "Tests/Support/ActionTest.h"

// The encoded form of macros: archive files and copies.

namespace {

using testing::HasSubstr;
using testing::StartsWith;

class MacroFile : public ActionTest {
 protected:
  static MacroInfo sample() {
    MacroInfo macro;
    macro.setMacroId(7);
    macro.setNameStr("Sp\xC3\xA4ter");
    macro.setLoopTime(-3);
    macro.setIsNoDisplay(true);
    macro.keyInfoArr().push_back(std::make_shared<MacroKeyInfo>(49, 0, 300));
    macro.keyInfoArr().push_back(std::make_shared<MacroKeyInfo>(120, 4, -1));
    return macro;
  }

  const std::filesystem::path m_path = home() / "macro.mac";
};

TEST_F(MacroFile, WhatWasSavedIsRead) {
  const MacroInfo macro = sample();
  ASSERT_TRUE(LXAction::SaveObject(macro, m_path));
  EXPECT_THAT(textOfFile(m_path), StartsWith("bplist00"));
  const auto read = LXAction::CopyObject<MacroInfo>(m_path);
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->nameStr(), macro.nameStr());
  EXPECT_EQ(read->loopTime(), -3);
  EXPECT_TRUE(read->isNoDisplay());
  EXPECT_EQ(eventsOf(*read), (Events{{49, 0, 300}, {120, 4, -1}}));
}

TEST_F(MacroFile, TheIdIsNotPartOfIt) {
  ASSERT_TRUE(LXAction::SaveObject(sample(), m_path));
  EXPECT_EQ(LXAction::CopyObject<MacroInfo>(m_path)->macroId(), 0);
}

TEST_F(MacroFile, ACopySharesNoEvents) {
  const MacroInfo macro = sample();
  const auto copy = LXAction::CopyObject(macro);
  ASSERT_NE(copy, nullptr);
  copy->keyInfoArr().front()->setKeyCode(1);
  copy->keyInfoArr().pop_back();
  EXPECT_EQ(eventsOf(macro), (Events{{49, 0, 300}, {120, 4, -1}}));
}

TEST_F(MacroFile, AMacroWithoutANameOrEventsStaysSo) {
  const auto copy = LXAction::CopyObject(MacroInfo());
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->nameStr(), std::nullopt);
  EXPECT_TRUE(copy->keyInfoArr().empty());
}

TEST_F(MacroFile, AnXmlArchiveIsReadWithMissingKeysAsZero) {
  writeText(m_path, R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>
    <key>$archiver</key><string>NSKeyedArchiver</string>
    <key>$version</key><integer>100000</integer>
    <key>$top</key><dict><key>root</key><dict><key>CF$UID</key><integer>1</integer></dict></dict>
    <key>$objects</key><array><string>$null</string>
      <dict><key>$class</key><dict><key>CF$UID</key><integer>2</integer></dict>
        <key>loopTime</key><integer>5</integer></dict>
      <dict><key>$classname</key><string>MacroInfo</string>
        <key>$classes</key><array><string>MacroInfo</string><string>NSObject</string></array></dict>
    </array></dict></plist>)");
  const auto macro = LXAction::CopyObject<MacroInfo>(m_path);
  ASSERT_NE(macro, nullptr);
  EXPECT_EQ(macro->loopTime(), 5);
  EXPECT_EQ(macro->nameStr(), std::nullopt);
  EXPECT_TRUE(macro->keyInfoArr().empty());
}

TEST_F(MacroFile, AnythingElseIsNoMacro) {
  EXPECT_EQ(LXAction::CopyObject<MacroInfo>(m_path), nullptr);
  for (const char* bytes : {"", "bplist00", "<plist><dict/></plist>", "text"}) {
    writeText(m_path, bytes);
    EXPECT_EQ(LXAction::CopyObject<MacroInfo>(m_path), nullptr) << bytes;
  }
  ASSERT_TRUE(LXAction::SaveObject(MacroKeyInfo(1, 2, 3), m_path));
  EXPECT_EQ(LXAction::CopyObject<MacroInfo>(m_path), nullptr) << "an archive of another class";
  EXPECT_EQ(LXAction::CopyObject<MacroInfo>(home()), nullptr);
}

TEST_F(MacroFile, ADamagedArchiveDoesNoHarm) {
  ASSERT_TRUE(LXAction::SaveObject(sample(), m_path));
  const std::string whole = textOfFile(m_path);
  for (std::size_t at = 0; at < whole.size(); ++at) {
    for (const char change : {'\0', '\xFF', '\x51'}) {
      std::string damaged = whole;
      damaged[at] = change;
      writeText(m_path, damaged);
      const auto macro = LXAction::CopyObject<MacroInfo>(m_path);
      if (macro) {
        macro->getMacroCount();
      }
    }
    writeText(m_path, whole.substr(0, at));
    EXPECT_EQ(LXAction::CopyObject<MacroInfo>(m_path), nullptr);
  }
}

TEST_F(MacroFile, AFailedWriteIsTold) {
  EXPECT_FALSE(LXAction::SaveObject(sample(), home() / "missing" / "macro.mac"));
}

TEST_F(MacroFile, AMenuEntryKeepsItsNumbersAndItsMacro) {
  MenuInfo entry;
  entry.setFunctionID(1);
  entry.setFunctionTableID(2);
  entry.setTypeTag(3);
  entry.setKeyBit1(4);
  entry.setKeyBit2(5);
  entry.setKeyBit3(6);
  entry.setKeyBit4(7);
  entry.setNeedSepretor(true);
  entry.setSaveTag(false);
  entry.setToolTipTag("tag");
  entry.setTitleStr("title");
  entry.setMacroInfo(std::make_shared<MacroInfo>(sample()));
  const auto copy = LXAction::CopyObject(entry);
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->functionID(), 1);
  EXPECT_EQ(copy->functionTableID(), 2);
  EXPECT_EQ(copy->typeTag(), 3);
  EXPECT_EQ(copy->KeyBit1(), 4);
  EXPECT_EQ(copy->KeyBit2(), 5);
  EXPECT_EQ(copy->KeyBit3(), 6);
  EXPECT_EQ(copy->KeyBit4(), 7);
  EXPECT_TRUE(copy->needSepretor());
  EXPECT_FALSE(copy->saveTag());
  EXPECT_EQ(copy->macroInfo()->nameStr(), "Sp\xC3\xA4ter");
  EXPECT_EQ(copy->macroInfo()->keyInfoArr().size(), 2U);
  // The encoded form has neither text.
  EXPECT_EQ(copy->toolTipTag(), "");
  EXPECT_EQ(copy->titleStr(), "");
}

TEST_F(MacroFile, TheArchiveNamesItsClasses) {
  ASSERT_TRUE(LXAction::SaveObject(sample(), m_path));
  EXPECT_THAT(textOfFile(m_path),
              testing::AllOf(HasSubstr("NSKeyedArchiver"), HasSubstr("MacroInfo"),
                             HasSubstr("MacroKeyInfo"), HasSubstr("NSMutableArray"),
                             HasSubstr("keyInfoArr"), HasSubstr("isNoDisplay")));
}

}  // namespace

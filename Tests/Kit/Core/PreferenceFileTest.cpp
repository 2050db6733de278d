#include <cerrno>
#include <chrono>
#include <thread>

#include <gtest/gtest.h>

#include "Kit/Core/DurableFile.h"
#include "Kit/Core/FileLock.h"
#include "Kit/Core/PreferenceFile.h"
#include "Kit/Core/PropertyList.h"
#include "Tests/Support/FailingDisk.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* xmlHead = R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0">)";

class Preferences : public testing::Test {
 protected:
  void put(const std::string& content) const { writeText(m_path, xmlHead + content + "</plist>"); }

  // What is there beside the lock.
  std::vector<std::string> files() const {
    std::vector<std::string> names = namesIn(m_scratch.folder());
    std::erase(names, ".com.example.plist.lock");
    return names;
  }

  Scratch m_scratch;
  fs::path m_path = m_scratch / "com.example.plist";
  PreferenceFile m_file{m_path};
};

}  // namespace

TEST_F(Preferences, HaveNothingWithoutAFile) {
  EXPECT_EQ(m_file.boolFor("OSDTag"), std::nullopt);
  EXPECT_EQ(m_file.integerFor("OSDTag"), std::nullopt);
  EXPECT_EQ(m_file.stringFor("OSDTag"), std::nullopt);
  EXPECT_FALSE(m_file.hasDictionary("LinkApp"));
  EXPECT_EQ(m_file.stringFor("LinkApp", "a"), std::nullopt);
  EXPECT_FALSE(fs::exists(m_path)) << "reading makes no file";
}

TEST_F(Preferences, KeepWhatIsStored) {
  EXPECT_TRUE(m_file.setValue("OSDTag", false));
  EXPECT_TRUE(m_file.setValue("path", "/opt/a b <&> \u00E4"));
  EXPECT_TRUE(m_file.setValues("LinkApp", {{"a", "x"}, {"b", true}}));
  EXPECT_TRUE(m_file.setValues("LinkApp", {{"a", "y"}}));
  EXPECT_EQ(m_file.boolFor("OSDTag"), false);
  EXPECT_EQ(m_file.integerFor("OSDTag"), 0);
  EXPECT_EQ(m_file.stringFor("path"), "/opt/a b <&> \u00E4");
  EXPECT_TRUE(m_file.hasDictionary("LinkApp"));
  EXPECT_EQ(m_file.stringFor("LinkApp", "a"), "y");
  EXPECT_EQ(m_file.boolFor("LinkApp", "b"), true);
}

TEST_F(Preferences, AreXmlInAFolderOfTheirOwnWhenNew) {
  const fs::path below = m_scratch / "Library/Preferences/new.plist";
  EXPECT_TRUE(PreferenceFile(below).setValue("OSDTag", true));
  EXPECT_TRUE(textOfFile(below).starts_with("<?xml"));
}

TEST_F(Preferences, ReadNumbersAsBooleansAndBooleansAsNumbers) {
  put("<dict><key>one</key><integer>1</integer><key>nought</key><integer>0</integer>"
      "<key>real</key><real>0.5</real><key>yes</key><true/>"
      "<key>negative</key><integer>-3</integer></dict>");
  EXPECT_EQ(m_file.boolFor("one"), true);
  EXPECT_EQ(m_file.boolFor("nought"), false);
  EXPECT_EQ(m_file.boolFor("negative"), true);
  EXPECT_EQ(m_file.integerFor("yes"), 1);
  EXPECT_EQ(m_file.integerFor("negative"), -3);
  EXPECT_EQ(m_file.integerFor("real"), 0);
}

TEST_F(Preferences, HaveNothingUnderAKeyOfAnotherKind) {
  put("<dict><key>text</key><string>1</string><key>list</key><array/><key>flag</key><true/></"
      "dict>");
  EXPECT_EQ(m_file.boolFor("text"), std::nullopt);
  EXPECT_EQ(m_file.integerFor("list"), std::nullopt);
  EXPECT_EQ(m_file.stringFor("flag"), std::nullopt);
  EXPECT_FALSE(m_file.hasDictionary("list"));
  EXPECT_EQ(m_file.stringFor("text", "a"), std::nullopt);
}

TEST_F(Preferences, MakeADictionaryWhereSomethingElseWas) {
  put("<dict><key>LinkApp</key><string>odd</string></dict>");
  EXPECT_TRUE(m_file.setValues("LinkApp", {{"a", "x"}}));
  EXPECT_EQ(m_file.stringFor("LinkApp", "a"), "x");
}

TEST_F(Preferences, KeepTheFormAndEverythingElseOfAFileByAnotherProgram) {
  for (const char* form : {"xml", "binary"}) {
    ASSERT_TRUE(python(std::string("write-") + form, m_path));
    ASSERT_TRUE(m_file.setValue("OSDTag", false));
    EXPECT_EQ(m_file.boolFor("OSDTag"), false);
    ASSERT_TRUE(m_file.setValue("OSDTag", true));
    EXPECT_TRUE(python("check", m_path)) << form;
    EXPECT_EQ(textOfFile(m_path).starts_with("bplist00"), std::string(form) == "binary");
  }
}

TEST_F(Preferences, SetAsideEveryBrokenFile) {
  const LogLines log;
  writeText(m_path, "broken");
  EXPECT_TRUE(m_file.setValue("OSDTag", true));
  EXPECT_EQ(m_file.boolFor("OSDTag"), true);
  EXPECT_EQ(textOfFile(m_path.string() + ".broken"), "broken");
  put("<array><true/></array>");
  EXPECT_TRUE(m_file.setValues("LinkApp", {{"a", "x"}}));
  EXPECT_NE(textOfFile(m_path.string() + ".broken-2").find("<array>"), std::string::npos);
  EXPECT_EQ(textOfFile(m_path.string() + ".broken"), "broken");
  EXPECT_TRUE(log.has("was kept as"));
}

TEST_F(Preferences, ReadNothingFromABrokenFileAndLeaveItThere) {
  writeText(m_path, "bplist00 broken");
  EXPECT_EQ(m_file.boolFor("OSDTag"), std::nullopt);
  EXPECT_EQ(textOfFile(m_path), "bplist00 broken");
}

TEST_F(Preferences, TakeAnEmptyFileForANewOne) {
  writeText(m_path, "");
  EXPECT_TRUE(m_file.setValue("OSDTag", true));
  EXPECT_EQ(files(), std::vector<std::string>{"com.example.plist"});
}

TEST_F(Preferences, AreNotWrittenOverWhatCannotBeRead) {
  fs::create_directory(m_path);
  const LogLines log;
  EXPECT_FALSE(m_file.setValue("OSDTag", true));
  EXPECT_TRUE(fs::is_directory(m_path));
  EXPECT_TRUE(log.has("cannot be read"));
}

TEST_F(Preferences, RefuseTextsThatAPropertyListCannotHold) {
  ASSERT_TRUE(m_file.setValue("path", "good"));
  const std::string before = textOfFile(m_path);
  for (const std::string& text :
       {std::string("\xFF"), std::string("a\0b", 3), std::string("\x1B")}) {
    const LogLines log;
    EXPECT_FALSE(m_file.setValue("path", text));
    EXPECT_FALSE(m_file.setValues("LinkApp", {{"a", "fine"}, {"b", text}}));
    EXPECT_EQ(log.lines().size(), 2U);
  }
  EXPECT_EQ(textOfFile(m_path), before);
}

TEST_F(Preferences, AreTheOldOnesOrTheNewOnesWhicheverStepFails) {
  const LogLines log;
  const int steps = FailingDisk{ENOSPC}.failEachStep(
      [&] { put("<dict><key>OSDTag</key><false/><key>service</key><string>s</string></dict>"); },
      [&] { static_cast<void>(m_file.setValue("OSDTag", true)); },
      [&](const std::string& step) {
        EXPECT_TRUE(m_file.boolFor("OSDTag").has_value()) << step;
        EXPECT_EQ(m_file.stringFor("service"), "s") << step;
        EXPECT_EQ(files(), std::vector<std::string>{"com.example.plist"});
      });
  EXPECT_GE(steps, 9);
  EXPECT_EQ(m_file.boolFor("OSDTag"), true);
}

TEST_F(Preferences, StayBehindASymbolicLink) {
  fs::create_symlink("real.plist", m_path);
  EXPECT_TRUE(m_file.setValue("OSDTag", true));
  EXPECT_TRUE(m_file.setValue("OSDTag", false));
  EXPECT_TRUE(fs::is_symlink(m_path));
  EXPECT_EQ(PreferenceFile(m_scratch / "real.plist").boolFor("OSDTag"), false);
}

TEST_F(Preferences, OfTwoProgramsThatChangeDifferentKeysAtOnceAreAllKept) {
  constexpr int changes = 40;
  const auto changeFrom = [this](const std::string& program) {
    for (int n = 0; n < changes; ++n) {
      // Where the other one is at work too long, the caller hears it and can try again.
      while (!PreferenceFile(m_path).setValue(program + std::to_string(n), true)) {
      }
    }
  };
  std::thread one(changeFrom, "one");
  std::thread other(changeFrom, "other");
  one.join();
  other.join();
  int lost = 0;
  for (int n = 0; n < changes; ++n) {
    for (const char* program : {"one", "other"}) {
      lost += m_file.boolFor(program + std::to_string(n)) ? 0 : 1;
    }
  }
  EXPECT_EQ(lost, 0);
}

TEST_F(Preferences, AreNotWaitedForWhenAnotherProgramKeepsThem) {
  EXPECT_TRUE(m_file.setValue("OSDTag", false));
  {
    const auto other =
        FileLock::acquire(m_scratch / ".com.example.plist.lock", std::chrono::milliseconds(0));
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_FALSE(m_file.setValue("OSDTag", true));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
    EXPECT_EQ(m_file.boolFor("OSDTag"), false);
  }
  EXPECT_TRUE(m_file.setValue("OSDTag", true));
}

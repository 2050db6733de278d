#include <limits>

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include "Kit/Core/LXAction.h"
#include "Kit/Core/LXPlatform.h"
#include "Tests/Support/FailingDisk.h"

namespace fs = std::filesystem;

namespace {

constexpr std::int32_t maximum = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t minimum = std::numeric_limits<std::int32_t>::min();

// Helpers that depend on the platform.
class Action : public testing::Test {
 protected:
  Action() {
    fs::create_directory(m_scratch / "resources");
    fs::create_directory(m_scratch / "support");
    install(std::nullopt);
  }
  ~Action() override {
    LXAction::setLoggerHasFile(false);
    LXPlatform::install({});
  }

  void install(std::optional<std::string> language) {
    LXPlatform platform;
    platform.homeFolder = m_scratch / "home";
    platform.resourceFolder = m_scratch / "resources";
    platform.preferredLanguage = std::move(language);
    platform.open = [this](const std::string& what) {
      m_opened = what;
      return true;
    };
    LXPlatform::install(std::move(platform));
  }

  std::optional<std::string> languageFor(const std::string& preferred) {
    install(preferred);
    return LXAction::getSysLanName();
  }

  Scratch m_scratch;
  fs::path m_support = m_scratch / "support";
  std::string m_opened;
};

class Counter final : public LXCoding {
 public:
  std::int32_t count = 0;
  std::string_view className() const override { return "Counter"; }
  void encodeWithCoder(LXKeyedArchiver& coder) const override { coder.encodeInt(count, "count"); }
  void initWithCoder(LXKeyedUnarchiver& coder) override { count = coder.decodeInt("count"); }
};

class Other final : public LXCoding {
 public:
  std::string_view className() const override { return "Other"; }
  void encodeWithCoder(LXKeyedArchiver&) const override {}
  void initWithCoder(LXKeyedUnarchiver&) override {}
};

}  // namespace

TEST_F(Action, ReadsHexadecimalNumbers) {
  EXPECT_EQ(LXAction::getIntValueByHex("F"), 15);
  EXPECT_EQ(LXAction::getIntValueByHex("10"), 16);
  EXPECT_EQ(LXAction::getIntValueByHex("15"), 21);
  EXPECT_EQ(LXAction::getIntValueByHex("ff"), 255);
  EXPECT_EQ(LXAction::getIntValueByHex(" 0xFf\n"), 255);
  EXPECT_EQ(LXAction::getIntValueByHex("0X1a"), 26);
  EXPECT_EQ(LXAction::getIntValueByHex("7FFFFFFF"), maximum);
  EXPECT_EQ(LXAction::getIntValueByHex("FFFFFFFF"), -1);
}

TEST_F(Action, ReadsWhatIsNoHexadecimalNumberAsZero) {
  for (const char* text : {"", " ", "0x", "G", "1G", "-1", "+1", "1 2", "100000000", "1.5"}) {
    EXPECT_EQ(LXAction::getIntValueByHex(text), 0) << text;
  }
}

TEST_F(Action, ReadsTheDecimalNumberThatATextBeginsWith) {
  EXPECT_EQ(LXAction::getIntValue("10"), 10);
  EXPECT_EQ(LXAction::getIntValue(" \t-7"), -7);
  EXPECT_EQ(LXAction::getIntValue("+7"), 7);
  EXPECT_EQ(LXAction::getIntValue("12 apples"), 12);
  EXPECT_EQ(LXAction::getIntValue("3.9"), 3);
  EXPECT_EQ(LXAction::getIntValue("0x10"), 0);
  for (const char* text : {"", " ", "-", "+", "apples", "F"}) {
    EXPECT_EQ(LXAction::getIntValue(text), 0) << text;
  }
}

TEST_F(Action, BoundsDecimalNumbers) {
  EXPECT_EQ(LXAction::getIntValue("2147483647"), maximum);
  EXPECT_EQ(LXAction::getIntValue("2147483648"), maximum);
  EXPECT_EQ(LXAction::getIntValue("99999999999999999999"), maximum);
  EXPECT_EQ(LXAction::getIntValue("-2147483648"), minimum);
  EXPECT_EQ(LXAction::getIntValue("-99999999999999999999"), minimum);
}

TEST_F(Action, GivesAnEmptyTextForNone) {
  EXPECT_EQ(LXAction::getNonullStr(std::nullopt), "");
  EXPECT_EQ(LXAction::getNonullStr("text"), "text");
}

TEST_F(Action, TellsAMissingAttributeFromAnEmptyOne) {
  pugi::xml_document document;
  ASSERT_TRUE(
      document.load_string("<Item title='a' empty=''><LoopTime>3</LoopTime><None/></Item>"));
  const pugi::xml_node item = document.document_element();
  EXPECT_EQ(LXAction::getNodeAtrValue(item, "title"), "a");
  EXPECT_EQ(LXAction::getNodeAtrValue(item, "empty"), "");
  EXPECT_EQ(LXAction::getNodeAtrValue(item, "Title"), std::nullopt);
  EXPECT_EQ(LXAction::getNodeValue(item, "LoopTime"), "3");
  EXPECT_EQ(LXAction::getNodeValue(item, "None"), "");
  EXPECT_EQ(LXAction::getNodeValue(item, "Absent"), std::nullopt);
  EXPECT_EQ(LXAction::getNodeValue({}, "LoopTime"), std::nullopt);
}

TEST_F(Action, MakesAFolderWithAllAboveIt) {
  const fs::path folder = m_scratch / "a/b/c";
  EXPECT_TRUE(LXAction::creatDirectoryPro(folder));
  EXPECT_TRUE(fs::is_directory(folder));
  EXPECT_TRUE(LXAction::creatDirectoryPro(folder));
  writeText(m_scratch / "file", "");
  const LogLines log;
  EXPECT_FALSE(LXAction::creatDirectoryPro(m_scratch / "file"));
  EXPECT_FALSE(LXAction::creatDirectoryPro(m_scratch / "file/below"));
  EXPECT_EQ(log.lines().size(), 2U);
}

TEST_F(Action, CopiesAResourceIntoAFolderThatLacksIt) {
  writeText(m_scratch / "resources/MenuInfo.xml", "shipped");
  EXPECT_TRUE(LXAction::checkAddCopyFileFromResourceWithPath(m_support, "MenuInfo.xml"));
  EXPECT_EQ(textOfFile(m_support / "MenuInfo.xml"), "shipped");
}

TEST_F(Action, LeavesTheFileThatAFolderHas) {
  writeText(m_scratch / "resources/MenuInfo.xml", "shipped");
  writeText(m_support / "MenuInfo.xml", "the user's");
  EXPECT_TRUE(LXAction::checkAddCopyFileFromResourceWithPath(m_support, "MenuInfo.xml"));
  EXPECT_EQ(textOfFile(m_support / "MenuInfo.xml"), "the user's");
}

TEST_F(Action, TellsThatAResourceCannotBeCopied) {
  EXPECT_FALSE(LXAction::checkAddCopyFileFromResourceWithPath(m_support, "None.xml"));
  fs::create_directory(m_scratch / "resources/Folder.xml");
  EXPECT_FALSE(LXAction::checkAddCopyFileFromResourceWithPath(m_support, "Folder.xml"));
  writeText(m_scratch / "resources/MenuInfo.xml", "shipped");
  EXPECT_FALSE(LXAction::checkAddCopyFileFromResourceWithPath(m_scratch / "none", "MenuInfo.xml"));
  EXPECT_TRUE(namesIn(m_support).empty());
}

TEST_F(Action, NamesLanguagesAsTheTextCatalogueDoes) {
  EXPECT_EQ(languageFor("en"), "en");
  EXPECT_EQ(languageFor("de-AT"), "de");
  EXPECT_EQ(languageFor("de_AT.UTF-8@euro"), "de");
  EXPECT_EQ(languageFor("FR_ca"), "fr");
  EXPECT_EQ(languageFor("es-419"), "es");
  EXPECT_EQ(languageFor("xx-YY"), "xx") << "one that the catalogue does not know";
}

TEST_F(Action, TellsTheChineseScriptsApart) {
  for (const char* code : {"zh-TW", "zh_TW.UTF-8", "zh-HK", "zh-Hant", "zh-Hant-TW", "ZH_hk"}) {
    EXPECT_EQ(languageFor(code), "zh-Hant") << code;
  }
  for (const char* code : {"zh", "zh-CN", "zh_SG.UTF-8", "zh-Hans", "zh-Hans-HK", "zh-MO"}) {
    EXPECT_EQ(languageFor(code), "zh-Hans") << code;
  }
}

TEST_F(Action, KnowsOnlyThePortugueseOfBrazil) {
  EXPECT_EQ(languageFor("pt-BR"), "pt-BR");
  EXPECT_EQ(languageFor("pt_BR.UTF-8"), "pt-BR");
  EXPECT_EQ(languageFor("pt-PT"), "pt-PT");
  EXPECT_EQ(languageFor("pt"), "pt");
}

TEST_F(Action, HasNoLanguageWhereTheSystemNamesNone) {
  EXPECT_EQ(LXAction::getSysLanName(), std::nullopt);
  for (const char* code : {"", "C", "POSIX", "C.UTF-8"}) {
    EXPECT_EQ(languageFor(code), std::nullopt) << code;
  }
}

TEST_F(Action, SavesAnObjectAndReadsItBack) {
  Counter counter;
  counter.count = -5;
  const fs::path file = m_scratch / "counter.mac";
  ASSERT_TRUE(LXAction::SaveObject(counter, file));
  const auto read = LXAction::CopyObject<Counter>(file);
  ASSERT_TRUE(read);
  EXPECT_EQ(read->count, -5);
  EXPECT_EQ(LXAction::CopyObject<Other>(file), nullptr);
}

TEST_F(Action, ReadsNoObjectFromSomethingElse) {
  EXPECT_EQ(LXAction::CopyObject<Counter>(m_scratch / "none"), nullptr);
  EXPECT_EQ(LXAction::CopyObject<Counter>(m_scratch.folder()), nullptr);
  writeText(m_scratch / "empty", "");
  EXPECT_EQ(LXAction::CopyObject<Counter>(m_scratch / "empty"), nullptr);
  writeText(m_scratch / "text", "count=5");
  EXPECT_EQ(LXAction::CopyObject<Counter>(m_scratch / "text"), nullptr);
}

TEST_F(Action, TellsAndLogsThatAnObjectWasNotSaved) {
  const LogLines log;
  EXPECT_FALSE(LXAction::SaveObject(Counter(), m_scratch / "none/counter.mac"));
  EXPECT_TRUE(log.has("counter.mac was not written"));
}

TEST_F(Action, CopiesAnObjectDeeply) {
  Counter counter;
  counter.count = 3;
  const auto copy = LXAction::CopyObject(counter);
  counter.count = 4;
  ASSERT_TRUE(copy);
  EXPECT_EQ(copy->count, 3);
}

TEST_F(Action, OpensFilesAndPagesWithThePlatform) {
  EXPECT_TRUE(LXAction::openFile("/help.pdf"));
  EXPECT_EQ(m_opened, "/help.pdf");
  EXPECT_TRUE(LXAction::openPage("https://example.org"));
  EXPECT_EQ(m_opened, "https://example.org");
}

TEST_F(Action, SwitchesTheLogIntoTheUsersFolderOfLogs) {
  const fs::path file = m_scratch / "home/Library/Logs/com.corvex.NerinOption.log";
  LXAction::setLoggerTempLevel();
  LXAction::setLoggerHasFile(true);
  LXLogger::debug("inside");
  LXAction::setLoggerHasFile(false);
  LXLogger::debug("outside");
  const std::string text = textOfFile(file);
  EXPECT_NE(text.find("inside"), std::string::npos);
  EXPECT_EQ(text.find("outside"), std::string::npos);
}

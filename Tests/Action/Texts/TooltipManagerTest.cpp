#include <filesystem>

#include <gmock/gmock.h>

#include "Action/Texts/TooltipManager.h"
#include "Tests/Support/ActionTest.h"

namespace {

namespace fs = std::filesystem;

using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* texts = R"xml(<?xml version="1.0" encoding="UTF-8"?>
<Anything>
  <Lan name="US">
    <Item name="save" text="Save settings." viewID="1" btnID="100"/>
    <Item name="dots" text="More.." viewID="1" btnID="101"/>
    <Item name="twice" text="first" viewID="2" btnID="7"/>
    <Item name="twice" text="second" viewID="2" btnID="7"/>
    <Item name="english only" text="English" viewID="3" btnID="08"/>
    <Other name="other" text="no text" viewID="4" btnID="1"/>
  </Lan>
  <Lan name="German">
    <Item name="save" text="Einstellungen sichern." viewID="1" btnID="100"/>
    <Item name="empty" text="" viewID="1" btnID="102"/>
  </Lan>
  <Lan name="TC"/>
  <Lan name="SC"/>
  <Lan name="Portuguese(Brazil)"/>
</Anything>)xml";

class Tooltips : public ActionTest {
 protected:
  static TooltipManager& manager() { return TooltipManager::shareTooltipManager(); }

  void begin(std::string_view xml, std::optional<std::string> language = std::nullopt) {
    writeText(supportFolder() / "Tooltip.xml", xml);
    speak(std::move(language));
  }
  // Restarts the program in that language.
  void speak(std::optional<std::string> language) {
    TooltipManager::releaseTooltipManager();
    setPreferredLanguage(std::move(language));
  }
  std::string chosen(const std::string& language) {
    speak(language);
    return manager().currLan()->name.value_or("");
  }
};

TEST_F(Tooltips, AreShippedAndCopiedIntoTheSupportFolder) {
  EXPECT_EQ(&manager(), &manager());
  EXPECT_TRUE(fs::exists(supportFolder() / "Tooltip.xml"));
  ASSERT_FALSE(manager().infoList().empty());
  EXPECT_EQ(manager().engLan()->name, "US");
  for (const char* key : {"Disable", "MACRO KEY", "YES", "NO"}) {
    EXPECT_NE(manager().getTooltip(key).value_or(""), "") << key;
  }
  EXPECT_EQ(manager().getTooltip("NoTooltip"), "");
}

TEST_F(Tooltips, LoseOneFinalPeriod) {
  begin(texts);
  EXPECT_EQ(manager().getTooltip("save"), "Save settings");
  EXPECT_EQ(manager().getTooltip("dots"), "More.");
  EXPECT_EQ(manager().getTooltip(1, "100"), "Save settings");
}

TEST_F(Tooltips, AreTheFirstOfTheirKey) {
  begin(texts);
  EXPECT_EQ(manager().getTooltip("twice"), "first");
  EXPECT_EQ(manager().getTooltip(2, "7"), "first");
}

TEST_F(Tooltips, FallBackToTheFirstLanguage) {
  begin(texts, "de");
  EXPECT_EQ(manager().currLan()->name, "German");
  EXPECT_EQ(manager().getTooltip("save"), "Einstellungen sichern");
  EXPECT_EQ(manager().getTooltip("english only"), "English");
  EXPECT_EQ(manager().getTooltip(3, "08"), "English");
  EXPECT_EQ(manager().getTooltip("missing"), std::nullopt);
  EXPECT_EQ(manager().getTooltip(99, "1"), std::nullopt);
  EXPECT_EQ(manager().getTooltip("empty"), "");
}

TEST_F(Tooltips, OfALanguageAreReadWhenItIsSelected) {
  begin(texts);
  const LanData* german = nullptr;
  for (const auto& language : manager().infoList()) {
    if (language->name == "German") {
      german = language.get();
    }
  }
  ASSERT_NE(german, nullptr);
  EXPECT_THAT(german->tooltips, IsEmpty());
  manager().setLanByname("German");
  EXPECT_EQ(manager().currLan(), german);
  EXPECT_EQ(manager().getTooltip("save"), "Einstellungen sichern");
  const std::size_t count = german->tooltips.size();
  manager().setLanByname("US");
  EXPECT_EQ(manager().getTooltip("save"), "Save settings");
  manager().setLanByname("German");
  EXPECT_EQ(german->tooltips.size(), count);
}

TEST_F(Tooltips, OfALanguageThatCannotBeReadAnyMoreAreThoseOfTheFirst) {
  for (const char* now : {"", "<Tooltip", "<Tooltip><Lan name='US'/></Tooltip>"}) {
    begin(texts);
    EXPECT_EQ(manager().getTooltip("save"), "Save settings");
    writeText(supportFolder() / "Tooltip.xml", now);
    manager().setLanByname("German");
    EXPECT_EQ(manager().currLan()->name, "German");
    EXPECT_EQ(manager().getTooltip("save"), "Save settings") << now;
  }
}

TEST_F(Tooltips, OfAControlAreFoundByItsTagAsText) {
  begin(texts);
  EXPECT_EQ(manager().getTooltip(3, "8"), std::nullopt);
  EXPECT_EQ(manager().getTooltip(4, "1"), std::nullopt);
  EXPECT_EQ(manager().getTooltip(2, "100"), std::nullopt);
}

TEST_F(Tooltips, ALanguageThatIsNotInTheTableIsTheFirst) {
  begin(texts);
  EXPECT_EQ(chosen("nl"), "US");
  EXPECT_EQ(chosen("pt-PT"), "US");
  EXPECT_EQ(chosen("pt_PT.UTF-8"), "US");
  EXPECT_EQ(chosen("C"), "US");
  EXPECT_EQ(chosen(""), "US");
}

TEST_F(Tooltips, ALanguageWithoutASectionIsTheFirst) {
  begin(texts);
  EXPECT_EQ(chosen("ja"), "US");
}

TEST_F(Tooltips, LanguagesAreChosenByTheirNormalisedCode) {
  begin(texts);
  EXPECT_EQ(chosen("de-AT"), "German");
  EXPECT_EQ(chosen("de_AT.UTF-8"), "German");
  EXPECT_EQ(chosen("zh-TW"), "TC");
  EXPECT_EQ(chosen("zh_HK.UTF-8"), "TC");
  EXPECT_EQ(chosen("zh-Hant"), "TC");
  EXPECT_EQ(chosen("zh-Hans"), "SC");
  EXPECT_EQ(chosen("zh_CN.UTF-8"), "SC");
  EXPECT_EQ(chosen("zh"), "SC");
  EXPECT_EQ(chosen("pt-BR"), "Portuguese(Brazil)");
  EXPECT_EQ(chosen("pt_BR.UTF-8"), "Portuguese(Brazil)");
  EXPECT_EQ(chosen("en_GB"), "US");
}

TEST_F(Tooltips, EveryLanguageOfTheTableHasItsName) {
  const std::pair<const char*, const char*> table[] = {
      {"en", "US"},       {"zh-Hant", "TC"}, {"zh-Hans", "SC"}, {"cs", "Czech"},
      {"fr", "French"},   {"de", "German"},  {"el", "Greek"},   {"it", "Italian"},
      {"ja", "Japanese"}, {"ko", "Korean"},  {"pl", "Polish"},  {"pt-BR", "Portuguese(Brazil)"},
      {"ru", "Russian"},  {"es", "Spanish"}, {"tr", "Turkish"}};
  for (const auto& [code, name] : table) {
    setPreferredLanguage(code);
    EXPECT_EQ(TooltipManager::getSysLanName(), name);
  }
  setPreferredLanguage("nl");
  EXPECT_EQ(TooltipManager::getSysLanName(), std::nullopt);
  setPreferredLanguage(std::nullopt);
  EXPECT_EQ(TooltipManager::getSysLanName(), "US");
}

TEST_F(Tooltips, TheLanguageCanBeChangedByName) {
  begin(texts);
  manager().setLanByname("German");
  EXPECT_EQ(manager().getTooltip("save"), "Einstellungen sichern");
  manager().setLanByname("german");
  EXPECT_EQ(manager().getTooltip("save"), "Save settings");
  manager().setLanByname("German");
  manager().setLanByname(std::nullopt);
  EXPECT_EQ(manager().currLan(), manager().engLan());
}

TEST_F(Tooltips, AControlIsFoundByViewAndKeyWhateverTheText) {
  begin(texts);
  const LanData& language = *manager().engLan();
  EXPECT_EQ(TooltipManager::getBtnIdBy(language, "save", "anything", 1), "100");
  EXPECT_EQ(TooltipManager::getBtnIdBy(language, "save", "", 2), std::nullopt);
  EXPECT_EQ(TooltipManager::getBtnIdBy(language, "Save", "", 1), std::nullopt);
}

TEST_F(Tooltips, WithoutAnyFileAreNone) {
  setResourceFolder(home());
  EXPECT_THAT(manager().infoList(), IsEmpty());
  EXPECT_EQ(manager().getTooltip("save"), std::nullopt);
  EXPECT_EQ(manager().getTooltip(1, "100"), std::nullopt);
  manager().setLanByname("US");
  EXPECT_EQ(manager().currLan(), nullptr);
  EXPECT_EQ(manager().engLan(), nullptr);
}

TEST_F(Tooltips, BrokenFilesGiveWayToTheShippedOne) {
  for (const char* xml : {"", "x", "<T><Lan name='US'>"}) {
    begin(xml);
    EXPECT_EQ(manager().getTooltip("Disable"), "Disable") << xml;
  }
}

TEST_F(Tooltips, ForeignFilesAreNone) {
  for (const char* xml :
       {"<T/>", "<T><Language name='US'/></T>", "<Lan name='US'><Item name='a' text='b'/></Lan>"}) {
    begin(xml);
    EXPECT_THAT(manager().infoList(), IsEmpty()) << xml;
    EXPECT_EQ(manager().getTooltip("a"), std::nullopt);
    EXPECT_EQ(textOfFile(supportFolder() / "Tooltip.xml"), xml);
  }
}

TEST_F(Tooltips, AreLoadedAgainInPlaceOfTheOldOnes) {
  begin(texts);
  manager().initData();
  EXPECT_THAT(manager().infoList(), SizeIs(5));
  EXPECT_EQ(manager().getTooltip("save"), "Save settings");
}

TEST_F(Tooltips, MissingAttributesAreNoTexts) {
  begin("<T><Lan><Item/><Item name='a'/></Lan></T>");
  EXPECT_EQ(manager().getTooltip("a"), std::nullopt);
  EXPECT_EQ(manager().getTooltip(0, ""), std::nullopt);
  EXPECT_EQ(manager().engLan()->name, std::nullopt);
}

TEST_F(Tooltips, KeepTheirWhitespace) {
  begin("<T><Lan name='US'><Item name='a' text='  two&#10;lines  '/></Lan></T>");
  EXPECT_EQ(manager().getTooltip("a"), "  two\nlines  ");
}

}  // namespace

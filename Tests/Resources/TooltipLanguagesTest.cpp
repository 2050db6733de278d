#include <algorithm>
#include <cctype>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pugixml.hpp>

#include "Tests/Resources/CatalogueFile.h"
#include "Tests/Resources/WindowWords.h"

// The translations that ship, compared with the English texts.

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

// The names by which the program chooses a language.
constexpr const char* translations[] = {
    "German",  "French",   "Spanish", "Italian", "Portuguese(Brazil)",
    "Russian", "Japanese", "Korean",  "TC",      "SC",
    "Czech",   "Greek",    "Polish",  "Turkish",
};

// The words that are the same in English, and in which languages. Everything else that is equal to
// English was left untranslated.
const std::map<std::string, std::set<std::string>> sameInEnglish{
    {"Ctrl+R",
     {"French", "Spanish", "Italian", "Portuguese(Brazil)", "Russian", "Japanese", "Korean", "TC",
      "SC", "Czech", "Greek", "Polish", "Turkish"}},
    {"LED",
     {"German", "French", "Spanish", "Italian", "Portuguese(Brazil)", "Russian", "Japanese",
      "Korean", "TC", "SC", "Czech", "Greek", "Polish", "Turkish"}},
    {"LED: %1",
     {"German", "Spanish", "Italian", "Portuguese(Brazil)", "Russian", "Japanese", "Korean",
      "Czech", "Greek", "Polish", "Turkish"}},
    {"Logo", {"German", "French", "Italian", "Czech", "Polish", "Turkish"}},
    {"Macro", {"French", "Spanish", "Italian", "Portuguese(Brazil)"}},
    {"Menu", {"French", "Italian", "Portuguese(Brazil)", "Polish"}},
    {"NO", {"Spanish", "Italian"}},
    {"Normal", {"German", "French", "Spanish", "Portuguese(Brazil)", "Turkish"}},
    {"OK",
     {"German", "French", "Italian", "Portuguese(Brazil)", "Russian", "Japanese", "Czech",
      "Polish"}},
    {"Program", {"Czech", "Polish", "Turkish"}},
    {"Slot", {"German", "Italian", "Portuguese(Brazil)", "Czech", "Polish"}},
    {"Slot %1", {"German", "Italian", "Portuguese(Brazil)", "Czech", "Polish"}},
    {"Slot %1: %2", {"German", "Italian", "Portuguese(Brazil)", "Czech", "Polish"}},
    {"Version", {"German", "French"}},
    {"ms",
     {"German", "French", "Spanish", "Italian", "Portuguese(Brazil)", "Japanese", "Korean", "TC",
      "SC", "Czech", "Greek", "Polish", "Turkish"}},
};

bool isDigit(char character) {
  return std::isdigit(static_cast<unsigned char>(character)) != 0;
}

// "%d", "%@" and "%1", sorted: the sign with its digits, or with one character.
std::vector<std::string> placeholders(const std::string& text) {
  std::vector<std::string> found;
  for (auto place = std::find(text.begin(), text.end(), '%'); place != text.end();
       place = std::find(place, text.end(), '%')) {
    const auto start = place++;
    const auto digits = place;
    place = std::find_if_not(digits, text.end(), isDigit);
    if (place == digits && place != text.end()) {
      ++place;
    }
    found.emplace_back(start, place);
  }
  // They are filled in by their numbers, so that a language may turn their order round.
  std::sort(found.begin(), found.end());
  return found;
}

// The numbers in the text, sorted because languages order them differently.
std::vector<std::string> numbers(const std::string& text) {
  std::vector<std::string> found;
  for (auto place = text.begin(); place != text.end();) {
    const auto start = std::find_if(place, text.end(), isDigit);
    place = std::find_if_not(start, text.end(), isDigit);
    if (start != place) {
      found.emplace_back(start, place);
    }
  }
  std::sort(found.begin(), found.end());
  return found;
}

bool isUtf8(const std::string& text) {
  std::size_t following = 0;
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    if ((byte & 0xC0) == 0x80) {
      if (following == 0) {
        return false;
      }
      --following;
    } else if (following != 0 || byte >= 0xF8) {
      return false;
    } else {
      following = byte >= 0xF0 ? 3 : byte >= 0xE0 ? 2 : byte >= 0xC0 ? 1 : 0;
    }
  }
  return following == 0;
}

// The width of the text in Latin letters. A character that starts with 0xE3 or more in UTF-8 is
// East Asian and as wide as two letters.
std::size_t width(const std::string& text) {
  std::size_t letters = 0;
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    if ((byte & 0xC0) != 0x80) {
      letters += byte >= 0xE3 ? 2 : 1;
    }
  }
  return letters;
}

using Key = std::tuple<std::string, std::string, std::string>;

std::vector<Key> keys(const pugi::xml_node& language) {
  std::vector<Key> found;
  for (const auto& item : items(language)) {
    found.emplace_back(text(item, "name"), text(item, "viewID"), text(item, "btnID"));
  }
  return found;
}

class TooltipLanguages : public testing::TestWithParam<const char*> {
 protected:
  const pugi::xml_document m_document = resource("Tooltip.xml");
  const pugi::xml_node m_english = m_document.document_element().child("Lan");
  const pugi::xml_node m_language =
      m_document.document_element().find_child_by_attribute("Lan", "name", GetParam());

  void SetUp() override { ASSERT_TRUE(m_language) << GetParam(); }

  // The text of the key in English and in the language.
  std::string english(const char* name) const { return textOf(m_english, name); }
  std::string translated(const char* name) const { return textOf(m_language, name); }

 private:
  static std::string textOf(const pugi::xml_node& language, const char* name) {
    return text(language.find_child_by_attribute("Item", "name", name), "text");
  }
};

INSTANTIATE_TEST_SUITE_P(Translations, TooltipLanguages, testing::ValuesIn(translations));

TEST(TooltipFile, HasASectionForEachLanguageAndNothingElse) {
  const auto document = resource("Tooltip.xml");
  std::vector<std::string> names;
  for (const auto& section : document.document_element().children()) {
    if (section.type() == pugi::node_element) {
      EXPECT_STREQ(section.name(), "Lan");
      names.push_back(text(section, "name"));
    }
  }
  std::vector<std::string> expected{"US"};
  expected.insert(expected.end(), std::begin(translations), std::end(translations));
  EXPECT_EQ(names, expected);
}

TEST(TooltipFile, HasTheFourAttributesOnEveryItem) {
  const auto document = resource("Tooltip.xml");
  for (const auto& section : document.document_element().children("Lan")) {
    SCOPED_TRACE(text(section, "name"));
    for (const auto& item : section.children()) {
      if (item.type() != pugi::node_element) {
        continue;
      }
      EXPECT_STREQ(item.name(), "Item");
      std::vector<std::string> names;
      for (const auto& attribute : item.attributes()) {
        names.emplace_back(attribute.name());
        EXPECT_TRUE(isUtf8(attribute.value())) << text(item, "name");
      }
      EXPECT_THAT(names, ElementsAre("name", "text", "viewID", "btnID")) << text(item, "name");
    }
  }
}

TEST_P(TooltipLanguages, HaveTheKeysOfTheEnglishSection) {
  EXPECT_EQ(keys(m_language), keys(m_english));
}

TEST_P(TooltipLanguages, NameEveryEntryOfTheMenus) {
  const auto menus = resource("MenuInfo.xml");
  int entries = 0;
  for (const auto& section : menus.document_element().children()) {
    for (const auto& item : items(section)) {
      const std::string tag = text(item, "TooltipTag");
      if (!tag.empty()) {
        EXPECT_NE(translated(tag.c_str()), "(missing)") << tag;
        EXPECT_FALSE(translated(tag.c_str()).empty()) << tag;
        ++entries;
      }
    }
  }
  EXPECT_GT(entries, 20);
}

TEST_P(TooltipLanguages, HaveNoEmptyText) {
  for (const auto& item : items(m_language)) {
    const std::string name = text(item, "name");
    const bool isBlank = text(item, "text").find_first_not_of(" \t\r\n.") == std::string::npos;
    EXPECT_EQ(isBlank, name == "NoTooltip") << name;
  }
}

TEST_P(TooltipLanguages, AnswerEveryKeyWithOneText) {
  std::map<std::string, std::string> texts;
  for (const auto& item : items(m_language)) {
    const auto [place, isNew] = texts.emplace(text(item, "name"), text(item, "text"));
    EXPECT_TRUE(isNew || place->second == text(item, "text")) << place->first;
  }
}

TEST_P(TooltipLanguages, KeepPlaceholdersAndNumbers) {
  for (const auto& item : items(m_language)) {
    const std::string name = text(item, "name");
    const std::string original = english(name.c_str());
    EXPECT_EQ(placeholders(text(item, "text")), placeholders(original)) << name;
    EXPECT_EQ(numbers(text(item, "text")), numbers(original)) << name;
  }
}

TEST_P(TooltipLanguages, KeepUnitsAndNamesOfProducts) {
  for (const auto& item : items(m_language)) {
    const std::string name = text(item, "name");
    const std::string original = english(name.c_str());
    for (const char* word : {"DPI", "LED", "USB", "Hz", "NERIN", "Corvex", "NerinOption"}) {
      if (original.find(word) != std::string::npos) {
        EXPECT_THAT(text(item, "text"), HasSubstr(word)) << name;
      }
    }
  }
}

TEST_P(TooltipLanguages, TranslateAllButWordsThatAreTheSame) {
  const std::string language = GetParam();
  for (const auto& item : items(m_language)) {
    const std::string name = text(item, "name");
    if (name == "NoTooltip" || text(item, "text") != english(name.c_str())) {
      continue;
    }
    const auto word = sameInEnglish.find(name);
    EXPECT_TRUE(word != sameInEnglish.end() && word->second.contains(language)) << name;
  }
}

TEST_P(TooltipLanguages, SetAUnitApartFromItsNumber) {
  for (const auto& item : items(m_language)) {
    const std::string translation = text(item, "text");
    const auto unit = translation.find("Hz");
    if (unit != std::string::npos && unit > 0) {
      EXPECT_FALSE(isDigit(translation[unit - 1])) << translation;
    }
  }
}

TEST_P(TooltipLanguages, UseNoTypewriterQuotationMarks) {
  for (const auto& item : items(m_language)) {
    EXPECT_EQ(text(item, "text").find_first_of("'\""), std::string::npos) << text(item, "text");
  }
}

// A lookup takes off a period, and the window puts it back behind several sentences. Their own stop
// is theirs to write, with the same outcome.
TEST_P(TooltipLanguages, WriteAnEastAsianFullStopBehindSeveralSentencesOnly) {
  const std::string stop = "\u3002";
  for (const auto& item : items(m_language)) {
    const std::string translation = text(item, "text");
    const auto first = translation.find(stop);
    if (first != std::string::npos) {
      EXPECT_NE(first + stop.size(), translation.size()) << translation;
      EXPECT_TRUE(translation.ends_with(stop) || translation.ends_with("\uFF1F")) << translation;
    }
  }
}

TEST_P(TooltipLanguages, NameTheButtonsThatTheWarningsSpeakOf) {
  for (const char* name :
       {"WarningNoDeviceDetail", "WarningNeedSaveDetail", "WarningResetDetail"}) {
    EXPECT_THAT(translated(name), HasSubstr(translated("OK"))) << name;
    EXPECT_THAT(translated(name), HasSubstr(translated("Cancel"))) << name;
  }
}

TEST_P(TooltipLanguages, FitIntoThePictures) {
  for (const auto& word : pictureWords) {
    const auto widest = (16 * width(english(word.name)) + 60) / 10;
    EXPECT_LE(width(translated(word.name)), widest) << word.name << ": " << translated(word.name);
  }
}

}  // namespace

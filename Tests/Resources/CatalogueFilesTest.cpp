#include <charconv>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <pugixml.hpp>

#include "Tests/Resources/CatalogueFile.h"
#include "Tests/Resources/WindowWords.h"

// The catalogues that ship, compared with what the product says they contain.

namespace {

using Json = nlohmann::json;

Json fixture(const std::string& name) {
  std::ifstream stream(std::string(NERIN_FIXTURES "/") + name);
  return Json::parse(stream);
}

// Reads the whole attribute as a number; -1 for anything else, so that "0x10" or " 1" fails.
int number(const pugi::xml_node& item, const char* name, int base) {
  const std::string text = item.attribute(name).value();
  int value = -1;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  return error == std::errc() && end == text.data() + text.size() ? value : -1;
}

TEST(MenuInfoFile, HasTheSectionsInOrderAndNoMacros) {
  const auto document = resource("MenuInfo.xml");
  std::vector<std::string> names;
  for (const auto& section : document.document_element().children()) {
    if (section.type() == pugi::node_element) {
      names.emplace_back(section.name());
    }
  }
  EXPECT_EQ(names,
            (std::vector<std::string>{"MacroList", "MacroInsertMenu", "KeyAssignMenu", "SingleMenu",
                                      "MacroRepeatMenu", "SensitivityMenu", "LevelMenu"}));
  EXPECT_FALSE(document.document_element().child("MacroList").first_child());
}

TEST(MenuInfoFile, HoldsEveryEntryOfTheCatalogue) {
  const auto document = resource("MenuInfo.xml");
  const Json sections = fixture("menu-catalogue.json").at("sections");
  EXPECT_EQ(sections.size(), 7U);
  for (const auto& [name, expected] : sections.items()) {
    const auto found = items(document.document_element().child(name.c_str()));
    ASSERT_EQ(found.size(), expected.size()) << name;
    for (std::size_t index = 0; index < found.size(); ++index) {
      SCOPED_TRACE(name + " " + std::to_string(index));
      const auto& item = found[index];
      const Json& entry = expected[index];
      EXPECT_EQ(text(item, "title"), entry.at("title").get<std::string>());
      EXPECT_EQ(number(item, "type", 10), entry.at("type").get<int>());
      EXPECT_EQ(number(item, "functionID", 16), entry.at("functionID").get<int>());
      EXPECT_EQ(number(item, "functionTableID", 16), entry.at("functionTableID").get<int>());
      EXPECT_EQ(number(item, "NeedSepretor", 10), entry.at("NeedSepretor").get<int>());
      EXPECT_EQ(text(item, "TooltipTag"), entry.at("TooltipTag").get<std::string>());
      for (std::size_t bit = 0; bit < 4; ++bit) {
        const std::string attribute = "KeyBit" + std::to_string(bit + 1);
        EXPECT_EQ(number(item, attribute.c_str(), 16), entry.at("KeyBit").at(bit).get<int>());
      }
    }
  }
}

TEST(MenuInfoFile, HasNoFunctionIdTwiceInOneMenu) {
  const auto document = resource("MenuInfo.xml");
  for (const auto& section : document.document_element().children()) {
    std::set<std::string> ids;
    for (const auto& item : items(section)) {
      EXPECT_TRUE(ids.insert(text(item, "functionID")).second)
          << section.name() << ": " << text(item, "title");
    }
  }
}

TEST(TooltipFile, HasEnglishFirst) {
  const auto document = resource("Tooltip.xml");
  EXPECT_EQ(text(document.document_element().child("Lan"), "name"), "US");
}

TEST(TooltipFile, HoldsEveryTextOfEveryControlInEnglish) {
  const auto document = resource("Tooltip.xml");
  std::map<std::pair<int, std::string>, pugi::xml_node> byControl;
  std::size_t general = 0;
  for (const auto& item : items(document.document_element().child("Lan"))) {
    const int view = number(item, "viewID", 10);
    if (view == 0) {
      ++general;
      continue;
    }
    EXPECT_TRUE(byControl.emplace(std::pair(view, text(item, "btnID")), item).second)
        << "two texts for control " << text(item, "btnID") << " of view " << view;
  }
  const Json expected = fixture("tooltip-keys.json");
  for (const Json& entry : expected.at("by_control")) {
    const std::string button = std::to_string(entry.at("btnID").get<int>());
    SCOPED_TRACE(entry.at("view").get<std::string>() + " " + button);
    const auto found = byControl.find({entry.at("viewID").get<int>(), button});
    ASSERT_NE(found, byControl.end());
    EXPECT_EQ(text(found->second, "name"), entry.at("name").get<std::string>());
    EXPECT_EQ(text(found->second, "text"), entry.at("text").get<std::string>());
  }
  EXPECT_EQ(byControl.size(), expected.at("by_control").size());
  EXPECT_EQ(general,
            expected.at("general").size() + std::size(pictureWords) + std::size(plainWords));
}

TEST(TooltipFile, HoldsTheWordsOfTheWindowInEnglish) {
  const auto document = resource("Tooltip.xml");
  const auto english = document.document_element().child("Lan");
  const auto expectWord = [&](const char* name, const char* expected) {
    const auto item = english.find_child_by_attribute("Item", "name", name);
    EXPECT_EQ(text(item, "text"), expected) << name;
    EXPECT_EQ(text(item, "viewID"), "0") << name;
    EXPECT_EQ(text(item, "btnID"), "") << name;
  };
  for (const auto& word : pictureWords) {
    expectWord(word.name, word.text);
  }
  for (const char* word : plainWords) {
    expectWord(word, word);
  }
}

TEST(TooltipFile, AnswersEveryKeyWithOneText) {
  const auto document = resource("Tooltip.xml");
  std::map<std::string, std::string> texts;
  for (const auto& item : items(document.document_element().child("Lan"))) {
    const auto [place, isNew] = texts.emplace(text(item, "name"), text(item, "text"));
    EXPECT_TRUE(isNew || place->second == text(item, "text")) << place->first;
  }
  const Json expected = fixture("tooltip-keys.json");
  std::set<std::string> keys;
  for (const char* list : {"by_control", "general"}) {
    for (const Json& entry : expected.at(list)) {
      const std::string key = entry.at("name").get<std::string>();
      keys.insert(key);
      ASSERT_TRUE(texts.contains(key)) << key;
      EXPECT_EQ(texts.at(key), entry.at("text").get<std::string>()) << key;
    }
  }
  for (const Json& key : expected.at("distinct_keys")) {
    EXPECT_TRUE(texts.contains(key.get<std::string>())) << key;
  }
  for (const auto& word : pictureWords) {
    keys.insert(word.name);
  }
  keys.insert(std::begin(plainWords), std::end(plainWords));
  EXPECT_EQ(texts.size(), keys.size());
}

TEST(TooltipFile, HasAnEmptyTextForNoTooltip) {
  const auto document = resource("Tooltip.xml");
  const auto item =
      document.document_element().child("Lan").find_child_by_attribute("name", "NoTooltip");
  ASSERT_TRUE(item.attribute("text"));
  EXPECT_STREQ(item.attribute("text").value(), "");
}

TEST(TooltipFile, KnowsEveryTagOfTheMenus) {
  const auto menus = resource("MenuInfo.xml");
  const auto tooltips = resource("Tooltip.xml");
  const auto english = tooltips.document_element().child("Lan");
  for (const auto& section : menus.document_element().children()) {
    for (const auto& item : items(section)) {
      const std::string tag = text(item, "TooltipTag");
      if (!tag.empty()) {
        EXPECT_TRUE(english.find_child_by_attribute("name", tag.c_str())) << tag;
      }
    }
  }
}

}  // namespace

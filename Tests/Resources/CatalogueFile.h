#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <pugixml.hpp>

// Reads the catalogues that ship.

// A file of the product data. The test fails if it is not XML.
inline pugi::xml_document resource(const std::string& name) {
  pugi::xml_document document;
  const auto result = document.load_file((std::string(NERIN_RESOURCES "/") + name).c_str());
  EXPECT_TRUE(result) << name << ": " << result.description();
  return document;
}

inline std::vector<pugi::xml_node> items(const pugi::xml_node& parent) {
  const auto range = parent.children("Item");
  return {range.begin(), range.end()};
}

// An attribute, which may be empty. A missing one gives a text that no catalogue contains.
inline std::string text(const pugi::xml_node& item, const char* name) {
  const auto attribute = item.attribute(name);
  return attribute ? attribute.value() : "(missing)";
}

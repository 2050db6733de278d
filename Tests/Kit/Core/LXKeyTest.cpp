#include <fstream>
#include <limits>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "Kit/Core/LXKey.h"

TEST(LXKey, NamesEveryKeyAsTheTableDoes) {
  std::ifstream file(NERIN_FIXTURES "/mac-key-names.json");
  const auto names = nlohmann::json::parse(file);
  ASSERT_GT(names.size(), 100U);
  for (int code = -300; code <= 300; ++code) {
    EXPECT_EQ(LXKey::getStrByKeycode(code), names.value(std::to_string(code), "")) << code;
  }
}

TEST(LXKey, HasNoNameForACodeFarAway) {
  EXPECT_EQ(LXKey::getStrByKeycode(std::numeric_limits<std::int32_t>::min()), "");
  EXPECT_EQ(LXKey::getStrByKeycode(std::numeric_limits<std::int32_t>::max()), "");
}

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "Kit/Core/ProcessWide.h"

namespace {

struct Counter {
  int value = 7;
};

ProcessWide<Counter> counter;
ProcessWide<std::unique_ptr<std::string>> ownedText;

TEST(ProcessWide, BeginsWithTheFirstStateOfItsType) {
  ProcessWideBase::resetAll();
  EXPECT_EQ(counter->value, 7);
  EXPECT_EQ(*ownedText, nullptr);
}

TEST(ProcessWide, AResetReachesEveryOneWithoutKnowingIt) {
  counter->value = 12;
  *ownedText = std::make_unique<std::string>("kept");
  ProcessWideBase::resetAll();
  EXPECT_EQ(counter->value, 7);
  EXPECT_EQ(*ownedText, nullptr);
}

}  // namespace

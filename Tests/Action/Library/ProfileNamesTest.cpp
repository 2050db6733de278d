#include <gtest/gtest.h>

#include "Action/Library/ProfileNames.h"

namespace {

TEST(ProfileNames, AreStorableWithOneToSixtyFivePrintableCharacters) {
  EXPECT_FALSE(profilenames::isStorable(""));
  EXPECT_TRUE(profilenames::isStorable(" "));
  EXPECT_TRUE(profilenames::isStorable("~"));
  EXPECT_TRUE(profilenames::isStorable(std::string(65, 'n')));
  EXPECT_FALSE(profilenames::isStorable(std::string(66, 'n')));
  EXPECT_FALSE(profilenames::isStorable("B\xC3\xBCro"));
  EXPECT_FALSE(profilenames::isStorable("a\x1F"));
  EXPECT_FALSE(profilenames::isStorable("a\x7F"));
}

TEST(ProfileNames, WithoutWhatAPathIsMadeOf) {
  EXPECT_FALSE(profilenames::isStorable("a/b"));
  EXPECT_FALSE(profilenames::isStorable("a:b"));
  EXPECT_TRUE(profilenames::isStorable("a.b"));
}

TEST(ProfileNames, OfTheFactoryAreTenInAnyLetterCase) {
  EXPECT_TRUE(profilenames::isFactoryName("Profile#1"));
  EXPECT_TRUE(profilenames::isFactoryName("pROFILE#10"));
  EXPECT_FALSE(profilenames::isFactoryName("Profile#11"));
  EXPECT_FALSE(profilenames::isFactoryName("Profile#0"));
  EXPECT_FALSE(profilenames::isFactoryName("Profile#1 "));
}

}  // namespace

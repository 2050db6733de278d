#include <gmock/gmock.h>

#include "Action/Service/SlotReason.h"

namespace {

using slotreason::reasonOf;
using slotreason::sentenceOf;
using slotreason::userInfoOf;

TEST(SlotReason, ArrivesAsItWasTold) {
  const SlotReason reason{SlotReason::TriedAgain, 9, 3, "Blender"};
  EXPECT_EQ(reasonOf("Blender", userInfoOf(reason)), reason);
  EXPECT_EQ(reasonOf("", userInfoOf({})), SlotReason{});
}

TEST(SlotReason, WhatIsNoReasonIsNotTaken) {
  const SlotReason reason{SlotReason::InFront, 2, 0, "Blender"};
  EXPECT_FALSE(reasonOf("", {}));
  for (const char* key : {"kind", "slot", "otherSlot"}) {
    for (const std::int32_t number : {-1, 12}) {
      LXUserInfo userInfo = userInfoOf(reason);
      userInfo[key] = number;
      EXPECT_FALSE(reasonOf("Blender", userInfo)) << key;
    }
    LXUserInfo userInfo = userInfoOf(reason);
    userInfo[key] = true;
    EXPECT_FALSE(reasonOf("Blender", userInfo)) << key;
  }
}

TEST(SlotReason, IsASentenceInTheWordsOfTheUser) {
  EXPECT_EQ(sentenceOf({SlotReason::InFront, 2, 0, "Blender"}),
            "Slot 3, because Blender is in front");
  EXPECT_EQ(sentenceOf({SlotReason::TriedAgain, 0, 4, "Blender"}),
            "Slot 1: slot 5 could not be chosen and is tried again");
  const Words german = [](const std::string& name) {
    return name == "Slot %1, because %2 is in front" ? "Weil %2 vorn ist: Slot %1" : name;
  };
  EXPECT_EQ(sentenceOf({SlotReason::InFront, 2, 0, "Blender"}, german),
            "Weil Blender vorn ist: Slot 3");
}

TEST(SlotReason, AProgramsNameStandsInTheSentenceAsItIs) {
  EXPECT_EQ(sentenceOf({SlotReason::InFront, 2, 0, "100%1 %2\n%"}),
            "Slot 3, because 100%1 %2 % is in front");
}

TEST(FilledText, LeavesASignWithoutAValue) {
  EXPECT_EQ(filledText("%1 of %2, %3 %0 100%", {"a", "b"}), "a of b, %3 %0 100%");
}

}  // namespace

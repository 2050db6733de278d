#include <chrono>
#include <set>

#include <gtest/gtest.h>

#include "Tests/VirtualMouse/MouseHost.h"

using namespace MouseHost;
using Kind = MouseScenario::Kind;

TEST(MouseScenario, IsReadFromItsName) {
  const std::vector<std::pair<std::string, Kind>> names{{"healthy", Kind::Healthy},
                                                        {"absent", Kind::Absent},
                                                        {"slow", Kind::Slow},
                                                        {"short", Kind::AnswersShort},
                                                        {"random", Kind::AnswersRandom},
                                                        {"garbage", Kind::HoldsGarbage}};
  for (const auto& [text, kind] : names) {
    const auto scenario = MouseScenario::parse(text);
    ASSERT_TRUE(scenario) << text;
    EXPECT_EQ(scenario->kind, kind) << text;
  }
  for (const std::uint32_t count : {0U, 7U, 4294967295U}) {
    const auto scenario = MouseScenario::parse("unplugged-after=" + std::to_string(count));
    ASSERT_TRUE(scenario);
    EXPECT_EQ(scenario->kind, Kind::UnpluggedAfter);
    EXPECT_EQ(scenario->transfers, count);
  }
}

TEST(MouseScenario, RefusesOtherNames) {
  for (const char* text :
       {"", "Healthy", "healthy ", "slowly", "unplugged-after",
        "unplugged-after=", "unplugged-after=-1", "unplugged-after=+1", "unplugged-after= 1",
        "unplugged-after=1x", "unplugged-after=0x1", "unplugged-after=4294967296", "short=1"}) {
    EXPECT_FALSE(MouseScenario::parse(text)) << text;
  }
}

TEST(MouseScenario, AbsentMouseIsGone) {
  VirtualMouse mouse;
  mouse.setScenario({Kind::Absent});
  EXPECT_FALSE(mouse.isAttached());
  Bytes data(8, 0x33);
  const TransferResult result = get(mouse, 0x0300, 0, data);
  EXPECT_EQ(result.status, TransferStatus::Gone);
  EXPECT_EQ(result.bytes, 0U);
  EXPECT_EQ(data, Bytes(8, 0x33));
  EXPECT_EQ(command(mouse, {0xC4, 0x07, 3}), TransferStatus::Gone);
  EXPECT_EQ(mouse.activeSlot(), 0);
  EXPECT_TRUE(mouse.transcript().empty());

  mouse.setScenario({});
  EXPECT_TRUE(mouse.isAttached());
  mouse.setScenario({Kind::Absent});
  mouse.attach();
  EXPECT_TRUE(mouse.isAttached());
  EXPECT_EQ(command(mouse, {0xC4, 0x07, 3}), TransferStatus::Done);
}

TEST(MouseScenario, UnpluggedAfterLetsThatManyTransfersThrough) {
  for (const std::uint32_t count : {0U, 1U, 3U}) {
    VirtualMouse mouse;
    mouse.setScenario({Kind::UnpluggedAfter, count});
    for (std::uint32_t index = 0; index < count; ++index) {
      EXPECT_TRUE(mouse.isAttached());
      EXPECT_EQ(command(mouse, {0xC4, 0x07, 1}), TransferStatus::Done);
    }
    EXPECT_FALSE(mouse.isAttached());
    EXPECT_EQ(command(mouse, {0xC4, 0x07, 5}), TransferStatus::Gone);
    EXPECT_EQ(mouse.activeSlot(), count == 0 ? 0 : 1);
    mouse.attach();
    for (int index = 0; index < 10; ++index) {
      EXPECT_EQ(command(mouse, {0xC4, 0x07, 2}), TransferStatus::Done);
    }
    EXPECT_EQ(mouse.activeSlot(), 2);
  }
}

TEST(MouseScenario, PluggingInAnAttachedMouseKeepsTheCount) {
  VirtualMouse mouse;
  mouse.setScenario({Kind::UnpluggedAfter, 2});
  command(mouse, {0xC4, 0x00});
  mouse.attach();
  command(mouse, {0xC4, 0x00});
  EXPECT_FALSE(mouse.isAttached());
}

TEST(MouseScenario, DetachedMouseKeepsItsMemoryAndForgetsTheRest) {
  VirtualMouse mouse;
  write(mouse, nameReport(4, "kept"));
  command(mouse, {0xC4, 0x0C, 4, 0});
  mouse.detach();
  EXPECT_FALSE(mouse.isAttached());
  EXPECT_EQ(command(mouse, {0xC4, 0x00}), TransferStatus::Gone);
  mouse.attach();
  EXPECT_EQ(answer(mouse), Bytes(8));
  EXPECT_TRUE(read(mouse, 6).empty());
  EXPECT_EQ(readAfterReady(mouse, 6, 4), nameReport(4, "kept"));
}

TEST(MouseScenario, SlowMouseTakesItsTime) {
  VirtualMouse mouse;
  mouse.setScenario(*MouseScenario::parse("slow"));
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(readMemory(mouse, 25), 0xA0);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(80));
}

TEST(MouseScenario, ShortAnswersAreTheBeginningOfTheRightOnes) {
  VirtualMouse mouse;
  mouse.setScenario({Kind::AnswersShort});
  command(mouse, {0xDF, 25, 0});
  Bytes brief(8, 0x33);
  EXPECT_EQ(get(mouse, 0x0300, 0, brief).bytes, 3U);
  EXPECT_EQ(brief, (Bytes{0xDF, 25, 0, 0x33, 0x33, 0x33, 0x33, 0x33}));
  command(mouse, {0xC4, 0x0C, 7, 0});
  Bytes image(154, 0x33);
  const TransferResult result = get(mouse, 0x0305, 1, image);
  EXPECT_EQ(result.status, TransferStatus::Done);
  EXPECT_EQ(result.bytes, 3U);
  EXPECT_EQ(image[0], 5);
  EXPECT_EQ(image[2], 7);
  EXPECT_EQ(Bytes(image.begin() + 3, image.end()), Bytes(151, 0x33));
  EXPECT_EQ(mouse.transcript().back().data, (Bytes{5, 0, 7}));
}

TEST(MouseScenario, ShortAnswersDoNotShortenWrites) {
  VirtualMouse mouse;
  mouse.setScenario({Kind::AnswersShort});
  EXPECT_EQ(set(mouse, 0x0306, 1, nameReport(1, "whole")).bytes, 70U);
  EXPECT_EQ(mouse.slotName(1), "whole");
}

TEST(MouseScenario, RandomAnswersAreRepeatableAndLeaveTheMemoryAlone) {
  const auto answers = [](VirtualMouse& mouse) {
    mouse.setScenario({Kind::AnswersRandom});
    return readAfterReady(mouse, 4, 0);
  };
  VirtualMouse one;
  VirtualMouse other;
  const Bytes first = answers(one);
  ASSERT_EQ(first.size(), 2053U);
  EXPECT_EQ(answers(other), first);
  EXPECT_EQ(answers(one), first);
  EXPECT_GT(std::set<std::uint8_t>(first.begin(), first.end()).size(), 200U);
  EXPECT_NE(readAfterReady(one, 4, 0), first);

  EXPECT_EQ(one.macroReport(0)[0], 4);
  write(one, nameReport(2, "taken"));
  EXPECT_EQ(one.slotName(2), "taken");
  Bytes brief(7);
  EXPECT_EQ(get(one, 0x0300, 0, brief).status, TransferStatus::Stalled);
}

TEST(MouseScenario, GarbageIsWhatNoProgramWrites) {
  VirtualMouse mouse;
  mouse.setScenario({Kind::HoldsGarbage});
  EXPECT_EQ(mouse.activeSlot(), 15);
  EXPECT_EQ(readMemory(mouse, 25) & 0x0F, 15);
  for (int slot = 0; slot < 10; ++slot) {
    const Bytes name = readAfterReady(mouse, 6, slot);
    EXPECT_EQ(Bytes(name.begin() + 5, name.end()), Bytes(65, 'A'));
    EXPECT_EQ(mouse.slotName(slot), std::string(65, 'A'));
    const Bytes image = readAfterReady(mouse, 5, slot);
    EXPECT_EQ(image, sealed(image));
    EXPECT_EQ(image[4] & 0x0F, 0);
    EXPECT_EQ(image[6], 0xFF);
    int macros = 0;
    for (int position = 0; position < 19; ++position) {
      if (image[58 + 5 * static_cast<std::size_t>(position)] != 6) {
        continue;
      }
      ++macros;
      const Bytes macro = readAfterReady(mouse, 4, slot * 19 + position);
      EXPECT_EQ(macro[0], 0xB0);
      EXPECT_EQ(macro, sealed(macro));
      EXPECT_EQ(macro[7] + 256 * macro[8], 2000);
      // No earlier delay record can take the last byte as its own.
      EXPECT_EQ(std::count(macro.begin() + 52, macro.begin() + 2051, 1), 0);
      EXPECT_EQ(macro[52 + 1999], 1);
    }
    EXPECT_EQ(macros, 2);
  }
  EXPECT_TRUE(mouse.faults().empty());
}

TEST(MouseScenario, GarbageLiesOverTheMemory) {
  VirtualMouse mouse;
  write(mouse, nameReport(0, "mine"));
  mouse.setScenario({Kind::HoldsGarbage});
  write(mouse, nameReport(0, "over"));
  EXPECT_EQ(mouse.slotName(0), "over");
  mouse.setScenario({});
  EXPECT_EQ(mouse.slotName(0), "mine");
  EXPECT_EQ(mouse.activeSlot(), 0);
}

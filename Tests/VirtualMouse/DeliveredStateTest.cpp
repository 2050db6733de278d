#include <fstream>

#include <gtest/gtest.h>

#include "Tests/VirtualMouse/MouseHost.h"

using namespace MouseHost;

namespace {

std::vector<Bytes> expectedImages() {
  std::ifstream file(NERIN_FIXTURES "/factory-images.txt");
  std::vector<Bytes> images;
  for (std::string line; std::getline(file, line);) {
    Bytes image;
    for (std::size_t index = 0; index + 1 < line.size(); index += 2) {
      image.push_back(static_cast<std::uint8_t>(std::stoi(line.substr(index, 2), nullptr, 16)));
    }
    images.push_back(image);
  }
  return images;
}

}  // namespace

TEST(DeliveredMouse, HoldsTheImagesOfTheFactory) {
  const std::vector<Bytes> expected = expectedImages();
  ASSERT_EQ(expected.size(), 10U);
  VirtualMouse mouse;
  for (int slot = 0; slot < 10; ++slot) {
    EXPECT_EQ(copyOf(mouse.imageReport(slot)), expected[static_cast<std::size_t>(slot)]);
    EXPECT_EQ(readAfterReady(mouse, 5, slot), expected[static_cast<std::size_t>(slot)]);
  }
  EXPECT_TRUE(mouse.faults().empty());
}

TEST(DeliveredMouse, TakesTheImagesOfTheFactory) {
  const std::vector<Bytes> expected = expectedImages();
  ASSERT_EQ(expected.size(), 10U);
  VirtualMouse mouse;
  for (int slot = 0; slot < 10; ++slot) {
    mouse.clearSlot(slot);
    write(mouse, expected[static_cast<std::size_t>(slot)]);
    EXPECT_EQ(readAfterReady(mouse, 5, slot), expected[static_cast<std::size_t>(slot)]);
  }
  EXPECT_TRUE(mouse.faults().empty());
}

TEST(DeliveredMouse, NamesItsSlots) {
  VirtualMouse mouse;
  for (int slot = 0; slot < 10; ++slot) {
    const std::string name = "Profile#" + std::to_string(slot + 1);
    EXPECT_EQ(mouse.slotName(slot), name);
    EXPECT_EQ(copyOf(mouse.nameReport(slot)), nameReport(slot, name));
  }
}

TEST(DeliveredMouse, HasSlotZeroActiveAndNoMacros) {
  VirtualMouse mouse;
  EXPECT_TRUE(mouse.isAttached());
  EXPECT_EQ(mouse.activeSlot(), 0);
  EXPECT_EQ(readMemory(mouse, 25), 0xA0);
  Bytes none(2053);
  none[0] = 4;
  for (int macroSlot = 0; macroSlot < 190; ++macroSlot) {
    EXPECT_EQ(copyOf(mouse.macroReport(macroSlot)), none);
  }
  EXPECT_EQ(readAfterReady(mouse, 4, 189), none);
}

TEST(VirtualMouse, ClearsASlotAndNoOther) {
  VirtualMouse mouse;
  for (const int macroSlot : {18, 19, 37, 38}) {
    announceMacro(mouse, macroSlot);
    write(mouse, numberedReport(4, macroSlot));
  }
  writeMemory(mouse, 2 * 256 + 255, 0x77);
  mouse.clearSlot(1);

  EXPECT_EQ(mouse.slotName(1), "");
  EXPECT_EQ(copyOf(mouse.nameReport(1)), nameReport(1, ""));
  Bytes image(154);
  image[0] = 5;
  image[2] = 1;
  EXPECT_EQ(copyOf(mouse.imageReport(1)), image);
  EXPECT_EQ(readMemory(mouse, 2 * 256 + 255), 0);
  EXPECT_EQ(mouse.macroReport(19)[0], 4);
  EXPECT_EQ(mouse.macroReport(37)[0], 4);

  EXPECT_EQ(mouse.slotName(0), "Profile#1");
  EXPECT_EQ(mouse.slotName(2), "Profile#3");
  EXPECT_EQ(mouse.imageReport(0)[4], 1);
  EXPECT_EQ(mouse.imageReport(2)[4], 1);
  EXPECT_EQ(mouse.macroReport(18)[0], 0xB0);
  EXPECT_EQ(mouse.macroReport(38)[0], 0xB0);
}

TEST(VirtualMouse, RefusesToShowSlotsThatItDoesNotHave) {
  VirtualMouse mouse;
  for (const int slot : {-1, 10}) {
    EXPECT_THROW(static_cast<void>(mouse.nameReport(slot)), std::out_of_range);
    EXPECT_THROW(static_cast<void>(mouse.imageReport(slot)), std::out_of_range);
    EXPECT_THROW(static_cast<void>(mouse.slotName(slot)), std::out_of_range);
    EXPECT_THROW(mouse.pressSlotButton(slot), std::out_of_range);
    EXPECT_THROW(mouse.clearSlot(slot), std::out_of_range);
  }
  EXPECT_THROW(static_cast<void>(mouse.macroReport(-1)), std::out_of_range);
  EXPECT_THROW(static_cast<void>(mouse.macroReport(190)), std::out_of_range);
}

TEST(VirtualMouse, SwitchesSlotsByItsOwnButton) {
  VirtualMouse mouse;
  mouse.pressSlotButton(7);
  EXPECT_EQ(mouse.activeSlot(), 7);
  EXPECT_EQ(readMemory(mouse, 25), 0xA7);
  mouse.detach();
  mouse.pressSlotButton(2);
  EXPECT_EQ(mouse.activeSlot(), 7);
}

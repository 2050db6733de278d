#include <array>

#include <gtest/gtest.h>

#include "Kit/Core/TransferLog.h"

TEST(TransferLog, ShowsACommandWhole) {
  const std::array<std::uint8_t, 8> command{0xC4, 0x0C, 0x01, 0, 0, 0, 0, 0xFF};
  EXPECT_EQ(transferlog::textOf(command), "c40c0100000000ff");
  EXPECT_EQ(transferlog::textOf({}), "");
}

TEST(TransferLog, ShowsNoKeys) {
  std::array<std::uint8_t, 2053> macro{};
  macro.fill(0xAB);
  macro[0] = 4;
  EXPECT_EQ(transferlog::textOf(macro), "04abab... (2053 bytes)");
  const std::array<std::uint8_t, 8> button{0xC4, 0x0E, 0x02, 0x01, 0, 0x2C, 0, 0};
  EXPECT_EQ(transferlog::textOf(button), "c40e02... (8 bytes)");
  EXPECT_EQ(transferlog::textOf(std::span(button).first(2)), "c40e... (2 bytes)");
}

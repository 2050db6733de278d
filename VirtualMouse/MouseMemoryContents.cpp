#include <algorithm>
#include <array>
#include <numeric>
#include <string>
#include <vector>

#include "VirtualMouse/MouseMemory.h"
#include "VirtualMouse/MouseReport.h"

namespace {

constexpr std::size_t rateByte = 4;
constexpr std::size_t liftByte = 5;
constexpr std::size_t levelByte = 6;
constexpr std::size_t levelsByte = 7;
constexpr std::size_t zonesByte = 42;
constexpr std::size_t buttonsByte = 58;
constexpr std::size_t entrySize = 5;
constexpr int positionCount = 19;

using Color = std::array<std::uint8_t, 3>;
using ButtonEntry = std::array<std::uint8_t, entrySize>;

constexpr std::array<std::uint8_t, 5> deliveredLevels{8, 16, 32, 64, 164};
constexpr std::array<Color, 5> levelColors{
    {{255, 0, 0}, {0, 0, 255}, {0, 255, 0}, {255, 64, 0}, {255, 0, 255}}};
constexpr std::array<Color, VirtualMouse::slotCount> slotColors{{{255, 0, 0},
                                                                 {0, 0, 255},
                                                                 {0, 255, 0},
                                                                 {255, 64, 0},
                                                                 {255, 0, 255},
                                                                 {0, 255, 255},
                                                                 {255, 255, 0},
                                                                 {128, 0, 255},
                                                                 {255, 255, 255},
                                                                 {0, 255, 128}}};
constexpr std::array<ButtonEntry, positionCount> deliveredButtons{{
    {0x01, 0x01},        // left click
    {0x01, 0x02},        // right click
    {0x01, 0x03},        // middle click
    {0x02, 0x00, 0x4D},  // End
    {0x02, 0x00, 0x4A},  // Home
    {0x09, 0x40, 0x40},  // DPI level up
    {0x0A, 0x40, 0x40},  // DPI level down
    {0x15, 0x40, 0x40},  // next DPI level
    {0xFF},              // disabled
    {0xFF},              // disabled
    {0x02, 0x08, 0x50},  // Control and left arrow
    {0x02, 0x00, 0x4E},  // Page Down
    {0x02, 0x00, 0x4B},  // Page Up
    {0x02, 0x08, 0x4F},  // Control and right arrow
    {0xFF},              // no button
    {0x0D},              // no button
    {0x12},              // no button
    {0x01, 0x06},        // scroll up
    {0x01, 0x07},        // scroll down
}};

void put(std::vector<std::uint8_t>& report, std::size_t at, std::span<const std::uint8_t> bytes) {
  std::copy(bytes.begin(), bytes.end(), report.begin() + static_cast<std::ptrdiff_t>(at));
}

std::vector<std::uint8_t> nameReport(const std::string& name) {
  std::vector<std::uint8_t> report(VirtualMouse::nameReportSize);
  report[4] = static_cast<std::uint8_t>(name.size());
  std::copy(name.begin(), name.end(), report.begin() + 5);
  return report;
}

std::vector<std::uint8_t> deliveredImage(const Color& zoneColor) {
  std::vector<std::uint8_t> report(VirtualMouse::imageReportSize);
  report[rateByte] = 1;
  report[liftByte] = 0x20 | 15;
  report[levelByte] = 2 + (5 << 4);
  for (std::size_t level = 0; level < deliveredLevels.size(); ++level) {
    const std::size_t at = levelsByte + 5 * level;
    report[at] = deliveredLevels[level];
    report[at + 1] = deliveredLevels[level];
    put(report, at + 2, levelColors[level]);
  }
  for (std::size_t zone = 0; zone < 4; ++zone) {
    report[zonesByte + 4 * zone] = 1;
    put(report, zonesByte + 4 * zone + 1, zoneColor);
  }
  for (std::size_t position = 0; position < deliveredButtons.size(); ++position) {
    put(report, buttonsByte + entrySize * position, deliveredButtons[position]);
  }
  return report;
}

std::vector<std::uint8_t> garbageMacro() {
  constexpr std::size_t streamByte = 52;
  constexpr std::size_t streamSize = 2000;
  std::vector<std::uint8_t> report(VirtualMouse::macroReportSize, 0xFF);
  report[7] = streamSize & 0xFF;
  report[8] = streamSize >> 8;
  // Presses and releases of one key, so that no event takes the last byte as its own.
  for (std::size_t index = 0; index + 1 < streamSize; ++index) {
    report[streamByte + index] = index % 2 == 0 ? 4 : 4 + 128;
  }
  report[streamByte + streamSize - 1] = 1;
  return report;
}

}  // namespace

void fillAsDelivered(MouseMemory& memory) {
  for (int slot = 0; slot < VirtualMouse::slotCount; ++slot) {
    memory.setName(slot, nameReport("Profile#" + std::to_string(slot + 1)));
    memory.setImage(slot, deliveredImage(slotColors[static_cast<std::size_t>(slot)]));
  }
}

void fillWithGarbage(MouseMemory& memory) {
  constexpr std::array<int, 2> macroPositions{3, 18};
  const std::vector<std::uint8_t> macro = garbageMacro();
  for (int slot = 0; slot < VirtualMouse::slotCount; ++slot) {
    memory.setName(slot, nameReport(std::string(65, 'A')));
    std::vector<std::uint8_t> image(VirtualMouse::imageReportSize, 0xFF);
    // A rate of 0 has no logarithm. Random bytes make no sense anywhere else.
    image[rateByte] = 0xF0;
    std::iota(image.begin() + buttonsByte, image.end(), static_cast<std::uint8_t>(0x30 + slot));
    for (const int position : macroPositions) {
      image[buttonsByte + entrySize * static_cast<std::size_t>(position)] = 6;
      memory.setMacro(slot * positionCount + position, macro);
    }
    memory.setImage(slot, image);
  }
  memory.setByteAt(MouseMemory::activeSlotAddress, 0xFF);
}

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>

#include "Fuzz/FuzzInput.h"
#include "VirtualMouse/VirtualMouse.h"

namespace {

void readAll(VirtualMouse& mouse) {
  std::array<std::uint8_t, VirtualMouse::macroReportSize> stage{};
  fuzz::require(mouse.activeSlot() <= 15);
  for (int slot = 0; slot < VirtualMouse::slotCount; ++slot) {
    fuzz::require(mouse.slotName(slot).size() <= 65);
    std::array<std::uint8_t, 8> ready{0xC4, 0x0C, static_cast<std::uint8_t>(slot)};
    mouse.controlTransfer({0x21, 0x09, 0x0300, 0, 8}, ready);
    mouse.controlTransfer({0xA1, 0x01, 0x0305, 1, 154}, std::span(stage).first(154));
  }
}

}  // namespace

// Any bytes as the memory file of a mouse: once unchanged, and once repeated after a valid header
// until the file has the right size. The first of them are what the mouse knew while it had power.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string header{"NERINMEM\1\0\0\0\0\0\0\0", 16};
  static constexpr std::size_t memorySize = 11UL * 256 + 10UL * 70 + 190UL * 2053;
  constexpr std::size_t powerSize = 16;
  std::string whole = header;
  while (size > 0 && whole.size() < header.size() + memorySize) {
    whole.append(fuzz::textOf(data, size));
  }
  whole.resize(header.size() + memorySize);
  for (const std::string_view bytes : {fuzz::textOf(data, size), std::string_view(whole)}) {
    try {
      fuzz::putFile("mouse.memory.power", fuzz::textOf(data, std::min(size, powerSize)));
      VirtualMouse mouse(fuzz::putFile("mouse.memory", bytes));
      readAll(mouse);
    } catch (const std::runtime_error&) {
      // Invalid files are refused, and only the second one is sure to be valid.
      fuzz::require(bytes.data() != whole.data());
    }
  }
  return 0;
}

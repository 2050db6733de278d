#include <algorithm>
#include <array>

#include "Fuzz/FuzzInput.h"
#include "VirtualMouse/VirtualMouse.h"

// Any sequence of control transfers. Each is a setup packet of eight bytes, followed for a write by
// as much of the announced data as is left.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  VirtualMouse mouse;
  std::array<std::uint8_t, 4096> stage{};
  for (std::span<const std::uint8_t> rest(data, size); rest.size() >= 8;) {
    const auto word = [&](std::size_t at) {
      return static_cast<std::uint16_t>(rest[at] | rest[at + 1] << 8U);
    };
    const auto length = static_cast<std::uint16_t>(word(6) % stage.size());
    const SetupPacket setup{rest[0], rest[1], word(2), word(4), length};
    rest = rest.subspan(8);
    const bool isToHost = (setup.requestType & 0x80U) != 0;
    const std::size_t sent = isToHost ? 0 : std::min<std::size_t>(length, rest.size());
    std::copy_n(rest.begin(), sent, stage.begin());
    rest = rest.subspan(sent);
    fuzz::require(mouse.controlTransfer(setup, std::span(stage).first(length)).bytes <= length);
  }
  for (int macroSlot = 0; macroSlot < VirtualMouse::macroSlotCount; ++macroSlot) {
    fuzz::require(mouse.playMacro(macroSlot).events.size() <= 2000);
  }
  mouse.setScenario({.kind = MouseScenario::Kind::HoldsGarbage});
  fuzz::require(mouse.macroReport(VirtualMouse::macroSlotCount - 1).size() == 2053);
  return 0;
}

#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <system_error>

#include "Action/Record/Outcome.h"
#include "Kit/Core/LXDeviceRequester.h"
#include "Kit/Core/ProcessWide.h"

// The link to the mouse and the commands that it understands at once. A failed transfer does not
// stop a series: without a mouse a command does nothing, a read leaves its zeroed buffer, and the
// outcome names the first transfer that failed.
namespace NerinAction {

// The requester in use; null until startListenDev.
inline ProcessWide<std::shared_ptr<LXDeviceRequester>> sysDeviceReq;

inline constexpr std::uint16_t mouseVid = 0x264A;
inline constexpr std::uint16_t mousePid = 0x1001;

// What a ready command announces.
inline constexpr std::uint8_t readyMacro = 0x0B;
inline constexpr std::uint8_t readyProfile = 0x0C;

// What a read brought, and what became of it. Where a transfer failed, the value is what stands in
// the zeroed buffer.
template <typename Value>
struct [[nodiscard]] ReadResult {
  Outcome outcome;
  Value value{};
};

void startListenDev();
bool checkListenDev();

// The four transfers: feature report 0 of interface 0, and the numbered reports of interface 1,
// whose number is the first byte of the buffer. No error when all bytes were transferred.
[[nodiscard]] std::error_code GetCommand(std::span<std::uint8_t> buffer);
[[nodiscard]] std::error_code SetCommand(std::span<std::uint8_t> buffer);
[[nodiscard]] std::error_code GetCommand2(std::span<std::uint8_t> buffer);
[[nodiscard]] std::error_code SetCommand2(std::span<std::uint8_t> buffer);

// Sends the bytes as an 8-byte command report, the rest 0, and pauses. At most 8 bytes. `step` is
// what the command is sent for.
Outcome sendCommand(std::span<const std::uint8_t> bytes, SlotStep step = SlotStep::WriteSetting);
// The pause that the mouse needs after every report: 30 ms.
void pauseAfterReport();

// Makes the mouse take over what was written.
Outcome refreshDeviceData();
Outcome resetDev();
// Brings the mouse back, on the slot it was on; nothing when it is not there.
Outcome resetDevPro();

// Announces that the long read, or the long write, of that slot follows.
Outcome setReadyPro(std::uint8_t pro, std::uint8_t com, SlotStep step = SlotStep::ReadImage);
Outcome setReadyPro2(std::uint8_t pro, std::uint8_t com, SlotStep step = SlotStep::WriteMacro);

// One byte of device memory.
Outcome setAdrrData(std::uint8_t value, std::uint16_t addr, SlotStep step = SlotStep::WriteSetting);
ReadResult<std::uint8_t> getAdrrDataWithAddr(std::uint16_t addr,
                                             SlotStep step = SlotStep::ReadActiveSlot);
// Where the byte lies in the page of that slot: offset + slot * 256, in 16 bits.
std::uint16_t getOffsetAdrBy(std::uint32_t offset, std::uint32_t pro);

}  // namespace NerinAction

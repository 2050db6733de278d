#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <system_error>

#include "Action/Record/Outcome.h"
#include "Kit/Core/LXDeviceRequester.h"
#include "Kit/Core/ProcessWide.h"

// The link to the mouse and the commands that it understands at once. Without a mouse a command
// does nothing and a read leaves its zeroed buffer; the outcome says so.
namespace NerinAction {

// Null until startListenDev.
inline ProcessWide<std::shared_ptr<LXDeviceRequester>> sysDeviceReq;

inline constexpr std::uint16_t mouseVid = 0x264A;
inline constexpr std::uint16_t mousePid = 0x1001;

// The transfer that a ready command announces.
inline constexpr std::uint8_t readyMacro = 0x0B;
inline constexpr std::uint8_t readyProfile = 0x0C;

// The value that was read, and the outcome. After a failed transfer, the value comes from the
// zeroed buffer.
template <typename Value>
struct [[nodiscard]] ReadResult {
  Outcome outcome;
  Value value{};
};

// Holds the mouse for this program: another program of this user waits until it is let go. One
// inside another one belongs to that one. Waits as long as the platform says; does not hold if
// another program keeps the mouse longer.
class MouseHold {
 public:
  MouseHold();
  ~MouseHold();
  MouseHold(const MouseHold&) = delete;
  MouseHold& operator=(const MouseHold&) = delete;

  // device_or_resource_busy while another program has the mouse.
  static std::error_code error();
};

// A series of transfers that belong together. Its first failure ends it: what follows fails with
// the same error at once, and nothing of it reaches this mouse or one that is plugged in meanwhile.
// A series inside another one belongs to that one. It holds the mouse, and is ended from the start
// with device_or_resource_busy if another program has it. After a transfer that timed out, each
// series of the next second ends with timed_out before it begins: what a user does in one go waits
// only once for a mouse that does not answer.
class TransferSeries {
 public:
  TransferSeries();
  ~TransferSeries();
  TransferSeries(const TransferSeries&) = delete;
  TransferSeries& operator=(const TransferSeries&) = delete;

 private:
  MouseHold m_hold;
};

// How many reports the latest series has begun to write, with the one that failed.
int reportsInSeries();

// Whether the error says that the mouse is gone, does not answer at all, or belongs to another
// program: trying again is useless.
bool isMouseGone(const std::error_code& error);

void startListenDev();
bool checkListenDev();
// Why the mouse cannot be used now. A mouse that did not answer counts as silent until it answers
// or is plugged in anew; it is not asked here.
LXDeviceAbsence mouseAbsence();

// The four transfers: feature report 0 of interface 0, and the numbered reports of interface 1,
// whose number is the first byte of the buffer. A transfer of fewer bytes is an error.
[[nodiscard]] std::error_code GetCommand(std::span<std::uint8_t> buffer);
[[nodiscard]] std::error_code SetCommand(std::span<std::uint8_t> buffer);
[[nodiscard]] std::error_code GetCommand2(std::span<std::uint8_t> buffer);
[[nodiscard]] std::error_code SetCommand2(std::span<std::uint8_t> buffer);

// Sends a command report of up to 8 bytes, padded with 0, and pauses. `step` is the step that a
// failure names.
Outcome sendCommand(std::span<const std::uint8_t> bytes, SlotStep step = SlotStep::WriteSetting);
// The mouse needs a pause of 30 ms after every report.
void pauseAfterReport();

// Makes the mouse use what was written.
Outcome refreshDeviceData();
Outcome resetDev();

// Announces the long read or the long write of that slot.
Outcome setReadyPro(std::uint8_t pro, std::uint8_t com, SlotStep step = SlotStep::ReadImage);
Outcome setReadyPro2(std::uint8_t pro, std::uint8_t com, SlotStep step = SlotStep::WriteMacro);

// Writes and reads one byte of device memory.
Outcome setAdrrData(std::uint8_t value, std::uint16_t addr, SlotStep step = SlotStep::WriteSetting);
ReadResult<std::uint8_t> getAdrrDataWithAddr(std::uint16_t addr,
                                             SlotStep step = SlotStep::ReadActiveSlot);
// The address of a byte in the slot's page: offset + slot * 256, in 16 bits.
std::uint16_t getOffsetAdrBy(std::uint32_t offset, std::uint32_t pro);

}  // namespace NerinAction

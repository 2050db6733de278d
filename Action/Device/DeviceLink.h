#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "Kit/Core/LXDeviceRequester.h"

// The link to the mouse and the commands it understands at once. No result is checked: without a
// mouse a command does nothing and a read leaves its zeroed buffer.
namespace NerinAction {

// The requester in use; null until startListenDev.
inline std::shared_ptr<LXDeviceRequester> sysDeviceReq;

inline constexpr std::uint16_t mouseVid = 0x264A;
inline constexpr std::uint16_t mousePid = 0x1001;

// What a ready command announces.
inline constexpr std::uint8_t readyMacro = 0x0B;
inline constexpr std::uint8_t readyProfile = 0x0C;

void startListenDev();
bool checkListenDev();

// The four transfers: feature report 0 of interface 0, and the numbered reports of interface 1,
// whose number is the first byte of the buffer. True when the transfer was done.
bool GetCommand(std::span<std::uint8_t> buffer);
bool SetCommand(std::span<std::uint8_t> buffer);
bool GetCommand2(std::span<std::uint8_t> buffer);
bool SetCommand2(std::span<std::uint8_t> buffer);

// Sends the bytes as an 8-byte command report, the rest 0, and pauses. At most 8 bytes.
void sendCommand(std::span<const std::uint8_t> bytes);
// The pause that the mouse needs after every report: 30 ms.
void pauseAfterReport();

// Makes the mouse take over what was written.
void refreshDeviceData();
void resetDev();
// Brings the mouse back, on the slot it was on; nothing when it is not there.
void resetDevPro();

// Announces that the long read, or the long write, of that slot follows.
void setReadyPro(std::uint8_t pro, std::uint8_t com);
void setReadyPro2(std::uint8_t pro, std::uint8_t com);

// One byte of device memory.
void setAdrrData(std::uint8_t value, std::uint16_t addr);
std::uint8_t getAdrrDataWithAddr(std::uint16_t addr);
// Where the byte lies in the page of that slot: offset + slot * 256, in 16 bits.
std::uint16_t getOffsetAdrBy(std::uint32_t offset, std::uint32_t pro);

// What makes the sum of the bytes and itself 0 in 8 bits.
std::uint8_t GetChecksum(std::span<const std::uint8_t> bytes);

}  // namespace NerinAction

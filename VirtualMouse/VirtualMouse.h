#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "MacroPlayer/MacroPlayback.h"

// The eight bytes that open a USB control transfer.
struct SetupPacket {
  std::uint8_t requestType = 0;
  std::uint8_t request = 0;
  std::uint16_t value = 0;
  std::uint16_t index = 0;
  std::uint16_t length = 0;
};

enum class TransferStatus {
  Done,
  Stalled,  // the firmware refuses this transfer
  Gone,     // no mouse on the bus
};

struct TransferResult {
  TransferStatus status = TransferStatus::Gone;
  std::uint32_t bytes = 0;  // of the data stage
};

// A way in which the mouse misbehaves, for tests and demonstrations.
struct MouseScenario {
  enum class Kind {
    Healthy,
    Absent,
    UnpluggedAfter,
    Slow,
    AnswersShort,
    AnswersRandom,
    HoldsGarbage
  };
  Kind kind = Kind::Healthy;
  std::uint32_t transfers = 0;          // UnpluggedAfter: the transfers that still succeed
  std::chrono::milliseconds pause{40};  // Slow: the delay of each transfer

  // Parses "healthy", "absent", "unplugged-after=N", "slow", "short", "random", "garbage".
  static std::optional<MouseScenario> parse(std::string_view text);
};

// One transfer from the mouse's side.
struct TransferRecord {
  SetupPacket setup;
  std::vector<std::uint8_t> data;  // sent to the mouse, or its answer
  TransferStatus status = TransferStatus::Done;
};

// The firmware's side of the mouse, in software: it answers control transfers and keeps data like
// the real mouse. Not thread-safe.
class VirtualMouse {
 public:
  static constexpr std::uint16_t vendorId = 0x264A;
  static constexpr std::uint16_t productId = 0x1001;
  static constexpr int slotCount = 10;
  static constexpr int macroSlotCount = 190;
  static constexpr std::size_t nameReportSize = 70;
  static constexpr std::size_t imageReportSize = 154;
  static constexpr std::size_t macroReportSize = 2053;
  // How many bytes a mouse still sends when it answers short.
  static constexpr std::size_t shortAnswerSize = 3;

  // A mouse as it leaves the factory, with its memory in this process only.
  VirtualMouse();
  // A mouse whose memory is the file at `memoryFile`, which is created if missing. Every change is
  // in the file before the transfer that made it returns. Several processes can have one file: each
  // transfer is one step for all of them, and finds what the others wrote. Throws std::system_error
  // if the file cannot be opened for writing, cannot be created, or stays in use (EWOULDBLOCK), and
  // std::runtime_error if it is not the memory of a mouse.
  explicit VirtualMouse(const std::filesystem::path& memoryFile);
  ~VirtualMouse();
  VirtualMouse(const VirtualMouse&) = delete;
  VirtualMouse& operator=(const VirtualMouse&) = delete;

  // Performs one control transfer. Host to device: sends `data`; device to host: fills `data` from
  // its start. `data` has setup.length bytes and stays unchanged unless the status is Done. A long
  // report that is dropped, for example for a wrong checksum, is still acknowledged: see faults().
  TransferResult controlTransfer(const SetupPacket& setup, std::span<std::uint8_t> data);

  // Applies from now on. Garbage covers the memory and is in no file; the next scenario uncovers
  // the memory. Random answers repeat each time the scenario is set.
  void setScenario(MouseScenario scenario);
  bool isAttached() const;
  void detach();
  // Plugs the mouse in, which also ends a scenario that took it off the bus.
  void attach();

  // The file of the memory; empty without one.
  std::filesystem::path memoryFile() const;

  // Called after the mouse was plugged in or unplugged, on that thread, even within a transfer.
  void setPresenceObserver(std::function<void()> observer);

  // How often the mouse was plugged in, the first time included.
  std::uint64_t attachments() const;

  // Presses the mouse's own button, which switches to another slot (0..9). Does nothing without
  // power.
  void pressSlotButton(int slot);
  // Resets a slot to its state before any write: no name, settings 0, no macros.
  void clearSlot(int slot);

  // What the mouse holds, for tests and displays, as of the last transfer or refresh(). Slots 0..9,
  // macro slots 0..189; other numbers throw std::out_of_range. The spans point into the mouse: copy
  // what must last.
  int activeSlot() const;                                     // 10..15 if the host has written that
  std::span<const std::uint8_t> nameReport(int slot) const;   // 70 bytes, as a read returns
  std::span<const std::uint8_t> imageReport(int slot) const;  // 154 bytes
  // 2053 bytes; byte 0 is 0xB0 if the slot holds a macro, otherwise 4 and followed by zeros.
  std::span<const std::uint8_t> macroReport(int macroSlot) const;
  std::string slotName(int slot) const;
  // Takes in what other processes wrote.
  void refresh();
  // What the mouse sends when a button with this macro is pressed. Without a macro: no events.
  MacroPlayback playMacro(int macroSlot) const;
  // Whether a name, image or macro was written without a refresh command since.
  bool hasUnrefreshedWrites() const;

  // The latest transfers that reached the mouse, including stalled ones, oldest first. A mouse that
  // runs for days forgets the older ones: the last `transcriptLimit` are kept, unless a
  // test asks for more.
  static constexpr std::size_t transcriptLimit = 4096;
  void setTranscriptLimit(std::size_t limit);
  const std::deque<TransferRecord>& transcript() const;
  void clearTranscript();
  // What the host did wrong, in words: a wrong checksum, an unknown command, a short transfer. Also
  // reports a memory file that could not be written; such a transfer stalls and changes nothing.
  const std::vector<std::string>& faults() const;
  void clearFaults();

 private:
  struct State;
  std::unique_ptr<State> m_state;
};

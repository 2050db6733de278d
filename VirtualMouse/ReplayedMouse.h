#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "Kit/Core/LXDeviceRequester.h"

// A mouse that answers as another one did, from the trace of its transfers: a line a transfer, as
// "nerinctl --trace" writes it. Each question gets the answers that it got then, in their order,
// and the last one from then on. What was not asked then has no answer.
class ReplayedMouse final : public LXDeviceRequester {
 public:
  // The first line of a report, whose trace stands under the line "[trace]".
  static constexpr const char* reportHeading = "NerinOption report 1";
  static constexpr const char* traceHeading = "[trace]";

  // Whether the text is a report or a trace, and no memory of a mouse.
  static bool isReplayable(std::string_view text);
  // Lines that are no transfer are left out.
  explicit ReplayedMouse(std::string_view text);

  void setIsPrintMsg(bool /*isPrintMsg*/) override {}
  void listenDevWithVid(std::uint16_t /*vid*/, std::uint16_t /*pid*/) override {}
  bool isDevOn() override { return true; }
  bool sendDeviceRequest(LXDeviceRequest& request) override;
  void resetCurrDevice() override {}

 private:
  struct Answer {
    std::vector<std::uint8_t> bytes;
    bool isDone = false;
  };
  struct Answers {
    std::vector<Answer> all;
    std::size_t next = 0;

    const Answer& take() { return all[next + 1 < all.size() ? next++ : next]; }
  };
  // What was written before a question says what it asks for. A write is a question, too: whether
  // the mouse takes it.
  using Question = std::tuple<bool, std::vector<std::uint8_t>, std::uint16_t, std::uint16_t>;

  void add(std::string_view line);

  std::map<Question, Answers> m_answers;
  std::vector<std::uint8_t> m_written;
};

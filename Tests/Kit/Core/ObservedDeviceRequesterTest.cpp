#include <array>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Kit/Core/ObservedDeviceRequester.h"

namespace {

class ToldRequester final : public LXDeviceRequester {
 public:
  explicit ToldRequester(std::vector<std::string>& calls) : m_calls(calls) {}

  void setIsPrintMsg(bool isPrintMsg) override {
    m_calls.push_back(isPrintMsg ? "print" : "do not print");
  }
  void listenDevWithVid(std::uint16_t vid, std::uint16_t pid) override {
    m_calls.push_back("listen " + std::to_string(vid) + " " + std::to_string(pid));
  }
  bool isDevOn() override { return isOn; }
  bool sendDeviceRequest(LXDeviceRequest& request) override {
    m_calls.emplace_back("send");
    request.data[0] = 7;
    request.wLenDone = 1;
    return isOn;
  }
  void resetCurrDevice() override { m_calls.emplace_back("reset"); }

  bool isOn = true;

 private:
  std::vector<std::string>& m_calls;
};

}  // namespace

TEST(ObservedDeviceRequester, TellsOfATransferBeforeAndAfterIt) {
  std::vector<std::string> calls;
  const auto inner = std::make_shared<ToldRequester>(calls);
  ObservedDeviceRequester requester(
      inner, {.willSend =
                  [&](const LXDeviceRequest& request) {
                    calls.push_back("before " + std::to_string(request.data[0]));
                  },
              .didSend =
                  [&](const LXDeviceRequest& request, bool isDone) {
                    calls.push_back("after " + std::to_string(request.data[0]) +
                                    (isDone ? " done" : " failed"));
                  }});
  std::array<std::uint8_t, 1> data{3};
  LXDeviceRequest request{.data = data};
  EXPECT_TRUE(requester.sendDeviceRequest(request));
  EXPECT_EQ(request.wLenDone, 1U);
  inner->isOn = false;
  EXPECT_FALSE(requester.sendDeviceRequest(request));
  EXPECT_EQ(calls, (std::vector<std::string>{"before 3", "send", "after 7 done", "before 7", "send",
                                             "after 7 failed"}));
}

TEST(ObservedDeviceRequester, PassesEverythingElseOn) {
  std::vector<std::string> calls;
  const auto inner = std::make_shared<ToldRequester>(calls);
  ObservedDeviceRequester requester(inner, {});
  requester.setIsPrintMsg(true);
  requester.listenDevWithVid(1, 2);
  requester.resetCurrDevice();
  EXPECT_TRUE(requester.isDevOn());
  inner->isOn = false;
  EXPECT_FALSE(requester.isDevOn());
  EXPECT_EQ(calls, (std::vector<std::string>{"print", "listen 1 2", "reset"}));
}

TEST(ObservedDeviceRequester, NeedsNoObserver) {
  std::vector<std::string> calls;
  ObservedDeviceRequester requester(std::make_shared<ToldRequester>(calls), {});
  std::array<std::uint8_t, 1> data{};
  LXDeviceRequest request{.data = data};
  EXPECT_TRUE(requester.sendDeviceRequest(request));
  EXPECT_EQ(calls, std::vector<std::string>{"send"});
}

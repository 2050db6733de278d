#pragma once

#include <functional>
#include <memory>

#include "Kit/Core/LXDeviceRequester.h"

// Forwards everything to another requester and reports each transfer: for a trace, a progress bar,
// or to learn afterwards whether everything arrived.
class ObservedDeviceRequester final : public LXDeviceRequester {
 public:
  struct Observer {
    std::function<void(const LXDeviceRequest&)> willSend;
    std::function<void(const LXDeviceRequest&, bool isDone)> didSend;
  };

  ObservedDeviceRequester(std::shared_ptr<LXDeviceRequester> requester, Observer observer)
      : m_requester(std::move(requester)), m_observer(std::move(observer)) {}

  void setIsPrintMsg(bool isPrintMsg) override { m_requester->setIsPrintMsg(isPrintMsg); }
  void listenDevWithVid(std::uint16_t vid, std::uint16_t pid) override {
    m_requester->listenDevWithVid(vid, pid);
  }
  bool isDevOn() override { return m_requester->isDevOn(); }
  LXDeviceAbsence absence() override { return m_requester->absence(); }
  bool sendDeviceRequest(LXDeviceRequest& request) override {
    if (m_observer.willSend) {
      m_observer.willSend(request);
    }
    const bool isDone = m_requester->sendDeviceRequest(request);
    if (m_observer.didSend) {
      m_observer.didSend(request, isDone);
    }
    return isDone;
  }
  std::uint64_t connection() const override { return m_requester->connection(); }
  Claim claim(std::chrono::milliseconds limit, std::error_code& error) override {
    return m_requester->claim(limit, error);
  }
  void resetCurrDevice() override { m_requester->resetCurrDevice(); }

 private:
  std::shared_ptr<LXDeviceRequester> m_requester;
  Observer m_observer;
};

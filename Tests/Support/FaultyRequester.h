#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <utility>

#include "Kit/Core/LXDeviceRequester.h"
#include "VirtualMouse/VirtualDeviceRequester.h"
#include "VirtualMouse/VirtualMouse.h"

// What goes wrong with a transfer.
enum class TransferFault : std::uint8_t {
  None,
  Unplugged,  // the mouse is gone from then on
  Hung,       // it answers nothing from then on, and the kernel waits five seconds each time
  HungOnce,   // it answers again after that
  Short,      // half of the bytes from then on
  ShortOnce,
  Stalled,  // refused from then on
  StalledOnce,
  AnswerLost,  // the mouse did it, and the host does not get to know
};

// A virtual mouse with one fault at one transfer. Its clock moves only while something waits.
class FaultyRequester final : public LXDeviceRequester {
 public:
  explicit FaultyRequester(std::shared_ptr<VirtualMouse> mouse) { plugIn(std::move(mouse)); }

  // A healthy mouse, another one or the same.
  void plugIn(std::shared_ptr<VirtualMouse> mouse) {
    m_mouse = std::move(mouse);
    m_requester = std::make_unique<VirtualDeviceRequester>(m_mouse);
    m_requester->listenDevWithVid(VirtualMouse::vendorId, VirtualMouse::productId);
    recover();
  }
  void recover() {
    failAfter(0, TransferFault::None);
    m_mouse->attach();
    ++m_connection;
    // Longer than the rest of a deed that waited for a mouse that hung.
    time += std::chrono::hours(1);
  }
  // The fault happens after this many more transfers.
  void failAfter(int transfers, TransferFault fault) {
    m_transfers = 0;
    m_failAt = transfers;
    m_fault = fault;
  }
  // Since failAfter.
  int transfers() const { return m_transfers; }

  void setIsPrintMsg(bool) override {}
  void listenDevWithVid(std::uint16_t, std::uint16_t) override {}
  bool isDevOn() override { return m_requester->isDevOn(); }
  std::uint64_t connection() const override { return m_connection; }
  void resetCurrDevice() override { ++m_connection; }
  Claim claim(std::chrono::milliseconds limit, std::error_code& error) override {
    return m_requester->claim(limit, error);
  }
  bool sendDeviceRequest(LXDeviceRequest& request) override {
    const int at = m_transfers++;
    return at == m_failAt || (at > m_failAt && lasts()) ? fail(request)
                                                        : m_requester->sendDeviceRequest(request);
  }

  std::chrono::steady_clock::time_point time{std::chrono::seconds(100)};

 private:
  bool lasts() const {
    return m_fault == TransferFault::Unplugged || m_fault == TransferFault::Hung ||
           m_fault == TransferFault::Short || m_fault == TransferFault::Stalled;
  }
  bool fail(LXDeviceRequest& request) {
    switch (m_fault) {
      case TransferFault::None:
        return m_requester->sendDeviceRequest(request);
      case TransferFault::Unplugged:
        if (m_mouse->isAttached()) {
          m_mouse->detach();
        }
        return m_requester->sendDeviceRequest(request);
      case TransferFault::Hung:
      case TransferFault::HungOnce:
        time += std::chrono::seconds(5);
        // A device that timed out is opened anew.
        ++m_connection;
        request.error = std::make_error_code(std::errc::timed_out);
        return false;
      case TransferFault::Short:
      case TransferFault::ShortOnce:
        return answerShort(request);
      case TransferFault::Stalled:
      case TransferFault::StalledOnce:
        request.error = std::make_error_code(std::errc::broken_pipe);
        return false;
      case TransferFault::AnswerLost:
        static_cast<void>(m_requester->sendDeviceRequest(request));
        request.wLenDone = 0;
        request.error = std::make_error_code(std::errc::io_error);
        return false;
    }
    return false;
  }
  bool answerShort(LXDeviceRequest& request) {
    const bool isToHost = (request.bmRequestType & 0x80U) != 0;
    if (isToHost && !m_requester->sendDeviceRequest(request)) {
      return false;
    }
    request.wLenDone = static_cast<std::uint32_t>(request.data.size() / 2);
    return true;
  }

  std::shared_ptr<VirtualMouse> m_mouse;
  std::unique_ptr<VirtualDeviceRequester> m_requester;
  TransferFault m_fault = TransferFault::None;
  int m_failAt = 0;
  int m_transfers = 0;
  std::uint64_t m_connection = 1;
};

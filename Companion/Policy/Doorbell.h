#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <set>

// When to look what the mouse did. Nobody knows what its own input reports say, but one of them
// says that something happened: it rings, and after a quiet moment the mouse is read.
class Doorbell {
 public:
  using Time = std::chrono::steady_clock::time_point;

  // The mouse has ended what it does when it was quiet for so long.
  static constexpr auto quiet = std::chrono::milliseconds(30);
  // A report so soon after a transfer of this program is the echo of that transfer.
  static constexpr auto echo = std::chrono::milliseconds(100);
  // A kind of report that rang so often in this time for nothing says something else, and is not
  // listened to until the mouse is plugged in anew.
  static constexpr std::size_t fruitlessLimit = 5;
  static constexpr auto fruitlessTime = std::chrono::seconds(10);

  void heard(std::uint8_t reportId, Time now);
  bool isEcho(Time now) const { return m_lastTransfer && now - *m_lastTransfer < echo; }
  void transferred(Time now) { m_lastTransfer = now; }
  // When to read the mouse; nothing while the bell is silent.
  std::optional<Time> due() const;
  // The mouse was read after the bell, and had changed or not.
  void answered(bool hasChanged, Time now);
  bool isDisarmed(std::uint8_t reportId) const { return m_disarmed.contains(reportId); }

 private:
  std::optional<Time> m_lastTransfer;
  std::optional<Time> m_lastRing;
  std::set<std::uint8_t> m_ringing;
  std::map<std::uint8_t, std::deque<Time>> m_fruitless;
  std::set<std::uint8_t> m_disarmed;
};

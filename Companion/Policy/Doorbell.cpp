#include "Companion/Policy/Doorbell.h"

void Doorbell::heard(std::uint8_t reportId, Time now) {
  if (isEcho(now) || isDisarmed(reportId)) {
    return;
  }
  m_ringing.insert(reportId);
  m_lastRing = now;
}

std::optional<Doorbell::Time> Doorbell::due() const {
  return m_lastRing ? std::optional(*m_lastRing + quiet) : std::nullopt;
}

void Doorbell::answered(bool hasChanged, Time now) {
  for (const std::uint8_t reportId : m_ringing) {
    std::deque<Time>& rings = m_fruitless[reportId];
    if (hasChanged) {
      rings.clear();
      continue;
    }
    rings.push_back(now);
    while (now - rings.front() > fruitlessTime) {
      rings.pop_front();
    }
    if (rings.size() >= fruitlessLimit) {
      m_disarmed.insert(reportId);
    }
  }
  m_ringing.clear();
  m_lastRing.reset();
}

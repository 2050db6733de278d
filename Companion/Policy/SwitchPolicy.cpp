#include "Companion/Policy/SwitchPolicy.h"

#include <algorithm>

void SwitchPolicy::mouseCame(int slot) {
  m_current = slot;
  // A mouse that comes back with the slot that was set for a program still has the same base.
  if (m_ours != slot || !m_base) {
    m_base = slot;
    m_ours.reset();
  }
  m_isOverridden = false;
  m_hasFailed = false;
}

void SwitchPolicy::mouseGone() {
  m_current.reset();
}

void SwitchPolicy::inFront(Program program, Time now) {
  if (m_front && m_front->id == program.id) {
    // A glimpse of another program is over.
    m_front = std::move(program);
    m_coming.reset();
  } else if (m_coming && m_coming->first.id == program.id) {
    m_coming->first = std::move(program);
  } else {
    m_coming.emplace(std::move(program), now);
  }
}

void SwitchPolicy::relinked(const std::optional<int>& slot) {
  if (m_front && m_front->slot != slot) {
    m_front->slot = slot;
    m_isOverridden = false;
  }
}

void SwitchPolicy::personChose(int slot, Time now) {
  if (slot == m_current) {
    return;
  }
  m_current = slot;
  if (isOwnEcho(slot, now)) {
    return;
  }
  m_base = slot;
  m_ours.reset();
  m_isOverridden = true;
}

void SwitchPolicy::mouseHas(int slot) {
  if (!m_current || slot == *m_current) {
    return;
  }
  m_current = slot;
  m_base = slot;
  m_ours.reset();
}

void SwitchPolicy::wrote(int slot, bool isDone, Time now) {
  m_lastWrite = now;
  m_hasFailed = !isDone;
  if (!isDone) {
    return;
  }
  m_current = slot;
  m_ours = slot == m_base ? std::nullopt : std::optional(slot);
  m_writes.emplace_back(slot, now);
  while (now - m_writes.front().second > echoTime) {
    m_writes.pop_front();
  }
}

bool SwitchPolicy::isOwnEcho(int slot, Time now) const {
  return std::any_of(m_writes.begin(), m_writes.end(), [&](const auto& write) {
    return write.first == slot && now - write.second <= echoTime;
  });
}

void SwitchPolicy::settle(Time now) {
  if (m_coming && now - m_coming->second >= settling) {
    m_front = std::move(m_coming->first);
    m_coming.reset();
    m_isOverridden = false;
  }
}

std::optional<int> SwitchPolicy::target() const {
  if (!m_current || !m_isOn || m_pause != Pause::None || m_sight == Sight::None || !m_front ||
      m_isOverridden) {
    return std::nullopt;
  }
  if (m_front->slot) {
    return m_front->slot == m_current ? std::nullopt : m_front->slot;
  }
  // Back only from a slot that was set here.
  return m_ours && m_ours == m_current && m_base != m_current ? m_base : std::nullopt;
}

std::optional<int> SwitchPolicy::wanted(Time now) {
  settle(now);
  if (m_lastWrite && now - *m_lastWrite < writePause) {
    return std::nullopt;
  }
  return target();
}

std::optional<SwitchPolicy::Time> SwitchPolicy::due(Time now) const {
  std::optional<Time> next;
  const auto consider = [&](Time time) { next = next ? std::min(*next, time) : time; };
  if (m_coming) {
    consider(m_coming->second + settling);
  }
  if (target()) {
    consider(m_lastWrite ? std::max(now, *m_lastWrite + writePause) : now);
  }
  return next;
}

SlotReason::Kind SwitchPolicy::reasonKind() const {
  if (!m_current) {
    return SlotReason::NoMouse;
  }
  if (m_pause == Pause::Locked) {
    return SlotReason::Locked;
  }
  if (!m_isOn) {
    return SlotReason::SwitchedOff;
  }
  if (!m_hasLinks) {
    return SlotReason::NothingLinked;
  }
  if (m_pause == Pause::WindowHasEdits) {
    return SlotReason::WindowHasEdits;
  }
  if (m_sight == Sight::None) {
    return SlotReason::Untold;
  }
  if (m_hasFailed && target()) {
    return SlotReason::TriedAgain;
  }
  const bool isLinked = m_front && m_front->slot;
  if (m_sight == Sight::Running) {
    return isLinked && m_front->slot == m_current ? SlotReason::Running
           : isLinked && m_isOverridden           ? SlotReason::ByHand
                                                  : SlotReason::InsteadRunning;
  }
  if (isLinked && m_front->slot == m_current) {
    return SlotReason::InFront;
  }
  return isLinked && m_isOverridden ? SlotReason::ByHandMeanwhile : SlotReason::ByHand;
}

SlotReason SwitchPolicy::reason() const {
  SlotReason reason{.kind = reasonKind(),
                    .slot = m_current.value_or(0),
                    .otherSlot = target().value_or(0),
                    .program = {}};
  if (m_front && m_front->slot) {
    reason.program = m_front->name;
  }
  return reason;
}

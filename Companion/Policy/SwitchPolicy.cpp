#include "Companion/Policy/SwitchPolicy.h"

#include <algorithm>

namespace {

std::string slotText(int slot) {
  return "Slot " + std::to_string(slot + 1);
}

}  // namespace

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
  if (!m_current || m_pause != Pause::None || m_sight == Sight::None || !m_front ||
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

std::string SwitchPolicy::explanation() const {
  std::string text = sentence();
  std::replace_if(
      text.begin(), text.end(),
      [](char character) { return static_cast<unsigned char>(character) < ' '; }, ' ');
  return text;
}

std::string SwitchPolicy::sentence() const {
  if (!m_current) {
    return "No mouse is there";
  }
  const std::string now = slotText(*m_current);
  if (m_pause == Pause::WindowHasEdits) {
    return now + ": slots do not follow programs while the window has edits that are not applied";
  }
  if (m_pause == Pause::Locked) {
    return now + ": slots do not follow programs while the session is locked";
  }
  if (m_sight == Sight::None) {
    return now + ": this desktop does not tell programs which window is in front";
  }
  if (m_hasFailed && target()) {
    return now + ": " + slotText(*target()) + " could not be chosen and is tried again";
  }
  if (m_front && m_front->slot && m_front->slot == m_current) {
    return now + ", because " + m_front->name +
           (m_sight == Sight::Running ? " runs; this desktop does not tell programs which window "
                                        "is in front"
                                      : " is in front");
  }
  if (m_isOverridden && m_front && m_front->slot) {
    return now + ", chosen by hand while " + m_front->name + " is in front";
  }
  return now + ", the last one chosen by hand";
}

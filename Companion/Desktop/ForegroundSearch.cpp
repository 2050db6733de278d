#include "Companion/Desktop/ForegroundSearch.h"

#include <utility>

ForegroundSearch::ForegroundSearch(EventLoop& loop, std::vector<Way> ways, Changed changed,
                                   Lost lost)
    : m_ways(std::move(ways)),
      m_changed(std::move(changed)),
      m_lost(std::move(lost)),
      m_nextTimer(loop, [this] { next(); }) {
  m_nextTimer.startIn(std::chrono::milliseconds(0));
}

std::string ForegroundSearch::name() const {
  return m_hasTold && m_way ? m_way->name() : "";
}

bool ForegroundSearch::tellsRunning() const {
  return m_way && m_way->tellsRunning();
}

void ForegroundSearch::linksChanged() {
  if (m_way) {
    m_way->linksChanged();
  }
}

void ForegroundSearch::next() {
  m_way.reset();
  while (!m_hasTold && !m_way && m_tried < m_ways.size()) {
    m_way = m_ways[m_tried++](
        [this](const std::optional<AppIdentity>& identity) {
          m_hasTold = true;
          m_changed(identity);
        },
        [this] { m_nextTimer.startIn(std::chrono::milliseconds(0)); });
  }
  if (!m_way) {
    const Lost lost = std::exchange(m_lost, nullptr);
    if (lost) {
      lost();
    }
  }
}

#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "Companion/Desktop/Foreground.h"

// Tries ways one after the other, until one tells something. Some know only after a while that the
// desktop does not have them.
class ForegroundSearch final : public Foreground {
 public:
  // Null where the way is known not to be there.
  using Way = std::function<std::unique_ptr<Foreground>(Changed changed, Lost lost)>;

  ForegroundSearch(EventLoop& loop, std::vector<Way> ways, Changed changed, Lost lost);

  std::string name() const override;
  bool tellsRunning() const override;
  void linksChanged() override;

 private:
  void next();

  std::vector<Way> m_ways;
  Changed m_changed;
  Lost m_lost;
  std::size_t m_tried = 0;
  bool m_hasTold = false;
  std::unique_ptr<Foreground> m_way;
  // A way that ends may not be destroyed while it tells so.
  EventLoop::Timer m_nextTimer;
};

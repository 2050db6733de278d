#pragma once

#include <future>

// Reads the system's list of fonts in a separate thread while the toolkit starts; otherwise the
// first drawn word would wait for it. Create it first in main.
class FontList {
 public:
  FontList();

 private:
  std::future<void> m_reader;
};

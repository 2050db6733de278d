#pragma once

#include <future>

// Reads the system's list of fonts in a thread of its own while the toolkit starts: the first word
// that is drawn would wait for it. Make it first thing in main.
class FontList {
 public:
  FontList();

 private:
  std::future<void> m_reader;
};

#pragma once

#include <filesystem>

// Tells that hidraw nodes came, went or got other rights where udevd does not run: the kernel makes
// and removes them by itself. Needs neither a thread nor a look now and then.
class HidNodeWatch {
 public:
  // The nodes lie in `folder`.
  explicit HidNodeWatch(const std::filesystem::path& folder);
  ~HidNodeWatch();
  HidNodeWatch(const HidNodeWatch&) = delete;
  HidNodeWatch& operator=(const HidNodeWatch&) = delete;

  // Becomes readable when there is news, and once more a moment later: what else the kernel and a
  // device manager do about a node follows its name. -1 if the folder cannot be watched. Belongs to
  // the watch.
  int descriptor() const { return m_both; }

  // Whether anything happened since the last call.
  bool takeNews();

 private:
  bool readEvents();

  int m_both = -1;  // readable if one of the others is
  int m_folder = -1;
  int m_moment = -1;
};

#include "VirtualMouse/MousePowerFile.h"

#include <fcntl.h>
#include <unistd.h>

MousePowerFile::~MousePowerFile() {
  if (m_descriptor >= 0) {
    ::close(m_descriptor);
  }
}

bool MousePowerFile::open(int flags) {
  constexpr mode_t forTheUser = 0600;
  if (m_descriptor < 0 && !m_path.empty()) {
    m_descriptor =
        ::open(m_path.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | flags, forTheUser);
  }
  return m_descriptor >= 0;
}

void MousePowerFile::read(State& state) {
  State held{};
  if (open(0) &&
      ::pread(m_descriptor, held.data(), held.size(), 0) == static_cast<ssize_t>(held.size())) {
    state = held;
  }
}

void MousePowerFile::write(const State& state) {
  if (open(O_CREAT) &&
      ::pwrite(m_descriptor, state.data(), state.size(), 0) != static_cast<ssize_t>(state.size())) {
    // Half a state is none; what this program knows is then its own.
    ::close(m_descriptor);
    m_descriptor = -1;
    ::unlink(m_path.c_str());
    m_path.clear();
  }
}

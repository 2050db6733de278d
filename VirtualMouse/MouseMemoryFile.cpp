#include "VirtualMouse/MouseMemoryFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Retries, because another command may be about to finish. On failure errno gives the reason.
bool lockSoon(int descriptor) {
  constexpr int tries = 100;
  constexpr useconds_t pause = 10'000;
  for (int n = 0; n < tries; ++n) {
    if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0) {
      return true;
    }
    if (errno != EWOULDBLOCK && errno != EINTR) {
      return false;
    }
    ::usleep(pause);
  }
  return false;
}

constexpr std::array<std::uint8_t, 16> header{'N', 'E', 'R', 'I', 'N', 'M', 'E', 'M', 1};
constexpr std::size_t versionOffset = 8;

[[noreturn]] void failWith(int error, const std::string& trouble,
                           const std::filesystem::path& path) {
  throw std::system_error(error, std::generic_category(), trouble + " \"" + path.string() + "\"");
}

[[noreturn]] void refuse(const std::filesystem::path& path, const std::string& reason) {
  throw std::runtime_error("\"" + path.string() +
                           "\" is not the memory of a virtual mouse: " + reason);
}

// 0 or an error number.
int writeAll(int descriptor, std::size_t offset, std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t written =
        ::pwrite(descriptor, bytes.data(), bytes.size(), static_cast<off_t>(offset));
    if (written < 0) {
      if (errno == EINTR) {
        continue;
      }
      return errno;
    }
    offset += static_cast<std::size_t>(written);
    bytes = bytes.subspan(static_cast<std::size_t>(written));
  }
  return 0;
}

// The number of bytes read; fewer at the end of the file, with errno 0, or after an error.
std::size_t readAll(int descriptor, std::size_t offset, std::span<std::uint8_t> bytes) {
  std::size_t held = 0;
  while (held < bytes.size()) {
    errno = 0;
    const ssize_t got = ::pread(descriptor, bytes.data() + held, bytes.size() - held,
                                static_cast<off_t>(offset + held));
    if (got < 0 && errno == EINTR) {
      continue;
    }
    if (got <= 0) {
      break;
    }
    held += static_cast<std::size_t>(got);
  }
  return held;
}

// Renames the finished file without replacing another one. 0 or an error number.
int nameWithoutReplacing(const std::string& from, const std::string& to) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
    return 0;
  }
  if (errno != EINVAL && errno != ENOSYS) {
    return errno;
  }
  // Where that is impossible, link() also fails if the name is taken.
  if (::link(from.c_str(), to.c_str()) != 0) {
    return errno;
  }
  ::unlink(from.c_str());
  return 0;
}

}  // namespace

MouseMemoryFile::MouseMemoryFile(const std::filesystem::path& path,
                                 std::span<std::uint8_t> contents)
    : m_path(path) {
  try {
    // Another process may create the file between the two steps, so look again.
    for (int attempt = 0; attempt < 3; ++attempt) {
      if (openExisting()) {
        load(contents);
        end();
        return;
      }
      if (createFrom(contents)) {
        end();
        return;
      }
    }
    failWith(ENOENT, "cannot open or make the memory file", m_path);
  } catch (...) {
    closeFile();
    throw;
  }
}

MouseMemoryFile::~MouseMemoryFile() {
  closeFile();
}

void MouseMemoryFile::begin(std::span<std::uint8_t> contents) {
  lock();
  const std::size_t held = readAll(m_descriptor, header.size(), contents);
  if (held != contents.size()) {
    const int error = errno != 0 ? errno : EIO;
    end();
    failWith(error, "cannot read the memory file", m_path);
  }
}

void MouseMemoryFile::end() {
  ::flock(m_descriptor, LOCK_UN);
}

void MouseMemoryFile::lock() const {
  // Where the file system has no locks, this program may well be the only one.
  if (!lockSoon(m_descriptor) && errno == EWOULDBLOCK) {
    failWith(errno, "another program is using the memory file", m_path);
  }
}

void MouseMemoryFile::write(std::size_t offset, std::span<const std::uint8_t> bytes) {
  const int error = writeAll(m_descriptor, header.size() + offset, bytes);
  if (error != 0) {
    failWith(error, "cannot write the memory file", m_path);
  }
}

bool MouseMemoryFile::openExisting() {
  // Without O_NONBLOCK, opening a device or a pipe could wait forever.
  m_descriptor = ::open(m_path.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (m_descriptor < 0) {
    if (errno == ENOENT) {
      return false;
    }
    failWith(errno, "cannot open the memory file", m_path);
  }
  return true;
}

bool MouseMemoryFile::createFrom(std::span<const std::uint8_t> contents) {
  std::string temporary = m_path.string() + ".XXXXXX";
  m_descriptor = ::mkostemp(temporary.data(), O_CLOEXEC);
  if (m_descriptor < 0) {
    failWith(errno, "cannot make the memory file", m_path);
  }
  int error = writeAll(m_descriptor, 0, header);
  if (error == 0) {
    error = writeAll(m_descriptor, header.size(), contents);
  }
  // Locked before it gets its name, so that no other process can lock it first.
  if (error == 0 && (::fsync(m_descriptor) != 0 || ::flock(m_descriptor, LOCK_EX | LOCK_NB) != 0)) {
    error = errno;
  }
  if (error == 0) {
    error = nameWithoutReplacing(temporary, m_path.string());
  }
  if (error == 0) {
    return true;
  }
  ::unlink(temporary.c_str());
  closeFile();
  if (error == EEXIST) {
    return false;
  }
  failWith(error, "cannot make the memory file", m_path);
}

void MouseMemoryFile::load(std::span<std::uint8_t> contents) const {
  struct stat status {};
  if (::fstat(m_descriptor, &status) != 0) {
    failWith(errno, "cannot read the memory file", m_path);
  }
  if (!S_ISREG(status.st_mode)) {
    refuse(m_path, "it is not a regular file");
  }
  lock();
  // One byte more than the right size is enough to detect a file that is too long.
  std::vector<std::uint8_t> whole(header.size() + contents.size() + 1);
  const std::size_t held = readAll(m_descriptor, 0, whole);
  if (held < whole.size() && errno != 0) {
    failWith(errno, "cannot read the memory file", m_path);
  }
  const std::span<const std::uint8_t> bytes(whole.data(), held);
  if (held < header.size() ||
      !std::equal(header.begin(), header.begin() + versionOffset, bytes.begin())) {
    refuse(m_path, "it does not begin with NERINMEM");
  }
  if (!std::equal(header.begin(), header.end(), bytes.begin())) {
    refuse(m_path, "its version is unknown to this program");
  }
  if (held != header.size() + contents.size()) {
    refuse(m_path, "it has the wrong size");
  }
  const std::span<const std::uint8_t> memory = bytes.subspan(header.size());
  std::copy(memory.begin(), memory.end(), contents.begin());
}

void MouseMemoryFile::closeFile() {
  if (m_descriptor >= 0) {
    ::close(m_descriptor);
    m_descriptor = -1;
  }
}

#include "Tests/Support/Scratch.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace fs = std::filesystem;

Scratch::Scratch(const fs::path& parent) {
  // The name is short, since a socket inside it has a path of at most 107 bytes.
  std::string pattern =
      ((parent.empty() ? fs::temp_directory_path() : parent) / "nerin-XXXXXX").string();
  if (::mkdtemp(pattern.data()) == nullptr) {
    throw std::runtime_error("cannot make " + pattern);
  }
  m_folder = pattern;
}

Scratch::~Scratch() {
  std::error_code ignored;
  fs::remove_all(m_folder, ignored);
}

void writeText(const fs::path& path, std::string_view text) {
  fs::create_directories(path.parent_path());
  std::ofstream file(path, std::ios::binary);
  file << text;
  if (!file.flush()) {
    throw std::runtime_error("cannot write " + path.string());
  }
}

std::string textOfFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> namesIn(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

FileSizeLimit::FileSizeLimit(rlim_t bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
  ::getrlimit(RLIMIT_FSIZE, &m_before);
  const rlimit limit{bytes, m_before.rlim_max};
  ::setrlimit(RLIMIT_FSIZE, &limit);
}

FileSizeLimit::~FileSizeLimit() {
  ::setrlimit(RLIMIT_FSIZE, &m_before);
  std::signal(SIGXFSZ, m_handler);
}

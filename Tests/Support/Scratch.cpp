#include "Tests/Support/Scratch.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "Kit/Core/DurableFile.h"

namespace fs = std::filesystem;

Scratch::Scratch() {
  std::string pattern = (fs::temp_directory_path() / "nerin-kit-core-XXXXXX").string();
  if (::mkdtemp(pattern.data()) == nullptr) {
    throw std::runtime_error("cannot make " + pattern);
  }
  m_folder = pattern;
}

Scratch::~Scratch() {
  std::error_code ignored;
  fs::remove_all(m_folder, ignored);
}

void putFile(const fs::path& path, std::string_view bytes) {
  std::ofstream file(path, std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  ASSERT_TRUE(file.good()) << path;
}

std::string contentsOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file.is_open()) << path;
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

LogLines::LogLines() {
  LXLogger::setObserver(
      [this](LXLogger::Level, std::string_view line) { m_lines.emplace_back(line); });
}

LogLines::~LogLines() {
  LXLogger::setObserver({});
}

bool LogLines::has(std::string_view part) const {
  return std::any_of(m_lines.begin(), m_lines.end(),
                     [&](const std::string& line) { return line.find(part) != std::string::npos; });
}

bool python(const std::string& command, const fs::path& file) {
  const std::string line =
      "python3 '" PROPERTY_LISTS_BY_PYTHON "' " + command + " '" + file.string() + "'";
  return std::system(line.c_str()) == 0;
}

int FailingDisk::failEachStep(const std::function<void()>& prepare,
                              const std::function<void()>& job,
                              const std::function<void(const std::string& step)>& check) const {
  for (int failing = 1;; ++failing) {
    prepare();
    int steps = 0;
    std::string failed;
    durable::setFaultInjector([&](const char* step) {
      if (!canExchange && std::string_view(step) == "exchange") {
        return EINVAL;
      }
      ++steps;
      if (steps != failing && !(staysBroken && steps > failing)) {
        return 0;
      }
      failed += failed.empty() ? step : "";
      if (error == 0) {
        throw PowerCut();
      }
      return error;
    });
    try {
      job();
    } catch (const PowerCut&) {
      // Leave the disk in its current state.
    }
    durable::setFaultInjector({});
    if (failed.empty()) {
      return failing - 1;
    }
    check("step " + std::to_string(failing) + ", " + failed);
  }
}

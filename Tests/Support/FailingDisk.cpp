#include "Tests/Support/FailingDisk.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "Kit/Core/DurableFile.h"

namespace fs = std::filesystem;

LogLines::LogLines() {
  LXLogger::setObserver(
      [this](LXLogger::Level, std::string_view line) { m_lines.emplace_back(line); });
}

LogLines::~LogLines() {
  LXLogger::setObserver({});
}

std::size_t LogLines::count(std::string_view part) const {
  return static_cast<std::size_t>(
      std::count_if(m_lines.begin(), m_lines.end(),
                    [&](const std::string& line) { return line.find(part) != std::string::npos; }));
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
      // The disk stays as it was at that moment.
    }
    durable::setFaultInjector({});
    if (failed.empty()) {
      return failing - 1;
    }
    check("step " + std::to_string(failing) + ", " + failed);
  }
}

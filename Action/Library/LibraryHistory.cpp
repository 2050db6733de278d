#include "Action/Library/LibraryHistory.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <map>
#include <optional>
#include <system_error>
#include <utility>

#include "Action/Library/LibraryFolder.h"
#include "Kit/Core/DurableFile.h"
#include "Kit/Core/LXAction.h"
#include "Kit/Core/LXLogger.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* timeFormat = "%Y-%m-%dT%H-%M-%SZ";
constexpr std::size_t timeSize = 20;

// "2026-11-22T01-33-36Z-12": the time, for whoever looks into the folder, and the number, since
// clocks can go back.
std::string nameOf(std::time_t time, std::uint64_t number) {
  std::tm parts{};
  ::gmtime_r(&time, &parts);
  char text[timeSize + 1];
  const std::size_t size = std::strftime(text, sizeof text, timeFormat, &parts);
  return std::string(text, size) + "-" + std::to_string(number);
}

std::optional<LibraryHistory::State> stateOf(const fs::path& folder) {
  const std::string name = folder.filename().string();
  std::tm parts{};
  const char* const timeEnd = ::strptime(name.c_str(), timeFormat, &parts);
  if (timeEnd == nullptr || *timeEnd != '-') {
    return std::nullopt;
  }
  LibraryHistory::State state;
  const char* const end = name.c_str() + name.size();
  const auto [numberEnd, error] = std::from_chars(timeEnd + 1, end, state.number);
  if (error != std::errc() || numberEnd != end) {
    return std::nullopt;
  }
  state.time = ::timegm(&parts);
  state.folder = folder;
  return state;
}

using Files = std::map<std::string, fs::path>;

Files filesIn(const fs::path& folder) {
  Files files;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code ignored;
    if (fs::is_regular_file(entry->symlink_status(ignored))) {
      files[entry->path().filename().string()] = entry->path();
    }
  }
  return files;
}

bool isSameFile(const fs::path& a, const fs::path& b) {
  std::error_code error;
  if (fs::equivalent(a, b, error)) {
    return true;
  }
  const auto bytes = durable::readFile(a);
  return bytes && bytes == durable::readFile(b);
}

bool isSame(const Files& a, const Files& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const auto& one, const auto& other) {
    return one.first == other.first && isSameFile(one.second, other.second);
  });
}

std::map<std::string, ConfigBytes> bytesByName(const LibraryHistory::Profiles& profiles) {
  std::map<std::string, ConfigBytes> bytes;
  for (const auto& profile : profiles) {
    bytes[profile->name().value_or("")] = profile->fileBytes();
  }
  return bytes;
}

}  // namespace

LibraryHistory::LibraryHistory(fs::path library)
    : m_library(std::move(library)), m_folder(m_library.parent_path() / "History") {}

std::vector<LibraryHistory::State> LibraryHistory::states() const {
  std::vector<State> states;
  std::error_code error;
  for (fs::directory_iterator entry(m_folder, error), end; !error && entry != end;
       entry.increment(error)) {
    if (auto state = stateOf(entry->path())) {
      states.push_back(std::move(*state));
    }
  }
  std::sort(states.begin(), states.end(),
            [](const State& a, const State& b) { return a.number > b.number; });
  return states;
}

LibraryHistory::Profiles LibraryHistory::profilesIn(const State& state) {
  Profiles profiles;
  std::error_code error;
  for (const fs::path& file : LibraryFolder(state.folder).profileFiles(error)) {
    if (auto profile = ProfileValue::initWithPath(file)) {
      profiles.push_back(std::move(profile));
    }
  }
  return profiles;
}

void LibraryHistory::add() const {
  std::error_code error;
  const Files files = filesIn(m_library);
  const std::vector<State> before = states();
  const bool isNothing = before.empty() && files.empty();
  if (isNothing || !fs::is_directory(m_library, error) ||
      (!before.empty() && isSame(files, filesIn(before.front().folder)))) {
    return;
  }
  if (!LXAction::creatDirectoryPro(m_folder)) {
    LXLogger::warning("the folder cannot be made: " + m_folder.string());
    return;
  }
  durable::sweepTemporaries(m_folder);
  const std::uint64_t number = before.empty() ? 1 : before.front().number + 1;
  error = durable::copyFolder(m_library, m_folder / nameOf(std::time(nullptr), number));
  if (error) {
    LXLogger::warning("the history of the library was not continued: " + error.message());
    return;
  }
  for (std::size_t i = maximumStates - 1; i < before.size(); ++i) {
    fs::remove_all(before[i].folder, error);
  }
}

LibraryHistory::Differences LibraryHistory::differences(const Profiles& state,
                                                        const Profiles& now) {
  Differences differences;
  const auto then = bytesByName(state);
  const auto present = bytesByName(now);
  for (const auto& [name, bytes] : then) {
    const auto found = present.find(name);
    if (found == present.end()) {
      differences.added.push_back(name);
    } else if (found->second != bytes) {
      differences.changed.push_back(name);
    }
  }
  for (const auto& [name, bytes] : present) {
    if (!then.contains(name)) {
      differences.removed.push_back(name);
    }
  }
  return differences;
}

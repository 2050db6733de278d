// A seeded random user: starts the program again and again on the same folders, in a process of its
// own each time, and drives its window. docs/soak.md tells how to use it.

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Tests/Soak/Dice.h"
#include "Tests/Soak/Start.h"
#include "Tests/Support/Scratch.h"

namespace fs = std::filesystem;

namespace {

using Clock = std::chrono::steady_clock;

constexpr int shownSteps = 25;
constexpr std::size_t shownBytes = 12000;
constexpr auto longestStart = std::chrono::minutes(10);
constexpr std::uint64_t planSeed = 1'000'000;

struct Options {
  std::uint64_t seed = 1;
  int seeds = 1;
  int steps = 0;  // of each seed; 0 for as many as the time allows
  double minutes = 2;
  // Of the window system: "offscreen", or one that this session has.
  std::string platform = "offscreen";
  bool showsSteps = false;
};

struct Result {
  int steps = 0;
  int starts = 0;
  int kills = 0;
  int findings = 0;
};

[[noreturn]] void usage() {
  std::cerr << "usage: NerinSoak [--seed N] [--seeds COUNT] [--minutes M | --steps M] "
               "[--platform NAME] [--show]\n"
               "  the minutes are those of all seeds, the steps those of each\n";
  std::exit(2);
}

Options optionsOf(const std::vector<std::string>& words) {
  Options options;
  for (std::size_t at = 0; at < words.size(); ++at) {
    if (words[at] == "--show") {
      options.showsSteps = true;
      continue;
    }
    if (at + 1 == words.size()) {
      usage();
    }
    const std::string& value = words[++at];
    try {
      if (words[at - 1] == "--seed") {
        options.seed = std::stoull(value);
      } else if (words[at - 1] == "--seeds") {
        options.seeds = std::max(1, std::stoi(value));
      } else if (words[at - 1] == "--steps") {
        options.steps = std::stoi(value);
      } else if (words[at - 1] == "--platform") {
        options.platform = value;
      } else if (words[at - 1] == "--minutes") {
        options.minutes = std::stod(value);
      } else {
        usage();
      }
    } catch (const std::exception&) {
      usage();
    }
  }
  return options;
}

// What each start of a seed is like. It does not depend on how the starts before it went.
StartPlan planOf(const fs::path& home, std::uint64_t seed, std::uint64_t number) {
  static const std::vector<std::string> languages{
      "",   "cs", "de", "es",    "fr",    "it",    "pl", "pt_BR",      "tr",
      "el", "ru", "ja", "ko_KR", "zh_CN", "zh_TW", "xx", "en_US.UTF-8"};
  Dice dice(seed + planSeed, number);
  StartPlan plan;
  plan.home = home;
  plan.seed = seed;
  plan.number = number;
  plan.steps = dice.between(150, 900);
  plan.language = dice.of(languages);
  plan.killAt = dice.percent(30) ? dice.between(1, 200) : 0;
  plan.damagesMouse = dice.percent(15);
  return plan;
}

std::string scaleOf(std::uint64_t seed, std::uint64_t number) {
  static const std::vector<std::string> scales{"1", "1", "1.25", "1.5", "2", "3"};
  Dice dice(seed + 2 * planSeed, number);
  return dice.of(scales);
}

void runInChild(const StartPlan& plan, const Options& options, const std::string& scale,
                const fs::path& errors) {
  const int file = ::open(errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  ::dup2(file, STDERR_FILENO);
  ::setenv("HOME", plan.home.c_str(), 1);
  if (options.platform != "wayland") {
    // There the display has its socket.
    ::setenv("XDG_RUNTIME_DIR", plan.home.c_str(), 1);
  }
  for (const char* name : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME",
                           "DBUS_SESSION_BUS_ADDRESS"}) {
    ::unsetenv(name);
  }
  ::setenv("QT_QPA_PLATFORM", options.platform.c_str(), 1);
  ::setenv("QT_SCALE_FACTOR", scale.c_str(), 1);
  // Fewer freed bytes are kept, so that the memory shows the program's own growth.
  std::string sanitizer =
      "quarantine_size_mb=32:exitcode=99:allocator_may_return_null=1:handle_abort=1";
  if (options.platform != "offscreen") {
    // The libraries of the displays leave something behind at each end.
    sanitizer += ":detect_leaks=0";
  }
  ::setenv("ASAN_OPTIONS", sanitizer.c_str(), 1);
  const std::vector<std::string> words{"/proc/self/exe",
                                       "--start",
                                       plan.home.string(),
                                       std::to_string(plan.seed),
                                       std::to_string(plan.number),
                                       std::to_string(plan.steps),
                                       plan.language,
                                       std::to_string(plan.killAt),
                                       plan.damagesMouse ? "1" : "0"};
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (const std::string& word : words) {
    arguments.push_back(const_cast<char*>(word.c_str()));
  }
  arguments.push_back(nullptr);
  ::execv("/proc/self/exe", arguments.data());
  std::_Exit(127);
}

// The wait status of the start.
int waitFor(pid_t child) {
  const auto end = Clock::now() + longestStart;
  int status = 0;
  while (::waitpid(child, &status, WNOHANG) == 0) {
    if (Clock::now() > end) {
      ::kill(child, SIGABRT);
      ::waitpid(child, &status, 0);
      break;
    }
    ::usleep(5000);
  }
  return status;
}

std::vector<std::string> linesOf(const fs::path& file) {
  std::ifstream text(file);
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) {
    lines.push_back(line);
  }
  return lines;
}

// Every step is numbered; the last line may be none.
int stepsIn(const std::vector<std::string>& lines) {
  return lines.empty() ? 0 : std::max(0, std::atoi(lines.back().c_str()));
}

void show(const StartPlan& plan, int stepsBefore, const std::vector<std::string>& lines,
          const fs::path& errors) {
  std::cout << "\nThe last steps:\n";
  const std::size_t first = lines.size() > shownSteps ? lines.size() - shownSteps : 0;
  for (std::size_t at = first; at < lines.size(); ++at) {
    std::cout << "  " << lines[at] << '\n';
  }
  std::cout << textOfFile(errors).substr(0, shownBytes) << "\nseed " << plan.seed << ", start "
            << plan.number << ", step " << stepsIn(lines)
            << ". To see it again:\n  Tools/soak --seed " << plan.seed << " --steps "
            << stepsBefore + stepsIn(lines) << '\n'
            << std::flush;
}

void runSeed(const Options& options, std::uint64_t seed, Clock::time_point end, Result& result) {
  const Scratch scratch(::access("/dev/shm", W_OK) == 0 ? fs::path("/dev/shm") : fs::path());
  const fs::path errors = scratch / "errors";
  int steps = 0;
  for (std::uint64_t number = 1;; ++number) {
    const bool isOver = options.steps > 0 ? steps >= options.steps : Clock::now() >= end;
    if (isOver) {
      break;
    }
    StartPlan plan = planOf(scratch / "home", seed, number);
    fs::create_directories(plan.home);
    fs::permissions(plan.home, fs::perms::owner_all);
    const std::string scale = scaleOf(seed, number);
    const pid_t child = ::fork();
    if (child == 0) {
      runInChild(plan, options, scale, errors);
    }
    const int status = waitFor(child);
    const auto lines = linesOf(plan.log());
    if (options.showsSteps) {
      std::cout << "start " << number << ", language \"" << plan.language << "\", scale " << scale
                << ":\n";
      for (const std::string& line : lines) {
        std::cout << "  " << line << '\n';
      }
    }
    const bool isKill = plan.killAt > 0 && WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
    const bool isWell = isKill || (WIFEXITED(status) && WEXITSTATUS(status) == 0);
    ++result.starts;
    result.kills += isKill ? 1 : 0;
    result.steps += stepsIn(lines);
    if (!isWell) {
      ++result.findings;
      show(plan, steps, lines, errors);
      // What comes after it would show it again.
      break;
    }
    steps += stepsIn(lines);
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> words(argv + 1, argv + argc);
  if (words.size() == 8 && words[0] == "--start") {
    StartPlan plan;
    plan.home = words[1];
    plan.seed = std::stoull(words[2]);
    plan.number = std::stoull(words[3]);
    plan.steps = std::stoi(words[4]);
    plan.language = words[5];
    plan.killAt = std::stoi(words[6]);
    plan.damagesMouse = words[7] == "1";
    return soak::runStart(plan, argc, argv);
  }
  const Options options = optionsOf(words);
  Result result;
  const auto begin = Clock::now();
  for (int index = 0; index < options.seeds; ++index) {
    const std::uint64_t seed = options.seed + static_cast<std::uint64_t>(index);
    const std::chrono::duration<double, std::ratio<60>> time(options.minutes * (index + 1) /
                                                             options.seeds);
    runSeed(options, seed, begin + std::chrono::duration_cast<Clock::duration>(time), result);
    std::cout << "up to seed " << seed << ": " << result.steps << " steps, " << result.starts
              << " starts, " << result.kills << " kills in a save, " << result.findings
              << " findings" << std::endl;
  }
  return result.findings == 0 ? 0 : 1;
}

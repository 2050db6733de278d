#include "Tests/CommandLine/ProgramRun.h"

#include <array>
#include <cstdlib>
#include <stdexcept>

#include <fcntl.h>
#include <linux/capability.h>
#include <poll.h>
#include <pty.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr unsigned secondsPerRun = 60;

// Both ends of a pipe or a terminal: the program writes to one, the test reads the other.
struct Channel {
  int reading = -1;
  int writing = -1;
};

Channel makeChannel(bool isTerminal) {
  Channel channel;
  std::array<int, 2> ends{};
  if (isTerminal ? openpty(&ends[0], &ends[1], nullptr, nullptr, nullptr) != 0
                 : pipe(ends.data()) != 0) {
    throw std::runtime_error("no channel to the program");
  }
  channel.reading = ends[0];
  channel.writing = ends[1];
  fcntl(channel.reading, F_SETFD, FD_CLOEXEC);
  fcntl(channel.writing, F_SETFD, FD_CLOEXEC);
  return channel;
}

std::vector<std::string> environmentFor(const RunSettings& settings) {
  std::vector<std::string> variables{"HOME=" + settings.home.string(), "LANG=C.UTF-8"};
  for (const char* name : {"PATH", "ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS"}) {
    if (const char* value = std::getenv(name)) {
      variables.push_back(std::string(name).append("=").append(value));
    }
  }
  for (const auto& [name, value] : settings.environment) {
    variables.push_back(name + "=" + value);
  }
  return variables;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

// These capabilities let root ignore permissions; other users do not have them.
void loseRootsPrivileges() {
  if (geteuid() == 0) {
    for (const unsigned long capability : {CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH, CAP_FOWNER}) {
      prctl(PR_CAPBSET_DROP, capability, 0UL, 0UL, 0UL);
    }
  }
}

void limitFiles(std::uint64_t bytes) {
  const rlimit limit{bytes, bytes};
  setrlimit(RLIMIT_FSIZE, &limit);
  // A write beyond the limit must fail instead of ending the program.
  signal(SIGXFSZ, SIG_IGN);
}

// Allocates nothing, because another thread of the test can have held the lock of the heap when
// this process was made.
[[noreturn]] void becomeProgram(const RunSettings& settings, const Channel& output,
                                const Channel& errors, const std::vector<char*>& arguments,
                                const std::vector<char*>& environment) {
  close(STDIN_FILENO);
  dup2(output.writing, STDOUT_FILENO);
  dup2(errors.writing, STDERR_FILENO);
  if (!settings.hasOutput) {
    close(STDOUT_FILENO);
  }
  if (settings.obeysPermissions) {
    loseRootsPrivileges();
  }
  if (settings.fileSizeLimit) {
    limitFiles(*settings.fileSizeLimit);
  }
  if (chdir(settings.workingFolder.c_str()) == 0) {
    execve(NERINCTL, arguments.data(), environment.data());
  }
  _exit(127);
}

// Returns false at the end.
bool readSome(int descriptor, std::string& text) {
  std::array<char, 4096> buffer{};
  const ssize_t count = read(descriptor, buffer.data(), buffer.size());
  if (count <= 0) {
    return false;
  }
  text.append(buffer.data(), static_cast<std::size_t>(count));
  return true;
}

// Reads both in parallel, so that the program never waits for its reader.
void readAll(const Channel& output, const Channel& errors, RunResult& result) {
  std::array<pollfd, 2> entries{pollfd{output.reading, POLLIN, 0},
                                pollfd{errors.reading, POLLIN, 0}};
  const std::array<std::string*, 2> texts{&result.output, &result.errors};
  while (entries[0].fd >= 0 || entries[1].fd >= 0) {
    poll(entries.data(), entries.size(), -1);
    for (std::size_t i = 0; i < entries.size(); ++i) {
      if (entries[i].revents != 0 && !readSome(entries[i].fd, *texts[i])) {
        entries[i].fd = -1;
      }
    }
  }
}

}  // namespace

RunResult runProgram(const std::vector<std::string>& arguments, const RunSettings& settings) {
  const Channel output = makeChannel(false);
  const Channel errors = makeChannel(settings.hasTerminal);
  std::vector<std::string> words{"nerinctl"};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<std::string> variables = environmentFor(settings);
  const std::vector<char*> argumentPointers = pointersTo(words);
  const std::vector<char*> environmentPointers = pointersTo(variables);
  const pid_t program = fork();
  if (program < 0) {
    throw std::runtime_error("no process");
  }
  if (program == 0) {
    // An alarm survives execve.
    alarm(secondsPerRun);
    becomeProgram(settings, output, errors, argumentPointers, environmentPointers);
  }
  close(output.writing);
  close(errors.writing);
  RunResult result;
  readAll(output, errors, result);
  close(output.reading);
  close(errors.reading);
  int status = 0;
  waitpid(program, &status, 0);
  result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  return result;
}

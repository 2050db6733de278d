#include "Tests/Support/ChildProcess.h"

#include <array>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

ChildProcess::ChildProcess(const std::vector<std::string>& command) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw std::runtime_error("no pipe");
  }
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (const std::string& argument : command) {
    arguments.push_back(const_cast<char*>(argument.c_str()));
  }
  arguments.push_back(nullptr);
  const int failure =
      posix_spawnp(&m_process, arguments.front(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  m_output = ends[0];
  if (failure != 0) {
    m_process = -1;
    close(m_output);
    throw std::runtime_error("cannot start " + command.front());
  }
}

ChildProcess::~ChildProcess() {
  if (m_process > 0) {
    kill(m_process, SIGKILL);
    waitpid(m_process, nullptr, 0);
  }
  close(m_output);
}

void ChildProcess::send(int signal) const {
  kill(m_process, signal);
}

std::string ChildProcess::read(std::chrono::milliseconds limit) {
  pollfd entry{m_output, POLLIN, 0};
  if (poll(&entry, 1, static_cast<int>(limit.count())) <= 0) {
    return {};
  }
  std::array<char, 4096> buffer{};
  const ssize_t count = ::read(m_output, buffer.data(), buffer.size());
  return count > 0 ? std::string(buffer.data(), static_cast<std::size_t>(count)) : std::string();
}

std::optional<int> ChildProcess::exitCode(std::chrono::milliseconds limit) {
  const auto end = std::chrono::steady_clock::now() + limit;
  int status = 0;
  while (waitpid(m_process, &status, WNOHANG) == 0) {
    if (std::chrono::steady_clock::now() >= end) {
      return std::nullopt;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  m_process = -1;
  return WIFEXITED(status) ? std::optional(WEXITSTATUS(status)) : std::nullopt;
}

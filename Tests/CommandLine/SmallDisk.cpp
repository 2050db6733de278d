#include "Tests/CommandLine/SmallDisk.h"

#include <cstdio>
#include <fstream>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

bool writeText(const char* path, const std::string& text) {
  std::ofstream file(path);
  file << text << std::flush;
  return static_cast<bool>(file);
}

// A user namespace makes any user root inside it.
bool becomeRootOfOwnView() {
  const std::string user = std::to_string(geteuid());
  const std::string group = std::to_string(getegid());
  return unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 &&
         writeText("/proc/self/uid_map", "0 " + user + " 1") &&
         writeText("/proc/self/setgroups", "deny") &&
         writeText("/proc/self/gid_map", "0 " + group + " 1");
}

bool mountSmallDisk(const std::filesystem::path& folder, std::size_t bytes) {
  if (unshare(CLONE_NEWNS) != 0 && !becomeRootOfOwnView()) {
    return false;
  }
  const std::string options = "size=" + std::to_string(bytes);
  return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         mount("tmpfs", folder.c_str(), "tmpfs", 0, options.c_str()) == 0;
}

// Runs the function in a child process and returns its exit code.
int inChild(const std::function<int()>& function) {
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    const int code = function();
    std::fflush(nullptr);
    _exit(code);
  }
  int status = -1;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

bool canMountSmallDisk() {
  constexpr std::size_t anySize = 65536;
  return inChild([] {
           return mountSmallDisk(std::filesystem::temp_directory_path(), anySize) ? 0 : 1;
         }) == 0;
}

void onSmallDisk(const std::filesystem::path& folder, std::size_t bytes,
                 const std::function<void()>& body) {
  const int code = inChild([&] {
    if (!mountSmallDisk(folder, bytes)) {
      return 2;
    }
    body();
    return testing::Test::HasFailure() ? 1 : 0;
  });
  EXPECT_EQ(code, 0) << "what was done on the small disk failed, as said above";
}

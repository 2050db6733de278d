// The tests of the USB stack are the whole user space of a small machine that has nothing but a
// kernel: as its first process this program prepares the machine, starts itself once more for the
// tests, and tells the emulator outside how they ended.

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/io.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Tests/UsbStack/KernelLog.h"

namespace {

// The device at this port ends the emulator with the exit code 2 * value + 1.
constexpr unsigned short verdictPort = 0xF4;
constexpr unsigned char passed = 0x10;
constexpr unsigned char failed = 0x11;

[[noreturn]] void tellVerdict(unsigned char verdict) {
  std::cout.flush();
  if (ioperm(verdictPort, 1, 1) == 0) {
    outb(verdict, verdictPort);
  }
  // Not reached in an emulator with the device; the kernel panics, which is no verdict.
  _exit(1);
}

[[noreturn]] void giveUp(const std::string& what) {
  std::cout << "The machine cannot be prepared: " << what << ": " << std::strerror(errno) << '\n';
  tellVerdict(failed);
}

void mountAll() {
  struct Mount {
    const char* folder;
    const char* type;
  };
  for (const Mount& each : {Mount{"/proc", "proc"}, Mount{"/sys", "sysfs"},
                            Mount{"/dev", "devtmpfs"}, Mount{"/tmp", "tmpfs"}}) {
    mkdir(each.folder, S_IRWXU);
    if (mount(each.type, each.folder, each.type, 0, nullptr) != 0 && errno != EBUSY) {
      giveUp(each.folder);
    }
  }
}

// In the order of the list, each after those that it needs.
void loadModules() {
  std::ifstream list("/modules/order");
  for (std::string name; std::getline(list, name);) {
    const int file = open(("/modules/" + name).c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0 || (syscall(SYS_finit_module, file, "", 0) != 0 && errno != EEXIST)) {
      giveUp(name);
    }
    close(file);
  }
}

// Shows what the kernel said during a test that failed.
class ShowsKernelLog : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo& test) override { kernellog::mark(markOf(test)); }
  void OnTestEnd(const testing::TestInfo& test) override {
    if (test.result()->Failed()) {
      std::cout << "The kernel's log of this test:\n" << kernellog::textSince(markOf(test));
    }
  }
  static std::string markOf(const testing::TestInfo& test) {
    return std::string("begin of ") + test.test_suite_name() + '.' + test.name();
  }
};

[[noreturn]] void prepareAndRun() {
  mountAll();
  const int console = open("/dev/console", O_RDWR);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    dup2(console, stream);
  }
  loadModules();
  const pid_t tests = fork();
  if (tests == 0) {
    setenv("HOME", "/tmp", 1);
    setenv("PATH", "/bin", 1);
    execl("/proc/self/exe", "UsbStackTest", "--gtest_color=no", nullptr);
    giveUp("/proc/self/exe");
  }
  int status = -1;
  // The first process also inherits those whose parents have ended.
  while (tests > 0 && wait(&status) != tests) {
  }
  if (tests > 0 && WIFSIGNALED(status)) {
    std::cout << "The tests were ended by signal " << WTERMSIG(status) << "\n" << kernellog::text();
  }
  const bool isGood = tests > 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
  tellVerdict(isGood ? passed : failed);
}

}  // namespace

// The last test, because it is about all others.
TEST(UsbKernel, HasNothingToComplainAbout) {
  const std::string log = kernellog::text();
  EXPECT_THAT(log, testing::HasSubstr("vhci_hcd"));
  for (const char* complaint :
       {"WARNING:", "BUG:", "Oops", "Call Trace", "blocked for more than"}) {
    EXPECT_EQ(log.find(complaint), std::string::npos)
        << log.substr(std::min(log.size(), log.find(complaint)), 4096);
  }
}

int main(int argc, char** argv) {
  if (getpid() == 1) {
    prepareAndRun();
  }
  testing::InitGoogleTest(&argc, argv);
  if (!std::filesystem::exists("/sys/devices/platform/vhci_hcd.0")) {
    std::cerr << "There is no virtual host controller here; run ./test --usb-stack\n";
    return 2;
  }
  testing::UnitTest::GetInstance()->listeners().Append(new ShowsKernelLog);
  return RUN_ALL_TESTS();
}

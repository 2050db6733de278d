// nerinctl does with a mouse behind the kernel's drivers what it does with the virtual one.

#include <filesystem>
#include <future>
#include <memory>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/CommandLine/TestHome.h"
#include "Tests/UsbStack/Guest.h"

namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// A user whose mouse is plugged in, and one with the virtual mouse only. Both have the profile
// "Office", whose buttons 4 and 16 play a macro.
class UsbNerinctl : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    s_prepared = std::make_unique<TestHome>();
    s_prepared->addMacro("Reload", clickMacro("Reload"));
    ProfileValue office = profileNamed("Office");
    setMacro(office, 3, 1, 1);
    setMacro(office, 15, 1, 2, 5);
    s_prepared->addProfile(office);
  }
  static void TearDownTestSuite() { s_prepared.reset(); }

  UsbNerinctl() {
    for (const TestHome* user : {&m_usbUser, &m_virtualUser}) {
      fs::copy(s_prepared->home, user->home, fs::copy_options::recursive);
    }
    plug();
  }
  ~UsbNerinctl() override {
    m_mouse.unplug();
    EXPECT_TRUE(eventually([this] { return m_plugged.isGone(); }));
  }

  void plug() {
    m_mouse.plug();
    EXPECT_TRUE(eventually([this] { return m_plugged.isReady(); })) << "the mouse has no nodes";
  }

  static Words traced(const TestHome& user, const Words& command) {
    Words words{"--trace", (user.files / "trace").string()};
    words.insert(words.end(), command.begin(), command.end());
    return words;
  }
  // The transfers of the last command, without its pauses.
  static Lines traceOf(const TestHome& user) {
    Lines lines = linesOf(readFile(user.files / "trace"));
    std::erase_if(lines, [](const std::string& line) { return line.starts_with("SLEEP"); });
    return lines;
  }

  // What reached the mouse, in the form of a trace.
  Lines seenByTheMouse() {
    return m_mouse.atTheMouse([](const VirtualMouse& mouse) {
      Lines lines;
      for (const TransferRecord& transfer : mouse.transcript()) {
        const bool isToHost = (transfer.setup.requestType & 0x80U) != 0;
        EXPECT_EQ(transfer.setup.requestType, isToHost ? 0xA1 : 0x21);
        EXPECT_EQ(transfer.setup.length, transfer.data.size());
        char head[32];
        std::snprintf(head, sizeof head, "%s %04x %u ", isToHost ? "GET" : "SET",
                      static_cast<unsigned>(transfer.setup.value),
                      static_cast<unsigned>(transfer.setup.index));
        lines.push_back(head + hex(transfer.data));
      }
      return lines;
    });
  }

  // Runs the command with both mice and compares all that can be seen of it.
  void expectTheSameWithBothMice(const Words& command) {
    SCOPED_TRACE(command[0]);
    m_mouse.atTheMouse([](VirtualMouse& mouse) { mouse.clearTranscript(); });
    // At once, because most of the time they wait for their mice.
    auto usbRun =
        std::async(std::launch::async, [&] { return m_usbUser.run(traced(m_usbUser, command)); });
    const RunResult virtually = m_virtualUser.runWithMouse(traced(m_virtualUser, command));
    const RunResult usb = usbRun.get();
    EXPECT_EQ(usb.exitCode, 0) << usb.errors;
    EXPECT_EQ(virtually.exitCode, 0) << virtually.errors;
    EXPECT_EQ(usb.output, virtually.output);
    EXPECT_EQ(usb.errors, virtually.errors);
    EXPECT_THAT(traceOf(m_usbUser), Not(IsEmpty()));
    EXPECT_EQ(traceOf(m_usbUser), traceOf(m_virtualUser));
    EXPECT_EQ(seenByTheMouse(), traceOf(m_usbUser));
    EXPECT_TRUE(m_usbUser.mouseMemory() == m_virtualUser.mouseMemory()) << "the memories differ";
  }

  static inline std::unique_ptr<TestHome> s_prepared;
  TestHome m_usbUser;
  TestHome m_virtualUser;
  UsbMouse m_mouse{0, m_usbUser.mouseFile};
  PluggedMouse m_plugged{0};
};

}  // namespace

TEST_F(UsbNerinctl, DoesTheSameAsWithTheVirtualMouseByteForByte) {
  expectTheSameWithBothMice({"apply", "Office", "--slot", "2"});
  expectTheSameWithBothMice({"read", "--slot", "2"});
  expectTheSameWithBothMice({"switch", "2"});
  expectTheSameWithBothMice({"dpi", "--set", "3=1600x800", "--active", "3"});
  expectTheSameWithBothMice({"rate", "250"});
  expectTheSameWithBothMice({"lift", "7"});
  expectTheSameWithBothMice({"leds", "--all", "12ab9f"});
  expectTheSameWithBothMice({"mode", "battle"});
  expectTheSameWithBothMice({"backup", "all"});
  EXPECT_THAT(m_mouse.atTheMouse([](const VirtualMouse& mouse) { return mouse.faults(); }),
              IsEmpty());
}

TEST_F(UsbNerinctl, SaysWhatAUserWithoutTheRuleHasToDo) {
  for (const int interface : {0, 1}) {
    fs::permissions(m_plugged.hidraw(interface), fs::perms::none);
  }
  RunSettings settings;
  settings.obeysPermissions = true;
  const RunResult result = m_usbUser.run({"read", "--slot", "1"}, settings);
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_THAT(result.errors, HasSubstr("60-nerin.rules"));
  EXPECT_THAT(seenByTheMouse(), IsEmpty());
}

TEST_F(UsbNerinctl, FinishesAnApplyDuringWhichTheMouseWasUnplugged) {
  m_mouse.setAnswerTime(milliseconds(150));
  RunResult cut;
  std::thread applying([&] { cut = m_usbUser.run({"apply", "Office", "--slot", "2"}); });
  // In the middle of the first macro.
  EXPECT_TRUE(eventually([&] {
    const auto setup = m_mouse.pendingTransfer();
    return setup && setup->value == 0x0304;
  }));
  m_mouse.unplug();
  applying.join();
  EXPECT_EQ(cut.exitCode, 3);
  EXPECT_THAT(cut.errors, HasSubstr("the mouse went away before everything was done"));
  EXPECT_TRUE(eventually([this] { return m_plugged.isGone(); }));
  const RunResult absent = m_usbUser.run({"finish", "2"});
  EXPECT_EQ(absent.exitCode, 3);
  EXPECT_THAT(absent.errors, HasSubstr("Plug the mouse in."));

  m_mouse.setAnswerTime(milliseconds(0));
  plug();
  const RunResult finished = m_usbUser.run({"finish", "2"});
  EXPECT_EQ(finished.exitCode, 0) << finished.errors;
  m_virtualUser.prepare({"apply", "Office", "--slot", "2"});
  EXPECT_TRUE(m_usbUser.mouseMemory() == m_virtualUser.mouseMemory())
      << "the mouse does not hold the whole profile";
}

TEST_F(UsbNerinctl, WaitsForAMouseThatNeverAnswersOnce) {
  m_mouse.setAnswerTime(std::nullopt);
  const auto begin = std::chrono::steady_clock::now();
  const RunResult result = m_usbUser.run({"apply", "Office", "--slot", "2"});
  EXPECT_LT(std::chrono::steady_clock::now() - begin, seconds(9));
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("the mouse did not answer as it should"));
  EXPECT_EQ(m_mouse.takenBack(), 1U);
  EXPECT_THAT(seenByTheMouse(), IsEmpty());
}

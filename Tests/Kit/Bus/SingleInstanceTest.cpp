#include <QCoreApplication>
#include <QElapsedTimer>
#include <vector>

#include <gtest/gtest.h>

#include "Kit/Bus/BusQuestion.h"
#include "Kit/Bus/SingleInstance.h"
#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/PrivateBus.h"

namespace {

using namespace std::chrono_literals;

constexpr const char* name = "com.corvex.NerinOption";

// A program with an event loop, and the tokens of the later starts.
class SingleInstanceTest : public testing::Test {
 protected:
  std::unique_ptr<SingleInstance> startProgram(const std::string& token = {}) {
    return std::make_unique<SingleInstance>(
        name, token, [this](const std::string& one) { tokens.push_back(one); });
  }

  bool hasTokensSoon(std::size_t count) const {
    QElapsedTimer time;
    time.start();
    while (tokens.size() < count && time.elapsed() < 20'000) {
      QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return tokens.size() == count;
  }

  std::vector<std::string> tokens;

 private:
  int m_count = 1;
  char m_program[5] = "test";
  char* m_arguments[2] = {m_program, nullptr};
  QCoreApplication m_application{m_count, m_arguments};
};

TEST_F(SingleInstanceTest, TheFirstStartGoesOnAndTheSecondBringsItToTheFront) {
  const PrivateBus bus;
  const auto first = startProgram();
  EXPECT_FALSE(first->isSecond(20s));
  EXPECT_TRUE(isOnTheSessionBus(name, 20s));
  const auto second = startProgram("token-7");
  EXPECT_TRUE(second->isSecond(20s));
  EXPECT_TRUE(hasTokensSoon(1));
  EXPECT_EQ(tokens.at(0), "token-7");
}

TEST_F(SingleInstanceTest, TheNameIsFreeAfterTheFirst) {
  const PrivateBus bus;
  EXPECT_FALSE(startProgram()->isSecond(20s));
  EXPECT_FALSE(isOnTheSessionBus(name, 20s));
  EXPECT_FALSE(startProgram()->isSecond(20s));
}

TEST_F(SingleInstanceTest, OtherProgramsCanActivateItAsTheDesktopDoes) {
  const PrivateBus bus;
  const auto first = startProgram();
  EXPECT_FALSE(first->isSecond(20s));
  ChildProcess caller({"gdbus", "call", "--session", "--dest", name, "--object-path",
                       "/com/corvex/NerinOption", "--method",
                       "org.freedesktop.Application.Activate",
                       "{'activation-token': <'from the menu'>}"});
  EXPECT_TRUE(hasTokensSoon(1));
  EXPECT_EQ(tokens.at(0), "from the menu");
  EXPECT_EQ(caller.exitCode(20s), 0);
}

TEST_F(SingleInstanceTest, AFirstThatIsBusyDoesNotHoldUpTheSecond) {
  const PrivateBus bus;
  const auto first = startProgram();
  EXPECT_FALSE(first->isSecond(20s));
  // This thread, which would handle the activation, waits meanwhile.
  QElapsedTimer time;
  time.start();
  {
    const auto second = startProgram();
    EXPECT_TRUE(second->isSecond(20s));
  }
  EXPECT_LT(time.elapsed(), 5000);
  EXPECT_TRUE(hasTokensSoon(1));
}

TEST_F(SingleInstanceTest, EveryStartIsTheFirstWithoutABus) {
  setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/bus", 1);
  EXPECT_FALSE(startProgram()->isSecond(20s));
  EXPECT_FALSE(isOnTheSessionBus(name, 20s));
  unsetenv("DBUS_SESSION_BUS_ADDRESS");
}

TEST_F(SingleInstanceTest, ABusThatNeverAnswersDelaysTheStartByItsLimitOnly) {
  const PrivateBus bus;
  bus.freeze();
  QElapsedTimer time;
  time.start();
  {
    const auto program = startProgram();
    EXPECT_FALSE(program->isSecond());
    EXPECT_GE(time.elapsed(), 290);
  }
  EXPECT_FALSE(isOnTheSessionBus(name, 300ms));
  EXPECT_LT(time.elapsed(), 5000);
  bus.thaw();
}

}  // namespace

#include "Tests/Soak/Start.h"

#include <QApplication>
#include <QTimer>
#include <algorithm>
#include <deque>
#include <fstream>
#include <iostream>
#include <memory>

#include <unistd.h>

#include "Action/Library/ProfieController.h"
#include "Action/Library/SupportFolder.h"
#include "Action/Texts/CatalogueUpdate.h"
#include "App/AppDelegate.h"
#include "App/DemoNotificationCenter.h"
#include "App/RealPlatform.h"
#include "Kit/Core/LXPlatform.h"
#include "Tests/Soak/Dice.h"
#include "Tests/Soak/FilePanels.h"
#include "Tests/Soak/Mischief.h"
#include "Tests/Soak/RandomUser.h"
#include "Tests/Soak/Watchdog.h"
#include "Tests/Soak/Wholeness.h"
#include "View/Screen/QtTexts.h"
#include "View/Windows/NestedLoop.h"
#include "View/Windows/Termination.h"
#include "View/Windows/TransferProgress.h"
#include "VirtualMouse/VirtualDeviceRequester.h"

namespace fs = std::filesystem;

#ifdef __SANITIZE_ADDRESS__
// Not every compiler brings the header that declares it.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace {

constexpr std::size_t maximumLiveBytes = 200UL << 20U;
// How many steps back a deletion may lie that is seen now.
constexpr std::size_t memory = 3;
constexpr int pulseMilliseconds = 100;
constexpr int waitMilliseconds = 5;
// A display says after the program what is in front. No hand is faster.
constexpr int displayMilliseconds = 40;

std::size_t liveBytes() {
#ifdef __SANITIZE_ADDRESS__
  return __sanitizer_get_current_allocated_bytes();
#else
  return 0;
#endif
}

class Run {
 public:
  explicit Run(const StartPlan& plan)
      : m_plan(plan),
        m_dice(plan.seed, plan.number),
        m_panels(m_dice, plan.home / "Documents"),
        m_log(plan.log(), std::ios::trunc) {}

  int exec(QApplication& application);

 private:
  void installPlatform();
  void armNext(int milliseconds);
  void step();
  void act();
  void tell(const std::string& what);
  void checkAll(bool isStart);
  [[noreturn]] void end(const std::string& finding);
  bool canDelete() const;

  const StartPlan& m_plan;
  Dice m_dice;
  FilePanels m_panels;
  std::ofstream m_log;
  Watchdog m_watchdog;
  std::shared_ptr<VirtualMouse> m_mouse;
  std::shared_ptr<DemoNotificationCenter> m_center = std::make_shared<DemoNotificationCenter>();
  std::unique_ptr<Wholeness> m_wholeness;
  std::unique_ptr<Mischief> m_mischief;
  std::unique_ptr<AppDelegate> m_delegate;
  std::unique_ptr<RandomUser> m_user;
  std::deque<std::string> m_latest;
  int m_steps = 0;
  bool m_hasStarted = false;
};

void Run::end(const std::string& finding) {
  std::cerr << "FINDING: " << finding << std::endl;
  m_log.flush();
  // The windows stand on the stack.
  ::_exit(soak::findingCode);
}

void Run::tell(const std::string& what) {
  m_log << m_steps << ' ' << what << std::endl;
  m_latest.push_back(what);
  if (m_latest.size() > memory) {
    m_latest.pop_front();
  }
}

// Only one button deletes, and it does not ask.
bool Run::canDelete() const {
  return std::any_of(m_latest.begin(), m_latest.end(), [](const std::string& what) {
    return what.find("profileDelBtn") != std::string::npos;
  });
}

void Run::checkAll(bool isStart) {
  if (const auto problem = isStart ? m_wholeness->checkAtStart()
                                   : m_wholeness->check(canDelete(), m_mischief->isMouseSane())) {
    end(*problem);
  }
  if (const std::size_t live = liveBytes(); live > maximumLiveBytes) {
    end("the program holds " + std::to_string(live) + " bytes");
  }
}

void Run::installPlatform() {
  LXPlatform platform = realPlatform(nullptr, m_center);
  platform.homeFolder = m_plan.home;
  platform.runtimeFolder = m_plan.home;
  platform.preferredLanguage =
      m_plan.language.empty() ? std::nullopt : std::optional(m_plan.language);
  // Time costs steps, so that nothing waits between two reports.
  platform.sleep = [](std::chrono::microseconds) { TransferProgress::reportDone(); };
  platform.documentsFolder = [this] { return m_plan.home / "Documents"; };
  platform.hasService = [this] { return m_mischief && m_mischief->hasService(); };
  platform.relaunch = [] {};
  platform.open = [](const std::string&) { return true; };
  LXPlatform::install(platform);
  const fs::path support = NerinAction::getSysPath();
  const fs::path memoryFile = support / "mouse";
  if (m_plan.damagesMouse) {
    damageMouseMemory(m_dice, memoryFile);
  }
  m_mouse = std::make_shared<VirtualMouse>(memoryFile);
  platform.deviceRequester = std::make_shared<VirtualDeviceRequester>(m_mouse);
  platform.watchPresence = [mouse = m_mouse](std::function<void()> whenChanged) {
    mouse->setPresenceObserver([whenChanged = std::move(whenChanged)] {
      QMetaObject::invokeMethod(qApp, whenChanged, Qt::QueuedConnection);
    });
    return std::shared_ptr<void>(mouse.get(), [mouse](void*) { mouse->setPresenceObserver({}); });
  };
  LXPlatform::install(platform);
  m_wholeness = std::make_unique<Wholeness>(ProfieController::getShareProCon().sysProPath(),
                                            m_plan.home / "known", *m_mouse);
  m_mischief = std::make_unique<Mischief>(m_dice, m_mouse, m_center, *m_wholeness);
}

void Run::armNext(int milliseconds) {
  QTimer::singleShot(milliseconds, qApp, [this] { step(); });
}

void Run::act() {
  // Without a mouse there is little to do.
  if (m_dice.percent(m_mouse->isAttached() ? 12 : 40)) {
    m_mischief->act([this](const std::string& what) { tell(what); });
  } else {
    m_user->act([this](const std::string& what) { tell(what); });
  }
}

void Run::step() {
  m_watchdog.answer();
  if (termination::isTerminating()) {
    return;
  }
  if (m_steps >= m_plan.steps) {
    m_mischief->endAll();
    tell("ends the program");
    termination::terminate();
    return;
  }
  if (!m_hasStarted && !NestedLoop::isRunning()) {
    armNext(waitMilliseconds);
    return;
  }
  // Before the step, because a dialog that it opens runs on inside it.
  const int least = QGuiApplication::platformName() == u"offscreen" ? 0 : displayMilliseconds;
  armNext(m_dice.percent(97) ? least : m_dice.between(displayMilliseconds, 600));
  ++m_steps;
  act();
  m_watchdog.answer();
  checkAll(false);
}

int Run::exec(QApplication& application) {
  m_delegate = std::make_unique<AppDelegate>();
  prepareApplication(application);
  installPlatform();
  checkAll(true);
  m_mischief->killAtDiskStep(m_plan.killAt);
  m_user = std::make_unique<RandomUser>(m_dice, m_panels, [this] { m_delegate->bringToFront(""); });
  QTimer pulse;
  QObject::connect(&pulse, &QTimer::timeout, &pulse, [this] { m_watchdog.answer(); });
  pulse.start(pulseMilliseconds);
  armNext(waitMilliseconds);
  NerinAction::bringCataloguesUpToDate();
  int code = 0;
  {
    const QtTexts words;
    m_delegate->start();
    m_hasStarted = true;
    code = termination::isTerminating() ? 0 : QApplication::exec();
  }
  checkAll(false);
  tell("has ended after " + std::to_string(m_steps) + " steps");
  m_mischief.reset();
  m_delegate.reset();
  m_center.reset();
  LXPlatform::install({});
  return code;
}

}  // namespace

int soak::runStart(const StartPlan& plan, int& argc, char** argv) {
  QApplication application(argc, argv);
  QCoreApplication::setApplicationName(QStringLiteral("NerinOption"));
  Run run(plan);
  return run.exec(application);
}

#include "Tests/Companion/RunningCompanion.h"

#include <utility>

#include <stdlib.h>

#include "Action/Edit/Drafts.h"
#include "Action/NerinAction.h"
#include "Kit/Bus/CompanionAddress.h"
#include "Kit/Core/LXPlatform.h"

using namespace std::chrono_literals;

RunningCompanion::RunningCompanion() {
  setenv("XDG_RUNTIME_DIR", m_runtime.folder().c_str(), 1);
  unsetenv("DISPLAY");
  unsetenv("WAYLAND_DISPLAY");
  m_connection = BusConnection::open(loop.handle(), BusConnection::Kind::Session, [] {});
}

void RunningCompanion::TearDown() {
  m_companion.reset();
  NerinAction::sysDeviceReq->reset();
  LXPlatform::install({});
  m_connection.reset();
}

void RunningCompanion::use(Mouse mouse) {
  LXPlatform platform;
  platform.homeFolder = m_home.folder();
  platform.resourceFolder = NERIN_RESOURCES;
  platform.runtimeFolder = m_runtime.folder();
  platform.notificationCenter = m_connection;
  platform.deviceRequester = std::move(mouse.requester);
  platform.mouseWait = 0ms;
  platform.sleep = std::move(mouse.sleep);
  LXPlatform::install(std::move(platform));
  NerinAction::leaveDraftsAlone();
  m_settings.udevControl = std::move(mouse.udevControl);
  m_settings.mouseFile = std::move(mouse.memoryFile);
}

void RunningCompanion::start() {
  m_companion = std::make_unique<Companion>(loop, *m_connection, m_settings);
  bool isAnswered = false;
  m_connection->requestName(companionaddress::service, [&](std::optional<bool> isOurs) {
    EXPECT_EQ(isOurs, true);
    m_companion->begin();
    isAnswered = true;
  });
  ASSERT_TRUE(loop.runUntil([&] { return isAnswered; }, 20s));
}

void RunningCompanion::wait(std::chrono::milliseconds time) {
  loop.runUntil([] { return false; }, time);
}

bool RunningCompanion::says(const std::string& explanation) {
  return loop.runUntil([&] { return m_companion->explanation() == explanation; }, 20s);
}

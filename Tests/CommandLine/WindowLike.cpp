#include "Tests/CommandLine/WindowLike.h"

#include "Action/NerinAction.h"
#include "Kit/Core/LXPlatform.h"
#include "Kit/Core/ProcessWide.h"
#include "VirtualMouse/VirtualDeviceRequester.h"

WindowLike::WindowLike(const TestHome& user)
    : m_mouse(std::make_shared<VirtualMouse>(user.mouseFile)) {
  LXPlatform platform;
  platform.homeFolder = user.home;
  platform.userFolders = user.folders();
  platform.resourceFolder = NERIN_RESOURCES;
  platform.sleep = [](std::chrono::microseconds) {};
  platform.deviceRequester = std::make_shared<VirtualDeviceRequester>(m_mouse);
  LXPlatform::install(std::move(platform));
  ProcessWideBase::resetAll();
  NerinAction::initMenuList();
  NerinAction::refreshMenuList();
  NerinAction::startListenDev();
}

WindowLike::~WindowLike() {
  ProcessWideBase::resetAll();
  LXPlatform::install({});
}

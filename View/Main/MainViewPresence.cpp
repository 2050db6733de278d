// Connecting and removing the mouse, and the reports of the background service.

#include "Action/Device/DeviceSettings.h"
#include "Action/NerinAction.h"
#include "Kit/Core/LXPlatform.h"
#include "View/Main/LibraryWatch.h"
#include "View/Main/MainView.h"
#include "View/Windows/LocalNotifications.h"
#include "View/Windows/NestedLoop.h"
#include "View/Windows/PopDialogView.h"
#include "View/Windows/Termination.h"

namespace {

constexpr const char* deviceStatus = "NerinDevStatus";

// The values of "type" in the service's reports.
enum DeviceReport : std::int32_t { SlotChanged = 1, DpiChanged = 2, Removed = 100, Attached = 101 };

std::optional<std::int32_t> numberIn(const LXUserInfo& userInfo, const char* key) {
  const auto entry = userInfo.find(key);
  if (entry == userInfo.end()) {
    return std::nullopt;
  }
  return std::visit([](auto value) { return static_cast<std::int32_t>(value); }, entry->second);
}

}  // namespace

void MainView::initNotify() {
  m_isDevOnTag = false;
  m_isFirstOpen = true;
  LXPlatform::current().notificationCenter->addObserver(
      deviceStatus,
      [this](const std::string&, const LXUserInfo& userInfo) { devReportPro(userInfo); });
  auto& notifications = LocalNotifications::shared();
  notifications.observe(NerinAction::notifyShowTip, this, [this] { ShowToolTip(); });
  notifications.observe(NerinAction::notifyHideTip, this, [this] { HideToolTip(); });
  notifications.observe(NerinAction::notifyOutPlusEnd, this, [this] { subWindowEndOutplus(); });
  connect(new LibraryWatch(this), &LibraryWatch::libraryChanged, this, &MainView::followLibrary);
  checkDevPro();
  m_isFirstOpen = false;
}

void MainView::deallocNotify() {
  LXPlatform::current().notificationCenter->removeObserver(deviceStatus);
}

// Runs on any thread, so it only sets flags.
void MainView::devReportPro(const LXUserInfo& userInfo) {
  const auto type = numberIn(userInfo, "type");
  if (!type) {
    return;
  }
  if (*type == Attached || *type == Removed) {
    m_isDevOnTag = *type == Attached;
  }
  if (m_isOutPlus) {
    return;
  }
  const std::int32_t value = numberIn(userInfo, "value").value_or(-1);
  if (*type == SlotChanged) {
    // Of several reports that wait, only the last one matters.
    if (m_reportedSlot.exchange(value) == slotTabs) {
      handOver(&MainView::takeReportedSlot, value);
    }
  } else if (*type == DpiChanged) {
    handOver(&MainView::dpiChangePro, value);
  } else if (*type == Removed && !m_isAskingForMouse) {
    m_isOutPlus = true;
    handOver(&MainView::outPlusReported, value);
  }
}

// Queues the work on the main thread without waiting.
void MainView::handOver(void (MainView::*work)(std::int32_t), std::int32_t value) {
  QMetaObject::invokeMethod(
      this,
      [this, work, value] {
        NestedLoop::whenNone([view = QPointer<MainView>(this), work, value] {
          if (view && !termination::isTerminating()) {
            (view->*work)(value);
          }
        });
      },
      Qt::QueuedConnection);
}

void MainView::outPlusReported(std::int32_t /*value*/) {
  outPlusePro();
}

void MainView::takeReportedSlot(std::int32_t /*value*/) {
  changeProfilePro(m_reportedSlot.exchange(slotTabs));
  refreshApplyBtn();
}

void MainView::changeProfilePro(std::int32_t slot) {
  if (slot < 0 || slot >= slotTabs) {
    return;
  }
  if (m_isModalSeron != 0) {
    // The window's slot is refused; what the user tries would reach the other slot.
    m_missedSlot = slot;
    NerinAction::liveSettings->isHeld = slot != currentSlot();
    if (NerinAction::liveSettings->isHeld) {
      statusline::tellHeldBack(slot + 1);
    } else {
      statusline::clear();
    }
    return;
  }
  m_isFWChangeProfile = true;
  m_profileStep->selectindex(slot + 1);
  m_isFWChangeProfile = false;
}

void MainView::dpiChangePro(std::int32_t /*value*/) {}

void MainView::checkDevPro() {
  if (!NerinAction::checkListenDev()) {
    m_isDevOnTag = false;
    outPlusePro();
  }
}

void MainView::subWindowEndOutplus() {
  checkDevPro();
}

void MainView::outPlusePro() {
  keepDrafts();
  if (m_isModalSeron != 0) {
    reluanchAppPro();
    closeAppPro();
    return;
  }
  if (m_isAskingForMouse) {
    return;
  }
  m_isAskingForMouse = true;
  const bool waits = NerinAction::showPopView("WarningNoDevice", true);
  m_isAskingForMouse = false;
  if (termination::isTerminating()) {
    return;
  }
  if (!waits || !m_isDevOnTag) {
    closeAppPro();
    return;
  }
  m_isOutPlus = false;
  m_profileStep->resetSetp();
  NerinAction::startListenDev();
  refreshData();
}

void MainView::reluanchAppPro() {
  NerinAction::sendRelaunchDaemon();
}

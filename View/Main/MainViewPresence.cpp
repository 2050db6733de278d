// Connecting and removing the mouse, and the reports of the background service.

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <utility>

#include "Action/Device/DeviceSettings.h"
#include "Action/NerinAction.h"
#include "Kit/Core/LXPlatform.h"
#include "View/Main/LibraryWatch.h"
#include "View/Main/MainView.h"
#include "View/Main/SlotReasonLine.h"
#include "View/Screen/ControlFactory.h"
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

// The message for each reason.
const char* messageFor(LXDeviceAbsence absence) {
  switch (absence) {
    case LXDeviceAbsence::NoPermission:
      return "WarningNoPermission";
    case LXDeviceAbsence::NeedsReplug:
      return "WarningNeedsReplug";
    case LXDeviceAbsence::DoesNotAnswer:
      return "WarningSilentMouse";
    case LXDeviceAbsence::InUse:
      return "WarningMouseInUse";
    case LXDeviceAbsence::None:
    case LXDeviceAbsence::NotFound:
      break;
  }
  return "WarningNoDevice";
}

bool isMouseUsable() {
  return NerinAction::mouseAbsence() == LXDeviceAbsence::None;
}

// The mouse is plugged in, but a read would fail.
bool isMouseThereInVain() {
  return NerinAction::checkListenDev() && !isMouseUsable();
}

void copyRule() {
  const std::filesystem::path file = LXPlatform::current().resourceFolder / "60-nerin.rules";
  QFile rule(QString::fromStdString(file.string()));
  if (rule.open(QIODevice::ReadOnly)) {
    QGuiApplication::clipboard()->setText(QString::fromUtf8(rule.readAll()));
  }
}

}  // namespace

void MainView::initNotify() {
  m_isDevOnTag = false;
  m_isFirstOpen = true;
  LXPlatform::current().notificationCenter->addObserver(
      deviceStatus,
      [this](const std::string&, const LXUserInfo& userInfo) { devReportPro(userInfo); });
  m_slotReason = std::make_unique<SlotReasonLine>(*m_statusLine);
  auto& notifications = LocalNotifications::shared();
  notifications.observe(NerinAction::notifyShowTip, this, [this] { ShowToolTip(); });
  notifications.observe(NerinAction::notifyHideTip, this, [this] { HideToolTip(); });
  notifications.observe(NerinAction::notifyOutPlusEnd, this, [this] { subWindowEndOutplus(); });
  connect(new LibraryWatch(this), &LibraryWatch::libraryChanged, this, &MainView::followLibrary);
  m_isMouseSeen = NerinAction::checkListenDev();
  m_presenceWatch = LXPlatform::current().watchPresence([this] {
    lookForMouse();
    if (m_whenPresenceTold) {
      m_whenPresenceTold();
    }
  });
  checkDevPro();
  m_isFirstOpen = false;
}

void MainView::lookForMouse() {
  if (termination::isTerminating()) {
    return;
  }
  const bool isThere = NerinAction::checkListenDev();
  if (isThere == m_isMouseSeen) {
    return;
  }
  m_isMouseSeen = isThere;
  m_hasGone = m_hasGone || !isThere;
  devReportPro({{"type", isThere ? Attached : Removed}, {"value", 0}});
}

void MainView::deallocNotify() {
  m_presenceWatch.reset();
  m_slotReason.reset();
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
  lookForMouse();
  // The service tells of a removal a second time, maybe after the mouse is back and in use again.
  if (m_presenceWatch && !m_hasGone) {
    m_isOutPlus = false;
    m_isDevOnTag = true;
    return;
  }
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
    m_hasGone = true;
    outPlusePro();
  } else if (m_isFirstOpen && isMouseThereInVain()) {
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
  do {
    if (!waitForMouse()) {
      if (!termination::isTerminating()) {
        closeAppPro();
      }
      return;
    }
    resumeWithMouse();
  } while (!termination::isTerminating() && isMouseThereInVain());
}

bool MainView::waitForMouse() {
  // A mouse that came back while another question was open needs none of its own.
  if (m_presenceWatch && m_hasGone && isMouseUsable()) {
    return true;
  }
  std::string shown = "WarningNoDevice";
  const auto update = [&](PopDialogView& dialog) {
    lookForMouse();
    const std::string message = messageFor(NerinAction::mouseAbsence());
    if (message == shown) {
      return;
    }
    shown = message;
    dialog.showMessage(message);
    if (message == "WarningNoPermission") {
      dialog.addLink(NerinAction::tooltipText("Copy the rule"), copyRule);
    } else {
      dialog.removeLink();
    }
  };
  const auto setWhenChanged = [this](std::function<void()> whenChanged) {
    m_whenPresenceTold = std::move(whenChanged);
  };
  // Nobody tells that another program lets the mouse go, or that it was given to this user.
  const auto mayChangeUntold = [this] {
    return !m_presenceWatch || NerinAction::mouseAbsence() != LXDeviceAbsence::NotFound;
  };
  m_isAskingForMouse = true;
  const bool waits = NerinAction::showPopView(
      "WarningNoDevice", true, {update, isMouseUsable, setWhenChanged, mayChangeUntold});
  m_isAskingForMouse = false;
  if (!waits || termination::isTerminating()) {
    return false;
  }
  // Nobody may have told that the mouse is back.
  NerinAction::startListenDev();
  return m_isDevOnTag || NerinAction::checkListenDev();
}

void MainView::resumeWithMouse() {
  m_isOutPlus = false;
  m_hasGone = false;
  m_isMouseSeen = true;
  m_profileStep->resetSetp();
  NerinAction::startListenDev();
  refreshData();
}

void MainView::reluanchAppPro() {
  // Without the service nobody would carry out what the message asks for.
  if (!LXPlatform::current().hasService()) {
    LXPlatform::current().relaunch();
  }
  NerinAction::sendRelaunchDaemon();
}

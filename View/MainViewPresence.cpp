// The windows that the main window opens, and the mouse that comes and goes.

#include <algorithm>
#include <cstring>

#include "Action/EditState.h"
#include "Action/NerinAction.h"
#include "Kit/Core/LXPlatform.h"
#include "Kit/Widgets/LXButton.h"
#include "View/ChildView.h"
#include "View/ControlFactory.h"
#include "View/KeyAssignView.h"
#include "View/LightView.h"
#include "View/LocalNotifications.h"
#include "View/MacroView.h"
#include "View/MainView.h"
#include "View/NestedLoop.h"
#include "View/PerformanceView.h"
#include "View/PopDialogView.h"
#include "View/Termination.h"

namespace {

constexpr const char* deviceStatus = "NerinDevStatus";

// What the service reports as "type".
enum DeviceReport : std::int32_t { SlotChanged = 1, DpiChanged = 2, Removed = 100, Attached = 101 };

constexpr int macroStrip = 70;
constexpr int lightStrip = 60;
constexpr int performanceStrip = 45;

std::optional<std::int32_t> numberIn(const LXUserInfo& userInfo, const char* key) {
  const auto entry = userInfo.find(key);
  if (entry == userInfo.end()) {
    return std::nullopt;
  }
  return std::visit([](auto value) { return static_cast<std::int32_t>(value); }, entry->second);
}

bool isPrimaryClick(const _BTN_INFO& button) {
  return button.FuncID == 1 && button.FuncTableId == 1 && button.KeyBit[0] == 1;
}

}  // namespace

bool MainView::IsCurrSelectedBtn() const {
  return m_selBtnIndex >= 0 && m_selBtnIndex < static_cast<std::int32_t>(buttonCount);
}

bool MainView::checkOnlyLeft(int i) const {
  if (i < 0 || i >= static_cast<int>(buttonCount)) {
    return false;
  }
  if (!IsCurrSelectedBtn() || !isPrimaryClick(selProfile.btnInfo[i])) {
    return true;
  }
  return std::count_if(std::begin(selProfile.btnInfo), std::end(selProfile.btnInfo),
                       isPrimaryClick) >= 2;
}

bool MainView::checkOnlyLeftPro() {
  if (checkOnlyLeft(m_selBtnIndex)) {
    return true;
  }
  NerinAction::showPopView("WarningNeedLeft", true);
  return false;
}

void MainView::openChild(QPointer<LXNoTitleWindow>& child, ChildView* view, int dragHeight,
                         const char* titleKey) {
  view->construct();
  child = new LXNoTitleWindow(view->size(), window());
  child->setWindowTitle(NerinAction::tooltipText(titleKey));
  child->setIsCanDrag(dragHeight > 0);
  child->setDragHeight(dragHeight);
  child->setClosesOnEscape(true);
  child->setWindowDelegate(this);
  // The program has one main window: what blocks it blocks the program.
  child->setWindowModality(Qt::WindowModal);
  child->setContentView(view);
  connect(view, &ChildView::ended, child.data(), &QWidget::close);
  child->center(window());
  m_profileBeforeChild = selProfile;
  ++m_isModalSeron;
  child->show();
}

void MainView::showMacroView() {
  openChild(m_macroWindow, new MacroView, macroStrip, "Macro editor");
}

void MainView::showLightView() {
  auto* view = new LightView;
  openChild(m_lightWindow, view, lightStrip, "LED");
  view->fillSettingData();
}

void MainView::showPerformanceView() {
  openChild(m_performanceWindow, new PerformanceView, performanceStrip, "Advanced");
}

void MainView::showKeyAssignView() {
  if (!checkOnlyLeftPro() || !IsCurrSelectedBtn()) {
    return;
  }
  auto* view = new KeyAssignView;
  openChild(m_keyAssignWindow, view, 0, "Key assignment");
  view->setBtnIndex(m_selBtnIndex);
  view->setTmpBtnInfo(selProfile.btnInfo[m_selBtnIndex]);
  view->setButtonName(physicalButtonName(m_selBtnIndex));
  view->fillSettingData();
}

void MainView::windowWillClose(LXNoTitleWindow& window) {
  const bool isOurs = &window == m_macroWindow || &window == m_lightWindow ||
                      &window == m_performanceWindow || &window == m_keyAssignWindow;
  if (!isOurs || m_isModalSeron == 0) {
    return;
  }
  if (auto* view = qobject_cast<ChildView*>(window.contentView())) {
    view->windowCloses();
  }
  if (&window == m_keyAssignWindow && IsCurrSelectedBtn()) {
    if (const auto* view = qobject_cast<KeyAssignView*>(window.contentView())) {
      selProfile.btnInfo[m_selBtnIndex] = view->tmpBtnInfo();
      fillBtnCaption(m_selBtnIndex);
    }
  }
  // Whatever the child edited can be applied.
  if (std::memcmp(&selProfile, &m_profileBeforeChild, sizeof selProfile) != 0) {
    isNeedSave = true;
  }
  refreshApplyBtn();
  m_isModalSeron = std::max(0, m_isModalSeron - 1);
  window.setWindowDelegate(nullptr);
  window.deleteLater();
  for (auto* child : {&m_macroWindow, &m_lightWindow, &m_performanceWindow, &m_keyAssignWindow}) {
    if (*child == &window) {
      child->clear();
    }
  }
  this->window()->raise();
  this->window()->activateWindow();
}

void MainView::initNotify() {
  m_isDevOnTag = false;
  m_isFirstOpen = true;
  LXPlatform::current().notificationCenter->addObserver(
      deviceStatus,
      [this](const std::string&, const LXUserInfo& userInfo) { devReportPro(userInfo); });
  connect(&LocalNotifications::shared(), &LocalNotifications::posted, this,
          [this](const QString& name) {
            if (name == NerinAction::notifyShowTip) {
              ShowToolTip();
            } else if (name == NerinAction::notifyHideTip) {
              HideToolTip();
            } else if (name == NerinAction::notifyOutPlusEnd) {
              subWindowEndOutplus();
            }
          });
  checkDevPro();
  m_isFirstOpen = false;
}

void MainView::deallocNotify() {
  LXPlatform::current().notificationCenter->removeObserver(deviceStatus);
}

// Runs on whatever thread the report arrives: only the flags change here.
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
    handOver(&MainView::changeProfilePro, value);
  } else if (*type == DpiChanged) {
    handOver(&MainView::dpiChangePro, value);
  } else if (*type == Removed && !m_isAskingForMouse) {
    m_isOutPlus = true;
    handOver(&MainView::outPlusReported, value);
  }
}

// To the main thread, without waiting for it.
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

void MainView::changeProfilePro(std::int32_t slot) {
  if (slot < 0 || slot >= slotTabs) {
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

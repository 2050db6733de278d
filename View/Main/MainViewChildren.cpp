// The child windows of the main window, and what happens when they close.

#include <algorithm>
#include <utility>

#include "Action/Device/DeviceSettings.h"
#include "Action/Edit/EditHistory.h"
#include "Action/Edit/PrimaryClick.h"
#include "Action/Record/EditState.h"
#include "View/Assign/KeyAssignView.h"
#include "View/Dpi/PerformanceView.h"
#include "View/Lights/LightView.h"
#include "View/Macros/MacroView.h"
#include "View/Main/MainView.h"
#include "View/Screen/ControlFactory.h"
#include "View/Windows/ModalWindow.h"
#include "View/Windows/PopDialogView.h"
#include "View/Windows/StatusLine.h"
#include "View/Windows/Termination.h"

namespace {

constexpr int macroStrip = 70;
constexpr int lightStrip = 60;
constexpr int performanceStrip = 45;

}  // namespace

bool MainView::IsCurrSelectedBtn() const {
  return m_selBtnIndex >= 0 && m_selBtnIndex < static_cast<std::int32_t>(buttonCount);
}

bool MainView::checkOnlyLeft(int i) const {
  if (i < 0 || i >= static_cast<int>(buttonCount)) {
    return false;
  }
  return !IsCurrSelectedBtn() || NerinAction::canReassignButton(editState->selProfile(), i);
}

bool MainView::checkOnlyLeftPro() {
  if (checkOnlyLeft(m_selBtnIndex)) {
    return true;
  }
  NerinAction::showPopView("WarningNeedLeft", true);
  return false;
}

void MainView::openChild(ChildView* view, int dragHeight, const char* titleKey) {
  view->construct();
  m_child = new ModalWindow(view, dragHeight, NerinAction::tooltipText(titleKey), window());
  m_child->setWindowDelegate(this);
  connect(view, &ChildView::ended, m_child.data(), &QWidget::close);
  ++m_isModalSeron;
  m_childView = view;
  *NerinAction::liveSettings = {};
  statusline::clear();
  m_child->show();
}

void MainView::showMacroView() {
  openChild(new MacroView, macroStrip, "Macro editor");
}

void MainView::showLightView() {
  auto* view = new LightView;
  openChild(view, lightStrip, "LED");
  view->fillSettingData();
  m_childBefore = view->workingProfile();
}

void MainView::showPerformanceView() {
  auto* view = new PerformanceView;
  openChild(view, performanceStrip, "Advanced");
  m_childBefore = view->workingProfile();
}

void MainView::showKeyAssignView() {
  if (!checkOnlyLeftPro() || !IsCurrSelectedBtn()) {
    return;
  }
  auto* view = new KeyAssignView;
  openChild(view, 0, "Button assignment");
  view->setBtnIndex(m_selBtnIndex);
  view->setTmpBtnInfo(editState->selProfile().btnInfo[m_selBtnIndex]);
  view->setButtonName(physicalButtonName(m_selBtnIndex));
  view->fillSettingData();
}

void MainView::windowWillClose(LXNoTitleWindow& window) {
  if (&window != m_child || m_isModalSeron == 0) {
    return;
  }
  if (const auto* view = qobject_cast<KeyAssignView*>(window.contentView());
      view != nullptr && IsCurrSelectedBtn()) {
    _Nerin_PROFILE edited = editState->selProfile();
    edited.btnInfo[m_selBtnIndex] = view->tmpBtnInfo();
    editState->take(edited);
    fillBtnCaption(m_selBtnIndex);
  }
  if (NerinAction::liveSettings->hasTried) {
    NerinAction::noteTrial();
  }
  refreshApplyBtn();
  m_isModalSeron = std::max(0, m_isModalSeron - 1);
  window.setWindowDelegate(nullptr);
  window.deleteLater();
  m_child.clear();
  m_childView.clear();
  m_childBefore.reset();
  this->window()->raise();
  this->window()->activateWindow();
  keepDrafts();
  showDraftMarks();
  if (m_missedSlot) {
    // After the window has closed.
    QMetaObject::invokeMethod(this, &MainView::catchUp, Qt::QueuedConnection);
  }
}

// The mouse has changed its slot while the window was open.
void MainView::catchUp() {
  const auto slot = std::exchange(m_missedSlot, std::nullopt);
  const bool wasTried = NerinAction::liveSettings->hasTried;
  *NerinAction::liveSettings = {};
  if (!slot || termination::isTerminating()) {
    return;
  }
  if (wasTried && *slot != currentSlot()) {
    // The slot that was left still has what was tried, and the window could not undo it.
    editState->raiseNeedSave();
  }
  statusline::clear();
  changeProfilePro(*slot);
  refreshApplyBtn();
}

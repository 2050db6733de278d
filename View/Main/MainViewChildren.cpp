// The windows that the main window opens, and what they leave behind.

#include <algorithm>
#include <cstring>

#include "Action/Record/EditState.h"
#include "View/Assign/KeyAssignView.h"
#include "View/Dpi/PerformanceView.h"
#include "View/Lights/LightView.h"
#include "View/Macros/MacroView.h"
#include "View/Main/MainView.h"
#include "View/Screen/ControlFactory.h"
#include "View/Windows/ModalWindow.h"
#include "View/Windows/PopDialogView.h"

namespace {

constexpr int macroStrip = 70;
constexpr int lightStrip = 60;
constexpr int performanceStrip = 45;

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
  child = new ModalWindow(view, dragHeight, NerinAction::tooltipText(titleKey), window());
  child->setWindowDelegate(this);
  connect(view, &ChildView::ended, child.data(), &QWidget::close);
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

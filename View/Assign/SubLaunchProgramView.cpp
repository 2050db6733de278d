#include "View/Assign/SubLaunchProgramView.h"

#include "Action/Library/ProfieController.h"
#include "Action/Wire/KeyCodes.h"
#include "ArtworkFrames.h"
#include "Kit/Widgets/LXButton.h"
#include "Kit/Widgets/LXTextField.h"
#include "Kit/Widgets/PlainTip.h"
#include "View/Screen/ControlFactory.h"
#include "View/Screen/Frames.h"
#include "View/Windows/NestedLoop.h"
#include "View/Windows/ProgramPanel.h"
#include "View/Windows/StatusLine.h"
#include "View/Windows/Termination.h"

namespace {

using frames = Artwork::SubLaunchProgramView;

constexpr int textMargin = 12 - LXTextField::ownMargin;

}  // namespace

SubLaunchProgramView::SubLaunchProgramView(QWidget* parent)
    : KeyAssignSubView({frames::screenWidth, frames::screenHeight}, parent) {}

void SubLaunchProgramView::initData() {
  setImageByName(QStringLiteral("SubLaunchProgramView_Normal.png"));
}

void SubLaunchProgramView::initControls() {
  addButton(frameRect(frames::launchProBtn), TagLaunch, "launchProBtn", "Choose program");
  m_pathTxt = NerinAction::AddLabTextField(frameRect(frames::pathTxt), *this);
  m_pathTxt->setObjectName(QStringLiteral("pathTxt"));
  m_pathTxt->setAccessibleName(NerinAction::tooltipText("Program"));
  m_pathTxt->setTextMargins(textMargin, 0, textMargin, 0);
  addNoteLine(frameRect(frames::noteTxt));
}

void SubLaunchProgramView::showProgram(const std::string& path) {
  m_shownPath = path;
  m_pathTxt->setText(programpanel::shownName(path));
  m_pathTxt->setCursorPosition(0);
  m_pathTxt->setToolTip(plainTip(QString::fromStdString(path)));
  showNote();
}

assignmentnotes::Note SubLaunchProgramView::note() const {
  return assignmentnotes::ofProgram(m_shownPath);
}

// Shows the current program, which does not count as a choice.
void SubLaunchProgramView::fillSettingData() {
  m_currLaunchPath.clear();
  const bool launches = tmpBtnInfo().FuncTableId == NerinAction::FunctionLaunch;
  showProgram(launches ? std::string(textOf(tmpBtnInfo().app_path)) : std::string());
}

void SubLaunchProgramView::saveData() {
  if (m_currLaunchPath.empty()) {
    return;
  }
  _BTN_INFO& info = editedBtnInfo();
  info.btnType = ButtonTypeLaunch;
  info.FuncID = NerinAction::FunctionLaunch;
  info.FuncTableId = NerinAction::FunctionLaunch;
  // A path that is too long for the record is cut. The preferences keep the whole path.
  setText(info.app_path, m_currLaunchPath);
  ProfieController& library = ProfieController::getShareProCon();
  statusline::tell(Outcome::of(
      SlotStep::SavePreferences,
      library.setLaunchPath(m_currLaunchPath, library.currFWProfileIndex(), btnIndex())));
}

void SubLaunchProgramView::buttonAction(LXButton& sender) {
  if (sender.tag() == TagLaunch) {
    choose();
  }
}

void SubLaunchProgramView::choose() {
  const NestedLoop scope;
  const auto chosen = programpanel::choose(this);
  if (chosen && !termination::isTerminating()) {
    m_currLaunchPath = chosen->string();
    showProgram(m_currLaunchPath);
  }
}

// The controls, step panels, maps, menu and shortcuts of the main window.

#include <QPainter>
#include <QPushButton>
#include <QShortcut>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Texts/Language.h"
#include "ArtworkFrames.h"
#include "View/Main/ChangesList.h"
#include "View/Main/LanguageMenu.h"
#include "View/Main/MainSubView1.h"
#include "View/Main/MainSubView2.h"
#include "View/Main/MainView.h"
#include "View/Main/MainViewTags.h"
#include "View/Main/SlotReasonLine.h"
#include "View/Screen/ControlFactory.h"
#include "View/Screen/Frames.h"
#include "View/Screen/Pictures.h"
#include "View/Windows/AfterWork.h"
#include "View/Windows/HelpDocument.h"
#include "View/Windows/TransferProgress.h"

namespace {

using frames = Artwork::MainView;

constexpr int captionLeftPad = 12;
constexpr int captionRightPad = 32;
// Leaves room for the program icon.
constexpr int programLeftPad = 44;
constexpr int programRightPad = 12;
constexpr qreal programType = 12;
constexpr int nameType = 15;
constexpr int nameFieldPad = 8;
constexpr int footerGap = 16;
// The arrow beside Apply.
constexpr int changesWidth = 28;
constexpr int changesGap = 4;
constexpr int markSize = 8;
constexpr int markInset = 6;
// Half of the time that an edit may be lost for by a kill.
constexpr int draftMilliseconds = 400;

// The captions of both maps, in the order of the record's buttons, with the names of the buttons.
struct Caption {
  const char* name;
  const char* physicalName;
};
constexpr std::array<Caption, buttonCount> captionOrder{{
    {"leftClickBtn", "Left button"},
    {"rightBtn", "Right button"},
    {"WhellBtn", "Wheel button"},
    {"bomBtn2", "Thumb button 2"},
    {"bomBtn1", "Thumb button 1"},
    {"midleBtn1", "Middle button 1"},
    {"midleBtn2", "Middle button 2"},
    {"rightBtn1", "Right front button 1"},
    {"rightBtn2", "Right front button 2"},
    {"rightBtn3", "Right front button 3"},
    {"leftBtn2", "Left side button 2"},
    {"leftBtn4", "Left side button 4"},
    {"leftBtn3", "Left side button 3"},
    {"leftBtn1", "Left side button 1"},
    {"WhellUpBtn", "Wheel up"},
    {"WhellDownBtn", "Wheel down"},
}};

// An arrow that points to the list above it.
class ArrowButton : public QPushButton {
 public:
  using QPushButton::QPushButton;

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    constexpr QColor ground(0x22, 0x25, 0x2C);
    constexpr QColor hovered(0x2D, 0x31, 0x3A);
    constexpr QColor edge(0x34, 0x39, 0x43);
    constexpr QColor bright(0xF2, 0xF4, 0xF7);
    constexpr QColor dim(0x5A, 0x62, 0x70);
    constexpr qreal radius = 6;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isFocused = hasFocus();
    const qreal inset = isFocused ? 1 : 0.5;
    painter.setPen(QPen(isFocused ? bright : edge, isFocused ? 2 : 1));
    painter.setBrush(underMouse() && isEnabled() ? hovered : ground);
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), radius, radius);
    painter.setPen(
        QPen(isEnabled() ? bright : dim, 1.75, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const QPointF middle = QRectF(rect()).center();
    const QPolygonF arrow{
        {middle + QPointF(-5, 2.5), middle + QPointF(0, -2.5), middle + QPointF(5, 2.5)}};
    painter.drawPolyline(arrow);
  }
};

}  // namespace

struct MainView::Control {
  LXButton* MainView::*member;
  const char* name;
  int tag;
  const char* tooltipKey;
  QRect frame;
  bool isCheckBox = false;
};

const std::vector<MainView::Control>& MainView::controls() {
  static const std::vector<Control> all{
      {&MainView::m_menuBtn, "menuBtn", TagMenu, "Menu", frameRect(frames::menuBtn)},
      {&MainView::m_homeBtn, "homeBtn", TagHome, "Go to the Corvex NERIN register web site.",
       frameRect(frames::homeBtn)},
      {&MainView::m_helpBtn, "helpBtn", TagHelp, "Open the help docuement.",
       frameRect(frames::helpBtn)},
      {&MainView::m_closeBtn, "closeBtn", TagClose, "Close", frameRect(frames::closeBtn)},
      {&MainView::m_goLeftBtn, "goLeftBtn", TagTopView, "Top View", frameRect(frames::goLeftBtn)},
      {&MainView::m_goRightBtn, "goRightBtn", TagSideView, "Side View",
       frameRect(frames::goRightBtn)},
      {&MainView::m_currProfileBtn, "currProfileBtn", TagProfileMenu, "Select one profile.",
       frameRect(frames::currProfileBtn)},
      {&MainView::m_profileNewBtn, "profileNewBtn", TagNew, "Create a new profile",
       frameRect(frames::profileNewBtn)},
      // Users know this button as "Save as file", but it duplicates the profile.
      {&MainView::m_profileSaveBtn, "profileSaveBtn", TagDuplicate, "Save as file",
       frameRect(frames::profileSaveBtn)},
      {&MainView::m_profileDelBtn, "profileDelBtn", TagDelete, "Delete a profile",
       frameRect(frames::profileDelBtn)},
      {&MainView::m_profileImportBtn, "profileImportBtn", TagImport, "Import profile",
       frameRect(frames::profileImportBtn)},
      {&MainView::m_profileExportBtn, "profileExportBtn", TagExport, "export profile",
       frameRect(frames::profileExportBtn)},
      {&MainView::m_normalModeBtn, "normalModeBtn", TagNormalMode,
       "Switch to Normal LED Control Mode", frameRect(frames::normalModeBtn)},
      {&MainView::m_battleModeBtn, "battleModeBtn", TagBattleMode, "Switch to Battle LED Mode",
       frameRect(frames::battleModeBtn)},
      {&MainView::m_MacroSettingBtn, "MacroSettingBtn", TagMacros, "Open Macro editor",
       frameRect(frames::MacroSettingBtn)},
      {&MainView::m_preformanceBtn, "preformanceBtn", TagPerformance,
       "Advanced mouse configuration.", frameRect(frames::preformanceBtn)},
      {&MainView::m_lightOptionBtn, "lightOptionBtn", TagLight, "LED configuration.",
       frameRect(frames::lightOptionBtn)},
      {&MainView::m_linkProChk, "linkProChk", TagLinkSwitch, "Enable link to program",
       frameRect(frames::linkProChk), true},
      {&MainView::m_linkProBtn, "linkProBtn", TagLinkProgram,
       "Link this profile to the program you selected.", frameRect(frames::linkProBtn)},
      {&MainView::m_reDefBtn, "reDefBtn", TagReset, "Reset this profile to system default.",
       frameRect(frames::reDefBtn)},
      {&MainView::m_applyBtn, "applyBtn", TagApply, "Apply", frameRect(frames::applyBtn)},
      {&MainView::m_okBtn, "okBtn", TagOk, "Close", frameRect(frames::okBtn)},
      {&MainView::m_cancelBtn, "cancelBtn", TagCancel, "Cancel", frameRect(frames::cancelBtn)},
  };
  return all;
}

void MainView::initControls() {
  initButtons();
  initMaps();
  initNameField();
  initStepPanels();
  initMenu();
  initShortcuts();
  initStatus();
  initChanges();
  initTabOrder();
  showTexts();
  m_progressBar = new ProgressLine(this);
  m_progressBar->setObjectName(QStringLiteral("progressBar"));
  m_progressBar->setGeometry(frameRect(frames::progressBar));
}

void MainView::initButtons() {
  static constexpr std::array<Artwork::Frame, slotTabs> tabFrames{
      frames::profile1Btn, frames::profile2Btn, frames::profile3Btn, frames::profile4Btn,
      frames::profile5Btn, frames::profile6Btn, frames::profile7Btn, frames::profile8Btn,
      frames::profile9Btn, frames::profile10Btn};
  for (std::size_t i = 0; i < tabFrames.size(); ++i) {
    const auto number = std::to_string(i + 1);
    // The last tag does not follow in sequence. No click is dispatched by it.
    const int tag = i + 1 < tabFrames.size() ? TagFirstSlot + static_cast<int>(i) : TagLastSlot;
    m_profileBtns[i] = addButton(frameRect(tabFrames[i]), tag, ("profile" + number + "Btn").c_str(),
                                 ("Switch to profile " + number + " page.").c_str());
  }
  for (const Control& control : controls()) {
    this->*control.member =
        control.isCheckBox
            ? addCheckBox(control.frame, control.tag, control.name, control.tooltipKey)
            : addButton(control.frame, control.tag, control.name, control.tooltipKey);
  }
  m_currProfileBtn->setBtnTextAlignment(Qt::AlignLeft);
  m_currProfileBtn->setLeftPad(captionLeftPad);
  m_currProfileBtn->setRightPad(captionRightPad);
  m_linkProBtn->setBtnTextAlignment(Qt::AlignLeft);
  m_linkProBtn->setLeftPad(programLeftPad);
  m_linkProBtn->setRightPad(programRightPad);
  m_linkProBtn->setBtnFont(pictures::font(programType, QFont::Medium));
}

void MainView::initNameField() {
  m_profileNameTxt = NerinAction::AddTextField(
      frameRect(frames::profileNameTxt).adjusted(nameFieldPad, 0, -nameFieldPad, 0), *this,
      nameType);
  m_profileNameTxt->setObjectName(QStringLiteral("profileNameTxt"));
  m_profileNameTxt->setTextColor(Qt::black);
  // They end the program, and what is half typed with it.
  for (LXButton* end : {m_closeBtn, m_cancelBtn}) {
    end->setProperty(LXTextField::leavesTextUncommitted, true);
  }
  m_profileNameTxt->setAction([this](LXTextField&) { onProfileTextChange(); });
}

void MainView::initMaps() {
  m_subView1 = new MainSubView1(this);
  m_subView2 = new MainSubView2(this);
  m_subView1->setObjectName(QStringLiteral("subView1"));
  m_subView2->setObjectName(QStringLiteral("subView2"));
  m_subView1->setGeometry(frameRect(frames::subView1));
  m_subView2->setGeometry(frameRect(frames::subView2));
  for (ButtonMapView* map :
       {static_cast<ButtonMapView*>(m_subView1), static_cast<ButtonMapView*>(m_subView2)}) {
    map->setDelegate(this);
    map->construct();
  }
  for (std::size_t i = 0; i < buttonCount; ++i) {
    m_btnArrs[i] = findChild<LXButton*>(QString::fromLatin1(captionOrder[i].name));
  }
}

void MainView::initStepPanels() {
  m_profileStep = new LXSetpPanelObj(this);
  for (LXButton* tab : m_profileBtns) {
    m_profileStep->addItem(tab);
  }
  m_modeStep = new LXSetpPanelObj(this);
  m_modeStep->addItem(m_normalModeBtn);
  m_modeStep->addItem(m_battleModeBtn);
  m_subViewStep = new LXSetpPanelObj(this);
  m_subViewStep->addItem(m_goLeftBtn, m_subView1);
  m_subViewStep->addItem(m_goRightBtn, m_subView2);
  for (LXSetpPanelObj* panel : {m_profileStep, m_modeStep, m_subViewStep}) {
    panel->setSetpDelegate(this);
  }
  m_subViewStep->selectindex(1);
}

void MainView::initMenu() {
  const auto add = [this](const char* name, auto act) {
    QAction* action = m_menu.addAction(QString(), this, act);
    action->setObjectName(QString::fromLatin1(name));
    return action;
  };
  m_aboutMenu = add("aboutMenu", &MainView::aboutRequested);
  m_osdMenu = add("osdMenu", &MainView::osdClick);
  m_switchMenu = add("switchMenu", &MainView::switchClick);
  m_switchMenu->setCheckable(true);
  m_languageMenu = std::make_unique<LanguageMenu>(
      m_menu, [this](const std::optional<std::string>& code) { changeLanguage(code); });
  m_menu.addSeparator();
  m_webMenu = add("webMenu", &MainView::connectTtsSite);
  m_helpMenu = add("helpMenu", &MainView::openHelpPro);
  m_menu.addSeparator();
  m_quitMenu = add("quitMenu", &MainView::closeAppPro);
  m_menuBtn->setOpenedList(&m_menu);
  connect(&m_menu, &QMenu::aboutToShow, this, &MainView::menuNeedsUpdate);
}

void MainView::showTexts() {
  // The tooltip is that of another button, but the picture says "OK".
  m_okBtn->setAccessibleName(NerinAction::tooltipText("OK"));
  m_profileNameTxt->setAccessibleName(NerinAction::tooltipText("Profile name"));
  m_profileNameTxt->setToolTip(m_profileNameTxt->accessibleName());
  const QString words = NerinAction::tooltipText("What would Apply change?");
  m_changesBtn->setAccessibleName(words);
  m_changesBtn->setToolTip(words);
  m_changesList->showTexts();
  m_aboutMenu->setText(NerinAction::tooltipText("About NerinOption"));
  m_switchMenu->setText(NerinAction::tooltipText("Switch slots for programs"));
  m_webMenu->setText(NerinAction::tooltipText("Web page"));
  m_helpMenu->setText(NerinAction::tooltipText("Help"));
  m_quitMenu->setText(NerinAction::tooltipText("Quit"));
  m_languageMenu->showTexts();
}

void MainView::changeLanguage(const std::optional<std::string>& code) {
  m_profileNameTxt->commit();
  const bool isKept = language::choose(code);
  NerinAction::reloadFunctionMenus();
  // The words are drawn into the pictures.
  LXImage::reloadAll();
  NerinAction::refreshTooltips(*this);
  showTexts();
  m_profileList.reset();
  refreshProfileMenu();
  fillSettingData();
  showTitle(m_currProfileBtn->title().isEmpty()
                ? std::nullopt
                : std::optional(m_currProfileBtn->title().toStdString()));
  showDraftMarks();
  // It is there as long as the window listens to the service.
  if (m_slotReason) {
    m_slotReason->showText();
  }
  statusline::clear();
  statusline::tell(Outcome::of(SlotStep::SavePreferences, isKept));
  update();
}

void MainView::initStatus() {
  m_statusLine = new StatusLine(this);
  m_statusLine->setGeometry(QRect(
      QPoint(frameRect(frames::reDefBtn).right() + footerGap, frames::applyBtn.y),
      QPoint(frames::applyBtn.x - footerGap - changesWidth, frameRect(frames::applyBtn).bottom())));
  m_changesBtn = new ArrowButton(this);
  m_changesBtn->setObjectName(QStringLiteral("changesBtn"));
  m_changesBtn->setGeometry(frames::applyBtn.x - changesGap - changesWidth, frames::applyBtn.y,
                            changesWidth, frames::applyBtn.height);
  for (std::size_t i = 0; i < m_draftMarks.size(); ++i) {
    auto* mark = new QWidget(m_profileBtns[i]);
    mark->setObjectName(QStringLiteral("draftMark%1").arg(i + 1));
    mark->setAttribute(Qt::WA_TransparentForMouseEvents);
    mark->setAttribute(Qt::WA_StyledBackground);
    mark->setStyleSheet(QStringLiteral("background: #F5C542; border-radius: 4px;"));
    mark->setGeometry(m_profileBtns[i]->width() - markInset - markSize, markInset, markSize,
                      markSize);
    mark->hide();
    m_draftMarks[i] = mark;
  }
  new AfterWork(
      draftMilliseconds, [this] { keepDrafts(); }, this);
}

// In the order of the work: a slot, its buttons, its profile, the rest of it, and Apply.
void MainView::initTabOrder() {
  std::vector<QWidget*> order(m_profileBtns.begin(), m_profileBtns.end());
  order.insert(order.end(), {m_goLeftBtn, m_goRightBtn});
  for (const ButtonMapView* map :
       {static_cast<ButtonMapView*>(m_subView1), static_cast<ButtonMapView*>(m_subView2)}) {
    const auto captions = map->captions();
    order.insert(order.end(), captions.begin(), captions.end());
  }
  order.insert(order.end(), {m_currProfileBtn,
                             m_profileNewBtn,
                             m_profileSaveBtn,
                             m_profileDelBtn,
                             m_profileImportBtn,
                             m_profileExportBtn,
                             m_profileNameTxt,
                             m_normalModeBtn,
                             m_battleModeBtn,
                             m_MacroSettingBtn,
                             m_preformanceBtn,
                             m_lightOptionBtn,
                             m_linkProChk,
                             m_linkProBtn,
                             m_reDefBtn,
                             m_statusLine->findChild<QPushButton*>(QStringLiteral("statusOffer")),
                             m_applyBtn,
                             m_changesBtn,
                             m_okBtn,
                             m_cancelBtn,
                             m_menuBtn,
                             m_homeBtn,
                             m_helpBtn,
                             m_closeBtn});
  for (std::size_t i = 1; i < order.size(); ++i) {
    setTabOrder(order[i - 1], order[i]);
  }
}

void MainView::initShortcuts() {
  connect(new QShortcut(QKeySequence::Save, this), &QShortcut::activated, this, [this] {
    m_profileNameTxt->commit();
    m_applyBtn->click();
  });
  helpdocument::serve(*this, "main");
}

QString MainView::physicalButtonName(int index) {
  return index >= 0 && index < static_cast<int>(buttonCount)
             ? NerinAction::tooltipText(captionOrder[static_cast<std::size_t>(index)].physicalName)
             : QString();
}

#include "View/Assign/SubSingleKeyView.h"

#include <QKeyEvent>
#include <QPainter>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Wire/KeyCodes.h"
#include "ArtworkFrames.h"
#include "Kit/Core/LXKey.h"
#include "Kit/Widgets/LXButton.h"
#include "Kit/Widgets/LXTextField.h"
#include "View/Screen/ControlFactory.h"
#include "View/Screen/Frames.h"

namespace {

using frames = Artwork::SubSingleKeyView;

constexpr std::uint32_t mouseFunctionMark = 1;
constexpr std::uint32_t keyMark = 2;
constexpr std::int32_t escapeKey = 53;
constexpr int functionMenuWidth = 264;
constexpr int textMargin = 12 - LXTextField::ownMargin;

}  // namespace

SubSingleKeyView::SubSingleKeyView(QWidget* parent)
    : KeyAssignSubView({frames::screenWidth, frames::screenHeight}, parent) {}

void SubSingleKeyView::initData() {
  setImageByName(QStringLiteral("SubSingleKeyView_Normal.png"));
}

LXTextField* SubSingleKeyView::addDisplay(const QRect& frame, const char* name,
                                          const char* nameKey) {
  LXTextField* display = NerinAction::AddLabTextField(frame, *this);
  display->setObjectName(QString::fromLatin1(name));
  display->setAccessibleName(NerinAction::tooltipText(nameKey));
  display->setTextMargins(textMargin, 0, textMargin, 0);
  return display;
}

void SubSingleKeyView::initControls() {
  const auto none = [](LXButton&) {};
  m_mouseFunChk = NerinAction::AddButton(frameRect(frames::mouseFunChk), none, {}, *this);
  NerinAction::initTooltip(*m_mouseFunChk, QStringLiteral("mouseFunChk"), "Assign mouse function");
  m_selBtn = NerinAction::addListButton(frameRect(frames::selBtn), *this, TagFunction,
                                        QStringLiteral("selBtn"), "Mouse function");
  // Choosing the keyboard again starts a new capture.
  const auto captureAgain = [this](LXButton&) {
    if (choice() == KeyboardKey) {
      setFocus(Qt::OtherFocusReason);
    }
  };
  m_keybordChk = NerinAction::AddButton(frameRect(frames::keybordChk), captureAgain, {}, *this);
  NerinAction::initTooltip(*m_keybordChk, QStringLiteral("keybordChk"), "Assign keyboard function");
  m_newKeyEdt = addDisplay(frameRect(frames::newKeyEdt), "newKeyEdt", "Keyboard key");
  m_newKeyEdt->setPlaceholderText(NerinAction::tooltipText("Press a key"));
  m_oldKeyEdt = addDisplay(frameRect(frames::oldKeyEdt), "oldKeyEdt", "Current");
  m_noteTxt = NerinAction::AddLabTextField(frameRect(frames::noteTxt), *this);
  m_noteTxt->setObjectName(QStringLiteral("noteTxt"));
  m_noteTxt->setText(NerinAction::tooltipText("The mouse cannot send this key"));
  m_noteTxt->setTextMargins(textMargin, 0, 0, 0);
  m_noteTxt->setTextColor(QColor::fromRgb(Artwork::Color::emberLit));
  m_noteTxt->hide();

  m_singleSetp = new LXSetpPanelObj(this);
  m_singleSetp->addItem(m_mouseFunChk);
  m_singleSetp->addItem(m_keybordChk);
  m_singleSetp->setSetpDelegate(this);
  NerinAction::refreshMenuListData(m_singleList, this, NerinAction::functionMenus->singleMenuNode,
                                   functionMenuWidth);
}

int SubSingleKeyView::choice() const {
  return m_singleSetp->currentSetp();
}

void SubSingleKeyView::onSelectIndex(int newIndex, int /*oldIndex*/, LXSetpPanelObj& /*sender*/) {
  const bool isKeyboard = newIndex == KeyboardKey;
  m_selBtn->setIsEnable(!isKeyboard);
  m_newKeyEdt->setEnabled(isKeyboard);
  m_oldKeyEdt->setEnabled(isKeyboard);
  setFocusPolicy(isKeyboard ? Qt::StrongFocus : Qt::NoFocus);
  if (isKeyboard) {
    setFocus(Qt::OtherFocusReason);
  }
  setSelKeyCode(m_selKeyCode);
  update();
}

void SubSingleKeyView::fillSettingData() {
  const _BTN_INFO& info = tmpBtnInfo();
  m_singleSetp->resetSetp();
  m_newKeyEdt->clear();
  if (info.FuncTableId != NerinAction::FunctionMouse &&
      info.FuncTableId != NerinAction::FunctionKey) {
    m_selKeyCode = noKey;
    m_function = nullptr;
    m_singleSetp->selectindex(MouseFunction);
  } else {
    const bool isKeyboard = info.MacroID != mouseFunctionMark;
    m_selKeyCode = isKeyboard ? static_cast<std::int32_t>(info.KeyBit[0]) : noKey;
    m_function = NerinAction::getMenuInfoByFunId(static_cast<std::int32_t>(info.FuncID),
                                                 NerinAction::functionMenus->singleMenuNode);
    m_singleSetp->selectindex(isKeyboard ? KeyboardKey : MouseFunction);
  }
  m_selBtn->setTitle(m_function ? QString::fromStdString(m_function->titleStr()) : QString());
  showCurrentCaption();
}

void SubSingleKeyView::showCurrentCaption() {
  const QString caption =
      QString::fromStdString(NerinAction::getBtnCaption(tmpBtnInfo(), btnIndex()));
  m_oldKeyEdt->setText(caption == NerinAction::tooltipText("Disable") ? QString() : caption);
}

void SubSingleKeyView::saveData() {
  _BTN_INFO& info = editedBtnInfo();
  info.btnType = ButtonTypeSingle;
  if (choice() == KeyboardKey) {
    info.FuncID = NerinAction::FunctionKey;
    info.FuncTableId = NerinAction::FunctionKey;
    info.KeyBit[0] = static_cast<std::uint32_t>(m_selKeyCode);
    info.MacroID = keyMark;
    return;
  }
  info.MacroID = mouseFunctionMark;
  if (m_function) {
    info.FuncID = static_cast<std::uint32_t>(m_function->functionID());
    info.FuncTableId = static_cast<std::uint32_t>(m_function->functionTableID());
    info.KeyBit[0] = static_cast<std::uint32_t>(m_function->KeyBit1());
    info.KeyBit[1] = static_cast<std::uint32_t>(m_function->KeyBit2());
    info.KeyBit[2] = static_cast<std::uint32_t>(m_function->KeyBit3());
    info.KeyBit[3] = static_cast<std::uint32_t>(m_function->KeyBit4());
  }
}

void SubSingleKeyView::closePopMenu() {
  if (m_singleList) {
    m_singleList->hideMenulist();
  }
}

void SubSingleKeyView::buttonAction(LXButton& sender) {
  if (sender.tag() == TagFunction) {
    NerinAction::showMenulistWithBtn(sender, m_singleList.get());
  }
}

void SubSingleKeyView::onMenulistSelected(LXMenulist& /*list*/,
                                          const std::shared_ptr<LXTreeNode>& selNode) {
  if (const auto entry = std::dynamic_pointer_cast<MenuInfo>(selNode->nodeData())) {
    m_function = entry;
    m_selBtn->setTitle(QString::fromStdString(entry->titleStr()));
  }
}

bool SubSingleKeyView::isCapturing() const {
  return choice() == KeyboardKey && hasFocus();
}

void SubSingleKeyView::setSelKeyCode(std::int32_t keyCode) {
  m_selKeyCode = keyCode;
  const bool isSendable = keyCode == noKey ||
                          NerinAction::GetFWKeyCode(static_cast<std::uint32_t>(keyCode)) != 0 ||
                          NerinAction::getFWKeyCodeFlag(static_cast<std::uint32_t>(keyCode)) != 0;
  m_noteTxt->setVisible(choice() == KeyboardKey && !isSendable);
}

void SubSingleKeyView::take(const QKeyEvent& event) {
  const auto key = m_keys.take(event);
  if (m_isLeaving) {
    // Wait for the release: repeated presses of Esc would close the window.
    if (key && key->kind == TrackedKey::Kind::KeyUp && key->keyCode == escapeKey) {
      m_keybordChk->setFocus(Qt::OtherFocusReason);
    }
    return;
  }
  if (!key || key->kind == TrackedKey::Kind::KeyUp || key->isRepeat) {
    return;
  }
  // Only pressing a modifier counts. Its flag shows the press; left and right share a flag. The
  // flag of Caps Lock is its lamp, as in a macro.
  if (key->kind == TrackedKey::Kind::FlagsChanged &&
      (key->modifierFlags & keyModifierFlag(key->keyCode)) == 0) {
    return;
  }
  std::int32_t keyCode = key->keyCode;
  if (keyCode == escapeKey && m_wasEscape) {
    // Leaving with Esc keeps the key from before, if there was one.
    keyCode = m_keyBeforeEscape != noKey ? m_keyBeforeEscape : escapeKey;
    m_isLeaving = true;
  } else if (keyCode == escapeKey) {
    m_keyBeforeEscape = m_selKeyCode;
  }
  m_wasEscape = key->keyCode == escapeKey;
  setSelKeyCode(keyCode);
  m_newKeyEdt->setText(QString::fromStdString(LXKey::getStrByKeycode(keyCode)));
}

// Takes keys before Qt uses them for shortcuts and for moving the focus.
bool SubSingleKeyView::event(QEvent* event) {
  switch (event->type()) {
    case QEvent::ShortcutOverride:
      if (isCapturing()) {
        event->accept();
        return true;
      }
      break;
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
      if (isCapturing()) {
        take(*static_cast<QKeyEvent*>(event));
        event->accept();
        return true;
      }
      break;
    case QEvent::FocusIn:
    case QEvent::FocusOut:
      m_keys.forgetAll();
      m_wasEscape = false;
      m_isLeaving = false;
      update();
      break;
    default:
      break;
  }
  return KeyAssignSubView::event(event);
}

void SubSingleKeyView::mousePressEvent(QMouseEvent* event) {
  if (choice() == KeyboardKey) {
    setFocus(Qt::MouseFocusReason);
  }
  event->accept();
}

void SubSingleKeyView::paintEvent(QPaintEvent* event) {
  KeyAssignSubView::paintEvent(event);
  if (isCapturing()) {
    QPainter painter(this);
    const QRect newKey = frameRect(frames::newKeyEdt);
    activeImage().slice(newKey).draw(painter, newKey.topLeft());
  }
}

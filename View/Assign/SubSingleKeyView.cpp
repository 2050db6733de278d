#include "View/Assign/SubSingleKeyView.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <algorithm>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Wire/KeyCodes.h"
#include "ArtworkFrames.h"
#include "Kit/Core/LXKey.h"
#include "Kit/Desktop/KeyboardHold.h"
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
constexpr int hintMargin = 12;
constexpr int keyMenuWidth = 200;

// A row of the list of keys.
class KeyEntry : public LXMenuData {
 public:
  explicit KeyEntry(std::int32_t keyCode) : m_keyCode(keyCode) {
    setTitleStr(assignmentnotes::rareKeyTitle(keyCode));
    setType(1);
  }
  std::int32_t keyCode() const { return m_keyCode; }
  // Esc is no key that a keyboard lacks.
  bool isLineAfter() const override { return m_keyCode == escapeKey; }

 private:
  std::int32_t m_keyCode;
};

std::shared_ptr<LXTreeNode> rareKeyNode() {
  auto root = std::make_shared<LXTreeNode>();
  for (const std::int32_t key : assignmentnotes::rareKeys()) {
    root->addChild(std::make_shared<KeyEntry>(key));
  }
  return root;
}

QString keyName(std::int32_t keyCode) {
  return QString::fromStdString(LXKey::getStrByKeycode(keyCode));
}

bool startsCapture(const QKeyEvent& event) {
  return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter ||
         event.key() == Qt::Key_Space;
}

}  // namespace

SubSingleKeyView::SubSingleKeyView(QWidget* parent)
    : KeyAssignSubView({frames::screenWidth, frames::screenHeight}, parent) {}

SubSingleKeyView::~SubSingleKeyView() = default;

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
  addKeyControls();
  m_singleSetp = new LXSetpPanelObj(this);
  m_singleSetp->addItem(m_mouseFunChk);
  m_singleSetp->addItem(m_keybordChk);
  m_singleSetp->setSetpDelegate(this);
  NerinAction::refreshMenuListData(m_singleList, this, NerinAction::functionMenus->singleMenuNode,
                                   functionMenuWidth);
}

void SubSingleKeyView::addKeyControls() {
  // Choosing the keyboard again starts a new capture.
  const auto captureAgain = [this](LXButton&) {
    if (choice() == KeyboardKey) {
      startCapture();
    }
  };
  m_keybordChk = NerinAction::AddButton(frameRect(frames::keybordChk), captureAgain, {}, *this);
  NerinAction::initTooltip(*m_keybordChk, QStringLiteral("keybordChk"), "Assign keyboard function");
  m_newKeyEdt = addDisplay(frameRect(frames::newKeyEdt), "newKeyEdt", "Keyboard key");
  setAccessibleName(m_newKeyEdt->accessibleName());
  m_keyListBtn = NerinAction::addListButton(frameRect(frames::keyListBtn), *this, TagKeyList,
                                            QStringLiteral("keyListBtn"), "Other keys");
  m_keyListBtn->setTitle(NerinAction::tooltipText("Other keys"));
  m_oldKeyEdt = addDisplay(frameRect(frames::oldKeyEdt), "oldKeyEdt", "Current");
  addNoteLine(frameRect(frames::noteTxt));
  m_hintTxt = new QLabel(this);
  m_hintTxt->setObjectName(QStringLiteral("hintTxt"));
  m_hintTxt->setGeometry(frameRect(frames::hintTxt));
  m_hintTxt->setFont(m_newKeyEdt->font());
  m_hintTxt->setTextFormat(Qt::PlainText);
  m_hintTxt->setWordWrap(true);
  m_hintTxt->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  m_hintTxt->setContentsMargins(hintMargin, 0, 0, 0);
  m_hintTxt->setAttribute(Qt::WA_TransparentForMouseEvents);
  QPalette colors = m_hintTxt->palette();
  colors.setColor(QPalette::WindowText, QColor::fromRgb(Artwork::Color::mist));
  m_hintTxt->setPalette(colors);
  NerinAction::refreshMenuListData(m_keyList, this, rareKeyNode(), keyMenuWidth);
}

int SubSingleKeyView::choice() const {
  return m_singleSetp->currentSetp();
}

void SubSingleKeyView::onSelectIndex(int newIndex, int /*oldIndex*/, LXSetpPanelObj& /*sender*/) {
  const bool isKeyboard = newIndex == KeyboardKey;
  m_selBtn->setIsEnable(!isKeyboard);
  m_newKeyEdt->setEnabled(isKeyboard);
  m_keyListBtn->setIsEnable(isKeyboard);
  m_oldKeyEdt->setEnabled(isKeyboard);
  setFocusPolicy(isKeyboard ? Qt::StrongFocus : Qt::NoFocus);
  if (!isKeyboard) {
    endCapture();
  } else if (m_isFilling) {
    setFocus(Qt::OtherFocusReason);
  } else {
    startCapture();
  }
  setSelKeyCode(m_selKeyCode);
  update();
}

assignmentnotes::Note SubSingleKeyView::note() const {
  if (choice() == KeyboardKey) {
    return assignmentnotes::ofKey(m_selKeyCode);
  }
  return m_function ? assignmentnotes::Note::None : assignmentnotes::Note::NoFunction;
}

void SubSingleKeyView::fillSettingData() {
  const _BTN_INFO& info = tmpBtnInfo();
  m_isFilling = true;
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
  m_isFilling = false;
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
  for (LXMenulist* list : {m_singleList.get(), m_keyList.get()}) {
    if (list != nullptr) {
      list->hideMenulist();
    }
  }
}

void SubSingleKeyView::buttonAction(LXButton& sender) {
  if (sender.tag() == TagFunction) {
    NerinAction::showMenulistWithBtn(sender, m_singleList.get());
  } else if (sender.tag() == TagKeyList) {
    openKeyList();
  }
}

void SubSingleKeyView::openKeyList() {
  const auto& keys = assignmentnotes::rareKeys();
  const auto found = std::find(keys.begin(), keys.end(), m_selKeyCode);
  const int row = found == keys.end() ? LXMenulist::noRow : static_cast<int>(found - keys.begin());
  NerinAction::showMenulistWithBtn(*m_keyListBtn, m_keyList.get(), row);
}

void SubSingleKeyView::onMenulistSelected(LXMenulist& /*list*/,
                                          const std::shared_ptr<LXTreeNode>& selNode) {
  if (const auto key = std::dynamic_pointer_cast<KeyEntry>(selNode->nodeData())) {
    chooseKey(key->keyCode());
  } else if (const auto entry = std::dynamic_pointer_cast<MenuInfo>(selNode->nodeData())) {
    m_function = entry;
    m_selBtn->setTitle(QString::fromStdString(entry->titleStr()));
    showNote();
  }
}

void SubSingleKeyView::setSelKeyCode(std::int32_t keyCode) {
  m_selKeyCode = keyCode;
  showNote();
  showHint();
}

void SubSingleKeyView::chooseKey(std::int32_t keyCode) {
  m_newKeyEdt->setText(keyName(keyCode));
  setSelKeyCode(keyCode);
}

QString SubSingleKeyView::hint() const {
  if (choice() != KeyboardKey) {
    return {};
  }
  if (!m_isCapturing) {
    return hasFocus() ? NerinAction::tooltipText("Press Return or click the field to capture")
                      : QString();
  }
  if (!m_wasEscape) {
    return NerinAction::tooltipText("Press a key. Esc twice or a click elsewhere ends this");
  }
  const std::int32_t kept = m_keyBeforeEscape != noKey ? m_keyBeforeEscape : escapeKey;
  return NerinAction::tooltipText("Esc again ends this and keeps %1. Esc is also in the list")
      .arg(keyName(kept));
}

// Below the note, if there is one.
void SubSingleKeyView::showHint() {
  const QString text = hint();
  const QRect place = frameRect(frames::hintTxt);
  const int top = note() == assignmentnotes::Note::None ? 0 : frameRect(frames::noteTxt).height();
  m_hintTxt->setGeometry(place.adjusted(0, top, 0, 0));
  m_hintTxt->setText(text);
  m_hintTxt->setVisible(!text.isEmpty());
  setAccessibleDescription(text);
  m_newKeyEdt->setPlaceholderText(m_isCapturing ? NerinAction::tooltipText("Press a key")
                                                : QString());
  m_newKeyEdt->setTextColor(m_isCapturing ? QColor::fromRgb(Artwork::Color::emberLit)
                                          : QColor(Qt::white));
}

// Grabs the keyboard, so that the desktop's shortcuts are keys too and close or leave nothing.
void SubSingleKeyView::startCapture() {
  setFocus(Qt::OtherFocusReason);
  if (m_isCapturing || !isVisible()) {
    return;
  }
  m_isCapturing = true;
  m_wasEscape = false;
  m_isLeaving = false;
  qApp->installEventFilter(this);
  m_keyboard = std::make_unique<KeyboardHold>(*this);
  showHint();
  update();
}

void SubSingleKeyView::endCapture() {
  if (!m_isCapturing) {
    return;
  }
  m_isCapturing = false;
  qApp->removeEventFilter(this);
  m_keyboard.reset();
  m_keys.forgetAll();
  showHint();
  update();
}

void SubSingleKeyView::leave() {
  endCapture();
  clearFocus();
}

void SubSingleKeyView::take(const QKeyEvent& event) {
  const auto key = m_keys.take(event);
  if (m_isLeaving) {
    // Wait for the release: repeated presses of Esc would close the window.
    if (key && key->kind == TrackedKey::Kind::KeyUp && key->keyCode == escapeKey) {
      endCapture();
      m_keybordChk->setFocus(Qt::OtherFocusReason);
    }
    return;
  }
  // The key that started the capture may still be held.
  if (!key || key->kind == TrackedKey::Kind::KeyUp || key->isRepeat || event.isAutoRepeat()) {
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
  chooseKey(keyCode);
}

// Takes keys before Qt uses them for shortcuts and for moving the focus.
bool SubSingleKeyView::event(QEvent* event) {
  switch (event->type()) {
    case QEvent::ShortcutOverride:
      if (m_isCapturing) {
        event->accept();
        return true;
      }
      break;
    case QEvent::KeyPress:
    case QEvent::KeyRelease: {
      const auto& key = *static_cast<QKeyEvent*>(event);
      const bool isStart = !m_isCapturing && choice() == KeyboardKey && startsCapture(key);
      if (m_isCapturing) {
        take(key);
      } else if (isStart && event->type() == QEvent::KeyPress && !key.isAutoRepeat()) {
        m_keys.take(key);
        startCapture();
      }
      if (m_isCapturing || isStart) {
        event->accept();
        return true;
      }
      break;
    }
    case QEvent::FocusIn:
      m_keys.forgetAll();
      showHint();
      update();
      break;
    case QEvent::FocusOut:
    case QEvent::Hide:
    case QEvent::WindowDeactivate:
      endCapture();
      showHint();
      update();
      break;
    default:
      break;
  }
  return KeyAssignSubView::event(event);
}

bool SubSingleKeyView::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::MouseButtonPress && watched->isWidgetType() && watched != this) {
    endCapture();
  }
  return KeyAssignSubView::eventFilter(watched, event);
}

void SubSingleKeyView::mousePressEvent(QMouseEvent* event) {
  const bool isOnField = frameRect(frames::newKeyEdt).contains(event->position().toPoint());
  if (choice() == KeyboardKey && isOnField) {
    startCapture();
  } else {
    leave();
  }
  event->accept();
}

void SubSingleKeyView::paintEvent(QPaintEvent* event) {
  KeyAssignSubView::paintEvent(event);
  if (m_isCapturing || hasFocus()) {
    QPainter painter(this);
    const QRect newKey = frameRect(frames::newKeyEdt);
    activeImage().slice(newKey).draw(painter, newKey.topLeft());
  }
}

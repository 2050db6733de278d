// While a recording runs, every key and mouse button in the window becomes a command of the macro.

#include <QAbstractButton>
#include <QAbstractSlider>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPointer>
#include <QWindow>
#include <algorithm>
#include <chrono>
#include <set>
#include <utility>
#include <vector>

#include "Kit/Core/LXAction.h"
#include "Kit/Core/LXLogger.h"
#include "Kit/Desktop/KeyboardHold.h"
#include "Kit/Widgets/LXNumberTextField.h"
#include "Kit/Widgets/LXTextField.h"
#include "View/Macros/MacroView.h"
#include "View/Macros/MacroWorkbench.h"
#include "View/Macros/TimeStrip.h"
#include "View/Screen/ControlFactory.h"

namespace {

constexpr std::uint32_t leftButton = 120;
constexpr std::uint32_t rightButton = 121;
constexpr std::uint32_t otherButton = 122;

std::uint32_t codeOf(Qt::MouseButton button) {
  return button == Qt::LeftButton    ? leftButton
         : button == Qt::RightButton ? rightButton
                                     : otherButton;
}

// Whether the widget would swallow clicks: fields and scroll bars use them, and disabled buttons
// drop them.
bool keepsClicks(const QWidget& widget) {
  const auto* button = qobject_cast<const QAbstractButton*>(&widget);
  return button != nullptr ? !button->isEnabled()
                           : qobject_cast<const QLineEdit*>(&widget) != nullptr ||
                                 qobject_cast<const TimeStrip*>(&widget) != nullptr ||
                                 qobject_cast<const QAbstractSlider*>(&widget) != nullptr;
}

// Keys pressed while a message is open answer the message. Their releases do not belong to the
// macro, even after the message has closed.
class MessageKeys : public QObject {
 public:
  MessageKeys() : QObject(qApp) { qApp->installEventFilter(this); }

  // Call when the message has closed. The object stays for the releases that are still to come.
  void end() {
    m_isOver = true;
    leave();
  }

 protected:
  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    if (event->type() == QEvent::KeyPress && !m_isOver) {
      m_down.insert(static_cast<QKeyEvent*>(event)->nativeScanCode());
    }
    if (event->type() != QEvent::KeyRelease || static_cast<QKeyEvent*>(event)->isAutoRepeat()) {
      return false;
    }
    const bool wasDown = m_down.erase(static_cast<QKeyEvent*>(event)->nativeScanCode()) != 0;
    const bool isSwallowed = wasDown && m_isOver;
    if (isSwallowed) {
      leave();
    }
    return isSwallowed;
  }

 private:
  void leave() {
    if (m_down.empty()) {
      deleteLater();
    }
  }

  std::set<quint32> m_down;
  bool m_isOver = false;
};

std::uint64_t clockMilliseconds() {
  return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(
                                        std::chrono::steady_clock::now().time_since_epoch())
                                        .count());
}

}  // namespace

void MacroView::startRecording() {
  if (!m_currMacroInfo) {
    return;
  }
  m_currInsertIndex = keyArrs()->size();
  macroDelays->delayType = m_delaySetp->currentSetp();
  m_currDefDelayTim = m_defDelayTxt->value();
  setRecState(true, false);
}

void MacroView::startInsertRecording() {
  if (!m_currMacroInfo || !m_isInsert) {
    return;
  }
  m_currInsertIndex = static_cast<std::size_t>(std::max(0, selectedRow()));
  if (m_currInsertType == InsertRecordAfter || m_currInsertType == InsertDelayAfter) {
    ++m_currInsertIndex;
  }
  m_currInsertIndex = std::min(m_currInsertIndex, keyArrs()->size());
  macroDelays->delayType = m_insertDelaySetp->currentSetp();
  m_currDefDelayTim = m_insertDefDelayTxt->value();
  setRecState(true, true);
}

void MacroView::setRecState(bool isRecord, bool isInsert) {
  if (isInsert) {
    m_isInsertRecord = isRecord;
  }
  for (LXButton* button : {m_macroNameBtn,      m_newMacroBtn,
                           m_delMacroBtn,       m_copyMacroBtn,
                           m_importMacroBtn,    m_exportMacroBtn,
                           m_autoDelayChk,      m_defDelayChk,
                           m_lgnoreDelayChk,    m_recordBtn,
                           m_delKeyBtn,         m_keyUpBtn,
                           m_keyDownBtn,        m_insertKeyBtn,
                           m_insertBtn,         m_insertAutoDelayChk,
                           m_insertDefDelayChk, m_insertLgnoreDelayChk,
                           m_insertRecordBtn,   m_insertIntBtn,
                           m_insertCancelBtn,   m_okBtn,
                           m_cancelBtn,         m_applyBtn,
                           m_toolsBtn,          m_testBtn}) {
    button->setIsEnable(!isRecord);
  }
  m_macroNameTxt->setEnabled(!isRecord);
  (m_isInsertRecord ? m_stopBtn : m_insertStopBtn)->setIsEnable(!isRecord);
  setConCaptureEvent(isRecord);
  m_isRecord = isRecord;
  m_lastKeyInfo = nullptr;
  m_isAddDelay = true;
  m_workbench->commandsChanged(isRecord);
  m_workbench->setUsable(!isRecord);
  m_recordStateTxt->setText(isRecord ? NerinAction::tooltipText("Recording. Press Stop to end")
                                     : QString());
  if (isRecord) {
    m_recordedFrom = m_currInsertIndex;
    m_oldTime.reset();
    m_buttonsOnStop = {};
    m_buttonsElsewhere = {};
    m_keys.forgetKeys();
    m_isKeyElsewhere = false;
    qApp->installEventFilter(this);
    m_table->setFocus(Qt::OtherFocusReason);
    takeKeyboard();
    return;
  }
  endRecording();
  setConEnableWithMacro();
  setInsertState(isInsert);
}

// Holds the keyboard so that the macro also gets the desktop's shortcuts, but no keys for other
// windows.
void MacroView::takeKeyboard() {
  if (m_isRecord && !m_isInfoShown && !m_keyboard) {
    m_keyboard = std::make_unique<KeyboardHold>(*m_table);
  }
}

void MacroView::endRecording() {
  m_isRecord = false;
  qApp->removeEventFilter(this);
  m_keyboard.reset();
}

// A desktop that keeps Alt+F4 for itself sends its Alt, which is not meant for the macro.
bool MacroView::staysOpen() {
  if (!m_isRecord) {
    return m_workbench->endKeyChoice();
  }
  dropLastPress(RecordedKeys::isOption);
  releaseHeldKeys();
  activeStop().click();
  return true;
}

// The other window gets their releases.
void MacroView::releaseHeldKeys() {
  m_eventTime += clockMilliseconds() - m_seenTime;
  m_seenTime = clockMilliseconds();
  for (const std::uint16_t key : m_keys.letGo()) {
    if (keyArrs() != nullptr && keyArrs()->size() < maximumCommands) {
      AddNewKey(key, MacroKeyInfo::KeyRelease);
    }
  }
}

void MacroView::setConCaptureEvent(bool captures) {
  for (LXButton* button : allButtons()) {
    button->setIsCaptureMouseEvent(captures);
  }
  m_table->setIsCaptureMouseEvent(captures);
}

LXButton& MacroView::activeStop() const {
  return m_isInsertRecord ? *m_insertStopBtn : *m_stopBtn;
}

bool MacroView::checkMouseEvent(const QMouseEvent& event) const {
  return activeStop().rect().contains(activeStop().mapFromGlobal(event.globalPosition().toPoint()));
}

// Delays use the time of the events. Synthetic events may not have one.
void MacroView::rememberTime(const QInputEvent& event) {
  m_seenTime = clockMilliseconds();
  m_eventTime = event.timestamp() != 0 ? event.timestamp() : m_seenTime;
}

// The Control key of the shortcut was recorded before anybody could know what it was for.
void MacroView::stopByShortcut() {
  dropLastPress(RecordedKeys::isControl);
  activeStop().click();
}

// Without it, the command before it is the last one, which has no pause.
void MacroView::dropLastPress(bool (*isSuchKey)(std::int32_t keyCode)) {
  if (!m_lastKeyInfo || m_lastKeyInfo->keyFlag() != MacroKeyInfo::KeyPress ||
      !isSuchKey(m_lastKeyInfo->keyCode())) {
    return;
  }
  MacroInfo::Events& events = *keyArrs();
  const std::int32_t row = indexOf(m_lastKeyInfo.get());
  events.erase(events.begin() + row);
  m_keys.drop(m_lastKeyInfo->keyCode());
  m_lastKeyInfo = nullptr;
  --m_currInsertIndex;
  if (static_cast<std::size_t>(row) > m_recordedFrom) {
    m_lastKeyInfo = events[static_cast<std::size_t>(row) - 1];
    m_lastKeyInfo->setDelay(0);
  }
  m_selKeyInfo = nullptr;
  reloadTable();
  selectComByIndex(std::max(0, row - 1));
}

void MacroView::startByShortcut() {
  if (m_keys.startsByShortcut()) {
    m_recordBtn->click();
  }
}

void MacroView::takeKey(const QKeyEvent& event) {
  const auto [meaning, key] = m_keys.take(event, m_isRecord);
  if (meaning == RecordedKeys::Meaning::Stop) {
    stopByShortcut();
    return;
  }
  if (meaning == RecordedKeys::Meaning::Shortcut) {
    return;
  }
  rememberTime(event);
  if (!key) {
    return;
  }
  const LXSourcePlace place = LXSourcePlace::current("View/MacroView");
  switch (key->kind) {
    case TrackedKey::Kind::KeyDown:
      LXLogger::debug("keyDown", place);
      break;
    case TrackedKey::Kind::KeyUp:
      LXLogger::debug("keyUp", place);
      break;
    case TrackedKey::Kind::FlagsChanged:
      LXLogger::debug("flagsChanged", place);
      break;
  }
  if (meaning != RecordedKeys::Meaning::None) {
    AddNewKey(key->keyCode, meaning == RecordedKeys::Meaning::Press ? MacroKeyInfo::KeyPress
                                                                    : MacroKeyInfo::KeyRelease);
  }
}

// True if the event belongs to the recording. A release counts as on Stop only if its press was on
// Stop, wherever the pointer is now.
bool MacroView::takeMouse(const QMouseEvent& event, bool isDown) {
  if (!m_isRecord) {
    return false;
  }
  const Qt::MouseButton button = event.button();
  bool isOnStop = checkMouseEvent(event);
  if (isDown) {
    // Kept until the next press, because a release may arrive twice.
    m_buttonsOnStop.setFlag(button, isOnStop);
    m_buttonsElsewhere.setFlag(button, !isOnStop);
  } else if (m_buttonsOnStop.testFlag(button)) {
    isOnStop = true;
  } else if (m_buttonsElsewhere.testFlag(button)) {
    isOnStop = false;
  }
  if (isOnStop) {
    return false;
  }
  rememberTime(event);
  AddNewKey(codeOf(button), isDown ? MacroKeyInfo::MousePress : MacroKeyInfo::MouseRelease);
  return true;
}

void MacroView::AddNewKey(std::uint32_t keyCode, std::uint32_t flag) {
  const auto code = static_cast<std::int32_t>(keyCode & 0xFFFFU);
  const auto keyFlag = static_cast<std::int32_t>(flag);
  MacroInfo::Events* events = keyArrs();
  if (events == nullptr) {
    return;
  }
  if (m_lastKeyInfo && m_lastKeyInfo->keyFlag() == keyFlag && m_lastKeyInfo->keyCode() == code) {
    return;
  }
  if (events->size() >= maximumCommands) {
    // Control may be the beginning of the shortcut that stops the recording.
    if (!m_isInfoShown && !(keyFlag <= MacroKeyInfo::KeyRelease && RecordedKeys::isControl(code))) {
      m_isInfoShown = true;
      // The user may answer with a key, which the table must not grab.
      m_keyboard.reset();
      auto* keys = new MessageKeys;
      const QPointer<MacroView> self = this;
      LXAction::showInfoMessage(
          NerinAction::tooltipText("Maximum number of macros reached").toStdString());
      keys->end();
      if (!self) {
        return;
      }
      m_isInfoShown = false;
      takeKeyboard();
    }
    return;
  }
  if (m_isAddDelay) {
    const std::uint64_t elapsed =
        m_oldTime && m_eventTime > *m_oldTime ? m_eventTime - *m_oldTime : 0;
    if (m_oldTime && m_lastKeyInfo) {
      constexpr std::uint64_t longest = INT32_MAX;
      m_lastKeyInfo->setDelay(macroDelays->delayType == DelayMeasured
                                  ? static_cast<std::int32_t>(std::min(elapsed, longest))
                              : macroDelays->delayType == DelayFixed ? m_currDefDelayTim
                                                                     : 0);
    }
    m_oldTime = m_eventTime;
  }
  const auto command = std::make_shared<MacroKeyInfo>(code, keyFlag, 0);
  m_currInsertIndex = std::min(m_currInsertIndex, events->size());
  events->insert(events->begin() + static_cast<std::ptrdiff_t>(m_currInsertIndex), command);
  ++m_currInsertIndex;
  m_lastKeyInfo = command;
  reloadTable();
  selectNewCom(command);
}

// Takes keys before Qt uses them for shortcuts and focus, and clicks before a control uses them.
// Leaves the events of a message alone. A key comes to a window and then to the widget that holds
// the keyboard, also from another window, until the desktop has said which one has the focus.
bool MacroView::eventFilter(QObject* watched, QEvent* event) {
  if (watched->isWindowType() &&
      (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease)) {
    m_isKeyElsewhere = watched != window()->windowHandle();
  }
  const auto* widget = qobject_cast<QWidget*>(watched);
  const bool isOurs =
      widget != nullptr ? widget->window() == window() : watched == window()->windowHandle();
  if (!m_isRecord || m_isInfoShown || !isOurs) {
    return ChildView::eventFilter(watched, event);
  }
  switch (event->type()) {
    case QEvent::ShortcutOverride:
    case QEvent::ContextMenu:
      break;
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
      if (!m_isKeyElsewhere) {
        takeKey(*static_cast<QKeyEvent*>(event));
      }
      break;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
      if (widget == nullptr || !keepsClicks(*widget)) {
        return ChildView::eventFilter(watched, event);
      }
      takeMouse(*static_cast<QMouseEvent*>(event), event->type() != QEvent::MouseButtonRelease);
      m_table->setFocus(Qt::OtherFocusReason);
      break;
    default:
      return ChildView::eventFilter(watched, event);
  }
  event->accept();
  return true;
}

// Keys that are typed or held in another window do not belong to the macro.
bool MacroView::event(QEvent* event) {
  if (event->type() == QEvent::WindowDeactivate) {
    m_keys.forgetShortcut();
  }
  if (m_isRecord && event->type() == QEvent::WindowActivate) {
    m_keys.forgetKeys();
    takeKeyboard();
  } else if (m_isRecord && event->type() == QEvent::WindowDeactivate) {
    releaseHeldKeys();
    m_keyboard.reset();
  }
  return ChildView::event(event);
}

void MacroView::keyPressEvent(QKeyEvent* event) {
  takeKey(*event);
  ChildView::keyPressEvent(event);
}

void MacroView::keyReleaseEvent(QKeyEvent* event) {
  takeKey(*event);
  ChildView::keyReleaseEvent(event);
}

void MacroView::mousePressEvent(QMouseEvent* event) {
  if (takeMouse(*event, true)) {
    event->accept();
  } else {
    ChildView::mousePressEvent(event);
  }
}

void MacroView::mouseReleaseEvent(QMouseEvent* event) {
  if (takeMouse(*event, false)) {
    event->accept();
  } else {
    ChildView::mouseReleaseEvent(event);
  }
}

void MacroView::onMouseEvent(LXButton& /*button*/, QEvent& event, int type) {
  if (type >= LeftDown && type <= OtherUp) {
    takeMouse(static_cast<QMouseEvent&>(event), (type - LeftDown) % 2 == 0);
  }
}

void MacroView::onMouseEvent(RigthMouseTBView& /*table*/, QMouseEvent& event, int type) {
  if (type >= LeftDown && type <= OtherUp) {
    takeMouse(event, (type - LeftDown) % 2 == 0);
  }
}

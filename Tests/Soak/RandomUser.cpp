#include "Tests/Soak/RandomUser.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QInputMethodEvent>
#include <QSet>
#include <QWheelEvent>
#include <algorithm>
#include <array>

#include "Tests/Soak/InputQueue.h"

namespace {

// Chances in a hundred.
constexpr std::size_t onControl = 85;
constexpr std::size_t inMiddle = 70;
constexpr std::size_t beside = 10;
constexpr std::size_t reallyCloses = 15;
constexpr std::size_t throughDoor = 25;

std::string nameOf(const QWidget& widget) {
  const QString name = widget.objectName();
  std::string text = widget.metaObject()->className();
  if (!name.isEmpty()) {
    text = name.toStdString() + " (" + text + ')';
  }
  const auto* button = qobject_cast<const QAbstractButton*>(&widget);
  return button != nullptr && !button->text().isEmpty()
             ? text + " \"" + button->text().left(24).toStdString() + '"'
             : text;
}

const QSet<QString>& doorNames() {
  static const QSet<QString> names{
      QStringLiteral("profileImportBtn"), QStringLiteral("profileExportBtn"),
      QStringLiteral("MacroSettingBtn"),  QStringLiteral("lightOptionBtn"),
      QStringLiteral("preformanceBtn"),   QStringLiteral("applyBtn"),
      QStringLiteral("profileDelBtn"),    QStringLiteral("importBtn"),
      QStringLiteral("exportBtn"),        QStringLiteral("recordBtn")};
  return names;
}

bool isUsable(const QWidget& widget) {
  return widget.isEnabled() && !widget.visibleRegion().isEmpty() &&
         (qobject_cast<const QAbstractButton*>(&widget) != nullptr ||
          widget.focusPolicy() != Qt::NoFocus);
}

// Who gets the keys.
std::string inFocus() {
  const QWidget* const focus = QApplication::focusWidget();
  return focus == nullptr ? "" : " in " + nameOf(*focus);
}

std::string at(const QPoint& place) {
  return " at " + std::to_string(place.x()) + ',' + std::to_string(place.y());
}

}  // namespace

QWidget* RandomUser::front() {
  for (QWidget* window : {QApplication::activePopupWidget(), QApplication::activeModalWidget()}) {
    if (window != nullptr && window->isVisible() && !m_dice.percent(beside)) {
      return window;
    }
  }
  std::vector<QWidget*> windows;
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (window->isVisible() && !window->isMinimized() && window->windowHandle() != nullptr &&
        window->windowType() != Qt::ToolTip) {
      windows.push_back(window);
    }
  }
  // The order of the list is that of addresses.
  std::sort(windows.begin(), windows.end(),
            [](const QWidget* a, const QWidget* b) { return a->winId() < b->winId(); });
  return windows.empty() ? nullptr : m_dice.of(windows);
}

QWidget* RandomUser::control(QWidget& window) {
  std::vector<QWidget*> usable;
  for (QWidget* widget : window.findChildren<QWidget*>()) {
    if (widget->window() == &window && isUsable(*widget)) {
      usable.push_back(widget);
    }
  }
  // The buttons that open what is behind them would be lost among those of the mouse.
  std::vector<QWidget*> doors;
  for (QWidget* widget : usable) {
    if (doorNames().contains(widget->objectName())) {
      doors.push_back(widget);
    }
  }
  if (!doors.empty() && m_dice.percent(throughDoor)) {
    return m_dice.of(doors);
  }
  return usable.empty() ? &window : m_dice.of(usable);
}

QPoint RandomUser::placeIn(QWidget& widget) {
  return m_dice.percent(inMiddle) ? widget.rect().center()
                                  : QPoint(m_dice.between(0, widget.width() - 1),
                                           m_dice.between(0, widget.height() - 1));
}

void RandomUser::click(QWidget& window, const Tell& tell) {
  QWidget* const widget = m_dice.percent(onControl) ? control(window) : &window;
  const bool isEnd = widget->objectName().contains(u"close", Qt::CaseInsensitive) &&
                     widget->window()->objectName() == u"window";
  if (isEnd && !m_dice.percent(reallyCloses)) {
    tell("leaves the program open");
    return;
  }
  const QPoint place = widget->mapTo(&window, placeIn(*widget));
  const std::size_t kind = m_dice.roll(100);
  const Qt::MouseButton button = kind < 88   ? Qt::LeftButton
                                 : kind < 96 ? Qt::RightButton
                                             : Qt::MiddleButton;
  const Qt::KeyboardModifiers keys = m_dice.percent(4)   ? Qt::ShiftModifier
                                     : m_dice.percent(4) ? Qt::ControlModifier
                                                         : Qt::NoModifier;
  const int times = m_dice.percent(6) ? 2 : 1;
  tell((times == 2 ? "clicks twice on " : "clicks ") + nameOf(*widget) + " of " + nameOf(window) +
       at(place) + (button == Qt::LeftButton ? "" : " with another button"));
  InputQueue input(window, m_time);
  for (int time = 0; time < times; ++time) {
    input.press(place, button, keys);
    input.release(place, button, keys);
  }
}

void RandomUser::drag(QWidget& window, const Tell& tell) {
  QWidget* const widget = control(window);
  const QPoint from = widget->mapTo(&window, placeIn(*widget));
  const QPoint to = placeIn(window);
  tell("drags " + nameOf(*widget) + at(from) + " to" + at(to));
  InputQueue input(window, m_time);
  input.press(from, Qt::LeftButton, {});
  constexpr int moves = 4;
  for (int move = 1; move <= moves; ++move) {
    input.drag(from + (to - from) * move / moves);
  }
  input.release(to, Qt::LeftButton, {});
}

void RandomUser::turnWheel(QWidget& window, const Tell& tell) {
  QWidget* const widget = control(window);
  const int steps = m_dice.between(-5, 5);
  tell("turns the wheel by " + std::to_string(steps) + " over " + nameOf(*widget));
  const QPointF place = widget->rect().center();
  QWheelEvent event(place, widget->mapToGlobal(place), {}, QPoint(0, 120 * steps), Qt::NoButton,
                    Qt::NoModifier, Qt::NoScrollPhase, false);
  QCoreApplication::sendEvent(widget, &event);
}

void RandomUser::hitKey(QWidget& window, const Tell& tell) {
  static constexpr std::array plain{
      Qt::Key_Tab,    Qt::Key_Tab,   Qt::Key_Backtab,  Qt::Key_Return,   Qt::Key_Space,
      Qt::Key_Escape, Qt::Key_Up,    Qt::Key_Down,     Qt::Key_Left,     Qt::Key_Right,
      Qt::Key_Home,   Qt::Key_End,   Qt::Key_F2,       Qt::Key_Delete,   Qt::Key_Menu,
      Qt::Key_PageUp, Qt::Key_Enter, Qt::Key_PageDown, Qt::Key_Backspace};
  static constexpr std::array withControl{Qt::Key_Z, Qt::Key_Y, Qt::Key_S, Qt::Key_C, Qt::Key_V,
                                          Qt::Key_A, Qt::Key_D, Qt::Key_1, Qt::Key_5, Qt::Key_X};
  const bool isControl = m_dice.percent(25);
  const Qt::Key key = isControl ? m_dice.of(withControl) : m_dice.of(plain);
  Qt::KeyboardModifiers keys = isControl ? Qt::ControlModifier : Qt::NoModifier;
  keys |= m_dice.percent(10) ? Qt::ShiftModifier : Qt::NoModifier;
  tell("hits " + QKeySequence(key | keys).toString().toStdString() + inFocus());
  InputQueue(window, m_time).hit(key, keys, key == Qt::Key_Space ? QStringLiteral(" ") : QString());
}

void RandomUser::holdKey(QWidget& window, const Tell& tell) {
  if (!m_held.empty() && m_dice.percent(60)) {
    const int key = m_held.back();
    m_held.pop_back();
    tell("lets " + QKeySequence(key).toString().toStdString() + " go" + inFocus());
    InputQueue(window, m_time).letGo(key);
    return;
  }
  static constexpr std::array keys{Qt::Key_Shift, Qt::Key_Control, Qt::Key_A, Qt::Key_Q,
                                   Qt::Key_Space, Qt::Key_Return,  Qt::Key_F5};
  const Qt::Key key = m_dice.of(keys);
  const int repeats = m_dice.between(0, 5);
  tell("holds " + QKeySequence(key).toString().toStdString() + inFocus());
  m_held.push_back(key);
  InputQueue(window, m_time).hold(key, repeats);
}

void RandomUser::type(QWidget& window, const Tell& tell) {
  static const std::array<QString, 14> texts{
      QStringLiteral("1"),
      QStringLiteral("8200"),
      QStringLiteral("-99999999999"),
      QStringLiteral("Profile"),
      QStringLiteral("Arena shooter"),
      QStringLiteral("a/b:c\\d"),
      QStringLiteral("../../x"),
      QStringLiteral("Übergröße"),
      QStringLiteral("東京タワー"),
      QStringLiteral("\u202Ertl \u0645\u0631\u062D\u0628\u0627"),
      QStringLiteral("😀😀"),
      QStringLiteral("#ff8000"),
      QString(3000, u'x'),
      QStringLiteral("a\tb\u0001")};
  const QString& text = m_dice.of(texts);
  tell("types \"" + text.left(20).toStdString() + '"' + inFocus());
  QWidget* const focus = QApplication::focusWidget();
  if (focus != nullptr && (text.size() > 20 || m_dice.percent(40))) {
    QInputMethodEvent event;
    event.setCommitString(text);
    QCoreApplication::sendEvent(focus, &event);
    return;
  }
  InputQueue input(window, m_time);
  for (const QChar character : text.left(20)) {
    input.hit(character.toUpper().unicode(), {}, QString(character));
  }
}

void RandomUser::act(const Tell& tell) {
  QWidget* const window = front();
  if (window == nullptr) {
    tell("looks for the window");
    m_show();
    return;
  }
  if (auto* panel = qobject_cast<QFileDialog*>(window)) {
    m_panels.act(*panel, tell);
    return;
  }
  const std::size_t kind = m_dice.roll(100);
  if (kind < 66) {
    click(*window, tell);
  } else if (kind < 72) {
    drag(*window, tell);
  } else if (kind < 76) {
    turnWheel(*window, tell);
  } else if (kind < 88) {
    hitKey(*window, tell);
  } else if (kind < 92) {
    holdKey(*window, tell);
  } else if (kind < 99 || window->objectName() == u"window") {
    type(*window, tell);
  } else {
    tell("closes " + nameOf(*window));
    window->close();
  }
}

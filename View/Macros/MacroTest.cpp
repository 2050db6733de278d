#include "View/Macros/MacroTest.h"

#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <vector>

#include "Action/Catalogue/MacroCatalogue.h"
#include "MacroPlayer/KeyNames.h"
#include "View/Macros/MacroWarningWords.h"
#include "View/Screen/ControlFactory.h"
#include "View/Screen/Pictures.h"
#include "View/Windows/HelpDocument.h"

namespace {

using NerinAction::tooltipText;

constexpr int panelWidth = 420;
constexpr int playedHeight = 220;
constexpr int mostWarnings = 5;
constexpr int margin = 16;
constexpr int spacing = 10;
constexpr qreal boxMargin = 6;
constexpr int buttonHeight = 30;
constexpr int timeWidth = 84;
constexpr qreal headType = 14;
constexpr qreal typeSize = 12;

constexpr const char* colors =
    "MacroTest { background: #15171C; border: 1px solid #5A6270; }"
    "QLabel { color: #F2F4F7; }"
    "QListWidget { color: #FF5A52; background: transparent; border: 1px solid #343943;"
    " border-radius: 6px; outline: 0; }"
    "QListWidget::item { padding: 3px 8px; }"
    "QListWidget::item:hover { background: #22252C; }"
    "QListWidget::item:selected { color: #F2F4F7; background: #7D0608; }"
    "QPlainTextEdit { color: #F2F4F7; background: black; border: 1px solid #343943;"
    " border-radius: 6px; selection-background-color: #7D0608; }"
    "QListWidget:focus, QPlainTextEdit:focus { border-color: #F2F4F7; }"
    "QPushButton { color: #F2F4F7; background: #22252C; border: 1px solid #343943;"
    " border-radius: 6px; padding: 0 18px; }"
    "QPushButton:hover { background: #2D313A; border-color: #5A6270; }"
    "QPushButton:focus { border-color: #F2F4F7; }"
    "QScrollBar:vertical { background: transparent; width: 8px; }"
    "QScrollBar::handle:vertical { background: #9AA3B2; border-radius: 4px; min-height: 24px; }"
    "QScrollBar::add-line:vertical, QScrollBar::sub-line:vertical { height: 0; }";

// The report that the mouse gets for a button that plays the macro once.
NerinAction::MacroReport reportOf(const MacroInfo& macro) {
  constexpr std::uint32_t once = 1;
  _BTN_INFO button{};
  button.KeyBit[0] = once;
  return NerinAction::encodeMacroReport(0, NerinAction::streamOf(macro, button));
}

QString nameOf(const PlayedEvent& event) {
  if (event.kind == PlayedEvent::Kind::Key) {
    return QString::fromStdString(nameOfKey(event.code));
  }
  constexpr const char* names[] = {"Left button", "Right button", "Wheel button"};
  return event.code >= 1 && event.code <= std::size(names)
             ? tooltipText(names[event.code - 1])
             : tooltipText("Button %1").arg(event.code);
}

// What is still down after the run, in the order of the presses.
QString stillDown(const std::vector<PlayedEvent>& events) {
  QStringList names;
  for (auto event = events.begin(); event != events.end(); ++event) {
    const auto isSame = [&](const PlayedEvent& later) {
      return later.kind == event->kind && later.code == event->code;
    };
    if (event->isDown && std::none_of(std::next(event), events.end(), isSame)) {
      names << nameOf(*event);
    }
  }
  return names.join(QStringLiteral(", "));
}

}  // namespace

MacroTest::MacroTest(QWidget* parent)
    : QFrame(parent, Qt::Popup | Qt::FramelessWindowHint),
      m_warnings(new QListWidget(this)),
      m_played(new QPlainTextEdit(this)),
      m_button(new QPushButton(this)) {
  setObjectName(QStringLiteral("macroTest"));
  helpdocument::serve(*this, "macro-test");
  const QString heading = tooltipText("What the mouse will send");
  setAccessibleName(heading);
  setWindowTitle(heading);
  setStyleSheet(QString::fromLatin1(colors));
  setFixedWidth(panelWidth);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(margin, margin, margin, margin);
  column->setSpacing(spacing);
  auto* head = new QLabel(heading, this);
  column->addWidget(head);
  addWarnings();
  addPlayer();
  // The style sheet would give the controls the font of the desktop.
  for (auto* control : findChildren<QWidget*>()) {
    control->setFont(pictures::font(typeSize, QFont::Normal));
  }
  m_button->setFont(pictures::font(typeSize, QFont::Medium));
  head->setFont(pictures::font(headType, QFont::DemiBold));
}

void MacroTest::addWarnings() {
  m_warnings->setObjectName(QStringLiteral("warningsList"));
  m_warnings->setAccessibleName(tooltipText("Warnings"));
  m_warnings->setWordWrap(true);
  m_warnings->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  m_warnings->setTabKeyNavigation(false);
  const auto choose = [this](const QListWidgetItem* item) {
    const int row = item->data(Qt::UserRole).toInt();
    hide();
    if (row != MacroWarning::wholeMacro) {
      emit rowChosen(row);
    }
  };
  connect(m_warnings, &QListWidget::itemClicked, this, choose);
  connect(m_warnings, &QListWidget::itemActivated, this, [this, choose](QListWidgetItem* item) {
    // A style may activate an item by the click that has closed the panel.
    if (isVisible()) {
      choose(item);
    }
  });
  layout()->addWidget(m_warnings);
}

void MacroTest::addPlayer() {
  m_played->setObjectName(QStringLiteral("playedTxt"));
  m_played->setAccessibleName(windowTitle());
  m_played->setReadOnly(true);
  m_played->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  m_played->setTabChangesFocus(true);
  m_played->setTabStopDistance(timeWidth);
  m_played->document()->setDocumentMargin(boxMargin);
  m_played->setFixedHeight(playedHeight);
  layout()->addWidget(m_played);

  m_button->setObjectName(QStringLiteral("playBtn"));
  m_button->setFixedHeight(buttonHeight);
  connect(m_button, &QPushButton::clicked, this, &MacroTest::toggle);
  layout()->addWidget(m_button);
  layout()->setAlignment(m_button, Qt::AlignRight);

  m_timer.setSingleShot(true);
  m_timer.setTimerType(Qt::PreciseTimer);
  connect(&m_timer, &QTimer::timeout, this, &MacroTest::playOn);
}

void MacroTest::showWarnings(const MacroInfo::Events& commands) {
  m_warnings->clear();
  for (const MacroWarning& warning : NerinAction::warningsOf(commands)) {
    auto* item = new QListWidgetItem(macrowarnings::wordsOf(warning, commands), m_warnings);
    item->setData(Qt::UserRole, warning.row);
  }
  m_warnings->setVisible(m_warnings->count() > 0);
  m_warnings->setCurrentRow(-1);
  int height = 2 * m_warnings->frameWidth() + 2;
  for (int row = 0; row < std::min(m_warnings->count(), mostWarnings); ++row) {
    height += m_warnings->sizeHintForRow(row);
  }
  m_warnings->setFixedHeight(height);
}

void MacroTest::open(const MacroInfo& macro, const QWidget& below) {
  m_playback = playbackOf(reportOf(macro));
  showWarnings(macro.keyInfoArr());
  adjustSize();
  move(below.mapToGlobal(QPoint(below.width() - width(), below.height() + 2)));
  show();
  m_button->setFocus(Qt::PopupFocusReason);
  play();
}

void MacroTest::toggle() {
  if (m_timer.isActive()) {
    stop();
  } else {
    play();
  }
}

void MacroTest::play() {
  m_played->clear();
  m_next = 0;
  if (m_playback.events.empty()) {
    m_played->setPlainText(tooltipText("The mouse sends nothing."));
    stop();
    return;
  }
  m_button->setText(tooltipText("STOP"));
  m_clock.start();
  playOn();
}

void MacroTest::stop() {
  m_timer.stop();
  m_button->setText(tooltipText("Play"));
}

void MacroTest::playOn() {
  const std::chrono::milliseconds now(m_clock.elapsed());
  const auto& events = m_playback.events;
  for (; m_next < events.size() && events[m_next].time <= now; ++m_next) {
    const PlayedEvent& event = events[m_next];
    say(event.time, tooltipText(event.isDown ? "Press %1" : "Release %1").arg(nameOf(event)));
  }
  const auto next = m_next < events.size() ? events[m_next].time : m_playback.duration;
  if (m_next == events.size() && next <= now) {
    finish();
  } else {
    m_timer.start(next - now);
  }
}

void MacroTest::finish() {
  const QString down = stillDown(m_playback.events);
  say(m_playback.duration,
      down.isEmpty() ? tooltipText("End") : tooltipText("End. Still down: %1").arg(down));
  stop();
}

void MacroTest::say(std::chrono::milliseconds time, const QString& words) {
  m_played->appendPlainText(
      QStringLiteral("%1 %2\t%3").arg(QString::number(time.count()), tooltipText("ms"), words));
}

void MacroTest::keyPressEvent(QKeyEvent* event) {
  const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (event->key() == Qt::Key_Escape) {
    hide();
  } else if (isReturn && m_button->hasFocus()) {
    m_button->click();
  } else {
    QFrame::keyPressEvent(event);
  }
}

void MacroTest::hideEvent(QHideEvent* event) {
  stop();
  QFrame::hideEvent(event);
}

#include "View/Macros/MacroTools.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <algorithm>
#include <limits>

#include "Action/Record/Limits.h"
#include "Kit/Widgets/LXNumberTextField.h"
#include "View/Macros/MacroWorkbench.h"
#include "View/Screen/ControlFactory.h"
#include "View/Screen/Pictures.h"
#include "View/Windows/HelpDocument.h"

namespace {

constexpr int fastest = 1000;
constexpr int slowest = 10;
constexpr int usualSpeed = 100;
constexpr int usualPause = 50;
constexpr int usualShortest = 10;
constexpr int margin = 16;
constexpr int spacing = 10;
constexpr int fieldWidth = 64;
constexpr int rowHeight = 30;
constexpr qreal typeSize = 12;

enum Column : int { Name, Field, Unit, Button };

template <typename Change>
void changePauses(MacroInfo::Events& commands, macrotools::Rows rows, Change change) {
  for (int row = rows.first; row <= rows.last; ++row) {
    MacroKeyInfo& command = *commands[static_cast<std::size_t>(row)];
    command.setDelay(change(std::max(0, command.delay())));
  }
}

}  // namespace

void macrotools::setPauses(MacroInfo::Events& commands, Rows rows, std::int32_t milliseconds) {
  changePauses(commands, rows, [&](std::int32_t) { return milliseconds; });
}

void macrotools::scaleSpeed(MacroInfo::Events& commands, Rows rows, std::int32_t percent) {
  constexpr std::int64_t longest = std::numeric_limits<std::int32_t>::max();
  changePauses(commands, rows, [&](std::int32_t pause) {
    const std::int64_t scaled = (std::int64_t{pause} * usualSpeed + percent / 2) / percent;
    return static_cast<std::int32_t>(std::min(scaled, longest));
  });
}

void macrotools::removePausesUnder(MacroInfo::Events& commands, Rows rows,
                                   std::int32_t milliseconds) {
  changePauses(commands, rows,
               [&](std::int32_t pause) { return pause < milliseconds ? 0 : pause; });
}

bool macrotools::duplicate(MacroInfo::Events& commands, Rows rows) {
  const auto count = static_cast<std::size_t>(rows.last) - static_cast<std::size_t>(rows.first) + 1;
  if (commands.size() + count > limits::macroEvents) {
    return false;
  }
  MacroInfo::Events copies;
  copies.reserve(count);
  for (int row = rows.first; row <= rows.last; ++row) {
    copies.push_back(std::make_shared<MacroKeyInfo>(*commands[static_cast<std::size_t>(row)]));
  }
  commands.insert(commands.begin() + rows.last + 1, copies.begin(), copies.end());
  return true;
}

MacroTools::MacroTools(QWidget* parent) : QFrame(parent, Qt::Popup | Qt::FramelessWindowHint) {
  setObjectName(QStringLiteral("macroTools"));
  setAccessibleName(NerinAction::tooltipText("Tools for lines"));
  helpdocument::serve(*this, "macro-tools");
  setFont(pictures::font(typeSize, QFont::Medium));
  setStyleSheet(
      QStringLiteral("MacroTools { background: #15171C; border: 1px solid #5A6270; }"
                     "QLabel { color: #D5DAE2; }"
                     "QLineEdit { color: white; background: #0B0C0F; border: 1px solid #5A6270;"
                     " border-radius: 6px; }"
                     "QLineEdit:focus { border-color: #F2F4F7; }"
                     "QPushButton { color: #F2F4F7; background: #22252C; border: 1px solid #343943;"
                     " border-radius: 6px; padding: 0 14px; }"
                     "QPushButton:hover { background: #2D313A; border-color: #5A6270; }"
                     "QPushButton:focus { border-color: #F2F4F7; }"
                     "QPushButton:disabled { color: #59606C; }"));
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins(margin, margin, margin, margin);
  grid->setSpacing(spacing);
  addRange(*grid);
  constexpr int longest = MacroWorkbench::longestPause;
  const QString milliseconds = NerinAction::tooltipText("ms");
  addTool(*grid, addField("pausesTxt", "All pauses", 0, longest, usualPause), milliseconds, "Set",
          &macrotools::setPauses);
  addTool(*grid, addField("speedTxt", "Speed", slowest, fastest, usualSpeed), QStringLiteral("%"),
          "Set", &macrotools::scaleSpeed);
  addTool(*grid, addField("shortestTxt", "Pauses under", 0, longest, usualShortest), milliseconds,
          "Remove", &macrotools::removePausesUnder);
  addDuplicate(*grid);
  // The style sheet would give the controls the font of the desktop.
  for (auto* control : findChildren<QWidget*>()) {
    control->setFont(font());
  }
}

LXNumberTextField* MacroTools::addField(const char* name, const char* key, int least, int most,
                                        int value) {
  auto* field = new LXNumberTextField(this);
  field->setObjectName(QString::fromLatin1(name));
  field->setAccessibleName(NerinAction::tooltipText(key));
  field->setFixedSize(fieldWidth, rowHeight);
  field->setAlignment(Qt::AlignCenter);
  field->setMinNum(least);
  field->setMaxNum(most);
  field->setStep(1);
  field->setValue(value);
  return field;
}

void MacroTools::addRange(QGridLayout& grid) {
  m_first = addField("firstRowTxt", "From line", 1, 1, 1);
  m_last = addField("lastRowTxt", "to line", 1, 1, 1);
  for (LXNumberTextField* field : {m_first, m_last}) {
    field->setAction([this](LXTextField&) { showRows(chosenRows()); });
    const int row = grid.rowCount();
    grid.addWidget(new QLabel(field->accessibleName(), this), row, Name);
    grid.addWidget(field, row, Field);
  }
}

// Return in the field does what the button does.
void MacroTools::addTool(QGridLayout& grid, LXNumberTextField* field, const QString& unit,
                         const char* words, Tool tool) {
  auto* button = new QPushButton(NerinAction::tooltipText(words), this);
  button->setObjectName(field->objectName().replace(QStringLiteral("Txt"), QStringLiteral("Btn")));
  button->setAccessibleName(field->accessibleName() + QStringLiteral(": ") + button->text());
  button->setFixedHeight(rowHeight);
  connect(button, &QPushButton::clicked, this, [this, field, tool] {
    field->commit();
    const macrotools::Rows rows = chosenRows();
    tool(*m_commands, rows, field->value());
    emit edited(rows.first);
  });
  connect(field, &QLineEdit::returnPressed, button, &QPushButton::click);
  const int row = grid.rowCount();
  grid.addWidget(new QLabel(field->accessibleName(), this), row, Name);
  grid.addWidget(field, row, Field);
  grid.addWidget(new QLabel(unit, this), row, Unit);
  grid.addWidget(button, row, Button);
}

void MacroTools::addDuplicate(QGridLayout& grid) {
  m_duplicate = new QPushButton(NerinAction::tooltipText("Duplicate these lines"), this);
  m_duplicate->setObjectName(QStringLiteral("duplicateBtn"));
  m_duplicate->setFixedHeight(rowHeight);
  connect(m_duplicate, &QPushButton::clicked, this, [this] {
    const macrotools::Rows rows = chosenRows();
    const int copied = rows.last - rows.first + 1;
    if (macrotools::duplicate(*m_commands, rows)) {
      showRows({rows.first + copied, rows.last + copied});
      emit edited(rows.first + copied);
    }
  });
  grid.addWidget(m_duplicate, grid.rowCount(), Name, 1, Button + 1);
}

void MacroTools::showRows(macrotools::Rows rows) {
  const int count = static_cast<int>(m_commands->size());
  m_first->setMaxNum(count);
  m_last->setMaxNum(count);
  m_first->setValue(rows.first + 1);
  m_last->setValue(rows.last + 1);
  const auto copied =
      static_cast<std::size_t>(rows.last) - static_cast<std::size_t>(rows.first) + 1;
  m_duplicate->setEnabled(m_commands->size() + copied <= limits::macroEvents);
}

// In either order.
macrotools::Rows MacroTools::chosenRows() {
  const auto [first, last] = std::minmax({m_first->value(), m_last->value()});
  return {first - 1, last - 1};
}

void MacroTools::open(MacroInfo::Events& commands, macrotools::Rows rows, const QWidget& below) {
  if (commands.empty()) {
    return;
  }
  m_commands = &commands;
  const bool areSeveral = rows.first >= 0 && rows.first < rows.last;
  showRows(areSeveral ? rows : macrotools::Rows{0, static_cast<int>(commands.size()) - 1});
  adjustSize();
  move(below.mapToGlobal(QPoint(below.width() - width(), below.height() + 2)));
  show();
  m_first->setFocus(Qt::PopupFocusReason);
  m_first->selectAll();
}

void MacroTools::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    hide();
  } else {
    QFrame::keyPressEvent(event);
  }
}

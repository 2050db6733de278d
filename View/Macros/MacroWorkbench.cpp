#include "View/Macros/MacroWorkbench.h"

#include <QLabel>
#include <algorithm>

#include "ArtworkFrames.h"
#include "Kit/Widgets/LXNumberTextField.h"
#include "View/Macros/KeyField.h"
#include "View/Macros/MacroWarningWords.h"
#include "View/Macros/RigthMouseTBView.h"
#include "View/Macros/TimeStrip.h"
#include "View/Screen/ControlFactory.h"
#include "View/Screen/Frames.h"
#include "View/Screen/Pictures.h"
#include "View/Screen/TavImageView.h"

namespace {

using frames = Artwork::MacroView;

// A pause that is longer than the mouse can store is shown as it is.
constexpr int pauseDigits = 10;
constexpr int pauseStep = 10;
constexpr int keyMargin = 10 - LXTextField::ownMargin;
constexpr qreal lengthType = 12;
constexpr qreal warningType = 12;
constexpr QChar ellipsis(0x2026);

void describe(QWidget& widget, const char* name, const char* key) {
  widget.setObjectName(QString::fromLatin1(name));
  widget.setAccessibleName(NerinAction::tooltipText(key));
  widget.setToolTip(NerinAction::tooltipText(key));
}

// The text, or as many of its words as the lines of the label hold.
QString fittingIn(const QLabel& label, const QString& text) {
  QString shown = text;
  const auto fits = [&] {
    return label.fontMetrics().boundingRect(label.rect(), Qt::TextWordWrap, shown).height() <=
           label.height();
  };
  for (qsizetype length = text.size(); length > 0 && !fits(); --length) {
    shown = text.first(length).trimmed() + ellipsis;
  }
  return shown;
}

}  // namespace

MacroWorkbench::MacroWorkbench(TavImageView& view)
    : QObject(&view),
      m_strip(new TimeStrip(&view)),
      m_length(new QLabel(&view)),
      m_warning(new QLabel(&view)),
      m_key(new KeyField(&view)),
      m_pause(NerinAction::AddNumTextField(frameRect(frames::rowDelayTxt), view, longestPause, 0,
                                           pauseDigits, false)) {
  m_strip->setGeometry(frameRect(frames::timeStrip));
  describe(*m_strip, "timeStrip", "Time strip");
  m_strip->setToolTip({});
  connect(m_strip, &TimeStrip::rowChosen, this, &MacroWorkbench::rowChosen);

  m_length->setGeometry(frameRect(frames::lengthTxt));
  m_length->setObjectName(QStringLiteral("lengthTxt"));
  m_length->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  m_length->setFont(pictures::font(lengthType, QFont::DemiBold));

  m_warning->setGeometry(frameRect(frames::warningTxt));
  m_warning->setObjectName(QStringLiteral("warningTxt"));
  m_warning->setTextFormat(Qt::PlainText);
  m_warning->setWordWrap(true);
  m_warning->setFont(pictures::font(warningType, QFont::Medium));
  QPalette colors = m_warning->palette();
  colors.setColor(QPalette::WindowText, QColor::fromRgb(Artwork::Color::emberLit));
  m_warning->setPalette(colors);

  m_key->setGeometry(frameRect(frames::rowKeyTxt));
  m_key->setTextMargins(keyMargin, 0, keyMargin, 0);
  m_key->setFont(pictures::font(lengthType, QFont::Normal));
  describe(*m_key, "rowKeyTxt", "Key of the selected line");
  m_key->setToolTip(
      NerinAction::tooltipText("Click here or press Return, then press the new key or mouse "
                               "button. A click elsewhere keeps the old one."));
  m_key->setAccessibleDescription(m_key->toolTip());
  connect(m_key, &KeyField::chosen, this, &MacroWorkbench::setKey);

  m_pause->setAlignment(Qt::AlignCenter);
  m_pause->setStep(pauseStep);
  describe(*m_pause, "rowDelayTxt", "Pause after the selected line");
  setCommands(nullptr);
}

void MacroWorkbench::setCommands(MacroInfo::Events* commands) {
  m_commands = commands;
  m_undo.start(commands);
  m_strip->setCommands(commands);
  setCurrentRow(-1, false);
  showSummary(false);
  showRow();
}

void MacroWorkbench::commandsChanged(bool isRecording) {
  if (m_commands != nullptr && !isRecording) {
    m_undo.note(*m_commands);
  }
  m_strip->setCommands(m_commands);
  showSummary(isRecording);
  showRow();
}

void MacroWorkbench::setCurrentRow(int row, bool extends) {
  m_row = row;
  if (!extends || m_anchor < 0 || row < 0) {
    m_anchor = row;
  }
  m_strip->setCurrentRow(row);
  const Rows rows = chosenRows();
  m_strip->setChosenRows(rows.first, rows.last);
  emit rowsChosen(rows.first, rows.last);
  showRow();
}

MacroWorkbench::Rows MacroWorkbench::chosenRows() const {
  const auto [first, last] = std::minmax({m_anchor, m_row});
  return {first, last};
}

void MacroWorkbench::setUsable(bool isUsable) {
  m_isUsable = isUsable;
  showRow();
}

MacroKeyInfo* MacroWorkbench::selected() const {
  const bool isRow =
      m_commands != nullptr && m_row >= 0 && m_row < static_cast<int>(m_commands->size());
  return isRow ? (*m_commands)[static_cast<std::size_t>(m_row)].get() : nullptr;
}

// What is being recorded is not complete: its last key is still down.
void MacroWorkbench::showSummary(bool isRecording) {
  const QString warning =
      m_commands == nullptr || isRecording
          ? QString()
          : macrowarnings::summaryOf(NerinAction::warningsOf(*m_commands), *m_commands);
  const QString shown = fittingIn(*m_warning, warning);
  m_warning->setText(shown);
  m_warning->setAccessibleName(warning);
  m_warning->setToolTip(shown == warning ? QString() : warning.toHtmlEscaped());
  m_length->setText(MacroCommandModel::milliseconds(m_strip->timeline().length));
  m_length->setAccessibleName(NerinAction::tooltipText("Length") + QStringLiteral(": ") +
                              m_length->text());
}

void MacroWorkbench::showRow() {
  const MacroKeyInfo* command = selected();
  m_strip->setEnabled(m_isUsable);
  for (LXTextField* field :
       {static_cast<LXTextField*>(m_key), static_cast<LXTextField*>(m_pause)}) {
    field->setEnabled(m_isUsable && command != nullptr);
  }
  m_key->setKey(command != nullptr ? MacroCommandModel::keyWords(*command) : QString());
  if (command != nullptr) {
    m_pause->setValue(command->delay());
  } else {
    m_pause->setText({});
  }
}

bool MacroWorkbench::takePause(LXNumberTextField& field) {
  if (&field != m_pause) {
    return false;
  }
  MacroKeyInfo* command = selected();
  if (command != nullptr && command->delay() != field.value()) {
    command->setDelay(field.value());
    emit edited(m_row);
  }
  return true;
}

// A line stays a press or a release, whatever is pressed.
void MacroWorkbench::setKey(std::int32_t code, bool isMouseButton) {
  MacroKeyInfo* command = selected();
  if (command == nullptr) {
    return;
  }
  const bool isRelease = command->keyFlag() == MacroKeyInfo::KeyRelease ||
                         command->keyFlag() == MacroKeyInfo::MouseRelease;
  command->setKeyCode(code);
  command->setKeyFlag(isMouseButton
                          ? (isRelease ? MacroKeyInfo::MouseRelease : MacroKeyInfo::MousePress)
                          : (isRelease ? MacroKeyInfo::KeyRelease : MacroKeyInfo::KeyPress));
  emit edited(m_row);
}

void MacroWorkbench::moveRow(int row, int gap) {
  const int count = m_commands != nullptr ? static_cast<int>(m_commands->size()) : 0;
  if (row < 0 || row >= count || gap < 0 || gap > count || gap == row || gap == row + 1) {
    return;
  }
  const auto first = m_commands->begin();
  if (gap < row) {
    std::rotate(first + gap, first + row, first + row + 1);
  } else {
    std::rotate(first + row, first + row + 1, first + gap);
  }
  emit edited(gap < row ? gap : gap - 1);
}

bool MacroWorkbench::endKeyChoice() {
  return m_key->endWaiting();
}

void MacroWorkbench::undo() {
  const int row = m_commands != nullptr && m_isUsable ? m_undo.undo(*m_commands) : -1;
  if (row >= 0) {
    emit edited(row);
  }
}

void MacroWorkbench::redo() {
  const int row = m_commands != nullptr && m_isUsable ? m_undo.redo(*m_commands) : -1;
  if (row >= 0) {
    emit edited(row);
  }
}

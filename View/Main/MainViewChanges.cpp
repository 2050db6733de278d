// What Apply would change, and undo and redo of what is edited in the slot.

#include <QKeySequence>
#include <QPushButton>
#include <QShortcut>

#include "Action/Edit/Descriptions.h"
#include "Action/Edit/Differences.h"
#include "Action/Edit/Drafts.h"
#include "Action/Edit/EditHistory.h"
#include "Action/Library/ProfieController.h"
#include "Action/NerinAction.h"
#include "Action/Record/EditState.h"
#include "Action/Record/Limits.h"
#include "Kit/Core/LXPlatform.h"
#include "View/Lights/LightColor.h"
#include "View/Main/ChangesList.h"
#include "View/Main/MainView.h"
#include "View/Screen/ControlFactory.h"
#include "View/Windows/StatusLine.h"

namespace {

using Place = Difference::Place;

constexpr int listGap = 8;

QString words(const char* key) {
  return NerinAction::tooltipText(key);
}

QString placeWords(const Difference& difference) {
  static constexpr const char* zones[zoneCount] = {"Wheel", "Profile light", "Logo", "Left side"};
  switch (difference.place) {
    case Place::Rate:
      return words("Report rate");
    case Place::LiftHeight:
      return words("Lift-off height");
    case Place::Mode:
      return words("LED mode");
    case Place::Zone:
      return words("LED: %1").arg(words(zones[difference.index]));
    case Place::Level:
      return words("DPI level %1").arg(difference.index + 1);
    case Place::Button:
      return MainView::physicalButtonName(static_cast<int>(difference.index));
    case Place::Name:
      return words("Profile name");
    case Place::Program:
      break;
  }
  return words("Link to program");
}

QString dash() {
  return QStringLiteral("–");
}

QString repeatWords(const _BTN_INFO& button) {
  static constexpr const char* modes[] = {"Play Once", "Repeat by Count", "Repeat While Pressed",
                                          "Repeat Until Stopped"};
  const std::uint32_t mode = button.KeyBit[0];
  if (mode < 1 || mode > std::size(modes)) {
    return {};
  }
  const QString text = words(modes[mode - 1]);
  return mode == 2 ? text + QStringLiteral(" ×%1").arg(button.KeyBit[1]) : text;
}

QString buttonWords(const _BTN_INFO& button, std::size_t index) {
  QString text =
      QString::fromStdString(NerinAction::getBtnCaption(button, static_cast<int>(index)));
  if (button.btnType == ButtonTypeMacro) {
    text = (text.isEmpty() ? dash() : text) + QStringLiteral(", ") + repeatWords(button);
  } else if (button.FuncTableId == NerinAction::FunctionSetDpi) {
    text += QStringLiteral(" %1 × %2")
                .arg(limits::dpiStep * button.KeyBit[0])
                .arg(limits::dpiStep * button.KeyBit[1]);
  }
  return text.isEmpty() ? dash() : text;
}

QString levelWords(const _Nerin_PROFILE& profile, std::size_t level) {
  if (level >= descriptions::levelsInUse(profile)) {
    return words("not in use");
  }
  const QString text = QStringLiteral("%1 × %2")
                           .arg(limits::dpiStep * profile.xSensArr[level])
                           .arg(limits::dpiStep * profile.ySensArr[level]);
  return level == profile.currSelectDPI ? words("%1 (active)").arg(text) : text;
}

QString programWords(const _Nerin_CONFIG& content) {
  const std::string_view path = textOf(content.activeAppPath);
  const QString name = QString::fromStdString(LXPlatform::current().programName(std::string(path)));
  if (name.isEmpty()) {
    return dash();
  }
  return content.isActiveApp != 0 ? name : words("%1 (off)").arg(name);
}

QString rateWords(std::uint32_t poRate) {
  const auto hertz = descriptions::rateInHz(poRate);
  return hertz ? QStringLiteral("%1 Hz").arg(*hertz) : QString::number(poRate);
}

QString valueWords(const _Nerin_CONFIG& content, const Difference& difference) {
  const _Nerin_PROFILE& profile = content.profile;
  const std::size_t index = difference.index;
  const std::string_view name = textOf(content.profileName);
  switch (difference.place) {
    case Place::Rate:
      return rateWords(profile.poRate);
    case Place::LiftHeight:
      return QString::number(profile.liftHeight);
    case Place::Mode:
      return words(profile.modeType == 1 ? "Battle" : "Normal");
    case Place::Zone:
      return QString::fromStdString(descriptions::colorText(profile.lightColorArr[index]));
    case Place::Level:
      return levelWords(profile, index);
    case Place::Button:
      return buttonWords(profile.btnInfo[index], index);
    case Place::Name:
      return name.empty() ? dash()
                          : QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
    case Place::Program:
      break;
  }
  return programWords(content);
}

std::optional<QColor> lightOf(const _Nerin_CONFIG& content, const Difference& difference) {
  if (difference.place != Place::Zone) {
    return std::nullopt;
  }
  const _LightColorInfo& color = content.profile.lightColorArr[difference.index];
  return LightColor::ofBytes(color.cR, color.cG, color.cB).shown();
}

_Nerin_CONFIG editedContent() {
  return NerinAction::currentDraft(ProfieController::getShareProCon().currFWProfileIndex()).content;
}

_Nerin_CONFIG heldContent() {
  if (const auto held = NerinAction::heldContent()) {
    return *held;
  }
  _Nerin_CONFIG content = editedContent();
  content.profile = editState->base().value_or(content.profile);
  return content;
}

ChangesList::Row rowOf(const _Nerin_CONFIG& before, const _Nerin_CONFIG& after,
                       const Difference& difference) {
  ChangesList::Row row{placeWords(difference),        valueWords(before, difference),
                       valueWords(after, difference), lightOf(before, difference),
                       lightOf(after, difference),    {}};
  if (row.before == row.after) {
    row.after = words("%1 (changed)").arg(row.after);
  }
  row.words =
      row.place + QStringLiteral(": ") + words("%1 instead of %2").arg(row.after, row.before);
  return row;
}

// The places that a step changed, in a few words.
QString stepWords(const _Nerin_CONFIG& before, const _Nerin_CONFIG& after) {
  constexpr std::size_t named = 3;
  const auto differences = differencesBetween(before, after);
  QStringList places;
  for (std::size_t i = 0; i < std::min(named, differences.size()); ++i) {
    places.append(placeWords(differences[i]));
  }
  if (differences.size() > named) {
    places.append(QStringLiteral("…"));
  }
  return places.isEmpty() ? words("DPI levels") : places.join(QStringLiteral(", "));
}

}  // namespace

void MainView::initChanges() {
  m_changesList = new ChangesList(this);
  // A pop-up is in the tree of a screen reader only as the child of a button.
  m_applyBtn->setOpenedList(m_changesList);
  connect(m_changesList, &ChangesList::takenBack, this, &MainView::takeBackChange);
  m_applyBtn->setRightAction([this](LXButton&) { showChanges(); });
  for (const auto& keys : {QKeySequence(Qt::Key_Menu), QKeySequence(Qt::SHIFT | Qt::Key_F10)}) {
    auto* shortcut = new QShortcut(keys, m_applyBtn);
    shortcut->setContext(Qt::WidgetShortcut);
    connect(shortcut, &QShortcut::activated, this, &MainView::showChanges);
  }
  connect(m_changesBtn, &QAbstractButton::clicked, this, &MainView::showChanges);
  // A text field has an undo of its own, which comes first.
  connect(new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z), this), &QShortcut::activated, this,
          &MainView::undoEdit);
  connect(new QShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z), this),
          &QShortcut::activated, this, &MainView::redoEdit);
}

void MainView::showChanges() {
  if (m_isModalSeron >= 1) {
    return;
  }
  fillChanges();
  m_changesList->openAbove(m_applyBtn->mapToGlobal(QPoint(m_applyBtn->width(), -listGap)));
}

void MainView::fillChanges() {
  const _Nerin_CONFIG before = heldContent();
  const _Nerin_CONFIG after = editedContent();
  const auto differences = NerinAction::pendingDifferences();
  std::vector<ChangesList::Row> rows;
  rows.reserve(differences.size());
  for (const Difference& difference : differences) {
    rows.push_back(rowOf(before, after, difference));
  }
  m_changesList->fill(
      rows, words(!editState->base() ? "This slot is empty or was not read. Apply writes all of it."
                  : NerinAction::isMouseAsHeld()
                      ? "Nothing is changed."
                      : "Nothing is changed, but the mouse may have other settings. Apply writes "
                        "these again."));
}

void MainView::takeBackChange(int row) {
  const auto differences = NerinAction::pendingDifferences();
  if (row < 0 || row >= static_cast<int>(differences.size())) {
    return;
  }
  statusline::clear();
  NerinAction::takeBack(differences[static_cast<std::size_t>(row)]);
  showEdit();
  if (!NerinAction::pendingDifferences().empty()) {
    fillChanges();
    return;
  }
  m_changesList->hide();
}

void MainView::undoEdit() {
  step(&NerinAction::undoEdit, "Undone: %1", {words("Redo"), [this] { redoEdit(); }});
}

void MainView::redoEdit() {
  step(&NerinAction::redoEdit, "Done again: %1", {words("Undo"), [this] { undoEdit(); }});
}

void MainView::step(bool (*go)(), const char* text, const StatusLine::Offer& back) {
  if (m_isModalSeron >= 1) {
    return;
  }
  const _Nerin_CONFIG before = editedContent();
  if (!go()) {
    return;
  }
  statusline::say(words(text).arg(stepWords(before, editedContent())), StatusLine::Tone::Note,
                  back);
  showEdit();
}

// Shows an edit that no control has made. Another LED mode goes to the mouse at once, as ever.
void MainView::showEdit() {
  m_isShowingEdit = true;
  fillSettingData();
  m_isShowingEdit = false;
  showSlotTitle();
  refreshApplyBtn();
  keepDrafts();
}

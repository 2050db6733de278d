// Copying colors from light to light and from slot to slot, and undo and redo of the colors.

#include <QKeyEvent>
#include <QMenu>
#include <QShortcut>
#include <algorithm>

#include "Action/Record/EditState.h"
#include "View/Lights/ColorClipboard.h"
#include "View/Lights/LightView.h"
#include "View/Screen/ControlFactory.h"
#include "View/Windows/StatusLine.h"

namespace {

constexpr QKeyCombination copyKeys = Qt::CTRL | Qt::Key_C;
constexpr QKeyCombination copyAllKeys = Qt::CTRL | Qt::SHIFT | Qt::Key_C;
constexpr QKeyCombination pasteKeys = Qt::CTRL | Qt::Key_V;
constexpr QKeyCombination undoKeys = Qt::CTRL | Qt::Key_Z;
constexpr QKeyCombination redoKeys = Qt::CTRL | Qt::SHIFT | Qt::Key_Z;

QString words(const char* key) {
  return NerinAction::tooltipText(key);
}

QString nameOf(const QKeyCombination& keys) {
  return QKeySequence(keys).toString(QKeySequence::NativeText);
}

}  // namespace

void LightView::initCopies() {
  m_lightMenu = new QMenu(this);
  m_lightMenu->setObjectName(QStringLiteral("lightMenu"));
  for (std::size_t i = 0; i < zoneCount; ++i) {
    addCopyActions(*m_zoneBtns[i], static_cast<int>(i) + 1);
    addCopyActions(*m_markerBtns[i], static_cast<int>(i) + 1);
  }
}

// A screen reader finds the actions at the button itself.
void LightView::addCopyActions(LXButton& button, int zone) {
  const auto add = [&](const char* key, const QString& keys, const char* name, auto act) {
    auto* action = new QAction(words(key) + keys, &button);
    action->setObjectName(QString::fromLatin1(name));
    connect(action, &QAction::triggered, this, act);
    button.addAction(action);
  };
  const auto shown = [](const QKeyCombination& keys) { return u'\t' + nameOf(keys); };
  add("Copy color", shown(copyKeys), "copyColor", [this, zone] { copyColor(zone); });
  add("Paste color", shown(pasteKeys), "pasteColor", [this, zone] { pasteColor(zone); });
  add("Use for all lights", {}, "useForAllLights", [this, zone] { useForAllLights(zone); });
  add("Copy all lights", shown(copyAllKeys), "copyAllLights", [this] { copyAllLights(); });

  button.setRightAction([this](LXButton& sender) { showLightMenu(sender, QCursor::pos()); });
  for (const auto& keys : {QKeySequence(Qt::Key_Menu), QKeySequence(Qt::SHIFT | Qt::Key_F10)}) {
    auto* shortcut = new QShortcut(keys, &button);
    shortcut->setContext(Qt::WidgetShortcut);
    connect(shortcut, &QShortcut::activated, this, [this, owner = &button] {
      showLightMenu(*owner, owner->mapToGlobal(owner->rect().center()));
    });
  }
}

void LightView::showLightMenu(LXButton& button, const QPoint& place) {
  m_lightMenu->clear();
  m_lightMenu->addActions(button.actions());
  m_lightMenu->popup(place);
}

int LightView::zoneOf(const QWidget* widget) const {
  for (std::size_t i = 0; i < zoneCount; ++i) {
    if (widget != nullptr && (widget == m_zoneBtns[i] || widget == m_markerBtns[i])) {
      return static_cast<int>(i) + 1;
    }
  }
  return 0;
}

void LightView::selectZone(int zone) {
  if (m_currSelectedIndex != zone) {
    m_lightSetp->selectindex(zone);
  }
}

LightView::Colors LightView::currentColors() {
  Colors colors;
  for (std::size_t i = 0; i < zoneCount; ++i) {
    colors[i] = getColorPro(editState->currSetProfile().lightColorArr[i]);
  }
  return colors;
}

void LightView::copyColor(int zone) {
  if (zone < 1) {
    statusline::say(words("LightHint"));
    return;
  }
  m_colorPanel->commit();
  const LightColor color = currentColors()[static_cast<std::size_t>(zone - 1)];
  colorclipboard::copy({color});
  statusline::say(words("Copied: %1. %2 gives it to another light.")
                      .arg(colorclipboard::codeOf(color), nameOf(pasteKeys)));
}

void LightView::copyAllLights() {
  m_colorPanel->commit();
  const Colors colors = currentColors();
  colorclipboard::copy({colors.begin(), colors.end()});
  statusline::say(
      words("Copied: all lights. %1 gives them to another slot.").arg(nameOf(pasteKeys)));
}

void LightView::pasteColor(int zone) {
  const std::vector<LightColor> pasted = colorclipboard::colors();
  if (!m_isOverFill) {
    return;
  }
  if (pasted.size() == zoneCount) {
    m_colorPanel->commit();
    Colors colors;
    std::copy(pasted.begin(), pasted.end(), colors.begin());
    noteStep();
    takeColors(colors);
    statusline::clear();
  } else if (pasted.size() != 1) {
    statusline::say(
        words("There is no color to paste. Copy one with %1 first.").arg(nameOf(copyKeys)));
  } else if (zone < 1) {
    statusline::say(words("LightHint"));
  } else {
    m_colorPanel->commit();
    selectZone(zone);
    m_colorPanel->setSelColor(pasted.front());
    statusline::clear();
  }
}

void LightView::useForAllLights(int zone) {
  if (!m_isOverFill) {
    return;
  }
  m_colorPanel->commit();
  Colors colors;
  colors.fill(currentColors()[static_cast<std::size_t>(zone - 1)]);
  noteStep();
  takeColors(colors);
  statusline::say(words("All lights have this color. %1 takes it back.").arg(nameOf(undoKeys)));
}

void LightView::noteStep() {
  m_steps.note(currentColors());
}

void LightView::takeColors(const Colors& colors) {
  const Colors before = currentColors();
  for (int zone = 1; zone <= static_cast<int>(zoneCount); ++zone) {
    const auto index = static_cast<std::size_t>(zone - 1);
    if (colors[index] == before[index]) {
      continue;
    }
    setColorPro(zone - 1, colors[index]);
    noteHistory(zone, historyAfter(zone), colors[index]);
    if (zone == m_currSelectedIndex) {
      setSwatches(m_after, colors[index]);
      showPicked(colors[index]);
    }
  }
  displayBtnColor();
}

void LightView::undoColors() {
  finishStep();
  if (m_isOverFill && m_steps.canUndo()) {
    showStep(m_steps.undo(currentColors()), "Undone: %1");
  }
}

void LightView::redoColors() {
  finishStep();
  if (m_isOverFill && m_steps.canRedo()) {
    showStep(m_steps.redo(currentColors()), "Done again: %1");
  }
}

// A typed color is a step of its own.
void LightView::finishStep() {
  m_pressedAt.reset();
  m_colorPanel->commit();
}

void LightView::showStep(const Colors& after, const char* text) {
  const Colors before = currentColors();
  takeColors(after);
  QStringList names;
  for (std::size_t i = 0; i < zoneCount; ++i) {
    if (before[i] != after[i]) {
      names.append(m_zoneBtns[i]->accessibleName());
    }
  }
  statusline::say(words(text).arg(names.join(QStringLiteral(", "))));
}

// The fields have a clipboard and an undo of their own, which come first.
void LightView::keyPressEvent(QKeyEvent* event) {
  const int focused = zoneOf(focusWidget());
  const int zone = focused > 0 ? focused : m_currSelectedIndex;
  const QKeyCombination keys = event->keyCombination();
  if (keys == copyKeys) {
    copyColor(zone);
  } else if (keys == copyAllKeys) {
    copyAllLights();
  } else if (keys == pasteKeys) {
    pasteColor(zone);
  } else if (keys == undoKeys) {
    undoColors();
  } else if (keys == redoKeys) {
    redoColors();
  } else {
    ChildView::keyPressEvent(event);
  }
}

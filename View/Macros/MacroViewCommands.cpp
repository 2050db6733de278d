// The commands of the edited macro: selecting, moving and deleting them, and their delays.

#include <QKeyEvent>
#include <QPointer>
#include <algorithm>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Kit/Core/LXAction.h"
#include "Kit/Widgets/LXNumberTextField.h"
#include "View/Macros/MacroView.h"
#include "View/Macros/MacroWorkbench.h"
#include "View/Screen/ControlFactory.h"
#include "View/Windows/Termination.h"

// Not a copy: an edit changes the macro.
MacroInfo::Events* MacroView::keyArrs() const {
  return m_currMacroInfo ? &m_currMacroInfo->keyInfoArr() : nullptr;
}

int MacroView::selectedRow() const {
  return m_table->currentIndex().isValid() ? m_table->currentIndex().row() : -1;
}

std::int32_t MacroView::indexOf(const MacroKeyInfo* command) const {
  const MacroInfo::Events* events = keyArrs();
  if (events == nullptr || command == nullptr) {
    return -1;
  }
  const auto found = std::find_if(events->begin(), events->end(),
                                  [&](const auto& one) { return one.get() == command; });
  return found == events->end() ? -1 : static_cast<std::int32_t>(found - events->begin());
}

void MacroView::reloadTable() {
  m_commands->reloadData();
  showUsage();
  m_workbench->commandsChanged(m_isRecord);
}

void MacroView::commandsEdited(int row) {
  m_selKeyInfo = nullptr;
  reloadTable();
  selectComByIndex(row);
  setConEnableWithKey();
}

void MacroView::goToCommand(int row) {
  selectComByIndex(row);
  m_table->setFocus(Qt::OtherFocusReason);
}

void MacroView::chooseCommand(int row, bool extends) {
  m_isExtending = extends;
  selectComByIndex(row);
  m_isExtending = false;
  // Also when it was selected before.
  m_workbench->setCurrentRow(selectedRow(), extends);
}

bool MacroView::onKey(RigthMouseTBView& /*table*/, QKeyEvent& event) {
  LXButton* button = nullptr;
  const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
  if (event.key() == Qt::Key_Delete && modifiers == Qt::NoModifier) {
    button = m_delKeyBtn;
  } else if (event.key() == Qt::Key_Up && modifiers == Qt::AltModifier) {
    button = m_keyUpBtn;
  } else if (event.key() == Qt::Key_Down && modifiers == Qt::AltModifier) {
    button = m_keyDownBtn;
  }
  if (button != nullptr) {
    button->click();
  }
  return button != nullptr;
}

void MacroView::onRowDragged(RigthMouseTBView& /*table*/, int row, int gap) {
  m_workbench->moveRow(row, gap);
}

void MacroView::selectionChanged() {
  m_workbench->setCurrentRow(selectedRow(), m_isExtending || m_table->isExtending());
  const MacroInfo::Events* events = keyArrs();
  const int row = selectedRow();
  if (events == nullptr || row < 0 || row >= static_cast<int>(events->size())) {
    return;
  }
  m_selKeyInfo = (*events)[static_cast<std::size_t>(row)];
  if (!m_isRecord) {
    setConEnableWithKey();
  }
}

void MacroView::selectComByIndex(int index) {
  if (index < 0 || index >= m_commands->rowCount()) {
    return;
  }
  m_table->selectRow(index);
  m_table->scrollTo(m_commands->index(index, 0));
}

void MacroView::selectLastCom() {
  selectComByIndex(m_commands->rowCount() - 1);
}

void MacroView::selectNewCom(const std::shared_ptr<MacroKeyInfo>& command) {
  selectComByIndex(indexOf(command.get()));
}

void MacroView::moveCom(bool isDown) {
  const std::int32_t from = indexOf(m_selKeyInfo.get());
  if (from >= 0) {
    MacroInfo::Events& events = *keyArrs();
    const std::int32_t target = isDown ? from + 1 : from - 1;
    if (target >= 0 && target < static_cast<std::int32_t>(events.size())) {
      std::swap(events[static_cast<std::size_t>(from)], events[static_cast<std::size_t>(target)]);
      reloadTable();
      selectComByIndex(target);
    }
  }
  setConEnableWithKey();
}

void MacroView::delCommand() {
  MacroInfo::Events* events = keyArrs();
  const int row = selectedRow();
  if (events != nullptr && row >= 0 && row < static_cast<int>(events->size())) {
    events->erase(events->begin() + row);
    m_selKeyInfo = nullptr;
    reloadTable();
    selectComByIndex(std::min(row, static_cast<int>(events->size()) - 1));
  }
  setConEnableWithKey();
}

void MacroView::delAllCommand() {
  MacroInfo::Events* events = keyArrs();
  const QPointer<MacroView> self = this;
  if (events == nullptr ||
      !LXAction::ChooseInfoMessage(
          NerinAction::tooltipText("Are you sure you want to Clear Commands?").toStdString()) ||
      !self || termination::isTerminating()) {
    return;
  }
  events->clear();
  m_selKeyInfo = nullptr;
  reloadTable();
  setConEnableWithKey();
}

void MacroView::insertAdjustTim() {
  if (m_selKeyInfo) {
    m_selKeyInfo->setDelay(m_defDelayTxt->value());
    reloadTable();
    selectNewCom(m_selKeyInfo);
  }
}

// A command stores the pause after it, so the pause before the selected command belongs to the
// command above.
void MacroView::insertDelayPro() {
  const std::int32_t selected = indexOf(m_selKeyInfo.get());
  if (selected < 0) {
    return;
  }
  const std::int32_t target =
      m_currInsertType == InsertDelayBefore ? std::max(0, selected - 1) : selected;
  (*keyArrs())[static_cast<std::size_t>(target)]->setDelay(m_insertDefDelayTxt->value());
  reloadTable();
  selectComByIndex(selected);
}

void MacroView::insertComPro(const MenuInfo& entry) {
  MacroInfo::Events* events = keyArrs();
  if (events == nullptr) {
    return;
  }
  const auto command =
      std::make_shared<MacroKeyInfo>(entry.functionID(), MacroKeyInfo::Function, 0);
  const int row = std::clamp(selectedRow(), 0, static_cast<int>(events->size()));
  events->insert(events->begin() + row, command);
  m_lastKeyInfo = command;
  reloadTable();
  selectNewCom(command);
}

void MacroView::insertCom() {
  if (const auto entry = NerinAction::getMenuInfoByFunId(
          m_currInsertType, NerinAction::functionMenus->macroInsertMenuNode)) {
    insertComPro(*entry);
  }
}

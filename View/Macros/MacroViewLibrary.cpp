// The editor's library: selecting, creating, copying, deleting, renaming, importing and exporting
// macros.

#include <QPointer>
#include <algorithm>
#include <filesystem>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Catalogue/MacroCatalogue.h"
#include "Kit/Core/LXAction.h"
#include "Kit/Core/LXPlatform.h"
#include "Kit/Desktop/FilePanel.h"
#include "Kit/Widgets/LXTextField.h"
#include "View/Macros/MacroMenulist.h"
#include "View/Macros/MacroView.h"
#include "View/Macros/MacroWorkbench.h"
#include "View/Screen/ControlFactory.h"
#include "View/Screen/FullStops.h"
#include "View/Windows/NestedLoop.h"
#include "View/Windows/Termination.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* tooManyMacros = "Maximum number of macros reached";

std::string sentence(const char* key) {
  return fullstops::sentence(NerinAction::tooltipText(key)).toStdString();
}

}  // namespace

void MacroView::setSelMacroByNode(const std::shared_ptr<LXTreeNode>& node) {
  m_selMacroNode = node;
  setSelMacro(node ? std::dynamic_pointer_cast<MenuInfo>(node->nodeData()) : nullptr);
}

void MacroView::setSelMacro(const std::shared_ptr<MenuInfo>& entry) {
  m_currMacroData = entry;
  m_currMacroInfo = entry ? entry->macroInfo() : nullptr;
  *lastOpenMacro = m_currMacroInfo;
  const QString name = m_currMacroInfo ? macromenulist::titleOf(*m_currMacroInfo) : QString();
  m_macroNameBtn->setTitle(name);
  m_macroNameTxt->setText(name);
  m_selKeyInfo = nullptr;
  m_commands->setCommands(keyArrs());
  m_workbench->setCommands(keyArrs());
  // Select the first command, if there is one.
  selectComByIndex(0);
  showUsage();
  setConEnableWithMacro();
}

std::shared_ptr<LXTreeNode> MacroView::getNodeByData(const MacroInfo* macro) {
  if (!NerinAction::macroStore->macroNode || macro == nullptr) {
    return nullptr;
  }
  const auto& nodes = NerinAction::macroStore->macroNode->children();
  const auto found = std::find_if(nodes.begin(), nodes.end(), [&](const auto& node) {
    const auto entry = std::dynamic_pointer_cast<MenuInfo>(node->nodeData());
    return entry && entry->macroInfo().get() == macro;
  });
  return found == nodes.end() ? nullptr : *found;
}

// Opening a macro writes its title into the field, which is no new name.
void MacroView::onMacroNameTextChange() {
  if (m_currMacroInfo && m_macroNameTxt->text() != macromenulist::titleOf(*m_currMacroInfo)) {
    renamePro();
  }
}

// Runs for every typed character. It rebuilds the menu, so the node must be found again. The field
// keeps its cursor.
void MacroView::renamePro() {
  if (!m_currMacroInfo) {
    return;
  }
  m_currMacroInfo->setNameStr(m_macroNameTxt->text().toStdString());
  m_macroNameBtn->setTitle(macromenulist::titleOf(*m_currMacroInfo));
  NerinAction::refreshMenuList();
  findNodeAgain();
}

// Opening the list rebuilds all its nodes.
void MacroView::findNodeAgain() {
  m_selMacroNode = getNodeByData(m_currMacroInfo.get());
  m_currMacroData =
      m_selMacroNode ? std::dynamic_pointer_cast<MenuInfo>(m_selMacroNode->nodeData()) : nullptr;
}

void MacroView::addMacroPro(const std::shared_ptr<MacroInfo>& macro) {
  NerinAction::macroStore->macroListArrs.push_back(macro);
  NerinAction::refreshMenuList();
  setSelMacroByNode(getNodeByData(macro.get()));
}

bool MacroView::hasRoomForMacro() const {
  if (!NerinAction::macroStore->macroNode ||
      NerinAction::macroStore->macroNode->children().size() < limits::macros) {
    return true;
  }
  LXAction::showInfoMessage(NerinAction::tooltipText(tooManyMacros).toStdString());
  return false;
}

void MacroView::addMacorByName(const std::string& name) {
  if (!hasRoomForMacro()) {
    return;
  }
  const auto macro = std::make_shared<MacroInfo>();
  macro->setNameStr(name);
  macro->setMacroId(NerinAction::getNewMacorId());
  addMacroPro(macro);
}

void MacroView::openLastMacro() {
  if (const auto macro = lastOpenMacro->lock(); macro && !m_currMacroInfo) {
    if (const auto node = getNodeByData(macro.get())) {
      setSelMacroByNode(node);
    }
  }
}

// While a macro is open, the field holds its name.
void MacroView::newMacro() {
  const std::string typed =
      m_currMacroInfo ? std::string() : m_macroNameTxt->text().trimmed().toStdString();
  if (!typed.empty() && !NerinAction::checkMacroName(typed)) {
    LXAction::showInfoMessage(sentence("A macro of this name already exists."));
  } else {
    addMacorByName(typed.empty() ? NerinAction::getNewMacroName() : typed);
  }
  m_macroNameTxt->setFocus(Qt::OtherFocusReason);
  m_macroNameTxt->selectAll();
}

void MacroView::copyMacro() {
  if (!m_selMacroNode || !m_currMacroInfo || !hasRoomForMacro()) {
    return;
  }
  const auto copy = LXAction::CopyObject(*m_currMacroInfo);
  if (!copy) {
    return;
  }
  copy->setNameStr(NerinAction::getNewMacroName());
  copy->setMacroId(NerinAction::getNewMacorId());
  addMacroPro(copy);
}

void MacroView::delMacro() {
  if (!m_selMacroNode || !m_currMacroInfo) {
    return;
  }
  const QPointer<MacroView> self = this;
  if (!LXAction::ChooseInfoMessage(
          NerinAction::tooltipText("Are you sure you want to delete this macro?").toStdString()) ||
      !self || termination::isTerminating()) {
    return;
  }
  findNodeAgain();
  const auto& nodes = NerinAction::macroStore->macroNode->children();
  auto next = std::find(nodes.begin(), nodes.end(), m_selMacroNode);
  std::shared_ptr<MacroInfo> following;
  if (next != nodes.end() && ++next != nodes.end()) {
    if (const auto entry = std::dynamic_pointer_cast<MenuInfo>((*next)->nodeData())) {
      following = entry->macroInfo();
    }
  }
  auto& macros = NerinAction::macroStore->macroListArrs;
  macros.erase(std::remove(macros.begin(), macros.end(), m_currMacroInfo), macros.end());
  NerinAction::refreshMenuList();
  setSelMacroByNode(getNodeByData(following.get()));
}

void MacroView::extentMacro() {
  if (!m_selMacroNode || !m_currMacroInfo) {
    return;
  }
  const NestedLoop scope;
  const std::shared_ptr<MacroInfo> macro = m_currMacroInfo;
  const auto chosen =
      filepanel::saveFile(this, {.isSave = true,
                                 .folder = LXPlatform::current().documentsFolder(),
                                 .name = macromenulist::titleOf(*macro).toStdString()});
  if (!chosen || termination::isTerminating()) {
    return;
  }
  const fs::path file = chosen->string() + ".mac";
  std::error_code error;
  if (fs::exists(file, error) &&
      !LXAction::ChooseInfoMessage(
          NerinAction::tooltipText("A file of this name is there already. Replace it?")
              .toStdString())) {
    return;
  }
  if (!LXAction::SaveObject(*macro, file)) {
    LXAction::showInfoMessage(sentence("The file could not be written."));
  }
}

void MacroView::importMacro() {
  const NestedLoop scope;
  const QPointer<MacroView> self = this;
  const auto chosen = filepanel::openFile(
      this, {.folder = LXPlatform::current().documentsFolder(), .patterns = {"*.mac"}});
  if (!chosen || !self || termination::isTerminating()) {
    return;
  }
  const auto macro = LXAction::CopyObject<MacroInfo>(*chosen);
  if (!macro) {
    return;
  }
  const std::string name = chosen->stem().string();
  macro->setNameStr(name);
  if (!NerinAction::checkMacroName(name)) {
    LXAction::showInfoMessage(sentence("A macro of this name already exists."));
    return;
  }
  addMacroPro(macro);
}

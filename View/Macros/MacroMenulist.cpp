#include "View/Macros/MacroMenulist.h"

#include <memory>

#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Catalogue/MenuInfo.h"
#include "Action/Wire/MacroImage.h"
#include "Kit/Core/ProcessWide.h"
#include "View/Screen/ControlFactory.h"

namespace {

constexpr int menuWidth = 195;

ProcessWide<std::unique_ptr<LXMenulist>> sharedMenu;

std::unique_ptr<LXMenulist>& shared() {
  return *sharedMenu;
}

// Shows the macros' titles. The menu itself keeps the names, which are unique.
void showTitles() {
  const auto& nodes = shared()->menuNode()->children();
  for (int row = 0; row < shared()->count(); ++row) {
    const auto& data = nodes[static_cast<std::size_t>(row)]->nodeData();
    if (const auto entry = std::dynamic_pointer_cast<MenuInfo>(data); entry && entry->macroInfo()) {
      shared()->item(row)->setText(macromenulist::titleOf(*entry->macroInfo()));
    }
  }
}

// Not found by its title, which several macros can have.
int rowOf(const MacroInfo* macro) {
  const auto& nodes = shared()->menuNode()->children();
  for (std::size_t row = 0; row < nodes.size(); ++row) {
    const auto entry = std::dynamic_pointer_cast<MenuInfo>(nodes[row]->nodeData());
    if (macro != nullptr && entry && entry->macroInfo()->macroId() == macro->macroId()) {
      return static_cast<int>(row);
    }
  }
  return LXMenulist::noRow;
}

}  // namespace

void macromenulist::open(LXButton& button, LXMenulistDelegate* delegate, const MacroInfo* current,
                         const char* emptyKey) {
  NerinAction::macroStore->macroMenuRebuilt = [](const std::shared_ptr<LXTreeNode>& node) {
    if (shared()) {
      shared()->setMenuNode(node);
      showTitles();
    }
  };
  NerinAction::refreshMenuList();
  NerinAction::refreshMenuListData(shared(), delegate, NerinAction::macroStore->macroNode,
                                   menuWidth);
  if (!shared()) {
    return;
  }
  shared()->setDelegate(delegate);
  shared()->setEmptyText(NerinAction::tooltipText(emptyKey));
  showTitles();
  NerinAction::showMenulistWithBtn(button, shared().get(), rowOf(current));
}

// Released with its user, since it must not outlive the QApplication.
void macromenulist::release(LXMenulistDelegate* delegate) {
  if (shared() && shared()->menuDelegate() == delegate) {
    NerinAction::macroStore->macroMenuRebuilt = {};
    shared().reset();
  }
}

LXMenulist* macromenulist::list() {
  return shared().get();
}

QString macromenulist::titleOf(const MacroInfo& macro) {
  const std::string name = macro.nameStr().value_or("");
  return name.starts_with(NerinAction::generatedMacroName) ? NerinAction::tooltipText("MACRO KEY")
                                                           : QString::fromStdString(name);
}

#pragma once

#include <memory>

#include "Kit/Widgets/LXMenulist.h"
#include "View/Assign/KeyAssignSubView.h"

class LXTextField;
class MacroInfo;

// Assigns a macro and its repeat mode.
class SubTKeyView : public KeyAssignSubView, public LXMenulistDelegate {
  Q_OBJECT

 public:
  enum Tag : int { TagMacro = 280, TagRepeat = 281 };

  explicit SubTKeyView(QWidget* parent);
  ~SubTKeyView() override;

  void fillSettingData() override;
  void saveData() override;
  void closePopMenu() override;
  void buttonAction(LXButton& sender) override;
  void onMenulistSelected(LXMenulist& list, const std::shared_ptr<LXTreeNode>& selNode) override;
  assignmentnotes::Note note() const override;
  // Asks for the count and waits for the answer.
  void showLoopFrm();

  // Null when no macro is selected.
  const std::shared_ptr<MacroInfo>& selMacroInfo() const { return m_selMacroInfo; }
  // The code of the repeat mode in the repeat menu; 0 for none.
  std::uint32_t macroType() const { return m_macroType; }
  std::uint32_t macroCount() const { return m_macroCount; }
  // The dialog for the count is open.
  bool isShowSubMode() const { return m_isShowSubMode; }
  LXMenulist* repeatList() const { return m_repeatList.get(); }

 protected:
  void initData() override;
  void initControls() override;

 private:
  void showRepeat();
  // Shows what the mouse will count.
  void showCount();
  void takeCount(std::uint32_t count);

  LXButton* m_tkeySelBtn = nullptr;
  LXButton* m_repeatSelBtn = nullptr;
  LXTextField* m_countTxt = nullptr;
  std::unique_ptr<LXMenulist> m_repeatList;
  std::shared_ptr<MacroInfo> m_selMacroInfo;
  std::uint32_t m_macroType = 0;
  std::uint32_t m_macroCount = 0;
  bool m_isShowSubMode = false;
};

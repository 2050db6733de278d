#pragma once

#include <memory>

#include "Kit/Widgets/LXMenulist.h"
#include "View/Assign/KeyAssignSubView.h"

class MenuInfo;
class SubSensitivityViewSub;

// Assigns a DPI function. One function sets a value, which is edited here; the others use the
// levels, which have their own window.
class SubSensitivityView : public KeyAssignSubView, public LXMenulistDelegate {
  Q_OBJECT

 public:
  enum Tag : int { TagFunction = 300, TagLevelSetting = 301 };

  explicit SubSensitivityView(QWidget* parent);

  void fillSettingData() override;
  void saveData() override;
  void closePopMenu() override;
  assignmentnotes::Note note() const override;
  void buttonAction(LXButton& sender) override;
  void onMenulistSelected(LXMenulist& list, const std::shared_ptr<LXTreeNode>& selNode) override;
  // Selects the entry; null selects none.
  void setSelMenu(std::shared_ptr<MenuInfo> entry);
  LXMenulist* senMenuList() const { return m_senMenuList.get(); }

 protected:
  void initData() override;
  void initControls() override;

 private:
  void showLevelSetting();

  LXButton* m_selBtn = nullptr;
  LXButton* m_levelSettingBtn = nullptr;
  SubSensitivityViewSub* m_subView = nullptr;
  std::unique_ptr<LXMenulist> m_senMenuList;
  std::shared_ptr<MenuInfo> m_function;
};

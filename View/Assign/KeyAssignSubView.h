#pragma once

#include "Action/Record/Records.h"
#include "View/Screen/TavImageView.h"

// The part of the key assignment for one kind of assignment. Has its own copy of the assignment:
// fillSettingData shows the copy, saveData writes the user's choice to it. Fields that the kind
// does not use keep their values.
class KeyAssignSubView : public TavImageView {
  Q_OBJECT

 public:
  using TavImageView::TavImageView;

  void setTmpBtnInfo(const _BTN_INFO& info) { m_tmpBtnInfo = info; }
  const _BTN_INFO& tmpBtnInfo() const { return m_tmpBtnInfo; }
  // 0..15.
  void setBtnIndex(int btnIndex) { m_btnIndex = btnIndex; }
  int btnIndex() const { return m_btnIndex; }
  // Hides the pop-up lists.
  virtual void closePopMenu() {}

 protected:
  _BTN_INFO& editedBtnInfo() { return m_tmpBtnInfo; }

 private:
  _BTN_INFO m_tmpBtnInfo{};
  int m_btnIndex = 0;
};

#pragma once

#include <cstdint>
#include <string>

#include "View/Windows/ChildView.h"

class LXNumberTextField;

// Asks for the repeat count of a macro: 0..9999.
class TkeyRepeatView : public ChildView {
  Q_OBJECT

 public:
  enum Tag : int { TagOk = 320, TagCancel = 321 };
  static constexpr int dragHeight = 28;
  static constexpr std::uint32_t maximumCount = 9999;

  TkeyRepeatView();
  std::string helpChapter() const override { return "assign-macro"; }

  void setRepeatCount(int repeatCount);
  int repeatCount() const { return m_repeatCount; }
  // Moves the focus to the field.
  void makeTxtFirstRes();
  void buttonAction(LXButton& sender) override;

 protected:
  void initData() override;
  void initControls() override;
  void initNotify() override;
  void deallocNotify() override;

 private:
  void confirm();

  LXNumberTextField* m_repeatEdt = nullptr;
  int m_repeatCount = 0;
};

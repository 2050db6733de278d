#pragma once

#include "Kit/Widgets/LXTextField.h"

// A whole number between a minimum and a maximum. Accepts digits, and one leading "-" if negative
// numbers are allowed. The limits are applied when the text is committed.
class LXNumberTextField : public LXTextField {
  Q_OBJECT

 public:
  explicit LXNumberTextField(QWidget* parent = nullptr);

  void setMaxNum(int maximum) { m_maximum = maximum; }
  void setMinNum(int minimum) { m_minimum = minimum; }
  int maxNum() const { return m_maximum; }
  int minNum() const { return m_minimum; }
  // In characters, including the sign.
  void setMaxLenth(int length) { setMaxLength(length); }
  void setHasNegative(bool hasNegative);
  // How much the Up and Down keys add or subtract; 0 for nothing.
  void setStep(int step) { m_step = step; }
  // A text without a number goes back to the number before it, instead of to the minimum.
  void setKeepsNumber(bool keepsNumber) { m_keepsNumber = keepsNumber; }
  // Clamps the displayed number to its limits.
  void resetFormat();

  // The number in the text, within the limits. Without a number in it: the minimum, or the number
  // that was set last.
  int value() const;
  // Does not call the action.
  void setValue(int value);

 protected:
  void convert() override { resetFormat(); }
  void keyPressEvent(QKeyEvent* event) override;

 private:
  int limited(qlonglong number) const;

  int m_step = 0;
  bool m_keepsNumber = false;
  int m_number = 0;
  int m_maximum = 0;
  int m_minimum = 0;
};

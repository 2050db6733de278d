#pragma once

#include "Kit/Widgets/LXTextField.h"

// A whole number between a minimum and a maximum. Digits, and one leading "-" where negative
// numbers are allowed; the limits are applied when the text is committed.
class LXNumberTextField : public LXTextField {
  Q_OBJECT

 public:
  explicit LXNumberTextField(QWidget* parent = nullptr);

  void setMaxNum(int maximum) { m_maximum = maximum; }
  void setMinNum(int minimum) { m_minimum = minimum; }
  int maxNum() const { return m_maximum; }
  int minNum() const { return m_minimum; }
  // In characters, the sign included.
  void setMaxLenth(int length) { setMaxLength(length); }
  void setHasNegative(bool hasNegative);
  // How much the Up and Down keys add and take; 0 for nothing.
  void setStep(int step) { m_step = step; }
  // Shows the number within its limits.
  void resetFormat();

  // What the text says, within the limits; the minimum for no number.
  int value() const;
  // Tells nobody.
  void setValue(int value);

 protected:
  void convert() override { resetFormat(); }
  void keyPressEvent(QKeyEvent* event) override;

 private:
  int m_step = 0;
  int m_maximum = 0;
  int m_minimum = 0;
};

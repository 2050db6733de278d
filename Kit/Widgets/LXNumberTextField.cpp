#include "Kit/Widgets/LXNumberTextField.h"

#include <QKeyEvent>
#include <QRegularExpressionValidator>
#include <algorithm>

LXNumberTextField::LXNumberTextField(QWidget* parent) : LXTextField(parent) {
  setHasNegative(false);
}

// QIntValidator would reject a number that only the next digit makes large enough; the limits apply
// to the finished number.
void LXNumberTextField::setHasNegative(bool hasNegative) {
  const QRegularExpression pattern(hasNegative ? QStringLiteral("-?[0-9]*")
                                               : QStringLiteral("[0-9]*"));
  const QValidator* old = validator();
  setValidator(new QRegularExpressionValidator(pattern, this));
  delete old;
}

void LXNumberTextField::resetFormat() {
  setValue(value());
}

int LXNumberTextField::value() const {
  const QString digits = text();
  bool isNumber = false;
  const qlonglong number = digits.toLongLong(&isNumber);
  if (!isNumber) {
    // Digits beyond 64 bits are still a number, and one that is too large.
    const bool isHuge = digits.size() > 1 && !digits.startsWith(u'-');
    return isHuge ? m_maximum : m_keepsNumber ? limited(m_number) : m_minimum;
  }
  return limited(number);
}

int LXNumberTextField::limited(qlonglong number) const {
  return static_cast<int>(std::clamp<qlonglong>(number, m_minimum, std::max(m_minimum, m_maximum)));
}

void LXNumberTextField::setValue(int value) {
  m_number = value;
  setText(QString::number(value));
}

void LXNumberTextField::keyPressEvent(QKeyEvent* event) {
  const bool isUp = event->key() == Qt::Key_Up;
  if (m_step == 0 || isReadOnly() || (!isUp && event->key() != Qt::Key_Down)) {
    LXTextField::keyPressEvent(event);
    return;
  }
  setValue(value() + (isUp ? m_step : -m_step));
  setModified(true);
  commit();
}

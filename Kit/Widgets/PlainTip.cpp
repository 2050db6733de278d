#include "Kit/Widgets/PlainTip.h"

#include <QTextDocument>

QString plainTip(const QString& text) {
  return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text) : text;
}

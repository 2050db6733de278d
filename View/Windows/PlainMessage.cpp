#include "View/Windows/PlainMessage.h"

#include <QCoreApplication>
#include <QMessageBox>
#include <QPushButton>

#include "Kit/Desktop/HeldKeys.h"
#include "View/Screen/ControlFactory.h"
#include "View/Windows/HelpDocument.h"
#include "View/Windows/NestedLoop.h"
#include "View/Windows/PopDialogView.h"

namespace {

// A message in the style of the program's dialogs: no window frame, a mark at the left, and one
// button.
const char* const messageStyle =
    "QMessageBox { background: #15171C; border: 1px solid #343943; border-left: 3px solid #E5262F; "
    "}"
    "QLabel { color: #F2F4F7; font-size: 13px; min-width: 300px; padding: 18px 14px 12px 0; }"
    "QPushButton { background: #22252C; border: 1px solid #343943; border-radius: 6px;"
    "  color: #F2F4F7; font-size: 12px; font-weight: 600; min-height: 32px; min-width: 102px;"
    "  margin: 0 6px 6px 0; }"
    "QPushButton#finish { background: #C41A22; border-color: #E5262F; }"
    "QPushButton:hover { background: #2D313A; border-color: #5A6270; }"
    "QPushButton#finish:hover { background: #E5262F; border-color: #FF5A60; }"
    "QPushButton:pressed { background: #0B0C0F; border-color: #E5262F; }"
    "QPushButton:focus { background: #22252C; border: 2px solid #F2F4F7; }"
    "#finish:focus { background: #C41A22; border: 2px solid #F2F4F7; }";

int run(const std::string& text, QMessageBox::StandardButtons buttons) {
  const NestedLoop scope;
  QMessageBox box(QMessageBox::NoIcon, QCoreApplication::applicationName(),
                  QString::fromStdString(text), buttons, NerinAction::messageOwner());
  // It may name files and profiles.
  box.setTextFormat(Qt::PlainText);
  box.setWindowModality(Qt::WindowModal);
  helpdocument::serve(box, "messages");
  box.setWindowFlag(Qt::FramelessWindowHint);
  box.setDefaultButton(QMessageBox::Ok);
  box.button(QMessageBox::Ok)->setObjectName(QStringLiteral("finish"));
  for (QAbstractButton* button : box.buttons()) {
    const bool isOk = box.standardButton(button) == QMessageBox::Ok;
    button->setText(NerinAction::tooltipText(isOk ? "OK" : "Cancel"));
    button->setIcon({});
  }
  heldkeys::dropIn(box);
  box.setStyleSheet(QString::fromLatin1(messageStyle));
  return box.exec();
}

}  // namespace

void plainmessage::show(const std::string& text) {
  run(text, QMessageBox::Ok);
}

bool plainmessage::ask(const std::string& text) {
  return run(text, QMessageBox::Ok | QMessageBox::Cancel) == QMessageBox::Ok;
}

#include "View/Windows/PopDialogView.h"

#include <QApplication>
#include <QEventLoop>
#include <QKeyEvent>
#include <QLabel>
#include <QScopeGuard>
#include <QTimer>
#include <utility>

#include "Action/Texts/TooltipManager.h"
#include "ArtworkFrames.h"
#include "Kit/Core/LXAction.h"
#include "Kit/Core/ProcessWide.h"
#include "Kit/Desktop/HeldKeys.h"
#include "Kit/Widgets/LXNoTitleWindow.h"
#include "View/Screen/ControlFactory.h"
#include "View/Screen/Frames.h"
#include "View/Screen/Pictures.h"
#include "View/Windows/HelpDocument.h"
#include "View/Windows/NestedLoop.h"
#include "View/Windows/Termination.h"

namespace {

using frames = Artwork::WarningNoDevice;
constexpr QSize dialogSize(frames::screenWidth, frames::screenHeight);
constexpr int dragStrip = 50;
constexpr int followMilliseconds = 500;
constexpr qreal linkSize = 12;

ProcessWide<std::function<bool(const std::string&, bool)>> answererInUse;

// Screen readers get the words on the drawn button.
void setDrawnName(LXButton& button, const std::string& key) {
  button.setAccessibleName(NerinAction::tooltipText(key));
}

}  // namespace

PopDialogView::PopDialogView(const QSize& frame, std::string imageNameStr,
                             std::optional<std::string> showStr, bool isChoose)
    : TavImageView(frame),
      m_imageNameStr(std::move(imageNameStr)),
      m_showStr(std::move(showStr)),
      m_isChoose(isChoose) {}

void PopDialogView::initData2() {
  showMessage(m_imageNameStr);
}

void PopDialogView::showMessage(const std::string& imageNameStr) {
  m_imageNameStr = imageNameStr;
  setImageByName(QString::fromStdString(m_imageNameStr) + QStringLiteral("_Normal.png"));
  // Screen readers cannot read the words in the picture.
  setAccessibleName(NerinAction::tooltipText(m_imageNameStr));
  const std::string detail = m_imageNameStr + "Detail";
  const bool hasDetail = TooltipManager::shareTooltipManager().getTooltip(detail).has_value();
  setAccessibleDescription(hasDetail ? NerinAction::tooltipText(detail) : QString());
}

void PopDialogView::initControls2() {
  m_inPutTxt = NerinAction::AddLabTextField(frameRect(frames::inPutTxt), *this);
  m_inPutTxt->setObjectName(QStringLiteral("inPutTxt"));
  // A single button takes the place of the second one.
  addOkBtnByRect(frameRect(m_isChoose ? frames::okBtn : Artwork::WarningBattle::okBtn));
  if (m_isChoose) {
    addCancelBtnByRect(frameRect(frames::cancelBtn));
  }
  fillSettingData();
}

void PopDialogView::addOkBtnByRect(const QRect& rect) {
  m_okBtn = addButton(rect, okTag, "okBtn", "YES");
  setDrawnName(*m_okBtn, "OK");
}

void PopDialogView::addCancelBtnByRect(const QRect& rect) {
  m_cancelBtn = addButton(rect, cancelTag, "cancelBtn", "NO");
  setDrawnName(*m_cancelBtn, "Cancel");
}

void PopDialogView::addLink(const QString& words, std::function<void()> action) {
  removeLink();
  m_linkLbl = new QLabel(this);
  m_linkLbl->setObjectName(QStringLiteral("linkLbl"));
  m_linkLbl->setTextFormat(Qt::RichText);
  m_linkLbl->setText(QStringLiteral("<a href=\"#\">%1</a>").arg(words.toHtmlEscaped()));
  m_linkLbl->setAccessibleName(words);
  m_linkLbl->setFont(pictures::font(linkSize, QFont::Normal));
  m_linkLbl->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
  m_linkLbl->setFocusPolicy(Qt::TabFocus);
  const QRect ok = m_okBtn->geometry();
  const int left = m_inPutTxt->x();
  m_linkLbl->setGeometry(left, ok.y(), ok.x() - left, ok.height());
  connect(m_linkLbl, &QLabel::linkActivated, this,
          [act = std::move(action)](const QString& /*address*/) { act(); });
  m_linkLbl->show();
}

void PopDialogView::removeLink() {
  delete m_linkLbl;
  m_linkLbl = nullptr;
}

void PopDialogView::setTextRect(const QRect& rect) {
  m_inPutTxt->setGeometry(rect);
}

void PopDialogView::setOkBtnRect(const QRect& rect) {
  m_okBtn->setGeometry(rect);
}

void PopDialogView::setCancelBtnRect(const QRect& rect) {
  if (m_cancelBtn != nullptr) {
    m_cancelBtn->setGeometry(rect);
  }
}

void PopDialogView::fillSettingData() {
  m_inPutTxt->setText(QString::fromStdString(m_showStr.value_or("")));
}

void PopDialogView::buttonAction(LXButton& sender) {
  if (sender.tag() == okTag || sender.tag() == cancelTag) {
    emit ended(sender.tag() == okTag ? 1 : 0);
  }
}

void PopDialogView::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      emit ended(1);
      return;
    case Qt::Key_Escape:
      emit ended(m_isChoose ? 0 : 1);
      return;
    default:
      TavImageView::keyPressEvent(event);
  }
}

QWidget* NerinAction::messageOwner() {
  if (QWidget* modal = QApplication::activeModalWidget()) {
    return modal;
  }
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (window->isVisible() && qobject_cast<LXNoTitleWindow*>(window) != nullptr) {
      return window;
    }
  }
  return nullptr;
}

bool NerinAction::showPopView(const std::string& key, bool isChoose) {
  return showPopView(key, isChoose, {});
}

bool NerinAction::showPopView(const std::string& key, bool isChoose, const PopFollower& follower) {
  if (termination::isTerminating()) {
    return !isChoose;
  }
  const NestedLoop scope;
  if (*answererInUse) {
    return (*answererInUse)(key, isChoose);
  }
  QWidget* parent = messageOwner();
  LXNoTitleWindow window(dialogSize, parent);
  window.setIsCanDrag(true);
  window.setDragHeight(dragStrip);
  window.setWindowModality(Qt::WindowModal);
  helpdocument::serve(window, "messages");
  heldkeys::dropIn(window);
  auto* view = new PopDialogView(dialogSize, key, std::nullopt, isChoose);
  view->construct();
  window.setWindowTitle(QCoreApplication::applicationName());
  window.setContentView(view);
  std::optional<int> code;
  QEventLoop loop;
  QObject::connect(view, &PopDialogView::ended, &loop, [&](int endCode) {
    code = endCode;
    loop.quit();
  });
  QObject::connect(&window, &LXNoTitleWindow::closed, &loop, &QEventLoop::quit);
  QTimer timer;
  timer.setSingleShot(true);
  timer.setInterval(followMilliseconds);
  const std::function<void()> follow = [&] {
    if (follower.update) {
      follower.update(*view);
    }
    window.setAccessibleName(view->accessibleName());
    window.setAccessibleDescription(view->accessibleDescription());
    if (follower.isSettled && follower.isSettled()) {
      emit view->ended(1);
    } else if (follower.mayChangeUntold && follower.mayChangeUntold()) {
      timer.start();
    }
  };
  QObject::connect(&timer, &QTimer::timeout, &loop, follow);
  const auto tellMe = [&follower](const std::function<void()>& whenChanged) {
    if (follower.setWhenChanged) {
      follower.setWhenChanged(whenChanged);
    }
  };
  tellMe(follow);
  const auto tellNobody = qScopeGuard([&tellMe] { tellMe({}); });
  follow();
  window.center(parent);
  window.show();
  view->okBtn()->showFocus();
  // It may have been settled before it was shown.
  if (!code) {
    loop.exec();
  }
  return !isChoose || code.value_or(0) != 0;
}

void NerinAction::setPopViewAnswerer(std::function<bool(const std::string&, bool)> answerer) {
  *answererInUse = std::move(answerer);
}

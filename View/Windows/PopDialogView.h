#pragma once

#include <functional>
#include <optional>
#include <string>

#include "View/Screen/TavImageView.h"

class LXTextField;
class QLabel;

// A message whose words are part of its picture, with OK and, for a choice, Cancel.
class PopDialogView : public TavImageView {
  Q_OBJECT

 public:
  static constexpr int okTag = 6000;
  static constexpr int cancelTag = 6001;

  PopDialogView(const QSize& frame, std::string imageNameStr, std::optional<std::string> showStr,
                bool isChoose);

  LXButton* okBtn() const { return m_okBtn; }
  LXButton* cancelBtn() const { return m_cancelBtn; }  // null without a choice
  LXTextField* inPutTxt() const { return m_inPutTxt; }
  // A link below the message; null unless it was added.
  QLabel* linkLbl() const { return m_linkLbl; }
  bool isChoose() const { return m_isChoose; }

  // Shows another message in this window. The choice stays.
  void showMessage(const std::string& imageNameStr);
  // Adds words that act when they are clicked.
  void addLink(const QString& words, std::function<void()> action);
  void removeLink();

  void setTextRect(const QRect& rect);
  void setOkBtnRect(const QRect& rect);
  void setCancelBtnRect(const QRect& rect);
  void addOkBtnByRect(const QRect& rect);
  void addCancelBtnByRect(const QRect& rect);

  void buttonAction(LXButton& sender) override;
  void fillSettingData() override;

 signals:
  // 1 for OK, 0 for Cancel.
  void ended(int code);

 protected:
  void initData() override { initData2(); }
  void initControls() override { initControls2(); }
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void initData2();
  void initControls2();

  std::string m_imageNameStr;
  std::optional<std::string> m_showStr;
  bool m_isChoose;
  LXButton* m_okBtn = nullptr;
  LXButton* m_cancelBtn = nullptr;
  LXTextField* m_inPutTxt = nullptr;
  QLabel* m_linkLbl = nullptr;
};

namespace NerinAction {

// The parent window of a message: the top window of the program, or null.
QWidget* messageOwner();

// Shows the message of that key over the program and waits for the answer: true for OK. Closing a
// message without a choice means OK, otherwise Cancel.
bool showPopView(const std::string& key, bool isChoose);

// A message that follows what happens while it is shown.
struct PopFollower {
  // Brings the view up to date.
  std::function<void(PopDialogView&)> update;
  // Whether the message has become pointless; it then ends as with OK.
  std::function<bool()> isSettled;
  // Gets a function to call whenever something has happened; it is replaced by an empty one when
  // the message ends.
  std::function<void(std::function<void()>)> setWhenChanged;
  // Whether what happens may go untold, so that the follower must look now and then.
  std::function<bool()> mayChangeUntold;
};
// Like the other one, and asks the follower at once, whenever it is told, and twice a second while
// something may go untold.
bool showPopView(const std::string& key, bool isChoose, const PopFollower& follower);

// For tests: answers every message from now on without showing it. An empty function ends that.
void setPopViewAnswerer(std::function<bool(const std::string& key, bool isChoose)> answerer);

}  // namespace NerinAction

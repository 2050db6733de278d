#pragma once

#include <functional>
#include <optional>
#include <string>

#include "View/Screen/TavImageView.h"

class LXTextField;

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
  bool isChoose() const { return m_isChoose; }

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
};

namespace NerinAction {

// The parent window of a message: the top window of the program, or null.
QWidget* messageOwner();

// Shows the message of that key over the program and waits for the answer: true for OK. Closing a
// message without a choice means OK, otherwise Cancel.
bool showPopView(const std::string& key, bool isChoose);

// For tests: answers every message from now on without showing it. An empty function ends that.
void setPopViewAnswerer(std::function<bool(const std::string& key, bool isChoose)> answerer);

}  // namespace NerinAction

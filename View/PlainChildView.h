#pragma once

#include "Action/Records.h"
#include "View/TavImageView.h"

// The content of a child window that has no editor yet: its name, and a button that closes it.
class PlainChildView : public TavImageView {
  Q_OBJECT

 public:
  PlainChildView(const QSize& frame, const QString& title);

  // The button that is being reassigned; left as it is.
  void setBtnIndex(int btnIndex) { m_btnIndex = btnIndex; }
  int btnIndex() const { return m_btnIndex; }
  void setTmpBtnInfo(const _BTN_INFO& info) { m_tmpBtnInfo = info; }
  const _BTN_INFO& tmpBtnInfo() const { return m_tmpBtnInfo; }

 protected:
  void initControls() override;
  void paintEvent(QPaintEvent* event) override;

 private:
  QString m_title;
  int m_btnIndex = 0;
  _BTN_INFO m_tmpBtnInfo{};
};

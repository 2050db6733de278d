#pragma once

#include "Action/Catalogue/AssignmentNotes.h"
#include "Action/Record/Records.h"
#include "View/Screen/TavImageView.h"

class LXTextField;

// The part of the key assignment for one kind of assignment. Has its own copy of the assignment:
// fillSettingData shows the copy, saveData writes the user's choice to it. Fields that the kind
// does not use keep their values.
class KeyAssignSubView : public TavImageView {
  Q_OBJECT

 public:
  using TavImageView::TavImageView;

  void setTmpBtnInfo(const _BTN_INFO& info) { m_tmpBtnInfo = info; }
  const _BTN_INFO& tmpBtnInfo() const { return m_tmpBtnInfo; }
  // 0..15.
  void setBtnIndex(int btnIndex) { m_btnIndex = btnIndex; }
  int btnIndex() const { return m_btnIndex; }
  // Hides the pop-up lists.
  virtual void closePopMenu() {}
  // What there is to say about the assignment as it is chosen now.
  virtual assignmentnotes::Note note() const { return assignmentnotes::Note::None; }

 protected:
  _BTN_INFO& editedBtnInfo() { return m_tmpBtnInfo; }
  // Adds the line that shows the note.
  void addNoteLine(const QRect& frame);
  // Call after every choice. A screen reader says a note that is new.
  void showNote();

 private:
  _BTN_INFO m_tmpBtnInfo{};
  int m_btnIndex = 0;
  LXTextField* m_noteTxt = nullptr;
};

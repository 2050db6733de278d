#pragma once

#include <QLineEdit>
#include <functional>

// A line of text. What was typed counts when it is committed: on Return, and on leaving the field
// when it was changed.
class LXTextField : public QLineEdit {
  Q_OBJECT

 public:
  using Action = std::function<void(LXTextField&)>;

  // What the text keeps from each side in addition to the margins that are set, in pixels.
  static constexpr int ownMargin = 2;

  explicit LXTextField(QWidget* parent = nullptr);

  void setAction(Action action) { m_action = std::move(action); }
  // Colour of the text and of the insertion point.
  void setTextColor(const QColor& color);
  void setTag(int tag) { m_tag = tag; }
  int tag() const { return m_tag; }
  // The program's own text, which is settled. What anybody else puts into the field, a screen
  // reader too, still has to be committed.
  void setText(const QString& text);
  // Commits what was typed since the last time; nothing when nothing was.
  void commit();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  // Before the action hears of it.
  virtual void convert() {}

 private:
  void commitNow();

  Action m_action;
  QString m_settled;
  int m_tag = 0;
};

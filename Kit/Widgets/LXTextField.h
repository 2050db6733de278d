#pragma once

#include <QLineEdit>
#include <functional>

// A line of text. Typed text takes effect when it is committed: on Return, and on leaving the field
// for another control after a change. Another window is no commit. Escape takes back what is typed.
class LXTextField : public QLineEdit {
  Q_OBJECT

 public:
  using Action = std::function<void(LXTextField&)>;

  // The distance of the text from each side in pixels, in addition to the margins.
  static constexpr int ownMargin = 2;

  // A property of widgets to which the focus may go without a commit, because they cancel.
  static constexpr const char* leavesTextUncommitted = "leavesTextUncommitted";

  explicit LXTextField(QWidget* parent = nullptr);

  void setAction(Action action) { m_action = std::move(action); }
  // The color of the text and of the cursor.
  void setTextColor(const QColor& color);
  void setTag(int tag) { m_tag = tag; }
  int tag() const { return m_tag; }
  // Sets a text that needs no commit. A text from elsewhere, even from a screen reader, does.
  void setText(const QString& text);
  // Commits what was typed since the last commit, if anything.
  void commit();
  // Whether the user has typed something that is not committed yet.
  bool isTypedIn() const { return hasFocus() && text() != m_settled; }

 protected:
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  // Is called before the action.
  virtual void convert() {}

 private:
  void commitNow();

  Action m_action;
  QString m_settled;
  int m_tag = 0;
};

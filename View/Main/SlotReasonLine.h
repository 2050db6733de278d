#pragma once

#include <QObject>
#include <memory>
#include <optional>
#include <string>

#include "Action/Service/SlotReason.h"

class StatusLine;

// Shows in a line why the mouse has its slot, as the background service tells it, while nothing
// else is said there. What a service told is true as long as it runs.
class SlotReasonLine : public QObject {
  Q_OBJECT

 public:
  // Asks the service at once. The line must outlive this.
  explicit SlotReasonLine(StatusLine& line, QObject* parent = nullptr);
  ~SlotReasonLine() override;

  // In the language of now.
  void showText();

 private:
  void follow(bool isServiceThere);

  StatusLine& m_line;
  std::optional<SlotReason> m_reason;
  std::shared_ptr<void> m_serviceWatch;
};

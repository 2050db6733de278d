#include "View/Windows/StatusLine.h"

#include <QAccessible>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <algorithm>
#include <array>
#include <vector>

#include "Action/Device/DeviceLink.h"
#include "Kit/Core/ProcessWide.h"
#include "Kit/Widgets/PlainTip.h"
#include "View/Screen/ControlFactory.h"
#include "View/Screen/Pictures.h"

namespace {

constexpr qreal typeSize = 12;
// For a text that does not fit, as in the narrow child windows.
constexpr std::array<qreal, 3> smallerTypes{12, 11.5, 11};
constexpr int markWidth = 3;
constexpr int gap = 10;
constexpr QColor footerColor(0x15, 0x17, 0x1C);
constexpr QColor wordColor(0xD5, 0xD9, 0xE0);
constexpr QColor standingColor(0x9A, 0xA3, 0xB2);

ProcessWide<std::vector<StatusLine*>> openLines;
// The number of the slot that the mouse has moved to, for the words of HeldBack.
ProcessWide<int> slotElsewhere;

QColor colorOf(StatusLine::Tone tone) {
  switch (tone) {
    case StatusLine::Tone::Done:
      return {0x4C, 0xC3, 0x8A};
    case StatusLine::Tone::Failure:
      return {0xFF, 0x5A, 0x60};
    case StatusLine::Tone::Note:
      break;
  }
  return {0x9A, 0xA3, 0xB2};
}

QString words(const char* key) {
  return NerinAction::tooltipText(key);
}

const char* reasonOf(const std::error_code& error) {
  if (error == std::errc::no_space_on_device) {
    return "the disk is full";
  }
  if (error == std::errc::read_only_file_system) {
    return "the disk is read-only";
  }
  if (error == std::errc::permission_denied || error == std::errc::operation_not_permitted) {
    return "no permission";
  }
  if (error == std::errc::device_or_resource_busy) {
    return "another program is using it";
  }
  return "the disk reports an error";
}

QString wordsFor(const Failure& failure) {
  switch (failure.step) {
    case SlotStep::ReadActiveSlot:
    case SlotStep::ReadName:
    case SlotStep::ReadImage:
    case SlotStep::ReadMacro:
      return words("The slot could not be read. Nothing was changed.");
    case SlotStep::SaveLibrary:
      if (failure.error == std::errc::device_or_resource_busy) {
        return words("Another program is using the profile library. Try again.");
      }
      return words("The library could not be saved: %1.").arg(words(reasonOf(failure.error)));
    case SlotStep::MakeProfile:
      return words("Maximum number of profiles reached");
    case SlotStep::SavePreferences:
      return words("The settings could not be saved.");
    case SlotStep::HeldBack:
      return words("The mouse is on slot %1 now. Nothing is sent until you close this window.")
          .arg(*slotElsewhere);
    case SlotStep::SelectSlot:
    case SlotStep::WriteName:
    case SlotStep::WriteMacro:
    case SlotStep::WriteImage:
    case SlotStep::WriteButton:
    case SlotStep::WriteSetting:
    case SlotStep::Refresh:
      break;
  }
  return failure.error == std::errc::device_or_resource_busy
             ? words("Another program is using the mouse. Try again.")
             : words("The mouse did not take all of it. Try again.");
}

bool isOfMouse(SlotStep step) {
  return step != SlotStep::SaveLibrary && step != SlotStep::SavePreferences &&
         step != SlotStep::MakeProfile;
}

}  // namespace

StatusLine::StatusLine(QWidget* parent)
    : QWidget(parent), m_label(new QLabel(this)), m_button(new QPushButton(this)) {
  setObjectName(QStringLiteral("statusLine"));
  m_label->setObjectName(QStringLiteral("statusText"));
  // Names of profiles come from anywhere.
  m_label->setTextFormat(Qt::PlainText);
  m_label->setWordWrap(true);
  m_label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  m_button->setObjectName(QStringLiteral("statusOffer"));
  m_button->setFont(pictures::font(typeSize, QFont::DemiBold));
  m_button->setCursor(Qt::PointingHandCursor);
  m_button->setStyleSheet(
      QStringLiteral("QPushButton { color: #F2F4F7; background: #22252C; border: 1px solid #343943;"
                     "  border-radius: 6px; padding: 0 12px; }"
                     "QPushButton:hover { background: #2D313A; border-color: #5A6270; }"
                     "QPushButton:pressed { background: #0B0C0F; border-color: #E5262F; }"
                     "QPushButton:focus { border: 2px solid #F2F4F7; }"));
  m_button->hide();
  m_label->hide();
  connect(m_button, &QPushButton::clicked, this, [] {
    const auto lines = *openLines;
    const auto line = std::find_if(lines.begin(), lines.end(),
                                   [](const StatusLine* one) { return one->m_act != nullptr; });
    if (line != lines.end()) {
      const auto act = (*line)->m_act;
      statusline::clear();
      act();
    }
  });
  openLines->push_back(this);
  connect(this, &QObject::destroyed, [this] { std::erase(*openLines, this); });
}

void StatusLine::say(const QString& text, Tone tone, const std::optional<Offer>& offer) {
  m_tone = tone;
  m_act = offer ? offer->act : nullptr;
  m_button->setText(offer ? offer->label : QString());
  m_button->setVisible(offer.has_value());
  m_said = text;
  showText();
  if (!text.isEmpty()) {
    QAccessibleEvent alert(m_label, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
  }
}

void StatusLine::setStanding(const QString& text) {
  m_standing = text;
  showText();
}

void StatusLine::showText() {
  const QString shown = m_said.isEmpty() ? m_standing : m_said;
  QPalette colors = m_label->palette();
  colors.setColor(QPalette::WindowText, m_said.isEmpty() ? standingColor : wordColor);
  m_label->setPalette(colors);
  m_label->setText(shown);
  m_label->setToolTip(plainTip(shown));
  m_label->setAccessibleName(shown);
  // Screen readers would stop at an empty one.
  m_label->setVisible(!shown.isEmpty());
  layOut();
  update();
  if (!shown.isEmpty()) {
    QAccessibleEvent changed(m_label, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&changed);
  }
}

QPushButton* StatusLine::offerButton() const {
  return m_act ? m_button : nullptr;
}

void StatusLine::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  layOut();
}

void StatusLine::layOut() {
  int right = width();
  if (m_act) {
    const QSize size(m_button->sizeHint().width(), std::min(32, height()));
    right -= size.width();
    m_button->setGeometry(QRect(QPoint(right, (height() - size.height()) / 2), size));
    right -= gap;
  }
  const QRect room(markWidth + gap, 0, right - markWidth - gap, height());
  m_label->setGeometry(room);
  for (const qreal type : smallerTypes) {
    const QFont font = pictures::font(type, QFont::Normal);
    m_label->setFont(font);
    if (QFontMetrics(font)
            .boundingRect(room, Qt::TextWordWrap | Qt::AlignLeft, m_label->text())
            .height() <= room.height()) {
      break;
    }
  }
}

void StatusLine::paintEvent(QPaintEvent* /*event*/) {
  if (!m_said.isEmpty()) {
    QPainter painter(this);
    // A window's own hint may stand here while there is nothing to say.
    painter.fillRect(rect(), footerColor);
    painter.fillRect(QRect(0, 4, markWidth, height() - 8), colorOf(m_tone));
  }
}

void statusline::say(const QString& text, StatusLine::Tone tone,
                     const std::optional<StatusLine::Offer>& offer) {
  for (StatusLine* line : *openLines) {
    line->say(text, tone, offer);
  }
}

void statusline::clear() {
  say(QString());
}

void statusline::tell(const Outcome& outcome) {
  if (const auto& failure = outcome.failure()) {
    say(wordsFor(*failure), StatusLine::Tone::Failure);
  } else if (!openLines->empty() && openLines->front()->tone() == StatusLine::Tone::Failure) {
    clear();
  }
}

void statusline::tellApplied(const Outcome& outcome, int reports, const QString& done) {
  const auto& failure = outcome.failure();
  if (!failure) {
    say(done, StatusLine::Tone::Done);
  } else if (failure->step == SlotStep::SaveLibrary) {
    say(words("Applied, but the library could not be saved: %1.")
            .arg(words(reasonOf(failure->error))),
        StatusLine::Tone::Failure);
  } else if (isOfMouse(failure->step) && NerinAction::reportsInSeries() > 0 &&
             failure->error != std::errc::device_or_resource_busy) {
    say(words("Not applied: the mouse did not take report %1 of %2.")
            .arg(NerinAction::reportsInSeries())
            .arg(std::max(reports, NerinAction::reportsInSeries())),
        StatusLine::Tone::Failure);
  } else {
    tell(outcome);
  }
}

void statusline::tellMacrosNotSaved() {
  say(words("The macros could not be saved."), StatusLine::Tone::Failure);
}

void statusline::tellHeldBack(int slot) {
  *slotElsewhere = slot;
  tell({SlotStep::HeldBack, std::make_error_code(std::errc::operation_canceled)});
}

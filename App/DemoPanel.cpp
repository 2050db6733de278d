#include "App/DemoPanel.h"

#include <QComboBox>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QThread>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>

namespace {

// What the background service reports as "type".
constexpr std::int32_t slotChanged = 1;
constexpr std::int32_t removed = 100;
constexpr std::int32_t attached = 101;

constexpr int bytesPerLine = 8;
constexpr int refreshMilliseconds = 250;
constexpr int waitMilliseconds = 20;
constexpr int gap = 16;
constexpr QSize panelSize(344, 720);

QPushButton* button(const QString& text, const QString& name) {
  auto* made = new QPushButton(text);
  made->setObjectName(name);
  made->setMinimumHeight(32);
  return made;
}

QString hexLines(std::span<const std::uint8_t> bytes) {
  QString text;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i % bytesPerLine == 0) {
      text += QStringLiteral("\n%1 ").arg(i, 3, 16, QLatin1Char('0'));
    }
    text += QStringLiteral(" %1").arg(bytes[i], 2, 16, QLatin1Char('0'));
  }
  return text;
}

}  // namespace

DemoPanel::DemoPanel(std::shared_ptr<VirtualMouse> mouse, Report report)
    : m_mouse(std::move(mouse)),
      m_report(std::move(report)),
      m_unplugBtn(button(QStringLiteral("Unplug"), QStringLiteral("unplugBtn"))),
      m_plugBtn(button(QStringLiteral("Plug in"), QStringLiteral("plugBtn"))),
      m_slotBtn(button(QStringLiteral("Press the mouse's slot button"), QStringLiteral("slotBtn"))),
      m_slotBox(new QComboBox),
      m_memory(new QPlainTextEdit) {
  setObjectName(QStringLiteral("demoPanel"));
  setWindowTitle(QStringLiteral("The virtual mouse"));
  resize(panelSize);
  for (int slot = 1; slot <= VirtualMouse::slotCount; ++slot) {
    m_slotBox->addItem(QStringLiteral("Slot %1").arg(slot));
  }
  m_slotBox->setObjectName(QStringLiteral("slotBox"));
  m_slotBox->setAccessibleName(QStringLiteral("Slot to look into"));
  m_memory->setObjectName(QStringLiteral("memory"));
  m_memory->setAccessibleName(QStringLiteral("What the slot holds"));
  m_memory->setReadOnly(true);
  m_memory->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  auto* plugs = new QHBoxLayout;
  plugs->addWidget(m_unplugBtn);
  plugs->addWidget(m_plugBtn);
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(16, 16, 16, 16);
  rows->setSpacing(8);
  rows->addLayout(plugs);
  rows->addWidget(m_slotBtn);
  rows->addWidget(m_slotBox);
  rows->addWidget(m_memory);
  connect(m_unplugBtn, &QPushButton::clicked, this, &DemoPanel::unplug);
  connect(m_plugBtn, &QPushButton::clicked, this, &DemoPanel::plug);
  connect(m_slotBtn, &QPushButton::clicked, this, &DemoPanel::pressSlotButton);
  connect(m_slotBox, &QComboBox::currentIndexChanged, this, &DemoPanel::refresh);
  // The mouse does not report writes, so poll.
  auto* timer = new QTimer(this);
  connect(timer, &QTimer::timeout, this, &DemoPanel::refresh);
  timer->start(refreshMilliseconds);
  refresh();
}

void DemoPanel::unplug() {
  m_mouse->detach();
  m_report({{"type", removed}, {"value", 0}});
  refresh();
}

void DemoPanel::plug() {
  m_mouse->attach();
  m_report({{"type", attached}, {"value", 0}});
  refresh();
}

void DemoPanel::pressSlotButton() {
  const int next = (m_mouse->activeSlot() + 1) % VirtualMouse::slotCount;
  m_mouse->pressSlotButton(next);
  m_report({{"type", slotChanged}, {"value", next}});
  m_slotBox->setCurrentIndex(next);
  refresh();
}

// Not while the mouse is read: Qt loses track of the focus on Wayland if it changes before a time
// in which no event is handled, and its lists then open beside the wrong window.
void DemoPanel::showWhenProgramWaits() {
  setAttribute(Qt::WA_ShowWithoutActivating);
  auto* timer = new QTimer(this);
  connect(timer, &QTimer::timeout, this, [this, timer] {
    if (QThread::currentThread()->loopLevel() > 0) {
      timer->deleteLater();
      show();
    }
  });
  timer->start(waitMilliseconds);
}

void DemoPanel::standBeside(const QWidget& window) {
  const QRect room = window.screen()->availableGeometry();
  QRect place(window.frameGeometry().topRight() + QPoint(gap, 0), frameGeometry().size());
  place.moveRight(std::min(place.right(), room.right()));
  move(place.topLeft());
}

QString DemoPanel::describe(int slot) const {
  return QStringLiteral("%1, active slot %2\nName: %3\n\nImage:%4")
      .arg(m_mouse->isAttached() ? QStringLiteral("Plugged in") : QStringLiteral("Unplugged"))
      .arg(m_mouse->activeSlot() + 1)
      .arg(QString::fromStdString(m_mouse->slotName(slot)))
      .arg(hexLines(m_mouse->imageReport(slot)));
}

void DemoPanel::refresh() {
  m_mouse->refresh();
  m_unplugBtn->setEnabled(m_mouse->isAttached());
  m_slotBtn->setEnabled(m_mouse->isAttached());
  m_plugBtn->setEnabled(!m_mouse->isAttached());
  const QString text = describe(m_slotBox->currentIndex());
  if (m_memory->toPlainText() != text) {
    m_memory->setPlainText(text);
  }
}

#include <QAction>
#include <QApplication>
#include <QEnterEvent>
#include <QMenu>
#include <QMouseEvent>

#include <benchmark/benchmark.h>

#include "Benchmarks/BenchmarkHome.h"
#include "Kit/Widgets/LXButton.h"
#include "View/Lights/ColorPicker.h"
#include "View/Lights/LightView.h"
#include "View/Main/MainSubView1.h"
#include "View/Main/MainView.h"

namespace {

QApplication& application() {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  static int count = 1;
  static char name[] = "bench";
  static char* names[] = {name, nullptr};
  static QApplication made(count, names);
  return made;
}

// The pointer enters and leaves a caption, so that its two pictures and the line to its marker are
// drawn and cleared.
void hoverCaption(benchmark::State& state) {
  application();
  const BenchmarkHome home;
  MainSubView1 view;
  view.construct();
  view.show();
  QApplication::processEvents();
  LXButton* caption = view.getBtnByTag(145);
  const QPointF inside(5, 5);
  for (auto iteration : state) {
    static_cast<void>(iteration);
    QEnterEvent enter(inside, inside, inside);
    QApplication::sendEvent(caption, &enter);
    QApplication::processEvents();
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(caption, &leave);
    QApplication::processEvents();
  }
  state.SetLabel("two repaints, each in less than 2 ms");
}
BENCHMARK(hoverCaption)->Unit(benchmark::kMillisecond);

// The pointer drags through the field of colors: the light in the drawing, its well, the sliders
// and the number fields follow.
void dragColor(benchmark::State& state) {
  application();
  const BenchmarkHome home;
  LightView view;
  view.construct();
  view.fillSettingData();
  view.show();
  QApplication::processEvents();
  auto* field = view.findChild<HueSaturationView*>();
  const auto send = [field](QEvent::Type type, const QPointF& at) {
    QMouseEvent event(type, at, field->mapToGlobal(at),
                      type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QApplication::sendEvent(field, &event);
    QApplication::processEvents();
  };
  send(QEvent::MouseButtonPress, {5, 5});
  int step = 0;
  for (auto iteration : state) {
    static_cast<void>(iteration);
    ++step;
    send(QEvent::MouseMove, QPointF(5 + step % (field->width() - 10), 5 + step % 80));
  }
  state.SetLabel("a frame in less than 2 ms");
}
BENCHMARK(dragColor)->Unit(benchmark::kMillisecond);

// From the click in the menu to the painted main window in the other language. Most of it reads the
// pictures anew, because their words are drawn into them.
void changeLanguage(benchmark::State& state) {
  application();
  const BenchmarkHome home;
  MainView view;
  view.construct();
  view.show();
  QApplication::processEvents();
  bool isGerman = false;
  for (auto iteration : state) {
    static_cast<void>(iteration);
    isGerman = !isGerman;
    view.applicationMenu()
        .findChild<QAction*>(isGerman ? QStringLiteral("language_de")
                                      : QStringLiteral("language_ru"))
        ->trigger();
    QApplication::processEvents();
  }
  state.SetLabel("in less than 100 ms");
}
BENCHMARK(changeLanguage)->Unit(benchmark::kMillisecond);

}  // namespace

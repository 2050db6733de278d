#include <QApplication>
#include <QEnterEvent>

#include <benchmark/benchmark.h>

#include "Benchmarks/BenchmarkHome.h"
#include "Kit/Widgets/LXButton.h"
#include "View/Main/MainSubView1.h"

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

}  // namespace

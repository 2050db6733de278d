#include <benchmark/benchmark.h>

#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Wire/MacroImage.h"

namespace {

// A button that plays its macro once.
constexpr _BTN_INFO runsOnce{6, 6, ButtonTypeMacro, {1, 0, 0, 0}, {}, 1};

// Alternating presses and releases of all keys, up to the length that the mouse's memory of a macro
// allows without pauses.
MacroInfo macroOf(int events) {
  MacroInfo macro;
  macro.setNameStr("NewMacro_1");
  for (int i = 0; i < events; ++i) {
    macro.keyInfoArr().push_back(std::make_shared<MacroKeyInfo>(i / 2 % 127, i % 2, 0));
  }
  return macro;
}

void encodeMacro(benchmark::State& state) {
  const MacroInfo macro = macroOf(static_cast<int>(state.range(0)));
  for (auto iteration : state) {
    static_cast<void>(iteration);
    benchmark::DoNotOptimize(
        NerinAction::encodeMacroReport(0, NerinAction::streamOf(macro, runsOnce)));
  }
  state.SetLabel("1000 events at most 20 us");
}
BENCHMARK(encodeMacro)->Arg(40)->Arg(1000);

void decodeMacro(benchmark::State& state) {
  auto report = NerinAction::encodeMacroReport(
      0, NerinAction::streamOf(macroOf(static_cast<int>(state.range(0))), runsOnce));
  report[0] = 0xB0;
  for (auto iteration : state) {
    static_cast<void>(iteration);
    benchmark::DoNotOptimize(NerinAction::decodeMacroReport(report));
  }
}
BENCHMARK(decodeMacro)->Arg(40)->Arg(1000);

}  // namespace

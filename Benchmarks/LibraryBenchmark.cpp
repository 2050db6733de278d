#include <benchmark/benchmark.h>

#include "Benchmarks/BenchmarkHome.h"

namespace {

// The files were just written, so the system has them in its cache.
void loadLibrary(benchmark::State& state) {
  const BenchmarkHome home;
  const auto profiles = static_cast<std::size_t>(state.range(0));
  BenchmarkHome::fillLibrary(profiles);
  for (auto iteration : state) {
    static_cast<void>(iteration);
    if (BenchmarkHome::loadLibrary().getProfileCount() != profiles) {
      state.SkipWithError("the library is not whole");
      break;
    }
  }
  state.SetLabel("50 at most 5 ms");
}
BENCHMARK(loadLibrary)->Arg(50)->Arg(5000)->Unit(benchmark::kMillisecond);

// One profile has changed, as after an edit.
void saveLibrary(benchmark::State& state) {
  const BenchmarkHome home;
  BenchmarkHome::fillLibrary(static_cast<std::size_t>(state.range(0)));
  ProfieController& library = BenchmarkHome::loadLibrary();
  std::uint32_t rate = 0;
  for (auto iteration : state) {
    static_cast<void>(iteration);
    library.profileArr().front()->setProRate(++rate);
    if (library.saveToSys()) {
      state.SkipWithError("the library was not saved");
      break;
    }
  }
}
BENCHMARK(saveLibrary)->Arg(50)->Arg(5000)->Unit(benchmark::kMillisecond)->UseRealTime();

// Every profile has changed.
void rewriteLibrary(benchmark::State& state) {
  const BenchmarkHome home;
  BenchmarkHome::fillLibrary(static_cast<std::size_t>(state.range(0)));
  ProfieController& library = BenchmarkHome::loadLibrary();
  std::uint32_t rate = 0;
  for (auto iteration : state) {
    static_cast<void>(iteration);
    ++rate;
    for (const auto& profile : library.profileArr()) {
      profile->setProRate(rate);
    }
    if (library.saveToSys()) {
      state.SkipWithError("the library was not saved");
      break;
    }
  }
}
BENCHMARK(rewriteLibrary)->Arg(50)->Arg(5000)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

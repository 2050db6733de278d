#include <benchmark/benchmark.h>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Texts/TooltipManager.h"
#include "Benchmarks/BenchmarkHome.h"

namespace {

void loadFunctions(benchmark::State& state) {
  const BenchmarkHome home;
  for (auto iteration : state) {
    static_cast<void>(iteration);
    NerinAction::initMenuList();
  }
}
BENCHMARK(loadFunctions)->Unit(benchmark::kMicrosecond);

void loadTexts(benchmark::State& state) {
  const BenchmarkHome home;
  for (auto iteration : state) {
    static_cast<void>(iteration);
    benchmark::DoNotOptimize(TooltipManager().engLan());
  }
}
BENCHMARK(loadTexts)->Unit(benchmark::kMicrosecond);

void findText(benchmark::State& state) {
  const BenchmarkHome home;
  TooltipManager manager;
  // The last one in the search.
  const std::string key = manager.engLan()->tooltips.back().name.value_or("");
  for (auto iteration : state) {
    static_cast<void>(iteration);
    benchmark::DoNotOptimize(manager.getTooltip(key));
  }
}
BENCHMARK(findText);

void missText(benchmark::State& state) {
  const BenchmarkHome home;
  TooltipManager manager;
  const std::string key = "a key that no language has";
  for (auto iteration : state) {
    static_cast<void>(iteration);
    benchmark::DoNotOptimize(manager.getTooltip(key));
  }
}
BENCHMARK(missText);

}  // namespace

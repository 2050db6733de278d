#include <benchmark/benchmark.h>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Wire/ProfileImage.h"
#include "Benchmarks/BenchmarkHome.h"

namespace {

// The factory profile of the first slot: mouse buttons, keys, DPI functions.
_Nerin_PROFILE factoryRecord() {
  return BenchmarkHome::loadLibrary().defaultProfile()->profileData();
}

void encodeImage(benchmark::State& state) {
  const BenchmarkHome home;
  NerinAction::initMenuList();
  const _Nerin_PROFILE record = factoryRecord();
  for (auto iteration : state) {
    static_cast<void>(iteration);
    benchmark::DoNotOptimize(NerinAction::encodeProfileImage(0, record, {}));
  }
  state.SetLabel("at most 2 us");
}
BENCHMARK(encodeImage);

void decodeImage(benchmark::State& state) {
  const BenchmarkHome home;
  NerinAction::initMenuList();
  const auto image = NerinAction::encodeProfileImage(0, factoryRecord(), {});
  _Nerin_PROFILE record{};
  for (auto iteration : state) {
    static_cast<void>(iteration);
    benchmark::DoNotOptimize(
        NerinAction::decodeProfileImage(image, record, NerinAction::singleFunctionIdOf));
    benchmark::DoNotOptimize(record);
  }
}
BENCHMARK(decodeImage);

}  // namespace

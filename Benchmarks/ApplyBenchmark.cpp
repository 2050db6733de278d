#include <chrono>
#include <string>
#include <thread>

#include <benchmark/benchmark.h>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Device/DeviceLink.h"
#include "Action/Edit/SlotOperations.h"
#include "Action/Record/EditState.h"
#include "Action/Wire/KeyCodes.h"
#include "Benchmarks/BenchmarkHome.h"
#include "VirtualMouse/VirtualDeviceRequester.h"

namespace {

using Clock = std::chrono::steady_clock;

// Each button plays its own macro of forty presses and releases, with a pause after each.
void giveEveryButtonAMacro() {
  NerinAction::initMenuList();
  NerinAction::refreshMenuList();
  for (_BTN_INFO& button : editState->edit().btnInfo) {
    const auto macro = NerinAction::addMacorByName(NerinAction::getNewMacroName());
    for (int i = 0; i < 40; ++i) {
      macro->keyInfoArr().push_back(std::make_shared<MacroKeyInfo>(i / 2, i % 2, 10));
    }
    NerinAction::refreshMenuList();
    button = {};
    button.FuncID = NerinAction::FunctionMacro;
    button.FuncTableId = NerinAction::FunctionMacro;
    button.btnType = ButtonTypeMacro;
    button.KeyBit[0] = 1;
    button.MacroID = static_cast<std::uint32_t>(macro->macroId());
  }
}

// With the real pauses between reports, in a library of 50 profiles.
void applySlot(benchmark::State& state) {
  std::chrono::microseconds stated{};
  LXPlatform platform;
  platform.deviceRequester =
      std::make_shared<VirtualDeviceRequester>(std::make_shared<VirtualMouse>());
  platform.sleep = [&](std::chrono::microseconds pause) {
    stated += pause;
    std::this_thread::sleep_for(pause);
  };
  const BenchmarkHome home(std::move(platform));
  BenchmarkHome::fillLibrary(49);  // The first Apply adds the profile of the slot.
  BenchmarkHome::loadLibrary();
  NerinAction::startListenDev();
  static_cast<void>(NerinAction::loadSlot(0));
  giveEveryButtonAMacro();
  stated = {};
  Clock::duration taken{};
  for (auto iteration : state) {
    static_cast<void>(iteration);
    editState->edit().poRate = (editState->selProfile().poRate + 1) % 4;
    const auto begin = Clock::now();
    if (const Outcome outcome = NerinAction::applySlot(); !outcome.isDone()) {
      const auto& failure = *outcome.failure();
      state.SkipWithError(("step " + std::to_string(static_cast<int>(failure.step)) +
                           " of the Apply failed: " + failure.error.message())
                              .c_str());
      break;
    }
    taken += Clock::now() - begin;
  }
  state.counters["pauses_ms"] =
      benchmark::Counter(std::chrono::duration<double, std::milli>(stated).count(),
                         benchmark::Counter::kAvgIterations);
  state.counters["ratio"] = std::chrono::duration<double>(taken) / stated;
  state.SetLabel("ratio at most 1.02");
}
BENCHMARK(applySlot)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);

}  // namespace

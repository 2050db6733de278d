#include <QAbstractEventDispatcher>
#include <QElapsedTimer>
#include <chrono>
#include <thread>

#include <gtest/gtest.h>

#include "View/Windows/AfterWork.h"

namespace {

constexpr int moment = 50;

// What was done at the start has been followed.
struct Followed {
  int calls = 0;
  AfterWork after{moment, [this] { ++calls; }, nullptr};

  // Sleeps in the event loop without any timer of Qt, as an idle program does.
  static void idle(int milliseconds) {
    QElapsedTimer clock;
    clock.start();
    auto* loop = QAbstractEventDispatcher::instance();
    std::thread alarm([loop, milliseconds] {
      std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
      loop->wakeUp();
    });
    while (clock.elapsed() < milliseconds) {
      loop->processEvents(QEventLoop::WaitForMoreEvents);
    }
    alarm.join();
  }
};

}  // namespace

TEST(AfterWork, AnIdleProgramStaysAsleep) {
  Followed work;
  Followed::idle(4 * moment);
  const int before = work.calls;
  EXPECT_LE(before, 2);
  Followed::idle(10 * moment);
  // The wake-up at the end of the first rest is work.
  EXPECT_LE(work.calls, before + 1);
}

TEST(AfterWork, WhatHappensIsFollowedByOneCall) {
  Followed work;
  Followed::idle(4 * moment);
  Followed::idle(4 * moment);
  const int before = work.calls;
  QMetaObject::invokeMethod(
      &work.after, [] {}, Qt::QueuedConnection);
  Followed::idle(6 * moment);
  EXPECT_GE(work.calls, before + 1);
  EXPECT_LE(work.calls, before + 2);
}

TEST(AfterWork, SteadyWorkIsFollowedAgainAndAgain) {
  Followed work;
  QTimer steady;
  steady.start(moment / 5);
  Followed::idle(10 * moment);
  EXPECT_GE(work.calls, 3);
}

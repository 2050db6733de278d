#pragma once

#include <chrono>
#include <optional>
#include <string>

// What a program without an event loop asks on the session bus.

// A text property of an object.
struct BusQuestion {
  std::string service;  // not started if it does not run
  std::string path;
  std::string interface;
  std::string property;
};

// The property's text. Nothing without a bus, a service or an answer within `limit`.
std::optional<std::string> askSessionBus(const BusQuestion& question,
                                         std::chrono::milliseconds limit);

// Whether some program on the session bus has this name. Waits up to `limit`; false without an
// answer.
bool isOnTheSessionBus(const std::string& name, std::chrono::milliseconds limit);

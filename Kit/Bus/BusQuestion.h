#pragma once

#include <chrono>
#include <optional>
#include <string>

// A text property of an object on the session bus, asked by a program without an event loop.
struct BusQuestion {
  std::string service;  // not started if it does not run
  std::string path;
  std::string interface;
  std::string property;
};

// The property's text. Nothing without a bus, a service or an answer within `limit`.
std::optional<std::string> askSessionBus(const BusQuestion& question,
                                         std::chrono::milliseconds limit);

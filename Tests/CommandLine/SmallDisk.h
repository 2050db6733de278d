#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>

// Whether this machine lets a test mount a file system that nobody else sees.
bool canMountSmallDisk();

// Runs the body in a process of its own where the folder is the root of a file system of that many
// bytes, and hands its failures on. The folder is as before afterwards.
void onSmallDisk(const std::filesystem::path& folder, std::size_t bytes,
                 const std::function<void()>& body);

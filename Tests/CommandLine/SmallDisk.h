#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>

// Whether a test may mount a private file system on this machine.
bool canMountSmallDisk();

// Runs the body in a child process, with a file system of that many bytes mounted on the folder,
// and forwards its failures. Does not change the folder itself.
void onSmallDisk(const std::filesystem::path& folder, std::size_t bytes,
                 const std::function<void()>& body);

#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string_view>

// The one function of a fuzz target: it is called with one input after another.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// What the targets need around the bytes that they are given.
namespace fuzz {

// A folder of this process, removed at its end. The first call installs a platform that has it as
// home and a mouse for answerReadsWith.
std::filesystem::path home();

std::string_view textOf(const std::uint8_t* data, std::size_t size);

// Puts the bytes into a file below home, with the folders above it.
std::filesystem::path putFile(const std::filesystem::path& name, std::string_view bytes);

// The mouse takes every write, and answers reads with these bytes, one after the other, each as
// long as was asked for. With no bytes left, reads fail. The bytes must outlive the reads.
void answerReadsWith(std::span<const std::uint8_t> answers);

// Ends the process when something does not hold that must, whatever the input.
void require(bool holds);

}  // namespace fuzz

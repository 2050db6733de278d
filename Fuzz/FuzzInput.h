#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string_view>

// The one function of a fuzz target. It is called with one input after another.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// What the targets share.
namespace fuzz {

// A folder of this process, removed at its end. The first call installs a platform with this home
// and a mouse for answerReadsWith.
std::filesystem::path home();

std::string_view textOf(const std::uint8_t* data, std::size_t size);

// Writes the bytes to a file below home and creates the folders above it.
std::filesystem::path putFile(const std::filesystem::path& name, std::string_view bytes);

// Removes what lies in a folder. Damaged files are kept aside, and thousands of them take longer
// than the target itself.
void emptyFolder(const std::filesystem::path& folder);

// The mouse accepts every write and answers reads with consecutive pieces of these bytes, each of
// the requested length. When no bytes are left, reads fail. The bytes must outlive the reads.
void answerReadsWith(std::span<const std::uint8_t> answers);

// Ends the process if something is false that must be true for any input.
void require(bool holds);

}  // namespace fuzz

// The cache's hash functions over byte texts (each byte one character, 0-255).
// All sums wrap at 8 bits per accumulator.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace toval {

// Four accumulators; byte i (from 1) goes into accumulator (i - 1) mod 4.
std::string GetHash(std::string_view text);
// GetHash's four bytes read as one little-endian signed 32-bit number.
int32_t GetLngHash(std::string_view text);
// `length` accumulators, folded the same way: a text shorter than `length`
// comes back as itself padded with NUL bytes. Empty for a length below 1.
std::string GetStrHash(std::string_view text, int32_t length);

}  // namespace toval

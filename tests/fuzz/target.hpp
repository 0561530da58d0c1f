#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// What every target of the fuzzer defines: it reads one input, and ends the process when something does not
/// hold. Called millions of times in one process.
namespace tamo::fuzz {

void readInput(std::string_view bytes);

/// The input as texts that are divided by zero bytes, as a process gets its arguments: one text at least.
[[nodiscard]] std::vector<std::string> dividedByZeroBytes(std::string_view bytes);

}  // namespace tamo::fuzz

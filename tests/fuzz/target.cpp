#include "fuzz/target.hpp"

namespace tamo::fuzz {

std::vector<std::string> dividedByZeroBytes(std::string_view bytes) {
  std::vector<std::string> texts(1);
  for (const char byte : bytes) {
    if (byte == '\0') {
      texts.emplace_back();
    } else {
      texts.back() += byte;
    }
  }
  return texts;
}

}  // namespace tamo::fuzz

/// The name is the fuzzer's.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tamo::fuzz::readInput(size == 0 ? std::string_view()
                                  : std::string_view(reinterpret_cast<const char*>(data), size));
  return 0;
}

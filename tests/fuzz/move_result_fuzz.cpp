#include "fuzz/insist.hpp"
#include "fuzz/target.hpp"
#include "move/move_result_reader.hpp"
#include "values/text.hpp"

/// The reader of recorded moves on any bytes, and its writer on any code.
namespace tamo::fuzz {
namespace {

void readsBack(const AppMove::Result& result) {
  const auto bytes = AppMove::encoded(result);
  insist(bytes.starts_with(R"({"ok":)") && bytes.find('\n') == std::string::npos, "a result is compact");
  insist(AppMove::decoded(bytes) == result, "a written result reads as itself");
}

}  // namespace

void readInput(std::string_view bytes) {
  if (const auto result = AppMove::decoded(bytes)) {
    insist(bytes.contains(result->ok ? "true" : "false"), "ok is spelt out");
    insist(values::isUtf8(result->code), "a code is UTF-8");
    readsBack(*result);
  }
  // As a code, the bytes are repaired first: codes are texts.
  const auto code = values::repairedUtf8(bytes);
  readsBack({.ok = false, .code = code});
  insist(AppMove::resultOf(code).ok == (code == "moved" || code == "opened"),
         "two codes say that it is done");
  insist(AppMove::words(code).starts_with("Tamo ") || AppMove::words(code).starts_with("macOS ") ||
             code == "cancelled",
         "every code has words");
}

}  // namespace tamo::fuzz

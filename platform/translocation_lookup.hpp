#pragma once

#include <functional>
#include <optional>
#include <string>

/// Where a translocated copy really lies is known to a function of the security library that no header
/// declares. It is looked up when it is needed, so that the program also runs where it is missing.
namespace tamo::platform {

/// The dynamic loader. None of the three may be empty.
struct LibraryLoader {
  /// `mode` as the loader numbers it. Null when the library cannot be opened.
  std::function<void*(const char* path, int mode)> open;
  /// Null when the library has no such symbol.
  std::function<void*(void* library, const char* symbol)> find;
  std::function<void(void* library)> close;
};

/// Asks the function at an address, which is not null and is called while its library is open. Absent when it
/// has no answer.
using TranslocationQuestion = std::function<std::optional<std::string>(void* function)>;

/// Opens the security library, asks, and closes it again on every path after a successful opening. Absent
/// when the library or the function is missing. Any thread.
[[nodiscard]] std::optional<std::string> translocatedFrom(const LibraryLoader& loader,
                                                          const TranslocationQuestion& ask);

}  // namespace tamo::platform

#include "platform/translocation_lookup.hpp"

#include <memory>

namespace tamo::platform {
namespace {

/// The function is not declared in any header of the system and may be gone in its next version; so it is
/// looked for by its name.
constexpr auto securityLibrary = "/System/Library/Frameworks/Security.framework/Security";
constexpr auto originalPathFunction = "SecTranslocateCreateOriginalPathForURL";
/// Symbols are bound when they are first used, not all at once.
constexpr int bindLazily = 1;

}  // namespace

std::optional<std::string> translocatedFrom(const LibraryLoader& loader, const TranslocationQuestion& ask) {
  const std::unique_ptr<void, std::function<void(void*)>> library(loader.open(securityLibrary, bindLazily),
                                                                  loader.close);
  if (!library) return std::nullopt;
  void* function = loader.find(library.get(), originalPathFunction);
  if (function == nullptr) return std::nullopt;
  return ask(function);
}

}  // namespace tamo::platform

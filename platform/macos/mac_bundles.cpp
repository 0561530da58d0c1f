#include "platform/macos/mac_bundles.hpp"

#include <dlfcn.h>

#include "platform/translocation_lookup.hpp"
#include "values/fatal.hpp"
#include "values/macos/cf_values.hpp"

namespace tamo::macos {
namespace {

static_assert(RTLD_LAZY == 1);

platform::LibraryLoader dynamicLoader() {
  return {.open = [](const char* path, int mode) { return ::dlopen(path, mode); },
          .find = [](void* library, const char* symbol) { return ::dlsym(library, symbol); },
          .close = [](void* library) { static_cast<void>(::dlclose(library)); }};
}

/// No header declares it: it takes a URL and a place for an error, and gives a URL that the caller owns.
using CreateOriginalPath = CFURLRef (*)(CFURLRef, CFErrorRef*);

}  // namespace

/// Of the bundle as it was launched: a link on the way is not resolved, and a translocated copy shows its
/// temporary place.
std::string MacBundles::mainBundlePath() const {
  auto* bundle = CFBundleGetMainBundle();
  const values::macos::Owned<CFURLRef> url(bundle == nullptr ? nullptr : CFBundleCopyBundleURL(bundle));
  auto path = values::macos::pathOf(url.get());
  if (!path) values::fatal("there is no main bundle");
  return *path;
}

std::optional<std::string> MacBundles::originalLocation(const std::string& appPath) const {
  const auto url = values::macos::cfFileURL(appPath);
  if (!url) return std::nullopt;
  const platform::TranslocationQuestion ask = [&url](void* function) {
    const auto createOriginalPath = reinterpret_cast<CreateOriginalPath>(function);
    const values::macos::Owned<CFURLRef> original(createOriginalPath(url.get(), nullptr));
    return values::macos::pathOf(original.get());
  };
  return platform::translocatedFrom(dynamicLoader(), ask);
}

}  // namespace tamo::macos

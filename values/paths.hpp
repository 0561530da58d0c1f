#pragma once

#include <string>
#include <string_view>

/// Paths as text. Pure functions of absolute POSIX paths, without a look at the file system. Any thread.
namespace tamo::values {

/// `path` with "." and ".." components removed lexically, runs of "/" made one and no "/" at its end. ".." at
/// the root vanishes. "~" is a name like any other; a relative path is taken from the root.
///
/// macOS additionally resolves links before it removes a ".." and drops some "/private" prefixes; this
/// function does neither, on any backend, because a decision about live data must not depend on what happens
/// to exist.
[[nodiscard]] std::string standardisedPath(std::string_view path);

/// `directory` and `relative` with exactly one "/" between them. `relative` may hold several components.
[[nodiscard]] std::string joinedPath(std::string_view directory, std::string_view relative);

/// What stands before the last component of a standardised path ("/" for a top-level item), and the component
/// itself ("" for the root).
[[nodiscard]] std::string_view parentPath(std::string_view path);
[[nodiscard]] std::string_view lastComponent(std::string_view path);

}  // namespace tamo::values

#pragma once

#include <optional>
#include <string>

/// Where this user's temporary files go, as the host tells. Any thread.
namespace tamo::platform::posix {

/// A text of the host's configuration by its name (confstr); absent when there is none, or an empty one.
[[nodiscard]] std::optional<std::string> configuredText(int name);

/// The user's own temporary directory, with a "/" at its end. The one that the host's configuration names
/// comes first, whatever the environment says, then TMPDIR, and last "/tmp/", which is everybody's.
[[nodiscard]] std::string temporaryDirectory();

}  // namespace tamo::platform::posix

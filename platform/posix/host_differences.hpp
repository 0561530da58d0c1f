#pragma once

#include <ctime>
#include <spawn.h>

/// The few POSIX calls that a Mac and Linux spell differently. Everything else in this folder is the same
/// text on both.
namespace tamo::platform {

/// A clock that cannot be set and counts while the machine sleeps.
[[nodiscard]] clockid_t sleepCountingClock();

/// The environment of this process, for a tool to inherit.
[[nodiscard]] char* const* ownEnvironment();

/// The name by which confstr tells the user's own temporary directory; one that it doesn't know where the
/// host has none.
[[nodiscard]] int temporaryDirectoryName();

/// The flag without which a started tool would inherit more than its three streams; 0 where that is done by
/// closing them (see inheritOnlyStreams).
[[nodiscard]] short inheritanceFlag();

/// Lets a started tool keep standard input and whatever `actions` make of the other two streams, and nothing
/// else; a standard input that is closed, or closes on exec, is closed in the tool. The last of the actions.
/// False when there is no memory for them.
[[nodiscard]] bool inheritOnlyStreams(posix_spawn_file_actions_t& actions);

}  // namespace tamo::platform

#pragma once

/// The exit statuses that the programs of a stage share with the Mac's own tools.
namespace tamo::stage {

inline constexpr int kFailed = 1;
/// A wrong use, as sysexits.h numbers it; launchctl and the tools exit with it on a Mac.
inline constexpr int kUsage = 64;

}  // namespace tamo::stage

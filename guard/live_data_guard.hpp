#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/files.hpp"
#include "platform/user.hpp"

/// Which copy of the application may open the user's live data and act on the Core: the installed one or the
/// staged one, with the release identifier and reached without symbolic links. Other copies are sent to an
/// isolated home. Everything here is a rule about texts or a thin wrapper that gathers the texts; the answer
/// for the running process is kept by LiveData.
///
/// Paths are absolute. Texts are compared with letter case, except in clamp, and under canonical equivalence:
/// a Mac's file system gives the name of a home with its accents decomposed, the user database as they were
/// typed, and both are one home. Any thread. Missing information always gives the restrictive answer.
namespace tamo::LiveDataGuard {

inline constexpr std::string_view installedApp = "/Applications/Tamo.app";
inline constexpr std::string_view releaseBundleID = "studio.pell.Tamo";
/// The live data directory, relative to a home.
inline constexpr std::string_view dataRel = "Library/Application Support/Tamo";
/// The staged copy, relative to a home.
inline constexpr std::string_view stagedRel = "Library/Application Support/Tamo/staged/Tamo.app";
/// Where helper applications sit inside a main application.
inline constexpr std::string_view helperRel = "/Contents/Library/LoginItems/";
/// The home of every copy that may not open live data.
inline constexpr std::string_view isolatedHome = "/private/tmp/studio.pell.Tamo-isolated";
/// The data directory in the isolated home; a literal of its own, so that one greps for it and finds it.
inline constexpr std::string_view isolatedData =
    "/private/tmp/studio.pell.Tamo-isolated/Library/Application Support/Tamo";
/// The home of a user whom the user database does not know.
inline constexpr std::string_view unknownHome = "/var/empty";

/// The home in the user database, whatever the environment says; `unknownHome` without an entry. An entry
/// without a home is fatal on purpose: such a user must not be taken for one without live data.
[[nodiscard]] std::string realHome(const platform::User& user);

[[nodiscard]] std::string stagedApp(std::string_view home);

/// The application that contains the path, when the path leads into a helper of it; for any other path that
/// path, standardised. No ".app" is looked for. Helpers inside helpers: the cut is at the last LoginItems.
[[nodiscard]] std::string outerApp(std::string_view of);

/// What the rule asks about a copy.
struct AppCopy {
  std::string appPath;
  /// `appPath` with symbolic links resolved.
  std::string resolvedPath;
  /// Absent when `appPath` is no bundle or declares no identifier.
  std::optional<std::string> bundleID;
  std::string home;
};

/// Looks at the copy that `path` lies in. Blocks for one small file and one path resolution.
[[nodiscard]] AppCopy appCopy(std::string_view path, std::string_view home,
                              const platform::FileReader& files);

[[nodiscard]] bool mayOpenLive(const AppCopy& copy);

/// The rule for the copy that `path` lies in.
[[nodiscard]] bool mayOpenLive(std::string_view path, std::string_view home,
                               const platform::FileReader& files);

/// What a process may do, and where the data would be that it may do it to.
struct Access {
  bool live = false;
  /// The user's real home.
  std::string real;
};

/// The home under which data is to be opened.
[[nodiscard]] std::string dataHome(const Access& access);

/// A path in the forms under which it could lead into the live data.
struct ClampedPath {
  /// As the caller wrote it.
  std::string path;
  std::string standardised;
  /// Standardised, with the links of its parent resolved. A link in the last component stays, because what is
  /// opened there may just as well replace the link.
  std::string viaParent;
};

[[nodiscard]] ClampedPath clampedPath(std::string_view path, const platform::FileReader& files);

/// The path, sent into the isolated data directory when it leads into the live data without the right to.
/// Letter case and the composition of accents do not matter to where a path leads, so they do not count here;
/// what stands behind the live data directory keeps its own. Every other path comes back as it was written.
[[nodiscard]] std::string clamp(const ClampedPath& path, const Access& access);

/// As above. The file system is not asked when `access` is live.
[[nodiscard]] std::string clamp(std::string_view path, const Access& access,
                                const platform::FileReader& files);

/// The line with which a copy is turned away.
[[nodiscard]] std::string refusal(std::string_view app);

}  // namespace tamo::LiveDataGuard

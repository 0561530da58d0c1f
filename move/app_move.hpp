#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "guard/live_data_guard.hpp"
#include "platform/bundles.hpp"
#include "platform/files.hpp"
#include "platform/workspace.hpp"

/// The rules of the move into /Applications: whether it is needed, what it does to a copy that is there
/// already, how its result is recorded and put into words. Carrying it out is left to others. Any thread.
namespace tamo::AppMove {

/// The name of the action.
inline constexpr std::string_view operation = "move-to-applications";
inline constexpr std::string_view destination = LiveDataGuard::installedApp;
/// The file name of a recorded result.
inline constexpr std::string_view resultName = "move-to-applications.json";

/// A release copy that may not open live data where it is. Copies with another identifier never move
/// themselves, nor does a folder that is no bundle.
[[nodiscard]] bool needed(const LiveDataGuard::AppCopy& copy);

/// The rule for the copy that `path` lies in. `home` is the real home of the user.
[[nodiscard]] bool needed(std::string_view path, std::string_view home, const platform::FileReader& files);

enum class Plan {
  /// Nothing is installed: copy this copy there.
  copy,
  /// An older build is installed: move it to the Trash, then copy.
  replace,
  /// Leave the installed copy as it is and open it.
  openInstalled,
};

/// What a plan is made from. A build is absent when it cannot be read.
struct Builds {
  std::optional<std::int64_t> source;
  std::optional<std::int64_t> installed;
  bool installedExists = false;
};

/// An installed copy is replaced only by a build that is known to be newer than it.
[[nodiscard]] Plan plan(const Builds& builds);

/// The number at the start of a bundle version: its first piece between dots that is not empty. Absent when
/// that is no decimal integer.
[[nodiscard]] std::optional<std::int64_t> buildNumber(std::string_view version);

/// The build number of an application bundle, read from its file each time. Absent when there is none to
/// read; a version stored as a number instead of a text counts as none.
[[nodiscard]] std::optional<std::int64_t> build(const platform::FileReader& files,
                                                const std::string& appPath);

/// How a move ends, in the words of its result.
namespace Code {
inline constexpr std::string_view moved = "moved";
/// The installed copy was good enough; nothing was copied.
inline constexpr std::string_view opened = "opened";
/// The user closed the administrator prompt.
inline constexpr std::string_view cancelled = "cancelled";
/// An older installed copy would not go to the Trash, or not even the administrator's copy came about.
inline constexpr std::string_view notWritable = "not_writable";
/// The copy failed although the user may write to the folder.
inline constexpr std::string_view copyFailed = "copy_failed";
}  // namespace Code

/// How a move ended.
struct Result {
  /// The installed copy is in place.
  bool ok = false;
  /// One of the codes above; in a result that was read, any text.
  std::string code;

  friend bool operator==(const Result&, const Result&) = default;
};

/// The result that a code makes.
[[nodiscard]] Result resultOf(std::string_view code);

/// The bytes of a recorded result: one compact JSON object, "ok" before "code".
[[nodiscard]] std::string encoded(const Result& result);

/// The file that records a result, in the data container of the application `bundleID`, which is put into the
/// path unchecked.
[[nodiscard]] std::string resultURL(std::string_view home, std::string_view bundleID);

/// What to tell a person about a move that failed with `code`. Every text has words: one that is not known
/// gets general ones, and so do the codes of success, which are no failures.
[[nodiscard]] std::string_view words(std::string_view code);

/// Where a translocated copy really lies; absent for a copy that is not translocated, for which the system is
/// not even asked, and when the system cannot tell.
[[nodiscard]] std::optional<std::string> originalURL(const std::string& of, const platform::Bundles& bundles);

/// The copy that a finished move leaves behind for the Trash: the original of a translocated copy, otherwise
/// the copy at `here` itself. Absent for a translocated copy without a known `original`, whose path leads to
/// no place of the user's, and for the destination, which is never thrown away.
[[nodiscard]] std::optional<std::string> oldCopy(std::string_view here,
                                                 const std::optional<std::string>& original);

/// The application copy that a move is made from.
struct RunningCopy {
  std::string path;
  std::string bundleID;
};

/// Whether a running application is that copy: the same identifier and, standardised, the same path. One that
/// lacks either is not.
[[nodiscard]] bool isCopy(const RunningCopy& copy, const platform::RunningApplication& application);

}  // namespace tamo::AppMove

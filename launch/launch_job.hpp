#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The Core's launchd job as it is defined: what launchd has loaded, what the bundle ships, and whether the
/// difference calls for launchd to take the job up anew. Pure functions of their arguments; any thread.
///
/// The reading of prints counts a block as opened only by a line that ends in "= {". Newer systems print inner
/// blocks that open with "=> {" as well; withoutQuotedBlocks leaves these out of a print first.
namespace tamo::LaunchJob {

/// What a definition says, as far as it is compared.
struct Definition {
  /// The program arguments in order, the program's path first.
  std::vector<std::string> arguments;
  /// In seconds; absent when not stated.
  std::optional<std::int64_t> exitTimeout = std::nullopt;

  /// Every argument and the timeout. Texts are equal under canonical equivalence.
  friend bool operator==(const Definition& left, const Definition& right);
};

/// Reads the job's own "arguments = {" block and "exit timeout = " line out of a launchctl print. Absent when
/// the print has no such block, an empty one, or one that is not closed. Words of nested blocks do not count.
/// Time is linear in the text.
[[nodiscard]] std::optional<Definition> loaded(std::string_view fromPrint);

/// Reads "ProgramArguments" and "ExitTimeOut" out of a launchd property list, XML or binary. Absent when the
/// list is unreadable or its arguments are missing, empty or not all texts; a timeout that is no whole number
/// is only left out.
[[nodiscard]] std::optional<Definition> bundled(std::string_view plist);

/// Whether launchd must unregister and register the job to know the bundled definition. Looser than equality
/// on purpose: with one side unknown, or a timeout that only one side states, nothing is asked for.
[[nodiscard]] bool needsReseat(const std::optional<Definition>& loaded,
                               const std::optional<Definition>& bundled);

/// Whether the arguments of a launch no longer match the bundled ones; false when either is unknown. The exit
/// timeout plays no part.
[[nodiscard]] bool staleLaunch(const std::vector<std::string>& arguments,
                               const std::optional<Definition>& bundled);

/// Whether a build still has to be synchronised: it is known and is not the one last synchronised.
[[nodiscard]] bool syncAtLaunch(const std::optional<std::string>& build,
                                const std::optional<std::string>& lastSynced);

}  // namespace tamo::LaunchJob

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "platform/stage/stage_root.hpp"

/// Faults that a tool of the stage can be told to have, by the setting "tool-NAME". One line a fault: the
/// verb it is for, or "*" for any, then
///
///   hang [hard]          never ends by itself, and with "hard" minds no SIGTERM either
///   hold MS              leaves a child that keeps both outputs open for that many milliseconds, then does
///                        its work
///   fail STATUS          does nothing and exits with the status
///   slow MS              does its work after that many milliseconds
///   pause                does its work as soon as it is not told to pause any longer
///   flood BYTES          writes that many bytes to both outputs, then does its work
///   lie FILE [STATUS]    prints the bytes of a file of the stage instead of working, and exits with the
///                        status
///   die SIGNAL           ends itself by the signal, a number
///   cut BYTES            does its work, but no file that it writes can grow beyond that many bytes, as on a
///                        disk that is full
///
/// A line for the verb comes before a line for any. A line that is none of these is no fault.
namespace tamo::stage {

struct Hang {
  bool hard = false;
};
struct Hold {
  std::int32_t milliseconds = 0;
};
struct Fail {
  std::int32_t status = 0;
};
struct Slow {
  std::int32_t milliseconds = 0;
};
struct Pause {};
struct Flood {
  std::int32_t bytes = 0;
};
struct Lie {
  std::string file;
  std::int32_t status = 0;
};
struct Die {
  std::int32_t signal = 0;
};
struct Cut {
  std::int32_t bytes = 0;
};
using ToolFault = std::variant<Hang, Hold, Fail, Slow, Pause, Flood, Lie, Die, Cut>;

/// One fault without its verb: "slow 200". A file's name may hold spaces; a number at the end is the status.
[[nodiscard]] std::optional<ToolFault> toolFault(std::string_view text);

/// The fault that the lines of a setting order for a verb.
[[nodiscard]] std::optional<ToolFault> toolFaultFor(std::string_view lines, std::string_view verb);

/// The lines with the fault for `verb` set to `fault`, or taken out when that is absent.
[[nodiscard]] std::string withToolFault(std::string_view lines, std::string_view verb,
                                        std::optional<std::string_view> fault);

/// The verb of the tools that have none of their own: "administrator" when the administrator runs this
/// program, "user" otherwise.
[[nodiscard]] std::string actingUser();

/// Has the fault that is ordered for this tool and verb. Returns the status to exit with at once, or absent
/// when the tool is to do its work. A tool that hangs or pauses ends with its stage.
[[nodiscard]] std::optional<int> sufferFault(const StageRoot& root, const std::string& tool,
                                             const std::string& verb);

}  // namespace tamo::stage

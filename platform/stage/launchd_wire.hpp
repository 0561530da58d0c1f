#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/stage/stage_root.hpp"

/// How the programs and adapters of a stage talk to its launchd: one connection to the control room's
/// "launchd.sock" a question. The question is the number of its words in decimal and the words; the answer is the
/// status in decimal, the output and the error text. Each of these texts is closed by a zero byte.
///
///   print TARGET | kickstart [-k] TARGET | bootstrap DOMAIN PLIST | bootout TARGET      what launchctl asks
///   service-status PLIST-NAME                       status 0, the service status in the output
///   service-register BUNDLE PLIST-NAME              the running bundle as a stage path
///   service-unregister PLIST-NAME                   answered when the job is gone
///   open-login-items
///   approve                                         the user allows what waits for approval
///   administrator COMMAND                           runs a shell command as the administrator; answered at
///                                                   its end with its status and what it wrote
///   shutdown                                        ends every job, then launchd
///
/// A service error has the status 1 and the output "DOMAIN<TAB>CODE<TAB>DESCRIPTION".
namespace tamo::stage {

struct LaunchdAnswer {
  std::int32_t status = 0;
  std::string output{};
  std::string errors{};
};

/// Asks and blocks for the answer, without limit. Absent when launchd does not answer.
[[nodiscard]] std::optional<LaunchdAnswer> askLaunchd(const StageRoot& root,
                                                      const std::vector<std::string>& words);

/// The halves of the form: the asker's and launchd's own. What is not whole, or has another form, is absent; nothing
/// stands behind a whole one.
[[nodiscard]] std::string bytesOf(const std::vector<std::string>& words);
[[nodiscard]] std::optional<LaunchdAnswer> answerOf(std::string_view bytes);
[[nodiscard]] std::optional<std::vector<std::string>> wordsOf(std::string_view question);
[[nodiscard]] std::string bytesOf(const LaunchdAnswer& answer);

}  // namespace tamo::stage

#include "platform/stage/stage_agent_services.hpp"

#include <utility>

#include "platform/stage/work_elsewhere.hpp"
#include "values/text.hpp"

namespace tamo::stage {
namespace {

using platform::Error;

/// The stage's own: no Mac reports an error of this domain, so one in a log tells of the stage's launchd.
constexpr auto domain = "TamoStage";
/// What a Mac answers for an agent that it does not know.
constexpr std::int64_t notFound = 3;

class StageAgentService final : public platform::AgentService {
 public:
  StageAgentService(const StageRoot& root, platform::Threads& threads, platform::MainQueue& queue,
                    std::string bundle, std::string plistName)
      : root_(root),
        threads_(threads),
        queue_(queue),
        bundle_(std::move(bundle)),
        plistName_(std::move(plistName)) {}

  /// A Mac's answer is a number and has no place for an error, so a launchd that cannot be asked reads as an agent
  /// that is not known.
  [[nodiscard]] std::int64_t status() override {
    const auto answer = askLaunchd(root_, {"service-status", plistName_});
    if (!answer || answer->status != 0) return notFound;
    return values::decimalInt64(answer->output).value_or(notFound);
  }
  /// On the calling thread, as on a Mac: it is the one operation of service management that is synchronous and can
  /// fail.
  void registerAgent() override {
    const auto error = errorFrom(askLaunchd(root_, {"service-register", bundle_, plistName_}));
    if (error) throw Error(*error);
  }
  // On a thread of its own, because the answer may take as long as the job takes to end, and to try the
  // companion's way back to its main thread.
  void unregisterAgent(Completion completion) override {
    runElsewhere(threads_, queue_, [root = root_, name = plistName_, completion = std::move(completion)] {
      completion(errorFrom(askLaunchd(root, {"service-unregister", name})));
    });
  }

 private:
  const StageRoot& root_;
  platform::Threads& threads_;
  platform::MainQueue& queue_;
  std::string bundle_;
  std::string plistName_;
};

}  // namespace

/// What stands behind the second tab is the description, whatever it holds.
std::optional<Error> errorFrom(const std::optional<LaunchdAnswer>& answer) {
  if (!answer) return Error(domain, 1, "The stage's launchd does not answer.");
  if (answer->status == 0) return std::nullopt;
  const std::string& text = answer->output;
  const auto first = text.find('\t');
  const auto second = text.find('\t', first == std::string::npos ? first : first + 1);
  if (second == std::string::npos) return Error(domain, 2, "The stage's launchd gave no error.");
  const auto code = values::decimalInt64(std::string_view(text).substr(first + 1, second - first - 1));
  if (!code) return Error(domain, 2, "The stage's launchd gave an error without a code.");
  return Error(text.substr(0, first), *code, text.substr(second + 1));
}

/// The list is looked for in the bundle that runs, not in the installed one: so a copy elsewhere registers its own.
std::unique_ptr<platform::AgentService> StageAgentServices::agent(const std::string& plistName) {
  return std::make_unique<StageAgentService>(root_, threads_, queue_, bundles_.mainBundlePath(), plistName);
}

void StageAgentServices::openSystemSettingsLoginItems() {
  // There is no result to report a failure in.
  static_cast<void>(askLaunchd(root_, {"open-login-items"}));
}

}  // namespace tamo::stage

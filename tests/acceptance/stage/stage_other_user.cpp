#include "acceptance/stage/stage_other_user.hpp"

#include <filesystem>

#include "acceptance/stage/bare_stage.hpp"
#include "stage/control/stage_layout.hpp"

namespace tamo::acceptance {
namespace {

namespace fs = std::filesystem;

constexpr auto home = "/Users/other";

void becomeOther(const stage::StageRoot& root) {
  root.set("user-id", "502");
  root.set("home", home);
  fs::create_directories(root.host(std::string(home) + "/Library/Application Support"));
}

/// The same files under second names: nothing is written on a stage where another user is logged in.
void shareApplications(const stage::StageRoot& from, const stage::StageRoot& to) {
  constexpr auto applications = "/Applications";
  constexpr auto linked = fs::copy_options::recursive | fs::copy_options::create_hard_links;
  fs::copy(from.host(applications), to.host(applications), linked);
}

}  // namespace

StageOtherUser::~StageOtherUser() {
  if (second_) stage::strikeStage(second_->directory());
}

const stage::StageRoot& StageOtherUser::secondStage() {
  if (!second_) {
    second_ = bareStage(programs_);
    becomeOther(*second_);
    shareApplications(first_, *second_);
  }
  return *second_;
}

pid_t StageOtherUser::start(const std::string& action) {
  session_.emplace(joined_ ? first_ : secondStage(), programs_);
  session_->companion = session_->companions.start({.arguments = {"--core-action", action}});
  return session_->companion;
}

bool StageOtherUser::ended() {
  return session_->companions.ended(session_->companion);
}

std::vector<Line> StageOtherUser::lines() {
  return session_->evidence.lines(session_->since, 1);
}

}  // namespace tamo::acceptance

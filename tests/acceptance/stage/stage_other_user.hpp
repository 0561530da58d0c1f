#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "acceptance/place.hpp"
#include "acceptance/stage/stage_companions.hpp"
#include "acceptance/stage/stage_copies.hpp"
#include "acceptance/stage/stage_evidence.hpp"
#include "platform/stage/stage_root.hpp"

namespace tamo::acceptance {

/// A stage has one user. The other one's session is a stage of its own beside it, with a launchd, a home and a temporary
/// directory for the user 502; what is installed are the first stage's own files, under second names.
class StageOtherUser final : public OtherUser {
 public:
  /// `first` is the stage of the user beside whom this one is logged in, and must outlive it.
  StageOtherUser(const stage::StageRoot& first, const std::string& programs)
      : first_(first), programs_(programs) {}
  ~StageOtherUser() override;
  StageOtherUser(const StageOtherUser&) = delete;
  StageOtherUser& operator=(const StageOtherUser&) = delete;

  /// A lie: there is one session, and the other user is in it.
  void joinSession() { joined_ = true; }

  pid_t start(const std::string& action) override;
  [[nodiscard]] bool ended() override;
  [[nodiscard]] std::vector<Line> lines() override;

 private:
  struct Session {
    Session(const stage::StageRoot& stage, const std::string& programs)
        : root(stage), copies(root, programs) {}
    const stage::StageRoot root;
    StageCopies copies;
    StageCompanions companions{root, copies};
    StageEvidence evidence{root, companions};
    std::int64_t since = evidence.now();
    pid_t companion = 0;
  };

  const stage::StageRoot& secondStage();

  const stage::StageRoot& first_;
  const std::string programs_;
  bool joined_ = false;
  std::optional<stage::StageRoot> second_;
  std::optional<Session> session_;
};

}  // namespace tamo::acceptance

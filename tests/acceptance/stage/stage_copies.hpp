#pragma once

#include "acceptance/place.hpp"
#include "platform/stage/stage_root.hpp"
#include "stage/control/app_copy.hpp"

namespace tamo::acceptance {

/// The copies of a stage.
class StageCopies final : public Copies {
 public:
  /// The root must outlive it.
  StageCopies(const stage::StageRoot& root, std::string programs)
      : root_(root), programs_(std::move(programs)) {}

  /// Which companion later copies hold.
  void hold(stage::Companion companion) { companion_ = companion; }

  void place(const Sample& sample) override;
  void remove(Copy copy) override;
  void define(Copy copy, const Definition& definition) override;
  void changeExecutable(Copy copy) override;
  [[nodiscard]] std::string path(Copy copy) const override;
  [[nodiscard]] std::string folder(Copy copy) const override;
  [[nodiscard]] int marked(Copy copy) const override;
  [[nodiscard]] Signature signature(Copy copy) const override;

 private:
  const stage::StageRoot& root_;
  std::string programs_;
  stage::Companion companion_ = stage::Companion::Shipped;
};

}  // namespace tamo::acceptance

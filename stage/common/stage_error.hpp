#pragma once

#include <stdexcept>

namespace tamo::stage {

/// What keeps a stage from being laid, changed or struck: one line for a person.
class StageError final : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace tamo::stage

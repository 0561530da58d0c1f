#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "simulation/companion.hpp"

/// What must be true of a Mac on which a companion was killed.
namespace tamo::faults {

using simulation::Companion;
using simulation::World;

/// Of the files: nothing is left but what may be, and what is written is whole.
void judgeFiles(const World& world, std::vector<std::string>& wrong);
/// Of the lock: a companion that comes after the dead one and meets nobody else has it at the first try.
void judgeLockFree(const Companion& companion, std::vector<std::string>& wrong);

/// The registration before a companion is launched.
struct Before {
  std::int64_t status = 0;
  bool loaded = false;
  bool approvalWithheld = false;
};

/// Of a clean run when all is quiet: it comes out as its action has it, given what was before.
void judgeCleanRun(const Companion& companion, const Before& before, std::vector<std::string>& wrong);

}  // namespace tamo::faults

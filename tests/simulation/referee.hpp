#pragma once

#include "simulation/course_rules.hpp"
#include "simulation/file_rules.hpp"
#include "simulation/lock_rules.hpp"
#include "simulation/move_rules.hpp"
#include "simulation/report_rules.hpp"
#include "simulation/stop_rules.hpp"
#include "simulation/tool_rules.hpp"

/// Judges every step of a companion by what it did, what it was told, and how the world is. It knows the
/// rules, not the code that follows them.
namespace tamo::simulation::Referee {}

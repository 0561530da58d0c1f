#pragma once

#include <expected>
#include <string>

#include "platform/stage/stage_root.hpp"
#include "stage/launchd/job_definition.hpp"

/// Reads a job's property list from the stage.
namespace tamo::stage {

enum class JobFileFault { Missing, Invalid };

/// The definition at the stage path `path`, read afresh. Invalid is a list that cannot be read as one, as
/// well as one that defines no job.
[[nodiscard]] std::expected<JobDefinition, JobFileFault> jobDefinitionAt(const StageRoot& root,
                                                                         const std::string& path);

}  // namespace tamo::stage

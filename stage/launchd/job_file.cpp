#include "stage/launchd/job_file.hpp"

#include "platform/posix/posix_files.hpp"

namespace tamo::stage {

/// Missing and unusable are two errors of service management.
std::expected<JobDefinition, JobFileFault> jobDefinitionAt(const StageRoot& root, const std::string& path) {
  const auto file = root.existing(path);
  const auto bytes = file ? platform::posix::readWhole(*file) : std::nullopt;
  if (!bytes) return std::unexpected(JobFileFault::Missing);
  const auto list = values::readPropertyList(*bytes);
  auto definition = list ? jobDefinition(*list, path) : std::nullopt;
  if (!definition) return std::unexpected(JobFileFault::Invalid);
  return *std::move(definition);
}

}  // namespace tamo::stage

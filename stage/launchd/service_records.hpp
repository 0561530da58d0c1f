#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/stage/stage_root.hpp"

/// What service management remembers of each launch agent: one small file a property list name in the control
/// room's "services". It outlives launchd, as a login outlives none of a Mac's registrations.
namespace tamo::stage {

struct ServiceRecord {
  static constexpr std::int32_t kNotRegistered = 0;
  static constexpr std::int32_t kEnabled = 1;
  static constexpr std::int32_t kRequiresApproval = 2;

  std::int32_t status = kNotRegistered;
  std::string label{};
  /// The bundle that registered the agent, as a stage path.
  std::string bundle{};
};

/// Absent for an agent that was never registered, and for a name that no property list in a bundle can have.
[[nodiscard]] std::optional<ServiceRecord> readRecord(const StageRoot& root, const std::string& plistName);

/// False when it could not be written.
[[nodiscard]] bool writeRecord(const StageRoot& root, const std::string& plistName,
                               const ServiceRecord& record);

/// The property list names with a record, sorted.
[[nodiscard]] std::vector<std::string> recordedServices(const StageRoot& root);

}  // namespace tamo::stage

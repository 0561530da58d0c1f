#include "stage/launchd/service_records.hpp"

#include <algorithm>
#include <filesystem>
#include <string_view>

#include "platform/posix/posix_files.hpp"
#include "values/paths.hpp"
#include "values/text.hpp"

namespace tamo::stage {
namespace {

/// The name becomes that of a file, so one that leads to another folder is refused.
std::optional<std::string> fileOf(const StageRoot& root, const std::string& plistName) {
  const bool oneName = plistName.find('/') == std::string::npos && !plistName.starts_with(".");
  if (plistName.empty() || !oneName) return std::nullopt;
  return values::joinedPath(root.control("services"), plistName);
}

}  // namespace

std::optional<ServiceRecord> readRecord(const StageRoot& root, const std::string& plistName) {
  const auto file = fileOf(root, plistName);
  const auto bytes = file ? platform::posix::readWhole(*file) : std::nullopt;
  if (!bytes) return std::nullopt;
  std::optional<std::string_view> rest = *bytes;
  const auto status = values::decimalInt32(values::takeLine(rest));
  if (!status || !rest) return std::nullopt;
  ServiceRecord record{.status = *status, .label = std::string(values::takeLine(rest)), .bundle = {}};
  if (rest) record.bundle = values::takeLine(rest);
  return record;
}

/// A file for each service, so that what is registered outlives launchd, as it outlives a login on a Mac.
bool writeRecord(const StageRoot& root, const std::string& plistName, const ServiceRecord& record) {
  const auto file = fileOf(root, plistName);
  const auto text = std::to_string(record.status) + "\n" + record.label + "\n" + record.bundle + "\n";
  return file && platform::posix::createDirectories(root.control("services")) &&
         platform::posix::writeAtomically(*file, text);
}

std::vector<std::string> recordedServices(const StageRoot& root) {
  std::vector<std::string> names;
  std::error_code none;
  for (const auto& item : std::filesystem::directory_iterator(root.control("services"), none)) {
    const auto name = item.path().filename().string();
    // A record that is being replaced has a neighbour with a dot in front for a moment.
    if (!name.starts_with(".")) names.push_back(name);
  }
  std::ranges::sort(names);
  return names;
}

}  // namespace tamo::stage

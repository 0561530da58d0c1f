#include "app/receipt.hpp"

#include <array>
#include <cstdio>

#include "app/data_directory.hpp"
#include "values/json_text.hpp"
#include "values/paths.hpp"
#include "values/text.hpp"

namespace tamo {
namespace {

std::string json(const OutcomeValue& value) {
  if (const auto* truth = std::get_if<bool>(&value)) return *truth ? "true" : "false";
  if (const auto* number = std::get_if<std::int64_t>(&value)) return std::to_string(*number);
  return values::jsonString(std::get<std::string>(value));
}

}  // namespace

/// The map gives the keys in byte order, as the Mac's serialiser sorts them.
std::string receiptJson(const OutcomeRecord& record) {
  std::string members;
  for (const auto& [key, value] : record) {
    if (!members.empty()) members += ",\n";
    members += "  " + values::jsonString(key) + " : " + json(value);
  }
  return "{\n" + members + "\n}";
}

/// With printf, because the library of the oldest Mac cannot format a date.
std::string internetDateTime(std::chrono::system_clock::time_point time) {
  const auto day = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss hours(std::chrono::floor<std::chrono::seconds>(time - day));
  std::array<char, 64> text{};
  const int size =
      std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(date.year()),
                    static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                    static_cast<int>(hours.hours().count()), static_cast<int>(hours.minutes().count()),
                    static_cast<int>(hours.seconds().count()));
  return {text.data(), static_cast<std::size_t>(size)};
}

/// The file is named by the process, so two companions never write into one.
void ReceiptWriter::write(OutcomeRecord& record) const {
  record["bundle"] = needs_.bundles.mainBundlePath();
  record["pid"] = std::int64_t{needs_.kernelProcesses.ownPid()};
  record["timestamp"] = internetDateTime(needs_.clock.wallNow());
  const auto directory =
      values::joinedPath(passwordHome(needs_.user), "Library/Application Support/TamoPKG1/M2");
  const auto name = std::to_string(needs_.kernelProcesses.ownPid()) + "-core.json";
  const auto json = receiptJson(record);
  const bool written = needs_.files.createDirectories(directory) && values::isUtf8(json) &&
                       needs_.files.writeAtomically(values::joinedPath(directory, name), json);
  if (!written) needs_.log.write({platform::LogFormat::receiptFailed, {}});
}

}  // namespace tamo

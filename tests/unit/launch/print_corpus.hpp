#pragma once

#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace tamo {

namespace recorded {

inline std::string wholeFile(const std::string& name) {
  std::ifstream in(std::string(TAMO_SOURCE_DIR "/tests/data/launchctl/") + name, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

}  // namespace recorded

/// One print of launchctl as a real system gave it, with what a careful reader finds in it.
struct RecordedPrint {
  /// "001" and so on.
  std::string name;
  /// The job's own pid in decimal, or "-".
  std::string pid;
  /// A JSON list of texts, with ", " between them, or "-" for none.
  std::string arguments;
  /// In decimal, or "-".
  std::string exitTimeout;
  bool anyPidLine = false;

  /// Read by the test that asks: every test of this program knows of all prints, and reads one.
  [[nodiscard]] std::string text() const { return recorded::wholeFile(name + ".txt"); }
};

inline void PrintTo(const RecordedPrint& print, std::ostream* out) {
  *out << print.name;
}

namespace recorded {

/// A field of the table without its quotes, if it has any.
inline std::string unquoted(const std::string& field) {
  if (!field.starts_with('"')) return field;
  std::string plain;
  for (std::size_t index = 1; index + 1 < field.size(); ++index) {
    plain += field[index];
    if (field[index] == '"') ++index;
  }
  return plain;
}

inline std::vector<std::string> fields(const std::string& row) {
  std::vector<std::string> result;
  std::istringstream in(row);
  for (std::string field; std::getline(in, field, '\t');)
    result.push_back(unquoted(field));
  return result;
}

}  // namespace recorded

/// Every print that the table lists.
inline std::vector<RecordedPrint> recordedPrints() {
  std::istringstream table(recorded::wholeFile("index.tsv"));
  std::vector<RecordedPrint> prints;
  std::string row;
  std::getline(table, row);
  while (std::getline(table, row)) {
    const auto field = recorded::fields(row);
    prints.push_back({.name = field.at(0).substr(0, field.at(0).find('.')),
                      .pid = field.at(3),
                      .arguments = field.at(4),
                      .exitTimeout = field.at(5),
                      .anyPidLine = field.at(6) == "yes"});
  }
  return prints;
}

inline std::string nameOfRecordedPrint(const ::testing::TestParamInfo<RecordedPrint>& info) {
  return "Print" + info.param.name;
}

}  // namespace tamo

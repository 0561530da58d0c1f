#include "stage/tools/ditto.hpp"

#include <cerrno>
#include <cstring>
#include <iostream>
#include <unistd.h>

#include "stage/common/tool_fault.hpp"

namespace tamo::stage {
namespace {

constexpr int kFailed = 1;

int complain(const std::string& path, int error) {
  std::cerr << "ditto: " << path << ": " << std::strerror(error) << "\n";
  return kFailed;
}

/// An item that is there is written into, through a link as well.
std::optional<std::string> destination(const StageRoot& root, const std::string& path) {
  const auto item = root.existing(path);
  return item ? item : root.entry(path);
}

int become(std::vector<std::string> words) {
  std::vector<char*> pointers;
  for (auto& word : words)
    pointers.push_back(word.data());
  pointers.push_back(nullptr);
  ::execv(words.front().c_str(), pointers.data());
  return complain(words.front(), errno);
}

}  // namespace

std::vector<std::string> copyingCommand(const std::string& from, const std::string& to) {
  return {"/bin/cp", "--archive", "--no-target-directory", "--", from, to};
}

int runDitto(const StageRoot& root, const std::vector<std::string>& arguments) {
  if (const auto status = sufferFault(root, "ditto", actingUser())) return *status;
  if (arguments.size() != 2) {
    std::cerr << "Usage: ditto <source> <destination>\n";
    return kFailed;
  }
  const auto from = root.existing(arguments[0]);
  if (!from) return complain(arguments[0], ENOENT);
  const auto to = destination(root, arguments[1]);
  if (!to) return complain(arguments[1], ENOENT);
  return become(copyingCommand(*from, *to));
}

}  // namespace tamo::stage

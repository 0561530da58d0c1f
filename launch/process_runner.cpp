#include "launch/process_runner.hpp"

#include <cstddef>

#include "values/text.hpp"

namespace tamo {
namespace {

constexpr std::size_t errorCaptureLimit = 4096;
constexpr std::int32_t notStarted = -1;

}  // namespace

std::int32_t ProcessRunner::run(const std::string& path, const std::vector<std::string>& arguments,
                                std::string& errors) {
  const auto tool = processes_.start({.path = path, .arguments = arguments, .capturesErrors = true});
  if (!tool) return notStarted;
  // Reading comes before waiting: a tool that fills the pipe would otherwise never exit.
  errors = values::repairedUtf8(tool->readErrors(errorCaptureLimit));
  return tool->wait();
}

}  // namespace tamo

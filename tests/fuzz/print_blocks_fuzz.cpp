#include "exhaustion/print_agreement.hpp"
#include "exhaustion/print_lines.hpp"
#include "fuzz/insist.hpp"
#include "fuzz/target.hpp"
#include "hardstop/process_snapshot.hpp"
#include "launch/launch_job.hpp"
#include "launch/print_reading.hpp"

/// What is left out of a launchctl print before the readers that count blocks see it, beside its description and with
/// these readers behind it, on any bytes.
namespace tamo::fuzz {
namespace {

/// The part of the text that is one of its lines, with the line feed behind it if there is one.
std::string_view wholeLine(std::string_view bytes, std::string_view& rest) {
  const auto end = rest.find('\n');
  const auto line = rest.substr(0, end == std::string_view::npos ? end : end + 1);
  rest = bytes.substr(static_cast<std::size_t>(line.data() - bytes.data()) + line.size());
  return line;
}

}  // namespace

void readInput(std::string_view bytes) {
  const auto lines = exhaustion::linesOf(bytes);
  const auto places = exhaustion::describedKept(lines);
  std::string described;
  std::vector<exhaustion::Line> remaining;
  auto rest = bytes;
  auto next = places.begin();
  for (std::size_t place = 0; place < lines.size(); ++place) {
    const auto line = wholeLine(bytes, rest);
    if (next == places.end() || *next != place) continue;
    described += line;
    remaining.push_back(lines[place]);
    ++next;
  }
  const auto kept = withoutQuotedBlocks(std::string(bytes));
  insist(kept == described, "what remains is what is described");
  insist(withoutQuotedBlocks(kept) == kept, "what remains has no quoted block");

  // A text from which its last line went ends in a line feed and has an empty last line in its place.
  if (remaining.size() < exhaustion::linesOf(kept).size()) remaining.push_back({});
  const auto pid = HardStop::pid(kept);
  insist(!pid || *pid >= 2, "a pid is never less than 2");
  insist(pid == exhaustion::describedPid(remaining), "the pid stands in the job's own block of what remains");
  insist(exhaustion::agree(LaunchJob::loaded(kept), exhaustion::describedDefinition(remaining)),
         "the definition is the one of what remains");
}

}  // namespace tamo::fuzz

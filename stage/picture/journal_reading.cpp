#include "stage/picture/journal_reading.hpp"

#include <algorithm>
#include <optional>

#include "platform/stage/journal.hpp"
#include "stage/common/words.hpp"
#include "values/text.hpp"

namespace tamo::stage {
namespace {

/// What a word of the journal has behind it: at least so many texts, with numbers at these places.
struct Shape {
  std::string_view word;
  std::size_t texts = 0;
  std::vector<std::size_t> numbers{};
};

const std::vector<Shape>& shapes() {
  static const std::vector<Shape> all = {{"companion"},
                                         {"url"},
                                         {"waits", 1, {0}},
                                         {"goes-on"},
                                         {"lock", 1},
                                         {"unlocks"},
                                         {"starts", 2, {0}},
                                         {"tool-ended", 2, {0, 1}},
                                         {"looks", 2, {0}},
                                         {"signals", 3, {0, 2}},
                                         {"watches"},
                                         {"watched"},
                                         {"log", 2},
                                         {"writes", 1},
                                         {"trashes", 1},
                                         {"opens", 1},
                                         {"opened", 1},
                                         {"terminates"},
                                         {"launchd"},
                                         {"asked"},
                                         {"job", 2, {0}},
                                         {"errand", 1, {0}},
                                         {"reaped", 3, {0, 2}},
                                         {"core", 1, {0}},
                                         {"helper", 1, {0}},
                                         {"says", 1},
                                         {"tool", 1},
                                         {"leaves", 1, {0}},
                                         {"prompt", 1},
                                         {"answer", 1},
                                         {"app", 1},
                                         {"told", 2, {0, 1}}};
  return all;
}

/// Three decades; beyond that it is no clock, and differences stay far from overflowing.
constexpr std::int64_t latest = 1'000'000'000'000'000;
/// How much later than its time a line may reach the file.
constexpr std::int64_t heldUp = 1'000'000;

/// A log line may carry any bytes, while both drawings have to be well-formed text.
std::vector<std::string> partsOf(std::string_view line) {
  std::vector<std::string> found;
  for (const auto part : split(line, '\t'))
    found.push_back(values::repairedUtf8(textFromJournal(part)));
  return found;
}

/// Asked once and here, so that whoever draws can take the texts of a known word for granted.
bool hasItsShape(const Moment& moment) {
  const auto shape = std::ranges::find(shapes(), moment.word, &Shape::word);
  if (shape == shapes().end() || moment.texts.size() < shape->texts) return false;
  return std::ranges::all_of(shape->numbers, [&moment](std::size_t place) {
    return values::decimalInt32(moment.texts[place]).has_value();
  });
}

std::optional<Moment> momentIn(std::string_view line) {
  auto parts = partsOf(line);
  if (parts.size() < 3) return std::nullopt;
  const auto at = values::decimalInt64(parts[0]);
  const auto pid = values::decimalInt32(parts[1]);
  if (!at || *at < 0 || *at > latest || !pid || *pid <= 0) return std::nullopt;
  Moment moment{.at = *at, .pid = *pid, .word = parts[2]};
  moment.texts.assign(parts.begin() + 3, parts.end());
  return hasItsShape(moment) ? std::optional(std::move(moment)) : std::nullopt;
}

/// Each moves before those that are later and stays behind those of its own time. Nearly all stand where they belong.
void sortByTime(std::vector<Moment>& moments) {
  for (auto next = moments.begin(); next != moments.end(); ++next) {
    const auto place = std::upper_bound(moments.begin(), next, next->at,
                                        [](std::int64_t at, const Moment& other) { return at < other.at; });
    std::rotate(place, next, next + 1);
  }
}

/// Puts the moments behind a clock that went back behind those before it.
void straighten(JournalReading& reading) {
  std::int64_t ahead = 0;
  std::int64_t last = 0;
  for (auto& moment : reading.moments) {
    moment.at += ahead;
    if (moment.at + heldUp < last) {
      ++reading.setBacks;
      ahead += last - moment.at;
      moment.at = last;
    }
    last = std::max(last, moment.at);
  }
  sortByTime(reading.moments);
}

}  // namespace

JournalReading readJournal(std::string_view bytes) {
  JournalReading reading;
  // The last line may be one that is being written just now, or all that was written of it before the machine stopped.
  reading.cutOff = !bytes.empty() && !bytes.ends_with('\n');
  while (!bytes.empty()) {
    const auto end = bytes.find('\n');
    if (end == std::string_view::npos) break;
    auto moment = momentIn(bytes.substr(0, end));
    reading.unreadable += moment ? 0U : 1U;
    if (moment) reading.moments.push_back(*std::move(moment));
    bytes.remove_prefix(end + 1);
  }
  straighten(reading);
  return reading;
}

std::int32_t numberIn(const Moment& moment, std::size_t place) {
  return place < moment.texts.size() ? values::decimalInt32(moment.texts[place]).value_or(0) : 0;
}

std::string textsFrom(const Moment& moment, std::size_t place) {
  std::string joined;
  for (; place < moment.texts.size(); ++place)
    joined += (joined.empty() ? "" : " ") + moment.texts[place];
  return joined;
}

}  // namespace tamo::stage

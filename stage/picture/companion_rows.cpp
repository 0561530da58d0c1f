#include "stage/picture/companion_rows.hpp"

#include <algorithm>
#include <iterator>

namespace tamo::stage {
namespace {

/// How long a hard stop lets its process exit by itself. The product's own rule, told here once more, because
/// nothing on the stage knows the product.
constexpr std::int64_t grace = 2'000'000;
/// Waits that follow each other this closely are one to the eye.
constexpr std::int64_t together = 100'000;

/// From its begin on, because the pid may have been another one's before.
std::vector<Moment> momentsOf(const Scene& scene, const Life& life) {
  std::vector<Moment> own;
  std::ranges::copy_if(scene.moments, std::back_inserter(own),
                       [&life](const Moment& one) { return one.pid == life.pid && one.at >= life.from; });
  return own;
}

std::int64_t endOf(const Scene& scene, const Life& life) {
  return life.until.value_or(scene.until);
}

/// The first moment from a place on that is so; the life's end when there is none.
template <class Test>
std::int64_t firstFrom(std::vector<Moment>::const_iterator place, const std::vector<Moment>& own,
                       std::int64_t end, Test test) {
  const auto found = std::find_if(place, own.end(), test);
  return found == own.end() ? end : found->at;
}

auto isWord(std::string_view word) {
  return [word](const Moment& moment) { return moment.word == word; };
}

/// A tool is done with when its end is seen, or when it is given up.
std::int64_t doneWith(std::vector<Moment>::const_iterator start, const std::vector<Moment>& own,
                      std::int64_t end) {
  const auto tool = numberIn(*start, 0);
  return firstFrom(start, own, end, [tool](const Moment& later) {
    return (later.word == "tool-ended" && numberIn(later, 0) == tool) ||
           (later.word == "signals" && numberIn(later, 2) == tool);
  });
}

/// The tool's verb, or its name.
std::string stepName(const Moment& start) {
  const auto name = toolName(start, 1);
  return name.substr(name.find(' ') + 1);
}

/// The first wait is the intake of requests; later ones are the move's, one look after the other.
void addWait(Row& row, std::int64_t from, std::int64_t until) {
  constexpr auto quitting = "until Tamo quits";
  const bool isFirst =
      std::ranges::none_of(row.spans, [](const Span& span) { return span.label == "intake"; });
  const bool follows = !row.spans.empty() && row.spans.back().label == quitting;
  if (follows && from - row.spans.back().until < together) {
    row.spans.back().until = until;
    return;
  }
  row.spans.push_back({.from = isFirst ? 0 : from,
                       .until = until,
                       .kind = SpanKind::Wait,
                       .label = isFirst ? "intake" : quitting});
}

/// Who gives a tool up has waited for it as long as the rule says.
bool isGivenUp(std::vector<Moment>::const_iterator start, const std::vector<Moment>& own) {
  return std::any_of(start, own.end(), [&start](const Moment& later) {
    return later.word == "signals" && numberIn(later, 2) == numberIn(*start, 0);
  });
}

/// Its starter notes a tool after the start, when the tool may have noted itself.
std::int64_t startOf(const Moment& start, const std::vector<Life>& lives) {
  const auto tool = lifeOf(numberIn(start, 0), start.at, lives);
  return tool ? std::max<std::int64_t>(0, lives[*tool].from) : start.at;
}

void addTool(Row& row, const Scene& scene, const std::vector<Moment>& own,
             std::vector<Moment>::const_iterator start, std::int64_t end) {
  const bool givenUp = isGivenUp(start, own);
  row.spans.push_back({.from = startOf(*start, scene.lives),
                       .until = doneWith(start, own, end),
                       .kind = givenUp ? SpanKind::Wait : SpanKind::Step,
                       .label = stepName(*start) + (givenUp ? ", given up" : "")});
}

void addSteps(Row& row, const Scene& scene, const std::vector<Moment>& own, std::int64_t end) {
  for (auto moment = own.begin(); moment != own.end(); ++moment) {
    if (moment->word == "waits") addWait(row, moment->at, firstFrom(moment, own, end, isWord("goes-on")));
    if (moment->word == "starts") addTool(row, scene, own, moment, end);
    if (moment->word == "opens")
      row.spans.push_back({.from = moment->at,
                           .until = firstFrom(moment, own, end, isWord("opened")),
                           .kind = SpanKind::Step,
                           .label = "opens Tamo"});
  }
}

bool endsWith(const Moment& moment, std::string_view ending) {
  return moment.texts[0].ends_with(ending);
}

/// By the forms of the product's lines and names, because the journal knows what was written and not what that means.
std::string markName(const Moment& moment) {
  if (moment.word == "log" && moment.texts[1].starts_with("hardstop ")) return "note";
  if (moment.word == "writes" && endsWith(moment, "-core.json")) return "receipt";
  if (moment.word == "writes" && endsWith(moment, "/move-to-applications.json")) return "result";
  if (moment.word == "trashes") return "Trash";
  return "";
}

Row stepsRow(const Scene& scene, const std::vector<Moment>& own) {
  const auto& self = scene.self();
  Row row{.kind = RowKind::Steps, .name = "companion " + std::to_string(self.pid)};
  addSteps(row, scene, own, endOf(scene, self));
  for (const auto& moment : own)
    if (const auto name = markName(moment); !name.empty())
      row.marks.push_back({.at = moment.at, .label = name});
  const bool killed = self.ending.starts_with("signal");
  if (self.until && !self.lost)
    row.marks.push_back({.at = *self.until, .kind = killed ? MarkKind::Killed : MarkKind::End});
  row.spans.push_back({.from = 0, .until = endOf(scene, self), .goesOn = !self.until, .lost = self.lost});
  return row;
}

/// The spans of the lock, and of the wait for it.
std::vector<Span> lockSpans(const Scene& scene, const std::vector<Moment>& own, const Life& life) {
  std::vector<Span> spans;
  const auto end = endOf(scene, life);
  // The lock is tried again and again; all busy tries up to another word are one wait.
  const auto isNotBusy = [](const Moment& one) { return one.word != "lock" || one.texts[0] != "busy"; };
  for (auto moment = own.begin(); moment != own.end(); ++moment) {
    if (moment->word != "lock") continue;
    if (moment->texts[0] == "gained") {
      const auto free = firstFrom(moment, own, end, isWord("unlocks"));
      spans.push_back({.from = std::max<std::int64_t>(0, moment->at),
                       .until = free,
                       .kind = SpanKind::Lock,
                       .label = "job lock",
                       .began = moment->at < 0,
                       .goesOn = !life.until && free == end});
    } else if (spans.empty() || spans.back().until <= moment->at) {
      // Only the first busy try begins a wait; those that follow lie within it.
      spans.push_back({.from = std::max<std::int64_t>(0, moment->at),
                       .until = firstFrom(moment, own, end, isNotBusy),
                       .kind = SpanKind::Wait,
                       .label = "waits for the lock"});
    }
  }
  return spans;
}

/// The watch waits for the process to exit by itself; then it kills and waits until it is gone, or spares and waits.
void addWatch(Row& row, const std::vector<Moment>& own, std::int64_t from, std::int64_t until) {
  std::int64_t decision = until;
  bool kills = false;
  for (const auto& moment : own)
    if (moment.word == "signals" && numberIn(moment, 0) == 9 && moment.at >= from && moment.at <= until) {
      decision = moment.at;
      kills = true;
    }
  // The journal has no word for sparing. A watch that goes on beyond the grace without a kill is one.
  const bool spares = !kills && until - from > grace + together;
  if (spares) decision = from + grace;
  row.spans.push_back(
      {.from = from, .until = decision, .kind = SpanKind::Wait, .label = "grace, 2 s at most"});
  if (kills)
    row.spans.push_back({.from = decision, .until = until, .kind = SpanKind::Wait, .label = "until gone"});
  if (spares)
    row.spans.push_back(
        {.from = decision, .until = until, .kind = SpanKind::Wait, .label = "spared, 20 s at most"});
}

Row watchRow(const Scene& scene, const std::vector<Moment>& own) {
  Row row{.kind = RowKind::Watch, .name = "its watch"};
  for (auto moment = own.begin(); moment != own.end(); ++moment) {
    if (moment->word != "watches") continue;
    const auto until = firstFrom(moment, own, endOf(scene, scene.self()), [](const Moment& one) {
      return one.word == "watched" || (one.word == "log" && one.texts[1].starts_with("hardstop "));
    });
    addWatch(row, own, moment->at, until);
    for (auto look = moment; look != own.end() && look->at <= until; ++look)
      // A look at itself only tells the companion when it began, and says nothing of who is watched.
      if (look->word == "looks" && numberIn(*look, 0) != scene.self().pid)
        row.marks.push_back(
            {.at = look->at, .kind = look->texts[1] == "alive" ? MarkKind::Alive : MarkKind::Gone});
  }
  return row;
}

Row logRow(const std::vector<Moment>& own) {
  Row row{.kind = RowKind::Log, .name = "its log"};
  for (const auto& moment : own)
    if (moment.word == "log")
      row.marks.push_back({.at = moment.at, .kind = MarkKind::Log, .label = logLetter(row.marks.size())});
  return row;
}

}  // namespace

std::vector<Row> companionRows(const Scene& scene) {
  const auto own = momentsOf(scene, scene.self());
  std::vector<Row> rows = {stepsRow(scene, own)};
  const Row lock{.kind = RowKind::Lock, .name = "its job lock", .spans = lockSpans(scene, own, scene.self())};
  // What there was none of has no row: a picture of a status would be mostly empty ones.
  for (const auto& row : {lock, watchRow(scene, own), logRow(own)})
    if (!row.spans.empty() || !row.marks.empty()) rows.push_back(row);
  return rows;
}

Row otherCompanion(const Scene& scene, const Life& life) {
  const auto from = std::max<std::int64_t>(0, life.from);
  Row row{.kind = RowKind::Companion,
          .name = "companion " + std::to_string(life.pid),
          .spans = lockSpans(scene, momentsOf(scene, life), life)};
  row.spans.push_back({.from = from,
                       .until = endOf(scene, life),
                       .began = life.from < 0,
                       .goesOn = !life.until,
                       .lost = life.lost});
  if (life.until && !life.lost) row.marks.push_back({.at = *life.until, .kind = MarkKind::End});
  return row;
}

std::string logLetter(std::size_t number) {
  if (number < 26) return std::string(1, static_cast<char>('a' + number));
  return std::to_string(number + 1);
}

}  // namespace tamo::stage

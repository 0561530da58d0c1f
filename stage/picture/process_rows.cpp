#include "stage/picture/process_rows.hpp"

#include <algorithm>
#include <csignal>
#include <set>

#include "stage/picture/companion_rows.hpp"
#include "values/text.hpp"

namespace tamo::stage {
namespace {

/// Who lived before is drawn from the picture's edge on.
Span spanOf(const Scene& scene, const Life& life) {
  return {.from = std::max<std::int64_t>(0, life.from),
          .until = life.until.value_or(scene.until),
          .began = life.from < 0,
          .goesOn = !life.until,
          .lost = life.lost};
}

/// What was lost sight of has ended at some moment, but nobody noted which, so no end is drawn.
void addEnd(Row& row, const Life& life) {
  if (!life.until || life.lost) return;
  const bool killed = life.ending.starts_with("signal ");
  const auto signal = killed ? values::decimalInt32(life.ending.substr(7)) : std::nullopt;
  const auto label = signal ? "by " + signalName(*signal) : life.ending;
  row.marks.push_back({.at = *life.until, .kind = killed ? MarkKind::Killed : MarkKind::End, .label = label});
}

std::string program(const Life& life) {
  return life.name.substr(0, life.name.find(' '));
}

/// The prompt of a script, from the question to the answer.
void addPrompt(Row& row, const Scene& scene, const Life& life) {
  std::optional<std::int64_t> asked;
  for (const auto& moment : scene.moments) {
    if (moment.pid != life.pid || moment.at < life.from) continue;
    if (moment.word == "prompt") asked = moment.at;
    if (moment.word != "answer" || !asked) continue;
    row.spans.push_back({.from = *asked, .until = moment.at, .kind = SpanKind::Step, .label = "prompt"});
    asked.reset();
  }
  if (asked)
    row.spans.push_back({.from = *asked,
                         .until = life.until.value_or(scene.until),
                         .kind = SpanKind::Step,
                         .label = "prompt"});
}

/// The verb is enough beside a mark, and whether it kills; the words below the chart have the rest.
std::string shortQuestion(const Moment& asked) {
  const auto question = questionShown(asked);
  const bool kills = asked.texts.size() > 1 && asked.texts[1] == "-k";
  return question.substr(0, question.find(' ')) + (kills ? " -k" : "");
}

/// What a process says of itself, and what launchd is asked.
std::string ownMarkName(const Moment& moment) {
  // That a Core has helpers is seen by their own rows.
  if (moment.word == "says" && !moment.texts[0].starts_with("has ")) return moment.texts[0];
  if (moment.word == "asked") return shortQuestion(moment);
  if (moment.word == "told") return "told " + signalName(numberIn(moment, 0));
  return "";
}

void addMarks(Row& row, const Scene& scene, const Life& life) {
  for (const auto& moment : scene.moments)
    if (moment.pid == life.pid && moment.at >= std::max<std::int64_t>(0, life.from))
      if (const auto name = ownMarkName(moment); !name.empty())
        row.marks.push_back({.at = moment.at, .label = name});
}

/// The rows in the order in which a reader asks: the companion and its tools, whom it acts upon, launchd, and last
/// whoever was there besides.
class Table {
 public:
  explicit Table(const Scene& scene) : scene_(scene) {}

  ProcessRows all() {
    result_.rows = companionRows(scene_);
    // Its steps are the first row, and its signals leave from there.
    result_.rowOf[scene_.companion] = 0;
    tools();
    add(Role::Administrator, RowKind::Tool);
    cores();
    add(Role::Launchd, RowKind::Launchd);
    add(Role::Application, RowKind::Application);
    for (std::size_t index = 0; index < scene_.lives.size(); ++index)
      if (scene_.lives[index].role == Role::Companion && index != scene_.companion)
        place(index, otherCompanion(scene_, scene_.lives[index]));
    return std::move(result_);
  }

 private:
  void place(std::size_t life, Row row) {
    result_.rowOf[life] = result_.rows.size();
    result_.rows.push_back(std::move(row));
  }

  void add(Role role, RowKind kind) {
    for (std::size_t index = 0; index < scene_.lives.size(); ++index)
      if (scene_.lives[index].role == role) addOne(index, kind);
  }

  void addOne(std::size_t index, RowKind kind) {
    const auto& life = scene_.lives[index];
    Row row{.kind = kind, .name = lifeName(life), .spans = {spanOf(scene_, life)}};
    addMarks(row, scene_, life);
    addEnd(row, life);
    place(index, std::move(row));
  }

  void tools() {
    for (std::size_t index = 0; index < scene_.lives.size(); ++index)
      if (scene_.lives[index].role == Role::Tool) addTool(index, scene_.lives[index]);
  }

  /// Into the first row of its program that is free by then.
  void addTool(std::size_t index, const Life& life) {
    auto span = spanOf(scene_, life);
    span.label = life.name == program(life) ? "" : life.name.substr(program(life).size() + 1);
    auto& rows = result_.rows;
    auto found = std::ranges::find_if(rows, [&](const Row& row) {
      return row.kind == RowKind::Tool && row.name == program(life) && row.spans.back().until < span.from;
    });
    if (found == rows.end())
      found = rows.insert(rows.end(), Row{.kind = RowKind::Tool, .name = program(life)});
    addPrompt(*found, scene_, life);
    found->spans.push_back(std::move(span));
    addEnd(*found, life);
    result_.rowOf[index] = static_cast<std::size_t>(found - rows.begin());
  }

  /// Each Core with its helpers under it.
  void cores() {
    const auto& lives = scene_.lives;
    for (std::size_t index = 0; index < lives.size(); ++index) {
      if (lives[index].role != Role::Core) continue;
      addOne(index, RowKind::Core);
      for (std::size_t other = 0; other < lives.size(); ++other)
        if (lives[other].role == Role::Helper &&
            lifeOf(lives[other].parent, lives[other].from, lives) == index)
          addOne(other, RowKind::Helper);
    }
    for (std::size_t index = 0; index < lives.size(); ++index)
      // Helpers of a Core that nobody noted.
      if (lives[index].role == Role::Helper && !result_.rowOf.contains(index)) addOne(index, RowKind::Helper);
  }

  const Scene& scene_;
  ProcessRows result_;
};

/// A kill comes from the companion's watch where there is one.
std::optional<std::size_t> senderRow(const Moment& signal, const Scene& scene, const ProcessRows& rows) {
  const auto life = lifeOf(signal.pid, signal.at, scene.lives);
  if (!life || !rows.rowOf.contains(*life)) return std::nullopt;
  const auto row = rows.rowOf.at(*life);
  if (*life != scene.companion || numberIn(signal, 0) != SIGKILL) return row;
  const auto watch = std::ranges::find(rows.rows, RowKind::Watch, &Row::kind);
  return watch == rows.rows.end() ? row : static_cast<std::size_t>(watch - rows.rows.begin());
}

}  // namespace

/// Arrows are drawn from row to row, so the rows are made first, and know which life each of them shows.
ProcessRows processRows(const Scene& scene) {
  return Table(scene).all();
}

std::vector<Arrow> arrowsOf(const Scene& scene, const ProcessRows& rows) {
  std::vector<Arrow> arrows;
  std::set<std::size_t> killed;
  for (const auto& moment : scene.moments) {
    if (moment.word != "signals" || moment.at < 0) continue;
    Arrow arrow{.at = moment.at, .signal = signalName(numberIn(moment, 0))};
    const auto from = senderRow(moment, scene, rows);
    for (const auto life : targetsOf(moment, scene.lives)) {
      // launchd's kill of the group follows the companion's before anybody has noted the ends that came of that one.
      const bool again = numberIn(moment, 0) == SIGKILL && !killed.insert(life).second;
      if (!again && rows.rowOf.contains(life)) arrow.to.push_back(rows.rowOf.at(life));
    }
    if (!from || arrow.to.empty()) continue;
    arrow.from = *from;
    arrows.push_back(std::move(arrow));
  }
  return arrows;
}

std::string questionShown(const Moment& asked) {
  const auto question = textsFrom(asked, 0);
  const bool ofDomain = question.starts_with("print ") && std::ranges::count(question, '/') < 2;
  return question.starts_with("service-status ") || ofDomain ? "" : question.substr(0, question.find('\n'));
}

std::string signalName(std::int32_t number) {
  if (number == SIGTERM) return "SIGTERM";
  if (number == SIGKILL) return "SIGKILL";
  return "signal " + std::to_string(number);
}

std::string lifeName(const Life& life) {
  const bool isNew = life.from >= 0 && (life.role == Role::Core || life.role == Role::Application);
  return (isNew ? "new " : "") + life.name + " " + std::to_string(life.pid);
}

}  // namespace tamo::stage

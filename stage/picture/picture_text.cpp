#include "stage/picture/picture_text.hpp"

#include <algorithm>
#include <cmath>
#include <set>

#include "stage/picture/label_places.hpp"
#include "stage/picture/picture_words.hpp"
#include "stage/picture/time_scale.hpp"

namespace tamo::stage {
namespace {

constexpr auto legend =
    "─ lives  █ works  ░ waits by a rule  ▒ holds the lock  | ends  x is killed  ○ is seen gone  "
    "a b c log lines  ◆ moment  T K SIGTERM, SIGKILL  ↓ ↑ whence they come";

/// One line of characters, each of which takes a column. A cell is a text, because most of the drawing's characters
/// have several bytes.
class Canvas {
 public:
  explicit Canvas(std::size_t width) : cells_(width, " ") {}

  void put(std::size_t column, std::string_view character) {
    if (column < cells_.size()) cells_[column] = character;
  }
  void fill(std::size_t from, std::size_t until, std::string_view character) {
    for (auto column = from; column <= until; ++column)
      put(column, character);
  }
  [[nodiscard]] std::string line() const {
    std::string text;
    for (const auto& cell : cells_)
      text += cell;
    return text.substr(0, text.find_last_not_of(' ') + 1);
  }

 private:
  std::vector<std::string> cells_;
};

std::string_view characterOf(SpanKind kind) {
  switch (kind) {
    case SpanKind::Life:
      return "─";
    case SpanKind::Step:
      return "█";
    case SpanKind::Wait:
      return "░";
    case SpanKind::Lock:
      return "▒";
  }
  return " ";
}

std::string characterOf(const Mark& mark) {
  switch (mark.kind) {
    case MarkKind::End:
      return "|";
    case MarkKind::Killed:
      return "x";
    case MarkKind::Log:
      return mark.label.substr(0, 1);
    case MarkKind::Gone:
      return "○";
    case MarkKind::Moment:
      return "◆";
    // Looks that find a process alive are too many for a row of characters.
    case MarkKind::Alive:
      break;
  }
  return "";
}

/// One column has room for one letter. Signals that no rule sends are rare, and are told by name below the chart.
std::string_view letterOf(std::string_view signal) {
  if (signal == "SIGKILL") return "K";
  return signal == "SIGTERM" ? "T" : "S";
}

/// The chart with a line of characters for each row, and below it all that a line has no room for.
class Drawing {
 public:
  /// The names have two fifths of a narrow terminal at most, and the chart the rest.
  Drawing(const Picture& picture, std::size_t columns)
      : picture_(picture),
        columns_(columns),
        names_(std::min<std::size_t>(20, columns * 2 / 5)),
        scale_(shownMoments(picture), static_cast<double>(columns - names_ - 1)) {}

  std::string all() {
    paragraph(picture_.title);
    ruler();
    for (std::size_t index = 0; index < picture_.rows.size(); ++index)
      row(index);
    text_ += "\n";
    paragraph(picture_.sum);
    for (const auto& remark : picture_.remarks)
      paragraph(remark);
    text_ += "\n";
    for (const auto& told : picture_.told)
      paragraph(told.text, secondsText(told.at, 3) + "  ");
    text_ += "\n";
    paragraph(legend);
    paragraph("Later is further right, but not evenly.");
    return std::move(text_);
  }

 private:
  [[nodiscard]] std::size_t chart() const { return columns_ - names_; }
  [[nodiscard]] std::size_t column(std::int64_t moment) const {
    return std::min(chart() - 1, static_cast<std::size_t>(std::lround(scale_.place(moment))));
  }

  /// Words behind an opening, under which their further lines begin as well.
  void paragraph(std::string_view words, const std::string& opening = "") {
    auto front = opening;
    for (const auto& line : wrapped(words, columns_ - opening.size())) {
      text_.append(front).append(line).append("\n");
      front.assign(opening.size(), ' ');
    }
  }

  void line(const std::string& name, const Canvas& canvas) {
    auto head = cutTo(name, names_ - 1);
    head.append(names_ - columnsOf(head), ' ');
    auto whole = head + canvas.line();
    text_ += whole.substr(0, whole.find_last_not_of(' ') + 1) + "\n";
  }

  /// What is likeliest to be looked for has its label first; the rest has what room is left.
  void ruler() {
    std::vector<std::int64_t> wanted = {0, picture_.until};
    for (const auto& arrow : picture_.arrows)
      wanted.push_back(arrow.at);
    const auto rest = shownMoments(picture_);
    wanted.insert(wanted.end(), rest.begin(), rest.end());
    Canvas canvas(chart());
    std::set<std::string> used;
    LabelPlaces free(static_cast<double>(chart()), 1);
    for (const auto moment : wanted) {
      const auto label = secondsText(moment);
      const auto at = static_cast<double>(column(moment));
      const auto size = static_cast<double>(label.size());
      if (used.contains(label)) continue;
      // A label that had to move would stand at another moment, but for the last one, which ends with the line.
      if (at + size > static_cast<double>(chart()) && moment != picture_.until) continue;
      const auto place = free.place(at, size);
      if (place) used.insert(label);
      for (std::size_t index = 0; place && index < label.size(); ++index)
        canvas.put(static_cast<std::size_t>(*place) + index, label.substr(index, 1));
    }
    line("", canvas);
  }

  /// A column shows what was put into it last, so what is looked for most comes last: marks over bars, and signals over
  /// everything.
  void row(std::size_t index) {
    const auto& row = picture_.rows[index];
    Canvas canvas(chart());
    // Lives first: what is done in a life lies over it.
    for (const bool lives : {true, false})
      for (const auto& span : row.spans)
        if ((span.kind == SpanKind::Life) == lives) this->span(canvas, span);
    for (const auto& mark : row.marks)
      if (const auto character = characterOf(mark); !character.empty())
        canvas.put(column(mark.at), character);
    for (const auto& arrow : picture_.arrows)
      ends(canvas, arrow, index);
    const bool isPart = row.name.starts_with("its ") || row.kind == RowKind::Helper;
    line((isPart ? " " : "") + row.name, canvas);
  }

  /// What an arrow has in a row: where it comes from, and where it hits.
  void ends(Canvas& canvas, const Arrow& arrow, std::size_t index) const {
    if (arrow.from == index) canvas.put(column(arrow.at), arrow.to.front() > index ? "↓" : "↑");
    if (std::ranges::find(arrow.to, index) != arrow.to.end())
      canvas.put(column(arrow.at), letterOf(arrow.signal));
  }

  /// Both ends are filled, so that what took no time at all still has a column.
  void span(Canvas& canvas, const Span& span) const {
    const auto until = column(span.until);
    canvas.fill(column(span.from), until, characterOf(span.kind));
    if (span.lost) canvas.put(until, "?");
    if (span.goesOn) canvas.put(until, "→");
  }

  const Picture& picture_;
  const std::size_t columns_;
  const std::size_t names_;
  const TimeScale scale_;
  std::string text_;
};

}  // namespace

std::string textOf(const Picture& picture, std::size_t columns) {
  return Drawing(picture, columns).all();
}

}  // namespace tamo::stage

#include "stage/picture/svg_rows.hpp"

#include <algorithm>
#include <set>

#include "stage/picture/picture_words.hpp"

namespace tamo::stage {
namespace {

constexpr double rowHeight = 30;
constexpr double rulerHeight = 18;
/// Within a row: the line of its labels, and the middle of its bars below.
constexpr double labelLine = 12;
constexpr double barMiddle = 21;
constexpr double nameLine = 24;
/// How far a label may stand beside what it names.
constexpr double slack = 42;
/// How far the labels of the last moments may stand beside the chart.
constexpr double beyond = 38;
constexpr double letterRadius = 6.5;

std::string text(double value) {
  return coordinate(value);
}

/// A life is thinner than what is done in it, which lies over it.
double barHeight(SpanKind kind) {
  return kind == SpanKind::Life ? 6 : 12;
}

class Chart {
 public:
  Chart(SvgText& svg, const Picture& picture, const ChartPlace& place)
      : svg_(svg), picture_(picture), place_(place), scale_(shownMoments(picture), place.width) {}

  /// What is drawn later lies over what was drawn before: the grounds of the rows come first, the signals last.
  double draw() {
    ruler();
    for (std::size_t index = 0; index < picture_.rows.size(); ++index)
      labels_.emplace_back(place_.width + beyond, 5.0);
    for (std::size_t index = 0; index < picture_.rows.size(); ++index)
      background(index);
    guides();
    // The names of signals come first to their places; their lines lie over the bars.
    std::vector<std::optional<double>> names;
    names.reserve(picture_.arrows.size());
    for (const auto& arrow : picture_.arrows)
      names.push_back(labels_[arrow.from].place(scale_.place(arrow.at) + 5, textWidth(arrow.signal), slack));
    for (const auto& arrow : picture_.arrows)
      keepClear(arrow);
    for (std::size_t index = 0; index < picture_.rows.size(); ++index)
      row(index);
    for (std::size_t index = 0; index < picture_.arrows.size(); ++index)
      arrow(picture_.arrows[index], names[index]);
    return height();
  }

 private:
  [[nodiscard]] double x(std::int64_t moment) const { return place_.left + scale_.place(moment); }
  [[nodiscard]] double top(std::size_t row) const {
    return place_.top + rulerHeight + rowHeight * static_cast<double>(row);
  }
  [[nodiscard]] double height() const { return top(picture_.rows.size()) - place_.top; }

  /// What is likeliest to be looked for, first.
  [[nodiscard]] std::vector<std::int64_t> rulerMoments() const {
    std::vector<std::int64_t> wanted = {0, picture_.until};
    for (const auto& arrow : picture_.arrows)
      wanted.push_back(arrow.at);
    for (const auto& row : picture_.rows)
      for (const auto& span : row.spans)
        if (span.kind == SpanKind::Wait || row.kind == RowKind::Core)
          wanted.insert(wanted.end(), {span.from, span.until});
    const auto rest = shownMoments(picture_);
    wanted.insert(wanted.end(), rest.begin(), rest.end());
    return wanted;
  }

  void ruler() {
    LabelPlaces free(place_.width + 40, 8);
    std::set<std::string> used;
    for (const auto moment : rulerMoments()) {
      const auto label = secondsText(moment);
      const auto width = textWidth(label);
      // The line of labels begins and ends a little beside the chart's. Moments of one name need it only once.
      if (used.contains(label) || !free.place(scale_.place(moment) + 20 - width / 2, width)) continue;
      used.insert(label);
      told_.push_back(moment);
      svg_.text("text",
                {{"class", "time"},
                 {"x", text(x(moment))},
                 {"y", text(place_.top + 11)},
                 {"text-anchor", "middle"}},
                label);
    }
  }

  /// Only a moment that the ruler names has a line.
  void guides() {
    for (const auto moment : told_)
      svg_.leaf("line", {{"class", "guide"},
                         {"x1", text(x(moment))},
                         {"x2", text(x(moment))},
                         {"y1", text(place_.top + rulerHeight - 3)},
                         {"y2", text(place_.top + height())}});
  }

  void background(std::size_t index) {
    if (index % 2 != 0) return;
    svg_.leaf("rect", {{"class", "band"},
                       {"x", "1"},
                       {"y", text(top(index))},
                       {"width", text(place_.left + place_.width + 47)},
                       {"height", text(rowHeight)}});
  }

  void row(std::size_t index) {
    const auto& row = picture_.rows[index];
    svg_.open("g", {{"class", "row " + std::string(nameOf(row.kind))}});
    const bool isPart = row.name.starts_with("its ") || row.kind == RowKind::Helper;
    svg_.text("text", {{"class", "name"}, {"x", isPart ? "24" : "12"}, {"y", text(top(index) + nameLine)}},
              row.name);
    for (const auto& mark : row.marks)
      if (mark.kind != MarkKind::Log) label(index, mark.at, mark.label);
    // Lives lie under what is done in them.
    for (const bool lives : {true, false})
      for (const auto& span : row.spans)
        if ((span.kind == SpanKind::Life) == lives) this->span(index, span);
    for (const auto& mark : row.marks)
      this->mark(index, mark);
    svg_.close();
  }

  /// What took hardly any time is drawn wider than it was, or nobody would see it.
  void span(std::size_t index, const Span& span) {
    const auto from = x(span.from);
    const auto until = x(span.until);
    const auto height = barHeight(span.kind);
    const auto middle = top(index) + barMiddle;
    svg_.open("g", {{"class", std::string(nameOf(span.kind))}});
    svg_.text("title", {}, titleOf(index, span));
    svg_.leaf("rect", {{"class", "bar"},
                       {"x", text(from)},
                       {"y", text(middle - height / 2)},
                       {"width", text(std::max(1.5, until - from))},
                       {"height", text(height)}});
    if (span.goesOn) edge(until, middle, 6);
    if (span.began) edge(from, middle, -6);
    svg_.close();
    label(index, span.from, span.label);
    if (span.lost) label(index, span.until, "?");
  }

  /// A head at the end of what goes on beyond the picture.
  void edge(double at, double middle, double length) {
    svg_.leaf("path", {{"class", "edge"},
                       {"d", "M" + text(at) + " " + text(middle - 5) + " L" + text(at + length) + " " +
                                 text(middle) + " L" + text(at) + " " + text(middle + 5) + " Z"}});
  }

  /// More exactly than the ruler, for what follows a kill follows it within milliseconds.
  [[nodiscard]] std::string titleOf(std::size_t index, const Span& span) const {
    const auto& name = picture_.rows[index].name;
    return name + (span.label.empty() ? "" : ", " + span.label) + ": " + secondsText(span.from, 3) + " to " +
           secondsText(span.until, 3);
  }

  void label(std::size_t index, std::int64_t at, const std::string& words) {
    if (words.empty()) return;
    // What has no room is not written, but named in the title of its part all the same.
    const auto place = labels_[index].place(scale_.place(at), textWidth(words), slack);
    if (!place) return;
    svg_.text("text", {{"x", text(place_.left + *place)}, {"y", text(top(index) + labelLine)}}, words);
  }

  void mark(std::size_t index, const Mark& mark) {
    svg_.open("g", {{"class", "mark " + std::string(nameOf(mark.kind))}});
    const bool isLine = mark.kind == MarkKind::Log;
    const auto what = mark.label.empty() ? std::string(nameOf(mark.kind)) : mark.label;
    svg_.text("title", {}, (isLine ? "log line " : "") + what + ": " + secondsText(mark.at, 3));
    // Two lines of one moment stand side by side.
    const auto beside =
        isLine ? labels_[index].place(scale_.place(mark.at) - letterRadius, 2 * letterRadius - 4, 200)
               : std::nullopt;
    const auto at = beside ? place_.left + *beside + letterRadius : x(mark.at);
    addSign(svg_, mark.kind, at, top(index) + barMiddle, mark.label);
    svg_.close();
  }

  /// The line of a signal crosses the labels of every row that it comes to from above, or leaves upwards.
  void keepClear(const Arrow& arrow) {
    const auto [first, last] = std::ranges::minmax(arrow.to);
    for (auto row = std::min(first, arrow.from) + 1; row <= std::max(last, arrow.from); ++row)
      static_cast<void>(labels_[row].place(scale_.place(arrow.at) - 2, 4));
  }

  void arrow(const Arrow& arrow, std::optional<double> name) {
    const auto at = x(arrow.at);
    svg_.open("g", {{"class", "arrow " + arrow.signal}});
    svg_.text("title", {}, arrow.signal + ": " + secondsText(arrow.at, 3));
    const auto start = top(arrow.from) + barMiddle;
    auto [first, last] = std::ranges::minmax(arrow.to);
    // To both ends, because the sender may stand between them.
    for (const auto end : {first, last}) {
      const auto to = top(end) + barMiddle;
      svg_.leaf(
          "line",
          {{"class", "sign"}, {"x1", text(at)}, {"x2", text(at)}, {"y1", text(start)}, {"y2", text(to)}});
      if (first == last) break;
    }
    for (const auto target : arrow.to)
      head(at, target, target > arrow.from);
    if (name)
      svg_.text("text", {{"x", text(place_.left + *name)}, {"y", text(top(arrow.from) + labelLine)}},
                arrow.signal);
    svg_.close();
  }

  /// Its point touches the bar of who is hit.
  void head(double at, std::size_t target, bool downwards) {
    const auto point = top(target) + barMiddle + (downwards ? -3 : 3);
    const auto base = point + (downwards ? -8 : 8);
    svg_.leaf("path", {{"class", "head"},
                       {"d", "M" + text(at) + " " + text(point) + " L" + text(at - 4) + " " + text(base) +
                                 " L" + text(at + 4) + " " + text(base) + " Z"}});
  }

  SvgText& svg_;
  const Picture& picture_;
  const ChartPlace place_;
  const TimeScale scale_;
  std::vector<LabelPlaces> labels_;
  std::vector<std::int64_t> told_;
};

void addCross(SvgText& svg, double x, double y) {
  svg.leaf("path",
           {{"class", "sign"},
            {"d", "M" + text(x - 4) + " " + text(y - 4) + " L" + text(x + 4) + " " + text(y + 4) + " M" +
                      text(x - 4) + " " + text(y + 4) + " L" + text(x + 4) + " " + text(y - 4)}});
}

void addCircle(SvgText& svg, double x, double y, double radius) {
  svg.leaf("circle", {{"class", "sign"}, {"cx", text(x)}, {"cy", text(y)}, {"r", text(radius)}});
}

}  // namespace

double addChart(SvgText& svg, const Picture& picture, const ChartPlace& place) {
  return Chart(svg, picture, place).draw();
}

void addSign(SvgText& svg, MarkKind kind, double x, double y, const std::string& letter) {
  if (kind == MarkKind::Killed) addCross(svg, x, y);
  if (kind == MarkKind::Alive) addCircle(svg, x, y, 1.6);
  if (kind == MarkKind::Gone) addCircle(svg, x, y, 3.4);
  if (kind == MarkKind::End)
    svg.leaf("line",
             {{"class", "sign"}, {"x1", text(x)}, {"x2", text(x)}, {"y1", text(y - 7)}, {"y2", text(y + 7)}});
  if (kind == MarkKind::Moment)
    svg.leaf("path", {{"class", "sign"},
                      {"d", "M" + text(x) + " " + text(y - 5) + " L" + text(x + 4) + " " + text(y) + " L" +
                                text(x) + " " + text(y + 5) + " L" + text(x - 4) + " " + text(y) + " Z"}});
  if (kind != MarkKind::Log) return;
  addCircle(svg, x, y, letterRadius);
  svg.text("text", {{"x", text(x)}, {"y", text(y + 3.3)}, {"text-anchor", "middle"}}, letter);
}

/// Which font will show the text is not known here, so each of its characters counts as a wide one: a label has too
/// much room rather than too little.
double textWidth(std::string_view text) {
  constexpr double widestCharacter = 6.2;
  return widestCharacter * static_cast<double>(columnsOf(text));
}

}  // namespace tamo::stage

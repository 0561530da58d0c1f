#include "stage/picture/picture_svg.hpp"

#include "stage/picture/picture_words.hpp"
#include "stage/picture/svg_rows.hpp"
#include "stage/picture/svg_style.hpp"

namespace tamo::stage {
namespace {

constexpr double paperWidth = 960;
constexpr double chartLeft = 150;
constexpr double chartRight = 912;
constexpr double lineHeight = 16;
/// So many characters, all of them wide, fit between the times of what is told and the edge of the paper.
constexpr std::size_t lineColumns = 138;

struct LegendSign {
  MarkKind kind;
  std::string_view words;
};
constexpr LegendSign signs[] = {
    {MarkKind::End, "ends"},          {MarkKind::Killed, "is killed"}, {MarkKind::Alive, "is seen alive"},
    {MarkKind::Gone, "is seen gone"}, {MarkKind::Log, "log line"},     {MarkKind::Moment, "moment"}};

struct LegendBar {
  SpanKind kind;
  std::string_view words;
};
constexpr LegendBar bars[] = {{SpanKind::Life, "lives"},
                              {SpanKind::Step, "works"},
                              {SpanKind::Wait, "waits by a rule"},
                              {SpanKind::Lock, "holds the lock"}};

/// The paper from the top down. How many lines a text takes shows only when it is wrapped, so the height grows with what
/// is written.
class Document {
 public:
  explicit Document(const Picture& picture) : picture_(picture) {}

  std::string all() {
    svg_.text("text", {{"class", "title"}, {"x", "12"}, {"y", "26"}}, cutTo(picture_.title, 100));
    const auto chart =
        addChart(svg_, picture_, {.left = chartLeft, .width = chartRight - chartLeft, .top = 40});
    y_ = 40 + chart + 24;
    // Its letters are larger than those of the other lines, so fewer of them fit.
    for (const auto& line : wrapped(picture_.sum, 118))
      addLine("sum", 12, line);
    for (const auto& remark : picture_.remarks)
      addLine("remark", 12, cutTo(remark, lineColumns));
    legend();
    for (const auto& told : picture_.told)
      addTold(told);
    return whole();
  }

 private:
  void addLine(std::string_view kind, double x, const std::string& words) {
    svg_.text("text", {{"class", std::string(kind)}, {"x", coordinate(x)}, {"y", coordinate(y_)}}, words);
    y_ += lineHeight;
  }

  /// Drawn with the signs and bars of the chart itself, so that it cannot tell of others.
  void legend() {
    y_ += 6;
    double x = 12;
    const auto words = [&](std::string_view text) {
      svg_.text("text", {{"class", "note"}, {"x", coordinate(x)}, {"y", coordinate(y_)}}, text);
      x += textWidth(text) + 14;
    };
    svg_.open("g", {{"class", "legend"}});
    for (const auto& bar : bars) {
      svg_.open("g", {{"class", std::string(nameOf(bar.kind))}});
      svg_.leaf("rect", {{"class", "bar"},
                         {"x", coordinate(x)},
                         {"y", coordinate(bar.kind == SpanKind::Life ? y_ - 7 : y_ - 10)},
                         {"width", "22"},
                         {"height", bar.kind == SpanKind::Life ? "6" : "12"}});
      svg_.close();
      x += 28;
      words(bar.words);
    }
    for (const auto& sign : signs) {
      svg_.open("g", {{"class", "mark " + std::string(nameOf(sign.kind))}});
      addSign(svg_, sign.kind, x + 5, y_ - 4, "a");
      svg_.close();
      x += 16;
      words(sign.words);
    }
    y_ += lineHeight;
    x = 12;
    words(
        "Later is further right, but not evenly: long waits are drawn shorter than they are, and short ones "
        "longer.");
    svg_.close();
    y_ += lineHeight + 6;
  }

  /// The text hangs behind its time.
  void addTold(const Told& told) {
    svg_.open("g", {{"class", "told"}});
    svg_.text("text", {{"class", "at"}, {"x", "52"}, {"y", coordinate(y_)}, {"text-anchor", "end"}},
              secondsText(told.at, 3));
    for (const auto& line : wrapped(told.text, lineColumns))
      addLine("what", 60, line);
    svg_.close();
  }

  /// The height is known only when everything has been laid out, so the frame is put around it last.
  [[nodiscard]] std::string whole() const {
    const auto height = coordinate(y_ + 4);
    SvgText svg;
    svg.open("svg", {{"xmlns", "http://www.w3.org/2000/svg"},
                     {"width", coordinate(paperWidth)},
                     {"height", height},
                     {"viewBox", "0 0 " + coordinate(paperWidth) + " " + height}});
    svg.text("title", {}, picture_.title);
    // For who has the document read aloud: the sum says what the chart shows.
    svg.text("desc", {}, picture_.sum);
    svg.raw(svgStyle());
    svg.raw(svgDefinitions());
    svg.leaf("rect", {{"class", "paper"},
                      {"x", "0.5"},
                      {"y", "0.5"},
                      {"width", coordinate(paperWidth - 1)},
                      {"height", coordinate(y_ + 3)},
                      {"rx", "6"}});
    svg.raw(svg_.str());
    svg.close();
    return svg.str();
  }

  const Picture& picture_;
  SvgText svg_;
  double y_ = 0;
};

}  // namespace

std::string svgOf(const Picture& picture) {
  return Document(picture).all();
}

}  // namespace tamo::stage

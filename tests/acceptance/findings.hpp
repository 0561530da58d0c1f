#pragma once

#include <string>
#include <utility>
#include <vector>

/// What a check has found: what it judged, the facts that it asked, and the texts that it keeps. Values.
namespace tamo::acceptance {

/// One thing that had to be seen.
struct Judgement {
  bool holds = false;
  /// A sentence that is true when it holds.
  std::string what;
  std::string expected{};
  std::string seen{};
};

/// Something that the pages call uncertain: asked here, and not judged.
struct Fact {
  std::string question;
  std::string answer;
};

/// A text that goes into the report's folder as a file of its own.
struct Kept {
  std::string name;
  std::string text;
};

class Findings {
 public:
  /// Gives back whether it holds, so that a check can stop where nothing more can be seen.
  bool that(bool holds, const std::string& what, const std::string& seen = {});
  bool equal(const std::string& what, const std::string& expected, const std::string& seen);
  void add(const Judgement& judgement) { judgements_.push_back(judgement); }
  void fact(const std::string& question, const std::string& answer) { facts_.push_back({question, answer}); }
  void keep(const std::string& name, const std::string& text);

  [[nodiscard]] const std::vector<Judgement>& judgements() const { return judgements_; }
  [[nodiscard]] const std::vector<Fact>& facts() const { return facts_; }
  [[nodiscard]] const std::vector<Kept>& kept() const { return kept_; }
  [[nodiscard]] bool allHold() const;

 private:
  std::vector<Judgement> judgements_;
  std::vector<Fact> facts_;
  std::vector<Kept> kept_;
};

}  // namespace tamo::acceptance

#include "mutation/schemata.hpp"

#include <algorithm>
#include <optional>

namespace tamo::mutation {
namespace {

/// The smallest slot around an edit.
const Slot* slotOf(const Structure& structure, const Edit& edit) {
  const Slot* best = nullptr;
  for (const auto& slot : structure.slots)
    if (slot.range.contains(edit.range) && (best == nullptr || best->range.contains(slot.range)))
      best = &slot;
  return best;
}

struct Alternative {
  std::size_t id = 0;
  std::string text;
};

/// What stands in place of `constexpr`.
struct Word {
  std::string text;
  std::set<std::size_t> owners;
};

using Alternatives = std::map<const Slot*, std::vector<Alternative>>;

class Renderer {
 public:
  explicit Renderer(std::string_view source)
      : source_(source), tokens_(tokens(source)), structure_(structure(tokens_)) {}

  Rendered render(const std::vector<Numbered>& mutants) {
    if (mutants.empty()) return {.text = std::string(source_), .owners = {}};
    for (const auto& numbered : mutants)
      place(numbered);
    collectWords();
    put(header(), {});
    copy(0, source_.size(), {0, tokens_.size()}, nullptr, {});
    return std::move(made_);
  }

 private:
  void place(const Numbered& numbered) {
    for (const auto& edit : numbered.mutant.edits) {
      const auto* slot = slotOf(structure_, edit);
      alternatives_[slot].push_back({numbered.id, written(tokens_, slot->range, edit)});
    }
  }

  /// A header's guard stays in front, so that it goes on working.
  [[nodiscard]] std::string header() const { return "#include \"tests/mutation/switch.hpp\"\n"; }

  /// A constant whose value is chosen at run time is an ordinary variable. Complaints about that name its first line.
  void collectWords() {
    for (const auto& constant : structure_.constants) {
      std::set<std::size_t> ids;
      for (const auto& [slot, given] : alternatives_)
        if (constant.range.contains(slot->range))
          for (const auto& alternative : given)
            ids.insert(alternative.id);
      if (ids.empty()) continue;
      const bool isInline = constant.word > 0 && tokens_[constant.word - 1].is("inline");
      words_[constant.word] = {constant.local || isInline ? "" : "inline", ids};
    }
  }

  /// Text that is the same in every mutant, or the code of some of them.
  void put(std::string_view text, const std::set<std::size_t>& owners) {
    made_.text += text;
    if (!owners.empty()) made_.owners[line_].insert(owners.begin(), owners.end());
    for (const char character : text) {
      if (character != '\n') continue;
      ++line_;
      if (!owners.empty()) made_.owners[line_].insert(owners.begin(), owners.end());
    }
  }

  /// The outermost of the slots that begin at a token, lie within the range and have alternatives.
  [[nodiscard]] const Slot* slotAt(std::size_t token, Range range, const Slot* outer) const {
    const Slot* best = nullptr;
    for (const auto& [slot, given] : alternatives_) {
      const bool fits = slot != outer && slot->range.begin == token && range.contains(slot->range);
      if (fits && (best == nullptr || slot->range.contains(best->range))) best = slot;
    }
    return best;
  }

  void copy(std::size_t from, std::size_t to, Range range, const Slot* outer,
            const std::set<std::size_t>& owners) {
    auto offset = from;
    for (auto at = range.begin; at < range.end; ++at) {
      if (const auto word = words_.find(at); word != words_.end()) {
        put(source_.substr(offset, tokens_[at].offset - offset), owners);
        put(word->second.text, word->second.owners);
        offset = tokens_[at].offset + tokens_[at].text.size();
      } else if (const auto* slot = slotAt(at, range, outer)) {
        put(source_.substr(offset, tokens_[at].offset - offset), owners);
        at = slot->range.end - 1;
        offset = tokens_[at].offset + tokens_[at].text.size();
        choice(*slot);
      }
    }
    put(source_.substr(offset, to - offset), owners);
  }

  void choice(const Slot& slot) {
    const auto& given = alternatives_.at(&slot);
    const bool isValue = slot.kind != Slot::Kind::statement;
    const std::string open = slot.kind == Slot::Kind::condition ? "static_cast<bool>(" : "(";
    std::set<std::size_t> all;
    for (const auto& alternative : given)
      all.insert(alternative.id);
    // Notes about a variable name its first line.
    put(isValue ? "(" : "{", all);
    put("\n", {});
    for (const auto& alternative : given) {
      const auto asked = "::tamo_mutation::is(" + std::to_string(alternative.id) + ")";
      const auto code = isValue ? asked + " ? " + open + alternative.text + ") :"
                                : "if (" + asked + ") { " + alternative.text + " } else";
      put(code, {alternative.id});
      put("\n", {});
    }
    put(isValue ? open : "{", all);
    const auto& last = tokens_[slot.range.end - 1];
    copy(tokens_[slot.range.begin].offset, last.offset + last.text.size(), slot.range, &slot, all);
    put(isValue ? "\n)\n)" : "\n}\n}", {});
  }

  std::string_view source_;
  std::vector<Token> tokens_;
  Structure structure_;
  Alternatives alternatives_;
  std::map<std::size_t, Word> words_;
  Rendered made_;
  std::size_t line_ = 1;
};

}  // namespace

bool hasSlot(const Structure& structure, const Mutant& mutant) {
  return std::ranges::all_of(mutant.edits,
                             [&](const Edit& edit) { return slotOf(structure, edit) != nullptr; });
}

Rendered withAll(std::string_view source, const std::vector<Numbered>& mutants) {
  return Renderer(source).render(mutants);
}

std::string withOne(std::string_view source, const Mutant& mutant) {
  const auto words = tokens(source);
  std::string text;
  std::size_t offset = 0;
  for (const auto& edit : mutant.edits) {
    const auto& last = words[edit.range.end - 1];
    text.append(source.substr(offset, words[edit.range.begin].offset - offset)).append(" " + edit.text + " ");
    offset = last.offset + last.text.size();
  }
  return text.append(source.substr(offset));
}

}  // namespace tamo::mutation

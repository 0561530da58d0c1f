#include "stage/tools/apple_script.hpp"

#include <cstddef>
#include <initializer_list>
#include <utility>

#include "stage/tools/apple_script_words.hpp"
#include "values/text.hpp"

namespace tamo::stage {
namespace {

using Kind = ScriptWord::Kind;

constexpr int noScript = -2741;
constexpr int noSuchItem = -1728;
/// What the kernel takes as one argument of the shell. The quoted form of a quoted form is up to four times as
/// long.
constexpr std::size_t longestText = std::size_t{128} << 10U;

/// Reads the words from left to right. What doesn't fit ends the reading by a raised ScriptError, which never leaves
/// this file. The script is understood and not searched for its words, so an argument that reads like script stays an
/// argument.
class Reader {
 public:
  Reader(std::vector<ScriptWord> words, const std::vector<std::string>& arguments)
      : words_(std::move(words)), arguments_(arguments) {}

  /// A script is understood to its last word or not at all: half of one may ask for something else than the whole.
  ShellRequest handler() {
    expect({"on", "run"});
    argumentsName_ = name();
    lineEnd();
    auto request = statement();
    lineEnd();
    expect({"end", "run"});
    lineEnd();
    if (next_ != words_.size()) fail();
    return request;
  }

 private:
  ShellRequest statement() {
    expect({"do", "shell", "script"});
    ShellRequest request{.command = sum()};
    while (take("with")) {
      if (take("prompt")) {
        request.prompt = joined(sum());
      } else {
        expect({"administrator", "privileges"});
        request.asAdministrator = true;
      }
    }
    return request;
  }

  ScriptText sum() {
    auto text = term();
    while (takeSign("&")) {
      const auto more = term();
      text.insert(text.end(), more.begin(), more.end());
    }
    return text;
  }

  /// "quoted form of" holds for the one term behind it, not for what is joined to that.
  ScriptText term() {
    if (takeSign("(")) {
      auto inner = sum();
      if (!takeSign(")")) fail();
      return inner;
    }
    if (take("quoted")) {
      expect({"form", "of"});
      auto quoted = quotedForm(joined(term()));
      if (quoted.size() > longestText) fail();
      return {{.text = std::move(quoted), .written = false}};
    }
    if (take("item")) return {{.text = item(), .written = false}};
    if (peek().kind != Kind::Literal) fail();
    return {{.text = words_[next_++].text}};
  }

  std::string item() {
    const auto number = values::decimalInt32(name());
    expect({"of"});
    if (!number || name() != argumentsName_) fail();
    const auto index = static_cast<std::size_t>(*number);
    if (*number < 1 || index > arguments_.size())
      throw ScriptError{.text = "Can’t get item " + std::to_string(*number) + ".", .number = noSuchItem};
    return arguments_[index - 1];
  }

  [[nodiscard]] const ScriptWord& peek() const {
    if (next_ == words_.size()) fail();
    return words_[next_];
  }
  bool take(Kind kind, std::string_view text) {
    if (next_ == words_.size() || words_[next_].kind != kind || words_[next_].text != text) return false;
    ++next_;
    return true;
  }
  bool take(std::string_view name) { return take(Kind::Name, name); }
  bool takeSign(std::string_view sign) { return take(Kind::Sign, sign); }
  void lineEnd() {
    if (!take(Kind::LineEnd, "")) fail();
  }
  void expect(std::initializer_list<std::string_view> names) {
    for (const auto& expected : names)
      if (!take(expected)) fail();
  }
  std::string name() {
    if (peek().kind != Kind::Name) fail();
    return words_[next_++].text;
  }
  [[noreturn]] static void fail() {
    throw ScriptError{.text = "syntax error: this is no script that the stage knows.", .number = noScript};
  }

  std::vector<ScriptWord> words_;
  const std::vector<std::string>& arguments_;
  std::string argumentsName_;
  std::size_t next_ = 0;
};

/// From left to right, never again over what was put in.
std::string replaced(std::string_view text, std::string_view what, std::string_view by) {
  std::string whole;
  std::size_t start = 0;
  for (auto at = text.find(what); at != std::string_view::npos; at = text.find(what, start)) {
    whole.append(text.substr(start, at - start)).append(by);
    start = at + what.size();
  }
  whole += text.substr(start);
  return whole;
}

}  // namespace

std::string joined(const ScriptText& text) {
  std::string whole;
  for (const auto& part : text)
    whole += part.text;
  return whole;
}

/// A script with a character that begins no word is read as an empty one, which is no script either.
std::expected<ShellRequest, ScriptError> shellRequest(std::string_view script,
                                                      const std::vector<std::string>& arguments) {
  auto words = scriptWords(script);
  try {
    return Reader(std::move(words).value_or(std::vector<ScriptWord>()), arguments).handler();
  } catch (const ScriptError& error) {
    return std::unexpected(error);
  }
}

/// A quote within ends the quoting, stands there by itself, and the quoting begins anew.
std::string quotedForm(std::string_view text) {
  std::string quoted("'");
  return quoted.append(replaced(text, "'", R"('\'')")).append("'");
}

/// The directory is quoted, because a stage may lie in one whose name means something to a shell.
std::string commandOnStage(const ScriptText& command, const std::string& stageDirectory) {
  constexpr std::string_view programs = "/usr/bin/";
  std::string whole;
  for (const auto& part : command)
    whole += part.written ? replaced(part.text, programs, quotedForm(stageDirectory) + std::string(programs))
                          : part.text;
  return whole;
}

}  // namespace tamo::stage

#pragma once

#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The little of AppleScript that the stage understands: one handler with one statement,
///
///   on run NAME
///   do shell script TEXT [with prompt TEXT] [with administrator privileges]
///   end run
///
/// where a TEXT is made of string literals, `item N of NAME`, `quoted form of …`, brackets and `&`. Pure.
namespace tamo::stage {

/// A part of a text, and whether the script's author wrote it or it came in as an argument. An argument stays
/// one, in quotes as well.
struct TextPart {
  std::string text;
  bool written = true;

  friend bool operator==(const TextPart&, const TextPart&) = default;
};
using ScriptText = std::vector<TextPart>;

[[nodiscard]] std::string joined(const ScriptText& text);

/// What the script wants done.
struct ShellRequest {
  ScriptText command{};
  std::optional<std::string> prompt{};
  bool asAdministrator = false;
};

/// Why a script is not carried out.
struct ScriptError {
  std::string text;
  int number = 0;
};

/// Understands the script and applies it to its arguments. Errors as a Mac numbers them: -2741 for what is no
/// script of this kind, -1728 for an argument that isn't there.
[[nodiscard]] std::expected<ShellRequest, ScriptError> shellRequest(
    std::string_view script, const std::vector<std::string>& arguments);

/// The text as one word of a shell: in single quotes, between which nothing has a meaning.
[[nodiscard]] std::string quotedForm(std::string_view text);

/// The command for this machine's shell: where the author wrote "/usr/bin/", the stage's own is meant. What
/// came in as an argument is not touched.
[[nodiscard]] std::string commandOnStage(const ScriptText& command, const std::string& stageDirectory);

}  // namespace tamo::stage

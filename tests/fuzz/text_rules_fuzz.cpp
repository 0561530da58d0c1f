#include "exhaustion/print_lines.hpp"
#include "fuzz/insist.hpp"
#include "fuzz/target.hpp"
#include "fuzz/utf8_description.hpp"
#include "values/paths.hpp"
#include "values/text.hpp"

/// The rules for texts and paths that every reader stands on, on any bytes.
namespace tamo::fuzz {
namespace {

void trims(std::string_view bytes) {
  const auto once = values::trimmed(bytes);
  insist(values::trimmed(once) == once, "a trimmed text stays as it is");
  insist(once == exhaustion::describedStripped(bytes), "blanks are trimmed and nothing else");
  const auto noSlashes = values::trimmed(bytes, '/');
  insist(!noSlashes.starts_with('/') && !noSlashes.ends_with('/'), "slashes are trimmed");
}

void standardises(std::string_view bytes) {
  const auto path = values::standardisedPath(bytes);
  insist(values::standardisedPath(path) == path, "a standardised path stays as it is");
  insist(path.starts_with('/') && (path == "/" || !path.ends_with('/')), "it begins with a slash alone");
  insist(path.find("//") == std::string::npos, "no two slashes stand together");
  const auto closed = path + "/";
  insist(closed.find("/./") == std::string::npos && closed.find("/../") == std::string::npos,
         "no dots are left");
  insist(path == "/" || values::joinedPath(values::parentPath(path), values::lastComponent(path)) == path,
         "a path is its parent and its last component");
}

void repairs(std::string_view bytes) {
  const auto repaired = values::repairedUtf8(bytes);
  insist(repaired == describedRepair(bytes), "the repair is the one described");
  insist(values::isUtf8(repaired), "a repaired text is UTF-8");
  insist(values::repairedUtf8(repaired) == repaired, "a repaired text stays as it is");
  insist(values::isUtf8(bytes) == (repaired == bytes), "only what is broken is repaired");
  const auto prefix = values::utf8Prefix(bytes);
  insist(values::isUtf8(prefix) && repaired.starts_with(prefix), "a repair leaves the sound beginning");
}

void divides(std::string_view bytes) {
  std::string joined;
  for (std::optional rest(bytes); rest;) {
    const auto line = values::takeLine(rest);
    insist(line.find('\n') == std::string_view::npos, "a line has no line feed");
    joined.append(line).append(rest ? "\n" : "");
  }
  insist(joined == bytes, "the lines are the whole text");
}

void counts(std::string_view bytes) {
  const auto wide = values::decimalInt64(bytes);
  const auto narrow = values::decimalInt32(bytes);
  insist(wide == exhaustion::describedInt64(bytes), "a number is the one that is described");
  insist(!narrow || wide == *narrow, "a narrow number is the wide one");
  insist(narrow || !wide || *wide != static_cast<std::int32_t>(*wide), "a number in range is narrow");
}

}  // namespace

void readInput(std::string_view bytes) {
  trims(bytes);
  standardises(bytes);
  repairs(bytes);
  divides(bytes);
  counts(bytes);
}

}  // namespace tamo::fuzz

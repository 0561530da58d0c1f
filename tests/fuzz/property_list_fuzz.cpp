#include "fuzz/insist.hpp"
#include "fuzz/target.hpp"
#include "launch/launch_job.hpp"
#include "values/property_list.hpp"
#include "values/property_list_limits.hpp"
#include "values/text.hpp"

/// The reader of property lists, and what is read of an agent's, on any bytes.
namespace tamo::fuzz {
namespace {

using values::PropertyList;

void checkText(const std::string& text) {
  insist(values::isUtf8(text), "a text of a list is UTF-8");
}

/// Counts the values of a list on the way.
void check(const PropertyList& list, std::size_t depth, std::size_t& values) {
  insist(depth <= values::deepestNesting, "a list is not nested without bound");
  insist(++values <= values::mostValues, "a list does not grow without bound");
  if (const auto* text = list.text()) checkText(*text);
  if (const auto* items = list.array())
    for (const auto& item : *items)
      check(item, depth + 1, values);
  if (const auto* entries = list.dictionary())
    for (const auto& [key, value] : *entries) {
      checkText(key);
      check(value, depth + 1, values);
    }
}

/// The definition as it has to follow from the list, value by value.
void checkDefinition(const PropertyList& list, const LaunchJob::Definition& definition) {
  const auto* arguments = list.entry("ProgramArguments");
  insist(arguments != nullptr && arguments->array() != nullptr, "a definition has a list of arguments");
  const auto& items = *arguments->array();
  insist(!items.empty() && items.size() == definition.arguments.size(), "every argument is kept");
  for (std::size_t at = 0; at < items.size(); ++at)
    insist(items[at].text() != nullptr && *items[at].text() == definition.arguments[at],
           "arguments are texts");
  const auto* timeout = list.entry("ExitTimeOut");
  const auto* integer = timeout == nullptr ? nullptr : std::get_if<std::int64_t>(&timeout->value);
  insist(integer == nullptr || definition.exitTimeout == *integer, "an integer is the exit timeout");
  insist(timeout != nullptr || !definition.exitTimeout, "a timeout is not made up");
}

}  // namespace

void readInput(std::string_view bytes) {
  const auto list = values::readPropertyList(bytes);
  const auto definition = LaunchJob::bundled(bytes);
  insist(list || !definition, "an unreadable list defines nothing");
  if (!list) return;
  std::size_t values = 0;
  check(*list, 0, values);
  if (definition) checkDefinition(*list, *definition);
}

}  // namespace tamo::fuzz

#include "stage/common/noted_tool.hpp"

#include "platform/stage/journal.hpp"

namespace tamo::stage {

/// A tool that turns into another program or is ended by a signal never notes that it leaves. Its end is then known
/// from whoever started it.
int runNoted(const std::string& name, ToolWork work, int argc, char** argv) {
  const auto root = StageRoot::fromEnvironment();
  const Journal journal(root);
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  auto texts = arguments;
  texts.insert(texts.begin(), name);
  journal.note("tool", texts);
  const int status = work(root, arguments);
  journal.note("leaves", {std::to_string(status)});
  return status;
}

}  // namespace tamo::stage

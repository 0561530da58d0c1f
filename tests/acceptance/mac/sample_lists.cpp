#include "acceptance/mac/sample_lists.hpp"

namespace tamo::acceptance {
namespace {

std::string escaped(const std::string& text) {
  std::string result;
  for (const char character : text)
    result += character == '&'   ? std::string("&amp;")
              : character == '<' ? std::string("&lt;")
                                 : std::string(1, character);
  return result;
}

std::string text(const std::string& value) {
  return "<string>" + escaped(value) + "</string>\n";
}

std::string key(const std::string& name, const std::string& value) {
  return "\t<key>" + name + "</key>\n\t" + value;
}

std::string whole(const std::string& members) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
         "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
         "<plist version=\"1.0\">\n<dict>\n" +
         members + "</dict>\n</plist>\n";
}

}  // namespace

std::string sampleInfo(const std::string& build) {
  return whole(key("CFBundleExecutable", text("Tamo")) + key("CFBundleIdentifier", text("studio.pell.Tamo")) +
               key("CFBundleInfoDictionaryVersion", text("6.0")) + key("CFBundleName", text("Tamo")) +
               key("CFBundlePackageType", text("APPL")) + key("CFBundleShortVersionString", text("1.0")) +
               key("CFBundleVersion", text(build)) + key("LSMinimumSystemVersion", text("13.0")) +
               key("NSPrincipalClass", text("NSApplication")));
}

std::string sampleAgentList(const Definition& definition, const std::string& program) {
  std::string arguments = "<array>\n\t\t" + text(program);
  for (const auto& argument : definition.arguments)
    arguments += "\t\t" + text(argument);
  arguments += "\t</array>\n";
  return whole(key("Label", text("studio.pell.tamo.core")) +
               key("BundleProgram", text("Contents/MacOS/tamo-core-agent")) +
               key("ProgramArguments", arguments) +
               key("AssociatedBundleIdentifiers", text("studio.pell.Tamo")) +
               key("ExitTimeOut", "<integer>" + std::to_string(definition.exitTimeout) + "</integer>\n") +
               key("KeepAlive", "<true/>\n") + key("RunAtLoad", "<true/>\n"));
}

}  // namespace tamo::acceptance

#include "stage/control/property_list_text.hpp"

#include <cstdlib>
#include <memory>
#include <plist/plist.h>

#include "values/fatal.hpp"

namespace tamo::stage {
namespace {

using values::PropertyList;

/// Only what stands between tags is written, so quotes need no escape.
std::string escapedXml(const std::string& text) {
  std::string result;
  for (const char character : text) {
    if (character == '&') {
      result += "&amp;";
    } else if (character == '<') {
      result += "&lt;";
    } else if (character == '>') {
      result += "&gt;";
    } else {
      result += character;
    }
  }
  return result;
}

/// One element a line and indented, as people expect the file when they open it.
class XmlWriter {
 public:
  void write(const PropertyList& list) {
    std::visit([this](const auto& value) { element(value); }, list.value);
  }
  [[nodiscard]] const std::string& text() const { return text_; }

 private:
  void line(const std::string& what) { text_ += std::string(depth_, '\t') + what + "\n"; }

  // NOLINTNEXTLINE(readability-convert-member-functions-to-static): called as one of the overloads.
  void element(const PropertyList::Other& /*value*/) {
    values::fatal("a stage writes no such property list");
  }
  void element(bool value) { line(value ? "<true/>" : "<false/>"); }
  void element(std::int64_t value) { line("<integer>" + std::to_string(value) + "</integer>"); }
  void element(std::uint64_t value) { line("<integer>" + std::to_string(value) + "</integer>"); }
  void element(double value) { line("<real>" + std::to_string(value) + "</real>"); }
  void element(const std::string& value) { line("<string>" + escapedXml(value) + "</string>"); }
  void element(const PropertyList::Array& values) {
    line("<array>");
    ++depth_;
    for (const auto& value : values)
      write(value);
    --depth_;
    line("</array>");
  }
  void element(const PropertyList::Dictionary& entries) {
    line("<dict>");
    ++depth_;
    for (const auto& [key, value] : entries) {
      line("<key>" + escapedXml(key) + "</key>");
      write(value);
    }
    --depth_;
    line("</dict>");
  }

  std::string text_;
  std::size_t depth_ = 0;
};

struct FreePlist {
  void operator()(void* plist) const { plist_free(plist); }
};
struct FreeBytes {
  void operator()(char* bytes) const { std::free(bytes); }
};

}  // namespace

std::string xmlPropertyList(const PropertyList& list) {
  XmlWriter writer;
  writer.write(list);
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
         "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
         "<plist version=\"1.0\">\n" +
         writer.text() + "</plist>\n";
}

/// By way of the XML form, which the library reads, so that there is one writer here.
std::string binaryPropertyList(const PropertyList& list) {
  const auto xml = xmlPropertyList(list);
  plist_t parsed = nullptr;
  plist_from_xml(xml.data(), static_cast<std::uint32_t>(xml.size()), &parsed);
  const std::unique_ptr<void, FreePlist> owned(parsed);
  // Of a list that could not be read there are no bytes either, which stops the process below.
  char* bytes = nullptr;
  std::uint32_t size = 0;
  plist_to_bin(parsed, &bytes, &size);
  const std::unique_ptr<char, FreeBytes> ownedBytes(bytes);
  if (bytes == nullptr) values::fatal("a property list could not be written in the binary form");
  return std::string(bytes, size);
}

}  // namespace tamo::stage

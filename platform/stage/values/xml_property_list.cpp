#include "platform/stage/values/xml_property_list.hpp"

#include <expat.h>
#include <memory>

#include "platform/stage/values/property_list_builder.hpp"

namespace tamo::stage {
namespace {

using platform::PropertyList;

/// One run of the parser over a document. Nothing may be thrown through the parser's frames, so the handlers
/// are noexcept: without memory the process ends.
class Reading {
 public:
  [[nodiscard]] std::optional<PropertyList> read(std::string_view bytes) {
    if (parser_ == nullptr) return std::nullopt;
    XML_SetUserData(parser_.get(), this);
    XML_SetElementHandler(parser_.get(), &onBegin, &onEnd);
    XML_SetCharacterDataHandler(parser_.get(), &onText);
    XML_SetEntityDeclHandler(parser_.get(), &onEntityDeclaration);
    XML_SetSkippedEntityHandler(parser_.get(), &onSkippedEntity);
    const auto status = XML_Parse(parser_.get(), bytes.data(), static_cast<int>(bytes.size()), XML_TRUE);
    if (status != XML_STATUS_OK) return std::nullopt;
    return builder_.result();
  }

 private:
  /// The parser may still tell of the end of an empty element after it was stopped at its beginning.
  template <class Event>
  void proceed(Event event) {
    if (stopped_ || event()) return;
    stopped_ = true;
    XML_StopParser(parser_.get(), XML_FALSE);
  }

  static Reading& of(void* data) { return *static_cast<Reading*>(data); }
  static void refuse(void* data) {
    of(data).proceed([] { return false; });
  }

  static void onBegin(void* data, const XML_Char* name, const XML_Char** /*attributes*/) noexcept {
    of(data).proceed([data, name] { return of(data).builder_.begin(name); });
  }
  static void onEnd(void* data, const XML_Char* /*name*/) noexcept {
    of(data).proceed([data] { return of(data).builder_.end(); });
  }
  static void onText(void* data, const XML_Char* text, int size) noexcept {
    const std::string_view whole(text, static_cast<std::size_t>(size));
    of(data).proceed([data, whole] { return of(data).builder_.text(whole); });
  }
  static void onSkippedEntity(void* data, const XML_Char* /*name*/, int /*isParameter*/) noexcept {
    refuse(data);
  }
  static void onEntityDeclaration(void* data, const XML_Char* /*name*/, int /*isParameter*/,
                                  const XML_Char* /*value*/, int /*size*/, const XML_Char* /*base*/,
                                  const XML_Char* /*systemId*/, const XML_Char* /*publicId*/,
                                  const XML_Char* /*notation*/) noexcept {
    refuse(data);
  }

  struct Free {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
  };
  std::unique_ptr<XML_ParserStruct, Free> parser_{XML_ParserCreate(nullptr)};
  PropertyListBuilder builder_;
  bool stopped_ = false;
};

}  // namespace

std::optional<PropertyList> readXmlPropertyList(std::string_view bytes) {
  return Reading().read(bytes);
}

}  // namespace tamo::stage

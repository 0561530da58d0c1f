#include "values/open/xml_property_list.hpp"

#include <algorithm>
#include <cstring>
#include <expat.h>
#include <memory>
#include <string>
#include <sys/auxv.h>

#include "values/open/property_list_builder.hpp"

namespace tamo::values::open {
namespace {

/// What the parser mixes into its tables, so that no document can be made to fill them badly. The kernel has handed every
/// process as much chance as that takes at its start; without a salt the parser asks it for some more each time.
unsigned long ownSalt() {
  unsigned long salt = 0;
  // The auxiliary vector holds the number of an address. NOLINTNEXTLINE(performance-no-int-to-ptr)
  const auto* chance = reinterpret_cast<const char*>(::getauxval(AT_RANDOM));
  if (chance != nullptr) std::memcpy(&salt, chance, sizeof salt);
  return salt;
}

/// One run of the parser over a document. Nothing may be thrown through the parser's frames, so the handlers
/// are noexcept: without memory the process ends.
class Reading {
 public:
  explicit Reading(std::string_view bytes) : bytes_(bytes) {}

  [[nodiscard]] std::optional<PropertyList> read() {
    if (parser_ == nullptr) return std::nullopt;
    XML_SetHashSalt(parser_.get(), ownSalt());
    XML_SetUserData(parser_.get(), this);
    XML_SetElementHandler(parser_.get(), &onBegin, &onEnd);
    XML_SetCharacterDataHandler(parser_.get(), &onText);
    XML_SetStartCdataSectionHandler(parser_.get(), &onLiteral);
    XML_SetCommentHandler(parser_.get(), &onComment);
    XML_SetProcessingInstructionHandler(parser_.get(), &onInstruction);
    XML_SetStartDoctypeDeclHandler(parser_.get(), &onDocumentType);
    XML_SetSkippedEntityHandler(parser_.get(), &onSkippedEntity);
    const auto status = XML_Parse(parser_.get(), bytes_.data(), static_cast<int>(bytes_.size()), XML_TRUE);
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

  /// How the document writes what an event is about: the first bytes of it, or the last. The zeros of a wide
  /// encoding are left out.
  enum class End { Front, Back };
  [[nodiscard]] std::string written(End end) const {
    constexpr std::size_t twoWideCharacters = 4;
    auto whole = bytes_.substr(static_cast<std::size_t>(XML_GetCurrentByteIndex(parser_.get())),
                               static_cast<std::size_t>(XML_GetCurrentByteCount(parser_.get())));
    if (end == End::Back) whole.remove_prefix(whole.size() - std::min(whole.size(), twoWideCharacters));
    std::string few(whole.substr(0, twoWideCharacters));
    std::erase(few, '\0');
    return few;
  }

  /// The parser makes each end of a line a line feed; macOS leaves it as it is.
  bool takeText(std::string_view text) {
    const auto first = written(End::Front);
    if (first.starts_with('&')) return builder_.reference(text);
    return builder_.text(text == "\n" ? first : text);
  }

  static bool holdsOneOf(const XML_Char* brackets, const XML_Char* value) {
    return value != nullptr && std::string_view(value).find_first_of(brackets) != std::string_view::npos;
  }

  /// A Mac ends an element at its first ">", also in the value of an attribute, and reads the rest as text.
  bool takeBegin(const XML_Char* name, const XML_Char** attributes) {
    for (; *attributes != nullptr; ++attributes)
      if (holdsOneOf(">", *attributes)) return false;
    return builder_.begin(name, written(End::Back).ends_with("/>"));
  }

  static Reading& of(void* data) { return *static_cast<Reading*>(data); }
  static void refuse(void* data) {
    of(data).proceed([] { return false; });
  }

  static void onBegin(void* data, const XML_Char* name, const XML_Char** attributes) noexcept {
    of(data).proceed([data, name, attributes] { return of(data).takeBegin(name, attributes); });
  }
  static void onEnd(void* data, const XML_Char* /*name*/) noexcept {
    of(data).proceed([data] { return of(data).builder_.end(); });
  }
  static void onText(void* data, const XML_Char* text, int size) noexcept {
    const std::string_view whole(text, static_cast<std::size_t>(size));
    of(data).proceed([data, whole] { return of(data).takeText(whole); });
  }
  static void onLiteral(void* data) noexcept {
    of(data).proceed([data] { return of(data).builder_.literal(); });
  }
  static void onComment(void* data, const XML_Char* /*text*/) noexcept {
    of(data).proceed([data] { return of(data).builder_.aside(); });
  }
  static void onInstruction(void* data, const XML_Char* /*target*/, const XML_Char* /*text*/) noexcept {
    of(data).proceed([data] { return of(data).builder_.aside(); });
  }
  /// Declarations within the document could define entities, one out of many others, that grow without bound.
  static void onDocumentType(void* data, const XML_Char* /*name*/, const XML_Char* systemId,
                             const XML_Char* /*publicId*/, int hasDeclarations) noexcept {
    if (hasDeclarations != 0 || holdsOneOf(">[", systemId)) refuse(data);
  }
  /// Where a document type names another document, the parser passes over entities that it doesn't know, and a text
  /// would lose a piece in silence.
  static void onSkippedEntity(void* data, const XML_Char* /*name*/, int /*isParameter*/) noexcept {
    refuse(data);
  }

  struct Free {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
  };
  std::string_view bytes_;
  std::unique_ptr<XML_ParserStruct, Free> parser_{XML_ParserCreate(nullptr)};
  PropertyListBuilder builder_;
  bool stopped_ = false;
};

}  // namespace

std::optional<PropertyList> readXmlPropertyList(std::string_view bytes) {
  return Reading(bytes).read();
}

}  // namespace tamo::values::open

#include "app/platform-kit/TrimmedText.h"
#include "platform/linux/desktop/Appcast.h"

#include <boost/url/parse.hpp>
#include <boost/url/url_view.hpp>
#include <expat.h>
#include <fmt/format.h>

#include <array>
#include <limits>
#include <memory>
#include <new>
#include <utility>

namespace ventolith::platform {

namespace {

// A name is its namespace and its local part, with a character between them that no namespace holds.
constexpr char separator = ' ';
constexpr std::string_view versionName = "http://www.andymatuschak.org/xml-namespaces/sparkle version";
constexpr std::string_view shortVersionName =
    "http://www.andymatuschak.org/xml-namespaces/sparkle shortVersionString";
constexpr std::string_view channelName = "http://www.andymatuschak.org/xml-namespaces/sparkle channel";

/// The elements around what is read, from the root on.
constexpr std::array<std::string_view, 3> frame = {"rss", "channel", "item"};
constexpr std::size_t channelDepth = 2; // Of what stands in the channel.
constexpr std::size_t itemDepth = 3;

using Text = std::optional<std::string>;

bool isWebPage(const std::string& text) {
  const auto url = boost::urls::parse_uri(text);
  if (!url || url->encoded_host().empty()) return false;
  return url->scheme_id() == boost::urls::scheme::https || url->scheme_id() == boost::urls::scheme::http;
}

Text pageOf(Text link) {
  return link && isWebPage(*link) ? std::move(link) : std::nullopt;
}

/// An item as it stands in the feed.
struct RawItem {
  Text version;
  Text shortVersion;
  Text channel;
  Text link;
  Text enclosureVersion;
  Text enclosureShortVersion;

  [[nodiscard]] std::optional<AppcastItem> checked() && {
    Text build = version ? std::move(version) : std::move(enclosureVersion);
    if (!build || !isDottedNumber(*build)) return std::nullopt;
    Text display = shortVersion ? std::move(shortVersion) : std::move(enclosureShortVersion);
    if (!display || display->empty()) display = build;
    return AppcastItem{std::move(*build), std::move(*display), std::move(channel), pageOf(std::move(link))};
  }
};

class Reader {
public:
  Reader() : parser_(XML_ParserCreateNS(nullptr, separator)) {
    if (!parser_) throw std::bad_alloc();
    XML_SetUserData(parser_.get(), this);
    XML_SetStartDoctypeDeclHandler(parser_.get(), [](void* reader, auto*, auto*, auto*, int) {
      static_cast<Reader*>(reader)->fail("it declares a document type");
    });
    XML_SetElementHandler(
        parser_.get(),
        [](void* reader, const XML_Char* name, const XML_Char** attributes) {
          static_cast<Reader*>(reader)->begin(name, attributes);
        },
        [](void* reader, const XML_Char*) { static_cast<Reader*>(reader)->end(); });
    XML_SetCharacterDataHandler(parser_.get(), [](void* reader, const XML_Char* text, int length) {
      static_cast<Reader*>(reader)->append({text, static_cast<std::size_t>(length)});
    });
  }

  AppcastResult read(std::string_view text) && {
    if (text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()))
      return AppcastError{"it is too long"};
    const auto status = XML_Parse(parser_.get(), text.data(), static_cast<int>(text.size()), XML_TRUE);
    if (status != XML_STATUS_OK && reason_.empty())
      reason_ = XML_ErrorString(XML_GetErrorCode(parser_.get()));
    if (!reason_.empty())
      return AppcastError{fmt::format("line {}: {}", XML_GetCurrentLineNumber(parser_.get()), reason_)};
    appcast_.page = pageOf(std::move(link_));
    return std::move(appcast_);
  }

private:
  struct ParserEnd {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
  };

  void fail(std::string reason) {
    if (reason_.empty()) reason_ = std::move(reason);
    XML_StopParser(parser_.get(), XML_FALSE);
  }
  [[nodiscard]] bool hasFailed() const { return !reason_.empty(); }

  void begin(std::string_view name, const XML_Char** attributes) {
    if (hasFailed()) return;
    const std::size_t outer = depth_++;
    if (depth_ > AppcastLimits::depth) return fail("its elements lie too deep");
    if (outer == 0 && name != frame[0]) return fail("it is no RSS");
    if (framed_ != outer) return;
    if (outer < frame.size() && name == frame[outer]) {
      ++framed_;
      return;
    }
    if (outer == itemDepth && name == "enclosure") return takeEnclosure(attributes);
    Text* const place = placeOf(name, outer);
    if (place == nullptr || *place) return;
    place->emplace();
    text_ = place;
  }

  void end() {
    if (hasFailed()) return;
    --depth_;
    if (text_ != nullptr && depth_ == framed_) {
      *text_ = std::string(app::trimmed(**text_));
      text_ = nullptr;
    }
    if (framed_ <= depth_) return;
    framed_ = depth_;
    if (framed_ == itemDepth - 1) endItem();
  }

  /// Of an element that is kept, what stands directly in it.
  void append(std::string_view text) {
    if (hasFailed() || text_ == nullptr || depth_ != framed_ + 1) return;
    if (text.size() > AppcastLimits::characters - (*text_)->size()) return fail("a text is too long");
    (*text_)->append(text);
  }

  [[nodiscard]] Text* placeOf(std::string_view name, std::size_t outer) {
    if (outer == channelDepth) return name == "link" ? &link_ : nullptr;
    if (outer != itemDepth) return nullptr;
    if (name == versionName) return &item_.version;
    if (name == shortVersionName) return &item_.shortVersion;
    if (name == channelName) return &item_.channel;
    return name == "link" ? &item_.link : nullptr;
  }

  void takeEnclosure(const XML_Char** attributes) {
    for (const XML_Char** name = attributes; *name != nullptr; name += 2) {
      takeAttribute(*name, versionName, name[1], item_.enclosureVersion);
      takeAttribute(*name, shortVersionName, name[1], item_.enclosureShortVersion);
    }
  }
  void takeAttribute(std::string_view name, std::string_view wanted, std::string_view value, Text& place) {
    if (name != wanted || place) return;
    if (value.size() > AppcastLimits::characters) return fail("a text is too long");
    place = std::string(app::trimmed(value));
  }

  void endItem() {
    if (++itemCount_ > AppcastLimits::items) return fail("it has too many items");
    if (auto item = std::exchange(item_, {}).checked()) appcast_.items.push_back(std::move(*item));
  }

  std::unique_ptr<XML_ParserStruct, ParserEnd> parser_;
  std::string reason_;     // Not empty once the text has proved to be no feed.
  std::size_t depth_ = 0;  // Elements that are open.
  std::size_t framed_ = 0; // So many of them, from the root on, are those of `frame`.
  std::size_t itemCount_ = 0;
  Text* text_ = nullptr; // Where the text of the open element goes.
  Text link_;
  RawItem item_;
  Appcast appcast_;
};

} // namespace

AppcastResult parseAppcast(std::string_view text) {
  return Reader().read(text);
}

} // namespace ventolith::platform

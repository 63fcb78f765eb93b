#include "app/platform-kit/PropertyList.h"

#include <expat.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <memory>
#include <new>
#include <optional>
#include <set>
#include <type_traits>
#include <utility>
#include <vector>

namespace ventolith::app {

namespace {

enum class Kind { plist, dictionary, array, key, string, boolean, other };

struct Tag {
  std::string_view name;
  Kind kind;
};
constexpr std::array tags{
    Tag{"plist", Kind::plist},   Tag{"dict", Kind::dictionary}, Tag{"array", Kind::array},
    Tag{"key", Kind::key},       Tag{"string", Kind::string},   Tag{"true", Kind::boolean},
    Tag{"false", Kind::boolean}, Tag{"integer", Kind::other},   Tag{"real", Kind::other},
    Tag{"date", Kind::other},    Tag{"data", Kind::other}};

std::optional<Kind> kindOf(std::string_view name) {
  const auto* const tag =
      std::find_if(tags.begin(), tags.end(), [&](const Tag& one) { return one.name == name; });
  return tag == tags.end() ? std::nullopt : std::optional(tag->kind);
}

bool hasText(Kind kind) {
  return kind == Kind::key || kind == Kind::string || kind == Kind::other;
}

bool isBlank(std::string_view text) {
  return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

/// One document. The parser's callbacks end in its functions, and none of them throws but for want of memory.
class Reading {
public:
  Reading() : parser_(XML_ParserCreate("UTF-8")) {
    if (!parser_) throw std::bad_alloc();
    XML_SetUserData(parser_.get(), this);
    XML_SetElementHandler(
        parser_.get(), [](void* self, const XML_Char* name, const XML_Char**) { of(self).begin(name); },
        [](void* self, const XML_Char* name) { of(self).end(name); });
    XML_SetCharacterDataHandler(parser_.get(), [](void* self, const XML_Char* text, int length) {
      of(self).append({text, static_cast<std::size_t>(length)});
    });
    XML_SetStartDoctypeDeclHandler(
        parser_.get(), [](void* self, const XML_Char*, const XML_Char*, const XML_Char*, int hasSubset) {
          if (hasSubset != 0) of(self).fail("a document type with declarations of its own");
        });
    // What the document type, which is not looked at, might have declared.
    XML_SetSkippedEntityHandler(parser_.get(), [](void* self, const XML_Char* name, int) {
      of(self).fail(fmt::format("the entity {} is not known", name));
    });
  }

  PropertyListResult result(std::string_view text) {
    const auto status = XML_Parse(parser_.get(), text.data(), static_cast<int>(text.size()), XML_TRUE);
    if (!error_ && status != XML_STATUS_OK) fail(XML_ErrorString(XML_GetErrorCode(parser_.get())));
    if (!error_ && !isDictionaryRead_) fail("no dictionary");
    if (error_) return *error_;
    return std::move(values_);
  }

private:
  struct Element {
    Kind kind;
    bool awaitsValue = false; // Of a dictionary: after a key.
  };
  struct FreeParser {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
  };

  static Reading& of(void* self) { return *static_cast<Reading*>(self); }

  /// The first failure counts; the parser may still deliver what it had begun.
  void fail(std::string_view what) {
    if (error_) return;
    error_ = PropertyListError{fmt::format("line {}: {}", XML_GetCurrentLineNumber(parser_.get()), what)};
    XML_StopParser(parser_.get(), XML_FALSE);
  }

  void begin(std::string_view name) {
    if (error_) return;
    const auto kind = kindOf(name);
    if (!kind) return fail(fmt::format("<{}> is no property list's", name.substr(0, 40)));
    if (path_.size() == deepestPropertyListElement) return fail("nested too deeply");
    if (const auto* const problem = problemOf(*kind)) return fail(fmt::format("<{}> {}", name, problem));
    path_.push_back({*kind});
    text_.clear();
  }

  /// Why an element of that kind may not stand here.
  const char* problemOf(Kind kind) {
    if (path_.empty()) return kind == Kind::plist ? nullptr : "in the place of <plist>";
    if (kind == Kind::plist) return "inside another element";
    Element& parent = path_.back();
    switch (parent.kind) {
    case Kind::plist:
      if (kind != Kind::dictionary) return "in the place of <dict>";
      return isDictionaryRead_ ? "after the dictionary" : nullptr;
    case Kind::dictionary:
      if ((kind == Kind::key) == parent.awaitsValue)
        return parent.awaitsValue ? "in the place of a value" : "without a key";
      parent.awaitsValue = kind == Kind::key;
      return nullptr;
    case Kind::array: return kind == Kind::key ? "inside an array" : nullptr;
    case Kind::key:
    case Kind::string:
    case Kind::boolean:
    case Kind::other: break;
    }
    return "inside a single value";
  }

  void append(std::string_view text) {
    if (error_ || path_.empty()) return;
    if (hasText(path_.back().kind)) {
      text_ += text;
    } else if (!isBlank(text)) {
      fail("text between elements");
    }
  }

  void end(std::string_view name) {
    if (error_) return;
    const Element element = path_.back();
    path_.pop_back();
    if (element.awaitsValue) return fail("a key without a value");
    if (path_.size() == 1) isDictionaryRead_ = true;
    if (path_.size() == 2) keep(element.kind, name);
  }

  /// A part of the outermost dictionary.
  void keep(Kind kind, std::string_view name) {
    switch (kind) {
    case Kind::key:
      key_ = std::move(text_);
      if (!keys_.insert(key_).second) fail("a key stands twice");
      break;
    case Kind::string: values_.emplace(key_, std::move(text_)); break;
    case Kind::boolean: values_.emplace(key_, name == "true"); break;
    case Kind::plist:
    case Kind::dictionary:
    case Kind::array:
    case Kind::other: break;
    }
  }

  std::unique_ptr<std::remove_pointer_t<XML_Parser>, FreeParser> parser_;
  std::vector<Element> path_;
  std::string text_; // Of the innermost element, so far.
  std::string key_;  // The latest of the outermost dictionary.
  std::set<std::string> keys_;
  MapBundleInfo::Values values_;
  bool isDictionaryRead_ = false;
  std::optional<PropertyListError> error_;
};

} // namespace

PropertyListResult parsePropertyList(std::string_view text) {
  if (text.size() > mostPropertyListBytes) return PropertyListError{"too long"};
  return Reading().result(text);
}

PropertyListResult readPropertyList(runtime::FileLayer& files, const std::filesystem::path& file) {
  const auto text = files.read(file, mostPropertyListBytes);
  if (!text) return PropertyListError{text.error().message()};
  return parsePropertyList(*text);
}

} // namespace ventolith::app

#include "core/JSON.h"

#include "core/Excerpt.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <set>

namespace ventolith::core {

using Kind = DecodeError::Kind;

namespace {

// Of a path and of a description, as a whole. What they quote is shorter than that.
constexpr std::size_t longestPart = 240;
constexpr const char* invalidNumberOfKeys = "Invalid number of keys found, expected one.";

/// Watches a parse and ends it at the first bound that is passed.
class BoundsWatch {
public:
  explicit BoundsWatch(const JSONBounds& bounds) : bounds_(bounds) {}

  void enterObject() {
    enter();
    keys_.emplace_back();
  }

  void leaveObject() {
    --depth_;
    keys_.pop_back();
  }

  void enterList() { enter(); }

  void leaveList() { --depth_; }

  void key(const std::string& name) {
    if (keys_.back().size() >= bounds_.membersOfAnObject) {
      fail(fmt::format("an object with more than {} members", bounds_.membersOfAnObject));
    }
    if (!keys_.back().insert(name).second)
      fail(fmt::format("the key \"{}\" stands twice in one object", excerpt(name)));
  }

  void count() {
    if (++values_ > bounds_.values) fail(fmt::format("more than {} values", bounds_.values));
  }

private:
  void enter() {
    if (++depth_ > bounds_.depth) fail(fmt::format("nested deeper than {} levels", bounds_.depth));
    count();
  }

  [[noreturn]] static void fail(std::string_view description) {
    throw DecodeError(Kind::dataCorrupted, "", description);
  }

  const JSONBounds& bounds_;
  std::size_t depth_ = 0;
  std::size_t values_ = 0;
  std::vector<std::set<std::string>> keys_; // Of each object that is open.
};

/// What the parser says, without the tag in square brackets that it puts first.
std::string_view reason(const JSON::exception& error) {
  const std::string_view text = error.what();
  const auto tagEnd = text.find("] ");
  return tagEnd == std::string_view::npos ? text : text.substr(tagEnd + 2);
}

/// Makes a document of what the parser reports, within bounds. The library's own way to watch a parse looks
/// through all elements of a list each time that one ends, which takes a minute for a list of 4 MB.
class DocumentBuilder {
public:
  explicit DocumentBuilder(const JSONBounds& bounds) : watch_(bounds) {}

  [[nodiscard]] JSON takeDocument() { return std::move(document_); }

  // The events of a parse, named by the library. True goes on.
  bool null() { return addLeaf(nullptr); }
  bool boolean(bool value) { return addLeaf(value); }
  bool number_integer(JSON::number_integer_t value) { return addLeaf(value); }
  bool number_unsigned(JSON::number_unsigned_t value) { return addLeaf(value); }
  bool number_float(JSON::number_float_t value, const std::string&) { return addLeaf(value); }
  bool string(std::string& value) { return addLeaf(std::move(value)); }
  bool binary(JSON::binary_t&) { return false; } // No such thing in a text.

  bool start_object(std::size_t) {
    watch_.enterObject();
    open_.push_back(&add(JSON::object()));
    return true;
  }
  bool key(std::string& name) {
    watch_.key(name);
    key_ = std::move(name);
    return true;
  }
  bool end_object() {
    watch_.leaveObject();
    open_.pop_back();
    return true;
  }
  bool start_array(std::size_t) {
    watch_.enterList();
    open_.push_back(&add(JSON::array()));
    return true;
  }
  bool end_array() {
    watch_.leaveList();
    open_.pop_back();
    return true;
  }

  bool parse_error(std::size_t, const std::string&, const JSON::exception& error) {
    throw DecodeError(Kind::dataCorrupted, "", fmt::format("not valid JSON: {}", reason(error)));
  }

private:
  template <class Value>
  bool addLeaf(Value&& value) {
    watch_.count();
    add(JSON(std::forward<Value>(value)));
    return true;
  }

  /// Into the innermost list or object that is open.
  JSON& add(JSON value) {
    if (open_.empty()) return document_ = std::move(value);
    JSON& parent = *open_.back();
    if (parent.is_array()) return parent.get_ref<JSON::array_t&>().emplace_back(std::move(value));
    // The watch has seen that the key is new, so that it need not be looked for again.
    auto& members = parent.get_ref<JSON::object_t&>();
    static_cast<JSON::object_t::Container&>(members).emplace_back(std::move(key_), std::move(value));
    return members.back().second;
  }

  BoundsWatch watch_;
  JSON document_;
  std::string key_;         // Of the member that comes next.
  std::vector<JSON*> open_; // From the outermost to the innermost; none of them grows but the last.
};

std::string joined(const std::string& path, const std::string& description) {
  return path.empty() ? description : path + ": " + description;
}

std::string_view typeName(const JSON& value) {
  if (value.is_null()) return "null";
  if (value.is_boolean()) return "a boolean";
  if (value.is_string()) return "a string";
  if (value.is_array()) return "a list";
  if (value.is_object()) return "an object";
  return "a number";
}

} // namespace

DecodeError::DecodeError(Kind kind, std::string_view path, std::string_view description)
    : std::runtime_error(joined(excerpt(path, longestPart), excerpt(description, longestPart))),
      kind_(kind),
      path_(excerpt(path, longestPart)),
      description_(excerpt(description, longestPart)) {}

JSON parseJSON(std::string_view text, const JSONBounds& bounds) {
  if (text.size() > bounds.bytes) {
    throw DecodeError(Kind::dataCorrupted, "",
                      fmt::format("{} bytes, more than the {} that are read", text.size(), bounds.bytes));
  }
  if (text.find('\0') != std::string_view::npos) { // The parser would take it for the end of the text.
    throw DecodeError(Kind::dataCorrupted, "", "not valid JSON: a zero byte");
  }
  DocumentBuilder builder(bounds);
  JSON::sax_parse(text.begin(), text.end(), &builder); // A refusal is thrown.
  return builder.takeDocument();
}

JSONReader JSONReader::at(std::string_view key) const {
  expectObject();
  const auto member = value_.find(key);
  if (member == value_.end()) {
    // The path is that of the missing key: it is where something has to be put.
    const JSONReader missing(value_, this, key, 0);
    missing.fail(Kind::keyNotFound, "required key not found");
  }
  return {*member, this, key, 0};
}

std::optional<JSONReader> JSONReader::find(std::string_view key) const {
  expectObject();
  const auto member = value_.find(key);
  if (member == value_.end() || member->is_null()) return std::nullopt;
  return JSONReader(*member, this, key, 0);
}

std::string_view JSONReader::onlyCase(std::initializer_list<std::string_view> cases) const {
  expectObject();
  const auto isThere = [this](std::string_view name) { return value_.contains(name); };
  if (std::count_if(cases.begin(), cases.end(), isThere) != 1) fail(Kind::typeMismatch, invalidNumberOfKeys);
  return *std::find_if(cases.begin(), cases.end(), isThere);
}

std::size_t JSONReader::size() const {
  if (!value_.is_array())
    fail(Kind::typeMismatch, fmt::format("expected a list, found {}", typeName(value_)));
  return value_.size();
}

JSONReader JSONReader::element(std::size_t place) const {
  return {value_[place], this, {}, place};
}

double JSONReader::asDouble() const {
  if (!value_.is_number())
    fail(Kind::typeMismatch, fmt::format("expected a number, found {}", typeName(value_)));
  return value_.get<double>();
}

std::int64_t JSONReader::asInteger() const {
  if (value_.is_number_unsigned()) {
    const auto number = value_.get<std::uint64_t>();
    if (number > static_cast<std::uint64_t>(INT64_MAX)) {
      fail(Kind::typeMismatch, "the number does not fit a signed 64-bit integer");
    }
    return static_cast<std::int64_t>(number);
  }
  if (value_.is_number_integer()) return value_.get<std::int64_t>();
  const double number = asDouble();
  constexpr double beyond = 9223372036854775808.0; // 2^63, to which what is just beyond is rounded.
  if (number <= -beyond || number >= beyond || std::trunc(number) != number) {
    fail(Kind::typeMismatch, "expected a whole number of at most 64 bits");
  }
  return static_cast<std::int64_t>(number);
}

bool JSONReader::asBoolean() const {
  if (!value_.is_boolean())
    fail(Kind::typeMismatch, fmt::format("expected a boolean, found {}", typeName(value_)));
  return value_.get<bool>();
}

const std::string& JSONReader::asString() const {
  if (!value_.is_string())
    fail(Kind::typeMismatch, fmt::format("expected a string, found {}", typeName(value_)));
  return value_.get_ref<const std::string&>();
}

UUID JSONReader::asUUID() const {
  const auto id = uuidFromText(asString());
  if (!id) fail(Kind::dataCorrupted, "expected a UUID in its hyphenated form");
  return *id;
}

void JSONReader::expectObject() const {
  if (!value_.is_object())
    fail(Kind::typeMismatch, fmt::format("expected an object, found {}", typeName(value_)));
}

std::string JSONReader::path() const {
  if (parent_ == nullptr) return {};
  std::string path = parent_->path();
  if (key_.data() == nullptr) return path + fmt::format("[{}]", place_);
  if (!path.empty()) path += '.';
  return path.append(excerpt(key_));
}

void JSONReader::fail(Kind kind, std::string_view description) const {
  throw DecodeError(kind, path(), description);
}

} // namespace ventolith::core

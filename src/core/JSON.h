// Reading JSON that may come from anybody: bounded in size, depth and members before anything is built
// of it, and with failures that say where they are.
#pragma once

#include "core/UUID.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace ventolith::core {

/// A JSON document that keeps the order of its keys.
using JSON = nlohmann::ordered_json;

/// Why a text is no such record. `what()` is the path, a colon and the description; at the root of the
/// document the path is left out. Both are excerpts: free of control characters, and short however long
/// the text is that they quote.
class DecodeError : public std::runtime_error {
public:
  enum class Kind {
    keyNotFound,
    typeMismatch,
    dataCorrupted, ///< No JSON, or beyond a bound.
  };

  DecodeError(Kind kind, std::string_view path, std::string_view description);

  [[nodiscard]] Kind kind() const { return kind_; }
  /// Keys joined by dots, list places in square brackets: `fans[1].mode.curve._0.points`.
  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] const std::string& description() const { return description_; }

private:
  Kind kind_;
  std::string path_;
  std::string description_;
};

/// What a document may be at the most.
struct JSONBounds {
  std::size_t bytes = 1 << 20;
  std::size_t depth = 32;
  std::size_t membersOfAnObject = 128; // Each new one is compared with those before it.
  std::size_t values = 65536;
};

/// Parses one document. Fails with DecodeError (dataCorrupted) on text that is no JSON, invalid UTF-8,
/// a key that stands twice in one object, a number beyond a 64-bit float, and anything over a bound. A
/// byte-order mark at the start of the text is skipped.
[[nodiscard]] JSON parseJSON(std::string_view text, const JSONBounds& bounds = {});

/// A value of a document, together with the way to it, which a failure names. It refers to the document
/// and to the reader that it was got from, and so does not outlive them.
class JSONReader {
public:
  explicit JSONReader(const JSON& document) : value_(document) {}

  /// The member `key`; fails with keyNotFound if it is missing, typeMismatch if this is no object.
  [[nodiscard]] JSONReader at(std::string_view key) const;

  /// The member `key`, none if it is missing or null. Fails with typeMismatch if this is no object.
  [[nodiscard]] std::optional<JSONReader> find(std::string_view key) const;

  /// The case of an enumeration: the one of `cases` that is a key of this object. Fails with typeMismatch,
  /// "Invalid number of keys found, expected one.", if none of them is, or more than one.
  [[nodiscard]] std::string_view onlyCase(std::initializer_list<std::string_view> cases) const;

  [[nodiscard]] std::size_t size() const; ///< Of a list.
  [[nodiscard]] JSONReader element(std::size_t place) const;

  [[nodiscard]] double asDouble() const;
  /// A whole number in any form; 3.0 and 1e3 are such. Fails with typeMismatch on a fraction and beyond
  /// signed 64 bits. A number with a fraction or an exponent is rounded to a 64-bit float first, and one
  /// that comes to -2^63 there fails too, for it may have been less.
  [[nodiscard]] std::int64_t asInteger() const;
  [[nodiscard]] bool asBoolean() const;
  [[nodiscard]] const std::string& asString() const;
  [[nodiscard]] UUID asUUID() const;
  /// Fails with typeMismatch if this is no object.
  void expectObject() const;

  [[nodiscard]] const JSON& value() const { return value_; }
  [[nodiscard]] std::string path() const;
  [[noreturn]] void fail(DecodeError::Kind kind, std::string_view description) const;

private:
  JSONReader(const JSON& value, const JSONReader* parent, std::string_view key, std::size_t place)
      : value_(value), parent_(parent), key_(key), place_(place) {}

  const JSON& value_;
  const JSONReader* parent_ = nullptr;
  std::string_view key_; // Without data for an element of a list: an empty key is a key.
  std::size_t place_ = 0;
};

/// A list of records, each read by `read`.
template <class Read>
auto readList(const JSONReader& list, Read read) {
  std::vector<decltype(read(list))> records;
  const std::size_t count = list.size();
  records.reserve(count);
  for (std::size_t place = 0; place < count; ++place)
    records.push_back(read(list.element(place)));
  return records;
}

/// Writes `document` on one line: doubles in the shortest form that reads back to the same value, whole
/// ones without a fraction; strings in UTF-8, what is invalid in them replaced. Fails with
/// std::invalid_argument on a number that is not finite, for which JSON has no form.
[[nodiscard]] std::string writeJSON(const JSON& document);

/// Writes `document` for a file that people open: as writeJSON does and fails, but a line for each member
/// and element, two spaces deeper than what it stands in, a space on both sides of a colon, an empty line in
/// what is empty, and slashes escaped. No end of line follows the last line.
[[nodiscard]] std::string writePrettyJSON(const JSON& document);

} // namespace ventolith::core

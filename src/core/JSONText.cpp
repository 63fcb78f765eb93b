#include "core/JSON.h"

#include <fmt/format.h>

#include <cmath>
#include <iterator>

namespace ventolith::core {

namespace {

enum class Layout { oneLine, pretty };

class Writer {
public:
  explicit Writer(Layout layout) : isPretty_(layout == Layout::pretty) {}

  std::string text;

  void write(const JSON& value) {
    switch (value.type()) {
    case JSON::value_t::object: writeObject(value); break;
    case JSON::value_t::array: writeList(value); break;
    case JSON::value_t::number_float: writeNumber(value.get<double>()); break;
    case JSON::value_t::string: writeString(value); break;
    default: text += value.dump(); break;
    }
  }

private:
  void writeObject(const JSON& object) {
    open('{');
    bool isFirst = true;
    for (const auto& [key, member] : object.items()) {
      separate(isFirst);
      writeString(JSON(key));
      text += isPretty_ ? " : " : ":";
      write(member);
      isFirst = false;
    }
    close('}');
  }

  void writeList(const JSON& list) {
    open('[');
    bool isFirst = true;
    for (const JSON& element : list) {
      separate(isFirst);
      write(element);
      isFirst = false;
    }
    close(']');
  }

  void open(char bracket) {
    text += bracket;
    ++depth_;
    if (isPretty_) text += '\n';
  }

  /// Before each member and element.
  void separate(bool isFirst) {
    if (!isFirst) text += ',';
    if (!isPretty_) return;
    if (!isFirst) text += '\n';
    indent();
  }

  void close(char bracket) {
    --depth_;
    if (isPretty_) {
      text += '\n';
      indent();
    }
    text += bracket;
  }

  void indent() { text.append(2 * depth_, ' '); }

  void writeString(const JSON& string) {
    const std::string quoted = string.dump(-1, ' ', false, JSON::error_handler_t::replace);
    if (!isPretty_) {
      text += quoted;
      return;
    }
    for (const char character : quoted) {
      if (character == '/') text += '\\';
      text += character;
    }
  }

  void writeNumber(double number) {
    if (!std::isfinite(number)) throw std::invalid_argument("a number that is not finite has no JSON form");
    fmt::format_to(std::back_inserter(text), "{}", number);
  }

  bool isPretty_;
  std::size_t depth_ = 0;
};

std::string written(const JSON& document, Layout layout) {
  Writer writer(layout);
  writer.write(document);
  return std::move(writer.text);
}

} // namespace

std::string writeJSON(const JSON& document) {
  return written(document, Layout::oneLine);
}

std::string writePrettyJSON(const JSON& document) {
  return written(document, Layout::pretty);
}

} // namespace ventolith::core

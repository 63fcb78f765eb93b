#include "core/JSON.h"

#include <fmt/format.h>

#include <cmath>
#include <iterator>

namespace ventolith::core {

namespace {

class Writer {
public:
  std::string text;

  void write(const JSON& value) {
    switch (value.type()) {
    case JSON::value_t::object: writeObject(value); break;
    case JSON::value_t::array: writeList(value); break;
    case JSON::value_t::number_float: writeNumber(value.get<double>()); break;
    default: text += value.dump(-1, ' ', false, JSON::error_handler_t::replace); break;
    }
  }

private:
  void writeObject(const JSON& object) {
    char separator = '{';
    for (const auto& [key, member] : object.items()) {
      text += separator;
      write(JSON(key));
      text += ':';
      write(member);
      separator = ',';
    }
    text += separator == '{' ? "{}" : "}";
  }

  void writeList(const JSON& list) {
    char separator = '[';
    for (const JSON& element : list) {
      text += separator;
      write(element);
      separator = ',';
    }
    text += separator == '[' ? "[]" : "]";
  }

  void writeNumber(double number) {
    if (!std::isfinite(number)) throw std::invalid_argument("a number that is not finite has no JSON form");
    fmt::format_to(std::back_inserter(text), "{}", number);
  }
};

} // namespace

std::string writeJSON(const JSON& document) {
  Writer writer;
  writer.write(document);
  return std::move(writer.text);
}

} // namespace ventolith::core

#include "programs/ventolithctl/TraceLineParser.h"

#include <boost/json/basic_parser_impl.hpp>

#include <array>
#include <cmath>
#include <cstdlib>

namespace ventolith::ctl {

namespace {

using ErrorCode = boost::system::error_code;
using Text = boost::json::string_view;

// Far more than a machine has, and within what the decoder accepts of one document.
constexpr std::size_t maxRecords = 4096;

enum class Key {
  t,
  fans,
  temps,
  reset,
  id,
  name,
  currentRPM,
  minRPM,
  maxRPM,
  mode,
  key,
  celsius,
  category,
  source
};

struct KeyName {
  Key key;
  std::string_view name;
};

constexpr std::array tickKeys = {KeyName{Key::t, "t"}, KeyName{Key::fans, "fans"},
                                 KeyName{Key::temps, "temps"}, KeyName{Key::reset, "reset"}};
constexpr std::array fanKeys = {
    KeyName{Key::id, "id"},         KeyName{Key::name, "name"},     KeyName{Key::currentRPM, "currentRPM"},
    KeyName{Key::minRPM, "minRPM"}, KeyName{Key::maxRPM, "maxRPM"}, KeyName{Key::mode, "mode"}};
constexpr std::array tempKeys = {KeyName{Key::key, "key"}, KeyName{Key::name, "name"},
                                 KeyName{Key::celsius, "celsius"}, KeyName{Key::category, "category"},
                                 KeyName{Key::source, "source"}};

constexpr unsigned bit(Key key) {
  return 1U << static_cast<unsigned>(key);
}
constexpr unsigned tickNeeds = bit(Key::t) | bit(Key::fans) | bit(Key::temps);
constexpr unsigned fanNeeds =
    bit(Key::id) | bit(Key::name) | bit(Key::currentRPM) | bit(Key::minRPM) | bit(Key::maxRPM);
constexpr unsigned tempNeeds =
    bit(Key::key) | bit(Key::name) | bit(Key::celsius) | bit(Key::category) | bit(Key::source);

template <class Names>
std::optional<Key> find(const Names& names, std::string_view name) {
  for (const KeyName& known : names) {
    if (known.name == name) return known.key;
  }
  return std::nullopt;
}

std::string_view view(Text text) {
  return {text.data(), text.size()};
}

/// Takes the parser's events. Each event answers whether the line is still of the recorded form.
class Handler {
public:
  static constexpr std::size_t max_object_size = static_cast<std::size_t>(-1);
  static constexpr std::size_t max_array_size = static_cast<std::size_t>(-1);
  static constexpr std::size_t max_key_size = static_cast<std::size_t>(-1);
  static constexpr std::size_t max_string_size = static_cast<std::size_t>(-1);

  void begin(TraceTick& tick) {
    tick_ = &tick;
    tick.plan = std::nullopt;
    tick.reset = false;
    place_ = Place::start;
    seen_ = 0;
    part_.clear();
  }

  [[nodiscard]] bool isComplete() const { return place_ == Place::end; }

  bool on_object_begin(ErrorCode& error) { return answer(beginObject(), error); }
  bool on_object_end(std::size_t, ErrorCode& error) { return answer(endObject(), error); }
  bool on_array_begin(ErrorCode& error) { return answer(beginList(), error); }
  bool on_array_end(std::size_t, ErrorCode& error) { return answer(endList(), error); }
  bool on_key(Text text, std::size_t, ErrorCode& error) { return answer(takeKey(whole(text)), error); }
  bool on_string(Text text, std::size_t, ErrorCode& error) { return answer(takeString(whole(text)), error); }
  bool on_int64(std::int64_t value, Text, ErrorCode& error) { return answer(takeInteger(value), error); }
  bool on_double(double, Text text, ErrorCode& error) { return answer(takeDouble(text), error); }
  bool on_bool(bool value, ErrorCode& error) { return answer(takeBoolean(value), error); }

  // Text comes in parts where it has escapes.
  bool on_key_part(Text text, std::size_t, ErrorCode&) { return takePart(text); }
  bool on_string_part(Text text, std::size_t, ErrorCode&) { return takePart(text); }

  bool on_uint64(std::uint64_t, Text, ErrorCode& error) { return answer(false, error); }
  bool on_null(ErrorCode& error) { return answer(false, error); }
  bool on_number_part(Text, ErrorCode& error) { return answer(false, error); }
  bool on_comment_part(Text, ErrorCode& error) { return answer(false, error); }
  bool on_comment(Text, ErrorCode& error) { return answer(false, error); }
  bool on_document_begin(ErrorCode&) { return true; }
  bool on_document_end(ErrorCode&) { return true; }

private:
  enum class Place { start, tick, fans, fan, temps, temp, end };

  static bool answer(bool goesOn, ErrorCode& error) {
    if (!goesOn) error = make_error_code(boost::system::errc::not_supported);
    return goesOn;
  }

  bool takePart(Text text) {
    part_.append(text.data(), text.size());
    return true;
  }

  // The text of which `last` is the last part; valid until the next part.
  std::string_view whole(Text last) {
    if (part_.empty()) return view(last);
    takePart(last);
    whole_.swap(part_);
    part_.clear();
    return whole_;
  }

  bool beginObject() {
    switch (place_) {
    case Place::start: place_ = Place::tick; return true;
    case Place::fans:
      place_ = Place::fan;
      seenOfRecord_ = 0;
      if (fanCount_ == tick_->snapshot.fans.size()) tick_->snapshot.fans.emplace_back();
      fan_ = &tick_->snapshot.fans[fanCount_++];
      fan_->mode = std::nullopt;
      return fanCount_ <= maxRecords;
    case Place::temps:
      place_ = Place::temp;
      seenOfRecord_ = 0;
      if (tempCount_ == tick_->snapshot.temps.size()) tick_->snapshot.temps.emplace_back();
      temp_ = &tick_->snapshot.temps[tempCount_++];
      return tempCount_ <= maxRecords;
    default: return false;
    }
  }

  bool endObject() {
    switch (place_) {
    case Place::tick: place_ = Place::end; return (seen_ & tickNeeds) == tickNeeds;
    case Place::fan: place_ = Place::fans; return (seenOfRecord_ & fanNeeds) == fanNeeds;
    case Place::temp: place_ = Place::temps; return (seenOfRecord_ & tempNeeds) == tempNeeds;
    default: return false;
    }
  }

  bool beginList() {
    if (place_ != Place::tick) return false;
    if (key_ == Key::fans) {
      place_ = Place::fans;
      fanCount_ = 0;
      return true;
    }
    if (key_ != Key::temps) return false;
    place_ = Place::temps;
    tempCount_ = 0;
    return true;
  }

  bool endList() {
    if (place_ == Place::fans) tick_->snapshot.fans.resize(fanCount_);
    if (place_ == Place::temps) tick_->snapshot.temps.resize(tempCount_);
    place_ = Place::tick;
    return true;
  }

  bool takeKey(std::string_view name) {
    switch (place_) {
    case Place::tick: return enter(find(tickKeys, name), seen_);
    case Place::fan: return enter(find(fanKeys, name), seenOfRecord_);
    case Place::temp: return enter(find(tempKeys, name), seenOfRecord_);
    default: return false;
    }
  }

  bool enter(std::optional<Key> key, unsigned& seen) {
    if (!key || (seen & bit(*key)) != 0) return false;
    seen |= bit(*key);
    key_ = *key;
    return true;
  }

  bool takeInteger(std::int64_t value) {
    if (key_ == Key::t || key_ == Key::celsius) return setNumber(static_cast<double>(value));
    if (place_ != Place::fan) return false;
    switch (key_) {
    case Key::id: fan_->id = value; return true;
    case Key::currentRPM: fan_->currentRPM = value; return true;
    case Key::minRPM: fan_->minRPM = value; return true;
    case Key::maxRPM: fan_->maxRPM = value; return true;
    case Key::mode: fan_->mode = value; return true;
    default: return false;
    }
  }

  // The parser's own value is not always the nearest one, so the text is converted here. It is ended by
  // what follows a number inside an object. The locale is "C": this program sets no other.
  bool takeDouble(Text text) { return setNumber(std::strtod(text.data(), nullptr)); }

  bool setNumber(double value) {
    if (!std::isfinite(value)) return false;
    if (place_ == Place::tick && key_ == Key::t)
      tick_->seconds = value;
    else if (place_ == Place::temp && key_ == Key::celsius)
      temp_->celsius = value;
    else
      return false;
    return true;
  }

  bool takeString(std::string_view text) {
    if (place_ == Place::fan && key_ == Key::name) {
      fan_->name = text;
      return true;
    }
    if (place_ != Place::temp) return false;
    switch (key_) {
    case Key::key: temp_->key = text; return true;
    case Key::name: temp_->name = text; return true;
    case Key::category: return set(temp_->category, core::sensorCategory(text));
    case Key::source: return set(temp_->source, core::sensorSource(text));
    default: return false;
    }
  }

  bool takeBoolean(bool value) {
    if (place_ != Place::tick || key_ != Key::reset) return false;
    tick_->reset = value;
    return true;
  }

  template <class Value>
  static bool set(Value& field, std::optional<Value> value) {
    if (value) field = *value;
    return value.has_value();
  }

  TraceTick* tick_ = nullptr;
  core::Fan* fan_ = nullptr;
  core::TempSensor* temp_ = nullptr;
  std::size_t fanCount_ = 0;
  std::size_t tempCount_ = 0;
  Place place_ = Place::start;
  Key key_ = Key::t;
  unsigned seen_ = 0;         // The keys of the line,
  unsigned seenOfRecord_ = 0; // and those of the fan or sensor in it.
  std::string part_;
  std::string whole_;
};

} // namespace

struct TraceLineParser::Implementation {
  boost::json::basic_parser<Handler> parser{boost::json::parse_options{}};
};

TraceLineParser::TraceLineParser() : implementation_(std::make_unique<Implementation>()) {}
TraceLineParser::~TraceLineParser() = default;

bool TraceLineParser::parse(std::string_view line, TraceTick& tick) {
  auto& parser = implementation_->parser;
  parser.reset();
  parser.handler().begin(tick);
  ErrorCode error;
  const std::size_t taken = parser.write_some(false, line.data(), line.size(), error);
  return !error && taken == line.size() && parser.handler().isComplete();
}

} // namespace ventolith::ctl

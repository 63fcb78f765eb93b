// Published fields: an object that tells its observers which of its fields are about to change.
//
// All of it belongs to one thread, the one of the object that is observed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

namespace ventolith::runtime {

/// A set of the fields that `Field` names: an enumeration that counts from zero, of 64 cases at the most.
template <class Field>
class FieldSet {
public:
  constexpr FieldSet() = default;
  constexpr FieldSet(std::initializer_list<Field> fields) {
    for (const Field field : fields)
      bits_ |= bit(field);
  }

  [[nodiscard]] constexpr bool contains(Field field) const { return (bits_ & bit(field)) != 0; }
  [[nodiscard]] constexpr bool isEmpty() const { return bits_ == 0; }
  constexpr FieldSet& operator|=(FieldSet other) {
    bits_ |= other.bits_;
    return *this;
  }
  constexpr FieldSet& operator&=(FieldSet other) {
    bits_ &= other.bits_;
    return *this;
  }
  [[nodiscard]] friend constexpr FieldSet operator|(FieldSet one, FieldSet other) { return one |= other; }
  [[nodiscard]] friend constexpr FieldSet operator&(FieldSet one, FieldSet other) { return one &= other; }
  constexpr bool operator==(const FieldSet&) const = default;

private:
  static constexpr std::uint64_t bit(Field field) {
    return std::uint64_t{1} << static_cast<std::underlying_type_t<Field>>(field);
  }

  std::uint64_t bits_ = 0;
};

/// Ends its observation when it goes away. May outlive what it observes.
class [[nodiscard]] Observation {
public:
  Observation() = default;
  explicit Observation(std::shared_ptr<void> observer) : observer_(std::move(observer)) {}

  void end() { observer_.reset(); }

private:
  std::shared_ptr<void> observer_; // Whoever tells the observers knows it weakly.
};

/// Base of an object with published fields. The object names them in an enumeration, reads like any other,
/// and changes them through `assign`, or after `willChange`.
template <class Field>
class Observable {
public:
  using Fields = FieldSet<Field>;
  using Observer = std::function<void(Fields changing)>;

  Observable() = default;
  Observable(const Observable&) = delete;
  Observable& operator=(const Observable&) = delete;

  /// Tells `observer` of each change, before it happens and in the middle of the work that makes it: who
  /// needs the new values reads them later. An observer may end any observation, its own included, begin one
  /// (which is first told of the next change), change fields itself, and let the observed object go.
  Observation observe(Observer observer) {
    if (told_->depth == 0) std::erase_if(told_->observers, [](const auto& known) { return known.expired(); });
    auto kept = std::make_shared<Observer>(std::move(observer));
    told_->observers.push_back(kept);
    return Observation(std::move(kept));
  }

protected:
  ~Observable() = default;

  /// To be called before each change of published fields, once for all that change together.
  void willChange(Fields changing) {
    if (changing.isEmpty()) return;
    const std::shared_ptr<Told> told = told_; // An observer may let this object go.
    const DepthOf nested(*told);
    const std::size_t count = told->observers.size();
    for (std::size_t place = 0; place < count; ++place) {
      if (const auto observer = told->observers[place].lock()) (*observer)(changing);
    }
  }

  /// Gives `place`, the published `field`, another value. The value that it has already is no change.
  template <class Value>
  void assign(Field field, Value& place, Value value) {
    if (place == value) return;
    const std::weak_ptr<Told> alive = told_;
    willChange({field});
    if (!alive.expired()) place = std::move(value);
  }

private:
  struct Told {
    std::vector<std::weak_ptr<Observer>> observers; // Grows alone while anyone is being told.
    int depth = 0;
  };
  class DepthOf {
  public:
    explicit DepthOf(Told& told) : told_(told) { ++told_.depth; }
    DepthOf(const DepthOf&) = delete;
    DepthOf& operator=(const DepthOf&) = delete;
    ~DepthOf() { --told_.depth; }

  private:
    Told& told_;
  };

  std::shared_ptr<Told> told_ = std::make_shared<Told>();
};

} // namespace ventolith::runtime

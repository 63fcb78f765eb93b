// The objects of the fake Core Foundation, with a count of who holds them.
#pragma once

#include "InForce.h"

#include <CoreFoundation/CoreFoundation.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

namespace ventolith::fake {

struct Object {
  std::string type; // "string", "array", "client"...: for complaints too.
  std::string text; // Of a string.
  std::int32_t number = 0;
  std::vector<Object*> parts; // Held by it. A dictionary's are keys and values in turn.
  bool hasUTF8 = true;        // Of a string.
  bool isConstant = false;    // Counts for nothing.
  int references = 1;

  template <class Ref>
  [[nodiscard]] Ref as() {
    return reinterpret_cast<Ref>(this);
  }
};

/// All objects of one test. What is dead stays in memory, so that its use is a complaint and no crash.
class Objects : public InForce<Objects> {
public:
  Objects() : InForce(this) {}

  /// With one reference, the caller's; takes a reference of each part over.
  Object& make(Object object) { return objects_.emplace_back(std::move(object)); }
  Object& makeString(std::string text) { return make({.type = "string", .text = std::move(text)}); }

  void retain(Object& object);
  void release(Object& object);

  /// What is behind a reference, or a complaint that `function` was given it.
  [[nodiscard]] Object* alive(CFTypeRef reference, const char* function, const char* type = nullptr);

  void* pushPool() { return &pools_.emplace_back(pools_.size()); }
  void popPool(const void* pool);
  [[nodiscard]] bool hasPool() const { return !pools_.empty(); }

  void complain(std::string complaint) { complaints_.push_back(std::move(complaint)); }
  [[nodiscard]] const std::vector<std::string>& complaints() const { return complaints_; }
  /// The types of the objects that somebody still holds.
  [[nodiscard]] std::vector<std::string> held() const;

private:
  std::deque<Object> objects_;
  std::deque<std::size_t> pools_; // Those of autoreleased objects, the innermost last.
  std::vector<std::string> complaints_;
};

[[nodiscard]] inline Object* objectOf(CFTypeRef reference) {
  return reinterpret_cast<Object*>(const_cast<void*>(reference));
}

} // namespace ventolith::fake

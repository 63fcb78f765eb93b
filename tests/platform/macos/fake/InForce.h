// How the C functions of the fake find the object that stands for the system.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace ventolith::fake {

/// At most one object of a kind is in force: the one that lives.
template <class Part>
class InForce {
public:
  InForce(const InForce&) = delete;
  InForce& operator=(const InForce&) = delete;

  /// Ends the process where there is none: a test that called the system has forgotten to make one.
  [[nodiscard]] static Part& get() {
    if (current() == nullptr) {
      std::fputs("the fake system was called, and no test has made one\n", stderr);
      std::abort();
    }
    return *current();
  }
  [[nodiscard]] static bool isThere() { return current() != nullptr; }

protected:
  explicit InForce(Part* self) { current() = self; }
  ~InForce() { current() = nullptr; }

private:
  static Part*& current() {
    static Part* part = nullptr;
    return part;
  }
};

} // namespace ventolith::fake

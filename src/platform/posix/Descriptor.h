// A file descriptor that closes itself.
#pragma once

#include <unistd.h>

#include <utility>

namespace ventolith::platform {

class Descriptor {
public:
  /// Takes `descriptor` over; a negative one is none.
  explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
  Descriptor(Descriptor&& other) noexcept : descriptor_(other.release()) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  ~Descriptor() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }

  [[nodiscard]] int get() const { return descriptor_; }
  [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }
  /// For who takes over the closing.
  [[nodiscard]] int release() { return std::exchange(descriptor_, -1); }

private:
  int descriptor_;
};

} // namespace ventolith::platform

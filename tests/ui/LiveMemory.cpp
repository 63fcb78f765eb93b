#include "LiveMemory.h"

#include <malloc.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdlib>

// The C library lets a program stand in for its allocator, by defining the whole family, and offers what it
// does itself under these names. Its own account counts freed blocks as live that it keeps for its threads.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace {

std::atomic<long> live = 0;

long sizeOf(void* block) {
  return static_cast<long>(malloc_usable_size(block)); // None for null.
}

void* counted(void* block) {
  live += sizeOf(block);
  return block;
}

} // namespace

extern "C" {

void* malloc(std::size_t size) noexcept {
  return counted(__libc_malloc(size));
}

void* calloc(std::size_t count, std::size_t size) noexcept {
  return counted(__libc_calloc(count, size));
}

void* realloc(void* block, std::size_t size) noexcept {
  const long before = sizeOf(block);
  void* const after = __libc_realloc(block, size);
  const bool isKept = after == nullptr && size > 0; // There was no memory.
  if (!isKept) live += sizeOf(after) - before;
  return after;
}

void free(void* block) noexcept {
  live -= sizeOf(block);
  __libc_free(block);
}

void* memalign(std::size_t alignment, std::size_t size) noexcept {
  return counted(__libc_memalign(alignment, size));
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
  return memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) noexcept {
  void* const made = memalign(alignment, size);
  if (made == nullptr) return ENOMEM;
  *block = made;
  return 0;
}

} // extern "C"

namespace ventolith::support {

long liveBytes() {
  return live;
}

} // namespace ventolith::support

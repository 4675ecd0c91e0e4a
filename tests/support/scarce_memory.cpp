#include "tests/support/scarce_memory.h"

#include <cstdlib>
#include <new>

namespace brenlow::test {

thread_local long pieces_left = -1;

}  // namespace brenlow::test

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  long& left = brenlow::test::pieces_left;
  if (left > 0) --left;
  return left == 0 ? nullptr : std::malloc(size > 0 ? size : 1);
}

void* operator new(std::size_t size) {
  void* memory = operator new(size, std::nothrow);
  if (!memory) throw std::bad_alloc();
  return memory;
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

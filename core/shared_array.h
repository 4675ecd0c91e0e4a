#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <span>
#include <type_traits>
#include <utility>

namespace brenlow {

// An immutable array of plain values shared by reference count. A copy is one pointer and one
// increment; the empty array owns nothing. The count is not atomic: the session has one thread.
template <class T>
class SharedArray {
  static_assert(std::is_trivially_copyable_v<T>);

 public:
  SharedArray() = default;
  explicit SharedArray(std::span<const T> values) {
    if (values.empty()) return;
    std::memcpy(_allocate(values.size()), values.data(), values.size_bytes());
  }
  SharedArray(const SharedArray& other) noexcept : _block(other._block) {
    if (_block) ++_block->references;
  }
  SharedArray(SharedArray&& other) noexcept : _block(std::exchange(other._block, nullptr)) {}
  SharedArray& operator=(const SharedArray& other) noexcept {
    if (this != &other) *this = SharedArray(other);
    return *this;
  }
  SharedArray& operator=(SharedArray&& other) noexcept {
    Block* taken = std::exchange(other._block, nullptr);
    _release();
    _block = taken;
    return *this;
  }
  ~SharedArray() { _release(); }

  // Makes an array of `size` values and lets `fill(T*)` write every one of them.
  template <class Fill>
  static SharedArray build(std::size_t size, Fill&& fill) {
    SharedArray made;
    if (size != 0) fill(made._allocate(size));
    return made;
  }

  // An array without values that is not the null one either.
  static SharedArray of_none() {
    SharedArray made;
    made._allocate(0);
    return made;
  }

  // For whoever makes an array that is shared while it is still being filled: values that nobody reads yet.
  T* writable() { return _block ? _values(_block) : nullptr; }

  std::size_t size() const { return _block ? _block->size : 0; }
  bool empty() const { return size() == 0; }
  bool null() const { return !_block; }
  const T* data() const { return _block ? _values(_block) : nullptr; }
  const T* begin() const { return data(); }
  const T* end() const { return data() + size(); }
  const T& operator[](std::size_t i) const { return data()[i]; }
  std::span<const T> view() const { return {data(), size()}; }

  // Whether both share one storage; cheaper than equality, and enough to tell "untouched".
  bool same(const SharedArray& other) const { return _block == other._block; }

  friend bool operator==(const SharedArray& a, const SharedArray& b) {
    if (a._block == b._block) return true;
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
      if (!(a[i] == b[i])) return false;
    return true;
  }

 private:
  void _release() {
    if (_block && --_block->references == 0) ::operator delete(_block);
  }
  struct alignas(alignof(T) > alignof(std::uint32_t) ? alignof(T) : alignof(std::uint32_t)) Block {
    std::uint32_t references;
    std::uint32_t size;
  };
  static T* _values(Block* block) { return reinterpret_cast<T*>(block + 1); }
  T* _allocate(std::size_t size) {
    _block = new (::operator new(sizeof(Block) + size * sizeof(T))) Block{1, static_cast<std::uint32_t>(size)};
    return _values(_block);
  }

  Block* _block = nullptr;
};

}  // namespace brenlow

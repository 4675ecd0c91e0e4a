#pragma once

#include <initializer_list>
#include <span>

#include "core/shared_array.h"
#include "core/text_view.h"

namespace brenlow {

// One logical line: immutable Unicode text. Every edit makes a new value, so an undo record or a clipboard
// entry keeps a handle and never a copy of the characters. The characters lie in shared storage, at the width
// that they need; most lines of a text file are slices of the storage that the file was read into.
class Text {
 public:
  static constexpr std::size_t MAX_SIZE = (std::size_t{1} << 30) - 1;

  Text() = default;
  // NOLINTBEGIN(google-explicit-constructor): a text is its characters
  Text(TextView characters) : Text(joined({&characters, 1})) {}
  Text(std::u32string_view characters) : Text(TextView(characters)) {}
  Text(const std::u32string& characters) : Text(TextView(characters)) {}
  Text(const char32_t* characters) : Text(TextView(characters)) {}
  // NOLINTEND(google-explicit-constructor)

  // `size` characters of one byte each (see NarrowCharacter) from `start` on; keeps the whole of `bytes` alive.
  static Text slice(const SharedArray<char>& bytes, std::size_t start, std::size_t size);
  // The parts one behind the other. Throws std::length_error beyond MAX_SIZE.
  static Text joined(std::span<const TextView> parts);

  std::size_t size() const { return _size; }
  int length() const { return static_cast<int>(_size); }
  bool empty() const { return _size == 0; }
  char32_t operator[](std::size_t i) const { return view()[i]; }
  TextView view() const { return {_storage.data() + _start, _size, 1 << _width_log}; }
  operator TextView() const { return view(); }  // NOLINT(google-explicit-constructor)
  bool starts_with(std::u32string_view head) const { return view().starts_with(head); }

  // The text with `removed` characters at `position` replaced by `inserted`.
  Text spliced(std::size_t position, std::size_t removed, TextView inserted) const;

  // Whether both are the same slice of the same storage; cheaper than equality, and enough to tell "untouched".
  bool same(const Text& other) const {
    return _storage.same(other._storage) && _start == other._start && _size == other._size;
  }
  friend bool operator==(const Text& a, const Text& b) { return a.same(b) || a.view() == b.view(); }

 private:
  Text(const SharedArray<char>& storage, std::size_t start, std::size_t size, int width);

  SharedArray<char> _storage;
  std::uint32_t _start = 0;          // of the first character in the storage, in bytes
  std::uint32_t _size : 30 = 0;      // characters
  std::uint32_t _width_log : 2 = 0;  // a character takes 1, 2 or 4 bytes
};

// The texts one behind the other.
inline Text joined(TextView a, TextView b) { return Text::joined(std::initializer_list<TextView>{a, b}); }
inline Text joined(TextView a, TextView b, TextView c) {
  return Text::joined(std::initializer_list<TextView>{a, b, c});
}

}  // namespace brenlow

#pragma once

#include <string_view>

#include "core/shared_array.h"

namespace brenlow {

// One logical line: immutable Unicode text as code points. Every edit makes a new value, so an undo
// record or a clipboard entry keeps a handle and never a copy of the characters.
class Text {
 public:
  Text() = default;
  Text(std::u32string_view characters)  // NOLINT(google-explicit-constructor): a text is its characters
      : _characters(std::span(characters.data(), characters.size())) {}
  Text(const char32_t* characters) : Text(std::u32string_view(characters)) {}  // NOLINT(google-explicit-constructor)

  // Makes a text of `size` code points and lets `fill(char32_t*)` write every one of them.
  template <class Fill>
  static Text build(std::size_t size, Fill&& fill) {
    Text made;
    made._characters = SharedArray<char32_t>::build(size, std::forward<Fill>(fill));
    return made;
  }

  std::size_t size() const { return _characters.size(); }
  int length() const { return static_cast<int>(size()); }
  bool empty() const { return _characters.empty(); }
  char32_t operator[](std::size_t i) const { return _characters[i]; }
  std::u32string_view view() const { return {_characters.data(), _characters.size()}; }
  operator std::u32string_view() const { return view(); }  // NOLINT(google-explicit-constructor)
  bool starts_with(std::u32string_view head) const { return view().starts_with(head); }

  // The text with `removed` characters at `position` replaced by `inserted`.
  Text spliced(std::size_t position, std::size_t removed, std::u32string_view inserted) const;

  bool same(const Text& other) const { return _characters.same(other._characters); }
  friend bool operator==(const Text& a, const Text& b) { return a.same(b) || a.view() == b.view(); }

 private:
  SharedArray<char32_t> _characters;
};

// The texts one behind the other.
Text joined(std::u32string_view a, std::u32string_view b);
Text joined(std::u32string_view a, std::u32string_view b, std::u32string_view c);

}  // namespace brenlow

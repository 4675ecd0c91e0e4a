#pragma once

#include <string>
#include <string_view>

namespace brenlow {

// The one-line editor of prompts and of the browser's filename line: characters and a cursor. A prefill
// counts as selected until it is edited: typing replaces it, a motion keeps it.
class LineInput {
 public:
  explicit LineInput(std::u32string_view prefill);

  const std::u32string& text() const { return _text; }
  int position() const { return static_cast<int>(_position); }

  void insert(std::u32string_view characters);
  void keep_prefill() { _fresh = false; }
  // Replaces everything; the cursor goes to the end.
  void set(std::u32string_view text);
  // Editing keys, motions and typed bytes; bytes of an unfinished UTF-8 character wait in `partial`, which
  // is dropped when it is as long as the longest sequence. False for a key that means nothing here.
  bool take_key(int key, std::string& partial);
  void delete_under_cursor();

 private:
  bool _moved(int key);
  void _drop_fresh();
  void _typed_byte(int key, std::string& partial);

  std::u32string _text;
  std::size_t _position;
  bool _fresh;
};

}  // namespace brenlow

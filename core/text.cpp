#include "core/text.h"

#include <algorithm>

namespace brenlow {

Text joined(std::u32string_view a, std::u32string_view b, std::u32string_view c) {
  return Text::build(a.size() + b.size() + c.size(), [&](char32_t* out) {
    out = std::copy(a.begin(), a.end(), out);
    out = std::copy(b.begin(), b.end(), out);
    std::copy(c.begin(), c.end(), out);
  });
}

Text joined(std::u32string_view a, std::u32string_view b) { return joined(a, b, {}); }

Text Text::spliced(std::size_t position, std::size_t removed, std::u32string_view inserted) const {
  return joined(view().substr(0, position), inserted, view().substr(position + removed));
}

}  // namespace brenlow

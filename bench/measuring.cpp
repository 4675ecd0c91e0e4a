#include "bench/measuring.h"

#include <array>
#include <cstdio>

namespace brenlow::bench {

std::string in_milliseconds(double milliseconds) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.3g ms", milliseconds);
  return text.data();
}

std::string described(const Compared& compared) {
  return in_milliseconds(median(compared.ours)) + " / " + in_milliseconds(median(compared.bare));
}

}  // namespace brenlow::bench

#include "core/local_time.h"

#include <array>

namespace brenlow {

std::string local_time(const char* format, std::time_t time) {
  std::tm local{};
  if (!::localtime_r(&time, &local)) return {};
  std::array<char, 64> text{};
  return {text.data(), std::strftime(text.data(), text.size(), format, &local)};
}

}  // namespace brenlow

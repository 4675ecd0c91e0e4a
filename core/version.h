#pragma once

#include <string_view>

namespace brenlow {

inline constexpr std::string_view VERSION = "1.2";

}  // namespace brenlow

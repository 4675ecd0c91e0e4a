#pragma once

#include <ctime>
#include <string>

namespace brenlow {

// A time at this place, as strftime(3) writes it by `format`. Empty for a time that has no calendar date, and beyond
// 63 bytes.
std::string local_time(const char* format, std::time_t time = std::time(nullptr));

}  // namespace brenlow

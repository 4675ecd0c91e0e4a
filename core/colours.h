#pragma once

namespace brenlow {

// The screen library's eight colour numbers; screen/curses.h checks them against it.
inline constexpr int COLOR_BLACK = 0;
inline constexpr int COLOR_RED = 1;
inline constexpr int COLOR_GREEN = 2;
inline constexpr int COLOR_YELLOW = 3;
inline constexpr int COLOR_BLUE = 4;
inline constexpr int COLOR_MAGENTA = 5;
inline constexpr int COLOR_CYAN = 6;
inline constexpr int COLOR_WHITE = 7;

}  // namespace brenlow

#pragma once

namespace brenlow::test {

// How many more pieces of memory `new` gives to this thread before it throws; negative: any number.
extern thread_local long pieces_left;

}  // namespace brenlow::test

#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

#include "tests/support/editor_session.h"

namespace brenlow::test {

// A document with cursor and anchor, the keys pressed on it, and what then stands there.
struct KeyCase {
  std::string before;
  std::vector<int> keys;
  std::string after;
};

inline void expect_key_cases(EditorSession& session, std::initializer_list<KeyCase> cases) {
  for (const KeyCase& c : cases) {
    session.document(c.before);
    for (int key : c.keys) session.press(key);
    EXPECT_EQ(session.notation(), c.after) << "from " << c.before << "\nby " << testing::PrintToString(c.keys);
  }
}

}  // namespace brenlow::test

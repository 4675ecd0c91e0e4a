#include <fcntl.h>
#include <gtest/gtest.h>

#include <csignal>
#include <random>

#include "terminal/descriptor.h"
#include "tests/support/editor_session.h"
#include "tests/terminal/fake_machine.h"

namespace brenlow {
namespace {

using test::EditorSession;
using test::FakeEnvironment;
using test::FakeTools;

// All keys that the bytes give, read as the loop reads them.
std::vector<int> keys_of(EditorSession& session, std::string_view bytes) {
  session.type_ahead(bytes);
  std::vector<int> keys;
  while (session->_input_waiting()) {
    int pending = std::exchange(session->_pending_main_ch, NO_KEY);
    keys.push_back(pending == NO_KEY ? session->_getch_key() : pending);
  }
  return keys;
}

using Keys = std::vector<int>;
constexpr int ESC = KEY_ESC;

TEST(KeyReader, ASequenceIsOneKeyAndWhatFollowsStaysUnread) {
  EditorSession session;
  struct Case {
    std::string bytes;
    Keys keys;
  };
  const std::string e = "\x1b";
  for (const Case& c : std::initializer_list<Case>{
           {e + "[A", {KEY_UP}},
           {e + "[Axy", {KEY_UP, 'x', 'y'}},
           {e + "OB" + e + "[1;5Dq", {KEY_DOWN, _KEY_CTRL_LEFT, 'q'}},
           {e + "[3~" + e, {KEY_DC, ESC}},
           {e + "[97u", {'a'}},
           {e + "[97;1u[97u", {'a', '[', '9', '7', 'u'}},
           {e + "[128u", {ESC}},
           {e + "[31u", {ESC}},
           {e + "[97;3u", {ESC}},
           {e + "[57344u", {_KEY_F[0]}},
           {e + "[99;9;9;9;9u", {ESC}},
           {e + "g" + e + "G", {_KEY_CTRL_G, _KEY_CTRL_G}},
           {e, {ESC}},
           {e + "x", {ESC, 'x'}},
           {e + "x" + "yz", {ESC, 'x', 'y', 'z'}},
           {e + "s" + e + "[B", {ESC, 's', KEY_DOWN}},
           {e + "[", {ESC, '['}},
           {e + "O", {ESC, 'O'}},
           {e + e, {ESC, ESC}},
           {e + e + "[A", {ESC, KEY_UP}},
           {e + "\xC3\xA9", {ESC}},
           {e + std::string(1, '\0'), {ESC, 0}},
           {std::string(1, '\0') + "\x7f\x11", {_KEY_CTRL_SPACE, 127, 17}},
           {"\xC3\xA9", {0xC3, 0xA9}},
       }) {
    EXPECT_EQ(keys_of(session, c.bytes), c.keys) << testing::PrintToString(c.bytes);
  }
}

TEST(KeyReader, ALoneEscapeIsKnownAtOnceAndLeavesNothingBehind) {
  EditorSession session;
  auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(session->_read_escape_seq(), ESC);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(19)) << "time for a slow line";
  EXPECT_EQ(session->_pending_main_ch, NO_KEY);
  session.type_ahead("x");
  EXPECT_EQ(session->_read_escape_seq(), ESC);
  EXPECT_EQ(session->_pending_main_ch, 'x');
}

TEST(KeyReader, ARunawaySequenceIsCutAtTwentyFourBytes) {
  EditorSession session;
  EXPECT_EQ(keys_of(session, "\x1b[" + std::string(23, '9') + "123456"), (Keys{ESC, '1', '2', '3', '4', '5', '6'}));
}

TEST(KeyReader, CtrlAltLettersWorkInEveryFormWhereTheyAreBound) {
  EditorSession session({.home_files = {{".config/brenlow/keys.conf", "mark: Ctrl+Alt+K\nsave_as: Ctrl+Alt+X\n"}}});
  auto token = session->_km_rev.begin()->first;
  for (const auto& [key, action] : session->_km_rev)
    if (action == "mark") token = key;
  ASSERT_GT(token, 255);
  for (const char* form : {"\x1b\x0b", "\x1b[107;7u", "\x1b[75;7u", "\x1b[27;7;107~", "\x1b[27;7;75~"})
    EXPECT_EQ(keys_of(session, form), Keys{token}) << testing::PrintToString(form);
  // Ctrl+Alt+S has lost its command: ESC and Ctrl+S again, and the longer forms are nothing known.
  EXPECT_EQ(keys_of(session, "\x1b\x13"), (Keys{ESC, 19}));
  EXPECT_EQ(keys_of(session, "\x1b[115;7u"), Keys{ESC});
  session.document("a|");
  session.feed("\x1b\x0b");
  EXPECT_EQ(session.notation(), "a^|");
}

// A stream of whole keys, however many arrive in one burst, gives just those keys.
TEST(KeyReader, NoKeyOfABurstIsLostOrChanged) {
  EditorSession session;
  std::vector<std::pair<std::string, int>> sequences;
  for (const auto& [bytes, token] : session->_ESC_MAP) sequences.emplace_back("\x1b" + bytes, token);
  ASSERT_GE(sequences.size(), 128U);
  for (char letter = 'a'; letter <= 'z'; ++letter) sequences.emplace_back(std::string(1, letter), letter);
  std::mt19937 random(5);
  for (int round = 0; round < 40; ++round) {
    std::string bytes;
    Keys expected;
    for (int i = 0; i < 60; ++i) {
      const auto& [sequence, token] = sequences[random() % sequences.size()];
      bytes += sequence;
      expected.push_back(token);
    }
    ASSERT_EQ(keys_of(session, bytes), expected) << testing::PrintToString(bytes);
  }
}

TEST(KeyReader, AnyBytesCutAnywhereAreReadToTheirEndAndTheNextKeyArrives) {
  EditorSession session;
  const std::string alphabet = "\x1b\x1b\x1b[[[O;;0123456789~uABDGgx\x13\x0b\xC3\xA9\xFF\x7f \r";
  std::mt19937 random(9);
  for (int round = 0; round < 150; ++round) {
    std::string bytes;
    for (auto count = random() % 30; count > 0; --count)
      bytes += random() % 8 == 0 ? static_cast<char>(random()) : alphabet[random() % alphabet.size()];
    std::size_t cut = random() % (bytes.size() + 1);
    Keys keys = keys_of(session, bytes.substr(0, cut));
    Keys rest = keys_of(session, bytes.substr(cut));
    EXPECT_LE(keys.size() + rest.size(), bytes.size());
    ASSERT_EQ(session->_pending_main_ch, NO_KEY);
    ASSERT_EQ(keys_of(session, "~"), Keys{'~'}) << testing::PrintToString(bytes) << " cut at " << cut;
  }
}

TEST(KeyReader, ATerminalsOwnSequencesAreLearnedAndNoneIsReplaced) {
  EditorSession session;
  FakeTools tools;
  session->_machine.search_path = tools.search_path();
  EscapeMap built_in = session->_ESC_MAP;
  session->_patch_esc_map_from_terminfo();
  EXPECT_EQ(session->_ESC_MAP, built_in) << "without the tool";
  tools.add("infocmp",
            "cat <<'END'\nxterm|a comment,\n\tkUP=\\E[7;2x,\n\tkLFT5=\\E[A,\n\tkDN=^B,\n\tkRIT=\\E%p1,\nEND");
  session->_patch_esc_map_from_terminfo();
  EXPECT_EQ(session->_ESC_MAP.size(), built_in.size() + 1);
  EXPECT_EQ(keys_of(session, "\x1b[7;2x\x1b[A"), (Keys{_KEY_SHIFT_UP, KEY_UP}));
  EXPECT_EQ(tools.take_log(), "infocmp|-1|-x|xterm-256color\n");

  session->_ESC_MAP = built_in;
  tools.add("infocmp", "echo 'kUP=\\E[7;2x,'; exit 1");
  session->_patch_esc_map_from_terminfo();
  EXPECT_EQ(session->_ESC_MAP, built_in) << "a tool that fails";
  {
    FakeEnvironment no_terminal({{"TERM", ""}});
    session->_patch_esc_map_from_terminfo();
  }
  EXPECT_EQ(tools.take_log(), "infocmp|-1|-x|xterm-256color\n") << "no terminal to ask about";
}

TEST(KeyReader, AWaitingReadComesBackForANewSizeAndEndsWithTheTerminal) {
  EditorSession session;
  ::raise(SIGWINCH);
  EXPECT_EQ(session->_getch(), KEY_RESIZE);
  session->_serve_resize();
  session.type_ahead("x");
  EXPECT_EQ(session->_getch(), 'x');

  Descriptor gone(::open("/dev/null", O_RDONLY | O_CLOEXEC));
  session->_machine.input = gone.get();
  EXPECT_THROW(session->_getch(), StopRequest);
  EXPECT_THROW(session->_read_escape_seq(), StopRequest);
}

}  // namespace
}  // namespace brenlow

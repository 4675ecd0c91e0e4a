#include <fcntl.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <random>

#include "core/signals.h"
#include "terminal/descriptor.h"
#include "tests/support/editor_session.h"
#include "tests/terminal/fake_machine.h"

namespace brenlow {
namespace {

using test::EditorSession;
using Keys = std::vector<int>;
constexpr int ESC = KEY_ESC;

// All keys that the bytes give, read as the loop reads them.
Keys keys_of(EditorSession& session, std::string_view bytes) {
  session.type_ahead(bytes);
  Keys keys;
  while (session->_input_waiting()) {
    int pending = std::exchange(session->_pending_main_ch, NO_KEY);
    keys.push_back(pending == NO_KEY ? session->_getch_key() : pending);
  }
  return keys;
}

TEST(KeyReader, ASequenceIsOneKeyAndWhatFollowsStaysUnread) {
  EditorSession session;
  const std::string e = "\x1b", nul(1, '\0');
  for (const auto& [bytes, keys] : std::initializer_list<std::pair<std::string, Keys>>{
           {e + "OB" + e + "[1;5Dq", {KEY_DOWN, _KEY_CTRL_LEFT, 'q'}},
           {e + "[97;1u[97u", {'a', '[', '9', '7', 'u'}},
           {e + "[97;3u", {ESC}},
           {e + "s" + e + "[B", {ESC, 's', KEY_DOWN}},
           {e + e + "[A", {ESC, KEY_UP}},
           {e + "\xC3\xA9", {ESC}},
           {e + nul + nul + "\x11", {ESC, 0, _KEY_CTRL_SPACE, 17}},
           {e + "[" + std::string(23, '9') + "12", {ESC, '1', '2'}}})  // a runaway sequence is cut
    EXPECT_EQ(keys_of(session, bytes), keys) << testing::PrintToString(bytes);
}

TEST(KeyReader, CtrlAltLettersWorkInEveryFormWhereTheyAreBound) {
  EditorSession session({.home_files = {{".config/brenlow/keys.conf", "mark: Ctrl+Alt+K\nsave_as: Ctrl+Alt+X\n"}}});
  for (const char* form : {"\x1b\x0b", "\x1b[107;7u", "\x1b[75;7u", "\x1b[27;7;107~", "\x1b[27;7;75~"}) {
    session.document("a|");
    session.feed(form);
    EXPECT_EQ(session.notation(), "a^|") << testing::PrintToString(form);
  }
  // A key of the built-in map stays itself when its command has gone elsewhere; other letters are ESC and a key.
  EXPECT_EQ(keys_of(session, "\x1b\x13\x1b\x19"), (Keys{_KEY_CTRL_ALT_S, ESC, 25}));
}

TEST(KeyReader, NoKeyOfABurstIsLostOrChangedAndAnyBytesCutAnywhereAreReadToTheirEnd) {
  EditorSession session;
  std::vector<std::pair<std::string, int>> sequences{{"x", 'x'}};
  for (const auto& [bytes, token] : session->_ESC_MAP) sequences.emplace_back("\x1b" + bytes, token);
  std::mt19937 random(5);
  std::string burst;
  Keys expected;
  for (int i = 0; i < 600; ++i) {
    const auto& [sequence, token] = sequences[random() % sequences.size()];
    burst += sequence;
    expected.push_back(token);
  }
  EXPECT_EQ(keys_of(session, burst), expected);

  const std::string alphabet = "\x1b\x1b\x1b[[[O;;0123456789~uABDGgx\x13\x0b\xC3\xA9\xFF\x7f \r";
  for (int round = 0; round < 150; ++round) {
    std::string bytes;
    for (auto count = random() % 30; count > 0; --count)
      bytes += random() % 8 == 0 ? static_cast<char>(random()) : alphabet[random() % alphabet.size()];
    std::size_t cut = random() % (bytes.size() + 1);
    keys_of(session, bytes.substr(0, cut));
    keys_of(session, bytes.substr(cut));
    ASSERT_EQ(keys_of(session, "~"), Keys{'~'}) << testing::PrintToString(bytes) << " cut at " << cut;
  }
}

TEST(KeyReader, ATerminalsOwnSequencesAreLearnedAndNoneIsReplaced) {
  EditorSession session;
  test::FakeTools tools;
  session->_machine.search_path = tools.search_path();
  tools.add("infocmp",
            "echo >>$0.asked; cat <<'END'\nxterm|a comment,\n\tkUP=\\E[7;2x,\n\tkLFT5=\\E[A,\n\t"
            "kLFT=\\Ezyx,\nEND");
  const std::filesystem::path asked = tools.search_path() + "/infocmp.asked";
  EXPECT_EQ(keys_of(session, "\x1b\x1b[A"), (Keys{KEY_ESC, KEY_UP}));
  EXPECT_FALSE(std::filesystem::exists(asked)) << "the terminal was asked for keys that are known";
  // The very key that has the question asked is read like those after it, with what was typed behind it.
  EXPECT_EQ(keys_of(session, "\x1bzyx\x1b[7;2xq\x1b[A"), (Keys{_KEY_SHIFT_LEFT, _KEY_SHIFT_UP, 'q', KEY_UP}));
  EXPECT_EQ(keys_of(session, "\x1b[9;9x"), Keys{KEY_ESC});
  EXPECT_EQ(std::filesystem::file_size(asked), 1U) << "the terminal was asked again";
}

TEST(KeyReader, AWaitingReadComesBackForANewSizeAndEndsWithTheTerminal) {
  EditorSession session;
  ::raise(SIGWINCH);
  EXPECT_EQ(session->_getch(), KEY_RESIZE);
  session->_serve_resize();
  Descriptor gone(::open("/dev/null", O_RDONLY | O_CLOEXEC));
  session->_machine.input = gone.get();
  EXPECT_THROW(session->_getch(), EndRequest);
  EXPECT_THROW(session->_read_escape_seq(), EndRequest);
}

}  // namespace
}  // namespace brenlow

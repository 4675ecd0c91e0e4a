#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>

#include "core/editor.h"
#include "core/signals.h"
#include "screen/curses.h"
#include "terminal/child_process.h"

namespace brenlow {

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

// How long a sequence may take to arrive whole: what tells a lone ESC from the start of one.
constexpr milliseconds SEQUENCE_TIME{20};
constexpr std::size_t LONGEST_SEQUENCE = 24;
constexpr milliseconds RESIZE_LOOK_INTERVAL{20};
constexpr std::chrono::seconds INFOCMP_LIMIT{2};

// Whether `first` behind ESC is a key of its own and begins no sequence: the rest of a burst is then other
// keys. The bytes of a longer character are read on.
bool is_plain_key(const EscapeMap& map, char first) {
  auto byte = static_cast<unsigned char>(first);
  return byte < 0x80 && !is_escape_prefix(map, {&first, 1});
}

}  // namespace

void Editor::_load_keys() {
  _km = _load_keymap(_machine.files);
  for (const auto& [action, token] : _km)
    if (!action.starts_with('_')) _km_rev[token] = action;
  _expansions_file = _load_expansions(_machine.files);
  _key_help = key_of_action(_km, "_help_key", _KEY_CTRL_SPACE);
  _key_action = key_of_action(_km, "_action_key", KEY_ESC);
  _ESC_MAP = default_escape_map();
}

bool Editor::_patch_esc_map_from_terminfo() {
  _terminfo_asked = true;
  const char* term = std::getenv("TERM");
  if (!term || !*term) return false;
  ChildOptions options;
  options.time_limit = INFOCMP_LIMIT;
  options.search_path = _machine.search_path;
  auto run = run_child({"infocmp", "-1", "-x", term}, options);
  return run && run->status == 0 &&
         !::brenlow::_patch_esc_map_from_terminfo(_ESC_MAP, _parse_terminfo_sequences(run->output)).empty();
}

const std::u32string* Editor::_expansion_for(int key) const {
  if (key < 32 || key > 126) return nullptr;
  auto found = _expansions.find(_KEY_EXPANSION_ALT_BASE + key);
  return found == _expansions.end() ? nullptr : &found->second;
}

// A terminal told to change its font size takes a moment; when its window has changed, that is served like any
// other resize.
void Editor::_look_at_resize_watch() {
  if (!font_ctrl || !font_ctrl->resize_watch) return;
  auto size = terminal_size(_machine.input);
  bool changed = size && *size != font_ctrl->resize_watch->before;
  if (!changed && Clock::now() < font_ctrl->resize_watch->until) return;
  font_ctrl->resize_watch.reset();
  if (changed) ::raise(SIGWINCH);
}

// Waits until input is there (true), the limit is over or a signal came (false). SIGWINCH is delivered
// only in here; a signal that asks for the session's end ends it here, and none is missed between looking for
// it and waiting.
bool Editor::_wait_for_input(std::optional<milliseconds> limit) {
  ::pollfd waiting{_machine.input, POLLIN, 0};
  if (limit == milliseconds(0)) return ::poll(&waiting, 1, 0) > 0;
  const EndSignalsBlocked blocked;
  if (int signal = noted_end_signal()) throw EndRequest{signal};
  sigset_t mask = blocked.before();
  sigdelset(&mask, SIGWINCH);
  ::timespec time{};
  if (limit) {
    time.tv_sec = limit->count() / 1000;
    time.tv_nsec = (limit->count() % 1000) * 1'000'000;
  }
#ifdef __APPLE__
  sigset_t before;
  ::sigprocmask(SIG_SETMASK, &mask, &before);
  int ready = ::poll(&waiting, 1, limit ? static_cast<int>(limit->count()) : -1);
  ::sigprocmask(SIG_SETMASK, &before, nullptr);
#else
  int ready = ::ppoll(&waiting, 1, limit ? &time : nullptr, &mask);
#endif
  if (int signal = noted_end_signal()) throw EndRequest{signal};
  return ready > 0;
}

// Reads what is there into the input buffer. A terminal that is gone ends the session: every further read
// would come back at once.
bool Editor::_fill_input(std::optional<milliseconds> limit) {
  if (!_wait_for_input(limit)) return false;
  std::array<char, 4096> bytes;
  ssize_t count = ::read(_machine.input, bytes.data(), bytes.size());
  if (count == 0 || (count < 0 && errno != EINTR && errno != EAGAIN)) throw EndRequest{SIGHUP};
  if (count < 0) return false;
  if (_input_at == _input.size()) {
    _input.clear();
    _input_at = 0;
  }
  _input.append(bytes.data(), static_cast<std::size_t>(count));
  return true;
}

bool Editor::_input_waiting() {
  return _pending_main_ch != NO_KEY || _input_at < _input.size() || _fill_input(milliseconds(0));
}

int Editor::_getch_nowait(milliseconds limit) {
  if (_input_at == _input.size() && !_fill_input(limit)) return NO_KEY;
  return static_cast<unsigned char>(_input[_input_at++]);
}

int Editor::_getch() {
  while (_input_at == _input.size()) {
    if (_sigwinch_pending) return KEY_RESIZE;
    bool watching = font_ctrl && font_ctrl->resize_watch;
    _fill_input(watching ? std::optional(RESIZE_LOOK_INTERVAL) : std::nullopt);
    _look_at_resize_watch();
  }
  return static_cast<unsigned char>(_input[_input_at++]);
}

int Editor::_getch_key() {
  int key = _getch();
  if (key == KEY_ESC) key = _read_escape_seq();
  return key == 0 ? _KEY_CTRL_SPACE : key;
}

// The key that the bytes behind ESC stand for. Ctrl+Alt and a letter outside the map that no action is bound to
// stays ESC followed by the key.
std::optional<int> Editor::_escape_token(std::string_view bytes) const {
  if (auto row = _ESC_MAP.find(bytes); row != _ESC_MAP.end()) return row->second;
  if (auto letter = ctrl_alt_letter(bytes)) return _km_rev.contains(*letter) ? letter : std::nullopt;
  return plain_kitty_key(bytes);
}

std::optional<int> Editor::_read_sequence(std::string& bytes) {
  const auto deadline = Clock::now() + SEQUENCE_TIME;
  auto time_left = [&] { return std::max(std::chrono::ceil<milliseconds>(deadline - Clock::now()), milliseconds(0)); };
  while (bytes.size() < LONGEST_SEQUENCE) {
    // Waits for the first byte, and for the rest of a sequence that a slow line has cut.
    bool more_expected = bytes.empty() || is_escape_prefix(_ESC_MAP, bytes);
    int next = _getch_nowait(more_expected ? time_left() : milliseconds(0));
    if (next == NO_KEY) {
      if (more_expected && Clock::now() < deadline) continue;
      break;
    }
    if (next == KEY_ESC && bytes.empty()) {
      --_input_at;  // the next key begins here, with its own sequence perhaps
      break;
    }
    bytes.push_back(static_cast<char>(next));
    if (auto token = _escape_token(bytes)) return token;
    if (bytes.size() == 1 && is_plain_key(_ESC_MAP, bytes[0])) break;
  }
  return std::nullopt;
}

int Editor::_read_escape_seq() {
  std::string bytes;
  auto token = _read_sequence(bytes);
  // Asking at the start would delay it by a fifth, and most terminals send only what the map has.
  if (!token && !bytes.empty() && !_terminfo_asked && _patch_esc_map_from_terminfo()) {
    _input.insert(_input_at, bytes);
    bytes.clear();
    token = _read_sequence(bytes);
  }
  if (token) return *token;
  if (bytes.size() == 1) _pending_main_ch = static_cast<unsigned char>(bytes[0]);
  return KEY_ESC;
}

}  // namespace brenlow

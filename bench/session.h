#pragma once

#include <fcntl.h>
#include <pty.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>

#include "core/editor.h"
#include "screen/curses.h"

namespace brenlow::bench {

// A session on a pseudo terminal of 50 x 120 whose output a thread reads away, with the rules that colour text in
// place. One at a time.
class Session {
 public:
  Session() : _home(std::filesystem::temp_directory_path() / ("brenlow-bench-" + std::to_string(::getpid()))) {
    winsize size{50, 120, 0, 0};
    if (::openpty(&_master, &_slave, nullptr, nullptr, &size) != 0) throw std::runtime_error("no pseudo terminal");
    _reader = std::thread([this] {
      std::array<char, 65536> bytes;
      while (::read(_master, bytes.data(), bytes.size()) > 0) {
      }
    });
    _out = ::fdopen(::dup(_slave), "w");
    _in = ::fdopen(::dup(_slave), "r");
    _screen = ::newterm("xterm-256color", _out, _in);
    ::resizeterm(50, 120);
    Machine machine;
    machine.files = config_files(_home.string());
    machine.tty = "/dev/null";
    machine.input = _slave;
    machine.output = _slave;
    machine.search_path = "/nonexistent";
    _editor = std::make_unique<Editor>(::stdscr, std::nullopt, machine);
    _editor->_prepare_terminal();
  }
  ~Session() {
    _editor.reset();
    ::endwin();
    ::delscreen(_screen);
    std::fclose(_out);
    std::fclose(_in);
    ::close(_slave);
    _reader.join();
    ::close(_master);
    std::filesystem::remove_all(_home);
  }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  Editor& editor() { return *_editor; }

  // Opens a document that has been read, with the cursor in its middle, and draws.
  Editor& show(DocumentTriple document, const std::string& path);

  // Lays bytes ready for a prompt that a command is going to open.
  void type_ahead(std::string_view bytes) {
    if (::write(_master, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
      throw std::runtime_error("the terminal takes no input");
  }

 private:
  std::filesystem::path _home;
  int _master = -1, _slave = -1;
  std::thread _reader;
  std::FILE* _out = nullptr;
  std::FILE* _in = nullptr;
  SCREEN* _screen = nullptr;
  std::unique_ptr<Editor> _editor;
};

inline void frame(Editor& editor) {
  editor._ensure_cursor_visible();
  editor.draw();
}

inline Editor& Session::show(DocumentTriple document, const std::string& path) {
  _editor->_reset_for_document(std::move(document), path);
  _editor->cy = _editor->_line_count() / 2;
  _editor->cx = _editor->_line_length(_editor->cy) / 2;
  frame(*_editor);
  return *_editor;
}

}  // namespace brenlow::bench

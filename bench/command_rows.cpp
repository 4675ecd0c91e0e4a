#include <functional>
#include <stdexcept>

#include "bench/documents.h"
#include "bench/rows.h"
#include "bench/session.h"
#include "documents/odt_reader.h"

namespace brenlow::bench {

namespace {

constexpr int TURNS = 9;

// A pass over the text that does as little as one can.
double bare_scan(const Editor& editor) {
  std::size_t count = 0;
  double used = cpu_of([&] {
    for (const Text& line : editor.lines)
      line.view().visit([&](auto characters) {
        for (auto character : characters) count += raw(character) == 'q';
      });
  });
  if (count == 0) throw std::logic_error("a text of that length has the letter");
  return used;
}

class Commands {
 public:
  explicit Commands(Session& session) : _session(session), _editor(session.editor()) {}

  void action(std::string_view name) {
    _editor._dispatch_action(name);
    frame(_editor);
  }
  double key(int key) {
    return cpu_of([&] {
      _editor._handle_key(key);
      frame(_editor);
    });
  }
  void filter(std::string_view term) {
    _session.type_ahead(std::string(term) + "\r");
    key(_KEY_CTRL_G);
  }

 private:
  Session& _session;
  Editor& _editor;
};

Row filter_row(Session& session, Commands& commands) {
  commands.filter("ab");
  Compared compared;
  for (int turn = 0; turn < TURNS; ++turn) {
    compared.ours.push_back(commands.key('x'));
    compared.bare.push_back(bare_scan(session.editor()));
  }
  commands.key(KEY_ESC);
  return {"a key with the line filter, 1M words / a bare scan", compared.ratio(), 1.5, "", described(compared)};
}

}  // namespace

Rows command_rows() {
  const std::string path = document({Shape::PARAGRAPHS, ".odt"}, NOVEL);
  Session session;
  session.show(odt_to_rich(path), path);
  Commands commands(session);
  Rows rows;
  auto row = [&](const std::string& question, const std::function<void()>& before, const std::function<void()>& work,
                 const std::function<void()>& after) {
    std::vector<double> times;
    for (int turn = 0; turn < TURNS; ++turn) {
      before();
      times.push_back(cpu_of(work));
      after();
    }
    rows.push_back({question + ", 1M words", median(times), 10, "ms", ""});
  };
  auto does = [&](std::string_view name) { return [&commands, name] { commands.action(name); }; };
  auto select_and_copy = [&] {
    commands.action("select_all");
    commands.action("copy");
  };
  auto nothing = [] {};
  row("delete_line", nothing, does("delete_line"), does("undo"));
  row("page break", nothing, does("page_break"), does("undo"));
  row("select all + copy", nothing, select_and_copy, [&] { session.editor()._sel_clear(); });
  row("bold on everything", does("select_all"), does("bold"), does("undo"));
  rows.push_back(filter_row(session, commands));
  return rows;
}

}  // namespace brenlow::bench

#include <filesystem>
#include <functional>
#include <stdexcept>

#include "bench/documents.h"
#include "bench/program.h"
#include "bench/rows.h"

namespace brenlow::bench {

namespace {

namespace fs = std::filesystem;

constexpr int TURNS = 7;
constexpr char CTRL_S = 0x13;
const Kind PARAGRAPHS{Shape::PARAGRAPHS, ".txt"}, HARD_LINES{Shape::HARD_LINES, ".txt"};

std::string megabytes(double bytes) {
  std::string digits = std::to_string(static_cast<long>(bytes / 1e5));
  return (digits.size() > 1 ? digits.substr(0, digits.size() - 1) : "0") + "." + digits.back() + " MB";
}

// CPU time from the start of the program to its first frame.
double opening(const std::vector<std::string>& arguments) {
  Program program(arguments);
  program.until_idle();
  return program.stop();
}

Row start_row() {
  opening({});  // writes the settings
  std::vector<double> times;
  for (int turn = 0; turn < 2 * TURNS; ++turn) times.push_back(opening({}));
  return {"start with no document, settings present", median(times), 7, "ms", "CPU, child processes included"};
}

Compared in_turns(const std::function<double()>& ours, const std::function<double()>& bare) {
  Compared compared;
  for (int turn = 0; turn < TURNS; ++turn) {
    compared.ours.push_back(ours());
    compared.bare.push_back(bare());
  }
  return compared;
}

Row opening_row(const Kind& kind, int words, const char* work, double goal, const std::string& question) {
  const std::string path = document(kind, words);
  Compared compared = in_turns([&] { return opening({path}); }, [&] { return bare_work(work, path); });
  return {question, compared.ratio(), goal, "", name_of(kind) + ": " + described(compared)};
}

double saving(const std::string& document) {
  const std::string path = work_folder("saved") + "/saved" + fs::path(document).extension().string();
  fs::copy_file(document, path, fs::copy_options::overwrite_existing);
  auto made = fs::last_write_time(path);
  Program program({path});
  program.until_idle();
  program.until_idle("x");
  double before = program.cpu();
  program.until_idle({&CTRL_S, 1});
  double used = program.cpu() - before;
  if (fs::last_write_time(path) == made) throw std::runtime_error("the document was not saved");
  return used;
}

Row saving_row() {
  const std::string path = document({Shape::PARAGRAPHS, ".odt"}, NOVEL);
  Compared compared = in_turns([&] { return saving(path); }, [&] { return bare_work("serialise and deflate", path); });
  return {"saving .odt, 1M words / serialise + deflate", compared.ratio(), 1.3, "", described(compared)};
}

Row memory_row(const Kind& kind, int words) {
  constexpr double BESIDES = 10e6;
  Program program({document(kind, words)});
  program.until_idle();
  double resident = static_cast<double>(program.resident_bytes());
  double text = static_cast<double>(fs::file_size(document({kind.shape, ".txt"}, words)));
  return {"memory after opening beyond 10 MB / bytes of text", (resident - BESIDES) / text, 2, "",
          name_of(kind) + ", " + std::to_string(words / NOVEL) + "M words: " + megabytes(resident) + " for " +
              megabytes(text)};
}

Row paste_row(int words) {
  constexpr std::size_t PASTED = 100'000;
  std::string keys;
  while (keys.size() < PASTED) keys += "This was copied from another window, line after line of it.\r";
  std::vector<double> walls, cpus;
  for (int turn = 0; turn < 3; ++turn) {
    Program program({document(PARAGRAPHS, words)});
    program.until_idle();
    double before = program.cpu();
    walls.push_back(program.until_idle(keys));
    cpus.push_back(program.cpu() - before);
  }
  return {words == PAGE ? "100 kB pasted as keys, one page" : "100 kB pasted as keys, 1M words", median(walls), 1000,
          "ms", "until the last frame; CPU " + in_milliseconds(median(cpus))};
}

}  // namespace

Rows program_rows() {
  const Kind odt{Shape::PARAGRAPHS, ".odt"}, odt_lines{Shape::HARD_LINES, ".odt"};
  Rows rows{start_row()};
  for (const Kind& kind : {PARAGRAPHS, HARD_LINES})
    rows.push_back(opening_row(kind, LIBRARY, "convert", 3, "opening .txt, 10M words / iconv to UTF-32"));
  for (const Kind& kind : {odt, odt_lines})
    rows.push_back(opening_row(kind, NOVEL, "inflate and parse", 1.5, "opening .odt, 1M words / inflate + parse"));
  rows.push_back(opening_row(odt, NOVEL, "inflate and parse as events", 1.5, "the same / inflate + parse, no tree"));
  rows.push_back(saving_row());
  for (const Kind& kind : {PARAGRAPHS, HARD_LINES, Kind{Shape::PARAGRAPHS, ".md"}, odt, odt_lines})
    rows.push_back(memory_row(kind, LIBRARY));
  rows.push_back(memory_row(odt, NOVEL));
  rows.push_back(paste_row(PAGE));
  rows.push_back(paste_row(NOVEL));
  return rows;
}

}  // namespace brenlow::bench

#pragma once

#include <string>
#include <vector>

// The documents that are measured. The same ones are made each time.
namespace brenlow::bench {

inline constexpr int PAGE = 300, NOVEL = 1'000'000, LIBRARY = 10'000'000;  // words

enum class Shape {
  PARAGRAPHS,  // of 20 to 200 words, each on a line of its own
  HARD_LINES,  // of about 70 characters
};

struct Kind {
  Shape shape;
  std::string extension;  // with its dot
};
std::vector<Kind> all_kinds();
std::string name_of(const Kind& kind);

// The path of a document; one that is not there yet is made, in a folder beside the running program.
std::string document(const Kind& kind, int words);
// A single line of a megabyte.
std::string megabyte_line();

// A folder of that name beside the running program, made if needed.
std::string work_folder(const std::string& name);

}  // namespace brenlow::bench

// Runs a fuzz target without libFuzzer, so that every test run feeds each parser with some thousand broken
// inputs: mutations of the files given as arguments and of bytes made here. The numbers are the same in every
// run, so an input that brings a target down does so again under a debugger.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <random>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Bytes = std::vector<std::uint8_t>;
using Clock = std::chrono::steady_clock;
using namespace std::string_view_literals;

constexpr int RUNS = 20000;
constexpr std::chrono::milliseconds TIME_LIMIT{1500};
constexpr std::size_t LONGEST_INPUT = 1 << 18;

// What parsers of text, markup, archives and terminal input look for.
constexpr std::string_view WORDS[] = {"\n",
                                      "\r\n",
                                      "\t",
                                      " ",
                                      "\0"sv,
                                      "\x1b[",
                                      "#",
                                      ";",
                                      "[",
                                      "]",
                                      ":",
                                      "=",
                                      "\"",
                                      "'",
                                      "\\",
                                      "^",
                                      "\\E",
                                      ",",
                                      "%",
                                      "~",
                                      "</",
                                      "<text:p>",
                                      "<text:s text:c=\"2000000000\"/>",
                                      "<!DOCTYPE",
                                      "<!ENTITY",
                                      "&a;",
                                      "&#0;",
                                      "<![CDATA[",
                                      "PK\x03\x04",
                                      "\xff",
                                      "\xc3",
                                      "\xe2\x80",
                                      "\xf4\x90\x80\x80",
                                      "\xed\xa0\x80",
                                      "-1",
                                      "0",
                                      "255",
                                      "4294967295",
                                      "pattern: ",
                                      "style: ",
                                      "(.*)*",
                                      "@bold@",
                                      "yes",
                                      "\x36\x04",
                                      "\x72\xb5\x4a\x86",
                                      "\x1f\x8b"};

class Mutator {
 public:
  explicit Mutator(std::vector<Bytes> seeds) : _seeds(std::move(seeds)) {}

  Bytes next() {
    Bytes input = _seeds[below(_seeds.size())];
    for (auto changes = below(6); changes > 0; --changes) change(input);
    if (input.size() > LONGEST_INPUT) input.resize(LONGEST_INPUT);
    return input;
  }

 private:
  // A number from 0 to count - 1, or 0. The library's distributions differ between libraries.
  std::size_t below(std::size_t count) { return count == 0 ? 0 : _random() % count; }

  std::ptrdiff_t place(const Bytes& input) { return static_cast<std::ptrdiff_t>(below(input.size() + 1)); }

  void insert(Bytes& input, auto from, auto to) { input.insert(input.begin() + place(input), from, to); }

  void change(Bytes& input) {
    const auto first = place(input);
    const auto last = first + static_cast<std::ptrdiff_t>(below(input.size() + 1 - static_cast<std::size_t>(first)));
    switch (below(6)) {
      case 0:
        if (!input.empty()) input[below(input.size())] = static_cast<std::uint8_t>(_random());
        break;
      case 1:
        input.erase(input.begin() + first, input.begin() + last);
        break;
      case 2: {
        const Bytes piece(input.begin() + first, input.begin() + last);
        insert(input, piece.begin(), piece.end());
        break;
      }
      case 3: {
        const std::string_view word = WORDS[below(std::size(WORDS))];
        insert(input, word.begin(), word.end());
        break;
      }
      case 4: {
        const Bytes& other = _seeds[below(_seeds.size())];
        insert(input, other.begin() + place(other), other.end());
        break;
      }
      default:
        input.resize(static_cast<std::size_t>(first));
    }
  }

  std::vector<Bytes> _seeds;
  std::mt19937 _random{1};
};

// Short runs of random bytes, half of them printable.
std::vector<Bytes> made_seeds() {
  std::mt19937 random(2);
  std::vector<Bytes> seeds(1);
  for (std::size_t length = 1; length <= 256; length *= 2) {
    Bytes bytes(length);
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random() % 2 ? random() : ' ' + random() % 95);
    seeds.push_back(bytes);
  }
  return seeds;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<Bytes> seeds = made_seeds();
  for (int i = 1; i < argc; ++i) {
    std::ifstream file(argv[i], std::ios::binary);
    if (!file) {
      std::fprintf(stderr, "cannot read %s\n", argv[i]);
      return 1;
    }
    seeds.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  }
  for (const Bytes& seed : seeds) LLVMFuzzerTestOneInput(seed.data(), seed.size());

  Mutator mutator(std::move(seeds));
  const Clock::time_point end = Clock::now() + TIME_LIMIT;
  int runs = 0;
  for (; runs < RUNS && Clock::now() < end; ++runs) {
    // A copy without spare room, so that AddressSanitizer sees a read past its end.
    const Bytes made = mutator.next();
    const Bytes input = made;
    LLVMFuzzerTestOneInput(input.data(), input.size());
  }
  std::printf("%d mutated inputs\n", runs);
}

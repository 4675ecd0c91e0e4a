#include "customise/pattern.h"

#define PCRE2_CODE_UNIT_WIDTH 32
#include <pcre2.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <new>
#include <optional>
#include <string>

#include "customise/pattern_dialect.h"

namespace brenlow {

namespace {

constexpr std::size_t PATTERN_LIMIT = 16 * 1024;      // characters of a source
constexpr std::size_t BLOCK_LIMIT = 8 * 1024 * 1024;  // bytes of one block of memory, compiled code included
constexpr std::size_t JIT_CODE_LIMIT = 256 * 1024;    // bytes of compiled code worth machine code
constexpr std::size_t JIT_STACK_LIMIT = 1024 * 1024;  // bytes
constexpr std::uint32_t HEAP_LIMIT = 16 * 1024;       // KiB

// The steps of one scan: a callout is one, and so are CHARACTERS_PER_STEP characters that were run over. The
// library's own limit cannot serve alone: it starts afresh at each position of the line, and machine code
// does not count all that an interpreter does.
constexpr long STEPS_PER_LINE = 20'000;
constexpr long STEPS_PER_CHARACTER = 16;
constexpr std::size_t CHARACTERS_PER_STEP = 16;

struct Deleter {
  void operator()(pcre2_general_context_32* context) const { pcre2_general_context_free_32(context); }
  void operator()(pcre2_compile_context_32* context) const { pcre2_compile_context_free_32(context); }
  void operator()(pcre2_match_context_32* context) const { pcre2_match_context_free_32(context); }
  void operator()(pcre2_match_data_32* data) const { pcre2_match_data_free_32(data); }
  void operator()(pcre2_jit_stack_32* stack) const { pcre2_jit_stack_free_32(stack); }
};
template <class T>
using Owner = std::unique_ptr<T, Deleter>;

// Repeats within repeats can ask for gigabytes; refusing the block makes the library report a failure.
void* bounded_block(std::size_t size, void*) {
  return size <= BLOCK_LIMIT ? ::operator new(size, std::nothrow) : nullptr;
}
void release_block(void* block, void*) { ::operator delete(block); }

struct Steps {
  long left = 0;
  std::size_t start = 0;    // where the present attempt began
  std::size_t reached = 0;  // where its last step stood
};

int count_step(pcre2_callout_block_32* block, void* data) {
  Steps& steps = *static_cast<Steps*>(data);
  if (block->start_match != steps.start) steps.start = steps.reached = block->start_match;
  std::size_t at = block->current_position;
  // Within a lookbehind the position may lie before the start.
  auto run_over = [&](std::size_t from) {
    if (at > from) steps.left -= static_cast<long>((at - from) / CHARACTERS_PER_STEP);
  };
  // A reference compares at most the characters that were matched so far.
  if (block->callout_number == 1) run_over(steps.start);
  run_over(steps.reached);
  steps.reached = at;
  return --steps.left < 0 ? PCRE2_ERROR_CALLOUT : 0;
}

// What all patterns share. One pair of offsets is enough: only the whole match is asked for.
struct Library {
  Owner<pcre2_general_context_32> general{pcre2_general_context_create_32(bounded_block, release_block, nullptr)};
  Owner<pcre2_compile_context_32> compile{pcre2_compile_context_create_32(general.get())};
  Owner<pcre2_match_context_32> match{pcre2_match_context_create_32(general.get())};
  Owner<pcre2_match_data_32> data{pcre2_match_data_create_32(1, general.get())};
  Owner<pcre2_jit_stack_32> stack{pcre2_jit_stack_create_32(32 * 1024, JIT_STACK_LIMIT, general.get())};
  Steps steps;

  Library() {
    if (!general || !compile || !match || !data) throw std::bad_alloc();
    pcre2_set_newline_32(compile.get(), PCRE2_NEWLINE_LF);
    pcre2_set_heap_limit_32(match.get(), HEAP_LIMIT);
    pcre2_set_callout_32(match.get(), count_step, &steps);
    if (stack) pcre2_jit_stack_assign_32(match.get(), nullptr, stack.get());
  }
};

Library& library() {
  static Library shared;
  return shared;
}

PCRE2_SPTR32 code_units(std::u32string_view text) { return reinterpret_cast<PCRE2_SPTR32>(text.data()); }

}  // namespace

void Pattern::CodeDeleter::operator()(pcre2_real_code_32* code) const { pcre2_code_free_32(code); }

std::shared_ptr<const Pattern> Pattern::compile(std::u32string_view python) {
  if (python.size() > PATTERN_LIMIT) return nullptr;
  std::optional<std::u32string> source = pcre2_source(python);
  if (!source) return nullptr;
  int error = 0;
  PCRE2_SIZE error_at = 0;
  Code code(pcre2_compile_32(code_units(*source), source->size(), PCRE2_UTF | PCRE2_UCP, &error, &error_at,
                             library().compile.get()));
  if (!code) return nullptr;
  std::size_t size = 0;
  // Without machine code the library interprets the pattern: slower, and otherwise the same.
  if (pcre2_pattern_info_32(code.get(), PCRE2_INFO_SIZE, &size) == 0 && size <= JIT_CODE_LIMIT)
    pcre2_jit_compile_32(code.get(), PCRE2_JIT_COMPLETE);
  return std::shared_ptr<const Pattern>(new Pattern(std::move(code)));
}

PatternScan::PatternScan(const Pattern& pattern, std::u32string_view line) : _code(pattern._code.get()), _line(line) {
  Library& shared = library();
  shared.steps = {STEPS_PER_LINE + STEPS_PER_CHARACTER * static_cast<long>(line.size())};
  auto limit = static_cast<std::uint32_t>(std::min<long>(shared.steps.left, std::numeric_limits<std::uint32_t>::max()));
  pcre2_set_match_limit_32(shared.match.get(), limit);
}

bool PatternScan::next() {
  if (_gave_up || _end > _line.size()) return false;
  Library& shared = library();
  // Refusing empty matches finds the others where a search that steps over the empty ones would.
  int result = pcre2_match_32(_code, code_units(_line), _line.size(), _end, PCRE2_NOTEMPTY | PCRE2_NO_UTF_CHECK,
                              shared.data.get(), shared.match.get());
  _gave_up = result < 0 && result != PCRE2_ERROR_NOMATCH;
  if (result < 0) return false;
  const PCRE2_SIZE* offsets = pcre2_get_ovector_pointer_32(shared.data.get());
  _start = offsets[0];
  _end = offsets[1];
  return true;
}

}  // namespace brenlow

#include "core/undo_record.h"

#include <algorithm>
#include <tuple>

#include "core/unicode.h"

namespace brenlow {

namespace {

// A line of at least this many characters is kept as its differing middle; a shorter one as a handle.
constexpr int LONG_LINE = 1024;

bool unchanged(const Text& a, const SpanList& af, const Text& b, const SpanList& bf) { return a.same(b) && af == bf; }

// What the lines that came have more words than those that went. Lines of which only the format changed are
// not counted.
int word_growth(const std::vector<Text>& before, const std::vector<Text>& after) {
  int words = 0;
  std::size_t most = std::max(before.size(), after.size());
  for (std::size_t i = 0; i < most; ++i) {
    if (i < before.size() && i < after.size() && before[i].same(after[i])) continue;
    if (i < after.size()) words += count_words(after[i]);
    if (i < before.size()) words -= count_words(before[i]);
  }
  return words;
}

// Drops the lines at both ends of the slices that are the same before and after.
void trim_ends(UndoRecord& r) {
  std::size_t old_size = r.old_lines.size();
  std::size_t new_size = r.new_lines.size();
  std::size_t most = std::min(old_size, new_size);
  std::size_t head = 0;
  while (head < most && unchanged(r.old_lines[head], r.old_fmt[head], r.new_lines[head], r.new_fmt[head])) ++head;
  std::size_t tail = 0;
  while (tail < most - head && unchanged(r.old_lines[old_size - 1 - tail], r.old_fmt[old_size - 1 - tail],
                                         r.new_lines[new_size - 1 - tail], r.new_fmt[new_size - 1 - tail]))
    ++tail;
  auto keep_middle = [&](auto& list, std::size_t size) {
    list = {std::make_move_iterator(list.begin() + static_cast<long>(head)),
            std::make_move_iterator(list.begin() + static_cast<long>(size - tail))};
  };
  keep_middle(r.old_lines, old_size);
  keep_middle(r.old_fmt, old_size);
  keep_middle(r.new_lines, new_size);
  keep_middle(r.new_fmt, new_size);
  r.runs = {
      {r.lo + static_cast<int>(head), static_cast<int>(r.old_lines.size()), static_cast<int>(r.new_lines.size())}};
}

// With as many lines after as before: keeps only those that differ, as one run per stretch.
void keep_differing_lines(UndoRecord& r) {
  int first = r.runs[0].line;
  r.runs.clear();
  std::size_t kept = 0;
  for (std::size_t i = 0; i < r.old_lines.size(); ++i) {
    if (unchanged(r.old_lines[i], r.old_fmt[i], r.new_lines[i], r.new_fmt[i])) continue;
    int line = first + static_cast<int>(i);
    if (!r.runs.empty() && r.runs.back().line + r.runs.back().old_count == line) {
      ++r.runs.back().old_count;
      ++r.runs.back().new_count;
    } else {
      r.runs.push_back({line, 1, 1});
    }
    r.old_lines[kept] = std::move(r.old_lines[i]);
    r.old_fmt[kept] = std::move(r.old_fmt[i]);
    r.new_lines[kept] = std::move(r.new_lines[i]);
    r.new_fmt[kept] = std::move(r.new_fmt[i]);
    ++kept;
  }
  auto shorten = [&](auto& list) {
    list.resize(kept);
    list.shrink_to_fit();
  };
  shorten(r.old_lines);
  shorten(r.old_fmt);
  shorten(r.new_lines);
  shorten(r.new_fmt);
}

// How many elements `a` and `b` share in front, and behind that, where `same_tail` decides.
template <class A, class B, class SameTail>
std::pair<int, int> shared_ends(const A& a, const B& b, SameTail&& same_tail) {
  int most = static_cast<int>(std::min(a.size(), b.size()));
  int head = static_cast<int>(std::mismatch(a.begin(), a.begin() + most, b.begin()).first - a.begin());
  int tail = 0;
  while (tail < most - head &&
         same_tail(a[a.size() - 1 - static_cast<std::size_t>(tail)], b[b.size() - 1 - static_cast<std::size_t>(tail)]))
    ++tail;
  return {head, tail};
}

SpanList middle_of(const SpanList& spans, const UndoRecord::Kept& kept) {
  return SpanList(spans.view().subspan(static_cast<std::size_t>(kept.head_spans),
                                       spans.size() - static_cast<std::size_t>(kept.head_spans + kept.tail_spans)));
}

// Of one long line keeps just the characters and spans that differ.
void keep_differing_middle(UndoRecord& r) {
  Text& before = r.old_lines[0];
  Text& after = r.new_lines[0];
  if (std::min(before.length(), after.length()) < LONG_LINE) return;
  std::tie(r.kept.head, r.kept.tail) = before.view().visit([&](auto old_characters) {
    return after.view().visit([&](auto new_characters) {
      return shared_ends(old_characters, new_characters, [](char32_t a, char32_t b) { return a == b; });
    });
  });
  int growth = after.length() - before.length();
  std::tie(r.kept.head_spans, r.kept.tail_spans) =
      shared_ends(r.old_fmt[0].view(), r.new_fmt[0].view(), [&](const Span& a, const Span& b) {
        return a.start + growth == b.start && a.end + growth == b.end && a.bits == b.bits;
      });
  auto middle = [&](const Text& text) {
    return Text(text.view().substr(static_cast<std::size_t>(r.kept.head),
                                   text.size() - static_cast<std::size_t>(r.kept.head + r.kept.tail)));
  };
  before = middle(before);
  after = middle(after);
  r.old_fmt[0] = middle_of(r.old_fmt[0], r.kept);
  r.new_fmt[0] = middle_of(r.new_fmt[0], r.kept);
}

// The long line of the record's one run, put together from what stands in the document and the middle.
std::pair<Text, SpanList> rebuilt_line(const UndoRecord& r, const Text& present, const SpanList& present_fmt,
                                       const Text& middle, const SpanList& middle_fmt) {
  TextView all = present;
  Text text = joined(all.substr(0, static_cast<std::size_t>(r.kept.head)), middle.view(),
                     all.substr(all.size() - static_cast<std::size_t>(r.kept.tail)));
  int growth = text.length() - present.length();
  std::vector<Span> spans(present_fmt.begin(), present_fmt.begin() + r.kept.head_spans);
  spans.insert(spans.end(), middle_fmt.begin(), middle_fmt.end());
  for (const Span* span = present_fmt.end() - r.kept.tail_spans; span != present_fmt.end(); ++span)
    spans.push_back({span->start + growth, span->end + growth, span->bits});
  return {text, span_list(spans)};
}

}  // namespace

UndoRecord open_record(const LineList& lines, const FormatList& fmt_lines, const IndexSet& pagebreaks, int lo,
                       int hi_old) {
  UndoRecord r;
  r.lo = lo;
  r.old_count = hi_old - lo;
  r.old_pbl = pagebreaks;
  r.old_lines.assign(lines.begin() + lo, lines.begin() + hi_old);
  r.old_fmt.assign(fmt_lines.begin() + lo, fmt_lines.begin() + hi_old);
  return r;
}

void finish_record(UndoRecord& r, const LineList& lines, const FormatList& fmt_lines, const IndexSet& pagebreaks,
                   int hi_new) {
  r.new_count = hi_new - r.lo;
  r.new_pbl = pagebreaks;
  r.new_lines.assign(lines.begin() + r.lo, lines.begin() + hi_new);
  r.new_fmt.assign(fmt_lines.begin() + r.lo, fmt_lines.begin() + hi_new);
  trim_ends(r);
  if (r.old_lines.size() == r.new_lines.size()) keep_differing_lines(r);
  r.word_delta = word_growth(r.old_lines, r.new_lines);
  if (r.runs.size() == 1 && r.old_lines.size() == 1 && r.new_lines.size() == 1) keep_differing_middle(r);
  r.finished = true;
}

void apply_record(const UndoRecord& r, bool forward, LineList& lines, FormatList& fmt_lines, IndexSet& pagebreaks) {
  const std::vector<Text>& install = forward ? r.new_lines : r.old_lines;
  const std::vector<SpanList>& install_fmt = forward ? r.new_fmt : r.old_fmt;
  pagebreaks = forward ? r.new_pbl : r.old_pbl;
  if (r.kept.head + r.kept.tail + r.kept.head_spans + r.kept.tail_spans > 0) {
    auto at = static_cast<std::size_t>(r.runs[0].line);
    std::tie(lines[at], fmt_lines[at]) = rebuilt_line(r, lines[at], fmt_lines[at], install[0], install_fmt[0]);
    return;
  }
  std::size_t taken = 0;
  for (const UndoRecord::Run& run : r.runs) {
    int removed = forward ? run.old_count : run.new_count;
    int added = forward ? run.new_count : run.old_count;
    auto slice = [&](const auto& list) {
      auto from = list.begin() + static_cast<long>(taken);
      return std::vector(from, from + added);
    };
    auto at = static_cast<std::size_t>(run.line);
    lines.splice(at, static_cast<std::size_t>(removed), slice(install));
    fmt_lines.splice(at, static_cast<std::size_t>(removed), slice(install_fmt));
    taken += static_cast<std::size_t>(added);
  }
}

}  // namespace brenlow

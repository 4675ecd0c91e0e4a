#pragma once

#include <algorithm>
#include <ctime>
#include <string>
#include <utility>
#include <vector>

namespace brenlow::bench {

// One line of the table: a figure and the most that it may be.
struct Row {
  std::string question;
  double figure;
  double goal;
  std::string unit;    // empty: a ratio
  std::string detail;  // what the figure comes from
};
using Rows = std::vector<Row>;

// CPU time that this thread has used, in milliseconds: what other programs do meanwhile hardly shows.
inline double cpu_now() {
  timespec time{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

template <class Work>
double cpu_of(Work&& work) {
  double begin = cpu_now();
  std::forward<Work>(work)();
  return cpu_now() - begin;
}

inline double median(std::vector<double> values) {
  auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// Two figures taken in turns, so that both meet the same machine; compared turn by turn.
struct Compared {
  std::vector<double> ours, bare;

  double ratio() const {
    std::vector<double> ratios;
    for (std::size_t i = 0; i < ours.size(); ++i) ratios.push_back(ours[i] / bare[i]);
    return median(std::move(ratios));
  }
};

// `milliseconds` with three digits that count.
std::string in_milliseconds(double milliseconds);
std::string described(const Compared& compared);

}  // namespace brenlow::bench

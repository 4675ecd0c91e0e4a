#include "core/index_set.h"

#include <algorithm>
#include <iterator>

namespace brenlow {

IndexSet::IndexSet(std::initializer_list<int> members) : IndexSet(from_unsorted(members)) {}

IndexSet IndexSet::from_sorted(std::span<const int> members) {
  IndexSet set;
  set._members = SharedArray<int>(members);
  return set;
}

IndexSet IndexSet::from_unsorted(std::vector<int> members) {
  std::sort(members.begin(), members.end());
  members.erase(std::unique(members.begin(), members.end()), members.end());
  return from_sorted(members);
}

bool IndexSet::contains(int index) const { return std::binary_search(begin(), end(), index); }

void IndexSet::insert(int index) {
  const int* place = std::lower_bound(begin(), end(), index);
  if (place != end() && *place == index) return;
  std::size_t before = static_cast<std::size_t>(place - begin());
  _members = SharedArray<int>::build(_members.size() + 1, [&](int* out) {
    out = std::copy(begin(), begin() + before, out);
    *out++ = index;
    std::copy(begin() + before, end(), out);
  });
}

void IndexSet::erase(int index) { erase_range(index, index); }

void IndexSet::merge(const IndexSet& other) {
  if (other.empty()) return;
  std::vector<int> both;
  both.reserve(_members.size() + other._members.size());
  std::set_union(begin(), end(), other.begin(), other.end(), std::back_inserter(both));
  *this = from_sorted(both);
}

void IndexSet::erase_range(int first, int last) {
  const int* low = std::lower_bound(begin(), end(), first);
  const int* high = std::upper_bound(low, end(), last);
  if (low == high) return;
  _members = SharedArray<int>::build(_members.size() - static_cast<std::size_t>(high - low), [&](int* out) {
    out = std::copy(begin(), low, out);
    std::copy(high, end(), out);
  });
}

void IndexSet::shift(int from, int delta) {
  if (delta == 0 || empty() || *(end() - 1) < from) return;
  _members = SharedArray<int>::build(_members.size(), [&](int* out) {
    for (int member : _members) *out++ = member < from ? member : member + delta;
  });
}

}  // namespace brenlow

#pragma once

#include <initializer_list>
#include <span>
#include <vector>

#include "core/shared_array.h"

namespace brenlow {

// A set of line indices: an immutable sorted array behind a handle. A copy is O(1), so an undo record
// keeps the whole set; a change costs one pass over the members.
class IndexSet {
 public:
  IndexSet() = default;
  IndexSet(std::initializer_list<int> members);
  // `members` ascending, without repetition.
  static IndexSet from_sorted(std::span<const int> members);
  // In any order, with repetitions.
  static IndexSet from_unsorted(std::vector<int> members);

  bool contains(int index) const;
  bool empty() const { return _members.empty(); }
  int size() const { return static_cast<int>(_members.size()); }
  const int* begin() const { return _members.begin(); }
  const int* end() const { return _members.end(); }

  void insert(int index);
  void erase(int index);
  void clear() { _members = {}; }
  void merge(const IndexSet& other);
  // Members from `first` to `last`, both included, leave.
  void erase_range(int first, int last);
  // Members at least `from` move by `delta`; the others stay. The caller makes sure that none collide.
  void shift(int from, int delta);
  // Every member takes the value `map` gives it; equal results fall together.
  template <class Map>
  void renumber(Map&& map) {
    std::vector<int> moved;
    moved.reserve(_members.size());
    for (int member : _members) moved.push_back(map(member));
    *this = from_unsorted(std::move(moved));
  }

  friend bool operator==(const IndexSet&, const IndexSet&) = default;

 private:
  SharedArray<int> _members;
};

}  // namespace brenlow

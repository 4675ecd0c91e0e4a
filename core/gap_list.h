#pragma once

#include <algorithm>
#include <compare>
#include <cstddef>
#include <iterator>
#include <type_traits>
#include <utility>
#include <vector>

namespace brenlow {

// For lists whose elements do not change with their place.
struct NoShift {};

// A list that is cheap to edit again near the last edit, however long it is: the unused room lies there, as in
// the gap buffer of a text editor. An edit costs the elements between it and the last one.
//
// Lists of places (of rows, of lines) have a `Shift`, called as `Shift{}(element, amount)`, which adds to the
// place that an element tells. All elements behind the gap are kept less a common amount, so that those behind
// an edit move on together at no cost; they are handed out as values.
template <class T, class Shift = NoShift>
class GapList {
  static constexpr bool SHIFTS = !std::is_same_v<Shift, NoShift>;
  using Element = std::conditional_t<SHIFTS, T, const T&>;

 public:
  using value_type = T;

  class Iterator {
   public:
    using iterator_category = std::random_access_iterator_tag;
    using value_type = T;
    using difference_type = std::ptrdiff_t;
    using pointer = const T*;
    using reference = Element;

    Iterator() = default;
    Iterator(const GapList* list, std::ptrdiff_t at) : _list(list), _at(at) {}
    Element operator*() const { return (*_list)[static_cast<std::size_t>(_at)]; }
    Element operator[](std::ptrdiff_t n) const { return *(*this + n); }
    Iterator& operator+=(std::ptrdiff_t n) {
      _at += n;
      return *this;
    }
    Iterator& operator-=(std::ptrdiff_t n) { return *this += -n; }
    Iterator& operator++() { return *this += 1; }
    Iterator& operator--() { return *this += -1; }
    Iterator operator++(int) { return std::exchange(*this, *this + 1); }
    Iterator operator--(int) { return std::exchange(*this, *this - 1); }
    friend Iterator operator+(Iterator a, std::ptrdiff_t n) { return a += n; }
    friend Iterator operator+(std::ptrdiff_t n, Iterator a) { return a += n; }
    friend Iterator operator-(Iterator a, std::ptrdiff_t n) { return a -= n; }
    friend std::ptrdiff_t operator-(Iterator a, Iterator b) { return a._at - b._at; }
    friend bool operator==(Iterator a, Iterator b) { return a._at == b._at; }
    friend auto operator<=>(Iterator a, Iterator b) { return a._at <=> b._at; }

   private:
    const GapList* _list = nullptr;
    std::ptrdiff_t _at = 0;
  };

  GapList() = default;
  GapList(std::vector<T> items)  // NOLINT(google-explicit-constructor): the same list
      : _items(std::move(items)), _gap(_items.size()) {}
  GapList(std::initializer_list<T> items) : GapList(std::vector<T>(items)) {}

  std::size_t size() const { return _items.size() - _gap_size; }
  bool empty() const { return size() == 0; }
  Iterator begin() const { return {this, 0}; }
  Iterator end() const { return {this, static_cast<std::ptrdiff_t>(size())}; }
  Element back() const { return (*this)[size() - 1]; }

  Element operator[](std::size_t at) const {
    if (at < _gap) return _items[at];
    if constexpr (SHIFTS) {
      T element = _items[at + _gap_size];
      Shift{}(element, _amount);
      return element;
    } else {
      return _items[at + _gap_size];
    }
  }
  T& operator[](std::size_t at) requires(!SHIFTS) { return _items[at < _gap ? at : at + _gap_size]; }

  void clear() { *this = GapList(); }
  void reserve(std::size_t size) { _items.reserve(size); }
  void assign(std::size_t size, const T& element) {
    std::vector<T> items = std::move(_items);  // its room, unless it is not enough
    items.assign(size, element);
    *this = GapList(std::move(items));
  }
  void push_back(T element) {
    _move_gap(size());
    if (_gap_size > 0) {
      _items[_gap] = std::move(element);
      --_gap_size;
    } else {
      _items.push_back(std::move(element));
    }
    ++_gap;
  }
  void insert(std::size_t at, T element) {
    _open_gap(at, 0, 1);
    _items[_gap++] = std::move(element);
    --_gap_size;
  }
  void erase(std::size_t at, std::size_t count) { _open_gap(at, count, 0); }
  // Puts `added` in place of the `removed` elements from `at` on. Where as many come as go, the gap stays.
  // Want of memory leaves the list as it was.
  void splice(std::size_t at, std::size_t removed, std::vector<T> added) {
    std::size_t common = std::min(removed, added.size());
    if (added.size() > removed) _make_room(at + common, added.size() - removed);
    for (std::size_t i = 0; i < common; ++i) _set(at + i, std::move(added[i]));
    if (removed == added.size()) return;
    std::size_t more = added.size() - common;
    _open_gap(at + common, removed - common, more);
    std::move(added.begin() + static_cast<std::ptrdiff_t>(common), added.end(),
              _items.begin() + static_cast<std::ptrdiff_t>(_gap));
    _gap += more;
    _gap_size -= more;
  }
  // Adds `amount` to the place that every element from `at` on tells.
  void shift(std::size_t at, int amount) requires SHIFTS {
    if (amount == 0) return;
    _move_gap(at);
    _amount += amount;
  }

  friend bool operator==(const GapList& a, const GapList& b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin());
  }

 private:
  void _set(std::size_t at, T element) {
    if constexpr (SHIFTS)
      if (at >= _gap) Shift{}(element, -_amount);
    _items[at < _gap ? at : at + _gap_size] = std::move(element);
  }

  void _cross(std::size_t first, std::size_t last, int amount) {
    if constexpr (SHIFTS)
      for (std::size_t i = first; i < last; ++i) Shift{}(_items[i], amount);
  }

  void _move_gap(std::size_t at) {
    auto item = [&](std::size_t i) { return _items.begin() + static_cast<std::ptrdiff_t>(i); };
    if (at < _gap) {
      _cross(at, _gap, -_amount);
      std::move_backward(item(at), item(_gap), item(_gap + _gap_size));
    } else if (at > _gap) {
      _cross(_gap + _gap_size, at + _gap_size, _amount);
      std::move(item(_gap + _gap_size), item(at + _gap_size), item(_gap));
    }
    _gap = at;
  }

  // Takes `removed` elements away from `at` on and makes room for `wanted` there.
  void _open_gap(std::size_t at, std::size_t removed, std::size_t wanted) {
    if (wanted > removed) _make_room(at, wanted - removed);
    _move_gap(at);
    for (std::size_t i = 0; i < removed; ++i) _items[_gap + _gap_size + i] = T();  // lets go of what it holds
    _gap_size += removed;
  }

  void _make_room(std::size_t at, std::size_t wanted) {
    _move_gap(at);
    if (_gap_size >= wanted) return;
    std::size_t more = wanted - _gap_size + std::min<std::size_t>(size() / 32, 4096) + 16;
    _items.insert(_items.begin() + static_cast<std::ptrdiff_t>(_gap), more, T());
    _gap_size += more;
  }

  std::vector<T> _items;
  std::size_t _gap = 0;       // where the unused room begins
  std::size_t _gap_size = 0;  // elements of it
  int _amount = 0;            // what the elements behind the gap are kept less
};

}  // namespace brenlow

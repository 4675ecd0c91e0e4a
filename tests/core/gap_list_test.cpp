#include "core/gap_list.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>

namespace brenlow {
namespace {

struct ShiftNumber {
  void operator()(int& number, int amount) const { number += amount; }
};

template <class List>
void expect_same(const List& list, const std::vector<typename List::value_type>& plain) {
  ASSERT_EQ(std::vector(list.begin(), list.end()), plain);
  ASSERT_EQ(list.size(), plain.size());
}

// Any sequence of edits leaves what the same edits leave of a plain array; places behind an edit move on.
TEST(GapList, IsThePlainListAfterAnyEdits) {
  std::mt19937 random(11);
  auto upto = [&](std::size_t most) { return std::uniform_int_distribution<std::size_t>(0, most)(random); };
  for (int round = 0; round < 40; ++round) {
    std::vector<int> plain(upto(60));
    for (int& number : plain) number = static_cast<int>(upto(1000));
    std::vector<int> places = plain;
    GapList<int> list(plain);
    GapList<int, ShiftNumber> place_list(places);
    for (int edit = 0; edit < 60; ++edit) {
      std::size_t at = upto(plain.size());
      std::size_t removed = upto(std::min<std::size_t>(plain.size() - at, 5));
      std::vector<int> added(upto(5) == 0 ? upto(40) : upto(4));
      for (int& number : added) number = static_cast<int>(upto(1000));
      int amount = static_cast<int>(upto(6)) - 3;
      for (auto* model : {&plain, &places}) {
        model->erase(model->begin() + static_cast<long>(at), model->begin() + static_cast<long>(at + removed));
        model->insert(model->begin() + static_cast<long>(at), added.begin(), added.end());
      }
      list.splice(at, removed, added);
      place_list.splice(at, removed, added);
      std::size_t from = upto(places.size());
      for (std::size_t i = from; i < places.size(); ++i) places[i] += amount;
      place_list.shift(from, amount);
      if (upto(3) == 0) {
        list.push_back(5);
        plain.push_back(5);
        place_list.push_back(7);
        places.push_back(7);
      }
      expect_same(list, plain);
      expect_same(place_list, places);
    }
  }
}

TEST(GapList, LetsGoOfWhatIsTakenOut) {
  auto kept = std::make_shared<int>(1);
  GapList<std::shared_ptr<int>> list{kept, kept, kept};
  list.erase(1, 1);
  list.splice(0, 1, {nullptr});
  EXPECT_EQ(kept.use_count(), 2);
}

}  // namespace
}  // namespace brenlow

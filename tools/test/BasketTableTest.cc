#include "BasketTable.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace StnTools;

// Baskets of one branch, with ten entries each, at these places: 1000 times the place is the byte.
BasketKey Basket(int number, std::uint64_t place, const std::string& branch = "a") {
  return {branch, number, 1000 * place, 10};
}

// A saved tree that knows baskets of ten entries, and has some entries in a basket that was not full.
TreeTable Tree(std::uint64_t place, const std::vector<std::uint64_t>& baskets, std::uint32_t n_saved) {
  TreeTable tree;
  tree.fSeek = 1000 * place;
  BranchRecord& branch = tree.fBranches["a"];
  for (std::uint64_t basket : baskets)
    branch.fSlots.push_back({10 * branch.fSlots.size(), 1000 * basket});
  branch.fSlots.push_back({10 * branch.fSlots.size(), 0});
  branch.fNSaved = n_saved;
  return tree;
}

// The place of an entry, as in `Basket`; 0 if it is lost.
std::uint64_t GetPlace(const BasketTable& table, std::uint64_t entry) {
  const EntryRange* range = table.Find("a", entry);
  return range == nullptr ? 0 : range->fSeek / 1000;
}

TEST(BasketTable, HasNoTreesWithoutBaskets) { EXPECT_TRUE(BasketTable::Sort({}, {}).empty()); }

TEST(BasketTable, CountsEntriesOverTheBaskets) {
  auto tables = BasketTable::Sort({Basket(0, 1), Basket(1, 2), Basket(2, 3)}, {});
  ASSERT_EQ(tables.size(), 1u);
  EXPECT_EQ(tables[0].GetNEntries(), 30u);
  EXPECT_EQ(GetPlace(tables[0], 9), 1u);
  EXPECT_EQ(GetPlace(tables[0], 10), 2u);
  EXPECT_EQ(GetPlace(tables[0], 29), 3u);
  EXPECT_EQ(GetPlace(tables[0], 30), 0u);
  EXPECT_FALSE(tables[0].IsSaved());
}

TEST(BasketTable, HasNoEntriesOfABranchWithoutBaskets) {
  auto tables = BasketTable::Sort({Basket(0, 1)}, {});
  EXPECT_EQ(tables[0].Find("b", 0), nullptr);
}

TEST(BasketTable, OrdersBasketsByTheirNumbers) {
  auto tables = BasketTable::Sort({Basket(0, 1), Basket(2, 2), Basket(1, 3)}, {});
  ASSERT_EQ(tables.size(), 1u);
  EXPECT_EQ(GetPlace(tables[0], 15), 3u);
  EXPECT_EQ(GetPlace(tables[0], 25), 2u);
}

TEST(BasketTable, PlacesNothingBehindAMissingBasket) {
  auto tables = BasketTable::Sort({Basket(0, 1), Basket(2, 3), Basket(3, 4)}, {});
  EXPECT_EQ(tables[0].GetNEntries(), 10u);
  EXPECT_EQ(tables[0].GetNUnplaced(), 2u);
}

TEST(BasketTable, PlacesNothingIfTheFirstBasketIsMissing) {
  auto tables = BasketTable::Sort({Basket(1, 2)}, {});
  EXPECT_EQ(tables[0].GetNEntries(), 0u);
  EXPECT_EQ(tables[0].GetNUnplaced(), 1u);
}

TEST(BasketTable, PlacesBasketsBehindAMissingOneByASavedTree) {
  auto tables = BasketTable::Sort({Basket(0, 1), Basket(2, 3), Basket(3, 5)}, {Tree(4, {1, 2, 3}, 0)});
  ASSERT_EQ(tables.size(), 1u);
  EXPECT_TRUE(tables[0].IsSaved());
  EXPECT_EQ(GetPlace(tables[0], 5), 1u);
  EXPECT_EQ(GetPlace(tables[0], 15), 0u);
  EXPECT_EQ(GetPlace(tables[0], 25), 3u);
  EXPECT_EQ(GetPlace(tables[0], 35), 5u);
}

TEST(BasketTable, BelievesASavedTreeMoreThanTheNumberInAKey) {
  auto tables = BasketTable::Sort({Basket(0, 1), Basket(7, 2)}, {Tree(4, {1, 2}, 0)});
  EXPECT_EQ(GetPlace(tables[0], 15), 2u);
}

TEST(BasketTable, RefusesABasketWithAnotherCountThanTheTreeKnows) {
  BasketKey basket = Basket(0, 1);
  basket.fNEntries = 11;
  auto tables = BasketTable::Sort({basket, Basket(1, 2)}, {Tree(4, {1, 2}, 0)});
  EXPECT_EQ(GetPlace(tables[0], 5), 0u);
  EXPECT_EQ(GetPlace(tables[0], 15), 2u);
  EXPECT_EQ(tables[0].GetNUnplaced(), 1u);
}

TEST(BasketTable, FindsEntriesThatWereSavedWithTheTree) {
  auto tables = BasketTable::Sort({Basket(0, 1)}, {Tree(4, {1}, 3)});
  ASSERT_EQ(tables.size(), 1u);
  EXPECT_EQ(tables[0].GetNEntries(), 13u);
  const EntryRange* range = tables[0].Find("a", 12);
  ASSERT_NE(range, nullptr);
  EXPECT_TRUE(range->fIsInTree);
  EXPECT_EQ(range->fFirst, 10u);
  EXPECT_EQ(range->fSeek, 4000u);
}

TEST(BasketTable, PrefersABasketToItsBeginningsInATree) {
  auto tables = BasketTable::Sort({Basket(0, 1), Basket(1, 5)}, {Tree(4, {1}, 3)});
  EXPECT_EQ(tables[0].GetNEntries(), 20u);
  EXPECT_FALSE(tables[0].Find("a", 12)->fIsInTree);
}

TEST(BasketTable, TakesTheLaterOfTwoSavedStates) {
  auto tables = BasketTable::Sort({Basket(0, 1)}, {Tree(4, {1}, 3), Tree(5, {1}, 7)});
  ASSERT_EQ(tables.size(), 1u);
  EXPECT_EQ(tables[0].GetNEntries(), 17u);
  EXPECT_EQ(tables[0].Find("a", 16)->fSeek, 5000u);
}

TEST(BasketTable, KnowsATreeThatWasSavedBeforeTheFirstBasketWasFull) {
  auto tables = BasketTable::Sort({Basket(0, 2)}, {Tree(1, {}, 3)});
  ASSERT_EQ(tables.size(), 1u);
  EXPECT_EQ(tables[0].GetNEntries(), 10u);
}

TEST(BasketTable, TellsTwoTreesInOneFileApart) {
  auto tables = BasketTable::Sort({Basket(0, 1), Basket(1, 2), Basket(0, 4), Basket(1, 5), Basket(2, 6)}, {});
  ASSERT_EQ(tables.size(), 2u);
  EXPECT_EQ(tables[0].GetNEntries(), 20u);
  EXPECT_EQ(tables[1].GetNEntries(), 30u);
  EXPECT_EQ(GetPlace(tables[1], 5), 4u);
}

TEST(BasketTable, GivesASavedTreeToItsOwnBaskets) {
  auto tables = BasketTable::Sort({Basket(0, 1), Basket(0, 3)}, {Tree(2, {1}, 0), Tree(4, {3}, 5)});
  ASSERT_EQ(tables.size(), 2u);
  EXPECT_EQ(tables[0].GetNEntries(), 10u);
  EXPECT_EQ(tables[1].GetNEntries(), 15u);
}

TEST(BasketTable, TakesADamagedNumberForNoNewTree) {
  auto tables = BasketTable::Sort({Basket(0, 1), Basket(1, 2), Basket(0, 3), Basket(3, 4)}, {});
  ASSERT_EQ(tables.size(), 1u);
  EXPECT_EQ(tables[0].GetNEntries(), 20u);
  EXPECT_EQ(tables[0].GetNUnplaced(), 2u);
}

TEST(BasketTable, CountsOnWhereTheNumbersBeginAgain) {
  std::vector<BasketKey> baskets;
  for (int number = 0; number < 65540; ++number)
    baskets.push_back(Basket(number % 65536, static_cast<std::uint64_t>(number) + 1));
  auto tables = BasketTable::Sort(baskets, {});
  ASSERT_EQ(tables.size(), 1u);
  EXPECT_EQ(tables[0].GetNEntries(), 655400u);
  EXPECT_EQ(GetPlace(tables[0], 655399), 65540u);
}

}  // namespace

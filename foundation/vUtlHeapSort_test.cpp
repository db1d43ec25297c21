// The heap sorts: orders, the index moved with the keys, both keys in every pair of directions.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "foundation/vUtl.h"

namespace {

typedef vUtlSort::SortOrder S;

std::vector<unsigned int> iota(int n) {
  std::vector<unsigned int> index;
  for (int i = 1; i <= n; ++i) index.push_back(static_cast<unsigned int>(i));
  return index;
}

// Random pairs: the keys come out in the combined order, the index faithful.
template <class K1, class K2>
void checkPairs(S::SortOrderType order1, S::SortOrderType order2) {
  std::mt19937 random(11);
  int const n = 3000;
  std::vector<K1> key1(n);
  std::vector<K2> key2(n);
  for (int i = 0; i < n; ++i) {
    key1[i] = static_cast<K1>(random() % 40);
    key2[i] = static_cast<K2>(random() % 1000);
  }
  std::vector<K1> a = key1;
  std::vector<K2> b = key2;
  std::vector<unsigned int> index = iota(n);
  vUtl::heapSort2Key<K1, K2, unsigned int>(n, a.data(), b.data(), index.data(), order1, order2);
  for (int i = 0; i < n; ++i) {
    ASSERT_EQ(key1[index[i] - 1], a[i]);
    ASSERT_EQ(key2[index[i] - 1], b[i]);
    if (i == 0) continue;
    if (a[i - 1] != a[i]) {
      ASSERT_EQ(order1 == S::ASCENDING, a[i - 1] < a[i]) << i;
    } else if (b[i - 1] != b[i]) {
      ASSERT_EQ(order2 == S::ASCENDING, b[i - 1] < b[i]) << i;
    }
  }
}

TEST(HeapSort, OneKeyCarriesTheIndexAndPairsSortInEachDirection) {
  std::mt19937 random(7);
  std::vector<double> many(5000);
  for (double& v : many) v = std::uniform_real_distribution<double>(-1e6, 1e6)(random);
  std::vector<double> original = many;
  std::vector<unsigned int> index = iota(5000);
  vUtl::heapSort<double, unsigned int>(5000, many.data(), index.data());
  EXPECT_TRUE(std::is_sorted(many.begin(), many.end()));
  for (int i = 0; i < 5000; ++i) ASSERT_EQ(original[index[i] - 1], many[i]) << i;
  std::vector<unsigned int> sorted = index;
  std::sort(sorted.begin(), sorted.end());
  EXPECT_EQ(iota(5000), sorted);
  checkPairs<short, double>(S::ASCENDING, S::DESCENDING);
  checkPairs<int, long long>(S::DESCENDING, S::ASCENDING);
  checkPairs<float, int>(S::ASCENDING, S::ASCENDING);
  checkPairs<double, short>(S::DESCENDING, S::DESCENDING);
}

}  // namespace

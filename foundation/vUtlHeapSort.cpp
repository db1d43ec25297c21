// Heap sorts of keys with an index carried along. The arrays are seen
// 1-based (a[1..n]) so that the children of position j are 2j and 2j+1.
// The element in hand is held aside while the sift-down moves larger
// children up, and written once where it stops.

#include "foundation/vUtl.h"

#include <utility>

namespace {

// Sift-down of position start in a heap ending at end. The heap state s
// takes the element in hand aside, tells whether a position belongs after
// another or after the element held, moves and puts back.
template <class S>
void siftDown(int start, int end, S& s) {
  s.take(start);
  int j = start;
  while (2 * j <= end) {
    int k = 2 * j;
    // The left child wins a tie.
    if (k < end && s.after(k + 1, k)) ++k;
    if (!s.afterHeld(k)) break;
    s.move(j, k);
    j = k;
  }
  s.put(j);
}

template <class S>
void heapSortOf(int n, S& s) {
  for (int i = n / 2; i >= 1; --i) siftDown(i, n, s);
  for (int end = n; end >= 2; --end) {
    s.swap(1, end);
    siftDown(1, end - 1, s);
  }
}

// Positions are 1-based; the arrays are not.
template <class T, class Index>
struct OneKey {
  T* a;
  Index* x;
  T held;
  Index heldIndex;
  bool after(int i, int j) const { return a[i - 1] > a[j - 1]; }
  bool afterHeld(int i) const { return a[i - 1] > held; }
  void take(int i) {
    held = a[i - 1];
    heldIndex = x[i - 1];
  }
  void put(int i) {
    a[i - 1] = held;
    x[i - 1] = heldIndex;
  }
  void move(int to, int from) {
    a[to - 1] = a[from - 1];
    x[to - 1] = x[from - 1];
  }
  void swap(int i, int j) {
    std::swap(a[i - 1], a[j - 1]);
    std::swap(x[i - 1], x[j - 1]);
  }
};

// Later in the final order: with an ascending order a larger value comes
// later, with a descending order a smaller one; ties on key1 go to key2.
template <class K1, class K2, bool Ascending1, bool Ascending2>
bool later(K1 a1, K2 a2, K1 b1, K2 b2) {
  if (a1 > b1) return Ascending1;
  if (a1 < b1) return !Ascending1;
  return Ascending2 ? a2 > b2 : a2 < b2;
}

template <class K1, class K2, class Index, bool Ascending1, bool Ascending2>
struct TwoKeys {
  K1* a;
  K2* b;
  Index* x;
  K1 held1;
  K2 held2;
  Index heldIndex;
  bool after(int i, int j) const {
    return later<K1, K2, Ascending1, Ascending2>(a[i - 1], b[i - 1], a[j - 1], b[j - 1]);
  }
  bool afterHeld(int i) const { return later<K1, K2, Ascending1, Ascending2>(a[i - 1], b[i - 1], held1, held2); }
  void take(int i) {
    held1 = a[i - 1];
    held2 = b[i - 1];
    heldIndex = x[i - 1];
  }
  void put(int i) {
    a[i - 1] = held1;
    b[i - 1] = held2;
    x[i - 1] = heldIndex;
  }
  void move(int to, int from) {
    a[to - 1] = a[from - 1];
    b[to - 1] = b[from - 1];
    x[to - 1] = x[from - 1];
  }
  void swap(int i, int j) {
    std::swap(a[i - 1], a[j - 1]);
    std::swap(b[i - 1], b[j - 1]);
    std::swap(x[i - 1], x[j - 1]);
  }
};

template <class K1, class K2, class Index, bool Ascending1, bool Ascending2>
void sortTwo(int n, K1* key1, K2* key2, Index* index) {
  TwoKeys<K1, K2, Index, Ascending1, Ascending2> s{key1, key2, index, K1(), K2(), Index()};
  heapSortOf(n, s);
}

}  // namespace

namespace vUtl {

template <class T, class Index>
void heapSort(int n, T* keys, Index* index) {
  if (n <= 1) return;
  OneKey<T, Index> s{keys, index, T(), Index()};
  heapSortOf(n, s);
}

template <class K1, class K2, class Index>
void heapSort2Key(int n, K1* key1, K2* key2, Index* index, vUtlSort::SortOrder::SortOrderType order1,
                  vUtlSort::SortOrder::SortOrderType order2) {
  typedef vUtlSort::SortOrder S;
  if (n <= 1) return;
  bool const up1 = order1 == S::ASCENDING, down1 = order1 == S::DESCENDING;
  bool const up2 = order2 == S::ASCENDING, down2 = order2 == S::DESCENDING;
  if (up1 && up2)
    sortTwo<K1, K2, Index, true, true>(n, key1, key2, index);
  else if (up1 && down2)
    sortTwo<K1, K2, Index, true, false>(n, key1, key2, index);
  else if (down1 && up2)
    sortTwo<K1, K2, Index, false, true>(n, key1, key2, index);
  else if (down1 && down2)
    sortTwo<K1, K2, Index, false, false>(n, key1, key2, index);
}

#define RONDO_HEAPSORT_ONE(T) template void heapSort<T, unsigned int>(int, T*, unsigned int*);
#define RONDO_HEAPSORT_TWO(K1, K2)                                                                  \
  template void heapSort2Key<K1, K2, unsigned int>(int, K1*, K2*, unsigned int*,                    \
                                                   vUtlSort::SortOrder::SortOrderType,              \
                                                   vUtlSort::SortOrder::SortOrderType);
#define RONDO_HEAPSORT_ROW(K1)     \
  RONDO_HEAPSORT_ONE(K1)           \
  RONDO_HEAPSORT_TWO(K1, short)    \
  RONDO_HEAPSORT_TWO(K1, int)      \
  RONDO_HEAPSORT_TWO(K1, long long) \
  RONDO_HEAPSORT_TWO(K1, float)    \
  RONDO_HEAPSORT_TWO(K1, double)

RONDO_HEAPSORT_ROW(short)
RONDO_HEAPSORT_ROW(int)
RONDO_HEAPSORT_ROW(long long)
RONDO_HEAPSORT_ROW(float)
RONDO_HEAPSORT_ROW(double)

#undef RONDO_HEAPSORT_ROW
#undef RONDO_HEAPSORT_TWO
#undef RONDO_HEAPSORT_ONE

}  // namespace vUtl

// Reserved blocks of the ss heap, direct access to a slot's words, and the
// heap space a tree takes.

#include <vector>

#include "syslayer/SSHeap.h"
#include "syslayer/SSHeapInternal.h"
#include "syslayer/SysUtil.h"

using namespace ss_internal;

namespace {

bool isArray(int32_t type) { return type >= SS_AINT && type <= SS_ASTRUCT; }

// The reservation's first word (its mark), after checking it is one.
int32_t reservation(int32_t index, char const* routine) {
  if (index < kHeader + 2 || index >= heapTop() || ss_[index - 2] != kReservedMark)
    er_fatal_(routine, "Not a reservation");
  return index - 2;
}

}  // namespace

void ss_allocate_(int32_t const& words, int32_t& index) {
  if (words < 1 || words > 0x1000000) er_fatal_("SS_allocate", "Illegal size");
  int32_t const b = allocBlock(words + 2, "SS_allocate");
  ss_[b] = kReservedMark;
  ss_[b + 1] = words + 2;
  index = b + 2;
}

void ss_commit_(int32_t const& index, int32_t const& used) {
  int32_t const b = reservation(index, "SS_commit");
  int32_t const total = ss_[b + 1];
  if (used < 1 || used + 2 > total) er_fatal_("SS_commit", "Illegal commit");
  ss_[b] = kRawMark;
  ss_[b + 1] = used + 2;
  if (total > used + 2) freeBlock(b + used + 2, total - used - 2);
}

void ss_break_(int32_t const& index) {
  int32_t const b = reservation(index, "SS_break");
  freeBlock(b, ss_[b + 1]);
}

void ss_base_(int32_t const& id, int32_t const& ordinal, int32_t& base) {
  int32_t const at = slotAt(id, ordinal, "SS_base");
  int32_t const type = typeOf(id, ordinal);
  int32_t const v = ss_[at];
  if (isArray(type))
    base = isLive(v) ? v + 3 : 0;
  else if (type == SS_TEXT)
    base = v > kHeader + 3 && v < heapTop() && ss_[v - 3] == SS_TEXTMARK ? v + 1 : 0;
  else
    base = at;
}

void ss_slength_(int32_t const& id, int32_t& length) {
  checkId(id, "SS_slength");
  int64_t words = 0;
  std::vector<int32_t> todo(1, id);
  // What a structure owns is what names it as parent: values put by hand
  // that point elsewhere are another's words.
  auto text = [&words](int32_t pointer, int32_t owner) {
    int32_t const b = pointer - 3;
    if (b > kHeader && pointer < heapTop() && ss_[b] == SS_TEXTMARK && ss_[b + 2] == owner) words += ss_[b + 1];
  };
  auto structure = [&todo](int32_t s, int32_t owner) {
    if (isLive(s) && ss_[s + 1] == owner) todo.push_back(s);
  };
  while (!todo.empty()) {
    int32_t const s = todo.back();
    todo.pop_back();
    words += ss_[s] + 1;
    int32_t n;
    ss_n_(s, n);
    for (int32_t k = 1; k <= n; ++k) {
      int32_t const type = typeOf(s, k);
      int32_t const v = ss_[slotAt(s, k, "SS_slength")];
      if (type == SS_TEXT) text(v, s);
      if (type == SS_STRUCT) structure(v, s);
      if (!isArray(type) || !isLive(v) || ss_[v + 1] != s) continue;
      words += ss_[v] + 1;
      for (int32_t e = 0; e < ss_[v + 2] && (type == SS_ATEXT || type == SS_ASTRUCT); ++e)
        type == SS_ATEXT ? text(ss_[v + 3 + e], s) : structure(ss_[v + 3 + e], s);
    }
  }
  if (words > 0x7FFFFFFF) er_fatal_("SS_slength", "Tree too large");
  length = static_cast<int32_t>(words);
}

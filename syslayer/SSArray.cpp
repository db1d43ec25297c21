// Arrays in ss slots: sizing and element access.

#include <cstring>

#include "syslayer/SSHeap.h"
#include "syslayer/SSHeapInternal.h"
#include "syslayer/SysUtil.h"

using namespace ss_internal;

namespace {

bool isArray(int32_t type) { return type >= SS_AINT && type <= SS_ASTRUCT; }

// The index of an element's first word, or -1 after a warning when the
// slot holds another kind of array.
int32_t elementAt(int32_t id, int32_t ordinal, int32_t element, int32_t want, char const* routine) {
  int32_t const at = slotAt(id, ordinal, routine);
  int32_t const type = typeOf(id, ordinal);
  bool const fits = type == want || (want == SS_AINT && (type == SS_AFLOAT || type == SS_ASTRUCT));
  if (!fits) {
    er_warn_(routine, "Mis-matched array type");
    return -1;
  }
  int32_t const a = ss_[at];
  int32_t const count = a > 0 ? ss_[a + 2] : 0;
  if (element < 1 || element > count) er_fatal_(routine, "Illegal array ordinal");
  return a + 3 + (element - 1) * elementWords(type);
}

}  // namespace

void ss_alloc_(int32_t const& id, int32_t const& ordinal, int32_t const& count) {
  if (checking() && id > 0 && ss_[id - 1] != id) er_fatal_("SS_alloc", "id mismatch");
  int32_t at = slotAt(id, ordinal, "SS_alloc");
  int32_t const type = typeOf(id, ordinal);
  if (!isArray(type) || count < 0 || count > 0x1000000) er_fatal_("SS_alloc", "Illegal allocate attempt");
  int32_t const per = elementWords(type);
  int32_t const old = ss_[at];
  int32_t const oldCount = old > 0 ? ss_[old + 2] : 0;
  // Elements that go with a shrink take their texts and structures along.
  if ((type == SS_ATEXT || type == SS_ASTRUCT) && old > 0)
    for (int32_t e = count; e < oldCount; ++e)
      releaseValue(type == SS_ATEXT ? SS_TEXT : SS_STRUCT, ss_[old + 3 + e], id);
  int32_t const b = allocBlock(4 + count * per, "SS_alloc");
  int32_t const a = b + 1;
  ss_[b] = a;
  ss_[a] = 3 + count * per;
  ss_[a + 1] = id;
  ss_[a + 2] = count;
  int32_t const keep = oldCount < count ? oldCount : count;
  if (old > 0) {
    std::memcpy(ss_ + a + 3, ss_ + old + 3, static_cast<size_t>(keep * per) * sizeof(int32_t));
    freeBlock(old - 1, ss_[old] + 1);
  }
  at = slotAt(id, ordinal, "SS_alloc");
  ss_[at] = a;
}

void ss_asize_(int32_t const& id, int32_t const& ordinal, int32_t& count) {
  int32_t const at = slotAt(id, ordinal, "SS_asize");
  count = isArray(typeOf(id, ordinal)) && ss_[at] > 0 ? ss_[ss_[at] + 2] : 0;
}

void ss_putatext_(int32_t const& id, int32_t const& ordinal, int32_t const& element, char const* text,
                  int32_t const& length) {
  if (element < 1) er_fatal_("SS_putatext", "Illegal array ordinal");
  int32_t at = elementAt(id, ordinal, element, SS_ATEXT, "SS_putatext");
  if (at < 0) return;
  // The old text goes and a new block takes the new one.
  releaseValue(SS_TEXT, ss_[at], id);
  ss_[at] = 0;
  int32_t const pointer = newText(id, text, length, "SS_putatext");
  at = elementAt(id, ordinal, element, SS_ATEXT, "SS_putatext");
  ss_[at] = pointer;
}

void ss_getatext_(int32_t const& id, int32_t const& ordinal, int32_t const& element, char* text,
                  int32_t const& length) {
  // An array never allocated has no value: blanks.
  int32_t const slot = slotAt(id, ordinal, "SS_getatext");
  if (typeOf(id, ordinal) == SS_ATEXT && ss_[slot] == 0 && element >= 1) return readText(0, text, length);
  int32_t const at = elementAt(id, ordinal, element, SS_ATEXT, "SS_getatext");
  readText(at < 0 ? 0 : ss_[at], text, length);
}

void ss_putadouble_(int32_t const& id, int32_t const& ordinal, int32_t const& element, double const& value) {
  int32_t const at = elementAt(id, ordinal, element, SS_ADOUBLE, "SS_putadouble");
  if (at >= 0) std::memcpy(ss_ + at, &value, sizeof value);
}

void ss_getadouble_(int32_t const& id, int32_t const& ordinal, int32_t const& element, double& value) {
  int32_t const at = elementAt(id, ordinal, element, SS_ADOUBLE, "SS_getadouble");
  value = 0;
  if (at >= 0) std::memcpy(&value, ss_ + at, sizeof value);
}

void ss_putaword_(int32_t const& id, int32_t const& ordinal, int32_t const& element, int32_t const& value) {
  int32_t const at = elementAt(id, ordinal, element, SS_AINT, "SS_putaword");
  if (at >= 0) ss_[at] = value;
}

void ss_getaword_(int32_t const& id, int32_t const& ordinal, int32_t const& element, int32_t& value) {
  int32_t const at = elementAt(id, ordinal, element, SS_AINT, "SS_getaword");
  value = at >= 0 ? ss_[at] : 0;
}

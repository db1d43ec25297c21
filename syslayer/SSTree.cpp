// Moving and removing structures in the ss tree, texts with their lengths,
// codes, look-up by text keys, and raw blocks.

#include <cstring>
#include <vector>

#include "syslayer/SSHeap.h"
#include "syslayer/SSHeapInternal.h"
#include "syslayer/SysUtil.h"

using namespace ss_internal;

namespace {

// Clears whatever hold parent has on child: a structure slot or an element
// of a structure array.
void dropHold(int32_t parent, int32_t child) {
  int32_t ok = 0;
  ss_verify_(parent, ok);
  if (!ok) return;
  int32_t const n = nSlots(parent);
  for (int32_t k = 1; k <= n; ++k) {
    int32_t const at = slotAt(parent, k, "SS_adopt");
    int32_t const type = typeOf(parent, k);
    if (type == SS_STRUCT && ss_[at] == child) ss_[at] = 0;
    if (type == SS_ASTRUCT && ss_[at] > 0) {
      int32_t const a = ss_[at];
      for (int32_t e = 0; e < ss_[a + 2]; ++e)
        if (ss_[a + 3 + e] == child) ss_[a + 3 + e] = 0;
    }
  }
}

bool isBelow(int32_t id, int32_t ancestor) {
  for (int32_t p = id; p != 0; p = ss_[p + 1]) {
    if (p == ancestor) return true;
    int32_t ok = 0;
    ss_verify_(ss_[p + 1], ok);
    if (!ok) return false;
  }
  return false;
}

void checkAdopt(int32_t id, int32_t parent, char const* routine) {
  checkId(id, routine);
  checkId(parent, routine);
  int32_t r;
  ss_root_(r);
  // The root has no parent, and a structure cannot go below itself.
  if (id == r || isBelow(parent, id)) er_fatal_(routine, "Illegal adopt");
}

// Deletes the structures that a slot holds, keeping the slot (and array).
void deleteHeld(int32_t id, int32_t ordinal, char const* routine) {
  int32_t const at = slotAt(id, ordinal, routine);
  int32_t const type = typeOf(id, ordinal);
  if (type == SS_STRUCT && ss_[at] > 0) {
    int32_t const child = ss_[at];
    ss_[at] = 0;
    releaseValue(SS_STRUCT, child, id);
  } else if (type == SS_ASTRUCT && ss_[at] > 0) {
    int32_t const a = ss_[at];
    for (int32_t e = 0; e < ss_[a + 2]; ++e) {
      int32_t const child = ss_[a + 3 + e];
      ss_[a + 3 + e] = 0;
      releaseValue(SS_STRUCT, child, id);
    }
  }
}

}  // namespace

void ss_gettextn_(int32_t const& id, int32_t const& ordinal, char* text, int32_t const& length, int32_t& n) {
  ss_gettext_(id, ordinal, text, length);
  ss_lentext_(id, ordinal, n);
}

void ss_getatextn_(int32_t const& id, int32_t const& ordinal, int32_t const& element, char* text,
                   int32_t const& length, int32_t& n) {
  ss_getatext_(id, ordinal, element, text, length);
  n = 0;
  int32_t const at = slotAt(id, ordinal, "SS_getatextn");
  if (typeOf(id, ordinal) != SS_ATEXT || ss_[at] == 0) return;
  int32_t const a = ss_[at];
  if (element >= 1 && element <= ss_[a + 2]) n = textLength(ss_[a + 3 + element - 1]);
}

void ss_getcode_(int32_t const& id, int32_t const& ordinal, int32_t& code) {
  int32_t const at = slotAt(id, ordinal, "SS_getcode");
  code = 0;
  if (typeOf(id, ordinal) != SS_CODE) {
    er_warn_("SS_getcode", "Not a code slot");
    return;
  }
  code = ss_[at];
}

void ss_adopt_(int32_t const& id, int32_t const& parent, int32_t const& ordinal) {
  checkAdopt(id, parent, "SS_adopt");
  int32_t const at = slotAt(parent, ordinal, "SS_adopt");
  if (ss_[at] == id && typeOf(parent, ordinal) == SS_STRUCT) return;
  dropHold(ss_[id + 1], id);
  releaseValue(typeOf(parent, ordinal), ss_[at], parent);
  setType(parent, ordinal, SS_STRUCT);
  ss_[slotAt(parent, ordinal, "SS_adopt")] = id;
  ss_[id + 1] = parent;
}

void ss_adoptarray_(int32_t const& id, int32_t const& parent, int32_t const& ordinal, int32_t const& element) {
  checkAdopt(id, parent, "SS_adoptarray");
  int32_t const at = slotAt(parent, ordinal, "SS_adoptarray");
  if (typeOf(parent, ordinal) != SS_ASTRUCT) {
    er_warn_("SS_adoptarray", "Mis-matched array type");
    return;
  }
  int32_t const a = ss_[at];
  if (a == 0 || element < 1 || element > ss_[a + 2]) er_fatal_("SS_adoptarray", "Illegal array ordinal");
  if (ss_[a + 3 + element - 1] == id) return;
  dropHold(ss_[id + 1], id);
  int32_t const old = ss_[a + 3 + element - 1];
  ss_[a + 3 + element - 1] = 0;
  releaseValue(SS_STRUCT, old, parent);
  ss_[a + 3 + element - 1] = id;
  ss_[id + 1] = parent;
}

void ss_attach_(int32_t const& id, int32_t const& parent, int32_t const& ordinal, int32_t& element) {
  element = 0;
  checkAdopt(id, parent, "SS_attach");
  slotAt(parent, ordinal, "SS_attach");
  int32_t const type = typeOf(parent, ordinal);
  if (type != SS_ASTRUCT && type != SS_UNSET) {
    er_warn_("SS_attach", "Mis-matched array type");
    return;
  }
  if (type == SS_UNSET) setType(parent, ordinal, SS_ASTRUCT);
  dropHold(ss_[id + 1], id);
  int32_t count = 0;
  ss_asize_(parent, ordinal, count);
  ss_alloc_(parent, ordinal, count + 1);
  element = count + 1;
  ss_putaword_(parent, ordinal, element, id);
  ss_[id + 1] = parent;
}

void ss_remove_(int32_t const& id) {
  checkId(id, "SS_remove");
  int32_t r;
  ss_root_(r);
  if (id == r) er_fatal_("SS_remove", "Illegal remove of the root");
  dropHold(ss_[id + 1], id);
  ss_[id + 1] = 0;
}

void ss_remover_(int32_t const& id) {
  checkId(id, "SS_remover");
  int32_t const n = nSlots(id);
  for (int32_t k = 1; k <= n; ++k) deleteHeld(id, k, "SS_remover");
}

void ss_subremove_(int32_t const& id, int32_t const& ordinal) { deleteHeld(id, ordinal, "SS_subremove"); }

void ss_locates_(int32_t const& id, int32_t const& keyOrdinal, char const* key, int32_t const& length,
                 int32_t& found) {
  checkId(id, "SS_locates");
  found = 0;
  std::vector<int32_t> stack(1, id);
  std::vector<char> text(static_cast<size_t>(length > 0 ? length : 1));
  while (!stack.empty()) {
    int32_t const s = stack.back();
    stack.pop_back();
    int32_t const n = nSlots(s);
    if (s != id && keyOrdinal >= 1 && keyOrdinal <= n && typeOf(s, keyOrdinal) == SS_TEXT) {
      int32_t len = 0;
      ss_lentext_(s, keyOrdinal, len);
      ss_gettext_(s, keyOrdinal, text.data(), length);
      if (len == length && std::memcmp(text.data(), key, static_cast<size_t>(length)) == 0) {
        found = s;
        return;
      }
    }
    for (int32_t k = n; k >= 1; --k) {
      int32_t const v = ss_[slotAt(s, k, "SS_locates")];
      int32_t const type = typeOf(s, k);
      int32_t ok = 0;
      ss_verify_(v, ok);
      if (!ok) continue;
      if (type == SS_STRUCT && ss_[v + 1] == s) stack.push_back(v);
      if (type == SS_ASTRUCT && ss_[v + 1] == s)
        for (int32_t e = ss_[v + 2] - 1; e >= 0; --e) {
          ss_verify_(ss_[v + 3 + e], ok);
          if (ok) stack.push_back(ss_[v + 3 + e]);
        }
    }
  }
}

void ss_balloc_(int32_t const& words, int32_t& index) {
  if (words < 1 || words > 0x1000000) er_fatal_("SS_balloc", "Illegal size");
  int32_t const b = allocBlock(words + 2, "SS_balloc");
  ss_[b] = kRawMark;
  ss_[b + 1] = words + 2;
  index = b + 2;
}

void ss_calloc_(int32_t const& words, int32_t& index) {
  ss_balloc_(words, index);  // blocks come zeroed
}

void ss_untalloc_(int32_t const& index) {
  int64_t const size = ss_heapsize_();
  if (index < 22 || index >= size || ss_[index - 2] != kRawMark) er_fatal_("SS_untalloc", "Not an allocated block");
  freeBlock(index - 2, ss_[index - 1]);
}

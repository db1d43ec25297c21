// Finding structures by an integer key: a search that can stop at a hit and
// go on from there, with its state in the caller's two work arrays.

#include "syslayer/SSHeap.h"
#include "syslayer/SSHeapInternal.h"
#include "syslayer/SysUtil.h"

using namespace ss_internal;

namespace {

void push(int32_t* path, int32_t* next, int32_t& depth, int32_t entry, int32_t where) {
  if (depth >= SS_LOCATEDEPTH) er_fatal_("SS_locate", "Tree too deep");
  path[depth] = entry;
  next[depth] = where;
  ++depth;
}

bool matches(int32_t s, int32_t keyOrdinal, int32_t key) {
  int32_t const n = nSlots(s);
  if (keyOrdinal < 1 || keyOrdinal > n || typeOf(s, keyOrdinal) != SS_INT) return false;
  return ss_[slotAt(s, keyOrdinal, "SS_locate")] == key;
}

void checkState(int32_t id, int32_t const* path, int32_t depth, char const* routine) {
  if (depth < 1 || depth > SS_LOCATEDEPTH || path[0] != id) er_fatal_(routine, "Bad search state");
  // Structures deleted between the calls end the search here rather than
  // lead it through freed words.
  for (int32_t k = 0; k < depth; ++k)
    if (!isLive(path[k])) er_fatal_(routine, "Bad search state");
}

}  // namespace

// next[k] tells where the search goes on in path[k]: the next slot of a
// structure (positive), or minus the next element of a structure array.
void ss_locate_(int32_t const& id, int32_t const& keyOrdinal, int32_t const& key, int32_t& found, int32_t* path,
                int32_t* next, int32_t& size) {
  checkId(id, "SS_locate");
  found = 0;
  int32_t depth = 0;
  if (size > SS_LOCATEMARK) {
    depth = size - SS_LOCATEMARK;
    checkState(id, path, depth, "SS_locate");
  } else {
    push(path, next, depth, id, 1);
  }
  while (depth > 0) {
    int32_t const top = path[depth - 1];
    int32_t const where = next[depth - 1];
    int32_t child = 0;
    if (where > 0) {
      int32_t const n = nSlots(top);
      if (where > n) {
        --depth;
        continue;
      }
      next[depth - 1] = where + 1;
      int32_t const type = typeOf(top, where);
      int32_t const v = ss_[slotAt(top, where, "SS_locate")];
      if (!isLive(v)) continue;
      if (type == SS_ASTRUCT) push(path, next, depth, v, -1);
      if (type == SS_STRUCT) child = v;
    } else {
      int32_t const e = -where;
      if (e > ss_[top + 2]) {
        --depth;
        continue;
      }
      next[depth - 1] = where - 1;
      child = ss_[top + 3 + e - 1];
    }
    if (child == 0 || !isLive(child)) continue;
    push(path, next, depth, child, 1);
    if (matches(child, keyOrdinal, key)) {
      found = child;
      size = SS_LOCATEMARK + depth;
      return;
    }
  }
  size = 0;
}

void ss_locate_(int32_t const& id, int32_t const& keyOrdinal, int32_t const& key, int32_t& found) {
  int32_t path[SS_LOCATEDEPTH];
  int32_t next[SS_LOCATEDEPTH];
  int32_t size = 0;
  ss_locate_(id, keyOrdinal, key, found, path, next, size);
}

void ss_unlocate1_(int32_t* path, int32_t* next, int32_t& size) {
  (void)next;
  if (size <= SS_LOCATEMARK) return;
  checkState(path[0], path, size - SS_LOCATEMARK, "SS_unlocate1");
  // The hit (and an array it was found in) leave the path: the search goes
  // on after them.
  int32_t depth = size - SS_LOCATEMARK - 1;
  size = depth > 0 ? SS_LOCATEMARK + depth : 0;
}

void ss_unlocate_(int32_t const& id, int32_t* path, int32_t* next, int32_t& size) {
  (void)next;
  if (size <= SS_LOCATEMARK) return;
  int32_t const depth = size - SS_LOCATEMARK;
  checkState(path[0], path, depth, "SS_unlocate");
  for (int32_t k = depth - 1; k >= 0; --k) {
    if (path[k] != id) continue;
    size = k > 0 ? SS_LOCATEMARK + k : 0;
    return;
  }
  er_fatal_("SS_unlocate", "Not on the search path");
}

// The ss heap: structures, slots, and the allocator below them.

#include "syslayer/SSHeap.h"

#include <cstdlib>
#include <cstring>
#include <map>
#include <vector>

#include "syslayer/SSHeapInternal.h"
#include "syslayer/SysUtil.h"

int32_t* ss_ = nullptr;

namespace {

int64_t g_words = 0;  // capacity of ss_
int64_t g_top = 0;    // first word never handed out
std::map<int32_t, std::vector<int32_t>> g_free;  // block words -> block starts

int32_t const kRootSlots = 2;

int32_t mapWords(int32_t nslots) { return (nslots + 7) / 8; }

}  // namespace

namespace ss_internal {

int64_t heapTop() { return g_top; }

bool isLive(int32_t index) {
  return ss_ != nullptr && index > kHeader && index + 2 < g_top && ss_[index - 1] == index && ss_[index] >= 3 &&
         index + static_cast<int64_t>(ss_[index]) <= g_top;
}

bool checking() { return ss_ != nullptr && (ss_[1] & 1) != 0; }

int32_t allocBlock(int32_t words, char const* routine) {
  auto it = g_free.find(words);
  if (it != g_free.end() && !it->second.empty()) {
    int32_t const b = it->second.back();
    it->second.pop_back();
    std::memset(ss_ + b, 0, static_cast<size_t>(words) * sizeof(int32_t));
    return b;
  }
  if (g_top + words > g_words) {
    int64_t n = g_words * 2;
    while (n < g_top + words) n *= 2;
    if (n > 0x7FFFFFFF) er_fatal_(routine, "Heap is full");
    int32_t* grown = ut_wrealloc_(ss_, g_words, n);
    if (grown == nullptr) er_fatal_(routine, "Heap is full");
    ss_ = grown;
    g_words = n;
  }
  int32_t const b = static_cast<int32_t>(g_top);
  g_top += words;
  return b;
}

void freeBlock(int32_t start, int32_t words) {
  // Only the first word goes (the self index or the text mark): a stale id
  // then fails id checking, yet still leads somewhere inside the heap.
  ss_[start] = 0;
  g_free[words].push_back(start);
}

void checkId(int32_t id, char const* routine) {
  if (ss_ == nullptr) er_fatal_(routine, "Bad struct id");
  if (id <= kHeader || id >= g_top) er_fatal_(routine, "Bad struct id");
  if (checking() && ss_[id - 1] != id) er_fatal_(routine, "Bad struct id");
  // Whatever checking says, a size that leaves the heap cannot be used.
  if (ss_[id] < 3 || id + static_cast<int64_t>(ss_[id]) > g_top) er_fatal_(routine, "Bad struct id");
}

bool isRoot(int32_t id) { return ss_ != nullptr && id == ss_[0]; }

int32_t nSlots(int32_t id) {
  if (isRoot(id)) return kRootSlots;
  int32_t const body = ss_[id] - 3;
  // body = ceil(n / 8) + n
  int32_t n = body * 8 / 9;
  while (n + mapWords(n) < body) ++n;
  while (n > 0 && n + mapWords(n) > body) --n;
  return n;
}

int32_t mapAt(int32_t id) { return id + (isRoot(id) ? 4 : 3); }

int32_t slotAt(int32_t id, int32_t ordinal, char const* routine) {
  checkId(id, routine);
  int32_t const n = nSlots(id);
  if (ordinal < 1 || ordinal > n) er_fatal_(routine, "Illegal ordinal");
  return mapAt(id) + mapWords(n) + ordinal - 1;
}

int32_t typeOf(int32_t id, int32_t ordinal) { return ss_bitget_(ss_ + mapAt(id), ordinal); }

void setType(int32_t id, int32_t ordinal, int32_t type) { ss_bitload_(ss_ + mapAt(id), ordinal, type); }

int32_t elementWords(int32_t arrayType) { return arrayType == SS_ADOUBLE ? 2 : 1; }

void releaseStruct(int32_t id) {
  int32_t const n = nSlots(id);
  for (int32_t k = 1; k <= n; ++k) {
    int32_t const at = mapAt(id) + mapWords(n) + k - 1;
    int32_t const type = typeOf(id, k);
    int32_t const value = ss_[at];
    ss_[at] = 0;
    releaseValue(type, value, id);
  }
  freeBlock(id - 1, ss_[id] + 1);
}

void releaseValue(int32_t type, int32_t value, int32_t owner) {
  // Only what the owner made goes: a value word put by hand that points
  // elsewhere in the tree (or up it) is left alone.
  if (value <= kHeader || value >= g_top) return;
  if (type == SS_TEXT) {
    int32_t const b = value - 3;
    if (b > kHeader && ss_[b] == SS_TEXTMARK && ss_[b + 2] == owner) freeBlock(b, ss_[b + 1]);
  } else if (type == SS_STRUCT) {
    if (value + 2 < g_top && ss_[value - 1] == value && ss_[value + 1] == owner) releaseStruct(value);
  } else if (type >= SS_AINT && type <= SS_ASTRUCT) {
    int32_t const a = value;
    if (a + 2 >= g_top || ss_[a - 1] != a || ss_[a + 1] != owner) return;
    if (type == SS_ATEXT || type == SS_ASTRUCT) {
      int32_t const count = ss_[a + 2];
      for (int32_t e = 0; e < count; ++e)
        releaseValue(type == SS_ATEXT ? SS_TEXT : SS_STRUCT, ss_[a + 3 + e], owner);
    }
    freeBlock(a - 1, ss_[a] + 1);
  }
}

int32_t newText(int32_t parent, char const* text, int32_t length, char const* routine) {
  if (length < 0 || text == nullptr) length = 0;
  int32_t const words = (length + 3) / 4 + 4;
  int32_t const b = allocBlock(words, routine);
  ss_[b] = SS_TEXTMARK;
  ss_[b + 1] = words;
  ss_[b + 2] = parent;
  ss_[b + 3] = length;
  if (length > 0) std::memcpy(ss_ + b + 4, text, static_cast<size_t>(length));
  return b + 3;
}

void readText(int32_t pointer, char* out, int32_t length) {
  if (out == nullptr || length <= 0) return;
  int32_t have = 0;
  if (pointer > kHeader + 3 && pointer < g_top && ss_[pointer - 3] == SS_TEXTMARK) {
    have = ss_[pointer] < length ? ss_[pointer] : length;
    if (have > 0) std::memcpy(out, ss_ + pointer + 1, static_cast<size_t>(have));
  }
  if (length > have) std::memset(out + have, ' ', static_cast<size_t>(length - have));
}

int32_t textLength(int32_t pointer) {
  if (pointer > kHeader + 3 && pointer < g_top && ss_[pointer - 3] == SS_TEXTMARK) return ss_[pointer];
  return 0;
}

}  // namespace ss_internal

using namespace ss_internal;

void ss_bitload_(int32_t* map, int32_t const& ordinal, int32_t const& type) {
  int32_t const k = ordinal - 1;
  uint32_t word = static_cast<uint32_t>(map[k / 8]);
  int const shift = (k % 8) * 4;
  word = (word & ~(0xFu << shift)) | ((static_cast<uint32_t>(type) & 0xFu) << shift);
  map[k / 8] = static_cast<int32_t>(word);
}

int32_t ss_bitget_(int32_t const* map, int32_t const& ordinal) {
  int32_t const k = ordinal - 1;
  return static_cast<int32_t>((static_cast<uint32_t>(map[k / 8]) >> ((k % 8) * 4)) & 0xFu);
}

void ss_init_(int32_t& id) {
  if (ss_ != nullptr) {
    id = ss_[0];
    return;
  }
  int64_t const initial = 4096;
  ss_ = ut_wcalloc_(initial);
  if (ss_ == nullptr) er_fatal_("SS_init", "Heap is full");
  g_words = initial;
  for (int i = 2; i < kHeader; ++i) ss_[i] = SS_GUARD;
  g_top = kHeader;
  int32_t const b = allocBlock(8, "SS_init");
  int32_t const root = b + 1;
  ss_[b] = root;
  ss_[root] = 7;
  ss_[root + 1] = 0;
  ss_[root + 2] = 0;
  char const* machine = std::getenv("MACHINE");
  ss_[root + 3] = machine && std::strcmp(machine, "convex") == 0 ? 2 : machine && std::strcmp(machine, "sun4") == 0 ? 1 : 0;
  ss_[0] = root;
  id = root;
}

void ss_root_(int32_t& id) { id = ss_ ? ss_[0] : 0; }

int64_t ss_heapsize_() { return g_words; }

void ss_verify_(int32_t const& id, int32_t& ok) {
  ok = ss_ != nullptr && id > kHeader && id < g_top && ss_[id - 1] == id && ss_[id] >= 3 &&
       id + static_cast<int64_t>(ss_[id]) <= g_top;
}

void ss_define_(int32_t& id, int32_t const& parent, int32_t const& nslots, int32_t const* types) {
  id = 0;
  int32_t ok = 0;
  ss_verify_(parent, ok);
  if (!ok) {
    if (checking()) er_fatal_("SS_define", "Illegal parent");
    checkId(parent, "SS_define");  // unusable parents stay fatal
  }
  if (nslots < 0 || nslots > 0x1000000) er_fatal_("SS_define", "Illegal size");
  int32_t const size = 3 + mapWords(nslots) + nslots;
  int32_t const b = allocBlock(size + 1, "SS_define");
  int32_t const s = b + 1;
  ss_[b] = s;
  ss_[s] = size;
  ss_[s + 1] = parent;
  ss_[s + 2] = 0;
  if (types)
    for (int32_t k = 1; k <= nslots; ++k) ss_bitload_(ss_ + s + 3, k, types[k - 1]);
  id = s;
}

void ss_defnth_(int32_t& child, int32_t const& id, int32_t const& ordinal, int32_t const& nslots,
                int32_t const* types) {
  int32_t const at = slotAt(id, ordinal, "SS_defnth");
  releaseValue(typeOf(id, ordinal), ss_[at], id);
  ss_[at] = 0;
  setType(id, ordinal, SS_STRUCT);
  ss_define_(child, id, nslots, types);
  ss_[slotAt(id, ordinal, "SS_defnth")] = child;
}

void ss_def_(int32_t const& id, int32_t const& ordinal, int32_t const& type) {
  int32_t const at = slotAt(id, ordinal, "SS_def");
  releaseValue(typeOf(id, ordinal), ss_[at], id);
  ss_[at] = 0;
  setType(id, ordinal, type);
}

void ss_delete_(int32_t const& id) {
  checkId(id, "SS_delete");
  if (isRoot(id)) er_fatal_("SS_delete", "Illegal delete of the root");
  int32_t const parent = ss_[id + 1];
  int32_t ok = 0;
  ss_verify_(parent, ok);
  if (ok) {
    // Clear the parent's hold on it: a structure slot or an element.
    int32_t const n = nSlots(parent);
    for (int32_t k = 1; k <= n; ++k) {
      int32_t const at = mapAt(parent) + mapWords(n) + k - 1;
      int32_t const type = typeOf(parent, k);
      if (type == SS_STRUCT && ss_[at] == id) ss_[at] = 0;
      if (type == SS_ASTRUCT && ss_[at] > kHeader && ss_[ss_[at] - 1] == ss_[at]) {
        int32_t const a = ss_[at];
        for (int32_t e = 0; e < ss_[a + 2]; ++e)
          if (ss_[a + 3 + e] == id) ss_[a + 3 + e] = 0;
      }
    }
  }
  releaseStruct(id);
}

void ss_delnth_(int32_t const& id, int32_t const& ordinal) {
  int32_t const at = slotAt(id, ordinal, "SS_delnth");
  int32_t const value = ss_[at];
  ss_[at] = 0;
  releaseValue(typeOf(id, ordinal), value, id);
}

void ss_n_(int32_t const& id, int32_t& n) {
  checkId(id, "SS_n");
  n = nSlots(id);
}

void ss_size_(int32_t const& id, int32_t& size) {
  checkId(id, "SS_size");
  size = ss_[id];
}

void ss_gettype_(int32_t const& id, int32_t const& ordinal, int32_t& type) {
  slotAt(id, ordinal, "SS_gettype");
  type = typeOf(id, ordinal);
}

void ss_puttype_(int32_t const& id, int32_t const& ordinal, int32_t const& type) {
  slotAt(id, ordinal, "SS_puttype");
  if (type < 0 || type > 15) er_fatal_("SS_puttype", "Illegal type");
  setType(id, ordinal, type);
}

void ss_getnth_(int32_t const& id, int32_t const& ordinal, int32_t& value) {
  value = ss_[slotAt(id, ordinal, "SS_getnth")];
}

void ss_putnth_(int32_t const& id, int32_t const& ordinal, int32_t const& value) {
  ss_[slotAt(id, ordinal, "SS_putnth")] = value;
}

void ss_getdouble_(int32_t const& id, int32_t const& ordinal, double& value) {
  int32_t const at = slotAt(id, ordinal, "SS_getdouble");
  slotAt(id, ordinal + 1, "SS_getdouble");
  std::memcpy(&value, ss_ + at, sizeof value);
}

void ss_putdouble_(int32_t const& id, int32_t const& ordinal, double const& value) {
  int32_t const at = slotAt(id, ordinal, "SS_putdouble");
  slotAt(id, ordinal + 1, "SS_putdouble");
  std::memcpy(ss_ + at, &value, sizeof value);
  setType(id, ordinal, SS_DOUBLE);
  setType(id, ordinal + 1, SS_DOUBLE);
}

void ss_puttext_(int32_t const& id, int32_t const& ordinal, char const* text, int32_t const& length) {
  int32_t at = slotAt(id, ordinal, "SS_puttext");
  releaseValue(typeOf(id, ordinal), ss_[at], id);
  ss_[at] = 0;
  int32_t const pointer = newText(id, text, length, "SS_puttext");
  at = slotAt(id, ordinal, "SS_puttext");
  ss_[at] = pointer;
  setType(id, ordinal, SS_TEXT);
}

void ss_gettext_(int32_t const& id, int32_t const& ordinal, char* text, int32_t const& length) {
  int32_t const at = slotAt(id, ordinal, "SS_gettext");
  readText(typeOf(id, ordinal) == SS_TEXT ? ss_[at] : 0, text, length);
}

void ss_lentext_(int32_t const& id, int32_t const& ordinal, int32_t& length) {
  int32_t const at = slotAt(id, ordinal, "SS_lentext");
  length = typeOf(id, ordinal) == SS_TEXT ? textLength(ss_[at]) : 0;
}

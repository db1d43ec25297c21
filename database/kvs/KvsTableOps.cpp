// Table housekeeping on the client side: empty rows dropped, short columns
// filled, pages packed, columns added to a table that already holds rows,
// tables of one class grouped, and a dataset read back from the server.
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "database/kvs/KvsObject.h"

namespace kvs {

namespace {

KvsTableRec* tableArg(KvsObject o, const char* op) {
  return KvsCheckClass(o, kvsTableClass, op) ? static_cast<KvsTableRec*>(o) : nullptr;
}

// A value is empty when it is the null marker (numbers) or all zero (text).
bool empty(const KvsArrayRec* a, const unsigned char* v) {
  if (a->fmt) {
    std::uint32_t w;
    std::memcpy(&w, v, 4);
    return w == KvsNullWord;
  }
  for (std::size_t k = 0; k < a->elem; ++k)
    if (v[k]) return false;
  return true;
}

void nulls(const KvsArrayRec* a, unsigned char* p, long n) {
  std::memset(p, 0, static_cast<std::size_t>(n) * a->elem);
  if (a->fmt)
    for (long i = 0; i < n; ++i) std::memcpy(p + static_cast<std::size_t>(i) * a->elem, &KvsNullWord, 4);
}

int readFail(KvsTableRec* t) { return _KvsLog(KvsErrGeneral, "%%E Could not read table file %s", t->spool.c_str()); }
int writeFail(KvsTableRec* t) { return _KvsLog(KvsErrGeneral, "%%E Could not write table file %s", t->spool.c_str()); }

// Every column whole, in row order.
int readAll(KvsTableRec* t, std::vector<std::vector<unsigned char>>& data) {
  if (int rc = KvsTableFlush(t)) return rc;
  std::vector<KvsArrayRec*> arrays = KvsArraysOf(t);
  data.assign(arrays.size(), {});
  for (std::size_t k = 0; k < arrays.size(); ++k) {
    data[k].resize(static_cast<std::size_t>(arrays[k]->rows) * arrays[k]->elem);
    if (arrays[k]->rows && !KvsTableIo(arrays[k], 0, data[k].data(), arrays[k]->rows, false)) return readFail(t);
  }
  return 0;
}

// The spool file laid out again from nothing: column blocks in child
// order, pages full and in file order.
int writeAll(KvsTableRec* t, std::vector<std::vector<unsigned char>>& data) {
  std::vector<KvsArrayRec*> arrays = KvsArraysOf(t);
  std::size_t offset = 0;
  for (KvsArrayRec* a : arrays) {
    a->offset = offset;
    offset += a->elem * KvsPageRows;
  }
  if (t->pages) KvsPageRaz(t->pages);
  t->hint = t->pages;
  if (t->fd >= 0 ? ::ftruncate(t->fd, 0) != 0 : !t->spool.empty() && ::truncate(t->spool.c_str(), 0) != 0)
    return writeFail(t);
  long rows = 0;
  for (std::size_t k = 0; k < arrays.size(); ++k) {
    long n = static_cast<long>(data[k].size() / arrays[k]->elem);
    if (n && !KvsTableIo(arrays[k], 0, data[k].data(), n, true)) return writeFail(t);
    arrays[k]->rows = n;
    rows = std::max(rows, n);
  }
  t->rows = rows;
  return 0;
}

}  // namespace

int KvsReorgTable(KvsObject o) {
  KvsTableRec* t = tableArg(o, "KvsReorgTable");
  if (!t) return KvsErrClass;
  std::vector<std::vector<unsigned char>> data;
  if (int rc = readAll(t, data)) return rc;
  return writeAll(t, data);
}

// Rows with every column empty leave their pages; the pages keep their
// places in the file, partly used. Pages after the current one still carry
// their old first rows until the list is set again at the end.
static int cleanTable(KvsTableRec* t) {
  if (int rc = KvsTableFlush(t)) return rc;
  std::vector<KvsArrayRec*> arrays = KvsArraysOf(t);
  if (arrays.empty() || !t->pages) return 0;
  std::vector<std::vector<unsigned char>> block(arrays.size());
  std::vector<long> had(arrays.size()), now(arrays.size(), 0);
  for (std::size_t k = 0; k < arrays.size(); ++k) had[k] = arrays[k]->rows;
  std::vector<KvsPage*> emptied;
  long row = 0;
  for (KvsPage* pg = t->pages; pg; pg = pg->next) {
    long old = pg->first, used = pg->used;
    t->hint = nullptr;
    for (std::size_t k = 0; k < arrays.size(); ++k) {
      block[k].resize(static_cast<std::size_t>(used) * arrays[k]->elem);
      long have = std::clamp(had[k] - old, 0L, used);
      if (have && !KvsTableIo(arrays[k], old, block[k].data(), have, false)) return readFail(t);
      nulls(arrays[k], block[k].data() + static_cast<std::size_t>(have) * arrays[k]->elem, used - have);
    }
    long kept = 0;
    std::vector<long> keptOf(arrays.size(), 0);
    for (long i = 0; i < used; ++i) {
      bool all = true;
      for (std::size_t k = 0; k < arrays.size() && all; ++k)
        all = empty(arrays[k], &block[k][static_cast<std::size_t>(i) * arrays[k]->elem]);
      if (all) continue;
      for (std::size_t k = 0; k < arrays.size(); ++k) {
        std::size_t e = arrays[k]->elem;
        std::memmove(&block[k][static_cast<std::size_t>(kept) * e], &block[k][static_cast<std::size_t>(i) * e], e);
        if (old + i < had[k]) keptOf[k] = kept + 1;
      }
      ++kept;
    }
    pg->first = row;
    pg->used = kept;
    t->hint = nullptr;
    for (std::size_t k = 0; k < arrays.size(); ++k) {
      if (!keptOf[k]) continue;
      if (kept != used && !KvsTableIo(arrays[k], row, block[k].data(), keptOf[k], true)) return writeFail(t);
      now[k] = row + keptOf[k];
    }
    if (!kept) emptied.push_back(pg);
    row += kept;
  }
  // An emptied page leaves the list, unless it is the only one.
  for (KvsPage* pg : emptied)
    if (pg->prev || pg->next) t->pages = KvsPageRemove(pg);
  KvsPageRestore(t->pages);
  t->hint = nullptr;
  t->rows = row;
  for (std::size_t k = 0; k < arrays.size(); ++k) {
    arrays[k]->rows = now[k];
    arrays[k]->pos = std::min(arrays[k]->pos, now[k]);
  }
  return 0;
}

int KvsClean(KvsObject o) {
  if (KvsIsA(o, kvsTableClass)) return cleanTable(static_cast<KvsTableRec*>(o));
  if (!KvsCheckClass(o, kvsDatasetClass, "KvsClean")) return KvsErrClass;
  std::vector<KvsObject> gone;
  for (KvsObject c : o->children) {
    if (c->cls != &kvsTableClass) continue;
    if (int rc = cleanTable(static_cast<KvsTableRec*>(c))) return rc;
    if (!static_cast<KvsTableRec*>(c)->rows) gone.push_back(c);
  }
  for (KvsObject c : gone) KvsDestroy(c);
  return 0;
}

// The empty rows at the end leave the table; pages left without rows go,
// the first one staying.
static int trimTable(KvsTableRec* t) {
  if (int rc = KvsTableFlush(t)) return rc;
  std::vector<KvsArrayRec*> arrays = KvsArraysOf(t);
  if (arrays.empty() || !t->pages) return 0;
  std::vector<unsigned char> block;
  long end = t->rows;
  bool found = false;
  while (end > 0 && !found) {
    long lo = std::max(0L, end - KvsPageRows), last = lo - 1;
    for (KvsArrayRec* a : arrays) {
      long have = std::clamp(a->rows - lo, 0L, end - lo);
      block.resize(static_cast<std::size_t>(have) * a->elem);
      t->hint = nullptr;
      if (have && !KvsTableIo(a, lo, block.data(), have, false)) return readFail(t);
      for (long i = have; i-- > 0 && lo + i > last;)
        if (!empty(a, &block[static_cast<std::size_t>(i) * a->elem])) last = lo + i;
    }
    found = last >= lo;
    end = found ? last + 1 : lo;
  }
  if (end == t->rows) return 0;
  t->rows = end;
  for (KvsArrayRec* a : arrays) {
    a->rows = std::min(a->rows, end);
    a->pos = std::min(a->pos, end);
  }
  std::vector<KvsPage*> emptied;
  for (KvsPage* pg = t->pages; pg; pg = pg->next) {
    pg->used = std::clamp(end - pg->first, 0L, pg->used);
    if (!pg->used) emptied.push_back(pg);
  }
  for (KvsPage* pg : emptied)
    if (pg->prev || pg->next) t->pages = KvsPageRemove(pg);
  KvsPageRestore(t->pages);
  t->hint = nullptr;
  return 0;
}

int KvsSendClean(KvsTableRec* t) {
  bool keyed = false, textKey = false;
  for (KvsArrayRec* a : KvsArraysOf(t))
    if (a->key == 1 || a->key == 2) keyed = true, textKey = textKey || !a->fmt;
  if (!keyed || t->type == "SPR") return trimTable(t);
  // Numeric keys were checked free of nulls just before: no row is empty.
  return textKey ? cleanTable(t) : 0;
}

int KvsCompactTable(KvsObject o) {
  KvsTableRec* t = tableArg(o, "KvsCompactTable");
  if (!t) return KvsErrClass;
  if (int rc = cleanTable(t)) return rc;
  return KvsReorgTable(t);
}

static int fillArray(KvsArrayRec* a, long rows) {
  if (a->rows >= rows) return 0;
  std::vector<unsigned char> block(static_cast<std::size_t>(KvsPageRows) * a->elem);
  while (a->rows < rows) {
    long n = std::min(KvsPageRows, rows - a->rows);
    nulls(a, block.data(), n);
    if (KvsArrayWriteRows(a, block.data(), n) < 0) return kvsErrorNo;
  }
  return 0;
}

int KvsFill(KvsObject o) {
  if (KvsIsA(o, kvsArrayClass)) {
    auto* a = static_cast<KvsArrayRec*>(o);
    return fillArray(a, static_cast<KvsTableRec*>(a->parent)->rows);
  }
  KvsTableRec* t = tableArg(o, "KvsFill");
  if (!t) return KvsErrClass;
  if (t->mode == 1) return _KvsLog(KvsErrGeneral, "%%E The Table %s is RD_ONLY mode", t->name.c_str());
  for (KvsArrayRec* a : KvsArraysOf(t))
    if (int rc = fillArray(a, t->rows)) return rc;
  return 0;
}

KvsObject KvsCreateAttrIfNeed(KvsObject o, const char* name) {
  KvsTableRec* t = tableArg(o, "KvsCreateAttrIfNeed");
  if (!t || !name) return nullptr;
  for (KvsArrayRec* a : KvsArraysOf(t))
    if (a->name == name) return a;
  if (!t->updated) return KvsCreate(t, KvsNname, name, 0L);
  // A new column in a table that holds rows: the file is laid out again
  // with the wider row, and the column starts as nulls.
  std::vector<std::vector<unsigned char>> data;
  if (readAll(t, data)) return nullptr;
  t->updated = false;
  KvsObject made = KvsCreate(t, KvsNname, name, 0L);
  t->updated = true;
  if (!made) return nullptr;
  auto* a = static_cast<KvsArrayRec*>(made);
  data.emplace_back(static_cast<std::size_t>(t->rows) * a->elem);
  nulls(a, data.back().data(), t->rows);
  if (writeAll(t, data)) return nullptr;
  return made;
}

int KvsGroup(KvsObject o) {
  if (!KvsCheckClass(o, kvsDatasetClass, "KvsGroup")) return KvsErrClass;
  std::vector<KvsObject> gone;
  std::vector<unsigned char> rows;
  for (std::size_t i = 0; i < o->children.size(); ++i) {
    if (o->children[i]->cls != &kvsTableClass) continue;
    auto* into = static_cast<KvsTableRec*>(o->children[i]);
    if (std::find(gone.begin(), gone.end(), into) != gone.end()) continue;
    for (std::size_t j = i + 1; j < o->children.size(); ++j) {
      auto* from = static_cast<KvsTableRec*>(o->children[j]);
      if (from->cls != &kvsTableClass || from->type != into->type) continue;
      if (std::find(gone.begin(), gone.end(), from) != gone.end()) continue;
      if (int rc = KvsFill(into)) return rc;
      long base = into->rows;
      for (KvsArrayRec* b : KvsArraysOf(from)) {
        auto* a = static_cast<KvsArrayRec*>(KvsCreateAttrIfNeed(into, b->name.c_str()));
        if (!a) return kvsErrorNo;
        if (int rc = fillArray(a, base)) return rc;
        rows.resize(static_cast<std::size_t>(b->rows) * b->elem);
        if (b->rows && !KvsTableIo(b, 0, rows.data(), b->rows, false)) return readFail(from);
        if (a->elem != b->elem || (a->fmt && b->fmt != a->fmt))
          return _KvsLog(KvsErrDict, "%%E The type %s is unknown in the dictionnary", b->name.c_str());
        if (b->rows && KvsArrayWriteRows(a, rows.data(), b->rows) < 0) return kvsErrorNo;
      }
      into->rows = std::max(into->rows, base + from->rows);
      if (int rc = KvsFill(into)) return rc;
      gone.push_back(from);
    }
  }
  for (KvsObject c : gone) KvsDestroy(c);
  return 0;
}

int KvsRestore(KvsObject o) {
  if (KvsIsA(o, kvsDatasetClass)) return KvsSelect(o);
  KvsTableRec* t = tableArg(o, "KvsRestore");
  if (!t) return KvsErrClass;
  // The server's copy of this one table, read through a dataset of its
  // own and put in the place of the local one.
  auto* d = static_cast<KvsDatasetRec*>(t->parent);
  auto* tmp = static_cast<KvsDatasetRec*>(KvsCreate(d->parent, KvsNmode, 1L, 0L));
  if (!tmp) return kvsErrorNo;
  tmp->type = d->type, tmp->ident = d->ident, tmp->version = d->version, tmp->domain = d->domain;
  tmp->queries.emplace_back("KVSOPEN", t->type);
  int rc = KvsSelect(tmp);
  KvsObject got = nullptr;
  for (KvsObject c : tmp->children)
    if (c->cls == &kvsTableClass && static_cast<KvsTableRec*>(c)->type == t->type && !got) got = c;
  if (rc == 0 && got) {
    auto& from = tmp->children;
    from.erase(std::remove(from.begin(), from.end(), got), from.end());
    auto& into = d->children;
    *std::find(into.begin(), into.end(), static_cast<KvsObject>(t)) = got;
    got->parent = d;
    got->mode = d->mode;
    t->parent = nullptr;
    KvsDestroy(t);
  }
  KvsDestroy(tmp);
  return rc;
}

}  // namespace kvs

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "database/kvs/KvsDict.h"
#include "database/kvs/KvsObject.h"
#include "database/kvs/KvsFrames.h"
#include "database/kvs/KvsSocket.h"

namespace kvs {

namespace {

KvsTableRec* tableOf(KvsArrayRec* a) { return static_cast<KvsTableRec*>(a->parent); }

std::vector<KvsArrayRec*> arraysOf(KvsTableRec* t) {
  std::vector<KvsArrayRec*> out;
  for (KvsObject c : t->children)
    if (c->cls == &kvsArrayClass) out.push_back(static_cast<KvsArrayRec*>(c));
  return out;
}

// The spool file, made on first use; out of descriptors, it gives back
// what it can and tries once more.
int spool(KvsTableRec* t) {
  if (t->fd >= 0) return t->fd;
  KvsRootRec* r = KvsRootObject();
  char name[64];
  std::snprintf(name, sizeof name, "%d_%X.KVS", static_cast<int>(getpid()),
                static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(t)));
  // A table restored from a saved tree keeps its file; a new one writes
  // over the file of a table gone before it, under its own name.
  if (t->spool.empty()) {
    t->spool = (r ? r->workdir : std::string("/tmp")) + "/" + name;
    std::string old = KvsSpoolTake(t->spool);
    if (!old.empty() && ::rename(old.c_str(), t->spool.c_str()) != 0) ::unlink(old.c_str());
  }
  t->fd = ::open(t->spool.c_str(), O_RDWR | O_CREAT, 0660);
  if (t->fd < 0 && errno == EMFILE) {
    if (KvsRootRec* root = KvsRootObject())
      for (KvsObject s : root->children)
        for (KvsObject d : s->children)
          for (KvsObject other : d->children)
            if (other != t && other->cls == &kvsTableClass && static_cast<KvsTableRec*>(other)->fd >= 0) {
              // Only the descriptor goes: buffered rows stay and the file
              // opens again on its next use.
              ::close(static_cast<KvsTableRec*>(other)->fd);
              static_cast<KvsTableRec*>(other)->fd = -1;
            }
    t->fd = ::open(t->spool.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0660);
  }
  return t->fd;
}

// One run of rows inside a page: the block of this column in the page's
// file block, then the slot.
off_t place(KvsArrayRec* a, const KvsPage* pg, long slot) {
  return static_cast<off_t>(pg->index) * static_cast<off_t>(tableOf(a)->rowBytes() * KvsPageRows) +
         static_cast<off_t>(a->offset + static_cast<std::size_t>(slot) * a->elem);
}

KvsPage* pageOf(KvsTableRec* t, long row) {
  if (!t->pages) t->pages = t->hint = _KvsPageAlloc(KvsPageRows);
  KvsPage* p = t->hint && t->hint->first <= row ? t->hint : t->pages;
  // From the hint forward; the last page takes rows within its capacity.
  for (; p->next; p = p->next)
    if (row >= p->first && row < p->first + p->used) return p;
  return row >= p->first && row < p->first + p->capacity ? p : nullptr;
}

}  // namespace

std::vector<KvsArrayRec*> KvsArraysOf(KvsTableRec* t) { return arraysOf(t); }

static bool rawIo(KvsArrayRec* a, long row, unsigned char* p, long n, bool write);

// Any access to the file sees every row written: buffers go out first.
bool KvsTableIo(KvsArrayRec* a, long row, unsigned char* p, long n, bool write) {
  if (tableOf(a)->buffered && KvsTableFlush(tableOf(a))) return false;
  return rawIo(a, row, p, n, write);
}

int KvsArrayFlush(KvsArrayRec* a) {
  if (!a->wcount) return 0;
  KvsTableRec* t = tableOf(a);
  if (!rawIo(a, a->wfirst, a->wbuf.data(), a->wcount, true))
    return _KvsLog(KvsErrGeneral, "%%E Could not write table file %s", t->spool.c_str());
  a->wcount = 0;
  t->buffered = std::max(0, t->buffered - 1);
  return 0;
}

int KvsTableFlush(KvsTableRec* t) {
  for (KvsArrayRec* a : arraysOf(t))
    if (int rc = KvsArrayFlush(a)) return rc;
  t->buffered = 0;  // also after a column removed with rows in its buffer
  return 0;
}

static bool rawIo(KvsArrayRec* a, long row, unsigned char* p, long n, bool write) {
  KvsTableRec* t = tableOf(a);
  int fd = spool(t);
  if (fd < 0) return false;
  // A table of one column has full pages of consecutive indexes back to
  // back in the file: one call covers them all.
  bool single = t->rowBytes() == a->elem;
  KvsPage* pg = n > 0 ? pageOf(t, row) : nullptr;
  if (!pg && write && n > 0) {
    KvsPage* last = t->hint && !t->hint->next ? t->hint : KvsPageBottom(t->pages);
    if (row == last->first + last->used) pg = KvsPageAppend(last);
  }
  while (n > 0) {
    if (!pg) return false;
    long slot = row - pg->first;
    long room = (write && !pg->next ? pg->capacity : pg->used) - slot;
    if (room <= 0) {
      pg = pg->next ? pg->next : write ? KvsPageAppend(pg) : nullptr;
      continue;
    }
    long run = std::min(n, room);
    KvsPage* end = pg;
    while (single && run < n && row + run == end->first + end->capacity) {
      KvsPage* nx = end->next;
      if (!nx && write) {
        end->used = end->capacity;
        nx = KvsPageAppend(end);
      }
      if (!nx || nx->index != end->index + 1 || nx->first != end->first + end->capacity) break;
      if (write) end->used = end->capacity;
      long more = std::min(n - run, write && !nx->next ? nx->capacity : nx->used);
      if (more <= 0) break;
      run += more;
      end = nx;
    }
    std::size_t bytes = static_cast<std::size_t>(run) * a->elem;
    ssize_t done = write ? ::pwrite(fd, p, bytes, place(a, pg, slot)) : ::pread(fd, p, bytes, place(a, pg, slot));
    if (done != static_cast<ssize_t>(bytes)) return false;
    if (write) end->used = std::max(end->used, row + run - end->first);
    t->hint = end;
    row += run;
    n -= run;
    p += bytes;
    if (n > 0) pg = end->next ? end->next : write ? KvsPageAppend(end) : nullptr;
  }
  return true;
}

namespace {

bool io(KvsArrayRec* a, long row, unsigned char* p, long n, bool write) { return KvsTableIo(a, row, p, n, write); }

// The running minimum and maximum of a column, nulls left out; a plain
// loop over one format at a time, which the compiler can vectorise.
template <typename T>
void minMaxOf(KvsArrayRec* a, const unsigned char* p, long n) {
  double lo = a->haveMinMax ? a->min : 0, hi = a->haveMinMax ? a->max : 0;
  bool any = a->haveMinMax;
  T tlo{}, thi{};
  long i = 0;
  for (; i < n && !any; ++i) {
    std::uint32_t w;
    std::memcpy(&w, p + i * sizeof(T), 4);
    if (w == KvsNullWord) continue;
    T v;
    std::memcpy(&v, p + i * sizeof(T), sizeof(T));
    lo = hi = static_cast<double>(v);
    any = true;
  }
  if (!any) return;
  tlo = static_cast<T>(lo), thi = static_cast<T>(hi);
  // Four running pairs side by side, held in named locals so that they
  // stay in registers and no compare waits on the one before it; a single
  // pair made this loop the slowest step of a large transfer.
  auto take = [p](T& l, T& h, long at) {
    std::uint32_t w;
    std::memcpy(&w, p + at * static_cast<long>(sizeof(T)), 4);
    T v;
    std::memcpy(&v, p + at * static_cast<long>(sizeof(T)), sizeof(T));
    bool null = w == KvsNullWord;
    l = (!null && v < l) ? v : l;
    h = (!null && v > h) ? v : h;
  };
  T l0 = tlo, l1 = tlo, l2 = tlo, l3 = tlo, h0 = thi, h1 = thi, h2 = thi, h3 = thi;
  for (; i + 4 <= n; i += 4) {
    take(l0, h0, i);
    take(l1, h1, i + 1);
    take(l2, h2, i + 2);
    take(l3, h3, i + 3);
  }
  for (; i < n; ++i) take(l0, h0, i);
  tlo = std::min(std::min(l0, l1), std::min(l2, l3));
  thi = std::max(std::max(h0, h1), std::max(h2, h3));
  a->min = std::min(lo, static_cast<double>(tlo));
  a->max = std::max(hi, static_cast<double>(thi));
  a->haveMinMax = true;
}

void minMax(KvsArrayRec* a, const unsigned char* p, long n) {
  if (a->fmt == KvsFmtINT) minMaxOf<std::int32_t>(a, p, n);
  else if (a->fmt == KvsFmtFLT) minMaxOf<float>(a, p, n);
  else if (a->fmt == KvsFmtDBL) minMaxOf<double>(a, p, n);
}

// Rows go to the server in the order of the table's key columns; a table
// of class "SPR" keeps its own order.
int sortByKeys(KvsTableRec* t) {
  if (t->type == "SPR") return 0;
  std::vector<KvsArrayRec*> arrays = arraysOf(t), keys;
  for (int k = 1; k <= 2; ++k)
    for (KvsArrayRec* a : arrays)
      if (a->key == k) keys.push_back(a);
  if (keys.empty() || t->rows < 2) return 0;
  for (KvsArrayRec* a : arrays)
    if (a->rows != t->rows)
      return _KvsLog(KvsErrGeneral, "%%E Column %s of table %s has %ld rows, not %ld", a->name.c_str(),
                     t->name.c_str(), a->rows, t->rows);
  std::vector<std::vector<unsigned char>> values;
  for (KvsArrayRec* k : keys) {
    values.emplace_back(static_cast<std::size_t>(t->rows) * k->elem);
    if (!io(k, 0, values.back().data(), t->rows, false))
      return _KvsLog(KvsErrGeneral, "%%E Could not read table file %s", t->spool.c_str());
  }
  auto value = [&](std::size_t k, long row) {
    const unsigned char* p = &values[k][static_cast<std::size_t>(row) * keys[k]->elem];
    if (keys[k]->fmt == KvsFmtINT) { std::int32_t v; std::memcpy(&v, p, 4); return double(v); }
    if (keys[k]->fmt == KvsFmtFLT) { float v; std::memcpy(&v, p, 4); return double(v); }
    double v;
    std::memcpy(&v, p, 8);
    return v;
  };
  auto less = [&](long x, long y) {
    for (std::size_t k = 0; k < keys.size(); ++k) {
      if (!keys[k]->fmt) {
        int c = std::memcmp(&values[k][static_cast<std::size_t>(x) * keys[k]->elem],
                            &values[k][static_cast<std::size_t>(y) * keys[k]->elem], keys[k]->elem);
        if (c) return c < 0;
        continue;
      }
      double a = value(k, x), b = value(k, y);
      if (a != b) return a < b;
    }
    return false;
  };
  std::vector<long> order(static_cast<std::size_t>(t->rows));
  for (long i = 0; i < t->rows; ++i) order[static_cast<std::size_t>(i)] = i;
  if (std::is_sorted(order.begin(), order.end(), less)) return 0;
  std::stable_sort(order.begin(), order.end(), less);
  std::vector<unsigned char> from, to;
  for (KvsArrayRec* a : arrays) {
    from.resize(static_cast<std::size_t>(t->rows) * a->elem);
    to.resize(from.size());
    if (!io(a, 0, from.data(), t->rows, false))
      return _KvsLog(KvsErrGeneral, "%%E Could not read table file %s", t->spool.c_str());
    for (std::size_t i = 0; i < order.size(); ++i)
      std::memcpy(&to[i * a->elem], &from[static_cast<std::size_t>(order[i]) * a->elem], a->elem);
    if (!io(a, 0, to.data(), t->rows, true))
      return _KvsLog(KvsErrGeneral, "%%E Could not write table file %s", t->spool.c_str());
  }
  return 0;
}

bool converts(const KvsArrayRec* a) { return a->fmt && a->userFmt && a->userFmt != a->fmt; }

}  // namespace

// Text: the last byte is always a NUL, trailing punctuation and blanks go.
static void cleanText(const KvsArrayRec* a, unsigned char* p, long n) {
  for (long i = 0; i < n; ++i) {
    unsigned char* v = p + static_cast<std::size_t>(i) * a->elem;
    v[a->elem - 1] = 0;
    for (std::size_t k = a->elem; k-- > 0 && !std::isalnum(v[k]);) v[k] = 0;
  }
}

long KvsArrayWriteRows(KvsArrayRec* a, const unsigned char* rows, long n) {
  std::vector<unsigned char> tmp;
  if (!a->fmt) {
    tmp.assign(rows, rows + static_cast<std::size_t>(n) * a->elem);
    cleanText(a, tmp.data(), n);
  }
  const unsigned char* from = a->fmt ? rows : tmp.data();
  KvsTableRec* t = tableOf(a);
  t->updated = true;
  // Short writes gather in the column's buffer, a page of rows at a time;
  // a long one with the buffer empty goes to the file as it is.
  const unsigned char* p = from;
  for (long left = n; left > 0;) {
    if (!a->wcount && left >= KvsPageRows) {
      if (!io(a, a->rows, const_cast<unsigned char*>(p), left, true))
        return -_KvsLog(KvsErrGeneral, "%%E Could not write table file %s", t->spool.c_str());
      a->rows += left;
      break;
    }
    if (!a->wcount) {
      a->wfirst = a->rows;
      a->wbuf.resize(static_cast<std::size_t>(KvsPageRows) * a->elem);
      ++t->buffered;
    }
    long take = std::min(left, KvsPageRows - a->wcount);
    std::size_t bytes = static_cast<std::size_t>(take) * a->elem;
    std::memcpy(&a->wbuf[static_cast<std::size_t>(a->wcount) * a->elem], p, bytes);
    a->wcount += take;
    a->rows += take;
    p += bytes;
    left -= take;
    if (a->wcount == KvsPageRows)
      if (int rc = KvsArrayFlush(a)) return -rc;
  }
  if (!a->minMaxStale) minMax(a, from, n);
  t->rows = std::max(t->rows, a->rows);
  return n;
}

int KvsVerifyKeys(KvsObject o) {
  if (!KvsCheckClass(o, kvsTableClass, "KvsVerifyKeys")) return KvsErrClass;
  auto* t = static_cast<KvsTableRec*>(o);
  if (t->type == "SPR") return 0;
  std::vector<unsigned char> block;
  for (KvsArrayRec* a : arraysOf(t)) {
    if (a->key != 1 && a->key != 2) continue;
    if (a->rows != t->rows)
      return _KvsLog(KvsErrGeneral, "%%E Column %s of table %s has %ld rows, not %ld", a->name.c_str(),
                     t->name.c_str(), a->rows, t->rows);
    if (!a->fmt) continue;  // a text key has no null marker
    block.resize(static_cast<std::size_t>(KvsPageRows) * a->elem);
    for (long row = 0; row < a->rows; row += KvsPageRows) {
      long n = std::min(KvsPageRows, a->rows - row);
      if (!io(a, row, block.data(), n, false))
        return _KvsLog(KvsErrGeneral, "%%E Could not read table file %s", t->spool.c_str());
      for (long i = 0; i < n; ++i) {
        std::uint32_t w;
        std::memcpy(&w, &block[static_cast<std::size_t>(i) * a->elem], 4);
        if (w == KvsNullWord)
          return _KvsLog(KvsErrGeneral, "%%E Key %s of table %s is null at row %ld", a->name.c_str(),
                         t->name.c_str(), row + i);
      }
    }
  }
  return 0;
}

int KvsCheck(KvsObject o) {
  if (!KvsCheckClass(o, kvsDatasetClass, "KvsCheck")) return KvsErrClass;
  for (KvsObject c : o->children) {
    if (c->cls != &kvsTableClass) continue;
    auto* t = static_cast<KvsTableRec*>(c);
    for (KvsArrayRec* a : arraysOf(t))
      if (a->rows != t->rows)
        return _KvsLog(KvsErrGeneral, "%%E Column %s of table %s has %ld rows, not %ld", a->name.c_str(),
                       t->name.c_str(), a->rows, t->rows);
    if (int rc = KvsVerifyKeys(t)) return rc;
  }
  return 0;
}

int KvsArrayMinMax(KvsArrayRec* a) {
  if (!a->minMaxStale) return 0;
  a->minMaxStale = a->haveMinMax = false;
  std::vector<unsigned char> block(static_cast<std::size_t>(16 * KvsPageRows) * a->elem);
  for (long row = 0; row < a->rows; row += 16 * KvsPageRows) {
    long n = std::min(16 * KvsPageRows, a->rows - row);
    if (!io(a, row, block.data(), n, false))
      return _KvsLog(KvsErrGeneral, "%%E Could not read table file %s", tableOf(a)->spool.c_str());
    minMax(a, block.data(), n);
  }
  return 0;
}

long KvsArrayReadRows(KvsArrayRec* a, unsigned char* rows, long n) {
  n = std::max(0L, std::min(n, a->rows - a->pos));
  if (n && !io(a, a->pos, rows, n, false))
    return -_KvsLog(KvsErrGeneral, "%%E Could not read table file %s", tableOf(a)->spool.c_str());
  a->pos += n;
  return n;
}

long KvsWrite(KvsObject o, long n) {
  if (n < 1) return -_KvsLog(KvsErrGeneral, "%%E bad argument length : %ld to routine KvsWrite", n);
  if (!KvsIsA(o, kvsArrayClass) && !KvsCheckClass(o, kvsTableClass, "KvsWrite")) return -KvsErrClass;
  KvsTableRec* t = KvsIsA(o, kvsArrayClass) ? tableOf(static_cast<KvsArrayRec*>(o)) : static_cast<KvsTableRec*>(o);
  if (t->mode == 1) return -_KvsLog(KvsErrGeneral, "%%E The Table %s is RD_ONLY mode", t->name.c_str());
  std::vector<KvsArrayRec*> arrays =
      KvsIsA(o, kvsArrayClass) ? std::vector<KvsArrayRec*>{static_cast<KvsArrayRec*>(o)} : arraysOf(t);
  std::vector<unsigned char> tmp;
  for (KvsArrayRec* a : arrays) {
    if (!a->data) continue;
    const unsigned char* rows = static_cast<const unsigned char*>(a->data);
    if (converts(a)) {
      tmp.resize(static_cast<std::size_t>(n) * a->elem);
      if (int rc = KvsConvert(rows, a->userFmt, tmp.data(), a->fmt, n)) return -rc;
      rows = tmp.data();
    }
    long w = KvsArrayWriteRows(a, rows, n);
    if (w < 0) return w;
  }
  return n;
}

long KvsRead(KvsObject o, long n) {
  if (n < 1) return -_KvsLog(KvsErrGeneral, "%%E bad argument length : %ld to routine KvsRead", n);
  if (!KvsIsA(o, kvsArrayClass) && !KvsCheckClass(o, kvsTableClass, "KvsRead")) return -KvsErrClass;
  KvsTableRec* t = KvsIsA(o, kvsArrayClass) ? tableOf(static_cast<KvsArrayRec*>(o)) : static_cast<KvsTableRec*>(o);
  if (t->rows == 0) return -_KvsLog(KvsErrGeneral, "%%E A Table with no data cannot be read");
  std::vector<KvsArrayRec*> arrays =
      KvsIsA(o, kvsArrayClass) ? std::vector<KvsArrayRec*>{static_cast<KvsArrayRec*>(o)} : arraysOf(t);
  long most = 0;
  std::vector<unsigned char> tmp;
  for (KvsArrayRec* a : arrays) {
    if (!a->data) continue;
    unsigned char* rows = static_cast<unsigned char*>(a->data);
    if (converts(a)) {
      tmp.resize(static_cast<std::size_t>(n) * a->elem);
      rows = tmp.data();
    }
    long r = KvsArrayReadRows(a, rows, n);
    if (r < 0) return r;
    if (converts(a) && r > 0)
      if (int rc = KvsConvert(rows, a->fmt, a->data, a->userFmt, r)) return -rc;
    most = std::max(most, r);
  }
  return most;
}

static std::size_t width(std::uint32_t fmt) { return fmt == KvsFmtDBL ? 8 : 4; }

static bool numeric(std::uint32_t fmt) { return fmt == KvsFmtINT || fmt == KvsFmtFLT || fmt == KvsFmtDBL; }

int KvsConvert(const void* in, unsigned int fromFmt, void* out, unsigned int toFmt, long n) {
  if (!numeric(fromFmt) || !numeric(toFmt))
    return _KvsLog(KvsErrDict, "%%E Cannot convert values from format %08X to %08X", fromFmt, toFmt);
  const unsigned char* p = static_cast<const unsigned char*>(in);
  unsigned char* q = static_cast<unsigned char*>(out);
  std::vector<unsigned char> copy;
  if (p == q) {
    copy.assign(p, p + static_cast<std::size_t>(n) * width(fromFmt));
    p = copy.data();
  }
  for (long i = 0; i < n; ++i, p += width(fromFmt), q += width(toFmt)) {
    std::uint32_t w;
    std::memcpy(&w, p, 4);
    if (w == KvsNullWord) {
      std::memset(q, 0, width(toFmt));
      std::memcpy(q, &w, 4);
      continue;
    }
    double v;
    if (fromFmt == KvsFmtINT) { std::int32_t x; std::memcpy(&x, p, 4); v = x; }
    else if (fromFmt == KvsFmtFLT) { float x; std::memcpy(&x, p, 4); v = x; }
    else std::memcpy(&v, p, 8);
    if (toFmt == KvsFmtINT) { std::int32_t x = static_cast<std::int32_t>(v); std::memcpy(q, &x, 4); }
    else if (toFmt == KvsFmtFLT) { float x = static_cast<float>(v); std::memcpy(q, &x, 4); }
    else std::memcpy(q, &v, 8);
  }
  return 0;
}

long KvsLocate(KvsObject o, const void* value) {
  if (!KvsCheckClass(o, kvsArrayClass, "KvsLocate")) return -1;
  auto* a = static_cast<KvsArrayRec*>(o);
  std::uint32_t given = a->userFmt ? a->userFmt : a->fmt;
  if (!numeric(a->fmt) || !numeric(given) || !value) {
    _KvsLog(KvsErrGeneral, "%%E Bad config to use KvsLocate function");
    return -1;
  }
  unsigned char want[8] = {};
  if (KvsConvert(value, given, want, a->fmt, 1)) return -1;
  std::vector<unsigned char> block(KvsPageRows * a->elem);
  for (long row = a->pos; row < a->rows; row += KvsPageRows) {
    long n = std::min(KvsPageRows, a->rows - row);
    if (!io(a, row, block.data(), n, false)) return -1;
    for (long i = 0; i < n; ++i)
      if (std::memcmp(&block[static_cast<std::size_t>(i) * a->elem], want, a->elem) == 0) return a->pos = row + i;
  }
  return -1;
}

int KvsLseek(KvsObject o, long row) {
  if (!KvsIsA(o, kvsArrayClass) && !KvsCheckClass(o, kvsTableClass, "KvsLseek")) return KvsErrClass;
  KvsTableRec* t = KvsIsA(o, kvsArrayClass) ? tableOf(static_cast<KvsArrayRec*>(o)) : static_cast<KvsTableRec*>(o);
  if (row < 0 || row > t->rows) return _KvsLog(KvsErrGeneral, "%%E value %ld outside of limits", row);
  if (KvsIsA(o, kvsArrayClass)) static_cast<KvsArrayRec*>(o)->pos = row;
  else
    for (KvsArrayRec* a : arraysOf(t)) a->pos = row;
  return 0;
}

int KvsFlush(KvsObject o) {
  if (KvsIsA(o, kvsArrayClass)) return KvsArrayFlush(static_cast<KvsArrayRec*>(o));
  if (!KvsCheckClass(o, kvsTableClass, "KvsFlush")) return KvsErrClass;
  return KvsTableFlush(static_cast<KvsTableRec*>(o));
}

int KvsTableSend(KvsTableRec* t, char command) {
  auto* d = static_cast<KvsDatasetRec*>(t->parent);
  KvsSessionRec* s = KvsSessionOf(t);
  if (!d || !s) return _KvsLog(KvsErrClass, "%%E %s : argument object should be %s KvsObject class", "KvsReplace", "Table");
  if (int rc = KvsTableFlush(t)) return rc;
  if (int rc = KvsVerifyKeys(t)) return rc;
  if (int rc = sortByKeys(t)) return rc;
  if (int rc = KvsSendClean(t)) return rc;
  std::vector<KvsArrayRec*> arrays = arraysOf(t);
  KvsMsgInit(s, command);
  KvsMsg& m = s->msg;
  m.b[KvsMsgObject] = 'T';
  m.setText(128, 8, d->type);
  m.setText(136, 8, t->type);
  m.setText(144, 16, d->ident);
  m.setText(160, 16, d->version);
  m.setText(176, 8, t->domain);
  m.setText(224, 32, t->name);
  m.setNum(272, static_cast<long>(arrays.size()));
  m.setNum(288, t->rows);
  m.b[KvsMsgFlags] = 1;
  m.b[KvsMsgMoreFlags] = 1;
  KvsMsg request = m;
  auto fail = [&](int code) {
    if (code != KvsErrNoServer)
      _KvsLog(code, "%%W %s %s %s for %s could not be replaced", d->type.c_str(), d->ident.c_str(),
              d->version.c_str(), t->name.c_str());
    kvsErrorNo = code;
    return code;
  };
  if (int rc = KvsMsgsend(s)) return fail(rc);
  std::vector<KvsParam> params;
  for (KvsObject c : t->children)
    if (c->cls == &kvsParamsClass)
      for (KvsParam p : static_cast<KvsParamsRec*>(c)->params) {
        p.cls = c->name;
        params.push_back(p);
      }
  std::vector<unsigned char> block = KvsParamsEncode(params);
  if (block.size() > s->buf.size()) return fail(_KvsLog(KvsErrGeneral, "%%E Too much empty space requested"));
  if (int rc = KvsSendBuf(s, block.data(), block.size())) return fail(rc);
  long position = 0;
  for (KvsArrayRec* a : arrays)
    if (int rc = KvsArrayMinMax(a)) return fail(rc);
  for (KvsArrayRec* a : arrays) {
    KvsMsg h = request;
    h.b[KvsMsgObject] = 'A';
    std::memset(h.b + KvsMsgHdr1, 0, 256);
    h.setText(192, 8, a->attribute);
    h.setText(200, 8, std::to_string(a->key));
    h.setText(208, 8, a->dimension);
    h.setText(216, 8, a->unit);
    h.setText(224, 32, a->name);
    h.setNum(256, static_cast<long>(a->rows * static_cast<long>(a->elem)));
    h.setNum(272, position++);
    h.setNum(288, a->rows);
    h.setText(304, 8, a->format);
    h.setText(312, 8, a->ascii);
    char mn[16] = "UNKNOWN", mx[16] = "UNKNOWN";
    if (a->haveMinMax) {
      bool integer = a->ascii.find('d') != std::string::npos;
      if (integer) std::snprintf(mn, sizeof mn, a->ascii.c_str(), static_cast<int>(a->min));
      else std::snprintf(mn, sizeof mn, a->ascii.c_str(), a->min);
      if (integer) std::snprintf(mx, sizeof mx, a->ascii.c_str(), static_cast<int>(a->max));
      else std::snprintf(mx, sizeof mx, a->ascii.c_str(), a->max);
    }
    h.setText(352, 16, mn);
    h.setText(368, 16, mx);
    if (int rc = KvsSendBuf(s, h.b, KvsMsgSize)) return fail(rc);
  }
  int st = KvsMsgrecv(s);
  if (st < 0) return fail(kvsErrorNo);
  if (st) return fail(KvsSessionLog(st, s));
  for (KvsArrayRec* a : arrays) {
    // Read straight into the send buffer and swap there: one pass over
    // the bytes fewer than going through a separate row buffer.
    long per = static_cast<long>(s->buf.size() / a->elem);
    for (long at = 0; at < a->rows; at += per) {
      long n = std::min(per, a->rows - at);
      if (!io(a, at, s->buf.data(), n, false))
        return fail(_KvsLog(KvsErrGeneral, "%%E Could not read table file %s", t->spool.c_str()));
      KvsToWire(a->fmt, a->elem, s->buf.data(), s->buf.data(), static_cast<std::size_t>(n));
      if (int rc = KvsSendBuf(s, s->buf.data(), static_cast<std::size_t>(n) * a->elem)) return fail(rc);
    }
  }
  st = KvsMsgrecv(s);
  if (st < 0) return fail(kvsErrorNo);
  if (st) return fail(KvsSessionLog(st, s));
  _KvsLog(0, "%%I %s %s %s for %s successfully replaced", d->type.c_str(), d->ident.c_str(), d->version.c_str(),
          t->name.c_str());
  return 0;
}

namespace {

// The blocks of one received column in wire order: whole rows swapped and
// appended to the spool file, a row cut between blocks kept for the next.
// It neither logs nor reads the socket, so it may run beside the reader.
struct ColumnSink {
  KvsArrayRec* a;
  std::vector<unsigned char> carry, rows;
  bool append(unsigned char* p, long n) {
    if (!a->fmt) cleanText(a, p, n);
    if (!KvsTableIo(a, a->rows, p, n, true)) return false;
    a->rows += n;
    KvsTableRec* t = tableOf(a);
    t->rows = std::max(t->rows, a->rows);
    return true;
  }
  bool take(unsigned char* p, long got) {
    long elem = static_cast<long>(a->elem);
    if (carry.empty() && got % elem == 0) {
      KvsFromWire(a->fmt, a->elem, p, p, static_cast<std::size_t>(got / elem));
      return append(p, got / elem);
    }
    carry.insert(carry.end(), p, p + got);
    std::size_t whole = carry.size() / a->elem;
    rows.resize(whole * a->elem);
    KvsFromWire(a->fmt, a->elem, carry.data(), rows.data(), whole);
    if (whole && !append(rows.data(), static_cast<long>(whole))) return false;
    carry.erase(carry.begin(), carry.begin() + static_cast<long>(whole * a->elem));
    return true;
  }
};

bool receiveColumns(KvsSessionRec* s, std::vector<std::pair<KvsArrayRec*, long>>& arrays) {
  std::vector<ColumnSink> sinks;
  std::vector<long> bytes;
  for (auto& c : arrays) sinks.push_back(ColumnSink{c.first, {}, {}}), bytes.push_back(c.second);
  KvsFramesResult r =
      KvsReadFrames(s->fd, bytes, [&](std::size_t k, unsigned char* p, long n) { return sinks[k].take(p, n); });
  if (r.status == KvsFramesOk) return true;
  KvsSessionDrop(s);  // the rest of the stream is not read
  if (r.status == KvsFramesLost) KvsSessionLog(KvsErrRecv, s);
  else _KvsLog(KvsErrGeneral, "%%E Could not write table file %s", tableOf(sinks[r.part].a)->spool.c_str());
  return false;
}

}  // namespace

int KvsTableReceive(KvsTableRec* t, KvsSessionRec* s) {
  const KvsMsg tr = s->msg;
  t->name = tr.text(224, 32);
  t->type = tr.text(136, 8);
  t->domain = tr.text(176, 8);
  long count = tr.num(272);
  if (count < 0 || count > 1000) return _KvsLog(KvsErrRecv, "%%E Invalid Array Header");
  long n = KvsSkRead(s->fd, s->buf.data(), s->buf.size());
  if (n < 0) {
    KvsSessionDrop(s);
    return KvsSessionLog(KvsErrRecv, s);
  }
  std::vector<KvsParam> params;
  if (KvsParamsDecode(s->buf.data(), static_cast<std::size_t>(n), params) < 0)
    return _KvsLog(KvsErrRecv, "%%E Invalid parameter block for table %s", t->name.c_str());
  for (const KvsParam& p : params) {
    KvsObject group = nullptr;
    for (KvsObject c : t->children)
      if (c->cls == &kvsParamsClass && c->name == p.cls) group = c;
    if (!group) group = KvsCreate(t, KvsNclass, p.cls.c_str(), 0L);
    KvsParamPut(group, p);
  }
  std::vector<std::pair<KvsArrayRec*, long>> arrays;
  for (long k = 0; k < count; ++k) {
    KvsMsg h;
    if (KvsSkRead(s->fd, h.b, KvsMsgSize) != long(KvsMsgSize)) {
      KvsSessionDrop(s);
      return KvsSessionLog(KvsErrRecv, s);
    }
    long rows = h.num(288), total = h.num(256);
    std::uint32_t fmt = KvsFmtCode(h.text(304, 8));
    std::size_t elem = fmt == KvsFmtDBL ? 8 : (fmt == KvsFmtINT || fmt == KvsFmtFLT) ? 4
                       : rows > 0 ? static_cast<std::size_t>(total / rows) : 1;
    if (h.object() != 'A' || rows < 0 || total < 0 || elem == 0 || elem > 64000 ||
        total != rows * static_cast<long>(elem)) {
      KvsSessionDrop(s);
      return _KvsLog(KvsErrRecv, "%%E Invalid Array Header");
    }
    auto* a = new KvsArrayRec;
    a->name = h.text(224, 32);
    a->attribute = h.text(192, 8);
    a->key = std::atoi(h.text(200, 8).c_str());
    a->dimension = h.text(208, 8);
    a->unit = h.text(216, 8);
    a->format = h.text(304, 8);
    a->ascii = h.text(312, 8);
    a->fmt = (fmt == KvsFmtINT || fmt == KvsFmtFLT || fmt == KvsFmtDBL) ? fmt : 0;
    a->elem = elem;
    // Nobody may ask for the bounds of what was read: no pass over the
    // rows for them now.
    a->minMaxStale = true;
    a->offset = t->rowBytes() * KvsPageRows;
    a->parent = t;
    a->project = t->project;
    t->children.push_back(a);
    arrays.emplace_back(a, total);
  }
  if (!receiveColumns(s, arrays)) return kvsErrorNo;
  t->updated = true;
  return 0;
}

}  // namespace kvs

#include "database/kvs/KvsDict.h"

#include <cstring>
#include <fstream>
#include <iterator>

#include "database/kvs/KvsParams.h"
#include "database/kvs/KvsSocket.h"

namespace kvs {

namespace {

std::vector<KvsDtElement> dict[KvsDtKinds];
bool pcOrder = false;

const KvsDtElement* byName(int kind, const char* name) {
  if (!name) return nullptr;
  for (const KvsDtElement& e : dict[kind])
    if (e.name == name) return &e;
  return nullptr;
}

const KvsDtElement* byCode(int kind, long code) {
  for (const KvsDtElement& e : dict[kind])
    if (long(e.code) == code) return &e;
  return nullptr;
}

}  // namespace

int _KvsDtLoad(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return -1;
  std::vector<unsigned char> b(std::istreambuf_iterator<char>(in), {});
  constexpr std::size_t head = 8 * (2 + KvsDtKinds);
  if (b.size() < head || KvsGetBE32(&b[12]) != KvsDictMagic) return -1;
  std::size_t at = head;
  std::vector<KvsDtElement> loaded[KvsDtKinds];
  for (int k = 0; k < KvsDtKinds; ++k) {
    std::size_t count = (std::size_t(b[16 + 8 * k + 6]) << 8) | b[16 + 8 * k + 7];
    if (count > (b.size() - at) / 32) return -1;
    for (std::size_t i = 0; i < count; ++i, at += 32) {
      KvsDtElement e;
      const char* n = reinterpret_cast<const char*>(&b[at]);
      e.name.assign(n, strnlen(n, 16));
      e.code = KvsGetBE32(&b[at + 16]);
      e.rel1 = KvsGetBE32(&b[at + 20]);
      e.rel2 = KvsGetBE32(&b[at + 24]);
      e.rel3 = KvsGetBE32(&b[at + 28]);
      loaded[k].push_back(e);
    }
  }
  for (int k = 0; k < KvsDtKinds; ++k) dict[k] = std::move(loaded[k]);
  pcOrder = b[7] == 'L';
  return 0;
}

std::vector<unsigned char> KvsDtBuild(const std::vector<KvsDtElement> (&tables)[4], char order) {
  std::vector<KvsDtElement> all[KvsDtKinds];
  for (int k = 0; k < 4; ++k) all[k] = tables[k];
  return KvsDtBuild(all, order);
}

std::vector<unsigned char> KvsDtBuild(const std::vector<KvsDtElement> (&tables)[KvsDtKinds], char order) {
  std::vector<unsigned char> b(8 * (2 + KvsDtKinds), 0);
  b[7] = static_cast<unsigned char>(order);
  KvsPutBE32(&b[12], KvsDictMagic);
  for (int k = 0; k < KvsDtKinds; ++k) {
    b[16 + 8 * k + 6] = static_cast<unsigned char>(tables[k].size() >> 8);
    b[16 + 8 * k + 7] = static_cast<unsigned char>(tables[k].size());
    for (const KvsDtElement& e : tables[k]) {
      std::size_t at = b.size();
      b.resize(at + 32, 0);
      std::memcpy(&b[at], e.name.data(), e.name.size() < 15 ? e.name.size() : 15);
      KvsPutBE32(&b[at + 16], e.code);
      KvsPutBE32(&b[at + 20], e.rel1);
      KvsPutBE32(&b[at + 24], e.rel2);
      KvsPutBE32(&b[at + 28], e.rel3);
    }
  }
  return b;
}

bool KvsDtIsPcOrder() { return pcOrder; }

static long codeOf(int kind, const char* name) {
  const KvsDtElement* e = byName(kind, name);
  return e ? long(e->code) : 0;
}
static const char* nameOf(int kind, long code) {
  const KvsDtElement* e = byCode(kind, code);
  return e ? e->name.c_str() : nullptr;
}

long KvsDtAtt(const char* name) { return codeOf(KvsDtAttKind, name); }
long KvsDtTyp(const char* name) { return codeOf(KvsDtTypKind, name); }
long KvsDtTab(const char* name) { return codeOf(KvsDtTabKind, name); }
long KvsDtDom(const char* name) { return codeOf(KvsDtDomKind, name); }
const char* KvsDtAttName(long code) { return nameOf(KvsDtAttKind, code); }
const char* KvsDtTypName(long code) { return nameOf(KvsDtTypKind, code); }
const char* KvsDtTabName(long code) { return nameOf(KvsDtTabKind, code); }
const char* KvsDtDomName(long code) { return nameOf(KvsDtDomKind, code); }
bool KvsDtIsAtt(const char* name) { return byName(KvsDtAttKind, name) != nullptr; }
bool KvsDtIsTyp(const char* name) { return byName(KvsDtTypKind, name) != nullptr; }
bool KvsDtIsTab(const char* name) { return byName(KvsDtTabKind, name) != nullptr; }
bool KvsDtIsDom(const char* name) { return byName(KvsDtDomKind, name) != nullptr; }

long KvsDtAttFmt(long att) {
  const KvsDtElement* e = byCode(KvsDtAttKind, att);
  return e ? long(e->rel1) : 0;
}
long KvsDtAttLen(long att) {
  const KvsDtElement* e = byCode(KvsDtAttKind, att);
  return e ? long(e->rel2) : 0;
}
long KvsDtTabDom(long tab) {
  const KvsDtElement* e = byCode(KvsDtTabKind, tab);
  return e ? long(e->rel1) : 0;
}
long KvsDtKey1(long tab) {
  const KvsDtElement* e = byCode(KvsDtTabKind, tab);
  return e ? long(e->rel2) : 0;
}
long KvsDtKey2(long tab) {
  const KvsDtElement* e = byCode(KvsDtTabKind, tab);
  return e ? long(e->rel3) : 0;
}
long KvsDtNbKeys(long tab) { return (KvsDtKey1(tab) ? 1 : 0) + (KvsDtKey2(tab) ? 1 : 0); }
bool KvsDtIsKey(long tab, long att) { return att && (KvsDtKey1(tab) == att || KvsDtKey2(tab) == att); }

const char* KvsDtFmtName(long code) { return nameOf(KvsDtFmtKind, code); }
const char* KvsDtFamName(long code) { return nameOf(KvsDtFamKind, code); }
const char* KvsDtDimName(long code) { return nameOf(KvsDtDimKind, code); }
const char* KvsDtParName(long code) { return nameOf(KvsDtParKind, code); }

static long superOf(long tab) {
  const KvsDtElement* e = byCode(KvsDtSubKind, tab);
  return e ? long(e->rel1) : 0;
}

bool KvsDtIsSubClass(long tab, long sup) {
  if (!tab || !sup) return false;
  // The steps are bounded by the number of classes, so a loop in a bad
  // dictionary ends.
  for (std::size_t step = 0; tab && step <= dict[KvsDtSubKind].size(); ++step, tab = superOf(tab))
    if (tab == sup) return true;
  return false;
}

bool KvsDtIsMember(long tab, long att) {
  if (!att) return false;
  for (std::size_t step = 0; tab && step <= dict[KvsDtSubKind].size(); ++step, tab = superOf(tab)) {
    if (KvsDtIsKey(tab, att)) return true;
    for (const KvsDtElement& e : dict[KvsDtMemberKind])
      if (long(e.code) == tab && long(e.rel1) == att) return true;
  }
  return false;
}

long KvsDtKeys2Dom(long key1, long key2) {
  for (const KvsDtElement& e : dict[KvsDtDomKind])
    if (long(e.rel1) == key1 && long(e.rel2) == key2) return long(e.code);
  return 0;
}

long KvsDtAttFam(long att) {
  const KvsDtElement* e = byCode(KvsDtAttDetKind, att);
  return e ? long(e->rel1) : 0;
}
long KvsDtAttDim(long att) {
  const KvsDtElement* e = byCode(KvsDtAttDetKind, att);
  return e ? long(e->rel2) : 0;
}
long KvsDtAttSup(long att) {
  const KvsDtElement* e = byCode(KvsDtAttDetKind, att);
  return e ? long(e->rel3) : 0;
}

const char* KvsDtAttAsciiFmt(long att) {
  if (!byCode(KvsDtAttKind, att)) return nullptr;
  const KvsDtElement* e = byCode(KvsDtAttDetKind, att);
  if (e && !e->name.empty()) return e->name.c_str();
  switch (KvsDtAttFmt(att)) {
    case KvsFmtINT: return "%11d";
    case KvsFmtFLT: return "%15.7g";
    case KvsFmtDBL: return "%24.16g";
    default: return "%s";
  }
}

}  // namespace kvs

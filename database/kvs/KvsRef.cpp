#include "database/kvs/KvsRef.h"

#include <algorithm>
#include <cstdarg>
#include <cstring>
#include <string>

#include "database/kvs/KvsDict.h"
#include "database/kvs/KvsObject.h"

using namespace kvs;

int kvsStrLen[64];

namespace {

std::string cut(const char* p, int len) {
  std::string s = p ? std::string(p, static_cast<std::size_t>(len > 0 ? len : 0)) : "";
  while (!s.empty() && (s.back() == ' ' || s.back() == '\0')) s.pop_back();
  return s;
}

// The texts of one call, kept alive until the by-value call returns.
struct Texts {
  std::string held[64];
  int next = 0;
  const char* take(const char* p) {
    int k = next < 64 ? next++ : 63;
    held[k] = cut(p, kvsStrLen[k]);
    return held[k].c_str();
  }
};

std::vector<KvsArg> args(va_list ap, Texts& texts) {
  std::vector<KvsArg> out;
  for (int k = 0; k < 30; ++k) {
    const long* code = va_arg(ap, const long*);
    if (!code || !*code) break;
    void* value = va_arg(ap, void*);
    KvsArg a{*code, 0, nullptr};
    if (*code & KvsText) a.ptr = const_cast<char*>(texts.take(static_cast<const char*>(value)));
    else if (KvsResIsPointer(*code)) a.ptr = value;
    else a.value = value ? *static_cast<const long*>(value) : 0;
    out.push_back(a);
  }
  return out;
}

KvsObject at(KvsObject* o) { return o ? *o : nullptr; }

void padTo(const char* text, char* out, int len) {
  if (out && len > 0) {
    std::memset(out, ' ', static_cast<std::size_t>(len));
    if (text) std::memcpy(out, text, std::min(std::strlen(text), static_cast<std::size_t>(len)));
  }
}

// A text out to a blank-padded buffer of length kvsStrLen[0]; the code of
// the call, 0 when there was a text.
int pad(const char* text, char* out) {
  padTo(text, out, kvsStrLen[0]);
  return text ? 0 : kvsErrorNo;
}

long val(const long* p) { return p ? *p : 0; }

// A dictionary name out: 0, or KvsErrDict for an unknown code.
int named(const char* text, char* out) {
  padTo(text, out, kvsStrLen[0]);
  return text ? 0 : KvsErrDict;
}

}  // namespace

extern "C" {

int kvsinit_() { return KvsInit(); }
int kvsexit_() { return KvsExit(); }
int kvsabort_() { return KvsAbort(); }
int kvserror_() { return KvsError(); }
KvsObject kvsroot_() { return KvsRoot(); }

KvsObject kvscreate_(KvsObject* parent, ...) {
  Texts texts;
  va_list ap;
  va_start(ap, parent);
  std::vector<KvsArg> list = args(ap, texts);
  va_end(ap);
  return KvsCreate(at(parent), list);
}

KvsObject kvsopen_(KvsObject* session, ...) {
  Texts texts;
  va_list ap;
  va_start(ap, session);
  std::vector<KvsArg> list = args(ap, texts);
  va_end(ap);
  return KvsOpen(at(session), list);
}

int kvsset_(KvsObject* o, ...) {
  Texts texts;
  va_list ap;
  va_start(ap, o);
  std::vector<KvsArg> list = args(ap, texts);
  va_end(ap);
  return KvsSet(at(o), list);
}

int kvsget_(KvsObject* o, ...) {
  va_list ap;
  va_start(ap, o);
  struct Out {
    long code;
    void* where;
    const char* text;
  };
  std::vector<Out> outs;
  std::vector<KvsArg> list;
  for (int k = 0; k < 30; ++k) {
    const long* code = va_arg(ap, const long*);
    if (!code || !*code) break;
    outs.push_back(Out{*code, va_arg(ap, void*), nullptr});
  }
  va_end(ap);
  for (Out& out : outs)
    list.push_back(KvsArg{out.code, 0, (out.code & KvsText) ? static_cast<void*>(&out.text) : out.where});
  int rc = KvsGet(at(o), list);
  int k = 0;
  for (Out& out : outs) {
    if (!(out.code & KvsText)) continue;
    int len = kvsStrLen[k < 64 ? k++ : 63];
    auto* buf = static_cast<char*>(out.where);
    if (!buf || len <= 0) continue;
    std::memset(buf, ' ', static_cast<std::size_t>(len));
    if (out.text) std::memcpy(buf, out.text, std::min(std::strlen(out.text), static_cast<std::size_t>(len)));
  }
  return rc;
}

KvsObject kvsfind_(KvsObject* o, const char* name) { return KvsFind(at(o), cut(name, kvsStrLen[0]).c_str()); }
KvsObject kvsfirst_(KvsObject* o) { return KvsFirst(at(o)); }
KvsObject kvslast_(KvsObject* o) { return KvsLast(at(o)); }
KvsObject kvsnext_(KvsObject* o) { return KvsNext(at(o)); }
KvsObject kvsprev_(KvsObject* o) { return KvsPrev(at(o)); }
KvsObject kvsparent_(KvsObject* o) { return KvsParent(at(o)); }
long kvsread_(KvsObject* o, long* n) { return KvsRead(at(o), n ? *n : 0); }
long kvswrite_(KvsObject* o, long* n) { return KvsWrite(at(o), n ? *n : 0); }
int kvslseek_(KvsObject* o, long* row) { return KvsLseek(at(o), row ? *row : -1); }
int kvsflush_(KvsObject* o) { return KvsFlush(at(o)); }
int kvsclose_(KvsObject* o) { return KvsClose(at(o)); }
int kvsremove_(KvsObject* o) { return KvsRemove(at(o)); }
int kvsreplace_(KvsObject* o) { return KvsReplace(at(o)); }
int kvsinsert_(KvsObject* o) { return KvsInsert(at(o)); }
int kvsdelete_(KvsObject* o) { return KvsDelete(at(o)); }
int kvsselect_(KvsObject* o) { return KvsSelect(at(o)); }
int kvstest_(KvsObject* o) { return KvsTest(at(o)); }
int kvsprotect_(KvsObject* o) { return KvsProtect(at(o)); }
int kvsrelease_(KvsObject* o) { return KvsRelease(at(o)); }
int kvscheck_(KvsObject* o) { return KvsCheck(at(o)); }
int kvsconnect_(KvsObject* o) { return KvsConnect(at(o)); }
int kvsdisconnect_(KvsObject* o) { return KvsDisconnect(at(o)); }
int kvsgetoraclehost_(char* host, long* port) {
  std::string h;
  int rc = KvsGetOracleHost(h, port);
  padTo(h.c_str(), host, kvsStrLen[0]);
  return rc;
}
int kvsclean_(KvsObject* o) { return KvsClean(at(o)); }
int kvsfill_(KvsObject* o) { return KvsFill(at(o)); }
int kvsgroup_(KvsObject* o) { return KvsGroup(at(o)); }
int kvsrestore_(KvsObject* o) { return KvsRestore(at(o)); }
int kvsreorgtable_(KvsObject* o) { return KvsReorgTable(at(o)); }
int kvscompacttable_(KvsObject* o) { return KvsCompactTable(at(o)); }
KvsObject kvscreateattrifneed_(KvsObject* t, const char* name) {
  return KvsCreateAttrIfNeed(at(t), cut(name, kvsStrLen[0]).c_str());
}
int kvsdefquery_(KvsObject* d, const char* domain, const char* text) {
  return KvsDefQuery(at(d), cut(domain, kvsStrLen[0]).c_str(), cut(text, kvsStrLen[1]).c_str());
}
int kvsundefquery_(KvsObject* d) { return KvsUndefQuery(at(d)); }
int kvsiskey_(KvsObject* a) { return KvsIsKey(at(a)); }
long kvslocate_(KvsObject* a, const void* value) { return KvsLocate(at(a), value); }
int kvsverifykeys_(KvsObject* t) { return KvsVerifyKeys(at(t)); }
int kvsdomain_(KvsObject* t, char* out) { return pad(KvsDomain(at(t)), out); }
int kvstype_(KvsObject* o, char* out) { return pad(KvsType(at(o)), out); }
int kvsdump_(const char* path) { return KvsDump(cut(path, kvsStrLen[0]).c_str()); }
int kvsload_(const char* path) { return KvsLoad(cut(path, kvsStrLen[0]).c_str()); }
long kvsdtatt_(const char* name) { return KvsDtAtt(cut(name, kvsStrLen[0]).c_str()); }
long kvsdttyp_(const char* name) { return KvsDtTyp(cut(name, kvsStrLen[0]).c_str()); }
long kvsdttab_(const char* name) { return KvsDtTab(cut(name, kvsStrLen[0]).c_str()); }
long kvsdtdom_(const char* name) { return KvsDtDom(cut(name, kvsStrLen[0]).c_str()); }

int kvsdtattname_(long* c, char* out) { return named(KvsDtAttName(val(c)), out); }
int kvsdttypname_(long* c, char* out) { return named(KvsDtTypName(val(c)), out); }
int kvsdttabname_(long* c, char* out) { return named(KvsDtTabName(val(c)), out); }
int kvsdtdomname_(long* c, char* out) { return named(KvsDtDomName(val(c)), out); }
int kvsdtfmtname_(long* c, char* out) { return named(KvsDtFmtName(val(c)), out); }
int kvsdtfamname_(long* c, char* out) { return named(KvsDtFamName(val(c)), out); }
int kvsdtdimname_(long* c, char* out) { return named(KvsDtDimName(val(c)), out); }
int kvsdtparname_(long* c, char* out) { return named(KvsDtParName(val(c)), out); }
int kvsdtattasciifmt_(long* a, char* out) { return named(KvsDtAttAsciiFmt(val(a)), out); }
int kvsdtisatt_(const char* name) { return KvsDtIsAtt(cut(name, kvsStrLen[0]).c_str()); }
int kvsdtistyp_(const char* name) { return KvsDtIsTyp(cut(name, kvsStrLen[0]).c_str()); }
int kvsdtistab_(const char* name) { return KvsDtIsTab(cut(name, kvsStrLen[0]).c_str()); }
int kvsdtisdom_(const char* name) { return KvsDtIsDom(cut(name, kvsStrLen[0]).c_str()); }
int kvsdtissubclass_(long* tab, long* sup) { return KvsDtIsSubClass(val(tab), val(sup)); }
int kvsdtiskey_(long* tab, long* att) { return KvsDtIsKey(val(tab), val(att)); }
int kvsdtismember_(long* tab, long* att) { return KvsDtIsMember(val(tab), val(att)); }
long kvsdtkeys2dom_(long* k1, long* k2) { return KvsDtKeys2Dom(val(k1), val(k2)); }
long kvsdtkey1_(long* tab) { return KvsDtKey1(val(tab)); }
long kvsdtkey2_(long* tab) { return KvsDtKey2(val(tab)); }
long kvsdtnbkeys_(long* tab) { return KvsDtNbKeys(val(tab)); }
long kvsdtattfam_(long* att) { return KvsDtAttFam(val(att)); }
long kvsdtattfmt_(long* att) { return KvsDtAttFmt(val(att)); }
long kvsdtattdim_(long* att) { return KvsDtAttDim(val(att)); }
long kvsdtattsup_(long* att) { return KvsDtAttSup(val(att)); }
int kvsconvert_(const void* in, unsigned int* from, void* out, unsigned int* to, long* n) {
  return KvsConvert(in, from ? *from : 0, out, to ? *to : 0, val(n));
}
void* kvsalloc_(long* n, const char* object) {
  return KvsAlloc(static_cast<std::size_t>(std::max(0L, val(n))), cut(object, kvsStrLen[0]).c_str());
}
void* kvsrealloc_(void** p, long* n, const char* object) {
  return KvsRealloc(p ? *p : nullptr, static_cast<std::size_t>(std::max(0L, val(n))),
                    cut(object, kvsStrLen[0]).c_str());
}
void kvsfree_(void** p) {
  if (!p) return;
  KvsFree(*p);
  *p = nullptr;
}
int kvsfindproject_(const char* name, char* out) {
  std::string project;
  int rc = KvsFindProject(cut(name, kvsStrLen[0]).c_str(), project);
  padTo(project.c_str(), out, kvsStrLen[1]);
  return rc;
}
int kvsextractsiteserver_(const char* name, char* site, char* server) {
  std::string si, se;
  int rc = KvsExtractSiteServer(cut(name, kvsStrLen[0]).c_str(), si, se);
  padTo(si.c_str(), site, kvsStrLen[1]);
  padTo(se.c_str(), server, kvsStrLen[2]);
  return rc;
}
int kvslistprojectsite_(const char* site, const char* pattern, int* n, char*** list) {
  std::string si = cut(site, kvsStrLen[0]);
  return KvsListProjectSite(si.empty() ? nullptr : si.c_str(), cut(pattern, kvsStrLen[1]).c_str(), n, list);
}
int kvsbasegetinfo_(const char* project, const char* site, const char* server, KvsBaseInfo** info) {
  std::string si = cut(site, kvsStrLen[1]), se = cut(server, kvsStrLen[2]);
  return KvsBaseGetInfo(cut(project, kvsStrLen[0]).c_str(), si.empty() ? nullptr : si.c_str(),
                        se.empty() ? nullptr : se.c_str(), info);
}
}

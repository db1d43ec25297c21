#include <unistd.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "database/kvs/KvsDict.h"
#include "database/kvs/KvsObject.h"

namespace kvs {

const KvsClassRec kvsCoreClass{"Core", nullptr};
const KvsClassRec kvsCompositeClass{"Composite", &kvsCoreClass};
const KvsClassRec kvsRootClass{"Root", &kvsCompositeClass};
const KvsClassRec kvsSessionClass{"Session", &kvsCompositeClass};
const KvsClassRec kvsDatasetClass{"Dataset", &kvsCompositeClass};
const KvsClassRec kvsTableClass{"Table", &kvsCompositeClass};
const KvsClassRec kvsArrayClass{"Array", &kvsCoreClass};
const KvsClassRec kvsParamsClass{"Params", &kvsCoreClass};

bool kvsKeepSpool = false;

namespace {
std::vector<std::string> spoolPool;
constexpr std::size_t kSpoolPool = 4;
}  // namespace

void KvsSpoolRelease(const std::string& path) {
  if (spoolPool.size() < kSpoolPool && KvsRootObject()) spoolPool.push_back(path);
  else ::unlink(path.c_str());
}

std::string KvsSpoolTake(const std::string& name) {
  if (spoolPool.empty()) return "";
  // A file already of that name is the one to take: the rename would
  // otherwise drop it while the pool still names it.
  auto same = std::find(spoolPool.begin(), spoolPool.end(), name);
  if (same != spoolPool.end()) std::iter_swap(same, spoolPool.end() - 1);
  std::string path = spoolPool.back();
  spoolPool.pop_back();
  return path;
}

void KvsSpoolDrop() {
  for (const std::string& path : spoolPool) ::unlink(path.c_str());
  spoolPool.clear();
}

namespace {
KvsRootRec* root = nullptr;
KvsObject current = nullptr;
}

int _KvsSetSession(KvsObject session) {
  if (!KvsCheckClass(session, kvsSessionClass, "_KvsSetSession")) return KvsErrClass;
  current = session;
  return 0;
}

KvsObject KvsCurrentSession() {
  if (KvsIsObject(current) && current->cls == &kvsSessionClass) return current;
  return root && !root->children.empty() ? root->children.front() : nullptr;
}

KvsRootRec* KvsRootObject() { return root; }
void KvsSetRootObject(KvsRootRec* r) { root = r; }
KvsObject KvsRoot() { return root; }

bool KvsIsObject(KvsObject o) { return o && o->self == o; }

bool KvsIsA(KvsObject o, const KvsClassRec& c) {
  if (!KvsIsObject(o)) return false;
  for (const KvsClassRec* k = o->cls; k; k = k->super)
    if (k == &c) return true;
  return false;
}

bool KvsCheckClass(KvsObject o, const KvsClassRec& c, const char* op) {
  if (KvsIsA(o, c)) return true;
  _KvsLog(KvsErrClass, "%%E %s : argument object should be %s KvsObject class", op, c.name);
  return false;
}

KvsSessionRec* KvsSessionOf(KvsObject o) {
  while (o && o->cls != &kvsSessionClass) o = o->parent;
  return static_cast<KvsSessionRec*>(o);
}

void KvsDestroy(KvsObject o) {
  if (!KvsIsObject(o)) return;
  // A table's buffered rows reach its file while its columns still exist:
  // the next phase reads the file.
  if (o->cls == &kvsTableClass && kvsKeepSpool) KvsTableFlush(static_cast<KvsTableRec*>(o));
  std::vector<KvsObject> children;
  children.swap(o->children);
  for (KvsObject c : children) {
    c->parent = nullptr;
    KvsDestroy(c);
  }
  if (o->parent) {
    auto& s = o->parent->children;
    s.erase(std::remove(s.begin(), s.end(), o), s.end());
  }
  o->self = nullptr;
  if (o == current) current = nullptr;
  if (o->cls == &kvsRootClass) {
    delete static_cast<KvsRootRec*>(o);
  } else if (o->cls == &kvsSessionClass) {
    KvsSessionDrop(static_cast<KvsSessionRec*>(o));
    delete static_cast<KvsSessionRec*>(o);
  } else if (o->cls == &kvsDatasetClass) {
    delete static_cast<KvsDatasetRec*>(o);
  } else if (o->cls == &kvsTableClass) {
    auto* t = static_cast<KvsTableRec*>(o);
    if (t->fd >= 0) ::close(t->fd);
    if (!t->spool.empty() && !kvsKeepSpool) KvsSpoolRelease(t->spool);
    KvsPageFree(t->pages);
    delete t;
  } else if (o->cls == &kvsArrayClass) {
    delete static_cast<KvsArrayRec*>(o);
  } else {
    delete static_cast<KvsParamsRec*>(o);
  }
}

namespace {

// Reads code, value pairs up to the closing 0, at most 30 of them.
std::vector<KvsArg> pairs(va_list ap) {
  std::vector<KvsArg> out;
  for (int k = 0; k < 30; ++k) {
    long code = va_arg(ap, long);
    if (!code) break;
    KvsArg p{code, 0, nullptr};
    if (KvsResIsPointer(code)) p.ptr = va_arg(ap, void*);
    else p.value = va_arg(ap, long);
    out.push_back(p);
  }
  return out;
}

const char* text(const KvsArg& p) { return p.ptr ? static_cast<const char*>(p.ptr) : ""; }

void setCommon(KvsObject o, const KvsArg& p) {
  switch (p.code) {
    case KvsNname: o->name = std::string(text(p)).substr(0, 31); break;
    case KvsNproject: o->project = std::string(text(p)).substr(0, 16); break;
    case KvsNident: o->ident = text(p); break;
    case KvsNmode: o->mode = p.value; break;
    case KvsNstatus: o->status = p.value; break;
    case KvsNuserData: o->userData = p.ptr; break;
    default: break;
  }
}

void setOne(KvsObject o, const KvsArg& p) {
  setCommon(o, p);
  if (o->cls == &kvsDatasetClass) {
    auto* d = static_cast<KvsDatasetRec*>(o);
    if (p.code == KvsNtype) d->type = text(p);
    if (p.code == KvsNversion) d->version = text(p);
    if (p.code == KvsNdomain) d->domain = text(p);
    if (p.code == KvsNselect) d->select = text(p);
  } else if (o->cls == &kvsArrayClass) {
    auto* a = static_cast<KvsArrayRec*>(o);
    if (p.code == KvsNdata) a->data = p.ptr;
    if (p.code == KvsNfmt) a->userFmt = KvsFmtCode(text(p));
    if (p.code == KvsNascii) a->ascii = text(p);
    if (p.code == KvsNunit) a->unit = text(p);
    if (p.code == KvsNdimension) a->dimension = text(p);
  } else if (o->cls == &kvsSessionClass) {
    auto* s = static_cast<KvsSessionRec*>(o);
    if (p.code == KvsNserver) s->server = text(p);
    if (p.code == KvsNsite) s->site = text(p);
  }
}

KvsObject adopt(KvsObject parent, KvsObject child) {
  child->parent = parent;
  child->project = parent->project;
  parent->children.push_back(child);
  return child;
}

KvsObject makeArray(KvsTableRec* t, const std::vector<KvsArg>& ps) {
  if (t->updated) {
    _KvsLog(KvsErrGeneral, "%%E cannot create new Array : Table already updated");
    return nullptr;
  }
  auto* a = new KvsArrayRec;
  for (const KvsArg& p : ps) setOne(a, p);
  a->attribute = a->name;
  long att = KvsDtAtt(a->name.c_str());
  if (a->name.empty() || !att) {
    _KvsLog(KvsErrDict, "%%E The type %s is unknown in the dictionnary", a->name.c_str());
    delete a;
    return nullptr;
  }
  a->fmt = static_cast<std::uint32_t>(KvsDtAttFmt(att));
  a->elem = a->fmt == KvsFmtDBL ? 8 : a->fmt ? 4 : static_cast<std::size_t>(KvsDtAttLen(att));
  if (!a->elem) a->elem = 8;
  a->format = a->fmt == KvsFmtINT ? "INT" : a->fmt == KvsFmtFLT ? "FLT" : a->fmt == KvsFmtDBL ? "DBL" : "C";
  if (a->ascii.empty()) a->ascii = a->fmt == KvsFmtINT ? "%d" : "%g";
  long tab = KvsDtTab(t->type.c_str());
  a->key = KvsDtKey1(tab) == att ? 1 : KvsDtKey2(tab) == att ? 2 : 0;
  a->offset = t->rowBytes() * KvsPageRows;
  return adopt(t, a);
}

}  // namespace

std::size_t KvsTableRec::rowBytes() const {
  std::size_t n = 0;
  for (KvsObject c : children)
    if (c->cls == &kvsArrayClass) n += static_cast<KvsArrayRec*>(c)->elem;
  return n;
}

static KvsObject create(KvsObject parent, const std::vector<KvsArg>& ps) {
  if (!KvsIsObject(parent)) {
    _KvsLog(KvsErrClass, "%%E %s : argument object should be %s KvsObject class", "KvsCreate", "Composite");
    return nullptr;
  }
  if (parent->cls == &kvsRootClass) {
    auto* s = new KvsSessionRec;
    adopt(parent, s);
    for (const KvsArg& p : ps) setOne(s, p);
    return s;
  }
  if (parent->cls == &kvsSessionClass) {
    auto* d = new KvsDatasetRec;
    for (const KvsArg& p : ps) setOne(d, p);
    return adopt(parent, d);
  }
  if (parent->cls == &kvsDatasetClass) {
    std::string cls;
    for (const KvsArg& p : ps)
      if (p.code == KvsNname) cls = text(p);
    if (cls.empty()) {
      _KvsLog(KvsErrMandatory, "%%E resource %s is mandatory at creation of %s object", "KvsNname", "Table");
      return nullptr;
    }
    long tab = KvsDtTab(cls.c_str());
    if (!tab) {
      _KvsLog(KvsErrDict, "%%E The class %s is unknown in the dictionnary", cls.c_str());
      return nullptr;
    }
    auto* t = new KvsTableRec;
    for (const KvsArg& p : ps) setOne(t, p);
    t->type = cls;
    const char* dom = KvsDtDomName(KvsDtTabDom(tab));
    t->domain = dom ? dom : "";
    t->mode = parent->mode;
    return adopt(parent, t);
  }
  if (parent->cls == &kvsTableClass) {
    for (const KvsArg& p : ps) {
      if (p.code == KvsNclass) {
        auto* pr = new KvsParamsRec;
        pr->name = text(p);
        return adopt(parent, pr);
      }
    }
    return makeArray(static_cast<KvsTableRec*>(parent), ps);
  }
  _KvsLog(KvsErrClass, "%%E %s : argument object should be %s KvsObject class", "KvsCreate", "Composite");
  return nullptr;
}

KvsObject KvsCreate(KvsObject parent, ...) {
  va_list ap;
  va_start(ap, parent);
  std::vector<KvsArg> ps = pairs(ap);
  va_end(ap);
  return create(parent, ps);
}

KvsObject KvsCreate(KvsObject parent, const std::vector<KvsArg>& ps) { return create(parent, ps); }

KvsObject KvsOpen(KvsObject session, ...) {
  va_list ap;
  va_start(ap, session);
  std::vector<KvsArg> ps = pairs(ap);
  va_end(ap);
  return KvsOpen(session, ps);
}

KvsObject KvsOpen(KvsObject session, const std::vector<KvsArg>& ps) {
  if (!KvsCheckClass(session, kvsSessionClass, "KvsOpen")) return nullptr;
  bool haveMode = std::any_of(ps.begin(), ps.end(), [](const KvsArg& p) { return p.code == KvsNmode; });
  if (!haveMode) {
    _KvsLog(KvsErrMandatory, "%%E resource KvsNmode is mandatory in KvsOpen() call");
    return nullptr;
  }
  KvsDatasetRec probe;
  for (const KvsArg& p : ps) setOne(&probe, p);
  if (!probe.type.empty() && !KvsDtTyp(probe.type.c_str())) {
    _KvsLog(KvsErrDict, "%%E The type %s is unknown in the dictionnary", probe.type.c_str());
    return nullptr;
  }
  for (KvsObject c : session->children) {
    auto* d = static_cast<KvsDatasetRec*>(c);
    if (d->type == probe.type && d->ident == probe.ident && d->version == probe.version) {
      if (probe.mode == 2) {
        _KvsLog(KvsErrGeneral, "%%E Dataset already exists locally: %s", d->ident.c_str());
        return nullptr;
      }
      d->mode = probe.mode;
      return d;
    }
  }
  KvsObject d = create(session, ps);
  if (d && probe.mode != 2 && KvsSelect(d) != 0 && kvsErrorNo != KvsErrNoData) {
    KvsDestroy(d);
    return nullptr;
  }
  return d;
}

int KvsSet(KvsObject o, ...) {
  va_list ap;
  va_start(ap, o);
  std::vector<KvsArg> ps = pairs(ap);
  va_end(ap);
  return KvsSet(o, ps);
}

int KvsSet(KvsObject o, const std::vector<KvsArg>& ps) {
  if (!KvsCheckClass(o, kvsCoreClass, "KvsSet")) return KvsErrClass;
  for (const KvsArg& p : ps) setOne(o, p);
  return 0;
}

int KvsGet(KvsObject o, ...) {
  va_list ap;
  va_start(ap, o);
  std::vector<KvsArg> ps;
  for (int k = 0; k < 30; ++k) {
    long code = va_arg(ap, long);
    if (!code) break;
    ps.push_back(KvsArg{code, 0, va_arg(ap, void*)});
  }
  va_end(ap);
  return KvsGet(o, ps);
}

int KvsGet(KvsObject o, const std::vector<KvsArg>& ps) {
  if (!KvsCheckClass(o, kvsCoreClass, "KvsGet")) return KvsErrClass;
  for (const KvsArg& arg : ps) {
    long code = arg.code;
    void* out = arg.ptr;
    const std::string* s = nullptr;
    long v = 0;
    bool isLong = false;
    switch (code) {
      case KvsNname: s = &o->name; break;
      case KvsNproject: s = &o->project; break;
      case KvsNident: s = &o->ident; break;
      case KvsNmode: v = o->mode, isLong = true; break;
      case KvsNstatus: v = o->status, isLong = true; break;
      case KvsNnumChildren: v = static_cast<long>(o->children.size()), isLong = true; break;
      case KvsNuserData: *static_cast<void**>(out) = o->userData; break;
      default:
        if (o->cls == &kvsTableClass) {
          auto* t = static_cast<KvsTableRec*>(o);
          if (code == KvsNsize) v = t->rows, isLong = true;
          if (code == KvsNdomain) s = &t->domain;
          if (code == KvsNtype || code == KvsNclass) s = &t->type;
          if (code == KvsNfilename) s = &t->spool;
        } else if (o->cls == &kvsArrayClass) {
          auto* a = static_cast<KvsArrayRec*>(o);
          if (code == KvsNsize) v = a->rows, isLong = true;
          if (code == KvsNlength) v = static_cast<long>(a->elem), isLong = true;
          if (code == KvsNoffset) v = a->pos, isLong = true;
          if (code == KvsNformat) s = &a->format;
          if (code == KvsNunit) s = &a->unit;
          if (code == KvsNisKey) v = a->key, isLong = true;
        } else if (o->cls == &kvsDatasetClass) {
          auto* d = static_cast<KvsDatasetRec*>(o);
          if (code == KvsNtype) s = &d->type;
          if (code == KvsNversion) s = &d->version;
          if (code == KvsNdomain) s = &d->domain;
        } else if (o->cls == &kvsRootClass) {
          auto* r = static_cast<KvsRootRec*>(o);
          if (code == KvsNserver) s = &r->server;
          if (code == KvsNbase) s = &r->base;
          if (code == KvsNhome) s = &r->home;
          if (code == KvsNdict) s = &r->dict;
          if (code == KvsNclient) s = &r->client;
          if (code == KvsNsite) s = &r->site;
          if (code == KvsNtmpdir) s = &r->workdir;
        } else if (o->cls == &kvsSessionClass) {
          auto* se = static_cast<KvsSessionRec*>(o);
          if (code == KvsNsocket) v = se->fd, isLong = true;
          if (code == KvsNspid) v = se->serverPid, isLong = true;
          if (code == KvsNremote) v = se->remote, isLong = true;
          if (code == KvsNdatasite) s = &se->firstSite;
          if (code == KvsNsite) s = &se->site;
          if (code == KvsNserver) s = &se->server;
        }
    }
    if (s) *static_cast<const char**>(out) = s->c_str();
    else if (isLong) *static_cast<long*>(out) = v;
  }
  return 0;
}

KvsObject KvsFind(KvsObject o, const char* name) {
  if (!KvsCheckClass(o, kvsCompositeClass, "KvsFind") || !name) return nullptr;
  for (KvsObject c : o->children) {
    if (c->name == name || c->ident == name) return c;
    if (c->cls == &kvsDatasetClass && static_cast<KvsDatasetRec*>(c)->type == name) return c;
  }
  return nullptr;
}

KvsObject KvsFirst(KvsObject o) {
  return KvsIsObject(o) && !o->children.empty() ? o->children.front() : nullptr;
}
KvsObject KvsLast(KvsObject o) { return KvsIsObject(o) && !o->children.empty() ? o->children.back() : nullptr; }
static KvsObject sibling(KvsObject o, int step) {
  if (!KvsIsObject(o) || !o->parent) return nullptr;
  auto& s = o->parent->children;
  auto it = std::find(s.begin(), s.end(), o);
  long at = (it - s.begin()) + step;
  return at >= 0 && at < static_cast<long>(s.size()) ? s[static_cast<std::size_t>(at)] : nullptr;
}
KvsObject KvsNext(KvsObject o) { return sibling(o, 1); }
KvsObject KvsPrev(KvsObject o) { return sibling(o, -1); }
KvsObject KvsParent(KvsObject o) { return KvsIsObject(o) ? o->parent : nullptr; }

const char* KvsDomain(KvsObject t) {
  return KvsCheckClass(t, kvsTableClass, "KvsDomain") ? static_cast<KvsTableRec*>(t)->domain.c_str() : nullptr;
}
const char* KvsType(KvsObject o) {
  if (KvsIsA(o, kvsTableClass)) return static_cast<KvsTableRec*>(o)->type.c_str();
  if (KvsIsA(o, kvsDatasetClass)) return static_cast<KvsDatasetRec*>(o)->type.c_str();
  if (KvsIsA(o, kvsArrayClass)) return static_cast<KvsArrayRec*>(o)->format.c_str();
  KvsCheckClass(o, kvsTableClass, "KvsType");
  return nullptr;
}
int KvsIsKey(KvsObject a) {
  return KvsCheckClass(a, kvsArrayClass, "KvsIsKey") ? static_cast<KvsArrayRec*>(a)->key : 0;
}

int KvsRemove(KvsObject o) {
  if (!KvsCheckClass(o, kvsCoreClass, "KvsRemove")) return KvsErrClass;
  bool wasRoot = o == root;
  if (wasRoot) root = nullptr;
  KvsDestroy(o);
  if (wasRoot) KvsSpoolDrop();
  return 0;
}

int KvsDefQuery(KvsObject d, const char* domain, const char* text) {
  if (!KvsCheckClass(d, kvsDatasetClass, "KvsDefQuery")) return KvsErrClass;
  static_cast<KvsDatasetRec*>(d)->queries.emplace_back(domain ? domain : "", text ? text : "");
  return 0;
}

int KvsUndefQuery(KvsObject d) {
  if (!KvsCheckClass(d, kvsDatasetClass, "KvsUndefQuery")) return KvsErrClass;
  static_cast<KvsDatasetRec*>(d)->queries.clear();
  return 0;
}

int KvsParamPut(KvsObject o, const KvsParam& p) {
  if (!KvsCheckClass(o, kvsParamsClass, "KvsParamPut")) return KvsErrClass;
  auto& ps = static_cast<KvsParamsRec*>(o)->params;
  for (KvsParam& q : ps)
    if (q.name == p.name) return q = p, 0;
  ps.push_back(p);
  return 0;
}

const KvsParam* KvsParamFind(KvsObject o, const char* name) {
  if (!KvsCheckClass(o, kvsParamsClass, "KvsParamFind") || !name) return nullptr;
  for (const KvsParam& q : static_cast<KvsParamsRec*>(o)->params)
    if (q.name == name) return &q;
  return nullptr;
}

}  // namespace kvs

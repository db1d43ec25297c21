// Batch phases: a job runs its steps as separate processes, each one
// handing the object tree to the next through "Kvs.dmp" in the working
// directory. Table spool files stay where they are between steps.
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

#include "database/kvs/KvsObject.h"

namespace kvs {

namespace {

std::string env(const char* name) {
  const char* v = std::getenv(name);
  return v ? v : "";
}

// Every text field is written as hex, so that blanks and empties survive.
std::string hex(const std::string& s) {
  if (s.empty()) return "-";
  std::string out;
  char two[3];
  for (unsigned char c : s) {
    std::snprintf(two, sizeof two, "%02x", c);
    out += two;
  }
  return out;
}

// A field that is not hex marks the whole file as bad.
bool badField = false;

int nibble(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  badField = true;
  return 0;
}

std::string unhex(const std::string& s) {
  std::string out;
  if (s == "-") return out;
  if (s.size() % 2) badField = true;
  for (std::size_t i = 0; i + 1 < s.size(); i += 2) out += static_cast<char>(nibble(s[i]) * 16 + nibble(s[i + 1]));
  return out;
}

void dumpTable(std::ostream& out, KvsTableRec* t) {
  KvsTableFlush(t);
  if (t->fd >= 0) ::close(t->fd);
  t->fd = -1;
  out << "T " << hex(t->name) << ' ' << hex(t->type) << ' ' << hex(t->domain) << ' ' << hex(t->spool) << ' '
      << t->rows << ' ' << t->mode << ' ' << t->updated << '\n';
  for (KvsPage* p = t->pages; p; p = p->next) out << "G " << p->index << ' ' << p->used << ' ' << p->capacity << '\n';
  for (KvsObject c : t->children) {
    if (c->cls == &kvsArrayClass) {
      auto* a = static_cast<KvsArrayRec*>(c);
      KvsArrayMinMax(a);
      char mm[80];
      std::snprintf(mm, sizeof mm, "%a %a", a->min, a->max);
      out << "A " << hex(a->name) << ' ' << hex(a->attribute) << ' ' << hex(a->format) << ' ' << hex(a->ascii) << ' '
          << hex(a->dimension) << ' ' << hex(a->unit) << ' ' << a->fmt << ' ' << a->userFmt << ' ' << a->elem << ' '
          << a->offset << ' ' << a->rows << ' ' << a->key << ' ' << a->haveMinMax << ' ' << mm << '\n';
    } else {
      auto* pr = static_cast<KvsParamsRec*>(c);
      std::vector<unsigned char> b = KvsParamsEncode(pr->params);
      out << "P " << hex(pr->name) << ' ' << hex(std::string(b.begin(), b.end())) << '\n';
    }
  }
}

int bad(const std::string& path) {
  return _KvsLog(KvsErrGeneral, "%%E Could not read saved object tree %s", path.c_str());
}

}  // namespace

std::string KvsDumpPath() {
  KvsRootRec* r = KvsRootObject();
  return (r ? r->workdir : std::string(".")) + "/Kvs.dmp";
}

int KvsDump(const char* path) {
  KvsRootRec* r = KvsRootObject();
  if (!r) return _KvsLog(KvsErrClass, "%%E %s : argument object should be %s KvsObject class", "KvsDump", "Root");
  std::ofstream out(path, std::ios::trunc);
  out << "kvsdump 1\n";
  for (KvsObject so : r->children) {
    auto* s = static_cast<KvsSessionRec*>(so);
    out << "S " << hex(s->project) << ' ' << hex(s->site) << '\n';
    for (KvsObject dob : s->children) {
      auto* d = static_cast<KvsDatasetRec*>(dob);
      out << "D " << hex(d->type) << ' ' << hex(d->ident) << ' ' << hex(d->version) << ' ' << hex(d->domain) << ' '
          << hex(d->select) << ' ' << hex(d->name) << ' ' << d->mode << '\n';
      for (const auto& q : d->queries) out << "Q " << hex(q.first) << ' ' << hex(q.second) << '\n';
      for (KvsObject t : d->children) dumpTable(out, static_cast<KvsTableRec*>(t));
    }
  }
  out.flush();
  if (!out) return _KvsLog(KvsErrGeneral, "%%E Could not write saved object tree %s", path);
  return 0;
}

int KvsLoad(const char* path) {
  KvsRootRec* r = KvsRootObject();
  if (!r) return _KvsLog(KvsErrClass, "%%E %s : argument object should be %s KvsObject class", "KvsLoad", "Root");
  std::ifstream in(path);
  std::string line;
  if (!std::getline(in, line) || line != "kvsdump 1") return bad(path);
  KvsSessionRec* s = nullptr;
  KvsDatasetRec* d = nullptr;
  KvsTableRec* t = nullptr;
  KvsPage* last = nullptr;
  badField = false;
  auto adopt = [](KvsObject parent, KvsObject child) {
    child->parent = parent;
    child->project = parent->project;
    parent->children.push_back(child);
  };
  while (std::getline(in, line)) {
    std::istringstream f(line);
    std::string kind, a, b, c, e, g, h;
    f >> kind;
    if (kind == "S") {
      f >> a >> b;
      while (!r->children.empty()) KvsDestroy(r->children.back());
      s = KvsNewSession(r, unhex(a));
      s->site = unhex(b);
      d = nullptr, t = nullptr;
    } else if (kind == "D" && s) {
      d = new KvsDatasetRec;
      adopt(s, d);
      f >> a >> b >> c >> e >> g >> h >> d->mode;
      d->type = unhex(a), d->ident = unhex(b), d->version = unhex(c), d->domain = unhex(e), d->select = unhex(g);
      d->name = unhex(h);
      t = nullptr;
    } else if (kind == "Q" && d) {
      f >> a >> b;
      d->queries.emplace_back(unhex(a), unhex(b));
    } else if (kind == "T" && d) {
      t = new KvsTableRec;
      adopt(d, t);
      f >> a >> b >> c >> e >> t->rows >> t->mode >> t->updated;
      t->name = unhex(a), t->type = unhex(b), t->domain = unhex(c), t->spool = unhex(e);
      last = nullptr;
    } else if (kind == "G" && t) {
      long index = 0, used = 0, capacity = 0;
      f >> index >> used >> capacity;
      if (index < 0 || used < 0 || used > capacity || capacity != KvsPageRows) return bad(path);
      last = last ? KvsPageAppend(last) : (t->pages = _KvsPageAlloc(capacity));
      last->index = index, last->used = used;
    } else if (kind == "A" && t) {
      auto* ar = new KvsArrayRec;
      adopt(t, ar);
      std::string u, mn, mx;
      f >> a >> b >> c >> e >> g >> u >> ar->fmt >> ar->userFmt >> ar->elem >> ar->offset >> ar->rows >> ar->key >>
          ar->haveMinMax >> mn >> mx;
      ar->name = unhex(a), ar->attribute = unhex(b), ar->format = unhex(c), ar->ascii = unhex(e);
      ar->dimension = unhex(g), ar->unit = unhex(u);
      ar->min = std::strtod(mn.c_str(), nullptr), ar->max = std::strtod(mx.c_str(), nullptr);
      if (ar->elem < 1 || ar->elem > 64000 || ar->rows < 0 || ar->rows > t->rows) return bad(path);
    } else if (kind == "P" && t) {
      auto* pr = new KvsParamsRec;
      adopt(t, pr);
      f >> a >> b;
      pr->name = unhex(a);
      std::string block = unhex(b);
      if (KvsParamsDecode(reinterpret_cast<const unsigned char*>(block.data()), block.size(), pr->params) < 0)
        return bad(path);
    } else {
      return bad(path);
    }
    if (f.fail() || badField) return bad(path);
  }
  for (KvsObject so : r->children)
    for (KvsObject dob : so->children)
      for (KvsObject tob : dob->children) KvsPageRestore(static_cast<KvsTableRec*>(tob)->pages);
  return 0;
}

bool KvsBatchSetup(KvsRootRec* r) {
  std::string jobn = env("JOBN"), step = env("STEP");
  if (jobn.empty() || step.empty()) return false;
  r->batch = true;
  r->workdir += "/KVS";
  ::mkdir(r->workdir.c_str(), 0775);
  char client[16];
  std::snprintf(client, sizeof client, "%7d", std::atoi(jobn.c_str()));
  r->client = client;
  std::string job = r->workdir.substr(0, r->workdir.size() - 4);
  if (step == "PP") r->logfile = job + "/LIST";
  else if (std::atoi(env("LEVEL").c_str()) > 4099) r->logfile = job + "/LISTKVS";
  struct Mode {
    const char* step;
    int init, exit, status;
  };
  static const Mode modes[] = {{"PP", 1, 0, 2}, {"XC", 1, 2, 0}, {"AX1", 0, 3, 1}, {"AX2", 0, 1, 1}};
  for (const Mode& m : modes)
    if (step == m.step) r->initMode = m.init, r->exitMode = m.exit, r->status = m.status;
  return true;
}

}  // namespace kvs

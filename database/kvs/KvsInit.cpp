#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cstdlib>
#include <cstring>

#include "database/kvs/KvsDict.h"
#include "database/kvs/KvsObject.h"
#include "database/kvs/KvsSocket.h"

namespace kvs {

void KvsSetRootObject(KvsRootRec* r);

namespace {

std::string env(const char* name) {
  const char* v = std::getenv(name);
  return v ? v : "";
}

// Server and base names from a resource file must be plain names.
bool plainName(const std::string& v) {
  if (v.empty()) return false;
  for (unsigned char c : v)
    if (!std::isalnum(c) && c != '.' && c != '-' && c != '_') return false;
  return true;
}

// "KvsAttWord.<attribute>: n" lines of the resource file; an attribute the
// dictionary lacks or a position outside 1 to 64 is reported and skipped.
void attWords(KvsRootRec* r) {
  for (const std::string& line : KvsRessourceLines()) {
    if (line.rfind("KvsAttWord", 0) != 0 || line.size() < 11 || (line[10] != '.' && line[10] != '*')) continue;
    std::size_t colon = line.find(':');
    if (colon == std::string::npos) continue;
    std::string att = line.substr(11, colon - 11);
    while (!att.empty() && att.back() == ' ') att.pop_back();
    int word = std::atoi(KvsExpendRessourcesBuf(line.c_str() + colon + 1).c_str());
    if (!KvsDtAtt(att.c_str())) _KvsLog(KvsErrDict, "%%E The type %s is unknown in the dictionnary", att.c_str());
    else if (word < 1 || word > 64) _KvsLog(KvsErrGeneral, "%%E value %d outside of limits", word);
    else r->attWords.emplace_back(att, word);
  }
}

int fail(KvsRootRec* r, int code) {
  delete r;
  return code;
}

}  // namespace

int KvsFindProject(const char* name, std::string& out) {
  out = name ? name : "";
  out = out.substr(0, out.find('@'));
  return out.empty() ? KvsErrNoProject : 0;
}

int KvsExtractSiteServer(const char* name, std::string& site, std::string& server) {
  std::string n = name ? name : "";
  std::size_t colon = n.find(':');
  site = n.substr(0, colon);
  server = colon == std::string::npos ? "" : n.substr(colon + 1);
  return 0;
}

int KvsInit() {
  if (KvsRootObject()) return 0;
  KvsSkInit();
  // A later KvsInit in the same process takes KVSDBG afresh.
  kvsSkDebug = KvsSkDebugLevel();
  auto* r = new KvsRootRec;
  char cwd[129] = {};
  if (!getcwd(cwd, sizeof cwd - 1)) std::strcpy(cwd, "/tmp");
  r->workdir = cwd;
  bool batch = KvsBatchSetup(r);
  std::string project = batch ? env("PROJECT") : "";
  std::string corv = KvsFindRessourcesFile(r->workdir, ".corvProject");
  if (project.empty() && !corv.empty() && KvsLoadRessources(corv.c_str()) >= 0) {
    KvsParseRessources(nullptr, nullptr);
    if (const char* p = KvsParseRessources("Corvane", "Project")) project = p;
    KvsParseRessources(nullptr, nullptr);
    if (const char* s = KvsParseRessources("Kvs", "Site")) r->site = s;
  }
  if (project.empty()) {
    std::string tmp = env("TMPDIR");
    r->workdir = tmp.empty() ? "/tmp" : tmp;
  }
  if (!env("KVSROOT").empty()) {
    r->home = env("KVSROOT") + "/data";
    r->dict = r->home + "/KvsDict.bin";
  } else if (!env("cor_root").empty()) {
    r->home = env("cor_root") + "/kvs/data";
    r->dict = r->home + "/KvsDict.bin";
  } else {
    _KvsLog(KvsErrNoHome, "%%S Could not find KVSHOME directory");
    return fail(r, KvsErrNoHome);
  }
  if (!env("KVSDICT").empty()) r->dict = env("KVSDICT");
  std::string kvsproj = env("KVSPROJ");
  if (!kvsproj.empty()) {
    KvsFindProject(kvsproj.c_str(), project);
    std::size_t at = kvsproj.find('@');
    if (at != std::string::npos) r->site = kvsproj.substr(at + 1);
  }
  std::string config = KvsFindRessourcesFile(r->home, "config.kvs");
  if (!config.empty() && KvsLoadRessources(config.c_str()) >= 0) {
    KvsParseRessources(nullptr, nullptr);
    const char* s = KvsParseRessources("Kvs", "server");
    if (s && plainName(s)) r->server = s;
    KvsParseRessources(nullptr, nullptr);
    const char* b = KvsParseRessources("Kvs", "base");
    if (b && plainName(b)) r->base = b;
  }
  if (project.empty()) {
    _KvsLog(KvsErrNoProject, "%%S Unable to get Project Account %s", "Name");
    return fail(r, KvsErrNoProject);
  }
  if (r->server.empty()) {
    _KvsLog(KvsErrNoServer, "%%S Could not find server Name");
    return fail(r, KvsErrNoServer);
  }
  if (r->base.empty()) {
    _KvsLog(KvsErrMandatory, "%%S Could not find Oracle Base %s", project.c_str());
    return fail(r, KvsErrMandatory);
  }
  if (_KvsDtLoad(r->dict) != 0) {
    _KvsLog(KvsErrDict, "%%S Could not find dictionnary");
    return fail(r, KvsErrDict);
  }
  if (r->status == 1) attWords(r);
  r->project = project.substr(0, 16);
  if (!batch) r->client = env("USER").substr(0, 7);
  KvsSetRootObject(r);
  KvsSessionRec* s = KvsNewSession(r, project);
  // A later batch step takes up the tree the step before left.
  if (batch && r->initMode == 0 && access(KvsDumpPath().c_str(), R_OK) == 0) {
    if (int rc = KvsLoad(KvsDumpPath().c_str())) {
      // Files named in a tree that did not read back are left alone.
      KvsSetRootObject(nullptr);
      kvsKeepSpool = true;
      KvsDestroy(r);
      kvsKeepSpool = false;
      return rc;
    }
    s = static_cast<KvsSessionRec*>(r->children.empty() ? KvsNewSession(r, project) : r->children.front());
  }
  // Batch steps connect when they first talk to the server, except the
  // last one, which connects at once.
  if (batch && std::strcmp(std::getenv("STEP"), "AX2") != 0) return 0;
  int rc = KvsConnect(s);
  if (rc != 0) {
    // A batch step that cannot reach the server leaves the saved tree's
    // files for another try.
    KvsSetRootObject(nullptr);
    kvsKeepSpool = r->batch;
    KvsDestroy(r);
    kvsKeepSpool = false;
    return rc;
  }
  return 0;
}

int KvsAttWord(const char* attribute) {
  KvsRootRec* r = KvsRootObject();
  if (!r || !attribute) return 0;
  for (const auto& w : r->attWords)
    if (w.first == attribute) return w.second;
  return 0;
}

KvsSessionRec* KvsNewSession(KvsRootRec* r, const std::string& project) {
  auto* s = static_cast<KvsSessionRec*>(KvsCreate(r, KvsNproject, project.c_str(), 0L));
  s->server = r->server;
  s->base = r->base;
  s->site = r->site;
  std::string port = env("KVSPORT");
  // What is no number becomes 0; the connection refuses what is no port,
  // so a typing slip names itself in the failure instead of reaching
  // another daemon.
  long const number = port.empty() ? 4100 : KvsSkPortNumber(port.c_str());
  s->port = number < 0 ? 0 : static_cast<int>(number);
  return s;
}

int KvsExit() {
  KvsRootRec* r = KvsRootObject();
  if (!r) return 0;
  for (KvsObject s : r->children)
    if (s->cls == &kvsSessionClass) KvsDisconnect(s);
  int rc = 0;
  if (r->batch && r->exitMode >= 2) {
    // The next step reads the tree back; the spool files stay for it.
    rc = KvsDump(KvsDumpPath().c_str());
    kvsKeepSpool = rc == 0;
  } else if (r->batch && r->exitMode == 1) {
    ::unlink(KvsDumpPath().c_str());
  }
  KvsSetRootObject(nullptr);
  KvsDestroy(r);
  kvsKeepSpool = false;
  KvsSpoolDrop();
  return rc;
}

int KvsAbort() {
  KvsRootRec* r = KvsRootObject();
  KvsSetRootObject(nullptr);
  if (r) KvsDestroy(r);
  KvsSpoolDrop();
  return 0;
}

}  // namespace kvs

#include <unistd.h>

#include <fnmatch.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "database/kvs/KvsObject.h"
#include "database/kvs/KvsSocket.h"

namespace kvs {

namespace {

void dump(const KvsMsg& m, const char* title, int level) {
  if (kvsSkDebug > level) std::fputs(KvsMsgDump(m, title).c_str(), stderr);
}

// The database listener that the last connection reported.
std::string oracleHost;
long oraclePort = 0;

// When the last request record left, for the time of its exchange.
std::chrono::steady_clock::time_point requestSent;

void noteSent() { requestSent = std::chrono::steady_clock::now(); }

// A reply whose flags have bit 7 set carries the server's two time figures.
void noteReply(const KvsMsg& m) {
  dump(m, "REPLY", 1);
  if (!(m.b[KvsMsgFlags] & 0x80)) return;
  KvsDeltaT += std::atof(m.hdr1(0).c_str()) + std::atof(m.hdr1(1).c_str());
  kvsExchangeTime = std::chrono::duration<double>(std::chrono::steady_clock::now() - requestSent).count();
}

}  // namespace

double KvsDeltaT = 0;
double kvsExchangeTime = 0;

int KvsGetOracleHost(std::string& host, long* port) {
  host = oracleHost;
  if (port) *port = oraclePort;
  return 0;
}

void KvsMsgInit(KvsSessionRec* s, char command) {
  KvsMsg& m = s->msg;
  m.clear();
  m.setText(KvsMsgUser, 16, KvsSkInit().user);
  m.setText(KvsMsgAccount, 16, s->project);
  m.setText(KvsMsgHost, 24, KvsSkInit().host, 23);
  char pid[16];
  std::snprintf(pid, sizeof pid, "%6d", static_cast<int>(getpid()));
  m.setText(KvsMsgClientPid, 8, pid, 8);
  m.setText(KvsMsgServer, 24, s->server, 23);
  m.setText(KvsMsgBase, 16, s->base, 15);
  if (KvsRootRec* r = KvsRootObject()) m.setText(KvsMsgClient, 8, r->client, 7);
  m.b[KvsMsgRequest] = 1;
  m.b[KvsMsgCommand] = static_cast<unsigned char>(command);
}

void KvsSessionDrop(KvsSessionRec* s) {
  if (s->fd >= 0) ::close(s->fd);
  s->fd = -1;
}

int KvsSessionLog(int code, KvsSessionRec* s) {
  const char* on = s->server.c_str();
  switch (code) {
    case 3:
      _KvsLog(3, "%%E ORACLE error:\n %s", s->msg.hdr2(0).c_str());
      return _KvsLog(3, "%%E From Server :\n       %s", s->msg.text(KvsMsgText, 128).c_str());
    case 4: return _KvsLog(4, "%%E Could not receive data from server on %s", on);
    case 5: return _KvsLog(5, "%%E Could not send data to server on %s", on);
    case 7: return _KvsLog(7, "%%E Connexion has not been established with server (%s)", on);
    case 9: return _KvsLog(9, "%%S Could not find kvsd server (PORT %d) on %s", s->port, on);
    default: return _KvsLog(code, "%%E From Server :\n       %s", s->msg.text(KvsMsgText, 128).c_str());
  }
}

int KvsConnect(KvsObject o) {
  if (!KvsCheckClass(o, kvsSessionClass, "KvsConnect")) return KvsErrClass;
  auto* s = static_cast<KvsSessionRec*>(o);
  for (;;) {
    KvsMsgInit(s, 'C');
    if (!s->site.empty()) {
      s->msg.setText(192, 64, s->site, 63);
      s->firstSite = s->site.substr(0, s->site.find(':'));
    }
    KvsSessionDrop(s);
    s->fd = KvsSkConnect(s->server, s->port, 0);
    if (s->fd < 0) return KvsSessionLog(9, s);
    dump(s->msg, "REQUEST", 2);
    if (KvsSkWrite(s->fd, s->msg.b, KvsMsgSize) < 0) {
      KvsSessionDrop(s);
      return KvsSessionLog(5, s);
    }
    noteSent();
    if (KvsSkRead(s->fd, s->msg.b, KvsMsgSize) != long(KvsMsgSize)) {
      KvsSessionDrop(s);
      return KvsSessionLog(4, s);
    }
    noteReply(s->msg);
    int status = s->msg.status();
    if (status == 0) {
      s->serverPid = std::atoi(s->msg.text(KvsMsgPid, 8).c_str());
      s->remote = s->msg.num(KvsMsgHdr2);
      s->firstSite = s->msg.hdr1(4);
      if (s->msg.num(KvsMsgHdr2 + 32) > 0) {
        oraclePort = s->msg.num(KvsMsgHdr2 + 32);
        oracleHost = s->msg.hdr2(4);
      }
      return 0;
    }
    if (s->msg.command() == 'A' && !s->redirected) {
      // Redirected to another server and base.
      s->server = s->msg.text(KvsMsgServer, 24);
      s->base = s->msg.text(KvsMsgBase, 16);
      if (s->msg.num(KvsMsgHdr2 + 16) > 0) s->port = static_cast<int>(s->msg.num(KvsMsgHdr2 + 16));
      s->redirected = true;
      continue;
    }
    KvsSessionDrop(s);
    int rc = KvsSessionLog(status, s);
    const char* step = std::getenv("STEP");
    if (step && !std::strcmp(step, "AX2") && s->msg.text(KvsMsgText, 128).rfind("Not existing project", 0) == 0)
      std::exit(1);
    return rc;
  }
}

int KvsDisconnect(KvsObject o) {
  if (!KvsCheckClass(o, kvsSessionClass, "KvsDisconnect")) return KvsErrClass;
  auto* s = static_cast<KvsSessionRec*>(o);
  if (s->fd < 0) return 0;
  KvsMsgInit(s, 'E');
  int rc = KvsMsgsend(s);
  if (rc == 0) rc = KvsMsgrecv(s) < 0 ? kvsErrorNo : 0;
  KvsSessionDrop(s);
  return rc;
}

int KvsMsgsend(KvsSessionRec* s) {
  if (s->fd < 0) {
    KvsMsg saved = s->msg;
    int rc = KvsConnect(s);
    s->msg = saved;
    s->msg.setText(KvsMsgServer, 24, s->server, 23);
    s->msg.setText(KvsMsgBase, 16, s->base, 15);
    if (rc != 0) return rc;
  }
  dump(s->msg, "REQUEST", 2);
  if (KvsSkWrite(s->fd, s->msg.b, KvsMsgSize) < 0) {
    KvsSessionDrop(s);
    return KvsSessionLog(5, s);
  }
  noteSent();
  return 0;
}

// Returns the reply's status, or -1 when no record could be read (the
// connection is then closed, as the stream is out of step).
int KvsMsgrecv(KvsSessionRec* s) {
  if (s->fd < 0 || KvsSkRead(s->fd, s->msg.b, KvsMsgSize) != long(KvsMsgSize)) {
    KvsSessionDrop(s);
    KvsSessionLog(4, s);
    return -1;
  }
  noteReply(s->msg);
  return s->msg.status();
}

int KvsSendBuf(KvsSessionRec* s, const void* data, std::size_t n) {
  if (s->fd < 0 || KvsSkWrite(s->fd, data, n) < 0) {
    KvsSessionDrop(s);
    return KvsSessionLog(5, s);
  }
  return 0;
}

int KvsRecv(KvsSessionRec* s, std::size_t n) {
  if (n > s->buf.size()) s->buf.resize(n);
  if (s->fd < 0 || KvsSkRead(s->fd, s->buf.data(), n) != static_cast<long>(n)) {
    KvsSessionDrop(s);
    return KvsSessionLog(4, s);
  }
  return 0;
}

long KvsRecvData(KvsSessionRec* s) {
  long n = s->fd < 0 ? -1 : KvsSkRead(s->fd, s->buf.data(), 32000);
  if (n < 0) {
    KvsSessionDrop(s);
    KvsSessionLog(4, s);
    return -1;
  }
  if (n == 32 && std::memcmp(s->buf.data(), "END", 3) == 0) return 0;
  return n;
}

// A reply record, then (unless it says "E") hdr2[0] bytes of data, then a
// closing record.
static int readData(KvsObject o, char command, std::string& out, const char* account = nullptr) {
  if (!KvsCheckClass(o, kvsSessionClass, "KvsList")) return KvsErrClass;
  auto* s = static_cast<KvsSessionRec*>(o);
  KvsMsgInit(s, command);
  if (account && *account) s->msg.setText(KvsMsgAccount, 16, account);
  out.clear();
  int rc = KvsMsgsend(s);
  if (rc) return rc;
  int st = KvsMsgrecv(s);
  if (st < 0) return kvsErrorNo;
  if (st) return KvsSessionLog(st, s);
  if (s->msg.object() == 'E') return 0;
  long left = s->msg.num(KvsMsgHdr2);
  if (left == 0 && command == 'g') KvsPrintf("No Idents in this project. \n");
  while (left > 0) {
    long n = KvsSkRead(s->fd, s->buf.data(), s->buf.size());
    if (n < 0 || n > left) {
      KvsSessionDrop(s);
      return KvsSessionLog(4, s);
    }
    out.append(reinterpret_cast<char*>(s->buf.data()), static_cast<std::size_t>(n));
    left -= n;
  }
  st = KvsMsgrecv(s);
  return st < 0 ? kvsErrorNo : st ? KvsSessionLog(st, s) : 0;
}

static std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> out;
  std::size_t at = 0;
  while (at < text.size()) {
    std::size_t nl = text.find('\n', at);
    if (nl == std::string::npos) nl = text.size();
    out.push_back(text.substr(at, nl - at));
    at = nl + 1;
  }
  return out;
}

int KvsListProjectSite(const char* site, const char* pattern, int* n, char*** list) {
  KvsObject session = KvsCurrentSession();
  std::string text;
  if (site && *site && KvsIsObject(session)) static_cast<KvsSessionRec*>(session)->site = site;
  int rc = readData(session, 'l', text);
  if (rc) return rc;
  std::vector<std::string> names;
  for (const std::string& l : lines(text))
    if (!pattern || fnmatch(pattern, l.c_str(), 0) == 0) names.push_back(l);
  std::size_t bytes = (names.size() + 1) * sizeof(char*);
  for (const std::string& l : names) bytes += l.size() + 1;
  char** out = static_cast<char**>(KvsAlloc(bytes, "list"));
  if (!out) return KvsErrGeneral;
  char* at = reinterpret_cast<char*>(out + names.size() + 1);
  for (std::size_t i = 0; i < names.size(); ++i) {
    out[i] = at;
    std::memcpy(at, names[i].c_str(), names[i].size() + 1);
    at += names[i].size() + 1;
  }
  out[names.size()] = nullptr;
  *n = static_cast<int>(names.size());
  *list = out;
  return 0;
}

int KvsBaseGetInfo(const char* project, const char* site, const char* server, KvsBaseInfo** info) {
  (void)server;  // the current session's connection serves every project of its daemon
  KvsObject session = KvsCurrentSession();
  if (site && *site && KvsIsObject(session)) static_cast<KvsSessionRec*>(session)->site = site;
  std::string text;
  int rc = readData(session, 'L', text, project);
  if (rc) return rc;
  std::vector<std::string> rows = lines(text);
  std::size_t const bytes = sizeof(KvsBaseInfo) + rows.size() * sizeof(KvsDatasetInfo);
  auto* out = static_cast<KvsBaseInfo*>(KvsAlloc(bytes, "info"));
  if (!out) return KvsErrGeneral;
  std::memset(out, 0, bytes);
  out->datasets = reinterpret_cast<KvsDatasetInfo*>(out + 1);
  for (const std::string& row : rows) {
    // type, ident, version, creation time, by tabs
    std::vector<std::string> f;
    std::size_t at = 0;
    for (std::size_t tab; (tab = row.find('\t', at)) != std::string::npos; at = tab + 1) f.push_back(row.substr(at, tab - at));
    f.push_back(row.substr(at));
    if (f.size() != 4) continue;
    KvsDatasetInfo& d = out->datasets[out->count++];
    std::snprintf(d.type, sizeof d.type, "%s", f[0].c_str());
    std::snprintf(d.ident, sizeof d.ident, "%s", f[1].c_str());
    std::snprintf(d.version, sizeof d.version, "%s", f[2].c_str());
    d.created = std::atol(f[3].c_str());
  }
  *info = out;
  return 0;
}

int KvsGetTree(KvsObject session, std::vector<std::string>& idents) {
  std::string text;
  int rc = readData(session, 'g', text);
  idents = lines(text);
  return rc;
}

}  // namespace kvs

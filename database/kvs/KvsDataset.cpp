#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "database/kvs/KvsDict.h"
#include "database/kvs/KvsObject.h"
#include "database/kvs/KvsSocket.h"

namespace kvs {

namespace {

void datasetMsg(KvsSessionRec* s, KvsDatasetRec* d, char command) {
  KvsMsgInit(s, command);
  s->msg.b[KvsMsgObject] = 'D';
  s->msg.setText(KvsMsgHdr1, 8, d->type);
  s->msg.setHdr1(1, d->ident);
  s->msg.setHdr1(2, d->version);
  s->msg.setText(KvsMsgHdr1 + 48, 8, d->domain);
  if (!d->version.empty()) s->msg.b[KvsMsgFlags] |= 1;
}

// One request, one status reply.
int simple(KvsObject o, char command, const char* op) {
  if (!KvsCheckClass(o, kvsDatasetClass, op)) return KvsErrClass;
  auto* d = static_cast<KvsDatasetRec*>(o);
  KvsSessionRec* s = KvsSessionOf(d);
  datasetMsg(s, d, command);
  int rc = KvsMsgsend(s);
  if (rc) return rc;
  int st = KvsMsgrecv(s);
  if (st < 0) return kvsErrorNo;
  return st ? KvsSessionLog(st, s) : 0;
}

}  // namespace

int KvsTest(KvsObject d) { return simple(d, 'T', "KvsTest"); }
int KvsProtect(KvsObject d) { return simple(d, 'P', "KvsProtect"); }
int KvsRelease(KvsObject d) { return simple(d, 'F', "KvsRelease"); }

int KvsDelete(KvsObject d) { return simple(d, 'D', "KvsDelete"); }

int KvsSelect(KvsObject o) {
  if (!KvsCheckClass(o, kvsDatasetClass, "KvsSelect")) return KvsErrClass;
  auto* d = static_cast<KvsDatasetRec*>(o);
  KvsSessionRec* s = KvsSessionOf(d);
  if (s->fd < 0) {
    int rc = KvsConnect(s);
    if (rc) return rc;
  }
  datasetMsg(s, d, 'S');
  s->msg.setText(KvsMsgText, 128, KvsDtIsPcOrder() ? "PC" : "UNIX");
  std::vector<std::pair<std::string, std::string>> criteria = d->queries;
  if (!d->select.empty()) criteria.emplace_back("KVSOPEN", d->select);
  if (!criteria.empty()) s->msg.setNum(KvsMsgHdr2, static_cast<long>(criteria.size()));
  int rc = KvsMsgsend(s);
  if (rc) return rc;
  for (const auto& c : criteria) {
    std::vector<unsigned char> block(16 + c.second.size(), 0);
    std::memcpy(block.data(), c.first.data(), std::min<std::size_t>(c.first.size(), 8));
    std::snprintf(reinterpret_cast<char*>(block.data() + 8), 8, "%7d", 1);
    std::memcpy(block.data() + 16, c.second.data(), c.second.size());
    if ((rc = KvsSendBuf(s, block.data(), block.size()))) return rc;
  }
  int st = KvsMsgrecv(s);
  if (st < 0) return kvsErrorNo;
  if (st) return KvsSessionLog(st, s);
  if (s->msg.object() != 'T')
    return _KvsLog(KvsErrNoData, "%%I No data selected in database for dataset %s", d->ident.c_str());
  // A fresh read replaces what this process held of the dataset.
  while (!d->children.empty()) KvsDestroy(d->children.back());
  for (;;) {
    if (s->msg.object() == 'E') break;
    if (s->msg.object() != 'T') return _KvsLog(KvsErrGeneral, "%%E Unknown error");
    auto* t = new KvsTableRec;
    t->parent = d;
    t->project = d->project;
    t->mode = d->mode;
    d->children.push_back(t);
    if ((rc = KvsTableReceive(t, s))) return rc;
    st = KvsMsgrecv(s);
    if (st < 0) return kvsErrorNo;
    if (st) return KvsSessionLog(st, s);
  }
  return 0;
}

int KvsClose(KvsObject o) {
  if (KvsIsA(o, kvsTableClass)) {
    auto* t = static_cast<KvsTableRec*>(o);
    int rc = KvsTableFlush(t);
    if (t->fd >= 0) ::close(t->fd);
    t->fd = -1;
    return rc;
  }
  if (!KvsCheckClass(o, kvsDatasetClass, "KvsClose")) return KvsErrClass;
  KvsDestroy(o);
  return 0;
}

static int sendAll(KvsObject o, char command, const char* op) {
  if (KvsIsA(o, kvsTableClass)) return KvsTableSend(static_cast<KvsTableRec*>(o), command);
  if (!KvsCheckClass(o, kvsDatasetClass, op)) return KvsErrClass;
  bool any = false;
  for (KvsObject t : o->children) {
    if (t->cls != &kvsTableClass) continue;
    any = true;
    if (int rc = KvsTableSend(static_cast<KvsTableRec*>(t), command)) return rc;
  }
  if (!any) return _KvsLog(KvsErrGeneral, "%%E There is no data to be saved in dataset %s", o->ident.c_str());
  return 0;
}

int KvsReplace(KvsObject o) { return sendAll(o, 'R', "KvsReplace"); }
int KvsInsert(KvsObject o) { return sendAll(o, 'I', "KvsInsert"); }

}  // namespace kvs

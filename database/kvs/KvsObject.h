#pragma once
// The records behind KvsObject handles. The class pointer comes first and
// the object's own address second, which is what KvsIsObject checks.
#include <cstdint>
#include <string>
#include <vector>

#include "database/kvs/Kvs.h"
#include "database/kvs/KvsMsg.h"
#include "database/kvs/KvsPage.h"
#include "database/kvs/KvsParams.h"

namespace kvs {

struct KvsClassRec {
  const char* name;
  const KvsClassRec* super;
};
extern const KvsClassRec kvsCoreClass, kvsCompositeClass, kvsRootClass, kvsSessionClass, kvsDatasetClass,
    kvsTableClass, kvsArrayClass, kvsParamsClass;

struct KvsObjectRec {
  const KvsClassRec* cls;
  KvsObjectRec* self;
  KvsObjectRec* parent = nullptr;
  long status = 0;
  long mode = 0;
  std::string project;  // up to 16 characters
  std::string name;     // up to 31
  std::string ident;
  void* userData = nullptr;
  std::vector<KvsObjectRec*> children;
  explicit KvsObjectRec(const KvsClassRec* c) : cls(c), self(this) {}
};

struct KvsRootRec : KvsObjectRec {
  std::string server, base, home, dict, client, workdir, site, logfile;
  // Batch phases (JOBN and STEP set): init 1 starts a fresh tree, 0 reads
  // the one the step before saved; exit 2 or 3 saves it, 1 ends the chain.
  bool batch = false;
  std::vector<std::pair<std::string, int>> attWords;  // from KvsAttWord.<attribute> resources
  int initMode = 1, exitMode = 0;
  KvsRootRec() : KvsObjectRec(&kvsRootClass) {}
};

struct KvsSessionRec : KvsObjectRec {
  int fd = -1;
  int port = 4100;
  std::string server, base, site, user, host;
  int serverPid = 0;
  long remote = 0;        // non-zero: the connection reaches a remote site
  std::string firstSite;  // the site the connection went to first
  bool redirected = false;
  std::vector<unsigned char> buf = std::vector<unsigned char>(64000);
  KvsMsg msg;
  KvsSessionRec() : KvsObjectRec(&kvsSessionClass) {}
};

struct KvsDatasetRec : KvsObjectRec {
  std::string type, version, domain, select;
  std::vector<std::pair<std::string, std::string>> queries;
  KvsDatasetRec() : KvsObjectRec(&kvsDatasetClass) {}
};

struct KvsArrayRec;
struct KvsTableRec : KvsObjectRec {
  std::string type, domain, spool;
  int fd = -1;
  long rows = 0;
  bool updated = false;
  KvsPage* pages = nullptr;  // where each row sits in the spool file
  KvsPage* hint = nullptr;   // the page last used, where a search starts
  int buffered = 0;          // columns with rows waiting in their buffers
  KvsTableRec() : KvsObjectRec(&kvsTableClass) {}
  std::size_t rowBytes() const;
};

struct KvsArrayRec : KvsObjectRec {
  std::string attribute, format, ascii, dimension, unit;
  std::uint32_t fmt = 0;
  std::uint32_t userFmt = 0;  // of the caller's values (KvsNfmt), 0 when the column's own
  std::size_t elem = 0;
  std::size_t offset = 0;  // of this column's block within a page
  long rows = 0, pos = 0;
  int key = 0;
  void* data = nullptr;
  bool haveMinMax = false;
  bool minMaxStale = false;  // rows came from the server; found again when needed
  double min = 0, max = 0;
  // The last rows written, not yet in the spool file: rows wfirst to
  // wfirst + wcount - 1, always the column's last ones.
  std::vector<unsigned char> wbuf;
  long wfirst = 0, wcount = 0;
  KvsArrayRec() : KvsObjectRec(&kvsArrayClass) {}
};

struct KvsParamsRec : KvsObjectRec {
  std::vector<KvsParam> params;
  KvsParamsRec() : KvsObjectRec(&kvsParamsClass) {}
};

constexpr long KvsPageRows = 1024;

KvsRootRec* KvsRootObject();
bool KvsIsA(KvsObject o, const KvsClassRec& c);
// Logs the wrong-class error for op and returns false when o is not a c.
bool KvsCheckClass(KvsObject o, const KvsClassRec& c, const char* op);
KvsSessionRec* KvsSessionOf(KvsObject o);
void KvsDestroy(KvsObject o);

// A resource code with its value: a long, or a pointer (text, data, or
// where KvsGet puts a value). The list forms below are what the variadic
// calls and the by-reference forms share.
struct KvsArg {
  long code;
  long value;
  void* ptr;
};
KvsObject KvsCreate(KvsObject parent, const std::vector<KvsArg>& args);
KvsObject KvsOpen(KvsObject session, const std::vector<KvsArg>& args);
int KvsSet(KvsObject o, const std::vector<KvsArg>& args);
int KvsGet(KvsObject o, const std::vector<KvsArg>& args);

// The lines of the resource file loaded last.
const std::vector<std::string>& KvsRessourceLines();

// A session under the root with its server, base, site and port.
KvsSessionRec* KvsNewSession(KvsRootRec* r, const std::string& project);
// The batch phase of this process from JOBN and STEP; false when none.
bool KvsBatchSetup(KvsRootRec* r);
std::string KvsDumpPath();

// Session exchange (database/kvs/KvsSession.cpp).
void KvsMsgInit(KvsSessionRec* s, char command);
int KvsMsgsend(KvsSessionRec* s);
int KvsMsgrecv(KvsSessionRec* s);
int KvsSendBuf(KvsSessionRec* s, const void* data, std::size_t n);
// Exactly n bytes into the session buffer; 4 (logged) when fewer come.
int KvsRecv(KvsSessionRec* s, std::size_t n);
// One block of a stream, at most 32000 bytes, into the session buffer: its
// length, 0 for the 32-byte block that starts with "END", -1 on failure.
long KvsRecvData(KvsSessionRec* s);
int KvsSessionLog(int code, KvsSessionRec* s);
void KvsSessionDrop(KvsSessionRec* s);

// Table storage (database/kvs/KvsTable.cpp).
int KvsTableSend(KvsTableRec* t, char command);
int KvsTableReceive(KvsTableRec* t, KvsSessionRec* s);
long KvsArrayWriteRows(KvsArrayRec* a, const unsigned char* rows, long n);
long KvsArrayReadRows(KvsArrayRec* a, unsigned char* rows, long n);
// n rows of one column from row on, through the table's page list; writes
// add pages as needed.
// The column's minimum and maximum brought up to date.
int KvsArrayMinMax(KvsArrayRec* a);
bool KvsTableIo(KvsArrayRec* a, long row, unsigned char* p, long n, bool write);
std::vector<KvsArrayRec*> KvsArraysOf(KvsTableRec* t);
// The buffered rows of a column, or of every column of a table, written to
// the spool file; on failure they stay in the buffer.
int KvsArrayFlush(KvsArrayRec* a);
int KvsTableFlush(KvsTableRec* t);
// The clean step of a send. A table with keys loses every empty row; a
// table without keys is known by row position alone, so only its empty
// rows at the end go and no later row moves up into an emptied place.
int KvsSendClean(KvsTableRec* t);
// Spool files are kept at destruction while a batch phase saves its tree.
extern bool kvsKeepSpool;
// Spool files of destroyed tables are kept, a few at a time, for the next
// tables to write over: writing over a file's pages costs far less than
// growing a new file and dropping an old one. KvsSpoolTake gives one for a
// table whose file is to be called name ("" if none), KvsSpoolDrop removes
// them all (at exit).
void KvsSpoolRelease(const std::string& path);
std::string KvsSpoolTake(const std::string& name);
void KvsSpoolDrop();

}  // namespace kvs

#pragma once
// The Kvs client library: a tree of objects (root, session, dataset,
// table, array, parameter set) that reads and writes seismic project
// tables held by the kvsd daemon. Every function returns 0 (or a count)
// on success and an error code otherwise; each failure is logged through
// KvsPrintf as a text whose first two characters are its severity:
// "%I", "%W", "%E" or "%S". The library is not safe for threads.
#include <cstddef>
#include <string>
#include <vector>

#include "database/kvs/KvsParams.h"
#include "database/kvs/KvsResources.h"

namespace kvs {

struct KvsObjectRec;
using KvsObject = KvsObjectRec*;

// Error codes.
enum KvsCode {
  KvsOk = 0, KvsErrGeneral = 1, KvsErrServer = 3, KvsErrRecv = 4, KvsErrSend = 5, KvsErrNoConnection = 7,
  KvsErrClass = 8, KvsErrNoServer = 9, KvsErrNoHome = 10, KvsErrDict = 11, KvsErrNoProject = 12,
  KvsErrMandatory = 13, KvsErrNoData = 15
};

extern void (*KvsPrintf)(const char* text);
extern int kvsErrorNo;
extern std::string kvsErrorString;
extern const unsigned int kvsNull[2];  // 0xDEADBEEF, 0

int KvsError();
const char* KvsErrorString();

int KvsInit();
int KvsExit();
int KvsAbort();
KvsObject KvsRoot();
bool KvsIsObject(KvsObject o);

// Lists of resource code and value, ended by 0: text and data resources
// take pointers, the others long values. KvsGet takes pointers to where
// the values go (const char** for text).
KvsObject KvsCreate(KvsObject parent, ...);
KvsObject KvsOpen(KvsObject session, ...);
int KvsGet(KvsObject o, ...);
int KvsSet(KvsObject o, ...);

KvsObject KvsFind(KvsObject o, const char* name);
KvsObject KvsFirst(KvsObject o);
KvsObject KvsLast(KvsObject o);
KvsObject KvsNext(KvsObject o);
KvsObject KvsPrev(KvsObject o);
KvsObject KvsParent(KvsObject o);
const char* KvsDomain(KvsObject table);
const char* KvsType(KvsObject o);
int KvsIsKey(KvsObject array);

long KvsRead(KvsObject o, long n);
long KvsWrite(KvsObject o, long n);
int KvsFlush(KvsObject o);
int KvsLseek(KvsObject o, long row);
// The first row from the current one whose value equals *value (given in
// the caller's format), which becomes the current row; -1 if none.
long KvsLocate(KvsObject array, const void* value);
// 0 when every key column of the table holds a value on every row.
int KvsVerifyKeys(KvsObject table);
// 0 when every table of the dataset is whole: columns of one length, keys set.
int KvsCheck(KvsObject dataset);
// n numeric values from one format code to another, nulls kept as nulls.
int KvsConvert(const void* in, unsigned int fromFmt, void* out, unsigned int toFmt, long n);
int KvsClose(KvsObject o);
int KvsRemove(KvsObject o);
int KvsReplace(KvsObject o);
int KvsInsert(KvsObject o);
int KvsDelete(KvsObject o);
int KvsSelect(KvsObject dataset);
int KvsTest(KvsObject dataset);
int KvsProtect(KvsObject dataset);
int KvsRelease(KvsObject dataset);
// On success the session keeps the server's pid (KvsNspid), whether the
// connection is to a remote site (KvsNremote) and the site it reached
// first (KvsNdatasite).
int KvsConnect(KvsObject session);
int KvsDisconnect(KvsObject session);
// The database listener, host and port, that a connection reported last;
// blank and 0 while none has. Returns 0.
int KvsGetOracleHost(std::string& host, long* port);
// Replies may carry the server's two time figures: their sum over the
// process, and the seconds from the request to the last such reply.
extern double KvsDeltaT;
extern double kvsExchangeTime;
int KvsDefQuery(KvsObject dataset, const char* domain, const char* text);
int KvsUndefQuery(KvsObject dataset);
int KvsGetTree(KvsObject session, std::vector<std::string>& idents);

// The session the calls below go through; the first one made by default.
int _KvsSetSession(KvsObject session);
KvsObject KvsCurrentSession();
// The project names matching pattern (fnmatch), in one block that
// KvsHelper::free releases; site names the server's site and may be null.
int KvsListProjectSite(const char* site, const char* pattern, int* n, char*** list);
// The general record of a project: its datasets, in one block that
// KvsHelper::free releases.
struct KvsDatasetInfo {
  char type[8];
  char ident[16];
  char version[16];
  long created;  // seconds since the epoch
};
struct KvsBaseInfo {
  int count;
  KvsDatasetInfo* datasets;
};
int KvsBaseGetInfo(const char* project, const char* site, const char* server, KvsBaseInfo** info);
int KvsFindProject(const char* name, std::string& out);
int KvsExtractSiteServer(const char* name, std::string& site, std::string& server);

// Parameter sets: a table's child made with KvsNclass "SGD" or "SEIS".
int KvsParamPut(KvsObject params, const KvsParam& p);
const KvsParam* KvsParamFind(KvsObject params, const char* name);

// Resource files ("class.name: value" or "class*name: value" lines).
int KvsLoadRessources(const char* path);
const char* KvsParseRessources(const char* cls, const char* name);
std::string KvsExpendRessourcesBuf(const char* in);
std::string KvsFindRessourcesFile(const std::string& dir, const char* name);

// Housekeeping. KvsClean drops the rows whose every column is empty (null
// marker, or an all-zero text) from a table, and on a dataset also the
// tables left without rows. KvsFill brings the short columns of a table
// (or one column) up to the table's rows with nulls. KvsReorgTable lays
// the table file out again, pages full and in file order; KvsCompactTable
// is KvsClean and then KvsReorgTable. KvsCreateAttrIfNeed gives the column
// of that name, made when missing, as nulls in a table that has rows.
// KvsGroup merges the tables of one class in a dataset into the first.
// KvsRestore reads a dataset, or one table of it, back from the server,
// dropping what this process changed.
int KvsClean(KvsObject o);
int KvsFill(KvsObject o);
int KvsReorgTable(KvsObject table);
int KvsCompactTable(KvsObject table);
KvsObject KvsCreateAttrIfNeed(KvsObject table, const char* name);
int KvsGroup(KvsObject dataset);
int KvsRestore(KvsObject o);

// The object tree of this process saved to a file and read back (batch
// phases keep it in "Kvs.dmp" of the working directory between steps).
int KvsDump(const char* path);
int KvsLoad(const char* path);

// The word position (1 to 64) that a "KvsAttWord.<attribute>" resource of
// config.kvs gives an attribute in a batch step of status 1; 0 if none.
int KvsAttWord(const char* attribute);

// Counted allocation: kvsAllocated holds the bytes in use. A failure logs
// with the name of the object the memory was for and gives null.
extern long kvsAllocated;
void* KvsAlloc(std::size_t n, const char* object);
void* KvsRealloc(void* p, std::size_t n, const char* object);
void KvsFree(void* p);

// Internal: logs a formatted text and keeps its code.
int _KvsLog(int code, const char* format, ...);

}  // namespace kvs

#include <gtest/gtest.h>

#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <sstream>
#include <vector>

#include "database/kvs/Kvs.h"
#include "database/kvs/KvsHelper.h"
#include "database/kvs/KvsPage.h"
#include "database/kvs/KvsRef.h"
#include "database/kvs/KvsSocket.h"
#include "database/kvs/KvsTestPeer.h"

using namespace kvs;
namespace fs = std::filesystem;

namespace {

void (*const plainPrintf)(const char*) = KvsPrintf;

struct KvsHousekeeping : KvsServed {
  static long rows(KvsObject o) {
    long n = -1;
    KvsGet(o, KvsNsize, &n, 0L);
    return n;
  }
  template <class T = int>
  static std::vector<T> column(KvsObject a) {
    std::vector<T> v(static_cast<std::size_t>(rows(a)));
    KvsSet(a, KvsNdata, v.data(), 0L);
    KvsLseek(a, 0);
    EXPECT_EQ(KvsRead(a, static_cast<long>(v.size()) + 1), static_cast<long>(v.size()));
    return v;
  }
  static long spoolSize(KvsObject t) {
    const char* path = nullptr;
    KvsGet(t, KvsNfilename, &path, 0L);
    return static_cast<long>(fs::file_size(path));
  }
};

}  // namespace

TEST(KvsPages, ListEdits) {
  KvsPage* head = _KvsPageAlloc();
  EXPECT_EQ(KvsPageNbr(head), 0);
  head->used = 1024;
  KvsPage* b = KvsPageAppend(head);
  b->used = 500;
  EXPECT_EQ(b->index, 1);
  EXPECT_EQ(b->first, 1024);
  KvsPage* c = KvsPageAppend(b);
  EXPECT_EQ(KvsPageNbr(head), 2);  // the last page is empty
  EXPECT_EQ(KvsPos2Page(head, 1523), b);
  EXPECT_EQ(KvsPos2Page(head, 1524), c);
  EXPECT_EQ(KvsPos2Page(head, 1524 + 1024), nullptr);
  // A page put between keeps its own block at the end of the file.
  KvsPage* mid = KvsPageInsert(head);
  mid->used = 10;
  EXPECT_EQ(mid->index, 3);
  EXPECT_EQ(KvsPageRestore(head), 1534);
  EXPECT_EQ(b->first, 1034);
  EXPECT_EQ(KvsPos2Page(c, 1030), mid);
  EXPECT_EQ(KvsPos2Page(c, 1034), b);
  head = KvsPageRemove(head);
  EXPECT_EQ(head, mid);
  EXPECT_EQ(b->first, 10);
  EXPECT_EQ(KvsPageBottom(head), c);
  EXPECT_EQ(c->head, mid);
  EXPECT_EQ(KvsPageAppend(head)->index, 4);
  head = KvsPageRaz(c);
  EXPECT_EQ(head, mid);
  EXPECT_EQ(head->next, nullptr);
  EXPECT_EQ(KvsPageAppend(head)->index, 1);
  KvsPageFree(head);
}

// The counts are the by-reference forms' to show; a block too big fails with
// the library's text.
TEST(KvsAlloc, FailureText) {
  KvsTestCapture();
  EXPECT_EQ(KvsAlloc(SIZE_MAX - 8, "Table"), nullptr);
  EXPECT_EQ(KvsTestLog().back(), "%S Kvs Package could not allocate memory for object Table");
}

// Empty rows dropped, the file packed, a column added to a table with
// rows, short columns filled, tables of one class grouped; the result sent,
// changed locally and read back from the server.
TEST_F(KvsHousekeeping, TablesCleanedPackedGroupedAndRestored) {
  init();
  KvsObject ds = KvsOpen(session, KvsNmode, 2L, KvsNtype, "SEIS", KvsNident, "H", 0L);
  KvsObject a = KvsCreate(ds, KvsNname, "SHOTS", 0L);
  std::vector<int> shot(2500);
  std::vector<float> x(2500);
  std::vector<int> kept;
  for (int i = 0; i < 2500; ++i) {
    bool drop = i < 2000 && i % 3 == 1;
    shot[i] = i, x[i] = float(i);
    if (drop) std::memcpy(&shot[i], kvsNull, 4), std::memcpy(&x[i], kvsNull, 4);
    else kept.push_back(i);
  }
  KvsObject sa = KvsCreate(a, KvsNname, "SHOT", KvsNdata, shot.data(), 0L);
  KvsCreate(a, KvsNname, "X", KvsNdata, x.data(), 0L);
  ASSERT_EQ(KvsWrite(a, 2500), 2500);
  // Pages of 1024 rows, a column's block after the other: the file ends
  // in the last column's block of the last page.
  long full = 8 * 1024, tail = 2500 - 2048, left = long(kept.size()) - 1024;
  ASSERT_EQ(spoolSize(a), 2 * full + 4 * 1024 + 4 * tail);
  ASSERT_EQ(KvsClean(a), 0);
  EXPECT_EQ(rows(a), long(kept.size()));
  EXPECT_EQ(column(sa), kept);
  EXPECT_EQ(spoolSize(a), 2 * full + 4 * 1024 + 4 * tail);  // pages partly used, in place
  ASSERT_EQ(KvsReorgTable(a), 0);
  EXPECT_EQ(spoolSize(a), full + 4 * 1024 + 4 * left);
  EXPECT_EQ(column(sa), kept);
  EXPECT_EQ(KvsCreateAttrIfNeed(a, "X"), KvsFind(a, "X"));
  KvsObject z = KvsCreateAttrIfNeed(a, "Z");
  ASSERT_NE(z, nullptr) << KvsErrorString();
  EXPECT_EQ(rows(z), long(kept.size()));
  EXPECT_EQ(spoolSize(a), 2 * full + 8 * 1024 + 8 * left);
  EXPECT_EQ(column(sa), kept);
  // A second SHOTS table with a short column.
  KvsObject b = KvsCreate(ds, KvsNname, "SHOTS", 0L);
  int bshot[3] = {9000, 9001, 9002};
  double bz[1] = {2.5};
  KvsObject bsa = KvsCreate(b, KvsNname, "SHOT", KvsNdata, bshot, 0L);
  KvsObject bzz = KvsCreate(b, KvsNname, "Z", KvsNdata, bz, 0L);
  ASSERT_EQ(KvsWrite(bsa, 3), 3);
  ASSERT_EQ(KvsWrite(bzz, 1), 1);
  EXPECT_EQ(KvsCheck(ds), 1);
  ASSERT_EQ(KvsFill(b), 0);
  EXPECT_EQ(rows(bzz), 3);
  EXPECT_EQ(KvsCheck(ds), 0) << KvsErrorString();
  EXPECT_EQ(KvsGroup(a), KvsErrClass);
  ASSERT_EQ(KvsGroup(ds), 0) << KvsErrorString();
  ASSERT_EQ(KvsFirst(ds), KvsLast(ds));
  kept.insert(kept.end(), bshot, bshot + 3);
  EXPECT_EQ(column(sa), kept);
  std::vector<double> zs = column<double>(z);
  ASSERT_EQ(zs.size(), kept.size());
  EXPECT_EQ(std::memcmp(&zs[0], kvsNull, 8), 0);
  EXPECT_EQ(zs[zs.size() - 3], 2.5);
  EXPECT_EQ(std::memcmp(&zs.back(), kvsNull, 8), 0);
  ASSERT_EQ(KvsReplace(ds), 0) << KvsErrorString();
  // Local changes, then the server's copy again: one table, then all.
  int more[2] = {20000, 20001};
  KvsSet(sa, KvsNdata, more, 0L);
  ASSERT_EQ(KvsWrite(sa, 2), 2);
  ASSERT_EQ(KvsFill(a), 0);
  EXPECT_EQ(rows(z), long(kept.size()) + 2);
  ASSERT_EQ(KvsRestore(a), 0) << KvsErrorString();
  EXPECT_EQ(rows(KvsFind(ds, "SHOTS")), long(kept.size()));
  ASSERT_NE(KvsCreate(ds, KvsNname, "RCVS", 0L), nullptr);
  ASSERT_EQ(KvsRestore(ds), 0);
  EXPECT_EQ(KvsFirst(ds), KvsLast(ds));
  EXPECT_EQ(column(KvsFind(KvsFirst(ds), "SHOT")), kept);
  // Sent again as read: the column bounds in the array records are those
  // of the rows, found when they are needed.
  ASSERT_EQ(KvsReplace(ds), 0) << KvsErrorString();
  std::ostringstream bytes;
  for (auto& e : fs::recursive_directory_iterator(scratch.root + "/kvsd"))
    if (e.path().filename() == "SHOTS.tab") bytes << std::ifstream(e.path(), std::ios::binary).rdbuf();
  std::string const file = bytes.str();
  ASSERT_GT(file.size(), 516u);
  // The table record, the parameters' length and block, then the SHOT column's record.
  std::size_t const rec = 516 + KvsGetBE32(reinterpret_cast<const unsigned char*>(&file[512]));
  ASSERT_LT(rec + 384, file.size());
  EXPECT_EQ(file.substr(rec + 224, 5) + file.substr(rec + 352, 2) + file.substr(rec + 368, 5),
            std::string("SHOT\0" "0\0" "9002\0", 12));
  EXPECT_EQ(KvsCompactTable(ds), KvsErrClass);
}

// A job's steps as the same process would run them one after another: the
// tree and its spool files pass from step to step, and only the last step
// talks to the server.
TEST_F(KvsHousekeeping, BatchStepsHandTheTreeOn) {
  std::string job = scratch.root + "/job";
  fs::create_directories(job);
  std::string was = fs::current_path();
  fs::current_path(job);
  KvsPrintf = plainPrintf;
  setenv("JOBN", "42", 1);
  setenv("PROJECT", "proj", 1);
  setenv("STEP", "PP", 1);
  init();
  const char* client = nullptr;
  KvsGet(KvsRoot(), KvsNclient, &client, 0L);
  EXPECT_STREQ(client, "     42");
  long fd = 0;
  KvsGet(session, KvsNsocket, &fd, 0L);
  EXPECT_EQ(fd, -1);
  EXPECT_EQ(KvsOpen(session, KvsNident, "J", 0L), nullptr);
  KvsExit();
  std::string line;
  std::getline(std::ifstream(job + "/LIST"), line);
  EXPECT_EQ(line, "%E resource KvsNmode is mandatory in KvsOpen() call");
  EXPECT_FALSE(fs::exists(job + "/KVS/Kvs.dmp"));

  setenv("STEP", "XC", 1);
  init();
  KvsObject ds = KvsOpen(session, KvsNmode, 2L, KvsNtype, "SEIS", KvsNident, "J", 0L);
  KvsObject t = KvsCreate(ds, KvsNname, "SHOTS", 0L);
  std::vector<int> shot(1510);
  std::iota(shot.begin(), shot.end(), 0);
  KvsCreate(t, KvsNname, "SHOT", KvsNdata, shot.data(), 0L);
  ASSERT_EQ(KvsWrite(t, 1500), 1500);
  ASSERT_EQ(KvsExit(), 0);
  ASSERT_TRUE(fs::exists(job + "/KVS/Kvs.dmp"));

  // Word positions from config.kvs, taken in the steps of status 1.
  std::ofstream(scratch.root + "/config.kvs", std::ios::app) << "KvsAttWord.SHOT: 3\nKvsAttWord*X: 70\n";
  KvsTestCapture();
  setenv("STEP", "AX1", 1);
  init();
  EXPECT_EQ(KvsAttWord("SHOT"), 3);
  EXPECT_EQ(KvsAttWord("X"), 0);
  EXPECT_EQ(KvsTestLog(), std::vector<std::string>{"%E value 70 outside of limits"});
  t = KvsFind(KvsFirst(session), "SHOTS");
  EXPECT_EQ(rows(t), 1500);
  KvsSet(KvsFind(t, "SHOT"), KvsNdata, shot.data() + 1500, 0L);
  ASSERT_EQ(KvsWrite(t, 10), 10);
  ASSERT_EQ(KvsExit(), 0);

  setenv("STEP", "AX2", 1);
  init();
  KvsGet(session, KvsNsocket, &fd, 0L);
  EXPECT_GE(fd, 0);
  ds = KvsFirst(session);
  EXPECT_EQ(column(KvsFind(KvsFind(ds, "SHOTS"), "SHOT")).back(), 1509);
  ASSERT_EQ(KvsReplace(ds), 0) << KvsErrorString();
  KvsExit();
  EXPECT_FALSE(fs::exists(job + "/KVS/Kvs.dmp"));
  EXPECT_TRUE(fs::is_empty(job + "/KVS"));
  // A saved tree that does not read back stops the step with an error.
  std::ofstream(job + "/KVS/Kvs.dmp") << "kvsdump 1\nS 7g -\n";
  setenv("STEP", "AX1", 1);
  EXPECT_EQ(KvsInit(), 1);
  EXPECT_EQ(std::string(KvsErrorString()), "%E Could not read saved object tree " + job + "/KVS/Kvs.dmp");
  for (const char* name : {"JOBN", "STEP", "PROJECT"}) unsetenv(name);
  fs::current_path(was);
  KvsTestCapture();
  init();
  ds = KvsOpen(session, KvsNmode, 1L, KvsNtype, "SEIS", KvsNident, "J", 0L);
  EXPECT_EQ(column(KvsFind(KvsFind(ds, "SHOTS"), "SHOT")), shot);
}

// The same session driven through the by-reference forms: blank-padded
// texts with their lengths in kvsStrLen.
TEST_F(KvsHousekeeping, ByReferenceForms) {
  ASSERT_EQ(kvsinit_(), 0);
  KvsObject s = kvsfirst_(&(session = kvsroot_()));
  long mode = 2, type = KvsNtype, ident = KvsNident, m = KvsNmode, name = KvsNname, data = KvsNdata;
  kvsStrLen[0] = 8, kvsStrLen[1] = 6;
  KvsObject ds = kvsopen_(&s, &m, &mode, &type, "SEIS    ", &ident, "R1    ", nullptr);
  ASSERT_NE(ds, nullptr) << KvsErrorString();
  kvsStrLen[0] = 10;
  KvsObject t = kvscreate_(&ds, &name, "SHOTS     ", nullptr);
  ASSERT_NE(t, nullptr) << KvsErrorString();
  int shot[3] = {7, 8, 9};
  kvsStrLen[0] = 4;
  KvsObject a = kvscreate_(&t, &name, "SHOT", &data, shot, nullptr);
  ASSERT_NE(a, nullptr) << KvsErrorString();
  long n = 3;
  EXPECT_EQ(kvswrite_(&t, &n), 3);
  ASSERT_EQ(kvsreplace_(&ds), 0) << KvsErrorString();
  ASSERT_EQ(kvsclose_(&ds), 0);
  mode = 1;
  kvsStrLen[0] = 4, kvsStrLen[1] = 2;
  ds = kvsopen_(&s, &m, &mode, &type, "SEIS", &ident, "R1", nullptr);
  ASSERT_NE(ds, nullptr);
  kvsStrLen[0] = 5;
  t = kvsfind_(&ds, "SHOTS");
  char cls[12];
  long size = 0, sz = KvsNsize, tcls = KvsNclass;
  kvsStrLen[0] = sizeof cls;
  EXPECT_EQ(kvsget_(&t, &tcls, cls, &sz, &size, nullptr), 0);
  EXPECT_EQ(std::string(cls, sizeof cls), "SHOTS       ");
  EXPECT_EQ(size, 3);
  char dom[6];
  kvsStrLen[0] = sizeof dom;
  EXPECT_EQ(kvsdomain_(&t, dom), 0);
  EXPECT_EQ(std::string(dom, sizeof dom), "SHOT  ");
  kvsStrLen[0] = 8;
  EXPECT_EQ(kvsdttab_("RCVS    "), 2);
  EXPECT_EQ(kvsgroup_(&t), KvsErrClass);
  EXPECT_EQ(kvsexit_(), 0);
}

// Sending cleans: a table without keys keeps its empty rows between
// others (its rows are known by position) and loses those at its end; a
// table keyed by text loses its empty rows wherever they are.
TEST_F(KvsHousekeeping, SendCleansByKeysAndSmallerTablesReplaceLarger) {
  init();
  KvsObject ds = KvsOpen(session, KvsNmode, 2L, KvsNtype, "SEIS", KvsNident, "C", 0L);
  KvsObject notes = KvsCreate(ds, KvsNname, "NOTES", 0L);
  std::vector<int> shot(1030);
  std::iota(shot.begin(), shot.end(), 0);
  for (int i : {1, 1025, 1026, 1027, 1028, 1029}) std::memcpy(&shot[i], kvsNull, 4);
  KvsCreate(notes, KvsNname, "SHOT", KvsNdata, shot.data(), 0L);
  ASSERT_EQ(KvsWrite(notes, 1030), 1030);
  KvsObject named = KvsCreate(ds, KvsNname, "NAMED", 0L);
  char names[3][8] = {"a", "", "c"};
  float x[3] = {1, 0, 3};
  std::memcpy(&x[1], kvsNull, 4);
  KvsCreate(named, KvsNname, "NAME", KvsNdata, names, 0L);
  KvsCreate(named, KvsNname, "X", KvsNdata, x, 0L);
  ASSERT_EQ(KvsWrite(named, 3), 3);
  ASSERT_EQ(KvsReplace(ds), 0) << KvsErrorString();
  EXPECT_EQ(rows(notes), 1025);
  EXPECT_EQ(rows(named), 2);
  ASSERT_EQ(KvsClose(ds), 0);
  ds = KvsOpen(session, KvsNmode, 1L, KvsNtype, "SEIS", KvsNident, "C", 0L);
  ASSERT_NE(ds, nullptr) << KvsErrorString();
  shot.resize(1025);
  EXPECT_EQ(column(KvsFind(KvsFind(ds, "NOTES"), "SHOT")), shot);
  using Name = std::array<char, 8>;
  EXPECT_EQ(column<Name>(KvsFind(KvsFind(ds, "NAMED"), "NAME")), (std::vector<Name>{{'a'}, {'c'}}));
  // The server's records through the by-reference forms, in blocks of the
  // counted allocation that KvsHelper gives back whole.
  long const held = kvsAllocated;
  KvsBaseInfo* info = nullptr;
  kvsStrLen[0] = 6, kvsStrLen[1] = 0, kvsStrLen[2] = 0;
  ASSERT_EQ(kvsbasegetinfo_("proj  ", nullptr, nullptr, &info), 0);
  ASSERT_EQ(info->count, 1);
  EXPECT_EQ(std::string(info->datasets[0].type) + info->datasets[0].ident, "SEISC");
  EXPECT_GT(kvsAllocated, held);
  KvsHelper::free(info);
  int n = 0;
  char** list = nullptr;
  kvsStrLen[0] = 0, kvsStrLen[1] = 4;
  ASSERT_EQ(kvslistprojectsite_(nullptr, "pr* ", &n, &list), 0);
  ASSERT_EQ(n, 1);
  EXPECT_STREQ(list[0], "proj");
  KvsHelper::free(list);
  EXPECT_EQ(kvsAllocated, held);
  // The same table replaced by smaller ones: each read back whole, over
  // files the daemon and the library write over.
  for (long m : {2000L, 1000L, 1500L}) {
    KvsObject big = KvsOpen(session, KvsNmode, 2L, KvsNtype, "SEIS", KvsNident, "BIG", 0L);
    KvsObject t = KvsCreate(big, KvsNname, "RCVS", 0L);
    std::vector<float> y(static_cast<std::size_t>(m), float(m));
    KvsCreate(t, KvsNname, "X", KvsNdata, y.data(), 0L);
    ASSERT_EQ(KvsWrite(t, m), m);
    ASSERT_EQ(KvsReplace(big), 0) << KvsErrorString();
    KvsClose(big);
    big = KvsOpen(session, KvsNmode, 1L, KvsNtype, "SEIS", KvsNident, "BIG", 0L);
    EXPECT_EQ(column<float>(KvsFind(KvsFind(big, "RCVS"), "X")), y) << m;
    KvsClose(big);
  }
}

// Rows written one at a time wait in the column's buffer until a page of
// them is full, or KvsFlush; reads see them either way, and a daemon killed
// while rows wait loses none of them.
TEST_F(KvsHousekeeping, WriteBufferFlushAndDaemonKilled) {
  int port = std::atoi(getenv("KVSPORT"));
  init();
  KvsObject ds = KvsOpen(session, KvsNmode, 2L, KvsNtype, "SEIS", KvsNident, "B", 0L);
  KvsObject t = KvsCreate(ds, KvsNname, "SHOTS", 0L);
  int v = 0;
  KvsObject a = KvsCreate(t, KvsNname, "SHOT", KvsNdata, &v, 0L);
  std::vector<int> want;
  auto put = [&](int n) {
    for (int i = 0; i < n; ++i, want.push_back(v++)) ASSERT_EQ(KvsWrite(a, 1), 1);
  };
  put(1030);
  EXPECT_EQ(spoolSize(t), 4 * 1024);  // the first page went out when full
  EXPECT_EQ(rows(t), 1030);
  EXPECT_EQ(column(a), want);
  KvsSet(a, KvsNdata, &v, 0L);
  put(3);
  long before = spoolSize(t);
  ASSERT_EQ(KvsFlush(t), 0);
  EXPECT_EQ(spoolSize(t), before + 12);
  EXPECT_EQ(KvsFlush(ds), KvsErrClass);
  put(5);
  kvsd.stop(SIGKILL);
  EXPECT_NE(KvsReplace(ds), 0);
  EXPECT_EQ(rows(t), 1038);
  ASSERT_EQ(kvsd.start(port), port);
  ASSERT_EQ(KvsReplace(ds), 0) << KvsErrorString();
  ASSERT_EQ(KvsClose(ds), 0);
  ds = KvsOpen(session, KvsNmode, 1L, KvsNtype, "SEIS", KvsNident, "B", 0L);
  ASSERT_NE(ds, nullptr) << KvsErrorString();
  EXPECT_EQ(column(KvsFind(KvsFind(ds, "SHOTS"), "SHOT")), want);
}

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <vector>

#include "database/kvs/Kvs.h"
#include "database/kvs/KvsTestPeer.h"

using namespace kvs;

namespace {

struct KvsClient : KvsServed {
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(KvsServed::SetUp());
    init();
  }
  // The columns of a SHOTS table of n rows, of every kind, or empty; a null in Z.
  struct Shots {
    std::vector<int> shot;
    std::vector<float> x;
    std::vector<double> z;
    std::vector<char> name;
    explicit Shots(long n) : shot(n), x(n), z(n), name(8 * n) {}
    Shots(long n, const char* odd, const char* even) : Shots(n) {
      for (long i = 0; i < n; ++i) {
        shot[i] = int(i), x[i] = 0.5f * i, z[i] = -1.0 * i;
        std::memcpy(&name[8 * i], i % 2 ? odd : even, 8);
      }
      std::memcpy(&z[1], kvsNull, 8);
    }
  };
  // The table and one parameter.
  KvsObject writeShots(const char* ident, long n) {
    KvsObject ds = KvsOpen(session, KvsNmode, 2L, KvsNtype, "SEIS", KvsNident, ident, KvsNversion, "v1", 0L);
    KvsObject t = KvsCreate(ds, KvsNname, "SHOTS", 0L);
    Shots s(n, "ab.c--  ", "S1234567");
    KvsCreate(t, KvsNname, "SHOT", KvsNdata, s.shot.data(), 0L);
    KvsCreate(t, KvsNname, "X", KvsNdata, s.x.data(), 0L);
    KvsCreate(t, KvsNname, "Z", KvsNdata, s.z.data(), 0L);
    KvsCreate(t, KvsNname, "NAME", KvsNdata, s.name.data(), 0L);
    KvsParamPut(KvsCreate(t, KvsNclass, "SGD", 0L), KvsParam{"NX", "", "INT", "", false, 77, 0, 0, ""});
    EXPECT_EQ(KvsWrite(t, n), n);
    return ds;
  }
  void expectShots(const char* ident, long n) {
    KvsObject ds = KvsOpen(session, KvsNmode, 1L, KvsNtype, "SEIS", KvsNident, ident, KvsNversion, "v1", 0L);
    ASSERT_NE(ds, nullptr) << KvsErrorString();
    KvsObject t = KvsFind(ds, "SHOTS");
    Shots got(n), want(n, "ab.c\0\0\0", "S123456");
    KvsSet(KvsFind(t, "SHOT"), KvsNdata, got.shot.data(), 0L);
    KvsSet(KvsFind(t, "X"), KvsNdata, got.x.data(), 0L);
    KvsSet(KvsFind(t, "Z"), KvsNdata, got.z.data(), 0L);
    KvsSet(KvsFind(t, "NAME"), KvsNdata, got.name.data(), 0L);
    ASSERT_EQ(KvsRead(t, n + 5), n);
    EXPECT_EQ(got.shot, want.shot);
    EXPECT_EQ(got.x, want.x);
    EXPECT_EQ(std::memcmp(got.z.data(), want.z.data(), 8 * n), 0);
    EXPECT_EQ(got.name, want.name);
    EXPECT_EQ(KvsIsKey(KvsFind(t, "SHOT")), 1);
    const KvsParam* nx = KvsParamFind(KvsFind(t, "SGD"), "NX");
    ASSERT_NE(nx, nullptr);
    EXPECT_EQ(nx->i, 77);
    KvsClose(ds);
  }
  static long children(KvsObject o) {
    long n = -1;
    KvsGet(o, KvsNnumChildren, &n, 0L);
    return n;
  }
  bool logged(const std::string& line) {
    for (const std::string& l : KvsTestLog())
      if (l == line) return true;
    return false;
  }
};

}  // namespace

TEST_F(KvsClient, TablesRoundTripSurviveRestartAndFailWhenCut) {
  const char* project = nullptr;
  const char* site = nullptr;
  long remote = -1;
  KvsGet(session, KvsNproject, &project, KvsNdatasite, &site, KvsNremote, &remote, 0L);
  // The daemon serves the site asked for, as a local one.
  EXPECT_EQ(std::string(project) + "|" + site + "|" + std::to_string(remote), "proj|siteA|0");
  KvsObject ds = writeShots("L1", 20000);  // columns of several pages and chunks
  ASSERT_EQ(KvsReplace(ds), 0) << KvsErrorString();
  EXPECT_TRUE(logged("%I SEIS L1 v1 for SHOTS successfully replaced"));
  KvsClose(ds);
  expectShots("L1", 20000);
  ASSERT_NO_FATAL_FAILURE(restart());
  expectShots("L1", 20000);
  std::vector<std::string> idents;
  EXPECT_EQ(KvsGetTree(session, idents), 0);
  EXPECT_EQ(idents, std::vector<std::string>{"L1"});
  // The table file cut short under the daemon: the reader gets an error,
  // not a hang, and the daemon goes on serving.
  int cut = 0;
  for (auto& e : std::filesystem::recursive_directory_iterator(scratch.root + "/kvsd"))
    if (e.path().extension() == ".tab") std::filesystem::resize_file(e.path(), e.file_size() - 1000), ++cut;
  ASSERT_EQ(cut, 1);
  EXPECT_EQ(KvsOpen(session, KvsNmode, 1L, KvsNtype, "SEIS", KvsNident, "L1", KvsNversion, "v1", 0L), nullptr);
  EXPECT_EQ(KvsError(), 4);
  EXPECT_TRUE(logged("%E Could not receive data from server on 127.0.0.1")) << KvsErrorString();
  EXPECT_EQ(KvsReplace(writeShots("OK", 10)), 0) << KvsErrorString();
}

TEST_F(KvsClient, SelectWithConditionsAndRowsInKeyOrder) {
  KvsObject ds = writeShots("L2", 10);
  KvsObject r = KvsCreate(ds, KvsNname, "RCVS", 0L);
  int id[3] = {4, 5, 6};
  KvsCreate(r, KvsNname, "SHOT", KvsNdata, id, 0L);
  ASSERT_EQ(KvsWrite(r, 3), 3);
  ASSERT_EQ(KvsInsert(ds), 0) << KvsErrorString();
  KvsClose(ds);
  ds = KvsOpen(session, KvsNmode, 2L, KvsNtype, "SEIS", KvsNident, "L2", KvsNversion, "v1", 0L);
  KvsDefQuery(ds, "RCV", "");
  ASSERT_EQ(KvsSelect(ds), 0) << KvsErrorString();
  ASSERT_EQ(children(ds), 1);
  EXPECT_STREQ(KvsDomain(KvsFirst(ds)), "RCV");
  KvsUndefQuery(ds);
  KvsDefQuery(ds, "KVSOPEN", "SHOTS");
  ASSERT_EQ(KvsSelect(ds), 0);
  ASSERT_EQ(children(ds), 1);
  EXPECT_STREQ(KvsType(KvsFirst(ds)), "SHOTS");
  // Rows travel in key order.
  ds = KvsOpen(session, KvsNmode, 2L, KvsNtype, "SEIS", KvsNident, "K", 0L);
  KvsObject t = KvsCreate(ds, KvsNname, "SHOTS", 0L);
  int shot[4] = {3, 1, 4, 2};
  float x[4] = {30, 10, 40, 20};
  KvsCreate(t, KvsNname, "SHOT", KvsNdata, shot, 0L);
  KvsCreate(t, KvsNname, "X", KvsNdata, x, 0L);
  ASSERT_EQ(KvsWrite(t, 4), 4);
  ASSERT_EQ(KvsReplace(ds), 0);
  KvsClose(ds);
  ds = KvsOpen(session, KvsNmode, 1L, KvsNtype, "SEIS", KvsNident, "K", 0L);
  t = KvsFind(ds, "SHOTS");
  KvsSet(KvsFind(t, "SHOT"), KvsNdata, shot, 0L);
  KvsSet(KvsFind(t, "X"), KvsNdata, x, 0L);
  ASSERT_EQ(KvsRead(t, 4), 4);
  EXPECT_EQ(std::vector<int>(shot, shot + 4), (std::vector<int>{1, 2, 3, 4}));
  EXPECT_EQ(std::vector<float>(x, x + 4), (std::vector<float>{10, 20, 30, 40}));
  // The same column read as doubles, and a row found by value.
  KvsObject col = KvsFind(t, "X");
  double dx[4] = {}, twenty = 20;
  KvsSet(col, KvsNfmt, "DBL", KvsNdata, dx, 0L);
  KvsLseek(col, 0);
  ASSERT_EQ(KvsRead(col, 4), 4);
  EXPECT_EQ(dx[3], 40.0);
  KvsLseek(col, 0);
  EXPECT_EQ(KvsLocate(col, &twenty), 1);
  twenty = 25;
  EXPECT_EQ(KvsLocate(col, &twenty), -1);
}

// A table whose columns differ in length, or whose key has a null, stays
// home; then the other refusals and their texts.
TEST_F(KvsClient, ErrorsCarryTheirTexts) {
  KvsObject nk = KvsOpen(session, KvsNmode, 2L, KvsNtype, "SEIS", KvsNident, "NK", 0L);
  KvsObject t = KvsCreate(nk, KvsNname, "SHOTS", 0L);
  std::vector<int> shot(1500, 7);
  std::memcpy(&shot[1100], kvsNull, 4);
  float x[3] = {};
  KvsObject s = KvsCreate(t, KvsNname, "SHOT", KvsNdata, shot.data(), 0L);
  KvsObject a = KvsCreate(t, KvsNname, "X", KvsNdata, x, 0L);
  ASSERT_EQ(KvsWrite(s, 1500), 1500);
  ASSERT_EQ(KvsWrite(a, 3), 3);
  EXPECT_EQ(KvsCheck(t), KvsErrClass);
  EXPECT_EQ(KvsCheck(nk), 1);
  EXPECT_EQ(KvsTestLog().back(), "%E Column X of table SHOTS has 3 rows, not 1500");
  EXPECT_EQ(KvsVerifyKeys(session), KvsErrClass);
  EXPECT_EQ(KvsVerifyKeys(t), 1);
  EXPECT_EQ(KvsTestLog().back(), "%E Key SHOT of table SHOTS is null at row 1100");
  EXPECT_NE(KvsReplace(nk), 0);
  KvsClose(nk);
  EXPECT_EQ(KvsTest(KvsOpen(session, KvsNmode, 1L, KvsNtype, "SEIS", KvsNident, "NK", 0L)), 15);
  KvsObject ds = writeShots("L3", 5);
  ASSERT_EQ(KvsInsert(ds), 0);
  EXPECT_EQ(KvsInsert(ds), 1);
  EXPECT_TRUE(logged("%E From Server :\n       Table SHOTS already exists"));
  EXPECT_TRUE(logged("%W SEIS L3 v1 for SHOTS could not be replaced"));
  EXPECT_EQ(KvsWrite(KvsFirst(ds), 0), -1);
  EXPECT_EQ(std::string(KvsErrorString()), "%E bad argument length : 0 to routine KvsWrite");
  EXPECT_EQ(KvsSelect(KvsFirst(ds)), 8);
  EXPECT_EQ(std::string(KvsErrorString()), "%E KvsSelect : argument object should be Dataset KvsObject class");
  EXPECT_EQ(KvsCreate(ds, KvsNname, "NOPE", 0L), nullptr);
  EXPECT_EQ(std::string(KvsErrorString()), "%E The class NOPE is unknown in the dictionnary");
  EXPECT_EQ(KvsCreate(KvsFirst(ds), KvsNname, "X", 0L), nullptr);
  EXPECT_EQ(std::string(KvsErrorString()), "%E cannot create new Array : Table already updated");
  EXPECT_EQ(KvsOpen(session, KvsNident, "L3", 0L), nullptr);
  EXPECT_EQ(std::string(KvsErrorString()), "%E resource KvsNmode is mandatory in KvsOpen() call");
  KvsObject none = KvsOpen(session, KvsNmode, 1L, KvsNtype, "SEIS", KvsNident, "none", 0L);
  ASSERT_NE(none, nullptr);
  EXPECT_EQ(KvsError(), 15);
  EXPECT_EQ(std::string(KvsErrorString()), "%I No data selected in database for dataset none");
  EXPECT_EQ(KvsTest(none), 15);
  EXPECT_EQ(KvsDelete(ds), 0);
  EXPECT_EQ(KvsTest(ds), 15);
}

TEST(KvsConfig, ResourcesAndInitFailures) {
  // A process that cannot say who it is ends at once; before any other
  // KvsInit, as what a process is gets gathered only once. Taking a user
  // with no password entry needs root. The message comes first; a build
  // with coverage adds lines after it that the new user cannot write.
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        unsetenv("USER");
        unsetenv("HOME");
        uid_t nobody = 60000;
        while (getpwuid(nobody)) ++nobody;
        if (setuid(nobody) != 0) std::exit(3);
        KvsInit();
      },
      ::testing::ExitedWithCode(255), "^INITIALISATION ERROR -Aborting-\n");
  KvsScratch scratch;
  KvsTestCapture();
  std::string file = scratch.root + "/res";
  std::ofstream(file) << "Kvs*server: db1\n #skipped\n*host: h2\nKvs.path:  $KVS_UNSET_VAR/x${KVSBASE}\n";
  unsetenv("KVS_UNSET_VAR");
  ASSERT_EQ(KvsLoadRessources(file.c_str()), 3);
  EXPECT_STREQ(KvsParseRessources("Kvs", "server"), "db1");
  EXPECT_STREQ(KvsParseRessources("Kvs", "host"), "h2");
  EXPECT_STREQ(KvsParseRessources("Kvs", "path"), "/xkvsbase");
  EXPECT_EQ(KvsParseRessources("Other", "server"), nullptr);
  // A server name with a blank is ignored.
  std::ofstream(scratch.root + "/config.kvs") << "Kvs.server: db 1\nKvs.base: b\n";
  EXPECT_EQ(KvsInit(), 9);
  EXPECT_EQ(KvsTestLog().back(), "%S Could not find server Name");
  unsetenv("KVSPROJ");
  EXPECT_EQ(KvsInit(), 12);
  EXPECT_EQ(KvsTestLog().back(), "%S Unable to get Project Account Name");
  setenv("KVSDICT", "/nonexistent/KvsDict.bin", 1);
  setenv("KVSPROJ", "p", 1);
  std::ofstream(scratch.root + "/config.kvs") << "Kvs.server: db1\nKvs.base: b\n";
  EXPECT_EQ(KvsInit(), 11);
  EXPECT_EQ(KvsTestLog().back(), "%S Could not find dictionnary");
  unsetenv("KVSROOT");
  EXPECT_EQ(KvsInit(), 10);
  EXPECT_EQ(KvsTestLog().back(), "%S Could not find KVSHOME directory");
}

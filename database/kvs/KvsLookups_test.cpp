#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "database/kvs/Kvs.h"
#include "database/kvs/KvsDict.h"
#include "database/kvs/KvsRef.h"
#include "database/kvs/KvsTestPeer.h"

using namespace kvs;

namespace {

// A dictionary with every kind of element, written to a file and read.
struct KvsFullDict : ::testing::Test {
  KvsScratch scratch;
  void SetUp() override {
    std::vector<KvsDtElement> d[KvsDtKinds];
    d[KvsDtAttKind] = {{"SHOT", 1, KvsFmtINT, 4}, {"X", 2, KvsFmtFLT, 4}, {"XR", 3, KvsFmtFLT, 4}, {"NAME", 4, 0, 8}};
    d[KvsDtTypKind] = {{"SEIS", 1}};
    d[KvsDtTabKind] = {{"SHOTS", 1, 1, 1}, {"SPS", 2, 1, 1}, {"SPSX", 3, 1, 1}, {"LOOP", 4, 2, 0}};
    d[KvsDtDomKind] = {{"SHOT", 1, 1}, {"SHRC", 2, 1, 2}};
    d[KvsDtFamKind] = {{"COORD", 7}};
    d[KvsDtDimKind] = {{"LENGTH", 3}};
    d[KvsDtFmtKind] = {{"FLT", 5}};
    d[KvsDtParKind] = {{"SAMPRATE", 9}};
    d[KvsDtAttDetKind] = {{"%10.2f", 3, 7, 3, 2}};
    d[KvsDtMemberKind] = {{"", 2, 2}, {"", 3, 3}};
    d[KvsDtSubKind] = {{"", 3, 2}, {"", 2, 1}, {"", 4, 5}, {"", 5, 4}};
    std::vector<unsigned char> bytes = KvsDtBuild(d);
    std::ofstream(scratch.root + "/KvsDict.bin", std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    ASSERT_EQ(_KvsDtLoad(scratch.root + "/KvsDict.bin"), 0);
  }
};

std::string str(const char* p) { return p ? p : "(null)"; }

}  // namespace

TEST_F(KvsFullDict, EveryLookUp) {
  struct Case {
    const char* what;
    std::string got, want;
  } cases[] = {
      {"par name", str(KvsDtParName(9)), "SAMPRATE"},
      {"unknown par", str(KvsDtParName(1)), "(null)"},
      {"att fam", std::to_string(KvsDtAttFam(3)), "7"},
      {"att without detail", std::to_string(KvsDtAttFam(2)), "0"},
      {"ascii given", str(KvsDtAttAsciiFmt(3)), "%10.2f"},
      {"ascii of INT", str(KvsDtAttAsciiFmt(1)), "%11d"},
      {"ascii of text", str(KvsDtAttAsciiFmt(4)), "%s"},
      {"ascii unknown", str(KvsDtAttAsciiFmt(99)), "(null)"},
      {"subclass 2 steps", std::to_string(KvsDtIsSubClass(3, 1)), "1"},
      {"not subclass", std::to_string(KvsDtIsSubClass(1, 3)), "0"},
      {"subclass loop ends", std::to_string(KvsDtIsSubClass(4, 1)), "0"},
      {"member key", std::to_string(KvsDtIsMember(1, 1)), "1"},
      {"member inherited", std::to_string(KvsDtIsMember(3, 2)), "1"},
      {"member of sub only", std::to_string(KvsDtIsMember(2, 3)), "0"},
      {"member loop ends", std::to_string(KvsDtIsMember(4, 3)), "0"},
      {"keys to dom", std::to_string(KvsDtKeys2Dom(1, 2)), "2"},
      {"one key to dom", std::to_string(KvsDtKeys2Dom(1, 0)), "1"},
      {"keys to none", std::to_string(KvsDtKeys2Dom(2, 1)), "0"},
  };
  for (const Case& c : cases) EXPECT_EQ(c.got, c.want) << c.what;
}

// Each by-reference form against its by-value call.
TEST_F(KvsFullDict, ByReferenceForms) {
  long c3 = 3, c1 = 1, c2 = 2, c9 = 9, c7 = 7, c5 = 5, c99 = 99, c0 = 0;
  auto out = [](int (*f)(long*, char*), long* code) {
    char buf[10];
    kvsStrLen[0] = sizeof buf;
    int rc = f(code, buf);
    return std::to_string(rc) + "|" + std::string(buf, sizeof buf);
  };
  kvsStrLen[0] = 6;
  int isAtt = kvsdtisatt_("XR    "), isTab = kvsdtistab_("SPSX  "), isDom = kvsdtisdom_("SHRC  "),
      isTyp = kvsdtistyp_("SEIS  ");
  struct Case {
    const char* what;
    std::string ref, value;
  } cases[] = {
      {"attname", out(kvsdtattname_, &c3), "0|XR        "},
      {"typname", out(kvsdttypname_, &c1), "0|SEIS      "},
      {"tabname", out(kvsdttabname_, &c2), "0|SPS       "},
      {"domname", out(kvsdtdomname_, &c2), "0|SHRC      "},
      {"fmtname", out(kvsdtfmtname_, &c5), "0|FLT       "},
      {"famname", out(kvsdtfamname_, &c7), "0|COORD     "},
      {"dimname", out(kvsdtdimname_, &c3), "0|LENGTH    "},
      {"parname", out(kvsdtparname_, &c9), "0|SAMPRATE  "},
      {"unknown", out(kvsdtparname_, &c99), std::to_string(KvsErrDict) + "|          "},
      {"asciifmt", out(kvsdtattasciifmt_, &c3), "0|%10.2f    "},
      {"isatt", std::to_string(isAtt), std::to_string(KvsDtIsAtt("XR"))},
      {"istab", std::to_string(isTab), std::to_string(KvsDtIsTab("SPSX"))},
      {"isdom", std::to_string(isDom), std::to_string(KvsDtIsDom("SHRC"))},
      {"istyp", std::to_string(isTyp), std::to_string(KvsDtIsTyp("SEIS"))},
      {"issubclass", std::to_string(kvsdtissubclass_(&c3, &c1)), std::to_string(KvsDtIsSubClass(3, 1))},
      {"iskey", std::to_string(kvsdtiskey_(&c1, &c1)), std::to_string(KvsDtIsKey(1, 1))},
      {"ismember", std::to_string(kvsdtismember_(&c3, &c2)), std::to_string(KvsDtIsMember(3, 2))},
      {"keys2dom", std::to_string(kvsdtkeys2dom_(&c1, &c2)), std::to_string(KvsDtKeys2Dom(1, 2))},
      {"key1", std::to_string(kvsdtkey1_(&c1)), std::to_string(KvsDtKey1(1))},
      {"key2", std::to_string(kvsdtkey2_(&c0)), std::to_string(KvsDtKey2(0))},
      {"nbkeys", std::to_string(kvsdtnbkeys_(&c1)), std::to_string(KvsDtNbKeys(1))},
      {"attfam", std::to_string(kvsdtattfam_(&c3)), std::to_string(KvsDtAttFam(3))},
      {"attfmt", std::to_string(kvsdtattfmt_(&c3)), std::to_string(KvsDtAttFmt(3))},
      {"attdim", std::to_string(kvsdtattdim_(&c3)), std::to_string(KvsDtAttDim(3))},
      {"attsup", std::to_string(kvsdtattsup_(&c3)), std::to_string(KvsDtAttSup(3))},
  };
  for (const Case& c : cases) EXPECT_EQ(c.ref, c.value) << c.what;
  EXPECT_EQ(isAtt + isTab + isDom + isTyp, 4);

  int in[3] = {1, -2, 0};
  std::memcpy(&in[2], kvsNull, 4);
  double got[3];
  unsigned int from = KvsFmtINT, to = KvsFmtDBL;
  long n = 3;
  ASSERT_EQ(kvsconvert_(in, &from, got, &to, &n), 0);
  EXPECT_EQ(got[1], -2.0);
  EXPECT_EQ(std::memcmp(&got[2], kvsNull, 8), 0);
  long before = kvsAllocated, size = 40;
  kvsStrLen[0] = 5;
  void* p = kvsalloc_(&size, "Table");
  EXPECT_EQ(kvsAllocated, before + 40);
  size = 80;
  p = kvsrealloc_(&p, &size, "Table");
  EXPECT_EQ(kvsAllocated, before + 80);
  kvsfree_(&p);
  EXPECT_EQ(p, nullptr);
  EXPECT_EQ(kvsAllocated, before);

  char text[14];
  std::string pv, sv, ev;
  kvsStrLen[0] = 9, kvsStrLen[1] = 8;
  EXPECT_EQ(kvsfindproject_("abc@siteA", text), KvsFindProject("abc@siteA", pv));
  kvsStrLen[0] = 9, kvsStrLen[1] = 2, kvsStrLen[2] = 4;
  EXPECT_EQ(kvsextractsiteserver_("sA:db1   ", text + 8, text + 10), KvsExtractSiteServer("sA:db1", sv, ev));
  EXPECT_EQ(std::string(text, 14), "abc     sAdb1 ");
  EXPECT_EQ(pv + "|" + sv + "|" + ev, "abc|sA|db1");
}

// `rondo dump` and `rondo info` as a process on files written by segyio,
// compared value by value with what segyio reads back.

#include <algorithm>

#include <gtest/gtest.h>

#include "tools/ToolTesting.h"

namespace {

using namespace tool_testing;

struct PeerCase {
  char const* name;
  int format;
  char const* endian;
};

class RondoPeerTest : public ::testing::TestWithParam<PeerCase> {};

std::string lines(std::string const& text, int from, int to) {
  std::string out;
  int line = 1;
  for (std::size_t start = 0; start < text.size(); ++line) {
    std::size_t const end = text.find('\n', start);
    if (line >= from && line <= to) out += text.substr(start, end - start + 1);
    start = end + 1;
  }
  return out;
}

TEST_P(RondoPeerTest, DumpAndInfoGiveWhatSegyioReads) {
  fs_testing::TempDir dir;
  writeSegy(dir, "line.sgy", GetParam().format, GetParam().endian, 37, 61);
  std::string const expected = fs_testing::readFile(dir / "line.sgy.dump");

  Outcome const all = tool(dir, "dump line.sgy CMP,SHOT.RW.X,TRACE");
  EXPECT_EQ(0, all.status);
  EXPECT_EQ("", all.err);
  EXPECT_EQ(expected, all.out);

  Outcome const some = tool(dir, "dump file:line.sgy#segy# cmp,shot.rw.x,trace --first 5 --last 9");
  EXPECT_EQ(0, some.status) << some.err;
  EXPECT_EQ(lines(expected, 5, 9), some.out);

  // The JSON form is read by a JSON parser and checked against segyio.
  Outcome const json = shell(dir, "'" + rondo() + "' info line.sgy --json > info.json && " + kPython +
                                  " -c \"import json, segyio\n"
                                  "i = json.load(open('info.json'))\n"
                                  "f = segyio.open('line.sgy', ignore_geometry=True, endian='" +
                                  GetParam().endian +
                                  "')\n"
                                  "t = [a for a in i['attributes'] if a['name'] == 'TRACE'][0]\n"
                                  "print(i['class'], i['instances'] == f.tracecount, t['length'] == len(f.samples),"
                                  " t['sampleRate'], t['type'], i['keys'])\"");
  EXPECT_EQ(0, json.status) << json.err;
  EXPECT_EQ("seismic True True 4 vFLOAT32 ['CMP']\n", json.out);
}

INSTANTIATE_TEST_SUITE_P(FormatsAndByteOrders, RondoPeerTest,
                         ::testing::Values(PeerCase{"IbmBigEndian", 1, "big"}, PeerCase{"IeeeLittleEndian", 5, "little"}),
                         [](::testing::TestParamInfo<PeerCase> const& info) { return std::string(info.param.name); });

// A format file beside the line names its keys in the shipped vocabulary;
// a user who has set up no release tree still gets them.
TEST(RondoInfo, FormatFileBesideTheLineGivesItsKeysWithoutARelease) {
  fs_testing::TempDir dir;
  writeSegy(dir, "line.sgy", 1, "big", 5, 3);
  fs_testing::writeFile(dir / "line.syf",
                        "KEYNAMES CDP TRACE_NUMBER\n"
                        "CDP           cdp    trace  21  int4  ensemble number\n"
                        "TRACE_NUMBER  tracl  trace   1  int4  trace sequence number\n");
  ScopedEnv noRelease("VREL", nullptr), noLite("RLITE", nullptr), noRoot("cor_root", nullptr);
  Outcome const info = tool(dir, "info line.sgy");
  EXPECT_EQ(0, info.status) << info.err;
  EXPECT_NE(std::string::npos, info.out.find("keys        CDP TRACE_NUMBER\n")) << info.out;
}

// A reader that stops early ends the dump at once and quietly.
TEST(RondoDump, ClosedPipeEndsTheDumpCleanly) {
  fs_testing::TempDir dir;
  writeSegy(dir, "big.sgy", 5, "little", 3000, 100);
  Outcome const r = shell(dir, "{ '" + rondo() + "' dump big.sgy TRACE; echo $? > status; } | head -n 2 | wc -l");
  EXPECT_EQ("2\n", r.out);
  EXPECT_EQ("", r.err);
  EXPECT_EQ("0\n", fs_testing::readFile(dir / "status"));
}

// Every failure is one line naming the store, and a non-zero status. The
// texts of the stores themselves are checked where they are raised; one
// here shows that they come through.
TEST(RondoDump, FailuresTruncationOddPathsAndHelp) {
  fs_testing::TempDir dir;
  writeSegy(dir, "line.sgy", 1, "big", 10, 20);
  ASSERT_EQ(0, shell(dir, "mkdir d.txt && mkfifo p.sgy && cp line.sgy 'a:b#c.sgy'").status);
  struct Case {
    char const* arguments;
    int status;
    char const* err;
  } const cases[] = {
      {"dump line.sgy NOPE", 1, "rondo: line.sgy: Attribute NOPE does not exist in file line.\n"},
      {"dump line.sgy CMP --last 11", 1, "rondo: line.sgy: last instance 11 must be <= number of instances 10.\n"},
      {"dump line.sgy CMP --first 4 --last 3", 1, "rondo: line.sgy: first instance 4 must be <= last instance 3.\n"},
      {"dump line.sgy CMP --first 12", 1, "rondo: line.sgy: first instance 12 must be <= number of instances 10.\n"},
      {"info missing.txt", 1,
       "rondo: missing.txt: The text table 'missing.txt' could not be opened: No such file or directory.\n"},
      {"info d.txt", 1,
       "rondo: d.txt: 'd.txt' is a directory: name a file in it (a data server lists a directory of files as a "
       "project, see rondo ls).\n"},
      {"info p.sgy", 1, "rondo: p.sgy: 'p.sgy' is a pipe or a socket, not a file that holds a store.\n"},
      {"dump line.sgy CMP --first 0", 2, "rondo: dump: --first wants a whole number of at least 1, not '0'\n"},
      {"dump line.sgy CMP --json", 2, "rondo: dump: unknown option --json\n"},
      {"frobnicate", 2, "rondo: unknown command 'frobnicate'\n"},
  };
  for (Case const& c : cases) {
    Outcome const r = tool(dir, c.arguments);
    EXPECT_EQ(c.status, r.status) << c.arguments;
    EXPECT_EQ("", r.out) << c.arguments;
    EXPECT_EQ(c.err, r.err.substr(0, r.err.find('\n') + 1)) << c.arguments;
  }

  // A file cut inside its last trace dumps its whole traces and says so.
  std::string const bytes = fs_testing::readFile(dir / "line.sgy");
  fs_testing::writeFile(dir / "cut.sgy", bytes.substr(0, bytes.size() - 100));
  Outcome const cut = tool(dir, "dump cut.sgy CMP,SHOT.RW.X,TRACE");
  EXPECT_EQ(0, cut.status);
  EXPECT_EQ(lines(fs_testing::readFile(dir / "line.sgy.dump"), 1, 9), cut.out);
  EXPECT_EQ("rondo: cut.sgy: The file 'cut.sgy' is either incomplete or corrupt. Filesize is " +
                std::to_string(bytes.size() - 100) + " bytes but we expect " + std::to_string(3600 + 9 * (240 + 80)) +
                " when the tracelength is 320\n"
                "rondo: cut.sgy: only whole instances were read: 9 of them; the part instance at the end of the "
                "file was left out\n",
            cut.err);

  // A warning about something other than a cut (an index of another
  // version) loses no instance and says nothing of one.
  ASSERT_EQ(0, shell(dir, std::string(kPython) + " " RONDO_TEST_SOURCE_DIR "/filestore/nyx/testdata/nyx_fixture.py "
                          "dat g.dat '>' 5 && printf 'version2xxxxxxxxx' > g.idx")
                   .status);
  Outcome const indexed = tool(dir, "dump g.dat CMP");
  EXPECT_EQ(0, indexed.status);
  EXPECT_EQ(12, std::count(indexed.out.begin(), indexed.out.end(), '\n'));
  EXPECT_EQ("rondo: g.dat: Index file 'g.idx' is not the correct version, we only support version 1, not "
            "1936876918!\n",
            indexed.err);

  // A plain path is a file even where it holds the separators of store names.
  Outcome const odd = tool(dir, "dump 'a:b#c.sgy' CMP,TRACE");
  EXPECT_EQ(0, odd.status) << odd.err;
  EXPECT_EQ(tool(dir, "dump line.sgy CMP,TRACE").out, odd.out);
  EXPECT_EQ(10, std::count(odd.out.begin(), odd.out.end(), '\n')) << odd.out;

  // The tool and each command explain themselves, with an example.
  for (char const* command : {"", "info ", "dump ", "plot ", "projects ", "ls "}) {
    Outcome const r = tool(dir, std::string(command) + "--help");
    EXPECT_EQ(0, r.status) << command;
    EXPECT_EQ(0u, r.out.find("usage: rondo " + std::string(*command ? command : "COMMAND "))) << r.out;
    EXPECT_NE(std::string::npos, r.out.find("example:\n  rondo ")) << command;
  }
}

// Texts of a file are bytes: in JSON, UTF-8 passes and any other byte is
// read as Latin-1, so that the report stays valid UTF-8.
TEST(RondoInfo, JsonOfBytesThatAreNotUtf8) {
  fs_testing::TempDir dir;
  fs_testing::writeFile(dir / "h.txt",
                        "PELAGOS HORIZON V1.0\nLINEX 100 101 1\nLINEY 10 10 1\nSTEPX 25\nSTEPY 25\nORIGIN 0 0\n"
                        "DOMAIN time\nNUMSURFACES 1\nSURFACE Caf\xe9_\xc3\xa9\nNUMATTR 5\nATTRIBUTE INLINE\n"
                        "ATTRIBUTE CROSSLINE\nATTRIBUTE X\nATTRIBUTE Y\nATTRIBUTE Z\n10 100 0 0 1500\n10 101 25 0 1501\n");
  Outcome const r = tool(dir, "info h.txt --json");
  ASSERT_EQ(0, r.status) << r.err;
  EXPECT_NE(std::string::npos, r.out.find("\"HORIZONNAME\":\"Caf\\u00e9_\xc3\xa9\"")) << r.out;
}

}  // namespace

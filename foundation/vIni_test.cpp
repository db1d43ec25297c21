#include "foundation/vIni.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "foundation/TestReleaseTree.h"

namespace {

std::string str(vString const& s) { return std::string(s.c_str(), s.length()); }

template <class Strings>
std::vector<std::string> strs(Strings const& v) {
  std::vector<std::string> out;
  for (vString const& s : v) out.push_back(str(s));
  return out;
}

std::string keys(vIni const& ini, char const* section) {
  std::string all;
  for (vLCString const& k : ini.getKeys(section)) all += "[" + str(k) + "]";
  return all;
}

}  // namespace

TEST(vIni, LineRules) {
  vIni ini;
  ini.loadFromMemory(
      "[]\n"
      "before = ignored\n"
      "[Main]\n"
      "  Name = first \n"
      "name = second\n"
      "    ; indented comment = no\n"
      "\t# indented hash = no\n"
      "\n"
      "   \t \n"
      "=empty key\n"
      "novalue\n"
      "[]\n"
      "a=b=c\r\n"
      "[ Other ]\n"
      "x = 1\n"
      "[main]\n"
      "late = resumed\n"
      "NAME = third\n"
      "[ab\n");
  // "[]" is a key; outside a section it is dropped like any key line.
  EXPECT_EQ(strs(ini.getSections()), (std::vector<std::string>{"main", "other"}));
  EXPECT_FALSE(ini.doesKeyExist("main", "before"));

  // Keys stripped and folded, first value kept, values as written.
  EXPECT_EQ("[name][][novalue][[]][a][late][[ab]", keys(ini, "MAIN"));
  EXPECT_EQ(strs(ini.getValues("MAIN")),
            (std::vector<std::string>{" first ", "empty key", "", "", "b=c", " resumed", ""}));
  EXPECT_TRUE(ini.doesKeyExist("main", "novalue"));
  EXPECT_EQ("", str(ini.getString("main", "novalue", "default")));
  EXPECT_EQ(" resumed", str(ini.getString("Main", "LATE")));
  EXPECT_FALSE(ini.doesKeyExist("main", "; indented comment"));
  EXPECT_EQ(7, ini.getNKeys("main"));
  EXPECT_TRUE(ini.doesSectionExist("OTHER"));
  EXPECT_EQ("fallback", str(ini.getString("absent", "x", "fallback")));
}

TEST(vIni, TypedValuesListsInFileOrderAndLongLines) {
  vIni ini;
  ini.loadFromMemory(
      "[t]\n"
      "i = 42 \n"
      "hex = 0x10\n"
      "zeros = 0900\n"
      "negzeros = -008\n"
      "big = 9000000000\n"
      "f = 2.5\n"
      "huge = 1e39\n"
      "yes = Enabled\n"
      "no = 0\n"
      "list = a, b ,,c ;d\n"
      "text = abc\n");
  EXPECT_EQ(42, ini.getInt32("t", "i"));
  EXPECT_EQ(16, ini.getInt32("t", "hex"));
  EXPECT_EQ(900, ini.getInt32("t", "zeros"));
  EXPECT_EQ(-8, ini.getInt64("t", "negzeros"));
  EXPECT_EQ(9000000000LL, ini.getInt64("t", "big"));
  EXPECT_FLOAT_EQ(2.5f, ini.getFloat32("t", "f"));
  EXPECT_DOUBLE_EQ(1e39, ini.getFloat64("t", "huge"));
  EXPECT_TRUE(ini.getBool("t", "yes"));
  EXPECT_FALSE(ini.getBool("t", "no", true));
  EXPECT_EQ(-1, ini.getInt32("t", "absent", -1));

  EXPECT_EQ(strs(ini.getStringDelimited("t", "list")), (std::vector<std::string>{"a", "b", "c ;d"}));
  EXPECT_EQ(strs(ini.getStringDelimited("t", "list", ",;")), (std::vector<std::string>{"a", "b", "c", "d"}));

  expectFatal([&] { ini.getInt32("t", "big"); }, "vIni::getInt32",
              "The value '9000000000' of key 'big' in section 't' is not a valid 32-bit integer!");
  expectFatal([&] { ini.getInt64("t", "text"); }, "vIni::getInt64",
              "The value 'abc' of key 'text' in section 't' is not a valid 64-bit integer!");
  expectFatal([&] { ini.getFloat32("t", "huge"); }, "vIni::getFloat32",
              "The value '1e39' of key 'huge' in section 't' is not a valid 32-bit float!");
  expectFatal([&] { ini.getFloat64("t", "list"); }, "vIni::getFloat64",
              "The value 'a, b ,,c ;d' of key 'list' in section 't' is not a valid 64-bit float!");
  ini.loadFromMemory("[s]\nb = 2\na = 1\nc\n");
  std::vector<std::pair<std::string, std::string>> kv;
  for (vIni::KeyValue const& e : ini.getKeysAndValues("s")) kv.emplace_back(str(e.first), str(e.second));
  EXPECT_EQ(kv, (std::vector<std::pair<std::string, std::string>>{{"b", " 2"}, {"a", " 1"}, {"c", ""}}));
  // Long lines are kept whole.
  std::string value(3000, 'v');
  ini.loadFromMemory(vString(("[long]\nk=" + value + "\nnext=1\n").c_str()));
  EXPECT_EQ(value, str(ini.getString("long", "k")));
  EXPECT_EQ(1, ini.getInt32("long", "next"));
}

TEST(vIni, FilesAndStreamsAddUp) {
  TestReleaseTree tree;
  std::string path = tree.writeWorkFile("site.ini", "[a]\nk = file\n");
  vIni ini;
  ini.loadFromFile(path.c_str());
  std::istringstream more("[A]\nk = stream\nj = stream\n[b]\n");
  ini.loadFromStream(more);
  EXPECT_EQ(" file", str(ini.getString("a", "k")));
  EXPECT_EQ(" stream", str(ini.getString("a", "j")));
  EXPECT_EQ(2u, ini.getSections().size());
  ini.clear();
  EXPECT_TRUE(ini.getSections().empty());

  std::string missing = tree.workDir() + "missing.ini";
  expectFatal([&] { ini.loadFromFile(missing.c_str()); }, "vIni::loadFromFile",
              "Unable to open the INI file '" + missing + "'!");
}

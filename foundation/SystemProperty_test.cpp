#include "foundation/SystemProperty.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "foundation/SystemFileLoader.h"
#include "foundation/SystemPropertyEnvironment.h"
#include "foundation/SystemPropertyManager.h"
#include "foundation/SystemPropertyTable.h"
#include "foundation/TestReleaseTree.h"
#include "foundation/UtlExcept.h"
#include "foundation/vDatabases.h"
#include "foundation/vUtl.h"

namespace {

std::string str(vString const& s) { return std::string(s.c_str(), s.length()); }

SystemProperty readOne(std::string const& text) {
  std::istringstream in(text);
  SystemProperty p;
  in >> p;
  return p;
}

std::string record(char const* section, char const* name, char const* value) {
  return std::string("<SystemProperty name= ") + name + " package= " + section + " description= \"test\" value= " +
         value + " SystemProperty>\n";
}

// A loader that keeps what it was handed, to see what load() passes on.
class RecordingLoader : public SystemFileLoader {
 public:
  std::string contents;

 protected:
  void doLoad(std::istream& in, vString const&) override {
    std::ostringstream all;
    all << in.rdbuf();
    contents = all.str();
  }
};

}  // namespace

TEST(SystemProperty, ValuesConversionsAndComparison) {
  SystemProperty p("commchan", "port_range", "ports", {"5000", " 2.5 ", "Enabled", "off", "12abc"});
  EXPECT_EQ("PORT_RANGE", str(p.getName()));
  EXPECT_EQ(5, p.getNValues());
  EXPECT_EQ(5000, p.getInt32Value(0));
  EXPECT_DOUBLE_EQ(2.5, p.getFloat64Value(1));
  EXPECT_TRUE(p.getBoolValue(2));
  EXPECT_FALSE(p.getBoolValue(3));
  vString out;
  p.getValue(4, out);
  EXPECT_EQ("12abc", str(out));

  expectFatal([&] { p.getValue(5); }, "SystemProperty::getValue", "The value at index 5 does not exists! ");
  expectFatal([&] { p.getFloat64Value(2); }, "SystemProperty::getFloat64Value",
              "The value 'Enabled' at index 2 is not a number! ");
  // Decimal, whatever the leading zeros; hexadecimal after "0x".
  SystemProperty numbers("a", "b", "", {"0900", "010", "-0x10", " +0X1f ", "0", "0x", "4294967296"});
  for (int i = 0; i < 5; ++i) EXPECT_EQ((std::vector<int>{900, 10, -16, 31, 0})[i], numbers.getInt32Value(i)) << i;
  expectFatal([&] { numbers.getInt32Value(6); }, "SystemProperty::getInt32Value",
              "The value '4294967296' at index 6 is not a 32-bit integer! ");
  for (char const* t : {"True", "e", " yes "}) EXPECT_TRUE(SystemProperty::isTrueText(t)) << t;
  for (char const* t : {"", "1", "yess"}) EXPECT_FALSE(SystemProperty::isTrueText(t)) << t;
  SystemProperty a("s", "n", "d", {"1"});
  SystemProperty b(a);
  EXPECT_TRUE(a == b);
  b.addValue("2");
  EXPECT_TRUE(a != b);
  EXPECT_FALSE(a < b);
  SystemProperty c;
  c.setComponents("t", "m", "other", {});
  EXPECT_TRUE(a < c);
}

TEST(SystemPropertyRecord, WrittenReadBackAndUnquotedValues) {
  SystemProperty p("utl", "ping", "the \"ping\" command\\", {"vping %s", "", "a\tb"});
  std::stringstream io;
  io << p << "\n" << SystemProperty("x", "y", "", {}) << "\n";
  SystemProperty back, second, none;
  io >> back >> second;
  EXPECT_TRUE(back == p);
  EXPECT_TRUE(second == SystemProperty("x", "y", "", {}));
  EXPECT_FALSE(io >> none);  // the end of the stream is not an error
  std::istringstream in("# site table\n" + record("a", "one", "1") + "  # retired:\n#" + record("a", "two", "2") +
                        record("a", "three", "3"));
  in >> back;
  EXPECT_EQ("ONE", str(back.getName()));
  in >> back;
  EXPECT_EQ("THREE", str(back.getName()));
  EXPECT_FALSE(in >> back);
  // Unquoted values run to the next keyword; a keyword may carry its value in the same token.
  p = readOne("<SystemProperty name=Verbose package=commchan description= trace it value=yes please "
              "value= \"x y\" value= 3 SystemProperty>");
  EXPECT_EQ(p, SystemProperty("commchan", "verbose", "trace it", {"yes please", "x y", "3"}));
  // Expansion works on the whole value.
  TestReleaseTree tree;
  tree.setEnv("SPTEST_PORT", "9000");
  p = readOne("<SystemProperty name= a package= b value= host ${SPTEST_PORT} SystemProperty>");
  EXPECT_EQ("host 9000", str(p.getValue(0)));
}

TEST(SystemPropertyRecord, BadRecordsAreFatal) {
  std::string const ended = "The system property record ended before 'SystemProperty>'.";
  auto token = [](std::string const& t) { return "Unknown token '" + t + "' in the system property record."; };
  struct Case {
    char const* text;
    std::string reason;
  } const cases[] = {
      {"<SystemProperty name= a package= b colour= red SystemProperty>", token("colour=")},
      {"SystemProperty name= a", "Unknown token 'SystemProperty' where a system property record should start."},
      {"<SystemProperty name= a package= b value= \"open quote SystemProperty>", ended},
      {"<SystemProperty package= b value= 1 SystemProperty>", "The system property record has no name."},
      {"<SystemProperty name= a value= 1 SystemProperty>", "The system property record 'A' has no package."},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(c.text);
    expectFatal([&] { readOne(c.text); }, "SystemProperty::operator>>", c.reason);
  }
}

TEST(SystemFileLoader, WorkingDirectoryFirstThenSystemFilesElseFatal) {
  TestReleaseTree tree;
  tree.writeSystemFile("Both.txt", "release");
  tree.writeSystemFile("Release.txt", "release only");
  tree.writeWorkFile("Both.txt", "working");

  RecordingLoader loader;
  loader.load("Both.txt", "Check Name");
  EXPECT_EQ("working", loader.contents);
  EXPECT_EQ("Both.txt", str(loader.getPath()));

  loader.load("Release.txt", "");
  EXPECT_EQ("release only", loader.contents);
  EXPECT_EQ(tree.systemFilesDir() + "Release.txt", str(loader.getPath()));
  expectFatal([&] { loader.load("NoSuchTable.txt", ""); }, "SystemFileLoader::myOpen()",
              "File NoSuchTable.txt was not found in ./ or " + tree.systemFilesDir() + ".");
  // A directory of that name is not a file.
  std::filesystem::create_directories(tree.workDir() + "Dir.txt");
  expectFatal([&] { loader.load("Dir.txt", ""); }, "SystemFileLoader::myOpen()",
              "File Dir.txt was not found in ./ or " + tree.systemFilesDir() + ".");
  vString path;
  EXPECT_FALSE(SystemFileLoader::find("NoSuchTable.txt", path));
  EXPECT_TRUE(path.isEmpty());
}

// Later tables replace earlier records; the domain's table is the one the database configuration names.
TEST(SystemPropertyTable, GeneralDomainAndHostTablesAndABadRecord) {
  TestReleaseTree tree;
  std::string host = str(vUtl::gethostname());
  tree.writeSystemFile("SystemPropertyTable2.txt",
                       record("site", "a", "general") + record("site", "b", "general") + record("site", "c", "general"));
  tree.writeSystemFile("testdomain.exampleSystemPropertyTable2.txt",
                       record("site", "b", "domain") + record("site", "c", "domain"));
  tree.writeSystemFile(host + "SystemPropertyTable2.txt", record("SITE", "C", "host"));

  SystemPropertyTable& table = SystemPropertyTable::instance();
  vDatabases::clearCache();
  table.reload();
  EXPECT_EQ("SystemPropertyTable2.txt", str(table.getTableName()));
  EXPECT_EQ(host + "SystemPropertyTable2.txt", str(table.getLocalTableName()));
  EXPECT_EQ("testdomain.exampleSystemPropertyTable2.txt", str(table.getDomainTableName()));
  EXPECT_EQ(3, table.size());
  EXPECT_EQ("general", str(table.getSystemProperty("Site", "a").getValue(0)));
  EXPECT_EQ("domain", str(table.getSystemProperty("site", "B").getValue(0)));
  EXPECT_EQ("host", str(table.getSystemProperty("site", "c").getValue(0)));
  EXPECT_FALSE(table.hasSystemProperty("site", "d"));
  std::vector<SystemProperty> all = table.getSystemProperties();
  ASSERT_EQ(3u, all.size());
  EXPECT_EQ("A", str(all[0].getName()));
  tree.writeSystemFile("DatabaseConfig.ini", "[aliases]\ntestdomain.example = Houston\n[houston]\nProductionDatabase = hp\n");
  tree.writeSystemFile("houstonSystemPropertyTable2.txt", record("site", "a", "houston"));
  vDatabases::clearCache();
  table.reload();
  EXPECT_EQ("houstonSystemPropertyTable2.txt", str(table.getDomainTableName()));
  EXPECT_EQ("houston", str(table.getSystemProperty("site", "a").getValue(0)));
  EXPECT_EQ("general", str(table.getSystemProperty("site", "b").getValue(0)));
  // A bad record is fatal, quietly, and names its file.
  std::string path = tree.writeSystemFile(
      "SystemPropertyTable2.txt", record("site", "a", "1") + "<SystemProperty name= b package= site valeu= 2 SystemProperty>\n");
  vDatabases::clearCache();
  testing::internal::CaptureStderr();
  try {
    SystemPropertyTable::instance().reload();
    ADD_FAILURE() << "a bad record must be fatal";
  } catch (UtlExcept const& e) {
    EXPECT_EQ("SystemProperty::operator>>", str(e.getMethod()));
    EXPECT_EQ("Unknown token 'valeu=' in the system property record.", str(e.getReason()));
    EXPECT_EQ(path, str(e.getFileName()));
  }
  EXPECT_EQ("", testing::internal::GetCapturedStderr());
  vDatabases::clearCache();
}

TEST(SystemPropertyEnvironment, NameAndValues) {
  TestReleaseTree tree;
  tree.setEnv("SP_COMMCHAN_VERBOSE", "  verbose=yes\tfilename=\"/tmp/a b\"  ");
  EXPECT_EQ(SystemPropertyEnvironment::getSystemProperty("commchan", "verbose"),
            SystemProperty("commchan", "verbose", "SP_COMMCHAN_VERBOSE", {"verbose=yes", "filename=/tmp/a b"}));

  tree.unsetEnv("SP_COMMCHAN_NONE");
  EXPECT_FALSE(SystemPropertyEnvironment::hasSystemProperty("commchan", "none"));
  expectFatal([] { SystemPropertyEnvironment::getSystemProperty("commchan", "none"); },
              "SystemPropertyEnvironment::getSystemProperty",
              "The system property COMMCHAN/NONE is not set: environment variable SP_COMMCHAN_NONE is not defined.");
}

TEST(SystemPropertyManager, EnvironmentOverridesTheTables) {
  TestReleaseTree tree;
  tree.writeSystemFile("SystemPropertyTable2.txt", record("capi", "translations", "yes") + record("capi", "other", "1"));
  vDatabases::clearCache();
  SystemPropertyTable::instance().reload();

  EXPECT_EQ("yes", str(SystemPropertyManager::getSystemProperty("capi", "translations").getValue(0)));
  tree.setEnv("SP_CAPI_TRANSLATIONS", "no");
  EXPECT_EQ("no", str(SystemPropertyManager::getSystemProperty("capi", "translations").getValue(0)));
  EXPECT_EQ("1", str(SystemPropertyManager::getSystemProperty("capi", "other").getValue(0)));

  EXPECT_FALSE(SystemPropertyManager::hasSystemProperty("capi", "missing"));
  expectFatal([] { SystemPropertyManager::getSystemProperty("capi", "missing"); },
              "SystemPropertyTable::getSystemProperty",
              "The system property CAPI/MISSING was not found in the system property tables.");
}

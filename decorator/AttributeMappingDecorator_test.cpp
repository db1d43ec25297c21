#include "decorator/AttributeMappingDecorator.h"

#include <gtest/gtest.h>

#include <cmath>

#include "attribute/AttributeDefinitionTable.h"
#include "decorator/JoinTesting.h"
#include "decorator/StoreDecoratorFactory.h"
#include "filestore/memory/InMemoryStore.h"
#include "foundation/TestReleaseTree.h"
#include "project/StoreDescription.h"

using namespace join_testing;

namespace {

class Mapping : public ::testing::Test {
 protected:
  void SetUp() override {
    tree.writeSystemFile("AttributeDefTable4.txt", "CDP vInt32 1\nOFFSET vInt32 1\nSHIFTED vInt64 1\n");
    AttributeDefinitionTable::instance().dropTable();
    view = vHandle<AttributeMappingDecorator>(new AttributeMappingDecorator(referenceStore()));
  }
  void TearDown() override { AttributeDefinitionTable::instance().dropTable(); }

  // The values of the first instances of one attribute of the view.
  std::vector<double> first(char const* name, unsigned int n = 3) {
    Attribute a = view->getAttribute(name);
    view->read(a, 1, n);
    return valuesOf(a);
  }

  TestReleaseTree tree;
  vHandle<AttributeMappingDecorator> view;
};

// muParser's priorities with the system's own operators among them: the
// shifts bind as "+" and "-", "&" and "|" as loosely as "||". Arithmetic
// runs column by column, anything else through muParser row by row: both
// ways give the same values.
TEST_F(Mapping, OperatorsPrioritiesAndBothWaysOfEvaluating) {
  struct Case {
    char const* expression;
    double value;
  } const cases[] = {
      {"0x10 | 1", 17},   {"0b101", 5},      {"1 + 1 << 2", 8},  {"1 << 2 + 1", 5}, {"2 * 3 << 1", 12},
      {"2 ^ 3 >> 1", 4},  {"1 | 2 == 2", 1}, {"12 & 10 | 1", 9}, {"7.9 & 0b110", 6}, {"-9 >> 1", -5},
  };
  int n = 0;
  for (Case const& c : cases) view->processExpression(("V" + std::to_string(++n) + ":d = " + c.expression).c_str());
  char const* const mixed = "OFFSET / 4 - CDP ^ 2 + (CDP >= 2) * 1000 - (ELEV > 1003 && CDP != 4) + ELEV * 0";
  view->processExpression((std::string("COLUMNS:d = ") + mixed).c_str());
  view->processExpression((std::string("ROWS:d = (") + mixed + ") | 0").c_str());
  n = 0;
  for (Case const& c : cases) {
    std::string const name = "V" + std::to_string(++n);
    EXPECT_EQ(std::vector<double>(3, c.value), first(name.c_str())) << c.expression;
  }
  std::vector<double> const columns = first("COLUMNS", 12);
  EXPECT_EQ(first("ROWS", 12), columns);
  EXPECT_EQ((std::vector<double>{24, 49, 74, 1021, 1046, 1071, 1015, 1040, 1065, 1009, 1034, 1059}), columns);
}

TEST_F(Mapping, TypesSourcesAndPassThrough) {
  view->processExpression("NEW:i = OFFSET * 2 + 0.75");
  view->processExpression("half = \\elev / 2");
  view->processExpression("shifted = cdp << 40");
  view->processExpression("!ADD TRACE, CDP");
  view->processExpression("!STORECLASS mapped");
  EXPECT_EQ((std::vector<std::string>{"NEW", "HALF", "SHIFTED", "TRACE", "CDP"}), names(view->getAttributeList()));
  EXPECT_EQ((std::vector<double>{200, 400, 600}), first("NEW"));
  EXPECT_EQ((std::vector<double>{500.25, 500.5, 500.75}), first("HALF"));
  EXPECT_EQ((std::vector<double>{std::ldexp(1.0, 40), std::ldexp(1.0, 40), std::ldexp(1.0, 40)}), first("SHIFTED"));
  EXPECT_EQ("mapped", std::string(view->getClass().c_str()));

  // A vector reads through unchanged; a list read keeps its order.
  Attribute trace = view->getAttribute("TRACE");
  view->read(trace, 2, 2);
  EXPECT_EQ(25.0f, trace.getFloat32Pointer(1)[4]);
  Attribute made = view->getAttribute("NEW");
  view->read(made, std::vector<unsigned int>{12, 2, 7});
  EXPECT_EQ((std::vector<int>{600, 400, 200}),
            (std::vector<int>{made.getInt32(1), made.getInt32(2), made.getInt32(3)}));
}

TEST_F(Mapping, FailuresWithTheirTexts) {
  char const* const read = "AttributeMappingDecorator::myAddExpressionForRead";
  expectFatal([&] { view->processExpression("NEW = NOPE + 1"); },
              "AttributeMappingDecorator::ParserInfo::setExpression",
              "The underlying store does not contain the attribute 'NOPE' to satisfy the expression 'NOPE + 1' for the "
              "new attribute 'NEW'");
  expectFatal([&] { view->processExpression("BAD = CDP + * 2"); },
              "AttributeMappingDecorator::ParserInfo::setExpression",
              "The expression 'CDP + * 2' for the attribute 'BAD' is in error at position 6: Unexpected operator \"*\" "
              "found at position 6");
  expectFatal([&] { view->processExpression("JUST_A_NAME"); }, read,
              "The expression 'JUST_A_NAME' is not in the correct format!");
  expectFatal([&] { view->processExpression("X:short = 1"); }, read,
              "Did not understand the datatype short in the expression 'X:short = 1'!");
  expectFatal([&] { view->processExpression("X:vString = 1"); }, read,
              "An unsupported datatype for the attribute X was detected!");
  view->processExpression("A = CDP");
  expectFatal([&] { view->processExpression("a:i = 2"); }, "AttributeMappingDecorator::LocalData::addVariable",
              "The attribute 'A' is already defined!");
  expectFatal([&] { view->processExpression("!PRESERVE OFFSET A"); },
              "AttributeMappingDecorator::LocalData::addExistingAttributes",
              "Trying to repserve the attribute 'A' however it has already been declared as an expression!");
  view->processExpression("!KEYLIST A ELEV");
  expectFatal([&] { view->getKeyList(); }, "AttributeMappingDecorator::LocalData::getKeyList",
              "The definition for the key attribute ELEV has not been declared!");
  expectFatal([&] { view->processExpression("B = 1"); }, "AttributeMappingDecorator::processExpression(expr)",
              "Cannot add an expression once we have validated the store!");
  expectFatal([&] { view->openAttributeSet("other"); }, "AttributeMappingDecorator::openAttributeSet",
              "We only support mapping the primary attribute set!");
  // Cleared, the view takes expressions again.
  view->clearExpressions();
  view->processExpression("B = 1");
  EXPECT_EQ(std::vector<double>{1}, first("B", 1));
}

// Written sets computed into a store that the first write makes.
TEST_F(Mapping, WritesComputeTheStoreMadeAtTheFirstWrite) {
  Store::InMemoryStoreView const saved = Store::setInMemoryStoreView(&InMemoryStore::asAttributeSet);
  vHandle<InMemoryStore> from(new InMemoryStore(vHandle<Project>()));
  from->create("from", "seismic", "3d", StoreConformance::referenceKeys(), nullptr);
  StoreConformance::populate(*from);
  vHandle<InMemoryStore> out(new InMemoryStore(vHandle<Project>()));
  vHandle<AttributeMappingDecorator> writer(new AttributeMappingDecorator(vHandle_cast<Store>(out)));
  writer->create(StoreDescription(out, "mapped"), "3d", KeyList(), nullptr);
  writer->processExpression("!KEYLIST CDP");
  writer->processExpression("CDP:i = cdp");
  writer->processExpression("FAR:i = OFFSET > 150");
  expectFatal([&] { writer->processExpression("!ADD OFFSET"); }, "AttributeMappingDecorator::myAddExpressionForWrite",
              "The !ADD keyword is not supported for write!");
  EXPECT_FALSE(out->isOpen());
  writer->writeIMSRange(*from, 2, 3);
  writer->writeIMSList(*from, {10});
  ASSERT_TRUE(out->isOpen());
  EXPECT_EQ("trace", std::string(out->getClass().c_str()));
  EXPECT_EQ((std::vector<std::string>{"CDP"}), names(out->getKeyList()));
  EXPECT_EQ((std::vector<double>{1, 1, 4}), values(*out, "CDP"));
  EXPECT_EQ((std::vector<double>{1, 1, 0}), values(*out, "FAR"));
  expectFatal([&] { writer->writeIMSRange(*from, 3, 13); }, "AttributeMappingDecorator::LocalData::write(range)",
              "Invalid instance range 3:13 for a store that contains 12 instances!");
  Store::setInMemoryStoreView(saved);
}

TEST_F(Mapping, FilesAndWhereTheyAreFound) {
  std::string const text =
      "; a comment\n"
      "# another\n"
      "\n"
      "   DOUBLE:d = OFFSET * 2\t\n"
      "!ADD CDP\n";
  std::string const beside = tree.writeWorkFile("survey.cstf", text);
  tree.writeSystemFile("site.cstf", "SITE = 1\n");
  vFilename found;
  // Given as it is, beside the store, in the system files.
  EXPECT_TRUE(AttributeMappingDecorator::resolveMapFilename(vString(beside.c_str()), found));
  EXPECT_EQ(beside, found.c_str());
  EXPECT_TRUE(AttributeMappingDecorator::resolveMapFilename(vFilename((tree.workDir() + "survey.sgy").c_str()),
                                                            vString("survey"), found));
  EXPECT_EQ(tree.workDir() + "survey.cstf", found.c_str());
  EXPECT_TRUE(AttributeMappingDecorator::resolveMapFilename(vFilename("/nowhere/survey.sgy"), vString("site"), found));
  EXPECT_EQ(tree.systemFilesDir() + "site.cstf", found.c_str());
  EXPECT_FALSE(AttributeMappingDecorator::resolveMapFilename(vFilename("/nowhere/a.sgy"), vString("none"), found));
  EXPECT_EQ((std::list<vString>{"none", "/nowhere/none.cstf", (tree.systemFilesDir() + "none.cstf").c_str()}),
            AttributeMappingDecorator::getTriedFilenames());

  vHandle<Store> store = StoreDecoratorFactory::addAttributeMapping(referenceStore(), vFilename(beside.c_str()));
  EXPECT_EQ((std::vector<std::string>{"DOUBLE", "CDP"}), names(store->getAttributeList()));
  Attribute doubled = store->getAttribute("DOUBLE");
  store->read(doubled, 3, 4);
  EXPECT_EQ(vFLOAT64, doubled.getDataType());
  EXPECT_EQ((std::vector<double>{600, 200}), (std::vector<double>{doubled.getFloat64(1), doubled.getFloat64(2)}));
  expectFatal([&] { StoreDecoratorFactory::addAttributeMapping(referenceStore(), vFilename("/nowhere/x.cstf")); },
              "AttributeMappingDecorator::processExpression(filename)", "Failed to open the file '/nowhere/x.cstf'!");
}

}  // namespace

#include "decorator/TranslatingAttributeSetDecorator.h"

#include <gtest/gtest.h>

#include "attribute/AttributeDefinitionTable.h"
#include "attribute/AttributeTranslationTable.h"
#include "attribute/KeyList.h"
#include "attribute/VocabularyTesting.h"
#include "decorator/DecoratorTesting.h"
#include "filestore/memory/InMemoryStore.h"
#include "foundation/TestReleaseTree.h"
#include "project/UTProject.h"
#include "project/UTProjectCatalog.h"

using namespace decorator_testing;

namespace {

// SOURCE_X changes its data on the way, CDP only its name, ELEV has no
// translator.
class Translating : public ::testing::Test {
 protected:
  void SetUp() override {
    tree.writeSystemFile("AttributeDefTable4.txt", vocabulary_testing::definitions());
    tree.writeSystemFile("RondoAttributeTranslations3.txt", vocabulary_testing::translations());
    AttributeDefinitionTable::instance().dropTable();
    AttributeTranslationTable::instance("Rondo").reload();
    vHandle<ProjectCatalog> catalog(new UTProjectCatalog("host", ProjectType::RONDO));
    below = vHandle<InMemoryStore>(new InMemoryStore(vHandle<Project>(new UTProject(catalog))));
    KeyList keys;
    keys.addKey(Attribute("CDP", "CDP", vINT32));
    below->create("t", "seismic", "3d", keys, nullptr);
    below->addInstances(3);
    for (Attribute a : {Attribute("CDP", "CDP", vINT32), Attribute("SOURCE_X", "SOURCE_X", vFLOAT64),
                        Attribute("ELEV", "", vFLOAT64)}) {
      a.resize(3);
      for (unsigned int i = 1; i <= 3; ++i) a.setValue(i, 10.25 * i);
      if (!below->hasAttribute(a.getName())) below->addAttribute(a);
      below->write(a, 1, 3);
    }
    view = vHandle<TranslatingAttributeSetDecorator>(
        new TranslatingAttributeSetDecorator(vHandle_cast<AttributeSet>(below)));
  }
  void TearDown() override { AttributeDefinitionTable::instance().dropTable(); }

  TestReleaseTree tree;
  vHandle<InMemoryStore> below;
  vHandle<TranslatingAttributeSetDecorator> view;
};

TEST_F(Translating, TheClientSeesItsOwnVocabularyBothWays) {
  // Attributes named after their class keep their names; the types are
  // the client's.
  EXPECT_EQ((std::vector<std::string>{"CDP", "ELEV", "SOURCE_X"}), names(view->getAttributeList()));
  EXPECT_EQ(vFLOAT32, view->getAttribute("SOURCE_X").getDataType());
  EXPECT_EQ(vFLOAT32, view->getAttributeList("SOURCE_X", AttributeMatch::AttributeMatchType(0)).front().getDataType());

  Attribute shot("SHOT_X", "SOURCE_X", vFLOAT32);
  view->read(shot, 2, 3);
  EXPECT_EQ("SHOT_X", std::string(shot.getName().c_str()));
  EXPECT_FLOAT_EQ(30.75f, shot.getFloat32(2));

  // Writes rename only for their time, and convert the data.
  Attribute cdp("CDP_NO", "CDP", vINT32);
  cdp.resize(1);
  cdp.setInt32(1, 77);
  view->write(cdp, 2, 2);
  EXPECT_EQ("CDP_NO", std::string(cdp.getName().c_str()));
  EXPECT_EQ((std::vector<double>{10, 77, 30}), values(*below, "CDP"));
  // A failed write puts the name back too.
  EXPECT_ANY_THROW(view->write(cdp, 7, 7));
  EXPECT_EQ("CDP_NO", std::string(cdp.getName().c_str()));

  shot.resize(1);
  shot.setFloat32(1, 1.5f);
  view->write(shot, std::vector<unsigned int>{3});
  EXPECT_EQ((std::vector<double>{10.25, 20.5, 1.5}), values(*below, "SOURCE_X"));

  // Added attributes join a list already built; after close and open it is
  // built afresh from the set below.
  view->getAttributeList();
  view->addAttribute(Attribute("SHOT_X2", "", vFLOAT32));
  EXPECT_TRUE(view->hasAttribute("SHOT_X2"));
  view->close();
  below->update("t", 0, "", "", nullptr);
  below->addAttribute(Attribute("LATE", "", vINT32));
  EXPECT_TRUE(view->hasAttribute("LATE"));
}

}  // namespace

#include "database/zon/ZonClassNamesTranslator.h"

#include <gtest/gtest.h>

#include "foundation/ErrorHandler.h"
#include "foundation/ExceptionErrorHandler.h"
#include "foundation/RaiseError.h"
#include "foundation/TestReleaseTree.h"

namespace {

class Infos : public ErrorHandler {
 public:
  Infos() : ErrorHandler(new ExceptionErrorHandler) { RaiseError::getInstance()->install(this); }
  ~Infos() override { RaiseError::getInstance()->uninstall(this); }
  std::vector<std::string> seen;

 protected:
  void doFatal(char const*, int, char const*) override {}
  void doError(char const*, int, char const*) override {}
  void doInfo(char const* label, int, char const* text) override { seen.push_back(std::string(label) + "|" + text); }
};

}  // namespace

TEST(ZonClassNamesTranslator, BothWaysAndBadLinesSkipped) {
  TestReleaseTree tree;
  tree.writeSystemFile("ZonClassTranslations.txt",
                       "# comment\n\nhorizon 3d HZ HZ3D\nbroken line\nwdepth - WDEP WDEPTH\nhorizon 3d HZ HZ3D extra\n");
  ZonClassNamesTranslator::dropTable();
  Infos infos;
  vString zonClass, table, className, subClass;
  ZonClassNamesTranslator::convertRondoVToZon("horizon", "3d", zonClass, table);
  EXPECT_EQ("HZ|HZ3D", std::string(zonClass.c_str()) + "|" + table.c_str());
  ZonClassNamesTranslator::convertZonToRondoV("WDEP", "WDEPTH", className, subClass);
  EXPECT_EQ("wdepth|", std::string(className.c_str()) + "|" + subClass.c_str());
  EXPECT_EQ((std::vector<std::string>{
                "ZonClassConvertLoader::checkForTokens|2 tokens located in string broken line. Line ignored",
                "ZonClassConvertLoader::checkForTokens|5 tokens located in string horizon 3d HZ HZ3D extra. Line "
                "ignored"}),
            infos.seen);
  expectFatal([] { vString a, b; ZonClassNamesTranslator::convertRondoVToZon("horizon", "2d", a, b); },
              "ZonClassNamesTranslator::convertRondoVToZon", "Class <horizon> and/or Sub Class <2d> not located");
  // The file is read once: a changed file counts only after dropTable.
  tree.writeSystemFile("ZonClassTranslations.txt", "horizon 2d HZ HZ2D\n");
  ZonClassNamesTranslator::convertRondoVToZon("horizon", "3d", zonClass, table);
  ZonClassNamesTranslator::dropTable();
  ZonClassNamesTranslator::convertRondoVToZon("horizon", "2d", zonClass, table);
  EXPECT_STREQ("HZ2D", table.c_str());
  ZonClassNamesTranslator::dropTable();
}

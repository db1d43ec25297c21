#include "attribute/RondoConversion.h"

#include <gtest/gtest.h>

#include "attribute/AttributeTesting.h"

using attribute_testing::expectFailure;

TEST(RondoConversion, FormatCodesBothWays) {
  struct Pair {
    int code;
    DataType type;
  } const pairs[] = {{1, vINT32}, {2, vFLOAT32}, {3, vFLOAT64}, {4, vSTRING}, {69, vINT64}};
  for (Pair const& p : pairs) {
    EXPECT_EQ(p.type, RondoConversion::FTToDorn(p.code)) << p.code;
    EXPECT_EQ(p.code, RondoConversion::dornToFT(p.type)) << p.code;
  }
  EXPECT_EQ(4, RondoConversion::dornToFT(vCHAR8));
}

TEST(RondoConversion, OtherValuesAreFatal) {
  for (int code : {5, 68, 70}) {
    vString reason;
    reason.printf("Unexpected FT format:%d", code);
    expectFailure([&] { RondoConversion::FTToDorn(code); }, "RondoConversion:FTToDorn()", reason.c_str());
  }
  expectFailure([] { RondoConversion::dornToFT(vINT16); }, "RondoConversion:dornToFT()", "Unexpected DataType :vINT16");
  // A type without a name is told by its number.
  expectFailure([] { RondoConversion::dornToFT(vSTRINGARRAY); }, "RondoConversion:dornToFT()",
                "Unexpected DataType :145");
}

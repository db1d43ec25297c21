#include "database/zon/ZonBuildAttribute.h"

#include <gtest/gtest.h>

#include "database/kvs/KvsParams.h"
#include "foundation/TestFailure.h"

TEST(ZonBuildAttribute, FormatsAndTheirRefusals) {
  EXPECT_EQ(kvs::KvsFmtINT, ZonBuildAttribute::getCode("INT"));
  EXPECT_EQ(kvs::KvsFmtDBL, ZonBuildAttribute::getCode("DBL"));
  EXPECT_EQ(0u, ZonBuildAttribute::getCode("C"));
  // "XYZ" read as a big-endian word over three letters and a zero.
  expectFailure([] { ZonBuildAttribute::getCode("XYZ"); }, "ZonBuildAttribute::getCode",
                "Unknown myConstruct code 1482250752.");
  struct {
    DataType type;
    char const* format;
    DataType back;
  } const rows[] = {{vINT32, "INT", vINT32}, {vINT16, "INT", vINT32}, {vFLOAT32, "FLT", vFLOAT32},
                    {vFLOAT64, "DBL", vFLOAT64}, {vSTRING, "C", vSTRING}};
  for (auto const& row : rows) {
    EXPECT_STREQ(row.format, ZonBuildAttribute::getFormat(row.type).c_str());
    EXPECT_EQ(row.back, ZonBuildAttribute::getDataType(ZonBuildAttribute::getCode(row.format)));
  }
  expectFailure([] { ZonBuildAttribute::getFormat(vBOOL8); }, "ZonBuildAttribute::getFormat",
                "Unexpected DataType vBOOL8");
}

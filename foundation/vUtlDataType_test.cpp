#include <gtest/gtest.h>

#include <string>

#include "foundation/TestFailure.h"
#include "foundation/UtlExcept.h"
#include "foundation/vDate.h"
#include "foundation/vString.h"
#include "foundation/vUtl.h"

namespace {

std::string str(vString const& s) { return std::string(s.c_str(), s.length()); }

TEST(vUtlDataType, SizesAndNamesOrUnknownCodes) {
  // The flags never change the size; vSTRING and vDATE are their objects.
  EXPECT_EQ(vUtl::dataTypeSize(vUINT128 | vARRAYOF), 16);
  EXPECT_EQ(vUtl::dataTypeSize(vSTRING), static_cast<int>(sizeof(vString)));
  EXPECT_EQ(vUtl::dataTypeSize(vDATE), static_cast<int>(sizeof(vDate)));
  if (sizeof(void*) == 4) {
    // The sizes of the 32-bit build, which attribute layouts assume.
    EXPECT_EQ(vUtl::dataTypeSize(vSTRING), 12);
    EXPECT_EQ(vUtl::dataTypeSize(vDATE), 60);
  }
  // Flags prefix the name; frame codes carry bit 0x40 but address-of codes are bit 64 without bit 32.
  EXPECT_EQ(str(vUtl::dataTypeName(vARRAYOF | vADDRESSOF | vFLOAT32)), "AddressOfArrayOfvFLOAT32");
  EXPECT_EQ(vUtl::dataTypeSize(vARRAYOF | vADDRESSOF | vFLOAT64), 8);
  EXPECT_EQ(str(vUtl::dataTypeName(vARRAYOF | vENDFRAME)), "ArrayOfvENDFRAME");
  for (int t : {0xC5, 0x45}) EXPECT_TRUE(vUtl::dataTypeIsAddressOf(t)) << t;
  for (int t : {0x85, int{vENDFRAME}, int{vPACKFRAME}, 0x60}) EXPECT_FALSE(vUtl::dataTypeIsAddressOf(t)) << t;
  EXPECT_EQ(fatalText([] { vUtl::dataTypeSize(-1); }), "vUtl::dataTypeSize: Unknown DataType -1.");
  // The first code past the list, as an address-of array.
  EXPECT_EQ(fatalText([] { vUtl::dataTypeName(vADDRESSOF | vARRAYOF | (vIBMFLOAT32 + 1)); }),
            "vUtl::dataTypeName: Unknown DataType 217.");
}

TEST(vUtlDataType, FromName) {
  struct Named {
    char const* name;
    int code;
  } const names[] = {
      {"VPACKFRAME", 127}, {"VARRAYOF", 0x80}, {"VSTRINGARRAY", 0x91}, {"VNUMBERARRAY", 0x8C},
  };
  for (Named const& n : names) {
    SCOPED_TRACE(n.name);
    EXPECT_EQ(vUtl::dataTypeFromName(vString(n.name)), n.code);
  }
  // The printed names read back, whatever their case.
  EXPECT_EQ(vUtl::dataTypeFromName(vString("vFloat32")), vFLOAT32);
  EXPECT_EQ(vUtl::dataTypeFromName(vUtl::dataTypeName(vINT64)), vINT64);
  EXPECT_EQ(vUtl::dataTypeFromName(vString("FLOAT")), vNOTYPE);
  EXPECT_EQ(vUtl::dataTypeFromName(vString("VINT32X")), vNOTYPE);
}

}  // namespace

#include "attribute/RondoConversion.h"

#include "foundation/Message.h"
#include "foundation/vString.h"
#include "foundation/vUtl.h"

namespace {

// A type's name, or its number when it is not a type at all: the message
// must not fail on the value it reports.
vString typeText(DataType type) {
  int const code = static_cast<int>(type);
  bool const named = (code >= 0 && code <= vIBMFLOAT32) || code == vENDFRAME || code == vPACKFRAME;
  if (named) return vUtl::dataTypeName(code);
  vString text;
  text.printf("%d", code);
  return text;
}

}  // namespace

DataType RondoConversion::FTToDorn(int format) {
  switch (format) {
    case 1:
      return vINT32;
    case 2:
      return vFLOAT32;
    case 3:
      return vFLOAT64;
    case 4:
      return vSTRING;
    case 69:
      return vINT64;
    default:
      break;
  }
  Message::fatal("RondoConversion:FTToDorn()", 0, "Unexpected FT format:%d", format);
}

int RondoConversion::dornToFT(DataType type) {
  switch (type) {
    case vINT32:
      return 1;
    case vFLOAT32:
      return 2;
    case vFLOAT64:
      return 3;
    case vCHAR8:
    case vSTRING:
      return 4;
    case vINT64:
      return 69;
    default:
      break;
  }
  Message::fatal("RondoConversion:dornToFT()", 0, "Unexpected DataType :%s", typeText(type).c_str());
}

#ifndef ATTRIBUTE_RONDOCONVERSION_H
#define ATTRIBUTE_RONDOCONVERSION_H

// RondoConversion: the format codes that the database back end gives its
// columns, against the system's data types.
//
//   code  1  vINT32      code  2  vFLOAT32     code  3  vFLOAT64
//   code  4  vSTRING (and vCHAR8 on the way out)  code 69  vINT64
//
// Any other value is fatal: "Unexpected FT format:%d" from
// "RondoConversion:FTToDorn()", "Unexpected DataType :%s" from
// "RondoConversion:dornToFT()".

#include "foundation/DataType.h"

class RondoConversion {
 public:
  static DataType FTToDorn(int format);
  static int dornToFT(DataType type);
};

#endif

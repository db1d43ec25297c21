#ifndef DATABASE_ZON_ZONBUILDATTRIBUTE_H
#define DATABASE_ZON_ZONBUILDATTRIBUTE_H

// ZonBuildAttribute: between the columns of a database table and
// attributes. A column ("array") holds one value a row, in one of the
// formats "INT", "FLT" and "DBL" or as text of a fixed width; it becomes a
// scalar attribute of vINT32, vFLOAT32, vFLOAT64 or vSTRING with a value an
// instance. With attribute translation on, the attribute's class is its
// name, so that class matching finds the columns of a table.

#include <vector>

#include "attribute/Attribute.h"
#include "attribute/CapiAttribute.h"
#include "foundation/DataType.h"
#include "foundation/vString.h"

namespace kvs {
struct KvsObjectRec;
}

class ZonBuildAttribute {
 public:
  // The column with all its rows.
  static Attribute buildDornAttribute(kvs::KvsObjectRec* array);
  // The format word of a column as its code (see KvsFmtCode), 0 for text
  // ("C"); any other word is fatal: "Unknown myConstruct code %d.".
  static unsigned int getCode(vString const& format);
  // The column format that holds a data type: "INT", "FLT", "DBL" or "C";
  // any other type is fatal: "Unexpected DataType %s".
  static vString getFormat(DataType type);
  static DataType getDataType(unsigned int code);
  // Lays the attribute's values out in block for the column and points the
  // column at them, ready for a write of all instances; numbers go through
  // the column's own conversion when the types differ and convert is set,
  // and are refused otherwise ("Unexpected DataType %s").
  static void buildDornColumn(kvs::KvsObjectRec* array, Attribute const& attribute, bool convert,
                              std::vector<unsigned char>& block);

  static void setAttributeConversion(Capi::eAttributeConversion conversion);
  static Capi::eAttributeConversion getAttributeConversion();

 private:
  static Capi::eAttributeConversion myAttributeConversion;
};

#endif

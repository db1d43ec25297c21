#include "database/zon/ZonBuildAttribute.h"

#include <cstring>
#include <vector>

#include "database/kvs/Kvs.h"
#include "foundation/Message.h"
#include "foundation/vUtl.h"

using namespace kvs;

Capi::eAttributeConversion ZonBuildAttribute::myAttributeConversion = Capi::eAttributeTranslation;

void ZonBuildAttribute::setAttributeConversion(Capi::eAttributeConversion conversion) {
  myAttributeConversion = conversion;
}

Capi::eAttributeConversion ZonBuildAttribute::getAttributeConversion() { return myAttributeConversion; }

unsigned int ZonBuildAttribute::getCode(vString const& format) {
  if (format == vString("C")) return 0;
  unsigned int const code = KvsFmtCode(format.c_str());
  if (code != KvsFmtINT && code != KvsFmtFLT && code != KvsFmtDBL)
    Message::fatal("ZonBuildAttribute::getCode", 0, "Unknown myConstruct code %d.", static_cast<int>(code));
  return code;
}

vString ZonBuildAttribute::getFormat(DataType type) {
  switch (type) {
    case vINT16:
    case vINT32:
    case vINT64:
      return vString("INT");
    case vFLOAT32:
      return vString("FLT");
    case vFLOAT64:
      return vString("DBL");
    case vSTRING:
      return vString("C");
    default:
      Message::fatal("ZonBuildAttribute::getFormat", 0, "Unexpected DataType %s", vUtl::dataTypeName(type).c_str());
  }
}

DataType ZonBuildAttribute::getDataType(unsigned int code) {
  if (code == KvsFmtINT) return vINT32;
  if (code == KvsFmtFLT) return vFLOAT32;
  if (code == KvsFmtDBL) return vFLOAT64;
  return vSTRING;
}

Attribute ZonBuildAttribute::buildDornAttribute(KvsObjectRec* array) {
  char const* name = nullptr;
  char const* format = nullptr;
  long rows = 0, width = 0;
  KvsGet(array, KvsNname, &name, KvsNformat, &format, KvsNsize, &rows, KvsNlength, &width, 0L);
  unsigned int const code = getCode(vString(format ? format : "C"));
  DataType const type = getDataType(code);
  vUCString const attributeName(name ? name : "");
  Attribute attribute(attributeName, myAttributeConversion == Capi::eAttributeTranslation ? attributeName : vUCString(),
                      type, 1);
  attribute.resize(static_cast<unsigned int>(rows));
  if (rows < 1) return attribute;
  std::vector<unsigned char> block(static_cast<std::size_t>(rows) * static_cast<std::size_t>(width));
  KvsLseek(array, 0);
  KvsSet(array, KvsNdata, block.data(), 0L);
  long const got = KvsRead(array, rows);
  KvsSet(array, KvsNdata, static_cast<void*>(nullptr), 0L);
  if (got != rows)
    Message::fatal("ZonBuildAttribute::buildDornAttribute", 0, "Error reading column %s: %ld of %ld rows:%s",
                   attributeName.c_str(), got, rows, KvsErrorString());
  if (type == vSTRING) {
    for (long i = 0; i < rows; ++i)
      attribute.setString(static_cast<unsigned int>(i + 1),
                          vString(static_cast<int>(width), reinterpret_cast<char const*>(&block[i * width])).c_str());
  } else {
    std::memcpy(attribute.getPointer(1), block.data(), block.size());
  }
  return attribute;
}

void ZonBuildAttribute::buildDornColumn(KvsObjectRec* array, Attribute const& attribute, bool convert,
                                        std::vector<unsigned char>& block) {
  unsigned int const n = attribute.getNInstances();
  if (n == 0) return;
  char const* format = nullptr;
  long width = 0;
  KvsGet(array, KvsNformat, &format, KvsNlength, &width, 0L);
  unsigned int const code = getCode(vString(format ? format : "C"));
  block.clear();
  char const* given = nullptr;
  if (code == 0) {
    if (attribute.getDataType() != vSTRING)
      Message::fatal("ZonBuildAttribute::buildDornColumn", 0, "Attribute %s must be text for column of width %ld.",
                     attribute.getName().c_str(), width);
    block.assign(static_cast<std::size_t>(n) * static_cast<std::size_t>(width), 0);
    for (unsigned int i = 0; i < n; ++i) {
      vString const& text = attribute.getString(i + 1);
      std::memcpy(&block[i * width], text.c_str(), std::min<std::size_t>(text.length(), width - 1));
    }
  } else {
    DataType const type = attribute.getDataType();
    if (!convert && getDataType(code) != type)
      Message::fatal("ZonBuildAttribute::buildDornColumn", 0, "Unexpected DataType %s", vUtl::dataTypeName(type).c_str());
    if (type == vINT32 || type == vFLOAT32 || type == vFLOAT64) {
      given = type == vINT32 ? "INT" : type == vFLOAT32 ? "FLT" : "DBL";
      block.resize(attribute.getTotalNBytes());
      std::memcpy(block.data(), attribute.getPointer(1), block.size());
    } else {
      getFormat(type);  // refuses what no column holds
      block.resize(static_cast<std::size_t>(n) * 8);
      for (unsigned int i = 0; i < n; ++i) {
        double const v = attribute.getValue(i + 1);
        std::memcpy(&block[i * 8], &v, 8);
      }
      given = "DBL";
    }
  }
  KvsSet(array, KvsNdata, block.data(), KvsNfmt, given ? given : "", 0L);
}

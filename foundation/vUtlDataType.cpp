// Names and sizes of the DataType codes.

#include <cctype>

#include "foundation/Message.h"
#include "foundation/vDate.h"
#include "foundation/vString.h"
#include "foundation/vUtl.h"

namespace {

struct TypeInfo {
  DataType type;
  char const* name;
  int size;
};

// Indexed by code 0-24; the two frame codes are handled on their own.
TypeInfo const kTypes[] = {
    {vNOTYPE, "vNOTYPE", 0},
    {vINT8, "vINT8", 1},
    {vUINT8, "vUINT8", 1},
    {vINT16, "vINT16", 2},
    {vUINT16, "vUINT16", 2},
    {vINT32, "vINT32", 4},
    {vUINT32, "vUINT32", 4},
    {vINT64, "vINT64", 8},
    {vUINT64, "vUINT64", 8},
    {vINT128, "vINT128", 16},
    {vUINT128, "vUINT128", 16},
    {vFLOAT32, "vFLOAT32", 4},
    {vFLOAT64, "vFLOAT64", 8},
    {vFLOAT128, "vFLOAT128", 16},
    {vCHAR8, "vCHAR8", 1},
    {vUCHAR8, "vUCHAR8", 1},
    {vBOOL8, "vBOOL8", 1},
    {vSTRING, "vSTRING", static_cast<int>(sizeof(vString))},
    {vDATE, "vDATE", static_cast<int>(sizeof(vDate))},
    {vLOB, "vLOB", 1},
    {vCLOB, "vCLOB", 1},
    {vCOMPLEX32, "vCOMPLEX32", 8},
    {vCOMPLEX64, "vCOMPLEX64", 16},
    {vFLOAT16, "vFLOAT16", 2},
    {vIBMFLOAT32, "vIBMFLOAT32", 4},
};
int const kNTypes = static_cast<int>(sizeof(kTypes) / sizeof(kTypes[0]));

TypeInfo const kEndFrame = {vENDFRAME, "vENDFRAME", 0};
TypeInfo const kPackFrame = {vPACKFRAME, "vPACKFRAME", 2};

// The base code: an address-of byte keeps only its low six bits, any other
// byte loses the array bit. So 0x7E and 0x7F stay frame codes.
int baseType(int type) { return vUtl::dataTypeIsAddressOf(type) ? (type & 0x3F) : (type & 0x7F); }

TypeInfo const& lookUp(int type, char const* label) {
  // A type is one byte: anything wider is no code at all, rather than the
  // code of its low byte.
  if (type < 0 || type > 0xFF) Message::fatal(label, 0, "Unknown DataType %d.", type);
  int const base = baseType(type);
  if (base >= 0 && base < kNTypes) return kTypes[base];
  if (base == vENDFRAME) return kEndFrame;
  if (base == vPACKFRAME) return kPackFrame;
  Message::fatal(label, 0, "Unknown DataType %d.", type);
}

struct NamedType {
  char const* name;
  DataType type;
};

NamedType const kNames[] = {
    {"VINT32", vINT32},
    {"VFLOAT16", vFLOAT16},
    {"VFLOAT32", vFLOAT32},
    {"VIBMFLOAT32", vIBMFLOAT32},
    {"VFLOAT64", vFLOAT64},
    {"VINT16", vINT16},
    {"VINT8", vINT8},
    {"VINT64", vINT64},
    {"VUINT32", vUINT32},
    {"VUINT16", vUINT16},
    {"VUINT8", vUINT8},
    {"VUINT64", vUINT64},
    {"VINT128", vINT128},
    {"VUINT128", vUINT128},
    {"VFLOAT128", vFLOAT128},
    {"VCHAR8", vCHAR8},
    {"VUCHAR8", vUCHAR8},
    {"VBOOL8", vBOOL8},
    {"VSTRING", vSTRING},
    {"VDATE", vDATE},
    {"VLOB", vLOB},
    {"VCLOB", vCLOB},
    {"VCOMPLEX32", vCOMPLEX32},
    {"VCOMPLEX64", vCOMPLEX64},
    {"VENDFRAME", vENDFRAME},
    {"VPACKFRAME", vPACKFRAME},
    {"VARRAYOF", vARRAYOF},
    {"VSTRINGARRAY", vSTRINGARRAY},
    {"VNUMBERARRAY", vNUMBERARRAY},
    {"VBOOLEANARRAY", vBOOLEANARRAY},
};

}  // namespace

namespace vUtl {

int dataTypeSize(int type) { return lookUp(type, "vUtl::dataTypeSize").size; }

vString dataTypeName(int type) {
  TypeInfo const& info = lookUp(type, "vUtl::dataTypeName");
  vString name;
  if (dataTypeIsAddressOf(type)) name += "AddressOf";
  if (type & vARRAYOF) name += "ArrayOf";
  name += info.name;
  return name;
}

DataType dataTypeFromName(vString const& name) {
  vString upper(name);
  upper.toUpperCase();
  for (NamedType const& n : kNames) {
    if (upper == n.name) return n.type;
  }
  return vNOTYPE;
}

}  // namespace vUtl

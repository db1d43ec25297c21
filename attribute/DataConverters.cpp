// The six concrete converters. Each single step either hands its input on,
// or converts it through DataConverterDecorator::myConvertTo; the choice of
// rounding is the converter's: the numeric ones round floats to the nearest
// integer and saturate, OriginalDataConverter truncates.

#include "attribute/Float32DataConverter.h"
#include "attribute/Float64DataConverter.h"
#include "attribute/Int32DataConverter.h"
#include "attribute/Int64DataConverter.h"
#include "attribute/NullDataConverter.h"
#include "attribute/OriginalDataConverter.h"
#include "foundation/Message.h"
#include "foundation/vUtl.h"

namespace {

bool isFloat(DataType type) { return type == vFLOAT32 || type == vFLOAT64; }

// Floats become integers by nint (ConvertClip saturates as nint does);
// integers narrow by keeping their low bits.
int numericFlags(DataType source) { return isFloat(source) ? vUtl::ConvertClip : 0; }

[[noreturn]] void refuse(char const* label, DataType type) {
  Message::fatal(label, 0, "Unsupported input data type %s.", vUtl::dataTypeName(type).c_str());
}

}  // namespace

// --- NullDataConverter -------------------------------------------------------

NullDataConverter::NullDataConverter(vString const& arguments, vHandle<DataConverterI> const& next)
    : DataConverterDecorator(arguments, next) {}

NullDataConverter::~NullDataConverter() {}

DataPtr NullDataConverter::doConvertData(DataPtr& data) const { return myHandOn(data); }

DataPtr NullDataConverter::doConvertData(DataPtr const& data) const { return myCopy(data); }

DataType NullDataConverter::doGetOutputDT() const { return vNOTYPE; }

// --- Int32DataConverter ------------------------------------------------------

Int32DataConverter::Int32DataConverter(vString const& arguments, vHandle<DataConverterI> const& next)
    : DataConverterDecorator(arguments, next) {}

Int32DataConverter::~Int32DataConverter() {}

namespace {

bool int32Accepts(DataType t) { return t == vINT16 || t == vINT32 || t == vINT64 || isFloat(t); }

}  // namespace

DataPtr Int32DataConverter::doConvertData(DataPtr& data) const {
  DataType const t = data.getDataType();
  if (!int32Accepts(t)) refuse("Int32DataConverter::doConvertData()", t);
  if (t == vINT32) return myHandOn(data);
  return myConvertTo(data, vINT32, numericFlags(t));
}

DataPtr Int32DataConverter::doConvertData(DataPtr const& data) const {
  DataType const t = data.getDataType();
  if (!int32Accepts(t)) refuse("Int32DataConverter::doConvertData()", t);
  if (t == vINT32) return myCopy(data);
  return myConvertTo(data, vINT32, numericFlags(t));
}

DataType Int32DataConverter::doGetOutputDT() const { return vINT32; }

// --- Int64DataConverter ------------------------------------------------------

Int64DataConverter::Int64DataConverter(vString const& arguments, vHandle<DataConverterI> const& next)
    : DataConverterDecorator(arguments, next) {}

Int64DataConverter::~Int64DataConverter() {}

namespace {

bool int64Accepts(DataType t) { return t == vINT16 || t == vINT32 || t == vINT64 || isFloat(t); }

}  // namespace

DataPtr Int64DataConverter::doConvertData(DataPtr& data) const {
  DataType const t = data.getDataType();
  if (!int64Accepts(t)) refuse("Int64DataConverter::doConvertData()", t);
  if (t == vINT64) return myHandOn(data);
  return myConvertTo(data, vINT64, numericFlags(t));
}

DataPtr Int64DataConverter::doConvertData(DataPtr const& data) const {
  DataType const t = data.getDataType();
  if (!int64Accepts(t)) refuse("Int64DataConverter::doConvertData()", t);
  if (t == vINT64) return myCopy(data);
  return myConvertTo(data, vINT64, numericFlags(t));
}

DataType Int64DataConverter::doGetOutputDT() const { return vINT64; }

// --- Float32DataConverter ----------------------------------------------------

Float32DataConverter::Float32DataConverter(vString const& arguments, vHandle<DataConverterI> const& next)
    : DataConverterDecorator(arguments, next) {}

Float32DataConverter::~Float32DataConverter() {}

namespace {

bool float32Accepts(DataType t) { return t == vINT32 || t == vINT64 || isFloat(t); }

}  // namespace

DataPtr Float32DataConverter::doConvertData(DataPtr& data) const {
  DataType const t = data.getDataType();
  if (!float32Accepts(t)) refuse("Float32DataConverter::doConvertData()", t);
  if (t == vFLOAT32) return myHandOn(data);
  return myConvertTo(data, vFLOAT32, 0);
}

DataPtr Float32DataConverter::doConvertData(DataPtr const& data) const {
  DataType const t = data.getDataType();
  if (!float32Accepts(t)) refuse("Float32DataConverter::doConvertData()", t);
  if (t == vFLOAT32) return myCopy(data);
  return myConvertTo(data, vFLOAT32, 0);
}

DataType Float32DataConverter::doGetOutputDT() const { return vFLOAT32; }

// --- Float64DataConverter ----------------------------------------------------

Float64DataConverter::Float64DataConverter(vString const& arguments, vHandle<DataConverterI> const& next)
    : DataConverterDecorator(arguments, next) {}

Float64DataConverter::~Float64DataConverter() {}

namespace {

bool float64Accepts(DataType t) { return t == vINT16 || t == vINT32 || t == vINT64 || isFloat(t); }

}  // namespace

DataPtr Float64DataConverter::doConvertData(DataPtr& data) const {
  DataType const t = data.getDataType();
  if (!float64Accepts(t)) refuse("Float64DataConverter::doConvertData()", t);
  if (t == vFLOAT64) return myHandOn(data);
  return myConvertTo(data, vFLOAT64, 0);
}

DataPtr Float64DataConverter::doConvertData(DataPtr const& data) const {
  DataType const t = data.getDataType();
  if (!float64Accepts(t)) refuse("Float64DataConverter::doConvertData()", t);
  if (t == vFLOAT64) return myCopy(data);
  return myConvertTo(data, vFLOAT64, 0);
}

DataType Float64DataConverter::doGetOutputDT() const { return vFLOAT64; }

// --- OriginalDataConverter ---------------------------------------------------

OriginalDataConverter::OriginalDataConverter(vString const& arguments, vHandle<DataConverterI> const& next)
    : DataConverterDecorator(arguments, next) {}

OriginalDataConverter::~OriginalDataConverter() {}

bool OriginalDataConverter::myCheck(DataPtr const& data) const {
  DataType const in = data.getDataType();
  DataType const out = myOutputDT();
  if (!isFloat(in))
    Message::fatal("OriginalDataConverter::doConvertData", 0,
                   "Unexpected attribute input data type '%s'.  Output data type is '%s'.",
                   vUtl::dataTypeName(in).c_str(), vUtl::dataTypeName(out).c_str());
  if (out != vINT32 && out != vINT64 && !isFloat(out))
    Message::fatal("OriginalDataConverter::doConvertData", 0, "Unexpected output type '%s'.",
                   vUtl::dataTypeName(out).c_str());
  return in == out;
}

DataPtr OriginalDataConverter::doConvertData(DataPtr& data) const {
  if (myCheck(data)) return myHandOn(data);
  return myConvertTo(data, myOutputDT(), vUtl::ConvertClip | vUtl::ConvertTruncate);
}

DataPtr OriginalDataConverter::doConvertData(DataPtr const& data) const {
  if (myCheck(data)) return myCopy(data);
  return myConvertTo(data, myOutputDT(), vUtl::ConvertClip | vUtl::ConvertTruncate);
}

DataType OriginalDataConverter::doGetOutputDT() const {
  Message::fatal("OriginalDataConverter::doGetOutputDT", 0, "Need code");
}

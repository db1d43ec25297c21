#include "attribute/DataConverterDecorator.h"

#include <cstddef>

#include "foundation/vUtl.h"

DataConverterDecorator::DataConverterDecorator(vString const& arguments, vHandle<DataConverterI> const& next)
    : DataConverterI(arguments), myNext(next) {}

DataConverterDecorator::~DataConverterDecorator() {}

DataType DataConverterDecorator::getOutputDT() const {
  DataType const own = doGetOutputDT();
  if (own != vNOTYPE) return own;
  if (DataConverterI* next = myNext.pointer()) return next->getOutputDT();
  return vNOTYPE;
}

DataPtr DataConverterDecorator::convertData(DataPtr& data) const {
  if (DataConverterI* next = myNext.pointer()) {
    DataPtr inner = next->convertData(data);
    return doConvertData(inner);
  }
  return doConvertData(data);
}

DataPtr DataConverterDecorator::convertData(DataPtr const& data) const {
  if (DataConverterI* next = myNext.pointer()) {
    // The inner result is this call's own, so the outer step may reuse it.
    DataPtr inner = next->convertData(data);
    return doConvertData(inner);
  }
  return doConvertData(data);
}

DataPtr DataConverterDecorator::myHandOn(DataPtr& data) {
  DataPtr result;
  result = data;
  return result;
}

DataPtr DataConverterDecorator::myCopy(DataPtr const& data) {
  DataPtr result;
  result.deepCopy(data);
  return result;
}

DataPtr DataConverterDecorator::myConvertTo(DataPtr& data, DataType type, int flags) {
  // Read the source before prepare() may take its block over.
  void const* const source = data.getData();
  std::size_t const n = static_cast<std::size_t>(data.getTotalLength());
  DataType const sourceType = data.getDataType();
  DataPtr result(type, 0);
  result.prepare(data);
  vUtl::copyConvert(source, sourceType, result.getData(), type, n, flags);
  return result;
}

DataPtr DataConverterDecorator::myConvertTo(DataPtr const& data, DataType type, int flags) {
  DataPtr result(type, 0);
  result.prepare(data);
  vUtl::copyConvert(data.getData(), data.getDataType(), result.getData(), type,
                    static_cast<std::size_t>(data.getTotalLength()), flags);
  return result;
}

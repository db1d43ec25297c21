#ifndef ATTRIBUTE_INT64DATACONVERTER_H
#define ATTRIBUTE_INT64DATACONVERTER_H

// Int64DataConverter converts to vINT64: vINT16 and vINT32 widen, vFLOAT32 and
// vFLOAT64 round to the nearest integer (vUtl::nint64), vINT64 passes on. Any
// other input type is fatal. Length information passes along; the const form
// copies where the plain form hands the input on.

#include "attribute/DataConverterDecorator.h"

class Int64DataConverter : public DataConverterDecorator {
 public:
  explicit Int64DataConverter(vString const& arguments, vHandle<DataConverterI> const& next = vHandle<DataConverterI>());
  ~Int64DataConverter() override;

 protected:
  DataPtr doConvertData(DataPtr& data) const override;
  DataPtr doConvertData(DataPtr const& data) const override;
  DataType doGetOutputDT() const override;
};

#endif

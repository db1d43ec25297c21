#ifndef ATTRIBUTE_FLOAT64DATACONVERTER_H
#define ATTRIBUTE_FLOAT64DATACONVERTER_H

// Float64DataConverter converts to vFLOAT64: vINT16, vINT32, vINT64 and
// vFLOAT32 by plain conversion, vFLOAT64 passes on. Any other input type is
// fatal. Length information passes along; the const form copies where the
// plain form hands the input on.

#include "attribute/DataConverterDecorator.h"

class Float64DataConverter : public DataConverterDecorator {
 public:
  explicit Float64DataConverter(vString const& arguments, vHandle<DataConverterI> const& next = vHandle<DataConverterI>());
  ~Float64DataConverter() override;

 protected:
  DataPtr doConvertData(DataPtr& data) const override;
  DataPtr doConvertData(DataPtr const& data) const override;
  DataType doGetOutputDT() const override;
};

#endif

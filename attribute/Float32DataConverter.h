#ifndef ATTRIBUTE_FLOAT32DATACONVERTER_H
#define ATTRIBUTE_FLOAT32DATACONVERTER_H

// Float32DataConverter converts to vFLOAT32: vINT32, vINT64 and vFLOAT64 by
// plain conversion (to the nearest float; beyond the float range, infinity),
// vFLOAT32 passes on. There is no vINT16 input. Any other input type is fatal.
// Length information passes along; the const form copies where the plain form
// hands the input on.

#include "attribute/DataConverterDecorator.h"

class Float32DataConverter : public DataConverterDecorator {
 public:
  explicit Float32DataConverter(vString const& arguments, vHandle<DataConverterI> const& next = vHandle<DataConverterI>());
  ~Float32DataConverter() override;

 protected:
  DataPtr doConvertData(DataPtr& data) const override;
  DataPtr doConvertData(DataPtr const& data) const override;
  DataType doGetOutputDT() const override;
};

#endif

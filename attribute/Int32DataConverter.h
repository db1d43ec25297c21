#ifndef ATTRIBUTE_INT32DATACONVERTER_H
#define ATTRIBUTE_INT32DATACONVERTER_H

// Int32DataConverter converts to vINT32: vINT16 widens, vINT64 keeps its low
// 32 bits, vFLOAT32 and vFLOAT64 round to the nearest integer (vUtl::nint,
// halves away from zero, saturating), vINT32 passes on. Any other input type
// is fatal. Length information passes along; the const form copies where the
// plain form hands the input on.

#include "attribute/DataConverterDecorator.h"

class Int32DataConverter : public DataConverterDecorator {
 public:
  explicit Int32DataConverter(vString const& arguments, vHandle<DataConverterI> const& next = vHandle<DataConverterI>());
  ~Int32DataConverter() override;

 protected:
  DataPtr doConvertData(DataPtr& data) const override;
  DataPtr doConvertData(DataPtr const& data) const override;
  DataType doGetOutputDT() const override;
};

#endif

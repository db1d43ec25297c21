#ifndef ATTRIBUTE_NULLDATACONVERTER_H
#define ATTRIBUTE_NULLDATACONVERTER_H

// NullDataConverter hands the input on unchanged and has no output type of
// its own (vNOTYPE): it marks a translation that does nothing. The const
// form hands on a copy.

#include "attribute/DataConverterDecorator.h"

class NullDataConverter : public DataConverterDecorator {
 public:
  explicit NullDataConverter(vString const& arguments, vHandle<DataConverterI> const& next = vHandle<DataConverterI>());
  ~NullDataConverter() override;

 protected:
  DataPtr doConvertData(DataPtr& data) const override;
  DataPtr doConvertData(DataPtr const& data) const override;
  DataType doGetOutputDT() const override;
};

#endif

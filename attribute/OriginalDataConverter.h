#ifndef ATTRIBUTE_ORIGINALDATACONVERTER_H
#define ATTRIBUTE_ORIGINALDATACONVERTER_H

// OriginalDataConverter restores data that were integers (or floats of the
// other width) before a translation made them floats: the output type is the
// one set by setOutputDT, one of vINT32, vINT64, vFLOAT32, vFLOAT64, and the
// input must be vFLOAT32 or vFLOAT64. Floats go to integers by truncation
// toward zero, unlike Int32DataConverter, which rounds: the values were
// integers already, so truncation gives them back as they were. Between
// floats the conversion is plain; the same type passes on.
//
// It has no output type of its own to report: doGetOutputDT is fatal.

#include "attribute/DataConverterDecorator.h"

class OriginalDataConverter : public DataConverterDecorator {
 public:
  explicit OriginalDataConverter(vString const& arguments,
                                 vHandle<DataConverterI> const& next = vHandle<DataConverterI>());
  ~OriginalDataConverter() override;

 protected:
  DataPtr doConvertData(DataPtr& data) const override;
  DataPtr doConvertData(DataPtr const& data) const override;
  DataType doGetOutputDT() const override;

 private:
  // The checks of both forms: true when the data pass on unchanged.
  bool myCheck(DataPtr const& data) const;
};

#endif

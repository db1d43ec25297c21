#ifndef ATTRIBUTE_DATACONVERTERDECORATOR_H
#define ATTRIBUTE_DATACONVERTERDECORATOR_H

// DataConverterDecorator: a converter that can sit on another one. The
// chain runs from the innermost converter outward: convertData first lets
// the next converter convert, then converts its result. A converter without
// a type of its own (doGetOutputDT giving vNOTYPE) reports the type of the
// next one.
//
// The derived classes fill in doConvertData for a single step and may use
// myConvertTo, which makes the output block by DataPtr::prepare (so that a
// conversion between types of one size works in place on a block the input
// owns) and fills it with vUtl::copyConvert.

#include "attribute/DataConverterI.h"
#include "foundation/vHandle.h"

class DataConverterDecorator : public DataConverterI {
 public:
  DataConverterDecorator(vString const& arguments, vHandle<DataConverterI> const& next);
  ~DataConverterDecorator() override;

  DataType getOutputDT() const override;
  DataPtr convertData(DataPtr& data) const override;
  DataPtr convertData(DataPtr const& data) const override;

  // The next converter of the chain, which may be empty.
  vHandle<DataConverterI> const& getNext() const { return myNext; }

 protected:
  virtual DataPtr doConvertData(DataPtr& data) const = 0;
  virtual DataPtr doConvertData(DataPtr const& data) const = 0;
  virtual DataType doGetOutputDT() const = 0;

  // The input handed on as it is: the result takes over what the input
  // held, the input is left empty.
  static DataPtr myHandOn(DataPtr& data);
  // A copy that owns its block, for a const input.
  static DataPtr myCopy(DataPtr const& data);
  // data converted to type; flags are those of vUtl::copyConvert.
  static DataPtr myConvertTo(DataPtr& data, DataType type, int flags);
  static DataPtr myConvertTo(DataPtr const& data, DataType type, int flags);

 private:
  vHandle<DataConverterI> myNext;
};

#endif

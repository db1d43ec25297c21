#ifndef ATTRIBUTE_DATACONVERTERI_H
#define ATTRIBUTE_DATACONVERTERI_H

// DataConverterI: converts a block of attribute data (a DataPtr) from one
// data type to another. Converters are shared process-wide through handles
// (see BuildConverter) and hold nothing but their configuration: the text
// of their arguments and an output data type.
//
// convertData returns the converted block. The form taking a plain DataPtr
// may take over the input's block and convert in place, leaving the input
// without ownership of it (or empty); the const form never touches the
// input. When a conversion is refused the input is left as it was.
//
// setOutputDT is const as well as plain because the type is asked for on
// shared objects at the time of use; it makes conversions through one object
// unsafe in parallel.

#include "attribute/DataPtr.h"
#include "foundation/DataType.h"
#include "foundation/vString.h"

class DataConverterI {
 public:
  explicit DataConverterI(vString const& arguments);
  virtual ~DataConverterI();

  virtual DataType getOutputDT() const = 0;
  virtual DataPtr convertData(DataPtr& data) const = 0;
  virtual DataPtr convertData(DataPtr const& data) const = 0;
  virtual void setOutputDT(DataType type) const;
  virtual void setOutputDT(DataType type);

  // The argument text as given between the parentheses of the converter's
  // name, commas turned to blanks; no converter interprets it.
  vString const& getArguments() const { return myArguments; }

 protected:
  // The type set by setOutputDT; vNOTYPE until then.
  DataType myOutputDT() const { return myOutputType; }

 private:
  DataConverterI(DataConverterI const&) = delete;
  DataConverterI& operator=(DataConverterI const&) = delete;

  mutable DataType myOutputType;
  vString myArguments;
};

#endif

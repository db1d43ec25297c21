#ifndef ATTRIBUTE_BUILDCONVERTER_H
#define ATTRIBUTE_BUILDCONVERTER_H

// BuildConverter: builds a converter chain from its text, such as
// "int32()float32()": a row of names, each with an argument text in
// parentheses. Each converter is built with the chain so far as its next
// one, so the last named is the head and the first named runs first.
//
// Names: "null", "int32", "int64", "float32", "float64", "original", in any
// case. There is one converter object per name per process: the first text
// that names it decides its arguments and its next converter, and later
// texts naming it get that same object back. Converters hold no state of a
// conversion, so sharing them is safe; the decision is kept as the
// translation tables rely on it.
//
// A text without a '(' after its first character gives an empty handle.
// A '(' without its ')' is fatal from "BuildConverter::createConverter()":
// "Missing ')' on conversion string '%s'."; an unknown name throws UtlExcept
// "BuildConverter::createConverter(): unknown converter <name>".

#include "attribute/DataConverterI.h"
#include "foundation/vHandle.h"
#include "foundation/vString.h"

class BuildConverter {
 public:
  static vHandle<DataConverterI> createConverter(vString const& text);
};

#endif

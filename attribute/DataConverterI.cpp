#include "attribute/DataConverterI.h"

DataConverterI::DataConverterI(vString const& arguments) : myOutputType(vNOTYPE), myArguments(arguments) {}

DataConverterI::~DataConverterI() {}

void DataConverterI::setOutputDT(DataType type) const { myOutputType = type; }

void DataConverterI::setOutputDT(DataType type) { myOutputType = type; }

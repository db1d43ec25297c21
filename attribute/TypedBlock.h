#ifndef ATTRIBUTE_TYPEDBLOCK_H
#define ATTRIBUTE_TYPEDBLOCK_H

// Blocks of typed elements made with array new and freed with the matching
// array delete, for the value holders of the attribute model. Callers check
// first that they hold the type; these only map the code to the C++ type.

#include <cstddef>

#include "foundation/DataType.h"

// n value-initialised elements (zeros, or empty vStrings); nullptr for a
// type that has no block form. May throw std::bad_alloc.
void* newTypedBlock(DataType type, std::size_t n);

// Frees a block made by newTypedBlock; false, and nothing freed, for a type
// that has no block form.
bool deleteTypedBlock(DataType type, void* block);

#endif

#include "attribute/TypedBlock.h"

#include <cstdint>

#include "foundation/vString.h"

void* newTypedBlock(DataType type, std::size_t n) {
  switch (type) {
    case vINT8:
      return new int8_t[n]();
    case vUINT8:
    case vBOOL8:
      return new uint8_t[n]();
    case vINT16:
      return new int16_t[n]();
    case vUINT16:
      return new uint16_t[n]();
    case vINT32:
      return new int32_t[n]();
    case vUINT32:
      return new uint32_t[n]();
    case vINT64:
      return new long long[n]();
    case vFLOAT32:
      return new float[n]();
    case vFLOAT64:
      return new double[n]();
    case vSTRING:
      return new vString[n];
    default:
      return nullptr;
  }
}

bool deleteTypedBlock(DataType type, void* block) {
  switch (type) {
    case vINT8:
      delete[] static_cast<int8_t*>(block);
      return true;
    case vUINT8:
    case vBOOL8:
      delete[] static_cast<uint8_t*>(block);
      return true;
    case vINT16:
      delete[] static_cast<int16_t*>(block);
      return true;
    case vUINT16:
      delete[] static_cast<uint16_t*>(block);
      return true;
    case vINT32:
      delete[] static_cast<int32_t*>(block);
      return true;
    case vUINT32:
      delete[] static_cast<uint32_t*>(block);
      return true;
    case vINT64:
      delete[] static_cast<long long*>(block);
      return true;
    case vFLOAT32:
      delete[] static_cast<float*>(block);
      return true;
    case vFLOAT64:
      delete[] static_cast<double*>(block);
      return true;
    case vSTRING:
      delete[] static_cast<vString*>(block);
      return true;
    default:
      return false;
  }
}

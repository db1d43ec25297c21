#ifndef SERVER_DATASERVERREQUEST_H
#define SERVER_DATASERVERREQUEST_H

// The arguments of a client's request, read in the order they come. A
// request that ends early, or carries an entry of another type, fails in the
// Packer with its own text, which goes back to the client.

#include <cstdint>
#include <iterator>
#include <vector>

#include "foundation/Packer.h"
#include "foundation/vString.h"

namespace DataServerRequest {

inline vString readString(Packer& in) {
  vString text;
  in.unpack(text);
  return text;
}

inline int32_t readInt(Packer& in) {
  int32_t value = 0;
  in.unpack(value);
  return value;
}

inline uint32_t readUInt(Packer& in) {
  uint32_t value = 0;
  in.unpack(value);
  return value;
}

inline bool readBool(Packer& in) {
  bool value = false;
  in.unpackBool(value);
  return value;
}

// A list of instance numbers.
inline std::vector<unsigned int> readInstances(Packer& in) {
  std::vector<unsigned int> list;
  unpack(in, std::back_inserter(list), 0u);
  return list;
}

}  // namespace DataServerRequest

#endif

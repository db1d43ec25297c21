#include "remote/CommChanImp.h"

#include <climits>
#include <cstring>
#include <memory>
#include <new>

#include "foundation/Message.h"
#include "foundation/vUtl.h"

CommChanImp::CommChanImp() : m_swap(false) {}

CommChanImp::~CommChanImp() = default;

int CommChanImp::myNBytes(int count, int size, char const* label) {
  if (count < 0 || count > INT_MAX / size)
    Message::fatal(label, 0, "Requested element count (%d) was invalid.", count);
  return count * size;
}

template <class T>
CommChan::StatusType CommChanImp::mySend(T const* data, int count, char const* label) {
  int const n = myNBytes(count, static_cast<int>(sizeof(T)), label);
  return sendChar8(reinterpret_cast<char const*>(data), n);
}

template <class T>
CommChan::StatusType CommChanImp::myReceive(T* data, int count, char const* label) {
  int const n = myNBytes(count, static_cast<int>(sizeof(T)), label);
  StatusType const s = receiveChar8(reinterpret_cast<char*>(data), n);
  if constexpr (sizeof(T) > 1) {
    if (s == OK) swapBytes(data, count);
  }
  return s;
}

CommChan::StatusType CommChanImp::sendBool(bool const* data, int count) {
  int const n = myNBytes(count, 1, "CommChanImp::sendBool");
  // A bool may hold any non-zero byte for true: the wire carries 0 or 1.
  std::unique_ptr<char[]> bytes(new (std::nothrow) char[n > 0 ? n : 1]);
  if (!bytes) Message::fatal("CommChanImp::sendBool", 0, "Could not allocate memory for %d Bool8s.", count);
  for (int i = 0; i < n; ++i) {
    // Read as the byte it is: the memory may come from elsewhere than a
    // bool assignment.
    unsigned char b;
    std::memcpy(&b, data + i, 1);
    bytes[i] = b != 0 ? 1 : 0;
  }
  return sendChar8(bytes.get(), n);
}

CommChan::StatusType CommChanImp::receiveBool(bool* data, int count) {
  int const n = myNBytes(count, 1, "CommChanImp::receiveBool");
  unsigned char* raw = reinterpret_cast<unsigned char*>(data);
  StatusType const s = receiveChar8(reinterpret_cast<char*>(raw), n);
  if (s == OK) {
    for (int i = 0; i < n; ++i) {
      unsigned char const b = raw[i];
      data[i] = (b == 1);
    }
  }
  return s;
}

CommChan::StatusType CommChanImp::sendInt8(signed char const* d, int n) { return mySend(d, n, "CommChanImp::sendInt8"); }
CommChan::StatusType CommChanImp::receiveInt8(signed char* d, int n) {
  return myReceive(d, n, "CommChanImp::receiveInt8");
}
CommChan::StatusType CommChanImp::sendInt16(short const* d, int n) { return mySend(d, n, "CommChanImp::sendInt16"); }
CommChan::StatusType CommChanImp::receiveInt16(short* d, int n) { return myReceive(d, n, "CommChanImp::receiveInt16"); }
CommChan::StatusType CommChanImp::sendInt32(int const* d, int n) { return mySend(d, n, "CommChanImp::sendInt32"); }
CommChan::StatusType CommChanImp::receiveInt32(int* d, int n) { return myReceive(d, n, "CommChanImp::receiveInt32"); }
CommChan::StatusType CommChanImp::sendInt64(long long const* d, int n) {
  return mySend(d, n, "CommChanImp::sendInt64");
}
CommChan::StatusType CommChanImp::receiveInt64(long long* d, int n) {
  return myReceive(d, n, "CommChanImp::receiveInt64");
}
CommChan::StatusType CommChanImp::sendUInt8(unsigned char const* d, int n) {
  return mySend(d, n, "CommChanImp::sendUInt8");
}
CommChan::StatusType CommChanImp::receiveUInt8(unsigned char* d, int n) {
  return myReceive(d, n, "CommChanImp::receiveUInt8");
}
CommChan::StatusType CommChanImp::sendUInt16(unsigned short const* d, int n) {
  return mySend(d, n, "CommChanImp::sendUInt16");
}
CommChan::StatusType CommChanImp::receiveUInt16(unsigned short* d, int n) {
  return myReceive(d, n, "CommChanImp::receiveUInt16");
}
CommChan::StatusType CommChanImp::sendUInt32(unsigned int const* d, int n) {
  return mySend(d, n, "CommChanImp::sendUInt32");
}
CommChan::StatusType CommChanImp::receiveUInt32(unsigned int* d, int n) {
  return myReceive(d, n, "CommChanImp::receiveUInt32");
}
CommChan::StatusType CommChanImp::sendFloat32(float const* d, int n) {
  return mySend(d, n, "CommChanImp::sendFloat32");
}
CommChan::StatusType CommChanImp::receiveFloat32(float* d, int n) {
  return myReceive(d, n, "CommChanImp::receiveFloat32");
}
CommChan::StatusType CommChanImp::sendFloat64(double const* d, int n) {
  return mySend(d, n, "CommChanImp::sendFloat64");
}
CommChan::StatusType CommChanImp::receiveFloat64(double* d, int n) {
  return myReceive(d, n, "CommChanImp::receiveFloat64");
}

namespace {
inline void swapRun(void* data, int count, int size) {
  if (count <= 0) return;
  switch (size) {
    case 2:
      vUtl::swapBytes16(data, static_cast<std::size_t>(count));
      break;
    case 4:
      vUtl::swapBytes32(data, static_cast<std::size_t>(count));
      break;
    case 8:
      vUtl::swapBytes64(data, static_cast<std::size_t>(count));
      break;
    default:
      break;
  }
}
}  // namespace

void CommChanImp::swapBytes(long long& value) {
  if (m_swap) swapRun(&value, 1, 8);
}
void CommChanImp::swapBytes(int& value) {
  if (m_swap) swapRun(&value, 1, 4);
}
void CommChanImp::swapBytes(short* d, int n) {
  if (m_swap) swapRun(d, n, 2);
}
void CommChanImp::swapBytes(int* d, int n) {
  if (m_swap) swapRun(d, n, 4);
}
void CommChanImp::swapBytes(unsigned short* d, int n) {
  if (m_swap) swapRun(d, n, 2);
}
void CommChanImp::swapBytes(unsigned int* d, int n) {
  if (m_swap) swapRun(d, n, 4);
}
void CommChanImp::swapBytes(long long* d, int n) {
  if (m_swap) swapRun(d, n, 8);
}
void CommChanImp::swapBytes(float* d, int n) {
  if (m_swap) swapRun(d, n, 4);
}
void CommChanImp::swapBytes(double* d, int n) {
  if (m_swap) swapRun(d, n, 8);
}

CommChan::StatusType CommChanImp::sendSegments(Packer::Segment const* segments, int count) {
  for (int i = 0; i < count; ++i) {
    if (segments[i].size > static_cast<std::size_t>(INT_MAX))
      Message::fatal("CommChanImp::sendSegments", 0, "A piece of %llu bytes is too large for one send.",
                     static_cast<unsigned long long>(segments[i].size));
    StatusType const s =
        sendChar8(reinterpret_cast<char const*>(segments[i].data), static_cast<int>(segments[i].size));
    if (s != OK) return s;
  }
  return OK;
}

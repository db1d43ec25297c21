#ifndef REMOTE_COMMCHANIMP_H
#define REMOTE_COMMCHANIMP_H

// CommChanImp: every typed operation of CommChan over the two byte
// operations sendChar8 and receiveChar8 that a transport supplies. A send
// is one sendChar8 of the raw elements; a receive is one receiveChar8 and,
// when the peer's byte order differs (the swap flag), the matching
// swapBytes. So the receiver makes right, and 8-bit data never swap.

#include "remote/CommChan.h"

class CommChanImp : public CommChan {
 public:
  CommChanImp();
  ~CommChanImp() override;

  StatusType sendBool(bool const* data, int count) override;
  // Only the byte 1 reads as true.
  StatusType receiveBool(bool* data, int count) override;
  StatusType sendInt8(signed char const* data, int count) override;
  StatusType receiveInt8(signed char* data, int count) override;
  StatusType sendInt16(short const* data, int count) override;
  StatusType receiveInt16(short* data, int count) override;
  StatusType sendInt32(int const* data, int count) override;
  StatusType receiveInt32(int* data, int count) override;
  StatusType sendInt64(long long const* data, int count) override;
  StatusType receiveInt64(long long* data, int count) override;
  StatusType sendUInt8(unsigned char const* data, int count) override;
  StatusType receiveUInt8(unsigned char* data, int count) override;
  StatusType sendUInt16(unsigned short const* data, int count) override;
  StatusType receiveUInt16(unsigned short* data, int count) override;
  StatusType sendUInt32(unsigned int const* data, int count) override;
  StatusType receiveUInt32(unsigned int* data, int count) override;
  StatusType sendFloat32(float const* data, int count) override;
  StatusType receiveFloat32(float* data, int count) override;
  StatusType sendFloat64(double const* data, int count) override;
  StatusType receiveFloat64(double* data, int count) override;

  void swapBytes(long long& value) override;
  void swapBytes(int& value) override;
  void swapBytes(short* data, int count) override;
  void swapBytes(int* data, int count) override;
  void swapBytes(unsigned short* data, int count) override;
  void swapBytes(unsigned int* data, int count) override;
  void swapBytes(long long* data, int count) override;
  void swapBytes(float* data, int count) override;
  void swapBytes(double* data, int count) override;

  bool getSwap() const override { return m_swap; }
  void setSwap(bool swap) { m_swap = swap; }

  // One sendChar8 per piece, stopping at the first bad status.
  StatusType sendSegments(Packer::Segment const* segments, int count) override;

 protected:
  // Bytes of count elements of size bytes; a negative count or one whose
  // bytes do not fit an int is a programming error and raised.
  static int myNBytes(int count, int size, char const* label);

 private:
  template <class T>
  StatusType mySend(T const* data, int count, char const* label);
  template <class T>
  StatusType myReceive(T* data, int count, char const* label);

  bool m_swap;
};

#endif

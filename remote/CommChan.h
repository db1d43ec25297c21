#ifndef REMOTE_COMMCHAN_H
#define REMOTE_COMMCHAN_H

// CommChan: a bidirectional, typed, blocking byte channel. A channel adds
// no framing of its own (Packer frames messages); typed data leave in the
// sender's byte order and the receiver turns them around (getSwap).
//
// Transport conditions (a peer that closed, a broken link, a time-out) come
// back as StatusType values; programming and system errors are raised
// through Message::fatal. One thread at a time.

#include "foundation/Packer.h"
#include "foundation/vString.h"

class CommChanAddress;

class CommChan {
 public:
  enum StatusType { OK = 1, INUSE = 2, BROKEN = 3, CLOSED = 4, INCOMPLETE = 5, NOTFOUND = 6, TIMEOUT = 7 };
  enum WaitType { READ = 1, WRITE = 2 };
  static constexpr float FOREVER = -1.0f;

  // "CommChan::OK" and so on; "CommChan::Unknown status" for other values.
  static char const* status(int value);

  CommChan();

  // The address a peer reaches this channel by; the caller owns it.
  virtual CommChanAddress* getAddress() const = 0;
  // Takes the next peer of a listening channel.
  virtual StatusType accept() = 0;

  // Each moves count elements; sends leave in this host's byte order.
  virtual StatusType sendBool(bool const* data, int count) = 0;
  virtual StatusType receiveBool(bool* data, int count) = 0;
  virtual StatusType sendChar8(char const* data, int count) = 0;
  virtual StatusType receiveChar8(char* data, int count) = 0;
  virtual StatusType sendInt8(signed char const* data, int count) = 0;
  virtual StatusType receiveInt8(signed char* data, int count) = 0;
  virtual StatusType sendInt16(short const* data, int count) = 0;
  virtual StatusType receiveInt16(short* data, int count) = 0;
  virtual StatusType sendInt32(int const* data, int count) = 0;
  virtual StatusType receiveInt32(int* data, int count) = 0;
  virtual StatusType sendInt64(long long const* data, int count) = 0;
  virtual StatusType receiveInt64(long long* data, int count) = 0;
  virtual StatusType sendUInt8(unsigned char const* data, int count) = 0;
  virtual StatusType receiveUInt8(unsigned char* data, int count) = 0;
  virtual StatusType sendUInt16(unsigned short const* data, int count) = 0;
  virtual StatusType receiveUInt16(unsigned short* data, int count) = 0;
  virtual StatusType sendUInt32(unsigned int const* data, int count) = 0;
  virtual StatusType receiveUInt32(unsigned int* data, int count) = 0;
  virtual StatusType sendFloat32(float const* data, int count) = 0;
  virtual StatusType receiveFloat32(float* data, int count) = 0;
  virtual StatusType sendFloat64(double const* data, int count) = 0;
  virtual StatusType receiveFloat64(double* data, int count) = 0;

  // Socket buffer size in bytes.
  virtual void setSize(int size) = 0;
  virtual int getSize() = 0;
  virtual vString getName() const = 0;
  virtual void close() = 0;
  virtual ~CommChan();

  // Turn received data into this host's order when the peer's differs;
  // nothing happens otherwise.
  virtual void swapBytes(long long& value) = 0;
  virtual void swapBytes(int& value) = 0;
  virtual void swapBytes(short* data, int count) = 0;
  virtual void swapBytes(int* data, int count) = 0;
  virtual void swapBytes(unsigned short* data, int count) = 0;
  virtual void swapBytes(unsigned int* data, int count) = 0;
  virtual void swapBytes(long long* data, int count) = 0;
  virtual void swapBytes(float* data, int count) = 0;
  virtual void swapBytes(double* data, int count) = 0;

  // True when the channel is ready for the kind of use within timeout
  // seconds; a negative timeout (FOREVER) waits without limit.
  virtual bool waitOn(float timeout, WaitType type) = 0;
  // The descriptor in use.
  virtual int getChannel() const = 0;
  virtual void setReceiveTimeout(float seconds);
  virtual void setSendTimeout(float seconds);
  virtual void setMiscTimeout(float seconds);
  // True when received data are turned around.
  virtual bool getSwap() const = 0;

  // Sends the pieces in order as one stream of bytes, without joining
  // them first: how a Packer with caller arrays goes out without a copy.
  virtual StatusType sendSegments(Packer::Segment const* segments, int count) = 0;

 protected:
  float m_receiveTimeout;
  float m_sendTimeout;
  float m_miscTimeout;

 private:
  CommChan(CommChan const&) = delete;
  CommChan& operator=(CommChan const&) = delete;
};

#endif

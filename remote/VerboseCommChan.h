#ifndef REMOTE_VERBOSECOMMCHAN_H
#define REMOTE_VERBOSECOMMCHAN_H

// VerboseCommChan: a tracing decorator around any channel. Each operation
// writes one line,
//
//   CommChan::sendInt32(<address>, <count>)  (Ex.<s> sec.)<result> (In.<s> sec.)
//
// where Ex. is the time since the previous event and In. the time the
// operation took; array operations add the first element as "array[0]:"
// on a line of its own, indented by 39 blanks. swapBytes lines show the
// value after the swap behind "  after swap:". getSwap passes silently.

#include <fstream>
#include <iosfwd>
#include <memory>
#include <string>

#include "foundation/vHandle.h"
#include "remote/CommChan.h"

class VerboseCommChan : public CommChan {
 public:
  // Traces to the file (truncated) when a name is given, else to std::cout.
  explicit VerboseCommChan(vHandle<CommChan> const& channel, char const* filename = nullptr);
  // Traces to a stream of the caller's, which must outlive this object.
  VerboseCommChan(vHandle<CommChan> const& channel, std::ostream& out);
  ~VerboseCommChan() override;

  CommChanAddress* getAddress() const override;
  StatusType accept() override;
  StatusType sendBool(bool const* data, int count) override;
  StatusType receiveBool(bool* data, int count) override;
  StatusType sendChar8(char const* data, int count) override;
  StatusType receiveChar8(char* data, int count) override;
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
  void setSize(int size) override;
  int getSize() override;
  vString getName() const override;
  void close() override;
  void swapBytes(long long& value) override;
  void swapBytes(int& value) override;
  void swapBytes(short* data, int count) override;
  void swapBytes(int* data, int count) override;
  void swapBytes(unsigned short* data, int count) override;
  void swapBytes(unsigned int* data, int count) override;
  void swapBytes(long long* data, int count) override;
  void swapBytes(float* data, int count) override;
  void swapBytes(double* data, int count) override;
  bool waitOn(float timeout, WaitType type) override;
  int getChannel() const override;
  void setReceiveTimeout(float seconds) override;
  void setSendTimeout(float seconds) override;
  void setMiscTimeout(float seconds) override;
  bool getSwap() const override;
  StatusType sendSegments(Packer::Segment const* segments, int count) override;

  CommChan& getWrapped() const { return *m_channel; }

 private:
  // Writes the operation's head and the delay since the last event;
  // returns the time it began.
  double myBegin(char const* name, std::string const& arguments) const;
  // Writes the result and the time taken, and makes now the last event.
  void myEnd(std::string const& result, double began) const;
  template <class T>
  void myFirst(T const* data, int count) const;
  template <class T>
  StatusType mySend(char const* name, T const* data, int count, StatusType (CommChan::*op)(T const*, int));
  template <class T>
  StatusType myReceive(char const* name, T* data, int count, StatusType (CommChan::*op)(T*, int));
  template <class T>
  void mySwap(char const* name, T* data, int count, void (CommChan::*op)(T*, int));

  vHandle<CommChan> m_channel;
  mutable double m_lastEvent;
  std::ostream* m_out;
  std::unique_ptr<std::ofstream> m_file;
};

#endif

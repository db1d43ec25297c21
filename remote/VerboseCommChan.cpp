#include "remote/VerboseCommChan.h"

#include <time.h>

#include <iostream>
#include <sstream>

#include "foundation/Message.h"
#include "remote/CommChanAddress.h"

namespace {

// Seconds since the epoch, to the microsecond or better.
double theTime() {
  timespec t;
  ::clock_gettime(CLOCK_REALTIME, &t);
  return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
}

std::string arguments(void const* data, int count) {
  std::ostringstream s;
  s << data << ", " << count;
  return s.str();
}

template <class T>
std::string valueText(T value) {
  std::ostringstream s;
  s << value;
  return s.str();
}
std::string valueText(char value) { return valueText(static_cast<int>(value)); }
std::string valueText(signed char value) { return valueText(static_cast<int>(value)); }
std::string valueText(unsigned char value) { return valueText(static_cast<unsigned>(value)); }
std::string valueText(bool value) { return value ? "true" : "false"; }

}  // namespace

VerboseCommChan::VerboseCommChan(vHandle<CommChan> const& channel, char const* filename)
    : m_channel(channel), m_lastEvent(theTime()), m_out(&std::cout) {
  if (filename != nullptr && *filename != '\0') {
    m_file.reset(new std::ofstream(filename, std::ios::out | std::ios::trunc));
    if (!*m_file) Message::fatal("VerboseCommChan::VerboseCommChan", 0, "Cannot open the trace file %s.", filename);
    m_out = m_file.get();
  }
  *m_out << "\nVerboseCommChan: wrapping " << m_channel->getName().c_str() << std::endl;
}

VerboseCommChan::VerboseCommChan(vHandle<CommChan> const& channel, std::ostream& out)
    : m_channel(channel), m_lastEvent(theTime()), m_out(&out) {
  *m_out << "\nVerboseCommChan: wrapping " << m_channel->getName().c_str() << std::endl;
}

VerboseCommChan::~VerboseCommChan() { m_out->flush(); }

double VerboseCommChan::myBegin(char const* name, std::string const& args) const {
  double const now = theTime();
  *m_out << name << args << ") " << " (Ex." << (now - m_lastEvent) << " sec.)";
  return now;
}

void VerboseCommChan::myEnd(std::string const& result, double began) const {
  double const now = theTime();
  *m_out << result << " (In." << (now - began) << " sec.)\n";
  m_out->flush();
  m_lastEvent = now;
}

template <class T>
void VerboseCommChan::myFirst(T const* data, int count) const {
  if (data == nullptr || count <= 0) return;
  *m_out << std::string(39, ' ') << "array[0]:" << valueText(data[0]) << "\n";
}

template <class T>
CommChan::StatusType VerboseCommChan::mySend(char const* name, T const* data, int count,
                                             StatusType (CommChan::*op)(T const*, int)) {
  double const began = myBegin(name, arguments(data, count));
  StatusType const s = ((*m_channel).*op)(data, count);
  myEnd(status(s), began);
  myFirst(data, count);
  return s;
}

template <class T>
CommChan::StatusType VerboseCommChan::myReceive(char const* name, T* data, int count,
                                                StatusType (CommChan::*op)(T*, int)) {
  double const began = myBegin(name, arguments(data, count));
  StatusType const s = ((*m_channel).*op)(data, count);
  myEnd(status(s), began);
  if (s == OK) myFirst(data, count);
  return s;
}

template <class T>
void VerboseCommChan::mySwap(char const* name, T* data, int count, void (CommChan::*op)(T*, int)) {
  double const began = myBegin(name, arguments(data, count));
  ((*m_channel).*op)(data, count);
  myEnd(count > 0 && data != nullptr ? "  after swap:" + valueText(data[0]) : std::string("  after swap:"), began);
}

CommChanAddress* VerboseCommChan::getAddress() const {
  double const began = myBegin("CommChan::getAddress(", "");
  CommChanAddress* const address = m_channel->getAddress();
  myEnd(address->getAddress().c_str(), began);
  return address;
}

CommChan::StatusType VerboseCommChan::accept() {
  double const began = myBegin("CommChan::accept(", "");
  StatusType const s = m_channel->accept();
  myEnd(status(s), began);
  return s;
}

#define RONDO_VERBOSE_PAIR(Name, Type)                                                   \
  CommChan::StatusType VerboseCommChan::send##Name(Type const* data, int count) {        \
    return mySend<Type>("CommChan::send" #Name "(", data, count, &CommChan::send##Name); \
  }                                                                                      \
  CommChan::StatusType VerboseCommChan::receive##Name(Type* data, int count) {           \
    return myReceive<Type>("CommChan::receive" #Name "(", data, count, &CommChan::receive##Name); \
  }

RONDO_VERBOSE_PAIR(Bool, bool)
RONDO_VERBOSE_PAIR(Char8, char)
RONDO_VERBOSE_PAIR(Int8, signed char)
RONDO_VERBOSE_PAIR(Int16, short)
RONDO_VERBOSE_PAIR(Int32, int)
RONDO_VERBOSE_PAIR(Int64, long long)
RONDO_VERBOSE_PAIR(UInt8, unsigned char)
RONDO_VERBOSE_PAIR(UInt16, unsigned short)
RONDO_VERBOSE_PAIR(UInt32, unsigned int)
RONDO_VERBOSE_PAIR(Float32, float)
RONDO_VERBOSE_PAIR(Float64, double)

#undef RONDO_VERBOSE_PAIR

void VerboseCommChan::setSize(int size) {
  double const began = myBegin("CommChan::setSize(", valueText(size));
  m_channel->setSize(size);
  myEnd("", began);
}

int VerboseCommChan::getSize() {
  double const began = myBegin("CommChan::getSize(", "");
  int const size = m_channel->getSize();
  myEnd(valueText(size), began);
  return size;
}

vString VerboseCommChan::getName() const {
  double const began = myBegin("CommChan::getName(", "");
  vString const name = m_channel->getName();
  myEnd(name.c_str(), began);
  return name;
}

void VerboseCommChan::close() {
  double const began = myBegin("CommChan::close(", "");
  m_channel->close();
  myEnd("", began);
}

void VerboseCommChan::swapBytes(long long& value) {
  double const began = myBegin("CommChan::swapBytesInt64(", valueText(value));
  m_channel->swapBytes(value);
  myEnd("  after swap:" + valueText(value), began);
}

void VerboseCommChan::swapBytes(int& value) {
  double const began = myBegin("CommChan::swapBytesInt32(", valueText(value));
  m_channel->swapBytes(value);
  myEnd("  after swap:" + valueText(value), began);
}

void VerboseCommChan::swapBytes(short* d, int n) { mySwap<short>("CommChan::swapBytesInt16s(", d, n, &CommChan::swapBytes); }
void VerboseCommChan::swapBytes(int* d, int n) { mySwap<int>("CommChan::swapBytesInt32s(", d, n, &CommChan::swapBytes); }
void VerboseCommChan::swapBytes(unsigned short* d, int n) {
  mySwap<unsigned short>("CommChan::swapBytesUInt16s(", d, n, &CommChan::swapBytes);
}
void VerboseCommChan::swapBytes(unsigned int* d, int n) {
  mySwap<unsigned int>("CommChan::swapBytesUInt32s(", d, n, &CommChan::swapBytes);
}
void VerboseCommChan::swapBytes(long long* d, int n) {
  mySwap<long long>("CommChan::swapBytesInt64s(", d, n, &CommChan::swapBytes);
}
void VerboseCommChan::swapBytes(float* d, int n) { mySwap<float>("CommChan::swapBytesFloat32s(", d, n, &CommChan::swapBytes); }
void VerboseCommChan::swapBytes(double* d, int n) {
  mySwap<double>("CommChan::swapBytesFloat64s(", d, n, &CommChan::swapBytes);
}

bool VerboseCommChan::waitOn(float timeout, WaitType type) {
  std::ostringstream args;
  args << timeout << ", "
       << (type == READ ? "CommChan::READ" : type == WRITE ? "CommChan::WRITE" : "Unknown");
  double const began = myBegin("CommChan::waitOn(", args.str());
  bool const ready = m_channel->waitOn(timeout, type);
  myEnd(ready ? "true" : "false", began);
  return ready;
}

int VerboseCommChan::getChannel() const {
  double const began = myBegin("CommChan::getChannel(", "");
  int const fd = m_channel->getChannel();
  myEnd(valueText(fd), began);
  return fd;
}

void VerboseCommChan::setReceiveTimeout(float seconds) {
  double const began = myBegin("CommChan::setReceiveTimeout(", valueText(seconds));
  m_channel->setReceiveTimeout(seconds);
  myEnd("", began);
}

void VerboseCommChan::setSendTimeout(float seconds) {
  double const began = myBegin("CommChan::setSendTimeout(", valueText(seconds));
  m_channel->setSendTimeout(seconds);
  myEnd("", began);
}

void VerboseCommChan::setMiscTimeout(float seconds) {
  double const began = myBegin("CommChan::setMiscTimeout(", valueText(seconds));
  m_channel->setMiscTimeout(seconds);
  myEnd("", began);
}

bool VerboseCommChan::getSwap() const { return m_channel->getSwap(); }

CommChan::StatusType VerboseCommChan::sendSegments(Packer::Segment const* segments, int count) {
  unsigned long long bytes = 0;
  for (int i = 0; i < count; ++i) bytes += segments[i].size;
  std::ostringstream args;
  args << static_cast<void const*>(segments) << ", " << count << ", " << bytes << " bytes";
  double const began = myBegin("CommChan::sendSegments(", args.str());
  StatusType const s = m_channel->sendSegments(segments, count);
  myEnd(status(s), began);
  return s;
}

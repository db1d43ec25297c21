// Fuzz target for the data server's request decoding: the input is what a
// client sends on its connection, byte for byte (framed messages: portal
// messages that make and drop twins, requests to catalogs, projects and
// attribute sets). A session of the server reads it from an in-process
// channel until the input ends, served by the in-memory UnitTest back end
// with two listed stores, and the classes the server registers.
//
// The session must end, with every reply a well-framed message, and every
// failed request answered with the system's own error: a reply that
// reports a failure of another kind (a C++ exception that is not the
// system's error), an exception out of the session, a crash, a sanitizer
// report or a hang is a finding.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "attribute/Attribute.h"
#include "attribute/KeyList.h"
#include "foundation/Packer.h"
#include "foundation/UtlExcept.h"
#include "project/StoreCreationOptions.h"
#include "registry/RondoRegistry.h"
#include "remote/ClientCodes.h"
#include "remote/CommChan.h"
#include "server/DataServerSession.h"
#include "tests/fuzz/FuzzTesting.h"

namespace {

[[noreturn]] void finding(char const* what, char const* detail = "") {
  std::fprintf(stderr, "server_request_fuzz: %s %s\n", what, detail);
  std::abort();
}

// A channel whose peer is the fuzz input: what the server receives comes
// from the input, in the pieces it asks for, and ends with the input; what
// it sends is kept, one message a send.
class InputChannel : public CommChan {
 public:
  InputChannel(uint8_t const* data, std::size_t size) : m_data(data), m_size(size) {}

  std::vector<std::vector<unsigned char>> const& sent() const { return m_sent; }

  CommChanAddress* getAddress() const override { return nullptr; }
  StatusType accept() override { return OK; }
  StatusType sendBool(bool const* d, int n) override { return mySend(d, n); }
  StatusType receiveBool(bool* d, int n) override { return myReceive(d, n); }
  StatusType sendChar8(char const* d, int n) override { return mySend(d, n); }
  StatusType receiveChar8(char* d, int n) override { return myReceive(d, n); }
  StatusType sendInt8(signed char const* d, int n) override { return mySend(d, n); }
  StatusType receiveInt8(signed char* d, int n) override { return myReceive(d, n); }
  StatusType sendInt16(short const* d, int n) override { return mySend(d, n); }
  StatusType receiveInt16(short* d, int n) override { return myReceive(d, n); }
  StatusType sendInt32(int const* d, int n) override { return mySend(d, n); }
  StatusType receiveInt32(int* d, int n) override { return myReceive(d, n); }
  StatusType sendInt64(long long const* d, int n) override { return mySend(d, n); }
  StatusType receiveInt64(long long* d, int n) override { return myReceive(d, n); }
  StatusType sendUInt8(unsigned char const* d, int n) override { return mySend(d, n); }
  StatusType receiveUInt8(unsigned char* d, int n) override { return myReceive(d, n); }
  StatusType sendUInt16(unsigned short const* d, int n) override { return mySend(d, n); }
  StatusType receiveUInt16(unsigned short* d, int n) override { return myReceive(d, n); }
  StatusType sendUInt32(unsigned int const* d, int n) override { return mySend(d, n); }
  StatusType receiveUInt32(unsigned int* d, int n) override { return myReceive(d, n); }
  StatusType sendFloat32(float const* d, int n) override { return mySend(d, n); }
  StatusType receiveFloat32(float* d, int n) override { return myReceive(d, n); }
  StatusType sendFloat64(double const* d, int n) override { return mySend(d, n); }
  StatusType receiveFloat64(double* d, int n) override { return myReceive(d, n); }
  StatusType sendSegments(Packer::Segment const* segments, int count) override {
    std::vector<unsigned char> message;
    for (int k = 0; k < count; ++k) message.insert(message.end(), segments[k].data, segments[k].data + segments[k].size);
    m_sent.push_back(std::move(message));
    return OK;
  }

  void setSize(int) override {}
  int getSize() override { return 65536; }
  vString getName() const override { return "fuzz input"; }
  void close() override {}
  void swapBytes(long long&) override {}
  void swapBytes(int&) override {}
  void swapBytes(short*, int) override {}
  void swapBytes(int*, int) override {}
  void swapBytes(unsigned short*, int) override {}
  void swapBytes(unsigned int*, int) override {}
  void swapBytes(long long*, int) override {}
  void swapBytes(float*, int) override {}
  void swapBytes(double*, int) override {}
  bool waitOn(float, WaitType) override { return true; }
  int getChannel() const override { return -1; }
  bool getSwap() const override { return false; }

 private:
  template <class T>
  StatusType mySend(T const* d, int n) {
    if (n < 0) finding("a send of a negative count");
    unsigned char const* bytes = reinterpret_cast<unsigned char const*>(d);
    m_sent.emplace_back(bytes, bytes + static_cast<std::size_t>(n) * sizeof(T));
    return OK;
  }
  template <class T>
  StatusType myReceive(T* d, int n) {
    if (n < 0) finding("a receive of a negative count");
    std::size_t const want = static_cast<std::size_t>(n) * sizeof(T);
    if (want > m_size - m_at) {
      m_at = m_size;
      return CLOSED;
    }
    if (want > 0) std::memcpy(d, m_data + m_at, want);
    m_at += want;
    return OK;
  }

  uint8_t const* m_data;
  std::size_t m_size;
  std::size_t m_at = 0;
  std::vector<std::vector<unsigned char>> m_sent;
};

// Every reply reads as a message; a failure report (code 100, severity 1)
// carries the system's own error.
void checkReply(std::vector<unsigned char> const& message) {
  Packer reply(static_cast<int>(message.size()), message.data());
  if (reply.getMessageTag() != -1) return;
  int32_t code = 0;
  reply.unpack(code);
  if (code != 100) return;
  int32_t severity = 0;
  vString text;
  reply.unpack(severity);
  reply.unpack(text);
  if (severity == 1 && (std::strncmp(text.c_str(), "Unexpected failure", 18) == 0))
    finding("a request failed with an error not the system's own:", text.c_str());
}

// The memory that the requests of an input may make the server lay out: the
// instances added and the values per instance of the attributes declared.
// A larger store is a fair request, and the server tries to make it; what
// then happens tells about the machine's memory, not the decoding, and
// this build cannot watch it (the sanitizers stop a huge allocation before
// it could fail as the server's own error). Such an input is left out.
constexpr unsigned long long kMaxInstances = 1024;
constexpr unsigned long long kMaxValuesPerInstance = 4096;

bool withinBudget(uint8_t const* data, std::size_t size) {
  unsigned long long instances = 0;
  unsigned long long values = 0;
  auto declared = [&values](Attribute const& attribute) {
    values += static_cast<unsigned long long>(attribute.getLength() < 0 ? 0 : attribute.getLength());
  };
  std::size_t at = 0;
  while (size - at >= static_cast<std::size_t>(Packer::HEADER_SIZE)) {
    uint32_t magic = 0;
    uint32_t length = 0;
    std::memcpy(&magic, data + at, 4);
    std::memcpy(&length, data + at + 8, 4);
    if (magic != static_cast<uint32_t>(Packer::MAGIC)) {
      if (__builtin_bswap32(magic) != static_cast<uint32_t>(Packer::MAGIC)) break;
      length = __builtin_bswap32(length);
    }
    if (length > size - at - Packer::HEADER_SIZE) break;
    try {
      Packer frame(static_cast<int>(Packer::HEADER_SIZE + length), data + at);
      if (frame.getMessageTag() != -1) {
        int32_t code = 0;
        frame.unpack(code);
        if (code == ClientCode::AddInstances) {
          uint32_t count = 0;
          frame.unpack(count);
          instances += count;
        } else if (code == ClientCode::AddAttribute) {
          declared(Attribute(frame));
        } else if (code == ClientCode::Create) {
          vString text;
          for (int k = 0; k < 3; ++k) frame.unpack(text);
          KeyList const keys(frame);
          for (Attribute const& key : keys) declared(key);
          bool options = false;
          frame.unpackBool(options);
          StoreCreationOptions creation;
          if (options) frame.unpack(creation);
          for (Attribute const& attribute : creation.getAttributeList()) declared(attribute);
        }
      }
    } catch (UtlExcept const&) {
    }
    at += Packer::HEADER_SIZE + length;
  }
  return instances <= kMaxInstances && values <= kMaxValuesPerInstance;
}

std::FILE* sessionLog() {
  static std::FILE* const log = [] {
    // The UnitTest back end, with two stores its projects list.
    ::setenv("SP_DATASERVER_BACKEND", "UnitTest", 1);
    ::setenv("RONDO_UNITTEST_STORES", "seis.1:seismic:shot wells.2", 1);
    fuzz_testing::raiseWithoutReports();
    registerDataServerClasses();
    // The log's lines are formatted, and go nowhere.
    return std::fopen("/dev/null", "w");
  }();
  return log;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, std::size_t size) {
  std::FILE* const log = sessionLog();
  if (!withinBudget(data, size)) return 0;
  InputChannel* channel = new InputChannel(data, size);
  vHandle<CommChan> handle(channel);
  try {
    DataServerSession session(handle, log);
    session.run();
  } catch (UtlExcept const& e) {
    finding("the session ended on an error:", e.getReason().c_str());
  }
  for (std::vector<unsigned char> const& message : channel->sent()) {
    try {
      checkReply(message);
    } catch (UtlExcept const& e) {
      finding("a reply that does not read:", e.getReason().c_str());
    }
  }
  return 0;
}

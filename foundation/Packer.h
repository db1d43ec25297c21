#ifndef FOUNDATION_PACKER_H
#define FOUNDATION_PACKER_H

// Packer: the one binary serialisation of the system. One growing byte
// buffer holds a 16-byte header and a flat run of self-describing entries:
//
//   header  int32 magic 40506070, int32 version 1, int32 body length,
//           int32 message tag (given when the message is finished)
//   scalar  type byte, the value's bytes
//   array   type | 0x80, uint32 count, count elements
//   frame   0x7F int16 magic int16 version ... 0x7E
//   string  0x8E, uint32 length + 1 (0 when empty), the text and its NUL
//   strings 0x91, uint32 number of strings, each text with its NUL
//   date    0x12, flag byte (1 = not valid), int32 seconds; 0x92 for arrays
//
// Everything is in the writer's byte order, unaligned; a reader in the other
// order reverses it on arrival. The layout is the same on 32- and 64-bit
// hosts.
//
// Address-of entries (packAddressOf) keep a reference to caller memory in
// place of the data: 13 bytes in the buffer (type | 0xC0, uint32 count,
// uint32 reference, uint32 byte count), where the reference is the entry's
// index into this Packer's table of caller addresses. They leave as ordinary
// arrays, the data taken from the caller's memory, which must stay valid and
// unchanged until the message has gone. getSegments() gives the message as a
// gather list so that such data reach a socket without a copy.
//
// Lifecycle: one Packer serves a whole exchange: filled (pack...),
// finished (getBuffer, getSegments, or a channel's send), received into,
// read (unpack...), filled again. The state table in Packer.cpp says which
// operation is legal when; an illegal one raises "Illegal operation %d for
// state PACKxxx.".
//
// Reading never trusts the bytes: every entry is checked against the end of
// the message before anything is copied or allocated, and any malformed
// message ends in UtlExcept. All errors go through Message::fatal, labelled
// with the Packer operation; the state stays what it was.
//
// Not thread-safe.

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <iterator>
#include <memory>
#include <vector>

#include "foundation/DataType.h"
#include "foundation/Message.h"

class CommChan;
class Packable;
class vDate;
class vString;

class Packer {
 public:
  enum PackState {
    PACKINIT = 1,
    PACKPACKING = 2,
    PACKSENT = 3,
    PACKUNPACKING = 4,
    PACKUNPACKED = 5,
    PACKDELETED = 6
  };
  enum PackOperation {
    PACKOP_PACK = 100,
    PACKOP_SEND = 101,
    PACKOP_RECEIVE = 102,
    PACKOP_UNPACK = 103,
    PACKOP_DISCARD = 104,
    PACKOP_DELETE = 105,
    PACKOP_FIRST = 106,
    PACKOP_READTAG = 107
  };

  static constexpr int32_t MAGIC = 40506070;  // 0x026A12D6
  static constexpr int32_t VERSION = 1;
  static constexpr int HEADER_SIZE = 16;
  // Frame of the STL range helpers pack(Packer&, first, last) and
  // unpack(Packer&, inserter, element).
  static constexpr short STLPackMagic = 67;
  static constexpr short STLPackVersion = 1;

  // One piece of a finished message, in order; see getSegments().
  struct Segment {
    unsigned char const* data;
    std::size_t size;
  };

  // An empty Packer with room for capacity bytes of entries (see
  // setCapacity); Packer(0) holds the header alone and grows on first use.
  explicit Packer(int capacity = 1000);
  // A finished message of size bytes, copied; ready to read. Raises when the
  // header is not a Packer header or the body length does not match size.
  Packer(int size, unsigned char const* buffer);
  // The same, adopting buffer (made with new[]) without a copy; it is freed
  // with the Packer, and also when the constructor raises.
  Packer(int size, unsigned char* buffer);
  // Copies the buffer and where writing and reading stand; the frame depth
  // starts at 0 and the byte order flag clear. Address-of entries keep
  // referring to the same caller memory.
  Packer(Packer const& other);
  Packer& operator=(Packer const& other);
  ~Packer();

  // --- Packing ------------------------------------------------------------
  // Each call appends one entry. Legal in PACKINIT, PACKPACKING, PACKSENT
  // and PACKUNPACKED; the first entry after a finish starts a new message.
  // Use fixed-width values: a size_t or long differs between 32- and 64-bit
  // hosts.
  void pack(signed char value);
  void pack(char value);
  void pack(unsigned char value);
  void pack(short value);
  void pack(unsigned short value);
  void pack(int value);
  void pack(unsigned int value);
  void pack(long long value);
  void pack(unsigned long long value);
  void pack(float value);
  void pack(double value);
#if defined(__LP64__)
  // int64_t and uint64_t are long on 64-bit Linux.
  void pack(long value);
  void pack(unsigned long value);
#endif
  // A bool would silently become an int: use packBool.
  void pack(bool value) = delete;

  // Arrays; a count of 0 gives an empty array entry.
  void pack(signed char const* values, unsigned int count);
  void pack(char const* values, unsigned int count);
  void pack(unsigned char const* values, unsigned int count);
  void pack(short const* values, unsigned int count);
  void pack(unsigned short const* values, unsigned int count);
  void pack(int const* values, unsigned int count);
  void pack(unsigned int const* values, unsigned int count);
  void pack(long long const* values, unsigned int count);
  void pack(unsigned long long const* values, unsigned int count);
  void pack(float const* values, unsigned int count);
  void pack(double const* values, unsigned int count);
#if defined(__LP64__)
  void pack(long const* values, unsigned int count);
  void pack(unsigned long const* values, unsigned int count);
#endif

  // One byte, 1 for true and 0 for false.
  void packBool(bool value);
  void packBool(bool const* values, unsigned int count);

  // Arrays sent straight from the caller's memory: no copy is made here.
  void packAddressOf(signed char const* values, unsigned int count);
  void packAddressOf(char const* values, unsigned int count);
  void packAddressOf(unsigned char const* values, unsigned int count);
  void packAddressOf(short const* values, unsigned int count);
  void packAddressOf(unsigned short const* values, unsigned int count);
  void packAddressOf(int const* values, unsigned int count);
  void packAddressOf(unsigned int const* values, unsigned int count);
  void packAddressOf(long long const* values, unsigned int count);
  void packAddressOf(unsigned long long const* values, unsigned int count);
  void packAddressOf(float const* values, unsigned int count);
  void packAddressOf(double const* values, unsigned int count);
#if defined(__LP64__)
  void packAddressOf(long const* values, unsigned int count);
  void packAddressOf(unsigned long const* values, unsigned int count);
#endif

  void pack(vString const& text);
  // The same as pack(vString(text)).
  void pack(char const* text);
  void pack(vString const* texts, unsigned int count);
  void pack(vDate const& date);
  void pack(vDate const* dates, unsigned int count);
  void pack(Packable const& object);

  // Exchanges the whole state, buffer included, with another Packer; no byte
  // is copied. A reply received into one Packer reaches the caller's this way.
  void swap(Packer& other) noexcept;

  // --- Frames -------------------------------------------------------------
  void packFrame(short magic, short version);
  // Writes a frame end while packing, reads one while unpacking
  // (PACKUNPACKING, PACKUNPACKED).
  void endFrame();
  void unpackFrame(short& magic, short& version);
  // Steps over the rest of the frame being read, its end included; called
  // before anything was read, over the first entry (a whole frame) instead.
  // Right after the end of a nested frame it takes that end for the end of
  // the frame being read and steps over one more entry only: a reader whose
  // last known field is itself a frame uses skipRestOfFrame.
  void skipFrame();
  // Steps over entries, counting the frames begun and ended among them, up
  // to and over the end of the frame being read. The end of the message
  // ends it too.
  void skipRestOfFrame();

  // --- Unpacking ----------------------------------------------------------
  // Scalars; the entry must have exactly the type asked for.
  void unpack(signed char& value);
  void unpack(char& value);
  void unpack(unsigned char& value);
  void unpack(short& value);
  void unpack(unsigned short& value);
  void unpack(int& value);
  void unpack(unsigned int& value);
  void unpack(long long& value);
  void unpack(unsigned long long& value);
  void unpack(float& value);
  void unpack(double& value);
#if defined(__LP64__)
  void unpack(long& value);
  void unpack(unsigned long& value);
#endif
  void unpack(bool& value) = delete;

  // Arrays into memory the caller sized by getNElements(); return the count.
  unsigned int unpack(signed char* values);
  unsigned int unpack(char* values);
  unsigned int unpack(unsigned char* values);
  unsigned int unpack(short* values);
  unsigned int unpack(unsigned short* values);
  unsigned int unpack(int* values);
  unsigned int unpack(unsigned int* values);
  unsigned int unpack(long long* values);
  unsigned int unpack(unsigned long long* values);
  unsigned int unpack(float* values);
  unsigned int unpack(double* values);
#if defined(__LP64__)
  unsigned int unpack(long* values);
  unsigned int unpack(unsigned long* values);
#endif

  // Only the byte 1 reads as true.
  void unpackBool(bool& value);
  unsigned int unpackBool(bool* values);

  void unpack(vString& text);
  unsigned int unpack(vString* texts);
  void unpack(vDate& date);
  unsigned int unpack(vDate* dates);
  void unpack(Packable& object);

  // --- Inspection ---------------------------------------------------------
  // Elements of the next entry: the array count, 1 for a scalar, 2 for a
  // frame start, 0 for a frame end; 0 when there is nothing to read. The
  // entry is checked first, so the count is safe to allocate for.
  unsigned int getNElements();
  // The next type byte with its flags; vNOTYPE in PACKINIT, PACKPACKING,
  // PACKUNPACKED and at the end.
  DataType getNextDataType() const;
  // Steps over one entry; true while data remain. False at once when all
  // is read.
  bool next();
  // Back to the first entry.
  void first();
  // Drops what is left to read.
  void discard();
  // The tag word of the header of a finished or received message.
  int getMessageTag();
  // Room for entries, the header not counted.
  int getCapacity() const;
  // Room for c bytes of entries: the buffer becomes (c + 19) rounded down
  // to a multiple of 4 bytes. It may not drop below the bytes in use.
  void setCapacity(int capacity);

  PackState getState() const { return m_state; }
  // Bytes of the finished message as it goes out, header included.
  int getSize() const { return m_size; }
  // Bytes of the message being read that are not read yet.
  int getNRemainingBytes() const;
  // True when the message came in the other byte order.
  bool isSwapped() const { return m_swap; }
  int getFrameDepth() const { return m_frameDepth; }
  // Entries and address-of entries of the message in the buffer.
  int getNEntries() const { return m_nEntries; }
  int getNAddressOf() const { return m_nAddressOf; }

  // --- Transport ----------------------------------------------------------
  // Over a channel (defined with the channels, in remote/). Both return a
  // CommChan::StatusType: transport trouble is a status, never raised.
  // send finishes the message as getSegments does; without a channel that
  // is all it does. receive reads one whole message in place of this one.
  int send(CommChan* chan, int tag);
  int receive(CommChan& chan);
  // Finishes the message as a send does and hands out its bytes (null and 0
  // when there are none). With address-of entries the message is first
  // assembled in a second buffer. The bytes stay valid until the next change
  // of this Packer. Finishing again with nothing packed in between leaves
  // the message, its tag included, as it stands.
  void getBuffer(unsigned char const** buffer, int& size, int tag);
  // Finishes the message the same way and gives it as pieces for a gathered
  // write (writev): runs of the buffer and, for address-of entries, a 5-byte
  // entry head and the caller's data. The pieces add up to getSize() bytes.
  void getSegments(std::vector<Segment>& segments, int tag);
  // Finishes the message with tag 0 and prints its bytes as " 0x" and the
  // value in hexadecimal and ",", with a newline before every tenth byte
  // from byte 0 on.
  void dumpBytes(std::ostream& out);

  // Receiving from a byte stream, for the channels: beginReceive takes the
  // 16 header bytes as they arrived, checks them and returns the body length
  // L. The body then comes in pieces: getReceiveBuffer(offset, n) gives room
  // for body bytes offset to offset + n - 1, and the caller writes what
  // arrives there. The buffer grows with the bytes that really come (to at
  // most eight times what came, and at most L), never at once from the
  // length a header claims, so a forged header costs no memory; a caller
  // may still ask for all L bytes in one piece. A Packer reused for an
  // exchange keeps its room, so a second large message costs no growth.
  // Once room for all L bytes was asked for and filled, endReceive() puts
  // the body in this host's byte order; before that it raises. A channel
  // whose room cannot be made (getReceiveBuffer raises) reads and drops
  // the rest of the body itself, to stay in step with its peer.
  // abortReceive() after a failed transfer leaves nothing to read. The
  // state is PACKUNPACKING from beginReceive on; nothing reads until
  // endReceive.
  int beginReceive(unsigned char const* header);
  unsigned char* getReceiveBuffer(int offset, int n);
  void endReceive();
  void abortReceive();

  // Turns a whole finished message (in either byte order) into the other
  // byte order in place, header included. Raises on a malformed message.
  static void reverseByteOrder(unsigned char* message, int size);

 private:
  struct Entry;
  struct AddressOf {
    unsigned char const* data;
    uint32_t nBytes;
    int position;  // offset of the 13-byte entry in the buffer
  };

  void myAddData(int type, void const* data, long long count, long long nBytes, bool addressOf,
                 char const* label);
  void myStartMessage();
  void myCheckCapacity(long long nBytes, char const* label);
  void myAllocate(long long capacity, char const* label);
  PackState myNextState(PackOperation op, char const* label) const;
  void mySetMyState(PackOperation op, char const* label);
  void myPrepareToSend(char const* label, int tag);
  void myInitFromHeader(unsigned char const* header, long long available, char const* label);
  void myNormaliseHeader();
  void myFromBuffer(int size, char const* label);
  void myPrepareNextEntry(Entry& entry, char const* label) const;
  void myGetData(int type, void* destination, char const* label);
  void myCheckEnd(char const* label);
  void myBuildWire(char const* label);
  int myUsedBytes() const;
  int myReadStart() const { return m_readPos == 0 ? HEADER_SIZE : m_readPos; }
  static void mySwapBody(unsigned char* buffer, int end, bool countsForeign, char const* label);

  template <class T>
  void myPackScalar(T value, int type, char const* label) {
    myAddData(type, &value, 0, static_cast<long long>(sizeof(T)), false, label);
  }
  template <class T>
  void myPackArray(T const* values, unsigned int count, int type, bool addressOf, char const* label) {
    myAddData(type, values, count, static_cast<long long>(count) * static_cast<long long>(sizeof(T)), addressOf,
              label);
  }
  template <class T>
  void myUnpackScalar(T& value, int type, char const* label) {
    myGetData(type, &value, label);
  }
  template <class T>
  unsigned int myUnpackArray(T* values, int type, char const* label);

  int32_t m_size = 0;       // finished message as it goes out, header included
  int32_t m_writePos = 0;   // 0 when nothing was packed since the last finish
  int32_t m_capacity = 0;   // bytes of m_buffer, header included
  unsigned char* m_buffer = nullptr;
  PackState m_state = PACKINIT;
  int32_t m_readPos = 0;    // 0 before the first read of a message
  int32_t m_frameDepth = 0;
  bool m_swap = false;
  int32_t m_nAddressOf = 0;
  long long m_addressOfBytes = 0;
  int32_t m_nEntries = 0;
  int m_lastType = vNOTYPE;
  // Bytes of the message in the buffer (the in-memory form, where
  // address-of entries take 13 bytes): where reading ends.
  int32_t m_end = 0;
  std::vector<AddressOf> m_addresses;
  // The assembled form of a message with address-of entries: entry heads
  // for getSegments, the whole message for getBuffer.
  std::vector<unsigned char> m_wireHeads;
  std::unique_ptr<unsigned char[]> m_wire;
  int32_t m_wireCapacity = 0;
  bool m_wireValid = false;
  // Body length of a message being received (beginReceive to endReceive),
  // -1 when none is under way.
  int32_t m_receiveLength = -1;
};

// --- STL ranges ---------------------------------------------------------------
// A container travels as frame Packer::STLPackMagic / STLPackVersion, a
// vINT32 element count, the elements each by pack(), frame end.

namespace PackerDetail {
template <class T>
inline void packElement(Packer& p, T const& v) {
  p.pack(v);
}
inline void packElement(Packer& p, bool v) { p.packBool(v); }
template <class T>
inline void unpackElement(Packer& p, T& v) {
  p.unpack(v);
}
inline void unpackElement(Packer& p, bool& v) { p.unpackBool(v); }
}  // namespace PackerDetail

template <class InputIterator>
void pack(Packer& packer, InputIterator first, InputIterator last) {
  auto const n = std::distance(first, last);
  if (n < 0) Message::fatal("Packer::pack(STL)", 0, "InputIterators appear to be in the wrong order.");
  if (static_cast<unsigned long long>(n) > 0x7FFFFFFFull)
    Message::fatal("Packer::pack(STL)", 0, "Too many elements (%lld) for one range.", static_cast<long long>(n));
  packer.packFrame(Packer::STLPackMagic, Packer::STLPackVersion);
  packer.pack(static_cast<int>(n));
  for (; first != last; ++first) PackerDetail::packElement(packer, *first);
  packer.endFrame();
}

// Reads a range packed as above, each element into `element` and then
// through `inserter` (such as std::back_inserter(v)).
template <class OutputIterator, class T>
void unpack(Packer& packer, OutputIterator inserter, T element) {
  short magic = 0;
  short version = 0;
  packer.unpackFrame(magic, version);
  if (magic != Packer::STLPackMagic)
    Message::fatal("Packer::unpack(STL)", 0, "Bad magic number %d, expected %d.", magic,
                   static_cast<int>(Packer::STLPackMagic));
  if (version != Packer::STLPackVersion)
    Message::fatal("Packer::unpack(STL)", 0, "Bad version number %d, expected %d.", version,
                   static_cast<int>(Packer::STLPackVersion));
  int n = 0;
  packer.unpack(n);
  // Every element takes at least one byte: a larger count is forged.
  if (n < 0 || n > packer.getNRemainingBytes())
    Message::fatal("Packer::unpack(STL)", 0, "Bad element count %d with %d bytes left.", n,
                   packer.getNRemainingBytes());
  for (int i = 0; i < n; ++i) {
    PackerDetail::unpackElement(packer, element);
    *inserter = element;
    ++inserter;
  }
  packer.endFrame();
}

#endif

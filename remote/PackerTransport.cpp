// Packer over a channel: the two transport members of Packer live here, with
// the channels, so that the foundation does not depend on them.

#include <algorithm>
#include <cstring>
#include <vector>

#include "foundation/Message.h"
#include "foundation/Packer.h"
#include "foundation/UtlExcept.h"
#include "foundation/vUtl.h"
#include "remote/CommChan.h"

namespace {

// The first piece of a body read from a channel; later pieces are as large
// as what has come so far. A header that claims more than the peer sends
// costs no more than twice what really came.
constexpr int kFirstPiece = 1 << 20;
// Pieces in which the body of a message that cannot be held is dropped.
constexpr int kDrainPiece = 65536;

bool isForeign(unsigned char const* header) {
  int32_t magic;
  std::memcpy(&magic, header, 4);
  return magic != Packer::MAGIC;
}

// A received body still in the sender's byte order: every vUINT64 element
// is reversed here, so that the turn-around of the whole body that follows
// leaves them as the sender wrote them. Receivers have always read 64-bit
// unsigned values from a channel unswapped, and their peers count on it.
// Stops quietly at anything malformed; the turn-around reports it.
void keepUInt64AsSent(unsigned char* body, int length) {
  int pos = 0;
  while (pos < length) {
    int const t = body[pos];
    if (vUtl::dataTypeIsAddressOf(t)) return;
    if (t == vENDFRAME) {
      pos += 1;
      continue;
    }
    if (t == vPACKFRAME) {
      pos += 5;
      continue;
    }
    int const base = t & 0x7F;
    if (base > vIBMFLOAT32 || base == vNOTYPE) return;
    long long count = 1;
    int data = pos + 1;
    if (t & vARRAYOF) {
      if (length - data < 4) return;
      uint32_t c;
      std::memcpy(&c, body + data, 4);
      count = __builtin_bswap32(c);
      data += 4;
    }
    if (base == vSTRING) {
      unsigned char* p = body + data;
      unsigned char* const end = body + length;
      for (long long i = 0; i < count; ++i) {
        void* zero = std::memchr(p, 0, static_cast<std::size_t>(end - p));
        if (zero == nullptr) return;
        p = static_cast<unsigned char*>(zero) + 1;
      }
      pos = static_cast<int>(p - body);
      continue;
    }
    long long const size = base == vDATE ? 5 : vUtl::dataTypeSize(base);
    long long const bytes = count * size;
    if (bytes > length - data) return;
    if (base == vUINT64) vUtl::swapBytes64(body + data, static_cast<std::size_t>(count));
    pos = data + static_cast<int>(bytes);
  }
}

}  // namespace

int Packer::send(CommChan* chan, int tag) {
  char const* const label = "Packer::send";
  std::vector<Segment> segments;
  getSegments(segments, tag);
  if (chan == nullptr) return CommChan::OK;
  unsigned long long total = 0;
  for (Segment const& s : segments) total += s.size;
  if (total != static_cast<unsigned long long>(getSize()))
    Message::fatal(label, 0, "Amount of data processed does not equal the expected amount (%ld:%ld)!",
                   static_cast<long>(total), static_cast<long>(getSize()));
  if (segments.size() == 1)
    return chan->sendChar8(reinterpret_cast<char const*>(segments[0].data), static_cast<int>(segments[0].size));
  return chan->sendSegments(segments.data(), static_cast<int>(segments.size()));
}

int Packer::receive(CommChan& chan) {
  char const* const label = "Packer::receive";
  // A Packer that cannot take a message says so before a byte is read, so
  // that the channel stays in step.
  if (m_state != PACKINIT && m_state != PACKSENT && m_state != PACKUNPACKED) beginReceive(nullptr);
  unsigned char header[HEADER_SIZE];
  CommChan::StatusType s = chan.receiveChar8(reinterpret_cast<char*>(header), HEADER_SIZE);
  if (s != CommChan::OK) {
    abortReceive();
    return s;
  }
  int const length = beginReceive(header);
  int offset = 0;
  while (offset < length) {
    int const n = std::min(length - offset, std::max(kFirstPiece, offset));
    unsigned char* room = nullptr;
    try {
      room = getReceiveBuffer(offset, n);
    } catch (UtlExcept const&) {
      Message::info(label, 0,
                    "Ran out of memory allocating buffer of %d bytes. Press OK, but it might take a while to tidy up, "
                    "be patient.",
                    length);
      abortReceive();
      // What the peer sent must still be read, or the next message would
      // start in the middle of this one.
      char drain[kDrainPiece];
      int left = length - offset;
      while (left > 0) {
        int const piece = std::min(left, kDrainPiece);
        if (chan.receiveChar8(drain, piece) != CommChan::OK) break;
        left -= piece;
      }
      throw;
    }
    s = chan.receiveChar8(reinterpret_cast<char*>(room), n);
    if (s != CommChan::OK) {
      abortReceive();
      return s;
    }
    offset += n;
  }
  if (length > 0 && isForeign(header)) keepUInt64AsSent(getReceiveBuffer(0, length), length);
  endReceive();
  return CommChan::OK;
}

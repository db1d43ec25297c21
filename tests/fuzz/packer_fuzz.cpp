// Fuzz target for Packer: message construction and unpacking.
//
// The first input byte chooses the mode:
//   even  the rest is a message to read (with a header made here, in either
//         byte order, or taken as it stands). It must read, or end in
//         UtlExcept; received in pieces as a channel does, it must read the
//         same, and a header's forged length must not make the buffer grow
//         beyond the bytes that came; when its byte-swapped twin can be made,
//         both must read the same values.
//   odd   the rest is a program of pack operations. The message is finished,
//         read back in this process, from its bytes and from its swapped
//         twin, and every value must come back as it went in.
// Any other exception, a crash, or a value that does not come back is a
// finding.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "foundation/Packer.h"
#include "foundation/UtlExcept.h"
#include "foundation/vDate.h"
#include "foundation/vString.h"
#include "tests/fuzz/FuzzTesting.h"

namespace {

using Bytes = std::vector<unsigned char>;

[[noreturn]] void finding(char const* what) {
  std::fprintf(stderr, "packer_fuzz: %s\n", what);
  std::abort();
}

void check(bool ok, char const* what) {
  if (!ok) finding(what);
}


class Input {
 public:
  Input(uint8_t const* data, std::size_t size) : m_data(data), m_size(size), m_pos(0) {}
  bool empty() const { return m_pos >= m_size; }
  uint8_t byte() { return m_pos < m_size ? m_data[m_pos++] : 0; }
  uint32_t u32() {
    uint32_t v = 0;
    for (int i = 0; i < 4; ++i) v |= static_cast<uint32_t>(byte()) << (8 * i);
    return v;
  }
  uint64_t u64() { return static_cast<uint64_t>(u32()) | (static_cast<uint64_t>(u32()) << 32); }
  Bytes rest() {
    Bytes b(m_data + m_pos, m_data + m_size);
    m_pos = m_size;
    return b;
  }

 private:
  uint8_t const* m_data;
  std::size_t m_size;
  std::size_t m_pos;
};

void put32(Bytes& b, uint32_t v, bool swap) {
  if (swap) v = __builtin_bswap32(v);
  for (int i = 0; i < 4; ++i) b.push_back(static_cast<unsigned char>(v >> (8 * i)));
}

// --- reading any message ------------------------------------------------------

void addValue(std::string& t, void const* p, std::size_t n) {
  t.append(static_cast<char const*>(p), n);
  t.push_back('|');
}

// Reads a message by its type bytes, with the detours that choices asks
// for, and writes what it read into a transcript.
std::string readAny(Packer& p, uint32_t seed) {
  std::string t;
  uint32_t x = seed | 1;
  auto choice = [&x] {
    x ^= x << 13;
    x ^= x >> 17;
    x ^= x << 5;
    return x;
  };
  try {
    for (int steps = 0; steps < 2000 && p.getState() == Packer::PACKUNPACKING; ++steps) {
      int const type = p.getNextDataType();
      unsigned int const n = p.getNElements();
      addValue(t, &type, sizeof type);
      addValue(t, &n, sizeof n);
      uint32_t const c = choice() % 16;
      if (c == 0) {
        p.skipFrame();
        t += "skip|";
        continue;
      }
      if (c == 15 && (choice() & 1)) {
        p.skipRestOfFrame();
        t += "skiprest|";
        continue;
      }
      if (c == 1 && steps < 50) {
        p.first();
        t += "first|";
        continue;
      }
      if (c == 2) {
        std::vector<int> v;
        unpack(p, std::back_inserter(v), 0);
        addValue(t, v.data(), v.size() * sizeof(int));
        continue;
      }
      switch (type) {
        case vINT8: {
          signed char v;
          p.unpack(v);
          addValue(t, &v, sizeof v);
          break;
        }
        case vINT16: {
          short v;
          p.unpack(v);
          addValue(t, &v, sizeof v);
          break;
        }
        case vINT32: {
          int v;
          p.unpack(v);
          addValue(t, &v, sizeof v);
          break;
        }
        case vUINT64: {
          unsigned long long v;
          p.unpack(v);
          addValue(t, &v, sizeof v);
          break;
        }
        case vFLOAT64: {
          double v;
          p.unpack(v);
          addValue(t, &v, sizeof v);
          break;
        }
        case vBOOL8: {
          bool v;
          p.unpackBool(v);
          t += v ? "T|" : "F|";
          break;
        }
        case vDATE: {
          vDate v;
          p.unpack(v);
          long const s = v.getSeconds();
          addValue(t, &s, sizeof s);
          break;
        }
        case vARRAYOF | vCHAR8: {
          vString v;
          p.unpack(v);
          addValue(t, v.c_str(), v.length());
          break;
        }
        case vARRAYOF | vSTRING: {
          std::vector<vString> v(n);
          check(p.unpack(v.data()) == n, "string array count");
          for (auto const& s : v) addValue(t, s.c_str(), s.length());
          break;
        }
        case vARRAYOF | vDATE: {
          std::vector<vDate> v(n);
          check(p.unpack(v.data()) == n, "date array count");
          for (auto const& d : v) {
            long const s = d.getSeconds();
            addValue(t, &s, sizeof s);
          }
          break;
        }
        case vARRAYOF | vUINT16: {
          std::vector<unsigned short> v(n);
          check(p.unpack(v.data()) == n, "uint16 array count");
          addValue(t, v.data(), v.size() * sizeof(unsigned short));
          break;
        }
        case vARRAYOF | vFLOAT32: {
          std::vector<float> v(n);
          check(p.unpack(v.data()) == n, "float array count");
          addValue(t, v.data(), v.size() * sizeof(float));
          break;
        }
        case vARRAYOF | vINT64: {
          std::vector<long long> v(n);
          check(p.unpack(v.data()) == n, "int64 array count");
          addValue(t, v.data(), v.size() * sizeof(long long));
          break;
        }
        case vARRAYOF | vBOOL8: {
          std::unique_ptr<bool[]> v(new bool[n + 1]);
          check(p.unpackBool(v.get()) == n, "bool array count");
          for (unsigned i = 0; i < n; ++i) t += v[i] ? 'T' : 'F';
          t += '|';
          break;
        }
        case vPACKFRAME: {
          short m;
          short v;
          p.unpackFrame(m, v);
          addValue(t, &m, sizeof m);
          addValue(t, &v, sizeof v);
          break;
        }
        case vENDFRAME:
          p.endFrame();
          t += "end|";
          break;
        default:
          // A read of a type that is certainly wrong must be refused.
          if (c == 3) {
            int v;
            p.unpack(v);
            if (type != vINT32) finding("a mismatched read went through");
          }
          p.next();
          t += "next|";
          break;
      }
    }
  } catch (UtlExcept const&) {
    t += "!";
  }
  return t;
}

// The same bytes as a channel delivers them: the header, then the body in
// pieces of sizes chosen by the seed, for as long as bytes remain. The
// buffer may grow only with what arrived, whatever length the header
// claims; a body that stops short must be refused.
std::string receiveAny(Bytes const& m, uint32_t seed) {
  if (m.size() < 16) return "(short)";
  Packer p(static_cast<int>(seed % 100));
  int length = 0;
  try {
    length = p.beginReceive(m.data());
  } catch (UtlExcept const&) {
    return "(refused)";
  }
  std::size_t const want = static_cast<std::size_t>(length);
  std::size_t const avail = m.size() - 16;
  std::size_t got = 0;
  uint32_t x = seed | 1;
  while (got < want && got < avail) {
    x ^= x << 13;
    x ^= x >> 17;
    x ^= x << 5;
    std::size_t piece = 1 + x % 5000;
    piece = std::min(piece, std::min(want - got, avail - got));
    std::memcpy(p.getReceiveBuffer(static_cast<int>(got), static_cast<int>(piece)), m.data() + 16 + got, piece);
    got += piece;
  }
  std::size_t const bound = std::max<std::size_t>(16 + 65536 + 128, 8 * (16 + got));
  check(static_cast<std::size_t>(p.getCapacity()) + 16 <= bound, "the receive buffer grew beyond what arrived");
  try {
    p.endReceive();
  } catch (UtlExcept const&) {
    check(p.getState() == Packer::PACKUNPACKED, "a refused body left something to read");
    return got < want ? "(short)" : "(refused)";
  }
  check(got == want, "an incomplete body was accepted");
  return readAny(p, seed);
}

void readMessage(Input& in) {
  uint8_t const how = in.byte();
  uint32_t const seed = in.u32();
  Bytes const body = in.rest();
  Bytes m;
  if ((how & 3) == 2) {
    m = body;
  } else {
    bool const swap = (how & 3) == 1;
    put32(m, 40506070, swap);
    put32(m, 1, swap);
    put32(m, static_cast<uint32_t>(body.size()), swap);
    put32(m, seed, swap);
    m.insert(m.end(), body.begin(), body.end());
  }
  std::string const received = receiveAny(m, seed);
  // Exactly sized copies, so that the sanitizers see any overrun.
  std::string original = "(refused)";
  try {
    std::unique_ptr<unsigned char[]> exact(new unsigned char[m.size() + 1]);
    if (!m.empty()) std::memcpy(exact.get(), m.data(), m.size());
    Packer p(static_cast<int>(m.size()), static_cast<unsigned char const*>(exact.get()));
    original = readAny(p, seed);
  } catch (UtlExcept const&) {
    return;
  }
  // A whole message reads the same whichever way it came in.
  if (received != original) finding("a message received in pieces reads differently");
  // The twin in the other byte order must read the same.
  Bytes twin = m;
  try {
    Packer::reverseByteOrder(twin.data(), static_cast<int>(twin.size()));
  } catch (UtlExcept const&) {
    return;
  }
  unsigned char* adopted = new unsigned char[twin.size()];
  std::memcpy(adopted, twin.data(), twin.size());
  std::string swapped;
  try {
    Packer q(static_cast<int>(twin.size()), adopted);
    swapped = readAny(q, seed);
  } catch (UtlExcept const&) {
    finding("a twin that could be made was refused");
  }
  if (swapped != original) finding("the byte-swapped twin reads differently");
}

// --- building messages ----------------------------------------------------------

enum Op {
  kInt8, kChar, kUInt8, kInt16, kUInt16, kInt32, kUInt32, kInt64, kUInt64, kFloat, kDouble, kBool,
  kInt32s, kDoubles, kUInt16s, kText, kTexts, kDate, kDates, kFrame, kEnd, kAddressOfFloats, kBools,
  kAddressOfInt16s, kNOps
};

struct Item {
  Op op;
  Bytes raw;                  // numbers, arrays: the bytes packed
  std::vector<std::string> texts;
  std::vector<long> seconds;  // -1 for a date that is not valid
  short magic = 0;
  short version = 0;
};

std::string textFrom(Input& in) {
  std::size_t const n = in.byte() % 24;
  std::string s;
  for (std::size_t i = 0; i < n; ++i) s.push_back(static_cast<char>(in.byte() | 1));
  return s;
}

void packOne(Packer& p, Item& item, Input& in, std::deque<std::vector<float>>& floats,
             std::deque<std::vector<short>>& shorts, int& depth) {
  auto scalar = [&](auto v) {
    item.raw.resize(sizeof v);
    std::memcpy(item.raw.data(), &v, sizeof v);
    p.pack(v);
  };
  switch (item.op) {
    case kInt8: scalar(static_cast<signed char>(in.byte())); break;
    case kChar: scalar(static_cast<char>(in.byte())); break;
    case kUInt8: scalar(static_cast<unsigned char>(in.byte())); break;
    case kInt16: scalar(static_cast<short>(in.u32())); break;
    case kUInt16: scalar(static_cast<unsigned short>(in.u32())); break;
    case kInt32: scalar(static_cast<int>(in.u32())); break;
    case kUInt32: scalar(in.u32()); break;
    case kInt64: scalar(static_cast<long long>(in.u64())); break;
    case kUInt64: scalar(static_cast<unsigned long long>(in.u64())); break;
    case kFloat: {
      uint32_t bits = in.u32();
      float f;
      std::memcpy(&f, &bits, 4);
      scalar(f);
      break;
    }
    case kDouble: {
      uint64_t bits = in.u64();
      double d;
      std::memcpy(&d, &bits, 8);
      scalar(d);
      break;
    }
    case kBool: {
      bool const b = in.byte() & 1;
      item.raw.assign(1, b ? 1 : 0);
      p.packBool(b);
      break;
    }
    case kInt32s: {
      std::vector<int> v(in.byte() % 40);
      for (auto& e : v) e = static_cast<int>(in.u32());
      item.raw.assign(reinterpret_cast<unsigned char*>(v.data()), reinterpret_cast<unsigned char*>(v.data() + v.size()));
      p.pack(v.data(), static_cast<unsigned>(v.size()));
      break;
    }
    case kDoubles: {
      std::vector<double> v(in.byte() % 40);
      for (auto& e : v) {
        uint64_t bits = in.u64();
        std::memcpy(&e, &bits, 8);
      }
      item.raw.assign(reinterpret_cast<unsigned char*>(v.data()), reinterpret_cast<unsigned char*>(v.data() + v.size()));
      p.pack(v.data(), static_cast<unsigned>(v.size()));
      break;
    }
    case kUInt16s: {
      std::vector<unsigned short> v(in.byte() % 40);
      for (auto& e : v) e = static_cast<unsigned short>(in.u32());
      item.raw.assign(reinterpret_cast<unsigned char*>(v.data()), reinterpret_cast<unsigned char*>(v.data() + v.size()));
      p.pack(v.data(), static_cast<unsigned>(v.size()));
      break;
    }
    case kText: {
      item.texts.push_back(textFrom(in));
      p.pack(vString(item.texts.back().c_str()));
      break;
    }
    case kTexts: {
      std::size_t const n = in.byte() % 8;
      std::vector<vString> v;
      for (std::size_t i = 0; i < n; ++i) {
        item.texts.push_back(textFrom(in));
        v.emplace_back(item.texts.back().c_str());
      }
      p.pack(v.data(), static_cast<unsigned>(v.size()));
      break;
    }
    case kDate:
    case kDates: {
      std::size_t const n = item.op == kDate ? 1 : in.byte() % 6;
      std::vector<vDate> v;
      for (std::size_t i = 0; i < n; ++i) {
        uint32_t const s = in.u32();
        if (s & 1) {
          v.emplace_back(vDate::Invalid);
          item.seconds.push_back(-1);
        } else {
          v.emplace_back(static_cast<long>(s >> 1));
          item.seconds.push_back(static_cast<long>(s >> 1));
        }
      }
      if (item.op == kDate) {
        p.pack(v[0]);
      } else {
        p.pack(v.data(), static_cast<unsigned>(v.size()));
      }
      break;
    }
    case kFrame:
      item.magic = static_cast<short>(in.u32());
      item.version = static_cast<short>(in.u32());
      p.packFrame(item.magic, item.version);
      ++depth;
      break;
    case kEnd:
      p.endFrame();
      --depth;
      break;
    case kAddressOfFloats: {
      floats.emplace_back(in.byte() % 64);
      for (auto& e : floats.back()) {
        uint32_t bits = in.u32();
        std::memcpy(&e, &bits, 4);
      }
      auto const& v = floats.back();
      item.raw.assign(reinterpret_cast<unsigned char const*>(v.data()),
                      reinterpret_cast<unsigned char const*>(v.data() + v.size()));
      p.packAddressOf(v.data(), static_cast<unsigned>(v.size()));
      break;
    }
    case kAddressOfInt16s: {
      shorts.emplace_back(in.byte() % 16);
      for (auto& e : shorts.back()) e = static_cast<short>(in.u32());
      auto const& v = shorts.back();
      item.raw.assign(reinterpret_cast<unsigned char const*>(v.data()),
                      reinterpret_cast<unsigned char const*>(v.data() + v.size()));
      p.packAddressOf(v.data(), static_cast<unsigned>(v.size()));
      break;
    }
    case kBools: {
      std::size_t const n = in.byte() % 20;
      std::unique_ptr<bool[]> v(new bool[n + 1]);
      for (std::size_t i = 0; i < n; ++i) {
        v[i] = in.byte() & 1;
        item.raw.push_back(v[i] ? 1 : 0);
      }
      p.packBool(v.get(), static_cast<unsigned>(n));
      break;
    }
    default:
      break;
  }
}

template <class T>
void expectScalar(Packer& p, Item const& item) {
  T v;
  p.unpack(v);
  check(item.raw.size() == sizeof v && std::memcmp(&v, item.raw.data(), sizeof v) == 0, "scalar value");
}

template <class T>
void expectArray(Packer& p, Item const& item) {
  unsigned int const n = p.getNElements();
  check(n * sizeof(T) == item.raw.size(), "array count");
  std::vector<T> v(n + 1);
  check(p.unpack(v.data()) == n, "array unpack count");
  check(n == 0 || std::memcmp(v.data(), item.raw.data(), item.raw.size()) == 0, "array values");
}

void readBack(Packer& p, std::vector<Item> const& items) {
  for (Item const& item : items) {
    switch (item.op) {
      case kInt8: expectScalar<signed char>(p, item); break;
      case kChar: expectScalar<char>(p, item); break;
      case kUInt8: expectScalar<unsigned char>(p, item); break;
      case kInt16: expectScalar<short>(p, item); break;
      case kUInt16: expectScalar<unsigned short>(p, item); break;
      case kInt32: expectScalar<int>(p, item); break;
      case kUInt32: expectScalar<unsigned int>(p, item); break;
      case kInt64: expectScalar<long long>(p, item); break;
      case kUInt64: expectScalar<unsigned long long>(p, item); break;
      case kFloat: expectScalar<float>(p, item); break;
      case kDouble: expectScalar<double>(p, item); break;
      case kBool: {
        bool b;
        p.unpackBool(b);
        check(b == (item.raw[0] == 1), "bool value");
        break;
      }
      case kInt32s: expectArray<int>(p, item); break;
      case kDoubles: expectArray<double>(p, item); break;
      case kUInt16s: expectArray<unsigned short>(p, item); break;
      case kAddressOfFloats: expectArray<float>(p, item); break;
      case kAddressOfInt16s: expectArray<short>(p, item); break;
      case kBools: {
        unsigned int const n = p.getNElements();
        check(n == item.raw.size(), "bool array count");
        std::unique_ptr<bool[]> v(new bool[n + 1]);
        p.unpackBool(v.get());
        for (unsigned i = 0; i < n; ++i) check(v[i] == (item.raw[i] == 1), "bool array value");
        break;
      }
      case kText: {
        vString s;
        p.unpack(s);
        check(item.texts[0] == s.c_str() && s.length() == item.texts[0].size(), "text value");
        break;
      }
      case kTexts: {
        unsigned int const n = p.getNElements();
        check(n == item.texts.size(), "text array count");
        std::vector<vString> v(n);
        p.unpack(v.data());
        for (unsigned i = 0; i < n; ++i) check(item.texts[i] == v[i].c_str(), "text array value");
        break;
      }
      case kDate: {
        vDate d;
        p.unpack(d);
        check(d.getSeconds() == item.seconds[0] && d.isValid() == (item.seconds[0] >= 0), "date value");
        break;
      }
      case kDates: {
        unsigned int const n = p.getNElements();
        check(n == item.seconds.size(), "date array count");
        std::vector<vDate> v(n);
        p.unpack(v.data());
        for (unsigned i = 0; i < n; ++i)
          check(v[i].getSeconds() == item.seconds[i] && v[i].isValid() == (item.seconds[i] >= 0), "date array value");
        break;
      }
      case kFrame: {
        short m;
        short v;
        p.unpackFrame(m, v);
        check(m == item.magic && v == item.version, "frame magic and version");
        break;
      }
      case kEnd:
        p.endFrame();
        break;
      default:
        break;
    }
  }
  check(p.getState() == Packer::PACKUNPACKED, "message fully read");
}

void buildMessage(Input& in) {
  std::vector<Item> items;
  std::deque<std::vector<float>> floats;
  std::deque<std::vector<short>> shorts;
  int depth = 0;
  Packer p(in.byte() % 64);
  while (!in.empty() && items.size() < 200) {
    Item item;
    item.op = static_cast<Op>(in.byte() % kNOps);
    if (item.op == kEnd && depth == 0) item.op = kFrame;
    packOne(p, item, in, floats, shorts, depth);
    items.push_back(std::move(item));
  }
  while (depth > 0) {
    Item end;
    end.op = kEnd;
    p.endFrame();
    --depth;
    items.push_back(end);
  }
  if (items.empty()) return;
  unsigned char const* buffer = nullptr;
  int size = 0;
  p.getBuffer(&buffer, size, 5);
  Bytes const m(buffer, buffer + size);

  // The gather list is the same message.
  std::vector<Packer::Segment> segments;
  p.getSegments(segments, 6);
  Bytes joined;
  for (auto const& s : segments) joined.insert(joined.end(), s.data, s.data + s.size);
  check(joined == m, "segments and buffer differ");

  readBack(p, items);
  Packer q(static_cast<int>(m.size()), m.data());
  readBack(q, items);
  Bytes twin = m;
  Packer::reverseByteOrder(twin.data(), static_cast<int>(twin.size()));
  Packer r(static_cast<int>(twin.size()), static_cast<unsigned char const*>(twin.data()));
  check(r.isSwapped() && r.getMessageTag() == 5, "twin header");
  readBack(r, items);
  // Stepping counts every entry once.
  r.first();
  std::size_t steps = 1;
  while (r.next()) ++steps;
  check(steps == items.size(), "next() steps");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, std::size_t size) {
  fuzz_testing::raiseWithoutReports();
  if (size == 0) return 0;
  Input in(data + 1, size - 1);
  try {
    if (data[0] & 1) {
      buildMessage(in);
    } else {
      readMessage(in);
    }
  } catch (UtlExcept const& e) {
    // Building never fails for the sizes used here, and reading is guarded.
    std::fprintf(stderr, "packer_fuzz: unexpected UtlExcept: %s\n", e.getReason().c_str());
    std::abort();
  }
  return 0;
}

#include "database/kvs/KvsParams.h"

#include <cstring>

#include "database/kvs/KvsSocket.h"

namespace kvs {

bool KvsParam::operator==(const KvsParam& o) const {
  if (name != o.name || cls != o.cls || fmt != o.fmt || unit != o.unit || null != o.null) return false;
  if (null) return true;
  switch (KvsFmtCode(fmt)) {
    case KvsFmtINT: return i == o.i;
    case KvsFmtFLT: return f == o.f;
    case KvsFmtDBL: return d == o.d;
    default: return text == o.text;
  }
}

std::uint32_t KvsFmtCode(const std::string& fmt) {
  unsigned char b[4] = {};
  std::memcpy(b, fmt.data(), fmt.size() < 4 ? fmt.size() : 4);
  if (fmt.size() > 3) b[3] = static_cast<unsigned char>(fmt[3]);
  return KvsGetBE32(b);
}

static void put8(unsigned char* p, const std::string& s) {
  std::memcpy(p, s.data(), s.size() < 8 ? s.size() : 8);
}

static std::string get8(const unsigned char* p) {
  const char* c = reinterpret_cast<const char*>(p);
  return std::string(c, strnlen(c, 8));
}

static void putBE64(unsigned char* p, std::uint64_t v) {
  KvsPutBE32(p, static_cast<std::uint32_t>(v >> 32));
  KvsPutBE32(p + 4, static_cast<std::uint32_t>(v));
}

static std::uint64_t getBE64(const unsigned char* p) {
  return (std::uint64_t(KvsGetBE32(p)) << 32) | KvsGetBE32(p + 4);
}

static std::size_t textRecords(std::size_t len) {
  return len <= 40 ? 1 : 1 + (len - 40 + KvsParamRecord - 1) / KvsParamRecord;
}

std::vector<unsigned char> KvsParamsEncode(const std::vector<KvsParam>& params) {
  std::vector<unsigned char> out(KvsParamRecord, 0);
  KvsPutBE32(out.data() + 4, static_cast<std::uint32_t>(params.size()));
  for (const KvsParam& p : params) {
    std::uint32_t code = KvsFmtCode(p.fmt);
    bool numeric = code == KvsFmtINT || code == KvsFmtFLT || code == KvsFmtDBL;
    std::size_t at = out.size();
    out.resize(at + KvsParamRecord * (numeric ? 1 : textRecords(p.text.size())), 0);
    unsigned char* r = out.data() + at;
    put8(r, p.name);
    put8(r + 8, p.cls);
    put8(r + 16, p.fmt);
    put8(r + 24, p.unit);
    if (code == KvsFmtINT) {
      KvsPutBE32(r + 32, p.null ? KvsNullWord : static_cast<std::uint32_t>(p.i));
    } else if (code == KvsFmtFLT) {
      std::uint32_t w;
      std::memcpy(&w, &p.f, 4);
      KvsPutBE32(r + 32, p.null ? KvsNullWord : w);
    } else if (code == KvsFmtDBL) {
      std::uint64_t w;
      std::memcpy(&w, &p.d, 8);
      putBE64(r + 32, p.null ? std::uint64_t(KvsNullWord) << 32 : w);
    } else {
      KvsPutBE32(r + 36, static_cast<std::uint32_t>(p.text.size()));
      std::memcpy(r + 40, p.text.data(), p.text.size());
    }
  }
  return out;
}

long KvsParamsDecode(const unsigned char* data, std::size_t size, std::vector<KvsParam>& out) {
  out.clear();
  if (size < KvsParamRecord) return -1;
  std::uint32_t count = KvsGetBE32(data + 4);
  std::size_t at = KvsParamRecord;
  for (std::uint32_t k = 0; k < count; ++k) {
    if (size - at < KvsParamRecord) return -1;
    const unsigned char* r = data + at;
    KvsParam p;
    p.name = get8(r);
    p.cls = get8(r + 8);
    p.fmt = get8(r + 16);
    p.unit = get8(r + 24);
    std::uint32_t code = KvsFmtCode(p.fmt);
    std::size_t records = 1;
    if (code == KvsFmtINT || code == KvsFmtFLT) {
      std::uint32_t w = KvsGetBE32(r + 32);
      p.null = w == KvsNullWord;
      if (code == KvsFmtINT) p.i = static_cast<std::int32_t>(w);
      else std::memcpy(&p.f, &w, 4);
    } else if (code == KvsFmtDBL) {
      std::uint64_t w = getBE64(r + 32);
      p.null = w == std::uint64_t(KvsNullWord) << 32;
      std::memcpy(&p.d, &w, 8);
    } else {
      std::uint32_t len = KvsGetBE32(r + 36);
      if (len > size - at - 40) return -1;
      records = textRecords(len);
      if (records * KvsParamRecord > size - at) return -1;
      p.text.assign(reinterpret_cast<const char*>(r + 40), len);
    }
    if (p.null) p.i = 0, p.f = 0, p.d = 0;
    at += records * KvsParamRecord;
    out.push_back(std::move(p));
  }
  return static_cast<long>(at);
}

static bool isDblNull(const unsigned char* p) {
  std::uint32_t w;
  std::memcpy(&w, p, 4);
  return w == KvsNullWord && p[4] == 0 && p[5] == 0 && p[6] == 0 && p[7] == 0;
}

// Four-byte words reversed; the compiler turns this loop into vector code.
static void swap4(const unsigned char* in, unsigned char* out, std::size_t rows) {
  for (std::size_t r = 0; r < rows; ++r) {
    std::uint32_t w;
    std::memcpy(&w, in + 4 * r, 4);
    w = __builtin_bswap32(w);
    std::memcpy(out + 4 * r, &w, 4);
  }
}

static void swap8(const unsigned char* in, unsigned char* out, std::size_t rows, bool toWire) {
  for (std::size_t r = 0; r < rows; ++r, in += 8, out += 8) {
    bool null = toWire ? isDblNull(in) : (KvsGetBE32(in) == KvsNullWord && !in[4] && !in[5] && !in[6] && !in[7]);
    if (null) {
      std::uint32_t m = KvsNullWord;
      if (toWire) KvsPutBE32(out, m);
      else std::memcpy(out, &m, 4);
      std::memset(out + 4, 0, 4);
      continue;
    }
    std::uint64_t w;
    std::memcpy(&w, in, 8);
    w = __builtin_bswap64(w);
    std::memcpy(out, &w, 8);
  }
}

static void swapColumn(std::uint32_t fmt, std::size_t elem, const unsigned char* in, unsigned char* out,
                       std::size_t rows, bool toWire) {
  if (fmt == KvsFmtDBL) swap8(in, out, rows, toWire);
  else if (fmt == KvsFmtINT || fmt == KvsFmtFLT) swap4(in, out, rows);
  else if (rows && in != out) std::memmove(out, in, rows * elem);
}

void KvsToWire(std::uint32_t fmt, std::size_t elem, const unsigned char* in, unsigned char* out, std::size_t rows) {
  swapColumn(fmt, elem, in, out, rows, true);
}

void KvsFromWire(std::uint32_t fmt, std::size_t elem, const unsigned char* in, unsigned char* out, std::size_t rows) {
  swapColumn(fmt, elem, in, out, rows, false);
}

}  // namespace kvs

#pragma once
// A table's scalar parameters and their block on the wire: an 80-byte head
// with the count at offset 4, then one 80-byte record per parameter (name,
// class, format, unit in 8 bytes each, the value from offset 32); a text
// value takes a length at 36, its bytes from 40, and more records as needed.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kvs {

constexpr std::uint32_t KvsNullWord = 0xDEADBEEFu;
constexpr std::size_t KvsParamRecord = 80;

struct KvsParam {
  std::string name, cls, fmt, unit;  // at most 8 characters each
  bool null = false;
  std::int32_t i = 0;
  float f = 0;
  double d = 0;
  std::string text;
  bool operator==(const KvsParam& o) const;
};

std::vector<unsigned char> KvsParamsEncode(const std::vector<KvsParam>& params);
// Returns the number of bytes used, or -1 for a block that does not hold
// together (short, a count or a text length beyond its end).
long KvsParamsDecode(const unsigned char* data, std::size_t size, std::vector<KvsParam>& out);

// Format codes: big-endian integers over three letters and a NUL.
constexpr std::uint32_t KvsFmtINT = 0x494E5400u, KvsFmtFLT = 0x464C5400u, KvsFmtDBL = 0x44424C00u;
std::uint32_t KvsFmtCode(const std::string& fmt);

// Column data between this machine's order and the wire's (big-endian);
// a DBL null keeps its marker word as a unit and its four zero bytes.
void KvsToWire(std::uint32_t fmt, std::size_t elem, const unsigned char* in, unsigned char* out, std::size_t rows);
void KvsFromWire(std::uint32_t fmt, std::size_t elem, const unsigned char* in, unsigned char* out, std::size_t rows);

}  // namespace kvs

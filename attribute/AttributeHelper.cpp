#include "attribute/AttributeHelper.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <istream>
#include <ostream>
#include <string>

#include "foundation/Message.h"
#include "foundation/UtlExcept.h"
#include "foundation/vDate.h"
#include "foundation/vUtl.h"

namespace {

char const* const kFile = "AttributeHelper";

// n values of one attribute type from one place to another. Numbers move as
// bytes (overlap allowed); strings by assignment, backwards when the target
// lies inside the source so that an overlapping move within one attribute
// reads each string before it is overwritten.
void moveValues(DataType type, int elementSize, void const* from, void* to, long long n) {
  if (n <= 0 || from == to) return;
  if (type == vSTRING) {
    vString const* s = static_cast<vString const*>(from);
    vString* d = static_cast<vString*>(to);
    std::less<vString const*> const before;
    if (before(s, d) && before(d, s + n)) {
      for (long long i = n; i-- > 0;) d[i] = s[i];
    } else {
      for (long long i = 0; i < n; ++i) d[i] = s[i];
    }
    return;
  }
  std::memmove(to, from, static_cast<std::size_t>(n) * static_cast<std::size_t>(elementSize));
}

void clearValues(DataType type, int elementSize, void* to, long long n) {
  if (n <= 0) return;
  if (type == vSTRING) {
    vString* d = static_cast<vString*>(to);
    for (long long i = 0; i < n; ++i) d[i].erase();
    return;
  }
  std::memset(to, 0, static_cast<std::size_t>(n) * static_cast<std::size_t>(elementSize));
}

char const* nameOf(Attribute const& a) { return a.getName().c_str(); }

void checkSameType(char const* label, Attribute const& src, Attribute const& dst) {
  if (src.getDataType() != dst.getDataType())
    Message::fatal(label, 0, "Method cannot be used with attributes %s and %s of different data types", nameOf(src),
                   nameOf(dst));
}

void checkFixedSource(char const* label, Attribute const& src) {
  if (src.isVariableLength()) Message::fatal(label, 0, "Source Attribute can't be variable length for now.");
}

void checkNotLonger(char const* label, Attribute const& src, Attribute const& dst) {
  if (src.getLength() > dst.getLength())
    Message::fatal(label, 0, "Method cannot be used with attribute %s longer than attribute %s", nameOf(src),
                   nameOf(dst));
}

void checkListRange(char const* label, std::vector<long long> const& list, unsigned int nInstances) {
  if (list.empty()) return;
  auto const limits = std::minmax_element(list.begin(), list.end());
  if (*limits.first < 1 || *limits.second > static_cast<long long>(nInstances))
    Message::fatal(label, 0,
                   "Instance number %d(smallest) and/or %d(largest) are outside \t\t\t\t\t\t\t\t\t\tthe allowed range "
                   "of %d to %d",
                   static_cast<int>(*limits.first), static_cast<int>(*limits.second), 1, static_cast<int>(nInstances));
}

[[noreturn]] void throwAt(char const* reason, char const* label, int line) { throw UtlExcept(reason, label, line, kFile); }

// Sum of the lengths of instances first to last of a variable-length
// attribute, or the values of those instances of a fixed one.
long long valuesIn(Attribute const& a, unsigned int first, unsigned int last) {
  if (last < first) return 0;
  if (!a.isVariableLength()) return static_cast<long long>(a.getLength()) * (last - first + 1);
  long long n = 0;
  for (unsigned int i = first; i <= last; ++i) n += a.getLength(i);
  return n;
}

// A new attribute like a, of n instances; a variable length takes the
// lengths given (passed to the attribute) or zeros.
void makeLike(Attribute& fresh, unsigned int n, int* lengths) {
  if (fresh.isVariableLength() && n > 0)
    fresh.resize(n, nullptr, lengths);
  else {
    delete[] lengths;
    fresh.resize(n);
  }
}

template <class T>
bool anyInRange(T const* p, long long n, double low, double high) {
  for (long long k = 0; k < n; ++k) {
    double const v = static_cast<double>(p[k]);
    if (v >= low && v <= high) return true;
  }
  return false;
}

bool instanceInRange(Attribute const& a, unsigned int i, double low, double high) {
  long long const n = a.getLength(i);
  if (n <= 0) return false;
  void const* p = a.getPointer(i);
  switch (a.getDataType()) {
    case vINT16:
      return anyInRange(static_cast<short const*>(p), n, low, high);
    case vINT32:
      return anyInRange(static_cast<int const*>(p), n, low, high);
    case vINT64:
      return anyInRange(static_cast<long long const*>(p), n, low, high);
    case vFLOAT32:
      return anyInRange(static_cast<float const*>(p), n, low, high);
    default:
      return anyInRange(static_cast<double const*>(p), n, low, high);
  }
}

void printValue(std::ostream& out, DataType type, void const* p, long long k) {
  switch (type) {
    case vINT16:
      out << static_cast<short const*>(p)[k];
      break;
    case vINT32:
      out << static_cast<int const*>(p)[k];
      break;
    case vINT64:
      out << static_cast<long long const*>(p)[k];
      break;
    case vFLOAT32:
      out << static_cast<float const*>(p)[k];
      break;
    case vFLOAT64:
      out << static_cast<double const*>(p)[k];
      break;
    case vSTRING:
      out << '"' << static_cast<vString const*>(p)[k].c_str() << '"';
      break;
    default:
      out << '?';
      break;
  }
}

double noise(float amplitude) {
  return (static_cast<double>(std::rand() & 0x7FFFFFFF) / 2147483647.0 - 0.5) * static_cast<double>(amplitude);
}

}  // namespace

// --- copies ------------------------------------------------------------------

void AttributeHelper::copy(Attribute const& src, int srcFirst, Attribute& dst, int dstFirst, int count) {
  char const* const label = "AttributeHelper::copy()";
  checkSameType(label, src, dst);
  checkFixedSource(label, src);
  checkNotLonger(label, src, dst);
  if (srcFirst < 1) throwAt("Bad Source start instance number.", label, __LINE__);
  if (count <= 0) return;
  if (dstFirst < 1) throwAt("Bad Destination start instance number.", label, __LINE__);
  if (dstFirst - 1LL + count > static_cast<long long>(dst.getNInstances()))
    throwAt("Destination Attribute too small for copy.", label, __LINE__);
  if (srcFirst - 1LL + count > static_cast<long long>(src.getNInstances()))
    throwAt("Source Attribute too small for copy.", label, __LINE__);
  moveValues(src.getDataType(), src.getElementNBytes(), src.getPointer(static_cast<unsigned int>(srcFirst)),
             dst.getPointer(static_cast<unsigned int>(dstFirst)), static_cast<long long>(count) * src.getLength());
}

void AttributeHelper::myCopyList(char const* label, Attribute const& src, std::vector<long long> const& srcInstances,
                                 Attribute& dst, std::vector<long long> const& dstInstances, bool listIsSource) {
  checkSameType(label, src, dst);
  checkFixedSource(label, src);
  checkNotLonger(label, src, dst);
  if (srcInstances.empty()) return;
  // The list is checked against its own attribute; the run on the other
  // side has a start and an end.
  if (listIsSource) {
    checkListRange(label, srcInstances, src.getNInstances());
    if (dstInstances.front() < 1) throwAt("Bad Destination start instance number.", label, __LINE__);
    if (dstInstances.back() > static_cast<long long>(dst.getNInstances()))
      throwAt("Destination Attribute too small for copy.", label, __LINE__);
  } else {
    checkListRange(label, dstInstances, dst.getNInstances());
    if (srcInstances.front() < 1) throwAt("Bad Source start instance number.", label, __LINE__);
    if (srcInstances.back() > static_cast<long long>(src.getNInstances()))
      throwAt("Source Attribute too small for copy.", label, __LINE__);
  }
  // Both are of fixed length now: instances lie at a fixed stride.
  DataType const type = src.getDataType();
  int const element = src.getElementNBytes();
  long long const values = src.getLength();
  std::size_t const bytes = static_cast<std::size_t>(src.getNBytes());
  std::size_t const srcStride = bytes;
  std::size_t const dstStride = static_cast<std::size_t>(dst.getNBytes());
  unsigned char const* const s = static_cast<unsigned char const*>(src.getPointer(1));
  unsigned char* const d = static_cast<unsigned char*>(dst.getPointer(1));
  std::size_t const n = srcInstances.size();
  if (type != vSTRING && bytes == 4) {
    for (std::size_t k = 0; k < n; ++k)
      std::memcpy(d + (dstInstances[k] - 1) * dstStride, s + (srcInstances[k] - 1) * srcStride, 4);
  } else if (type != vSTRING && bytes == 8) {
    for (std::size_t k = 0; k < n; ++k)
      std::memcpy(d + (dstInstances[k] - 1) * dstStride, s + (srcInstances[k] - 1) * srcStride, 8);
  } else {
    for (std::size_t k = 0; k < n; ++k)
      moveValues(type, element, s + (srcInstances[k] - 1) * srcStride, d + (dstInstances[k] - 1) * dstStride, values);
  }
}

void AttributeHelper::copy(Attribute const& src, int srcFirst, Attribute& dst, std::vector<int> const& dstList) {
  std::vector<long long> const to(dstList.begin(), dstList.end());
  std::vector<long long> from(to.size());
  for (std::size_t k = 0; k < from.size(); ++k) from[k] = srcFirst + static_cast<long long>(k);
  myCopyList("AttributeHelper::copy(list)", src, from, dst, to, false);
}

void AttributeHelper::copy(Attribute const& src, std::vector<int> const& srcList, Attribute& dst, int dstFirst) {
  std::vector<long long> const from(srcList.begin(), srcList.end());
  std::vector<long long> to(from.size());
  for (std::size_t k = 0; k < to.size(); ++k) to[k] = dstFirst + static_cast<long long>(k);
  myCopyList("AttributeHelper::copy(list)", src, from, dst, to, true);
}

void AttributeHelper::copy(Attribute const& src, unsigned int srcFirst, Attribute& dst,
                           std::vector<unsigned int> const& dstList) {
  std::vector<long long> const to(dstList.begin(), dstList.end());
  std::vector<long long> from(to.size());
  for (std::size_t k = 0; k < from.size(); ++k) from[k] = srcFirst + static_cast<long long>(k);
  myCopyList("AttributeHelper::copy(list)", src, from, dst, to, false);
}

void AttributeHelper::copy(Attribute const& src, std::vector<unsigned int> const& srcList, Attribute& dst,
                           unsigned int dstFirst) {
  std::vector<long long> const from(srcList.begin(), srcList.end());
  std::vector<long long> to(from.size());
  for (std::size_t k = 0; k < to.size(); ++k) to[k] = dstFirst + static_cast<long long>(k);
  myCopyList("AttributeHelper::copy(list)", src, from, dst, to, true);
}

void AttributeHelper::copyRange(Attribute const& src, unsigned int first, unsigned int last, Attribute& dst,
                                unsigned int dstFirst) {
  char const* const label = "AttributeHelper::copyRange()";
  checkSameType(label, src, dst);
  if (src.getLength() != dst.getLength())
    Message::fatal(label, 0, "Method cannot be used with attributes %s and %s of different lengths", nameOf(src),
                   nameOf(dst));
  if (first < 1 || last < first || last > src.getNInstances())
    Message::fatal(label, 0, "Instances %u to %u are outside the range 1 to %u of attribute %s.", first, last,
                   src.getNInstances(), nameOf(src));
  if (dstFirst < 1) Message::fatal(label, 0, "Bad Destination start instance number.");
  if (dstFirst - 1ULL + (last - first + 1ULL) > dst.getNInstances())
    Message::fatal(label, 0, "Destination attribute %s does not have enough space", nameOf(dst));
  if (src.isVariableLength()) return myCopyVariableRange(src, first, last, dst, dstFirst);
  moveValues(src.getDataType(), src.getElementNBytes(), src.getPointer(first), dst.getPointer(dstFirst),
             static_cast<long long>(last - first + 1) * src.getLength());
}

// The destination's lengths change, so its block is rebuilt once: the
// instances before and after the range keep their values, those in the range
// take the source's lengths and values.
void AttributeHelper::myCopyVariableRange(Attribute const& src, unsigned int first, unsigned int last, Attribute& dst,
                                          unsigned int dstFirst) {
  if (&src == &dst) {
    Attribute copy(src);
    copy.copyData(src);
    return myCopyVariableRange(copy, first, last, dst, dstFirst);
  }
  unsigned int const n = dst.getNInstances();
  unsigned int const dstLast = dstFirst + (last - first);
  auto fromInstance = [&](unsigned int i, Attribute const*& owner) {
    if (i >= dstFirst && i <= dstLast) {
      owner = &src;
      return first + (i - dstFirst);
    }
    owner = &dst;
    return i;
  };
  int* lengths = new int[n];
  for (unsigned int i = 1; i <= n; ++i) {
    Attribute const* owner = nullptr;
    unsigned int const j = fromInstance(i, owner);
    lengths[i - 1] = owner->getLength(j);
  }
  Attribute fresh(dst);
  makeLike(fresh, n, lengths);
  DataType const type = dst.getDataType();
  int const element = dst.getElementNBytes();
  for (unsigned int i = 1; i <= n; ++i) {
    Attribute const* owner = nullptr;
    unsigned int const j = fromInstance(i, owner);
    long long const len = owner->getLength(j);
    if (len > 0) moveValues(type, element, owner->getPointer(j), fresh.getPointer(i), len);
  }
  dst.transferData(fresh);
}

// --- sizes and values ----------------------------------------------------------

void AttributeHelper::reallocate(Attribute& attribute, unsigned int n) {
  unsigned int const old = attribute.getNInstances();
  if (n == old) return;
  unsigned int const keep = std::min(n, old);
  Attribute fresh(attribute);
  int* lengths = nullptr;
  if (attribute.isVariableLength() && n > 0) {
    lengths = new int[n];
    for (unsigned int i = 0; i < n; ++i) lengths[i] = i < keep ? attribute.getLength(i + 1) : 0;
  }
  makeLike(fresh, n, lengths);
  DataType const type = attribute.getDataType();
  int const element = attribute.getElementNBytes();
  long long const kept = valuesIn(attribute, 1, keep);
  if (kept > 0) moveValues(type, element, attribute.getPointer(1), fresh.getPointer(1), kept);
  if (!attribute.isVariableLength() && n > keep)
    clearValues(type, element, fresh.getPointer(keep + 1), static_cast<long long>(n - keep) * attribute.getLength());
  attribute.transferData(fresh);
}

void AttributeHelper::reallocate(std::list<Attribute>::iterator first, std::list<Attribute>::iterator last,
                                 unsigned int n) {
  for (; first != last; ++first) reallocate(*first, n);
}

void AttributeHelper::set(Attribute& attribute, unsigned int first, unsigned int last, double value) {
  for (unsigned long long i = first; i <= last; ++i) attribute.setValue(static_cast<unsigned int>(i), value);
}

void AttributeHelper::set(Attribute& attribute, std::vector<unsigned int> const& list, double value) {
  for (unsigned int i : list) attribute.setValue(i, value);
}

void AttributeHelper::zero(Attribute& attribute) {
  if (attribute.getNInstances() == 0) return;
  clearValues(attribute.getDataType(), attribute.getElementNBytes(), attribute.getPointer(1),
              attribute.getTotalLength());
}

void AttributeHelper::addNoise(Attribute& attribute, float amplitude) {
  DataType const type = attribute.getDataType();
  if (type != vINT32 && type != vFLOAT32 && type != vFLOAT64)
    Message::fatal("AttributeHelper::addNoise()", 0, "Cannot add noise to attribute %s of data type %s.",
                   nameOf(attribute), vUtl::dataTypeName(type).c_str());
  if (attribute.getNInstances() == 0) return;
  long long const n = attribute.getTotalLength();
  void* const p = attribute.getPointer(1);
  if (type == vINT32) {
    int* v = static_cast<int*>(p);
    for (long long k = 0; k < n; ++k) {
      // The noise truncated, kept within the range of the sum's arithmetic.
      double const r = std::max(-2147483648.0, std::min(2147483647.0, noise(amplitude)));
      v[k] = static_cast<int>(static_cast<unsigned int>(v[k]) + static_cast<unsigned int>(static_cast<int>(r)));
    }
  } else if (type == vFLOAT32) {
    float* v = static_cast<float*>(p);
    for (long long k = 0; k < n; ++k) v[k] = static_cast<float>(v[k] + noise(amplitude));
  } else {
    double* v = static_cast<double*>(p);
    for (long long k = 0; k < n; ++k) v[k] += noise(amplitude);
  }
}

void AttributeHelper::createNoise(Attribute& attribute, float amplitude) {
  zero(attribute);
  addNoise(attribute, amplitude);
}

uint32_t AttributeHelper::calculateCRC(Attribute const& attribute) {
  if (attribute.getNInstances() == 0) return 0;
  int const type = attribute.getDataType();
  // Codes 1, 2 and 4 to 16: the bytes as they are. vINT16 (3) has never been
  // in this set, and results already kept depend on that.
  if (type >= 0 && type < 32 && ((0x1FFF6u >> type) & 1u))
    return vUtl::calculateCRC(attribute.getPointer(1), static_cast<std::size_t>(attribute.getTotalNBytes()), 0);
  long long const n = attribute.getTotalLength();
  if (type == vSTRING) {
    vString const* s = static_cast<vString const*>(attribute.getPointer(1));
    uint32_t crc = 0;
    for (long long k = 0; k < n; ++k) crc = vUtl::calculateCRC(s[k].c_str(), s[k].length(), crc);
    return crc;
  }
  if (type == vDATE) {
    vDate const* d = static_cast<vDate const*>(attribute.getPointer(1));
    uint32_t crc = 0;
    for (long long k = 0; k < n; ++k) {
      int32_t const seconds = static_cast<int32_t>(d[k].getSeconds());
      crc = vUtl::calculateCRC(&seconds, sizeof seconds, crc);
    }
    return crc;
  }
  Message::fatal("AttributeHelper::calculateCRC", 0, "The datatype %d (%s) is not supported!", type,
                 vUtl::dataTypeName(type).c_str());
}

// --- time and search -------------------------------------------------------------

double AttributeHelper::findNearestTime(Attribute const& attribute, double time) {
  double const rate = attribute.getSampleRate();
  double const x = (time - attribute.getFirstTime()) / rate;
  double const k = std::trunc(x > 0 ? x + 0.5 : x - 0.5);
  return k * rate + attribute.getFirstTime();
}

void AttributeHelper::timegate(Attribute const& src, Attribute& dst) {
  char const* const label = "AttributeHelper::timegate()";
  checkSameType(label, src, dst);
  if (src.isVariableLength() || dst.isVariableLength())
    Message::fatal(label, 0, "Method cannot be used with variable length attribute %s",
                   nameOf(src.isVariableLength() ? src : dst));
  if (src.getSampleRate() != dst.getSampleRate())
    Message::fatal(label, 0, "Method cannot be used with attributes %s and %s of different sample rates",
                   nameOf(src), nameOf(dst));
  int const dstLength = dst.getLength();
  // The overlap of the two windows, as samples of each.
  int srcStart = 1;
  int dstStart = 1;
  long long count = 0;
  if (src.getLength() > 0 && dstLength > 0) {
    double const start = std::max(src.getFirstTime(), dst.getFirstTime());
    double const end = std::min(src.getLastTime(), dst.getLastTime());
    if (start <= end) {
      srcStart = src.getSampleAtTime(start);
      dstStart = dst.getSampleAtTime(start);
      count = src.getSampleAtTime(end) - srcStart + 1;
      count = std::min<long long>(count, dstLength - dstStart + 1);
      count = std::max<long long>(count, 0);
    }
  }
  unsigned int const n = src.getNInstances();
  dst.resize(n);
  DataType const type = src.getDataType();
  int const element = src.getElementNBytes();
  for (unsigned int i = 1; i <= n; ++i) {
    unsigned char* d = static_cast<unsigned char*>(dst.getPointer(i));
    unsigned char const* s = static_cast<unsigned char const*>(src.getPointer(i));
    long long const before = count > 0 ? dstStart - 1 : dstLength;
    clearValues(type, element, d, before);
    if (count > 0) {
      moveValues(type, element, s + static_cast<std::size_t>(srcStart - 1) * element,
                 d + static_cast<std::size_t>(before) * element, count);
      clearValues(type, element, d + static_cast<std::size_t>(before + count) * element,
                  dstLength - before - count);
    }
  }
}

std::vector<unsigned int> AttributeHelper::findInstances(Attribute const& attribute, double low, double high) {
  DataType const type = attribute.getDataType();
  if (type != vINT16 && type != vINT32 && type != vINT64 && type != vFLOAT32 && type != vFLOAT64)
    Message::fatal("AttributeHelper::findInstances()", 0, "Unsupported data type %s for attribute %s.",
                   vUtl::dataTypeName(type).c_str(), nameOf(attribute));
  std::vector<unsigned int> found;
  unsigned int const n = attribute.getNInstances();
  for (unsigned int i = 1; i <= n; ++i)
    if (instanceInRange(attribute, i, low, high)) found.push_back(i);
  return found;
}

void AttributeHelper::keepInstances(Attribute& attribute, std::vector<unsigned int> const& list) {
  char const* const label = "AttributeHelper::keepInstances()";
  checkListRange(label, std::vector<long long>(list.begin(), list.end()), attribute.getNInstances());
  unsigned int const n = static_cast<unsigned int>(list.size());
  int* lengths = nullptr;
  if (attribute.isVariableLength() && n > 0) {
    lengths = new int[n];
    for (unsigned int k = 0; k < n; ++k) lengths[k] = attribute.getLength(list[k]);
  }
  Attribute fresh(attribute);
  makeLike(fresh, n, lengths);
  DataType const type = attribute.getDataType();
  int const element = attribute.getElementNBytes();
  for (unsigned int k = 0; k < n; ++k) {
    long long const len = attribute.getLength(list[k]);
    if (len > 0) moveValues(type, element, attribute.getPointer(list[k]), fresh.getPointer(k + 1), len);
  }
  attribute.transferData(fresh);
}

// --- presentation ------------------------------------------------------------------

void AttributeHelper::dump(std::ostream& out, Attribute const& attribute, unsigned int first, unsigned int last) {
  out << attribute.getName().c_str() << " (" << attribute.getClass().c_str() << ")\n";
  out << "  DataType=" << vUtl::dataTypeName(attribute.getDataType()).c_str()
      << " #Instances=" << attribute.getNInstances() << " Length=";
  if (attribute.isVariableLength())
    out << "Variable";
  else
    out << attribute.getLength();
  out << " SampleRate=" << attribute.getSampleRate() << "\n";
  unsigned int const n = attribute.getNInstances();
  if (last == 0 || last > n) last = n;
  DataType const type = attribute.getDataType();
  for (unsigned int i = std::max(first, 1u); i <= last; ++i) {
    out << "  " << i << ":";
    long long const len = attribute.getLength(i);
    void const* p = len > 0 ? attribute.getPointer(i) : nullptr;
    for (long long k = 0; k < len; ++k) {
      out << ' ';
      printValue(out, type, p, k);
    }
    out << "\n";
  }
}

void AttributeHelper::selectAttributes(std::list<Attribute> const& available, std::list<Attribute>& selection,
                                       std::istream& in, std::ostream& out) {
  auto selected = [&](Attribute const& a) {
    return std::find(selection.begin(), selection.end(), a) != selection.end();
  };
  for (;;) {
    out << "attribute name or -h for help: " << std::flush;
    std::string line;
    if (!std::getline(in, line)) break;
    vString answer(line.c_str());
    answer.strip();
    if (answer.isEmpty()) break;
    if (answer == "-h") {
      out << "Enter an attribute name to add to the selection list.   Wildcards are supported, e.g. use * to add "
             "all attributes.\n"
          << "  -l        list the selection\n"
          << "  -a        list all attributes\n"
          << "  -<name>   remove an attribute from the selection\n"
          << "  (empty)   end the selection\n";
    } else if (answer == "-l") {
      for (Attribute const& a : selection) out << "  " << a.getName().c_str() << "\n";
    } else if (answer == "-a") {
      for (Attribute const& a : available)
        out << (selected(a) ? "* " : "  ") << a.getName().c_str() << " (" << a.getClass().c_str() << ")\n";
    } else if (answer[0] == '-') {
      vUCString const pattern(answer.substr(1));
      std::size_t const before = selection.size();
      selection.remove_if([&](Attribute const& a) { return a.getName().match(pattern); });
      if (selection.size() == before) out << "Not in the selection: " << pattern.c_str() << "\n";
    } else {
      vUCString const pattern(answer);
      bool matched = false;
      for (Attribute const& a : available) {
        if (!a.getName().match(pattern)) continue;
        matched = true;
        if (!selected(a)) selection.push_back(a);
      }
      if (!matched) out << "No attribute matches " << pattern.c_str() << "\n";
    }
  }
}

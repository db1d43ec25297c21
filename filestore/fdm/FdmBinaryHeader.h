#ifndef FILESTORE_FDM_FDMBINARYHEADER_H
#define FILESTORE_FDM_FDMBINARYHEADER_H

// FdmBinaryHeader: the 512-byte header of an FDM velocity volume, 128 words
// of 32 bits. The byte order is deduced from the crossline count at byte 4:
// a float that is a whole number from 1 to 100000 in this machine's order
// means the file is in it; failing that the words are swapped and tried
// again, and a pass then means a swapped file. A header that fails both is
// invalid, and its accessors give 0.
//
// From byte 72 an extended header may follow, marked by "VFDM" (or
// "MDFV", the same mark written in the other byte order); without it the
// version and the units give -1.

#include <cstddef>
#include <cstdint>

class FdmBinaryHeader {
 public:
  static constexpr int LENGTH = 512;

  FdmBinaryHeader();
  // The first LENGTH bytes of a file; fewer make an invalid header.
  FdmBinaryHeader(void const* bytes, std::size_t size);

  bool isValidHeader() const { return m_valid; }
  bool wasEndianChanged() const { return m_swapped; }
  bool hasExtendedHeader() const { return m_valid && m_extended; }

  float getSpatialCrosslineOrigin() const { return myFloat(0); }
  int getNCrossline() const { return myCount(4); }
  float getSpatialCrosslineIncrement() const { return myFloat(8); }
  float getSpatialInlineOrigin() const { return myFloat(12); }
  int getNInline() const { return myCount(16); }
  float getSpatialInlineIncrement() const { return myFloat(20); }
  float getSpatialZOrigin() const { return myFloat(24); }
  int getNZ() const { return myCount(28); }
  float getSpatialZIncrement() const { return myFloat(32); }
  int getMinCrossline() const { return myCount(56); }
  int getMinInline() const { return myCount(60); }
  int getCrosslineIncrement() const { return myCount(64); }
  int getInlineIncrement() const { return myCount(68); }
  int getVersion() const { return myExtendedInt(76); }
  // 0 metres, 1 feet.
  int getDistanceUnits() const { return myExtendedInt(80); }
  // 0 degrees, 1 radians.
  int getAngleUnits() const { return myExtendedInt(84); }
  float getNorthAngle() const { return hasExtendedHeader() ? myFloat(88) : 0.0f; }
  float getRotation() const { return hasExtendedHeader() ? myFloat(92) : 0.0f; }

  // The header's words in this machine's order.
  uint32_t const* getWords() const { return m_words; }

 private:
  float myFloat(int byte) const;
  int myCount(int byte) const;
  int myExtendedInt(int byte) const;

  uint32_t m_words[LENGTH / 4];
  bool m_valid;
  bool m_swapped;
  bool m_extended;
};

#endif

#ifndef FILESTORE_FDM_FDMDISKREADER_H
#define FILESTORE_FDM_FDMDISKREADER_H

// FdmDiskReader: the samples of an open FDM file. After the 512-byte header
// the volume is stored as 32-bit floats with Z fastest, then X (crossline),
// then Y (inline): the trace of crossline index ix on inline index iy starts
// ((iy * nX + ix) * nZ) floats after the header. Samples come out in this
// machine's byte order.
//
// A section is the plane at one index of an axis, handed out in the order
// of the other two axes, the later-named one fastest: an X section is
// [y][z], a Y section [x][z], a Z section [y][x]. Positions along an axis
// are spatial: origin + index * increment, origin and increment taken from
// the header and changeable by the setters.
//
// loadNearestToX(x) loads the section nearest to x; loadEitherSideOfX(x)
// the two around it (clamped to the volume) and the weight of the upper
// one; loadOntoX(x) the section linearly interpolated to x. Likewise for Y
// and Z. The loaded sections stay in the reader until the next load of that
// kind, which reads the file again only for other sections: a store reading
// the bins of one inline reads its sections once.

#include <vector>

#include "filestore/fdm/FdmBinaryHeader.h"
#include "foundation/vFilename.h"
#include "syslayer/FS.h"

class FdmDiskReader {
 public:
  enum Axis { X = 0, Y = 1, Z = 2 };

  FdmDiskReader();
  ~FdmDiskReader();
  FdmDiskReader(FdmDiskReader const&) = delete;
  FdmDiskReader& operator=(FdmDiskReader const&) = delete;

  // Opens the file and reads its header; a file that can't be opened is
  // fatal, one with an invalid header leaves the reader invalid.
  void setFile(vFilename& file);
  bool isValid() const { return m_file.isOpen() && m_header.isValidHeader(); }
  void close();
  FdmBinaryHeader const& getHeader() const { return m_header; }

  void setXOrigin(float origin) { m_origin[X] = origin; }
  float getXOrigin() const { return m_origin[X]; }
  void setXIncrement(float increment) { m_increment[X] = increment; }
  float getXIncrement() const { return m_increment[X]; }
  int getXNumberOfSamples() const { return m_count[X]; }
  void setYOrigin(float origin) { m_origin[Y] = origin; }
  float getYOrigin() const { return m_origin[Y]; }
  void setYIncrement(float increment) { m_increment[Y] = increment; }
  float getYIncrement() const { return m_increment[Y]; }
  int getYNumberOfSamples() const { return m_count[Y]; }
  void setZOrigin(float origin) { m_origin[Z] = origin; }
  float getZOrigin() const { return m_origin[Z]; }
  void setZIncrement(float increment) { m_increment[Z] = increment; }
  float getZIncrement() const { return m_increment[Z]; }
  int getZNumberOfSamples() const { return m_count[Z]; }

  // The section at a 0-based index, as floats, into buffer (the size of
  // the section); an index off the volume is fatal.
  void readXSection(int index, char* buffer) { readSection(X, index, buffer); }
  void readYSection(int index, char* buffer) { readSection(Y, index, buffer); }
  void readZSection(int index, char* buffer) { readSection(Z, index, buffer); }
  void readSection(Axis axis, int index, char* buffer);
  // Floats in a section of the axis.
  long long getSectionSize(Axis axis) const;

  float const* loadNearestToX(float x) { return loadNearest(X, x); }
  float const* loadNearestToY(float y) { return loadNearest(Y, y); }
  float const* loadNearestToZ(float z) { return loadNearest(Z, z); }
  // The lower and upper sections go to lower and upper; the result is the
  // weight of the upper one (0 to 1).
  float loadEitherSideOfX(float x, float const*& lower, float const*& upper) { return loadEitherSide(X, x, lower, upper); }
  float loadEitherSideOfY(float y, float const*& lower, float const*& upper) { return loadEitherSide(Y, y, lower, upper); }
  float loadEitherSideOfZ(float z, float const*& lower, float const*& upper) { return loadEitherSide(Z, z, lower, upper); }
  float const* loadOntoX(float x) { return loadOnto(X, x); }
  float const* loadOntoY(float y) { return loadOnto(Y, y); }
  float const* loadOntoZ(float z) { return loadOnto(Z, z); }
  float const* loadNearest(Axis axis, float position);
  float loadEitherSide(Axis axis, float position, float const*& lower, float const*& upper);
  float const* loadOnto(Axis axis, float position);

  // The trace at (x, y): bilinear between the four traces around the
  // point (the two Y sections either side of y, and in each the two
  // traces either side of x), then linear in Z, onto count samples from
  // zOrigin at the Z increment. Positions off the volume take the edge.
  void biLinearLoadOntoY(float x, float y, float zOrigin, int count, float* trace);

  // The fractional 0-based index of a position, clamped to the axis.
  double getIndex(Axis axis, float position) const;

 private:
  void myRead(long long offset, void* buffer, long long bytes);

  FS::iFile m_file;
  FdmBinaryHeader m_header;
  float m_origin[3];
  float m_increment[3];
  int m_count[3];
  std::vector<float> m_nearest;
  std::vector<float> m_lower;
  std::vector<float> m_upper;
  std::vector<float> m_onto;
  // Axis and index of the sections held, -1 for none.
  int m_nearestAt[2];
  int m_sidesAt[3];
};

#endif

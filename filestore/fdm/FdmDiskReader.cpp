#include "filestore/fdm/FdmDiskReader.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "foundation/Message.h"

namespace {

char const* const kAxisNames = "XYZ";

void swapWords(float* values, long long count) {
  uint32_t* w = reinterpret_cast<uint32_t*>(values);
  for (long long k = 0; k < count; ++k)
    w[k] = (w[k] >> 24) | ((w[k] >> 8) & 0xff00u) | ((w[k] << 8) & 0xff0000u) | (w[k] << 24);
}

}  // namespace

FdmDiskReader::FdmDiskReader() : m_origin(), m_increment(), m_count(), m_nearestAt{-1, -1}, m_sidesAt{-1, -1, -1} {}

FdmDiskReader::~FdmDiskReader() { close(); }

void FdmDiskReader::setFile(vFilename& file) {
  close();
  m_file = FS::open(file, FS::ByteFile);
  if (!m_file.isGood()) m_file.terminate("FdmDiskReader::setFile");
  unsigned char bytes[FdmBinaryHeader::LENGTH];
  long long const got = m_file.read(1, bytes, FdmBinaryHeader::LENGTH);
  m_file.clear();
  m_header = FdmBinaryHeader(bytes, got == FdmBinaryHeader::LENGTH ? FdmBinaryHeader::LENGTH : 0);
  m_origin[X] = m_header.getSpatialCrosslineOrigin();
  m_increment[X] = m_header.getSpatialCrosslineIncrement();
  m_count[X] = std::max(0, m_header.getNCrossline());
  m_origin[Y] = m_header.getSpatialInlineOrigin();
  m_increment[Y] = m_header.getSpatialInlineIncrement();
  m_count[Y] = std::max(0, m_header.getNInline());
  m_origin[Z] = m_header.getSpatialZOrigin();
  m_increment[Z] = m_header.getSpatialZIncrement();
  m_count[Z] = std::max(0, m_header.getNZ());
}

void FdmDiskReader::close() {
  if (m_file.isOpen()) {
    m_file.clear();
    m_file.close();
  }
  m_file = FS::iFile();
  m_header = FdmBinaryHeader();
  m_nearestAt[0] = m_sidesAt[0] = -1;
}

long long FdmDiskReader::getSectionSize(Axis axis) const {
  long long size = 1;
  for (int a = 0; a < 3; ++a)
    if (a != axis) size *= m_count[a];
  return size;
}

void FdmDiskReader::myRead(long long offset, void* buffer, long long bytes) {
  long long const got = m_file.read(offset + 1, buffer, bytes);
  bool const good = m_file.isGood();
  m_file.clear();
  if (got != bytes || !good)
    Message::fatal("FdmDiskReader::readSection", 0, "Request to read %ld bytes from file offset %lld failed",
                   static_cast<long>(bytes), offset);
}

void FdmDiskReader::readSection(Axis axis, int index, char* buffer) {
  if (!isValid()) Message::fatal("FdmDiskReader::readSection", 0, "No valid FDM file is open.");
  if (index < 0 || index >= m_count[axis])
    Message::fatal("FdmDiskReader::readSection", 0, "Section %d is off the %c axis, which has %d sections.", index,
                   kAxisNames[axis], m_count[axis]);
  long long const nx = m_count[X], ny = m_count[Y], nz = m_count[Z];
  long long const start = FdmBinaryHeader::LENGTH;
  float* out = reinterpret_cast<float*>(buffer);
  if (axis == Y) {
    myRead(start + 4 * index * nx * nz, out, 4 * nx * nz);
  } else if (axis == X) {
    for (long long iy = 0; iy < ny; ++iy) myRead(start + 4 * (iy * nx + index) * nz, out + iy * nz, 4 * nz);
  } else {
    std::vector<float> plane(static_cast<std::size_t>(nx * nz));
    for (long long iy = 0; iy < ny; ++iy) {
      myRead(start + 4 * iy * nx * nz, plane.data(), 4 * nx * nz);
      for (long long ix = 0; ix < nx; ++ix) out[iy * nx + ix] = plane[static_cast<std::size_t>(ix * nz + index)];
    }
  }
  if (m_header.wasEndianChanged()) swapWords(out, getSectionSize(axis));
}

double FdmDiskReader::getIndex(Axis axis, float position) const {
  if (m_count[axis] <= 1 || m_increment[axis] == 0.0f) return 0.0;
  double const index = (static_cast<double>(position) - m_origin[axis]) / m_increment[axis];
  return std::min(std::max(index, 0.0), static_cast<double>(m_count[axis] - 1));
}

float const* FdmDiskReader::loadNearest(Axis axis, float position) {
  int const index = static_cast<int>(std::lround(getIndex(axis, position)));
  if (m_nearestAt[0] == axis && m_nearestAt[1] == index) return m_nearest.data();
  m_nearestAt[0] = -1;
  m_nearest.resize(static_cast<std::size_t>(getSectionSize(axis)));
  readSection(axis, index, reinterpret_cast<char*>(m_nearest.data()));
  m_nearestAt[0] = axis;
  m_nearestAt[1] = index;
  return m_nearest.data();
}

float FdmDiskReader::loadEitherSide(Axis axis, float position, float const*& lower, float const*& upper) {
  double const index = getIndex(axis, position);
  int const below = std::min(static_cast<int>(std::floor(index)), std::max(m_count[axis] - 2, 0));
  int const above = std::min(below + 1, m_count[axis] - 1);
  if (m_sidesAt[0] != axis || m_sidesAt[1] != below || m_sidesAt[2] != above) {
    m_sidesAt[0] = -1;
    std::size_t const size = static_cast<std::size_t>(getSectionSize(axis));
    m_lower.resize(size);
    m_upper.resize(size);
    readSection(axis, below, reinterpret_cast<char*>(m_lower.data()));
    if (above != below)
      readSection(axis, above, reinterpret_cast<char*>(m_upper.data()));
    else
      m_upper = m_lower;
    m_sidesAt[0] = axis;
    m_sidesAt[1] = below;
    m_sidesAt[2] = above;
  }
  lower = m_lower.data();
  upper = m_upper.data();
  return static_cast<float>(index - below);
}

float const* FdmDiskReader::loadOnto(Axis axis, float position) {
  float const* lower = nullptr;
  float const* upper = nullptr;
  float const w = loadEitherSide(axis, position, lower, upper);
  m_onto.resize(m_lower.size());
  for (std::size_t k = 0; k < m_onto.size(); ++k) m_onto[k] = (1.0f - w) * lower[k] + w * upper[k];
  return m_onto.data();
}

void FdmDiskReader::biLinearLoadOntoY(float x, float y, float zOrigin, int count, float* trace) {
  float const* lower = nullptr;
  float const* upper = nullptr;
  float const wy = loadEitherSide(Y, y, lower, upper);
  int const nx = m_count[X], nz = m_count[Z];
  double const xi = getIndex(X, x);
  int const x0 = std::min(static_cast<int>(std::floor(xi)), std::max(nx - 2, 0));
  int const x1 = std::min(x0 + 1, nx - 1);
  float const wx = static_cast<float>(xi - x0);
  float const* t00 = lower + static_cast<std::size_t>(x0) * nz;
  float const* t10 = lower + static_cast<std::size_t>(x1) * nz;
  float const* t01 = upper + static_cast<std::size_t>(x0) * nz;
  float const* t11 = upper + static_cast<std::size_t>(x1) * nz;
  auto at = [&](int z) {
    return (1.0f - wy) * ((1.0f - wx) * t00[z] + wx * t10[z]) + wy * ((1.0f - wx) * t01[z] + wx * t11[z]);
  };
  for (int k = 0; k < count; ++k) {
    double const zi = getIndex(Z, zOrigin + k * m_increment[Z]);
    int const z0 = std::min(static_cast<int>(std::floor(zi)), std::max(nz - 2, 0));
    int const z1 = std::min(z0 + 1, nz - 1);
    float const wz = static_cast<float>(zi - z0);
    trace[k] = wz == 0.0f ? at(z0) : (1.0f - wz) * at(z0) + wz * at(z1);
  }
}

#include "decorator/Binner.h"

#include <cstdint>

namespace {
double const kLowestStart = 99999999.0;
}  // namespace

Binner::Binner()
    : m_lowerOption(SetNoValue),
      m_upperOption(SetNoValue),
      m_lowestEdge(kLowestStart),
      m_lowestValue(0.0),
      m_highestEdge(0.0),
      m_highestValue(0.0) {}

Binner::~Binner() {}

void Binner::clearCurrentDefinitions() {
  m_bins.clear();
  m_lowestEdge = kLowestStart;
  m_lowestValue = 0.0;
  m_highestEdge = 0.0;
  m_highestValue = 0.0;
  m_minimums.clear();
  m_maximums.clear();
  m_increments.clear();
  m_widths.clear();
}

void Binner::checkBinableValues(double lower, double upper, double value) {
  if (lower < m_lowestEdge) {
    m_lowestEdge = lower;
    m_lowestValue = value;
  }
  if (upper > m_highestEdge) {
    m_highestEdge = upper;
    m_highestValue = value;
  }
}

void Binner::addBins(double minimum, double maximum, double increment, double width) {
  m_minimums.push_back(minimum);
  m_maximums.push_back(maximum);
  m_increments.push_back(increment);
  m_widths.push_back(width);
  double const half = width / 2.0;
  if (increment == 0.0) {
    m_bins.push_back(vHandle<BinnerSingleBin>(new BinnerSingleBin(minimum, maximum - half, maximum + half)));
    checkBinableValues(maximum - half, maximum + half, minimum);
    return;
  }
  // Counted steps, so that a maximum on the grid is reached exactly.
  long long const steps = static_cast<long long>((maximum - minimum) / increment + 1e-9);
  for (long long i = 0; i <= steps; ++i) {
    double const value = minimum + static_cast<double>(i) * increment;
    m_bins.push_back(vHandle<BinnerSingleBin>(new BinnerSingleBin(value, value - half, value + half)));
    checkBinableValues(value - half, value + half, value);
  }
}

template <class T>
void Binner::myBin(T* values, unsigned int n) const {
  for (unsigned int i = 0; i < n; ++i) {
    double const v = static_cast<double>(values[i]);
    if (v < m_lowestEdge) {
      if (m_lowerOption == SetNoValue) values[i] = noValue<T>();
      if (m_lowerOption == UseNearestBin) values[i] = static_cast<T>(m_lowestValue);
      continue;
    }
    if (v > m_highestEdge) {
      if (m_upperOption == SetNoValue) values[i] = noValue<T>();
      if (m_upperOption == UseNearestBin) values[i] = static_cast<T>(m_highestValue);
      continue;
    }
    for (vHandle<BinnerSingleBin> const& bin : m_bins) {
      if (bin->valueWithinBin(v)) {
        values[i] = static_cast<T>(bin->getBinValue());
        break;
      }
    }
  }
}

void Binner::binValues(void* data, DataType type, unsigned int n) const {
  switch (type) {
    case vINT16:
      myBin(static_cast<std::int16_t*>(data), n);
      break;
    case vINT32:
      myBin(static_cast<std::int32_t*>(data), n);
      break;
    case vINT64:
      myBin(static_cast<long long*>(data), n);
      break;
    case vFLOAT32:
      myBin(static_cast<float*>(data), n);
      break;
    case vFLOAT64:
      myBin(static_cast<double*>(data), n);
      break;
    default:
      break;
  }
}

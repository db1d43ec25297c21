#ifndef DECORATOR_BINNERSINGLEBIN_H
#define DECORATOR_BINNERSINGLEBIN_H

// BinnerSingleBin: one bin of a Binner, its value and its edges; both edges
// belong to the bin.

class BinnerSingleBin {
 public:
  BinnerSingleBin(double binValue, double lowerEdge, double upperEdge)
      : m_binValue(binValue), m_lowerEdge(lowerEdge), m_upperEdge(upperEdge) {}

  double getBinValue() const { return m_binValue; }
  double getLowerEdge() const { return m_lowerEdge; }
  double getUpperEdge() const { return m_upperEdge; }
  bool valueWithinBin(double v) const { return m_lowerEdge <= v && v <= m_upperEdge; }

 private:
  double m_binValue;
  double m_lowerEdge;
  double m_upperEdge;
};

#endif

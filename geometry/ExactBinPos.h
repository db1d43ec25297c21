#ifndef GEOMETRY_EXACTBINPOS_H
#define GEOMETRY_EXACTBINPOS_H

// ExactBinPos: a position between bins, by fractional inline and crossline
// numbers.

class ExactBinPos {
 public:
  ExactBinPos() : m_inline(0.0), m_crossline(0.0) {}
  ExactBinPos(double inlineNumber, double crosslineNumber) : m_inline(inlineNumber), m_crossline(crosslineNumber) {}

  double getInline() const { return m_inline; }
  double getCrossline() const { return m_crossline; }
  void setInline(double value) { m_inline = value; }
  void setCrossline(double value) { m_crossline = value; }

  bool operator==(ExactBinPos const& o) const { return m_inline == o.m_inline && m_crossline == o.m_crossline; }
  bool operator!=(ExactBinPos const& o) const { return !(*this == o); }

 private:
  double m_inline;
  double m_crossline;
};

#endif

#ifndef GEOMETRY_BINPOS_H
#define GEOMETRY_BINPOS_H

// BinPos: a bin of a grid by its inline and crossline numbers.

class BinPos {
 public:
  BinPos() : m_inline(0), m_crossline(0) {}
  BinPos(int inlineNumber, int crosslineNumber) : m_inline(inlineNumber), m_crossline(crosslineNumber) {}

  int getInline() const { return m_inline; }
  int getCrossline() const { return m_crossline; }
  void setInline(int value) { m_inline = value; }
  void setCrossline(int value) { m_crossline = value; }

  bool operator==(BinPos const& o) const { return m_inline == o.m_inline && m_crossline == o.m_crossline; }
  bool operator!=(BinPos const& o) const { return !(*this == o); }
  // Inline first, then crossline.
  bool operator<(BinPos const& o) const {
    return m_inline < o.m_inline || (m_inline == o.m_inline && m_crossline < o.m_crossline);
  }

 private:
  int m_inline;
  int m_crossline;
};

#endif

#include "geometry/CMPBasicGrid.h"

#include <climits>
#include <cmath>
#include <cstdio>
#include <ostream>

#include "foundation/Message.h"

CMPBasicGrid::CMPBasicGrid()
    : m_units(1),
      m_crosslineIncrement(1),
      m_firstCrossline(0),
      m_inlineIncrement(1),
      m_firstInline(0),
      m_cmpIncrement(1),
      m_numCMPLines(0),
      m_numBinsAlongOrderingWithPadding(0),
      m_numBinsAlongOrdering(0),
      m_padding(0),
      m_firstCMP(0),
      m_numCrosslines(0),
      m_numInlines(0),
      m_inlineInterval(0.0f),
      m_crosslineInterval(0.0f),
      m_binHeight(0.0f),
      m_binWidth(0.0f),
      m_rotationAngle(0.0),
      m_cosA(1.0),
      m_sinA(0.0),
      m_cosMinusA(1.0),
      m_sinMinusA(0.0),
      m_ordering(ALONG_INLINES) {}

CMPBasicGrid::CMPBasicGrid(int firstCMP, int cmpIncrement, int firstInline, int inlineIncrement, int numInlines,
                           int firstCrossline, int crosslineIncrement, int numCrosslines,
                           vCoordinate const& realWorldOrigin, float inlineInterval, float crosslineInterval,
                           double rotationAngle, int ordering, vCoordinate const& surveyOrigin)
    : CMPBasicGrid(firstCMP, cmpIncrement, firstInline, inlineIncrement, numInlines, firstCrossline, crosslineIncrement,
                   numCrosslines, ordering == ALONG_CROSSLINES ? numInlines : numCrosslines, realWorldOrigin,
                   inlineInterval, crosslineInterval, rotationAngle, ordering, surveyOrigin) {}

CMPBasicGrid::CMPBasicGrid(int firstCMP, int cmpIncrement, int firstInline, int inlineIncrement, int numInlines,
                           int firstCrossline, int crosslineIncrement, int numCrosslines,
                           int numBinsAlongOrderingWithPadding, vCoordinate const& realWorldOrigin,
                           float inlineInterval, float crosslineInterval, double rotationAngle, int ordering,
                           vCoordinate const& surveyOrigin)
    : CMPBasicGrid() {
  if (ordering != ALONG_INLINES && ordering != ALONG_CROSSLINES)
    Message::fatal("CMPBasicGrid::CMPBasicGrid", 0, "Unexpected Ordering option (%d).", ordering);
  m_ordering = static_cast<Ordering>(ordering);
  m_firstCMP = firstCMP;
  m_cmpIncrement = cmpIncrement;
  m_firstInline = firstInline;
  m_inlineIncrement = inlineIncrement;
  m_numInlines = numInlines;
  m_firstCrossline = firstCrossline;
  m_crosslineIncrement = crosslineIncrement;
  m_numCrosslines = numCrosslines;
  m_numBinsAlongOrderingWithPadding = numBinsAlongOrderingWithPadding;
  m_realWorldOrigin = realWorldOrigin;
  m_surveyOrigin = surveyOrigin;
  m_inlineInterval = inlineInterval;
  m_crosslineInterval = crosslineInterval;
  setRotationAngle(rotationAngle);
  myCheckup();
}

CMPBasicGrid::~CMPBasicGrid() = default;

bool CMPBasicGrid::operator==(CMPBasicGrid const& o) const {
  return m_units == o.m_units && m_crosslineIncrement == o.m_crosslineIncrement &&
         m_firstCrossline == o.m_firstCrossline && m_inlineIncrement == o.m_inlineIncrement &&
         m_firstInline == o.m_firstInline && m_cmpIncrement == o.m_cmpIncrement &&
         m_numBinsAlongOrderingWithPadding == o.m_numBinsAlongOrderingWithPadding && m_firstCMP == o.m_firstCMP &&
         m_numCrosslines == o.m_numCrosslines && m_numInlines == o.m_numInlines &&
         m_inlineInterval == o.m_inlineInterval && m_crosslineInterval == o.m_crosslineInterval &&
         m_realWorldOrigin == o.m_realWorldOrigin && m_surveyOrigin == o.m_surveyOrigin &&
         m_rotationAngle == o.m_rotationAngle && m_ordering == o.m_ordering;
}

void CMPBasicGrid::myCheckPaddedLine(int numBinsWithPadding, char const* label) const {
  if (m_ordering == ALONG_INLINES && numBinsWithPadding < m_numCrosslines)
    Message::fatal(label, 0, "Number of CMPs in a CMPLine ALONG_INLINES must not be less than number of crosslines.");
  if (m_ordering == ALONG_CROSSLINES && numBinsWithPadding < m_numInlines)
    Message::fatal(label, 0, "Number of CMPs in a CMPLine ALONG_CROSSLINES must not be less than number of inlines.");
}

void CMPBasicGrid::myCheckup() {
  char const* label = "CMPBasicGrid::myCheckup";
  if (m_numCrosslines < 1) Message::fatal(label, 0, "Number of Crossline must be >0");
  if (m_numInlines < 1) Message::fatal(label, 0, "Number of Inline must be >0");
  if (m_inlineInterval == 0.0f) Message::fatal(label, 0, "InlineInterval must not be zero.");
  if (m_crosslineInterval == 0.0f) Message::fatal(label, 0, "CrosslineInterval must not be zero.");
  if (m_cmpIncrement == 0) Message::fatal(label, 0, "CMP Increment must be not be 0.");
  myCheckPaddedLine(m_numBinsAlongOrderingWithPadding, label);
  // Line numbers are divided by these; a zero would stop the program.
  if (m_inlineIncrement == 0) Message::fatal(label, 0, "Inline Increment must not be 0.");
  if (m_crosslineIncrement == 0) Message::fatal(label, 0, "Crossline Increment must not be 0.");
  long long const lines = m_ordering == ALONG_INLINES ? m_numInlines : m_numCrosslines;
  long long const span = static_cast<long long>(m_numBinsAlongOrderingWithPadding) * lines * m_cmpIncrement;
  if (span + m_firstCMP > INT_MAX || span + m_firstCMP < INT_MIN || lines * m_numBinsAlongOrderingWithPadding > INT_MAX)
    Message::fatal(label, 0, "The grid has more CMP numbers than an int holds (%lld).", span);
  m_rotatedOrigin = m_realWorldOrigin;
  m_rotatedOrigin.rotate(m_rotationAngle);
  m_binWidth = std::fabs(m_crosslineInterval);
  m_binHeight = std::fabs(m_inlineInterval);
  myComputeCMPLineValues();
}

void CMPBasicGrid::myComputeCMPLineValues() {
  bool const alongInlines = m_ordering == ALONG_INLINES;
  m_numBinsAlongOrdering = alongInlines ? m_numCrosslines : m_numInlines;
  m_numCMPLines = alongInlines ? m_numInlines : m_numCrosslines;
  m_padding = m_numBinsAlongOrderingWithPadding - m_numBinsAlongOrdering;
}

void CMPBasicGrid::setRotationAngle(double angle) {
  m_rotationAngle = angle;
  m_cosA = std::cos(angle);
  m_sinA = std::sin(angle);
  m_cosMinusA = std::cos(-angle);
  m_sinMinusA = std::sin(-angle);
  m_rotatedOrigin = m_realWorldOrigin;
  m_rotatedOrigin.rotate(angle);
}

void CMPBasicGrid::setNumInlines(int n) {
  bool const keepUnpadded = m_padding == 0 && m_ordering == ALONG_CROSSLINES;
  m_numInlines = n;
  if (keepUnpadded) m_numBinsAlongOrderingWithPadding = n;
  myCheckup();
}

void CMPBasicGrid::setNumCrosslines(int n) {
  bool const keepUnpadded = m_padding == 0 && m_ordering == ALONG_INLINES;
  m_numCrosslines = n;
  if (keepUnpadded) m_numBinsAlongOrderingWithPadding = n;
  myCheckup();
}

void CMPBasicGrid::setInlineInterval(float interval) {
  if (interval == 0.0f) Message::fatal("CMPBasicGrid::setInlineInterval", 0, "InlineInterval must not be zero.");
  m_inlineInterval = interval;
  m_binHeight = std::fabs(interval);
}

void CMPBasicGrid::setCrosslineInterval(float interval) {
  if (interval == 0.0f) Message::fatal("CMPBasicGrid::setCrosslineInterval", 0, "CrosslineInterval must not be zero.");
  m_crosslineInterval = interval;
  m_binWidth = std::fabs(interval);
}

void CMPBasicGrid::setCMPLineInc(int value) {
  char const* label = "CMPBasicGrid::setCMPLineInc";
  if (value == 0) Message::fatal(label, 0, "CMPLineInc (%d) must NOT be 0.", value);
  if (m_cmpIncrement == 0) Message::fatal(label, 0, "CMP Increment (%d) must NOT be 0.", m_cmpIncrement);
  if (value % m_cmpIncrement != 0)
    Message::fatal(label, 0, "CMPLineInc (%d) must be a multiple of the CMP increment (%d).", value, m_cmpIncrement);
  setNumBinsAlongOrderingWithPadding(value / m_cmpIncrement);
}

void CMPBasicGrid::setNumBinsAlongOrderingWithPadding(int n) {
  myCheckPaddedLine(n, "CMPBasicGrid::setNumBinsAlongOrderingWithPadding");
  m_numBinsAlongOrderingWithPadding = n;
  myComputeCMPLineValues();
}

void CMPBasicGrid::getCMPInfo(int& firstCMP, int& lastCMP, int& cmpIncrement, int& cmpLineIncrement) const {
  firstCMP = m_firstCMP;
  lastCMP = getLastCMP();
  cmpIncrement = m_cmpIncrement;
  cmpLineIncrement = getCMPLineInc();
}

bool CMPBasicGrid::calculateCMP(int numBinsPerLine, int const inlines[3], int const crosslines[3], int const cmps[3],
                                int& constant, int& a, int& b) {
  if (numBinsPerLine < 2) return false;
  for (int i = 0; i < 3; ++i)
    for (int j = i + 1; j < 3; ++j)
      if (inlines[i] == inlines[j] || crosslines[i] == crosslines[j]) return false;
  // Cramer's rule on the differences from the first point.
  long long const i1 = inlines[1] - inlines[0], i2 = inlines[2] - inlines[0];
  long long const x1 = crosslines[1] - crosslines[0], x2 = crosslines[2] - crosslines[0];
  long long const c1 = cmps[1] - cmps[0], c2 = cmps[2] - cmps[0];
  long long const det = i1 * x2 - i2 * x1;
  if (det == 0) return false;
  long long const na = c1 * x2 - c2 * x1;
  long long const nb = i1 * c2 - i2 * c1;
  if (na % det != 0 || nb % det != 0) return false;
  a = static_cast<int>(na / det);
  b = static_cast<int>(nb / det);
  constant = cmps[0] - a * inlines[0] - b * crosslines[0];
  return true;
}

void CMPBasicGrid::print(std::ostream& out) const {
  char line[160];
  out << "CMP Ordering       : " << (m_ordering == ALONG_INLINES ? "ALONG_INLINES" : "ALONG_CROSSLINES") << "\n";
  std::snprintf(line, sizeof line, "CMP's              : %d - %d step %d, line step %d\n", m_firstCMP, getLastCMP(),
                m_cmpIncrement, getCMPLineInc());
  out << line;
  std::snprintf(line, sizeof line, "CMP                : %u\n", static_cast<unsigned>(getNumBins()));
  out << line;
  std::snprintf(line, sizeof line, "Inlines            : %d - %d step %d (%d), interval %g\n", m_firstInline,
                getLastInline(), m_inlineIncrement, m_numInlines, m_inlineInterval);
  out << line;
  std::snprintf(line, sizeof line, "Crosslines         : %d - %d step %d (%d), interval %g\n", m_firstCrossline,
                getLastCrossline(), m_crosslineIncrement, m_numCrosslines, m_crosslineInterval);
  out << line;
  out << "Real-world origin  : " << m_realWorldOrigin << "\n";
  out << "Survey origin      : " << m_surveyOrigin << "\n";
  out << "Rotation (rad)     : " << m_rotationAngle << "\n";
  out << "Units              : " << (m_units ? "METERS" : "FEET") << "\n";
}

std::ostream& operator<<(std::ostream& out, CMPBasicGrid const& grid) {
  grid.print(out);
  return out;
}

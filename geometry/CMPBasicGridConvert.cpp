// The conversions and tests of CMPBasicGrid.

#include <algorithm>
#include <cmath>

#include "foundation/Message.h"
#include "foundation/vUtl.h"
#include "geometry/CMPBasicGrid.h"

vCoordinate CMPBasicGrid::convertSurveyToRW(vCoordinate const& survey) const {
  vCoordinate const q = survey - m_surveyOrigin + m_rotatedOrigin;
  return vCoordinate(q.getY() * m_sinMinusA + q.getX() * m_cosMinusA, q.getY() * m_cosMinusA - q.getX() * m_sinMinusA);
}

vCoordinate CMPBasicGrid::convertRWToSurvey(vCoordinate const& rw) const {
  vCoordinate const q(rw.getY() * m_sinA + rw.getX() * m_cosA, rw.getY() * m_cosA - rw.getX() * m_sinA);
  return q - m_rotatedOrigin + m_surveyOrigin;
}

BinPos CMPBasicGrid::convertSurveyToBin(vCoordinate const& survey) const {
  int const c = vUtl::nint((survey.getX() - m_surveyOrigin.getX()) / m_crosslineInterval);
  int const i = vUtl::nint((survey.getY() - m_surveyOrigin.getY()) / m_inlineInterval);
  return BinPos(i * m_inlineIncrement + m_firstInline, c * m_crosslineIncrement + m_firstCrossline);
}

ExactBinPos CMPBasicGrid::convertSurveyToExactBin(vCoordinate const& survey) const {
  double const c = (survey.getX() - m_surveyOrigin.getX()) / m_crosslineInterval;
  double const i = (survey.getY() - m_surveyOrigin.getY()) / m_inlineInterval;
  return ExactBinPos(i * m_inlineIncrement + m_firstInline, c * m_crosslineIncrement + m_firstCrossline);
}

vCoordinate CMPBasicGrid::convertBinToSurvey(BinPos const& bin) const {
  return vCoordinate(convertCrosslineToSurveyX(bin.getCrossline()), convertInlineToSurveyY(bin.getInline()));
}

vCoordinate CMPBasicGrid::convertBinToSurvey(ExactBinPos const& bin) const {
  return vCoordinate(convertCrosslineToSurveyX(bin.getCrossline()), convertInlineToSurveyY(bin.getInline()));
}

bool CMPBasicGrid::convertSurveyToCMPandBin(vCoordinate const& survey, int& cmp, BinPos& bin) const {
  bin = convertSurveyToBin(survey);
  if (!isValidBin(bin)) return false;
  cmp = convertBinToCMP(bin);
  return true;
}

bool CMPBasicGrid::convertRWToCMPandBin(vCoordinate const& rw, int& cmp, BinPos& bin) const {
  return convertSurveyToCMPandBin(convertRWToSurvey(rw), cmp, bin);
}

double CMPBasicGrid::convertCrosslineToSurveyX(int crossline) const {
  return convertCrosslineToSurveyX(static_cast<double>(crossline));
}

double CMPBasicGrid::convertCrosslineToSurveyX(double crossline) const {
  double const f = (crossline - m_firstCrossline) / m_crosslineIncrement + 1.0;
  return m_surveyOrigin.getX() + (f - 1.0) * m_crosslineInterval;
}

double CMPBasicGrid::convertInlineToSurveyY(int inlineNumber) const {
  return convertInlineToSurveyY(static_cast<double>(inlineNumber));
}

double CMPBasicGrid::convertInlineToSurveyY(double inlineNumber) const {
  double const f = (inlineNumber - m_firstInline) / m_inlineIncrement + 1.0;
  return m_surveyOrigin.getY() + (f - 1.0) * m_inlineInterval;
}

int CMPBasicGrid::convertCrosslineToCrosslineIndex(int crossline) const {
  int const d = crossline - m_firstCrossline;
  if (d % m_crosslineIncrement != 0)
    Message::fatal("CMPBasicGrid::convertCrosslineToCrosslineIndex", 0,
                   "The given Crossline (%d) is not on the Crossline grid (%d+n*%d).", crossline, m_firstCrossline,
                   m_crosslineIncrement);
  return d / m_crosslineIncrement + 1;
}

int CMPBasicGrid::convertInlineToInlineIndex(int inlineNumber) const {
  int const d = inlineNumber - m_firstInline;
  if (d % m_inlineIncrement != 0)
    Message::fatal("CMPBasicGrid::convertInlineToInlineIndex", 0,
                   "The given Inline (%d) is not on the Inline grid (%d+n*%d).", inlineNumber, m_firstInline,
                   m_inlineIncrement);
  return d / m_inlineIncrement + 1;
}

int CMPBasicGrid::convertCrosslineIndexToCrossline(int index) const {
  return (index - 1) * m_crosslineIncrement + m_firstCrossline;
}

int CMPBasicGrid::convertInlineIndexToInline(int index) const {
  return (index - 1) * m_inlineIncrement + m_firstInline;
}

int CMPBasicGrid::myCMPLineIndex(int cmpIndex) const { return (cmpIndex - 1) / m_numBinsAlongOrdering + 1; }

int CMPBasicGrid::getLastCMP() const {
  return (m_numBinsAlongOrderingWithPadding * m_numCMPLines - m_padding - 1) * m_cmpIncrement + m_firstCMP;
}

int CMPBasicGrid::getLastInline() const { return (m_numInlines - 1) * m_inlineIncrement + m_firstInline; }

int CMPBasicGrid::getLastCrossline() const { return (m_numCrosslines - 1) * m_crosslineIncrement + m_firstCrossline; }

int CMPBasicGrid::convertCMPToCMPIndex(int cmp) const {
  if (!isValidCMP(cmp))
    Message::fatal("CMPBasicGrid::convertCMPToCMPIndex", 0, "The given CMP (%d) is not on the CMP grid (%d+n*%d).", cmp,
                   m_firstCMP, m_cmpIncrement);
  int const k = (cmp - m_firstCMP) / m_cmpIncrement;
  return k + 1 - (k / m_numBinsAlongOrderingWithPadding) * m_padding;
}

int CMPBasicGrid::convertCMPIndexToCMP(int index) const {
  myCheckCMPIndex(index, "CMPBasicGrid::convertCMPIndexToCMP");
  int cmp = m_firstCMP + (index - 1) * m_cmpIncrement;
  if (m_padding != 0) cmp += (myCMPLineIndex(index) - 1) * m_padding * m_cmpIncrement;
  return cmp;
}

void CMPBasicGrid::myCheckCMPIndex(int index, char const* label) const {
  if (!isValidCMPIndex(index))
    Message::fatal(label, 0, "CMP index must be between 1 and %d inclusive, supplied value was %d", getNumBins(),
                   index);
}

int CMPBasicGrid::convertCMPIndexToInline(int index) const {
  myCheckCMPIndex(index, "CMPBasicGrid::convertCMPIndexToInline");
  int const i = index - 1;
  int const position = m_ordering == ALONG_INLINES ? i / m_numCrosslines : i % m_numInlines;
  return position * m_inlineIncrement + m_firstInline;
}

int CMPBasicGrid::convertCMPIndexToCrossline(int index) const {
  myCheckCMPIndex(index, "CMPBasicGrid::convertCMPIndexToCrossline");
  int const i = index - 1;
  int const position = m_ordering == ALONG_INLINES ? i % m_numCrosslines : i / m_numInlines;
  return position * m_crosslineIncrement + m_firstCrossline;
}

BinPos CMPBasicGrid::convertCMPIndexToBin(int index) const {
  myCheckCMPIndex(index, "CMPBasicGrid::convertCMPIndexToBin");
  return BinPos(convertCMPIndexToInline(index), convertCMPIndexToCrossline(index));
}

BinPos CMPBasicGrid::convertCMPToBin(int cmp) const { return convertCMPIndexToBin(convertCMPToCMPIndex(cmp)); }

int CMPBasicGrid::convertBinToCMP(BinPos const& bin) const { return convertCMPIndexToCMP(convertBinToCMPIndex(bin)); }

int CMPBasicGrid::convertBinToCMPIndex(BinPos const& bin) const {
  if (!isValidBin(bin))
    Message::fatal("CMPBasicGrid::convertBinToCMPIndex", 0,
                   "?The given BinPos (%d,%d) is not on the grid (%d+n*%d,%d+n*%d).", bin.getInline(),
                   bin.getCrossline(), m_firstInline, m_inlineIncrement, m_firstCrossline, m_crosslineIncrement);
  return convertInlineCrosslineIndexesToCMPIndex(convertInlineToInlineIndex(bin.getInline()),
                                                 convertCrosslineToCrosslineIndex(bin.getCrossline()));
}

vCoordinate CMPBasicGrid::convertCMPToSurvey(int cmp) const { return convertBinToSurvey(convertCMPToBin(cmp)); }

int CMPBasicGrid::convertInlineCrosslineIndexesToCMPIndex(int inlineIndex, int crosslineIndex) const {
  if (m_ordering == ALONG_INLINES) return (inlineIndex - 1) * m_numCrosslines + crosslineIndex;
  return (crosslineIndex - 1) * m_numInlines + inlineIndex;
}

int CMPBasicGrid::convertInlineCrosslineIndexesToCMP(int inlineIndex, int crosslineIndex) const {
  return convertCMPIndexToCMP(convertInlineCrosslineIndexesToCMPIndex(inlineIndex, crosslineIndex));
}

BinPos CMPBasicGrid::convertInlineCrosslineIndexesToBin(int inlineIndex, int crosslineIndex) const {
  return BinPos(convertInlineIndexToInline(inlineIndex), convertCrosslineIndexToCrossline(crosslineIndex));
}

bool CMPBasicGrid::isValidInline(int inlineNumber) const {
  int const d = inlineNumber - m_firstInline;
  return m_inlineIncrement != 0 && d % m_inlineIncrement == 0 && isValidInlineIndex(d / m_inlineIncrement + 1);
}

bool CMPBasicGrid::isValidCrossline(int crossline) const {
  int const d = crossline - m_firstCrossline;
  return m_crosslineIncrement != 0 && d % m_crosslineIncrement == 0 &&
         isValidCrosslineIndex(d / m_crosslineIncrement + 1);
}

bool CMPBasicGrid::isValidBin(BinPos const& bin) const {
  return isValidInline(bin.getInline()) && isValidCrossline(bin.getCrossline());
}

bool CMPBasicGrid::isValidCMP(int cmp) const {
  if (getNumBins() < 1 || m_cmpIncrement == 0) return false;
  int const d = cmp - m_firstCMP;
  if (d % m_cmpIncrement != 0) return false;
  int const k = d / m_cmpIncrement;
  if (k < 0 || k > (getLastCMP() - m_firstCMP) / m_cmpIncrement) return false;
  return m_padding == 0 || k % m_numBinsAlongOrderingWithPadding < m_numBinsAlongOrdering;
}

bool CMPBasicGrid::isValidCMPIndex(int index) const { return index >= 1 && index <= getNumBins(); }

bool CMPBasicGrid::isValidInlineIndex(int index) const { return index >= 1 && index <= m_numInlines; }

bool CMPBasicGrid::isValidCrosslineIndex(int index) const { return index >= 1 && index <= m_numCrosslines; }

bool CMPBasicGrid::isSurveyCoordInGrid(vCoordinate const& survey) const {
  double const c = (survey.getX() - m_surveyOrigin.getX()) / m_crosslineInterval;
  double const i = (survey.getY() - m_surveyOrigin.getY()) / m_inlineInterval;
  return c >= -0.5 && c < m_numCrosslines - 0.5 && i >= -0.5 && i < m_numInlines - 0.5;
}

bool CMPBasicGrid::isRWCoordInGrid(vCoordinate const& rw) const { return isSurveyCoordInGrid(convertRWToSurvey(rw)); }

std::vector<vCoordinate> CMPBasicGrid::getExtensionLocations(std::vector<BinPos> const& bins) const {
  std::vector<ExactBinPos> positions;
  for (BinPos const& b : bins) positions.emplace_back(b.getInline(), b.getCrossline());
  return myGetExtensionLocations(positions);
}

std::vector<vCoordinate> CMPBasicGrid::getExtensionLocations(std::vector<vCoordinate> const& rw) const {
  std::vector<ExactBinPos> positions;
  for (vCoordinate const& p : rw) {
    BinPos const b = convertSurveyToBin(convertRWToSurvey(p));
    positions.emplace_back(b.getInline(), b.getCrossline());
  }
  return myGetExtensionLocations(positions);
}

std::vector<vCoordinate> CMPBasicGrid::myGetExtensionLocations(std::vector<ExactBinPos> const& positions) const {
  std::vector<vCoordinate> corners;
  if (positions.empty()) return corners;
  // Line indexes (from 0), so that negative increments order as the grid does.
  double iMin = 1e300, iMax = -1e300, cMin = 1e300, cMax = -1e300;
  for (ExactBinPos const& p : positions) {
    double const i = (p.getInline() - m_firstInline) / m_inlineIncrement;
    double const c = (p.getCrossline() - m_firstCrossline) / m_crosslineIncrement;
    iMin = std::min(iMin, i);
    iMax = std::max(iMax, i);
    cMin = std::min(cMin, c);
    cMax = std::max(cMax, c);
  }
  auto corner = [this](double i, double c) {
    return convertSurveyToRW(convertBinToSurvey(
        ExactBinPos(i * m_inlineIncrement + m_firstInline, c * m_crosslineIncrement + m_firstCrossline)));
  };
  corners.push_back(corner(iMin, cMin));
  corners.push_back(corner(iMin, cMax));
  corners.push_back(corner(iMax, cMax));
  corners.push_back(corner(iMax, cMin));
  return corners;
}

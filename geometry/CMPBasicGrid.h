#ifndef GEOMETRY_CMPBASICGRID_H
#define GEOMETRY_CMPBASICGRID_H

// CMPBasicGrid: the bin grid of a 3-D survey. Inlines and crosslines form a
// regular grid, rotated in the real world, whose bins also bear a running
// CMP number.
//
// Survey coordinates have x along the inlines (crossline numbers grow with
// x, one crossline interval per crossline step) and y across them (one
// inline interval per inline step); the sign of an interval gives the
// direction. The survey origin is the survey position of the first bin
// (first inline, first crossline) and lies at the real-world origin. A
// real-world point is turned by the rotation angle into the survey frame.
//
// CMP numbers run along CMP lines: along the inlines (one CMP line per
// inline, the crosslines inside it) or along the crosslines. A CMP line may
// reserve more numbers than it has bins; the rest is padding, numbers that
// belong to no bin. Indexes of lines and CMPs count from 1.

#include <iosfwd>
#include <vector>

#include "foundation/vString.h"
#include "geometry/BinPos.h"
#include "geometry/ExactBinPos.h"
#include "geometry/vCoordinate.h"

class CMPBasicGrid {
 public:
  enum Ordering { ALONG_INLINES = 0, ALONG_CROSSLINES = 1 };

  // An empty grid: nothing is valid on it until values are assigned.
  CMPBasicGrid();
  // A grid without padding. ordering is 0 or 1 (an Ordering).
  CMPBasicGrid(int firstCMP, int cmpIncrement, int firstInline, int inlineIncrement, int numInlines, int firstCrossline,
               int crosslineIncrement, int numCrosslines, vCoordinate const& realWorldOrigin, float inlineInterval,
               float crosslineInterval, double rotationAngle, int ordering = ALONG_INLINES,
               vCoordinate const& surveyOrigin = vCoordinate());
  // The same with a number of CMPs reserved per CMP line, at least the bins
  // of a line.
  CMPBasicGrid(int firstCMP, int cmpIncrement, int firstInline, int inlineIncrement, int numInlines, int firstCrossline,
               int crosslineIncrement, int numCrosslines, int numBinsAlongOrderingWithPadding,
               vCoordinate const& realWorldOrigin, float inlineInterval, float crosslineInterval, double rotationAngle,
               int ordering = ALONG_INLINES, vCoordinate const& surveyOrigin = vCoordinate());
  // A grid from the values of an SGD header: the real-world position of bin
  // (0, 0), the azimuths of the crossline and inline axes (radians,
  // counter-clockwise from the x axis), the crossline and inline intervals,
  // and the first and last lines.
  CMPBasicGrid(double x0, double y0, double azimuthX, double azimuthY, float dx, float dy, int firstInline,
               int lastInline, int firstCrossline, int lastCrossline);
  CMPBasicGrid(CMPBasicGrid const& other) = default;
  CMPBasicGrid& operator=(CMPBasicGrid const& other) = default;
  virtual ~CMPBasicGrid();

  bool operator==(CMPBasicGrid const& other) const;
  bool operator!=(CMPBasicGrid const& other) const { return !(*this == other); }

  // --- survey and real world
  vCoordinate convertSurveyToRW(vCoordinate const& survey) const;
  vCoordinate convertRWToSurvey(vCoordinate const& rw) const;

  // --- bins
  BinPos convertSurveyToBin(vCoordinate const& survey) const;
  ExactBinPos convertSurveyToExactBin(vCoordinate const& survey) const;
  vCoordinate convertBinToSurvey(BinPos const& bin) const;
  vCoordinate convertBinToSurvey(ExactBinPos const& bin) const;
  // The bin nearest the point and its CMP; false (and cmp untouched) when
  // that bin is not on the grid.
  bool convertSurveyToCMPandBin(vCoordinate const& survey, int& cmp, BinPos& bin) const;
  bool convertRWToCMPandBin(vCoordinate const& rw, int& cmp, BinPos& bin) const;

  // --- line numbers
  double convertCrosslineToSurveyX(int crossline) const;
  double convertCrosslineToSurveyX(double crossline) const;
  double convertInlineToSurveyY(int inlineNumber) const;
  double convertInlineToSurveyY(double inlineNumber) const;
  // Numbers off the line grid are fatal; numbers outside its range are not.
  int convertCrosslineToCrosslineIndex(int crossline) const;
  int convertInlineToInlineIndex(int inlineNumber) const;
  int convertCrosslineIndexToCrossline(int index) const;
  int convertInlineIndexToInline(int index) const;

  // --- CMP numbers; invalid CMPs, bins and indexes are fatal
  int convertCMPToCMPIndex(int cmp) const;
  int convertCMPIndexToCMP(int index) const;
  int convertCMPIndexToInline(int index) const;
  int convertCMPIndexToCrossline(int index) const;
  BinPos convertCMPIndexToBin(int index) const;
  BinPos convertCMPToBin(int cmp) const;
  int convertBinToCMP(BinPos const& bin) const;
  int convertBinToCMPIndex(BinPos const& bin) const;
  vCoordinate convertCMPToSurvey(int cmp) const;
  int convertInlineCrosslineIndexesToCMPIndex(int inlineIndex, int crosslineIndex) const;
  int convertInlineCrosslineIndexesToCMP(int inlineIndex, int crosslineIndex) const;
  BinPos convertInlineCrosslineIndexesToBin(int inlineIndex, int crosslineIndex) const;

  // --- short names; U is survey x, V survey y
  int convertUVToInline(vCoordinate const& uv) const { return convertSurveyToBin(uv).getInline(); }
  int convertUVToCrossline(vCoordinate const& uv) const { return convertSurveyToBin(uv).getCrossline(); }
  int convertUVToCMP(vCoordinate const& uv) const { return convertBinToCMP(convertSurveyToBin(uv)); }
  BinPos convertUVToBin(vCoordinate const& uv) const { return convertSurveyToBin(uv); }
  vCoordinate convertCMPToUV(int cmp) const { return convertCMPToSurvey(cmp); }
  vCoordinate convertBinToUV(BinPos const& bin) const { return convertBinToSurvey(bin); }
  int convertIndexToCrossline(int index) const { return convertCrosslineIndexToCrossline(index); }
  int convertIndexToInline(int index) const { return convertInlineIndexToInline(index); }
  int convertIndexToCMP(int index) const { return convertCMPIndexToCMP(index); }
  int convertIndexToUVIndex(int inlineIndex, int crosslineIndex) const {
    return convertInlineCrosslineIndexesToCMPIndex(inlineIndex, crosslineIndex);
  }

  // --- tests
  bool isValidInline(int inlineNumber) const;
  bool isValidCrossline(int crossline) const;
  bool isValidBin(BinPos const& bin) const;
  bool isValidCMP(int cmp) const;
  bool isValidCMPIndex(int index) const;
  bool isValidInlineIndex(int index) const;
  bool isValidCrosslineIndex(int index) const;
  // Whether the point lies in a bin of the grid (half a bin round the
  // outermost bin centres).
  bool isSurveyCoordInGrid(vCoordinate const& survey) const;
  bool isRWCoordInGrid(vCoordinate const& rw) const;
  // Whether the grid can be told by SGD values; why not goes to reason.
  bool isValidForSGDGrid(vString* reason = nullptr) const;

  // --- reading
  int getFirstInline() const { return m_firstInline; }
  int getLastInline() const;
  int getFirstCrossline() const { return m_firstCrossline; }
  int getLastCrossline() const;
  int getFirstCMP() const { return m_firstCMP; }
  int getLastCMP() const;
  int getCMPInc() const { return m_cmpIncrement; }
  // The step of CMP numbers from one CMP line to the next.
  int getCMPLineInc() const { return m_numBinsAlongOrderingWithPadding * m_cmpIncrement; }
  int getInlineInc() const { return m_inlineIncrement; }
  int getCrosslineInc() const { return m_crosslineIncrement; }
  int getNumBins() const { return m_numInlines * m_numCrosslines; }
  int getNumInlines() const { return m_numInlines; }
  int getNumCrosslines() const { return m_numCrosslines; }
  int getNumBinsAlongOrderingWithPadding() const { return m_numBinsAlongOrderingWithPadding; }
  int getNumBinsAlongOrdering() const { return m_numBinsAlongOrdering; }
  int getNumCMPLines() const { return m_numCMPLines; }
  int getPadding() const { return m_padding; }
  double getRotationAngle() const { return m_rotationAngle; }
  float getInlineInterval() const { return m_inlineInterval; }
  float getCrosslineInterval() const { return m_crosslineInterval; }
  float getBinHeight() const { return m_binHeight; }
  float getBinWidth() const { return m_binWidth; }
  // True for metres, false for feet.
  int getUnits() const { return m_units; }
  Ordering getOrdering() const { return m_ordering; }
  vCoordinate const& getRealWorldOrigin() const { return m_realWorldOrigin; }
  vCoordinate const& getSurveyOrigin() const { return m_surveyOrigin; }
  void getCMPInfo(int& firstCMP, int& lastCMP, int& cmpIncrement, int& cmpLineIncrement) const;
  // The values of the SGD constructor; fatal for a grid they cannot tell.
  void getSGDGridValues(double& x0, double& y0, double& azimuthX, double& azimuthY, float& dx, float& dy,
                        int& firstInline, int& lastInline, int& firstCrossline, int& lastCrossline) const;
  // The real-world centres of the corner bins of the smallest rectangle of
  // bins that holds every position given (a point counts by its nearest
  // bin), in the order of line indexes (first inline, first crossline),
  // (first inline, last crossline), (last inline, last crossline), (last
  // inline, first crossline). Empty for an empty list.
  std::vector<vCoordinate> getExtensionLocations(std::vector<BinPos> const& bins) const;
  std::vector<vCoordinate> getExtensionLocations(std::vector<vCoordinate> const& rw) const;

  // --- setting
  void setNumInlines(int n);
  void setNumCrosslines(int n);
  void setInlineInterval(float interval);
  void setCrosslineInterval(float interval);
  void setCMPLineInc(int value);
  void setNumBinsAlongOrderingWithPadding(int n);
  void setRotationAngle(double angle);
  void setUnits(int metres) { m_units = metres; }

  // From three bins with known CMP numbers, the relation
  // cmp = constant + a * inline + b * crossline; false when the points do
  // not fix it (fewer than 2 bins a line, points sharing a line number, no
  // whole solution).
  static bool calculateCMP(int numBinsPerLine, int const inlines[3], int const crosslines[3], int const cmps[3],
                           int& constant, int& a, int& b);

  void print(std::ostream& out) const;

 protected:
  // Checks the values and derives the rest; fatal on a wrong value.
  void myCheckup();
  void myComputeCMPLineValues();
  void myCheckPaddedLine(int numBinsWithPadding, char const* label) const;
  // 1 when azimuthY is azimuthX plus a right angle, -1 when minus, else 0.
  static int myIsPerpendicular(double azimuthX, double azimuthY);
  void myValidateSGDParameters(double azimuthX, double azimuthY, float dx, float dy, int firstInline, int lastInline,
                               int firstCrossline, int lastCrossline) const;
  std::vector<vCoordinate> myGetExtensionLocations(std::vector<ExactBinPos> const& positions) const;
  // Fatal for an index outside the grid.
  void myCheckCMPIndex(int index, char const* label) const;
  // The CMP-line index (from 1) of a CMP index.
  int myCMPLineIndex(int cmpIndex) const;

  int m_units;
  int m_crosslineIncrement;
  int m_firstCrossline;
  int m_inlineIncrement;
  int m_firstInline;
  int m_cmpIncrement;
  int m_numCMPLines;
  int m_numBinsAlongOrderingWithPadding;
  int m_numBinsAlongOrdering;
  int m_padding;
  int m_firstCMP;
  int m_numCrosslines;
  int m_numInlines;
  float m_inlineInterval;
  float m_crosslineInterval;
  float m_binHeight;
  float m_binWidth;
  vCoordinate m_realWorldOrigin;
  vCoordinate m_rotatedOrigin;
  vCoordinate m_surveyOrigin;
  double m_rotationAngle;
  double m_cosA;
  double m_sinA;
  double m_cosMinusA;
  double m_sinMinusA;
  Ordering m_ordering;
};

std::ostream& operator<<(std::ostream& out, CMPBasicGrid const& grid);

#endif

#ifndef DECORATOR_BINNER_H
#define DECORATOR_BINNER_H

// Binner: snaps values to the centres of bins. Bins are added in runs
// (addBins: from a minimum to a maximum in steps of an increment, each of a
// width); a value within a bin's edges takes the bin's value, the first bin
// listed winning where bins touch or overlap. A value in a gap between bins
// stays as it is. Values below the lowest edge or above the highest follow
// the lower and upper options: SetNoValue gives the type's no-value
// (noValue<T>(): the largest value of the type), UseNearestBin the value of
// the lowest (highest) bin, anything else leaves them alone.

#include <limits>
#include <list>

#include "decorator/BinnerSingleBin.h"
#include "foundation/DataType.h"
#include "foundation/vHandle.h"
#include "foundation/vUCString.h"

class Binner {
 public:
  enum UnbinnedValueOptions { SetNoValue = 0, UseNearestBin = 1, LeaveAlone = 2 };

  Binner();
  virtual ~Binner();

  virtual void addBins(double minimum, double maximum, double increment, double width);
  virtual void setLowerOption(UnbinnedValueOptions option) { m_lowerOption = option; }
  virtual void setUpperOption(UnbinnedValueOptions option) { m_upperOption = option; }
  virtual UnbinnedValueOptions getLowerOption() const { return m_lowerOption; }
  virtual UnbinnedValueOptions getUpperOption() const { return m_upperOption; }
  // The n values at data, of type Int16, Int32, Int64, Float32 or Float64,
  // in place; other types are left alone.
  virtual void binValues(void* data, DataType type, unsigned int n) const;
  virtual unsigned int numberOfBins() const { return static_cast<unsigned int>(m_bins.size()); }
  virtual std::list<vHandle<BinnerSingleBin> > const& getBinList() const { return m_bins; }

  void putAttributeName(vUCString const& name) { m_attributeName = name; }
  vUCString const& getAttributeName() const { return m_attributeName; }
  // No bins, the edges back to their start.
  void clearCurrentDefinitions();

  std::list<double> const& getOriginalMinValues() const { return m_minimums; }
  std::list<double> const& getOriginalMaxValues() const { return m_maximums; }
  std::list<double> const& getOriginalIncrements() const { return m_increments; }
  std::list<double> const& getOriginalWidths() const { return m_widths; }

  template <class T>
  static T noValue() {
    return std::numeric_limits<T>::max();
  }

 private:
  void checkBinableValues(double lower, double upper, double value);
  template <class T>
  void myBin(T* values, unsigned int n) const;

  UnbinnedValueOptions m_lowerOption;
  UnbinnedValueOptions m_upperOption;
  double m_lowestEdge;
  double m_lowestValue;
  double m_highestEdge;
  double m_highestValue;
  std::list<vHandle<BinnerSingleBin> > m_bins;
  vUCString m_attributeName;
  std::list<double> m_minimums;
  std::list<double> m_maximums;
  std::list<double> m_increments;
  std::list<double> m_widths;
};

#endif

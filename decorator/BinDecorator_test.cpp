#include "decorator/BinDecorator.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace {

TEST(Binner, SnapsToBinsAndTreatsValuesOutside) {
  Binner binner;
  binner.addBins(10, 20, 10, 4);
  struct Case {
    Binner::UnbinnedValueOptions option;
    double in;
    double out;
  } const cases[] = {
      {Binner::SetNoValue, 11, 10},
      {Binner::SetNoValue, 22, 20},
      {Binner::UseNearestBin, 5, 10},
      {Binner::LeaveAlone, 22.5, 22.5},
      {Binner::SetNoValue, 5, std::numeric_limits<double>::max()},
  };
  for (Case const& c : cases) {
    binner.setLowerOption(c.option);
    binner.setUpperOption(c.option);
    double v = c.in;
    binner.binValues(&v, vFLOAT64, 1);
    EXPECT_EQ(c.out, v) << c.in << " option " << c.option;
  }
  int ints[] = {4, 12, 30};
  binner.setLowerOption(Binner::SetNoValue);
  binner.setUpperOption(Binner::UseNearestBin);
  binner.binValues(ints, vINT32, 3);
  EXPECT_EQ((std::vector<int>{std::numeric_limits<int>::max(), 10, 20}), std::vector<int>(ints, ints + 3));

  // Touching bins: the first listed wins; a walk downwards; a single bin
  // sits round the maximum with the minimum as its value.
  Binner touching;
  touching.addBins(0, 4, 2, 2);
  touching.addBins(30, 20, -10, 2);
  touching.addBins(7, 100, 0, 1);
  double values[] = {1, 3, 21, 30, 100.5, 99.4};
  touching.binValues(values, vFLOAT64, 6);
  EXPECT_EQ((std::vector<double>{0, 2, 20, 30, 7, 99.4}), std::vector<double>(values, values + 6));
}

}  // namespace

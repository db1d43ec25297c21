#include <gtest/gtest.h>

int main(int argc, char** argv) {
  // Death tests fork; the threadsafe style re-executes the binary so that
  // process-wide singletons start clean in the child.
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}

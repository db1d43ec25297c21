#ifndef FILESTORE_OFFLOAD_OFFLOADVERSION1BITS_H
#define FILESTORE_OFFLOAD_OFFLOADVERSION1BITS_H

// Offsets as integers, truncated on the way in.

#include "filestore/offload/OffloadVersionBits.h"

class OffloadVersion1Bits : public OffloadVersionBits {
 public:
  int getVersion() const override { return 1; }
  bool getOffsets(char const* text, double& first, double& increment, int& count) const override;
  void writeOffsets(vString& text, double first, double increment, int count) const override;
  double getFileOffset(int const* header) const override;
  void setFileOffset(int* header, double offset) const override;
  void getFileOffsets(int const* header, double& first, double& increment, double& last) const override;
  void setFileOffsets(int* header, double first, double increment, double last) const override;

 protected:
  double myGet(int word) const override { return word; }
  int myPut(double value) const override { return static_cast<int>(value); }
};

#endif

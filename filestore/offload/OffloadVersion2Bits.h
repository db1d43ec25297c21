#ifndef FILESTORE_OFFLOAD_OFFLOADVERSION2BITS_H
#define FILESTORE_OFFLOAD_OFFLOADVERSION2BITS_H

// Offsets as 32-bit floats in the header words; two decimals in the text.

#include "filestore/offload/OffloadVersion1Bits.h"

class OffloadVersion2Bits : public OffloadVersion1Bits {
 public:
  int getVersion() const override { return 2; }
  bool getOffsets(char const* text, double& first, double& increment, int& count) const override;
  void writeOffsets(vString& text, double first, double increment, int count) const override;

 protected:
  double myGet(int word) const override;
  int myPut(double value) const override;
};

#endif

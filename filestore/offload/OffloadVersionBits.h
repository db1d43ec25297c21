#ifndef FILESTORE_OFFLOAD_OFFLOADVERSIONBITS_H
#define FILESTORE_OFFLOAD_OFFLOADVERSIONBITS_H

// OffloadVersionBits: what differs between the versions of the offload
// format, which is how offsets are held: as integers (version 1) or as
// floats (version 2), in the header file's third line and in the data
// file's header words 22 (this file's offset) and 61 to 63 (first,
// increment and last offset of the set).

#include "foundation/vString.h"

class OffloadVersionBits {
 public:
  virtual ~OffloadVersionBits();
  virtual int getVersion() const = 0;
  // The third line of a header file; false when it doesn't hold all three.
  virtual bool getOffsets(char const* text, double& first, double& increment, int& count) const = 0;
  virtual void writeOffsets(vString& text, double first, double increment, int count) const = 0;
  virtual double getFileOffset(int const* header) const = 0;
  virtual void setFileOffset(int* header, double offset) const = 0;
  virtual void getFileOffsets(int const* header, double& first, double& increment, double& last) const = 0;
  virtual void setFileOffsets(int* header, double first, double increment, double last) const = 0;

  // The bits of a version, 1 or 2; null for any other.
  static OffloadVersionBits* forVersion(int version);

 protected:
  // One header word as this version holds an offset.
  virtual double myGet(int word) const = 0;
  virtual int myPut(double value) const = 0;
};

#endif

#include <cstdio>
#include <cstring>

#include "filestore/offload/OffloadVersion1Bits.h"
#include "filestore/offload/OffloadVersion2Bits.h"

namespace {
int const kFileOffset = 22;
int const kFirstOffset = 61;
}  // namespace

OffloadVersionBits::~OffloadVersionBits() {}

OffloadVersionBits* OffloadVersionBits::forVersion(int version) {
  if (version == 1) return new OffloadVersion1Bits;
  if (version == 2) return new OffloadVersion2Bits;
  return nullptr;
}

// The word handling is common: only the conversion of one word differs.
bool OffloadVersion1Bits::getOffsets(char const* text, double& first, double& increment, int& count) const {
  int f = 0, i = 0;
  if (std::sscanf(text, "%d%d%d", &f, &i, &count) != 3) return false;
  first = f;
  increment = i;
  return true;
}

void OffloadVersion1Bits::writeOffsets(vString& text, double first, double increment, int count) const {
  char line[96];
  std::snprintf(line, sizeof line, "%d %d %d", static_cast<int>(first), static_cast<int>(increment), count);
  text = vString(line);
}

double OffloadVersion1Bits::getFileOffset(int const* header) const { return myGet(header[kFileOffset]); }

void OffloadVersion1Bits::setFileOffset(int* header, double offset) const { header[kFileOffset] = myPut(offset); }

void OffloadVersion1Bits::getFileOffsets(int const* header, double& first, double& increment, double& last) const {
  first = myGet(header[kFirstOffset]);
  increment = myGet(header[kFirstOffset + 1]);
  last = myGet(header[kFirstOffset + 2]);
}

void OffloadVersion1Bits::setFileOffsets(int* header, double first, double increment, double last) const {
  header[kFirstOffset] = myPut(first);
  header[kFirstOffset + 1] = myPut(increment);
  header[kFirstOffset + 2] = myPut(last);
}

bool OffloadVersion2Bits::getOffsets(char const* text, double& first, double& increment, int& count) const {
  float f = 0, i = 0;
  if (std::sscanf(text, "%f%f%d", &f, &i, &count) != 3) return false;
  first = f;
  increment = i;
  return true;
}

void OffloadVersion2Bits::writeOffsets(vString& text, double first, double increment, int count) const {
  char line[128];
  std::snprintf(line, sizeof line, "%.2f %.2f %d", first, increment, count);
  text = vString(line);
}

double OffloadVersion2Bits::myGet(int word) const {
  float value;
  std::memcpy(&value, &word, 4);
  return value;
}

int OffloadVersion2Bits::myPut(double value) const {
  float const f = static_cast<float>(value);
  int word;
  std::memcpy(&word, &f, 4);
  return word;
}

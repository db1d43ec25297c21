#ifndef FILESTORE_SEGY_SEGYSHOTFORMAT_H
#define FILESTORE_SEGY_SEGYSHOTFORMAT_H

// SegyShotFormat: the layout of a SEG-Y file that comes without a format
// description: the usual shot-record fields of the trace header, all
// vINT32, and "TRACE". Two of its fields lie at odd places on purpose, as
// the files it was made for have them: "RCVR.LINE" at 197 and "RCVR.BIN"
// with "RCVR.UNIQUE.ID" both at 201.

#include "filestore/segy/SegyFormatBase.h"

class SegyShotFormat : public SegyFormatBase {
 public:
  SegyShotFormat();
  ~SegyShotFormat() override;

 protected:
  std::list<Attribute> doGetAttributeList() const override;
  int doGetAttributeOffset(vUCString const& name) const override;
  DataType doGetSegyType(vUCString const& name) const override;

 private:
  // The offset of a header field, -1 for a name not in the table.
  static int myHeaderOffset(vUCString const& name);
};

#endif

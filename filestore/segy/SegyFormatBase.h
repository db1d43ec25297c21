#ifndef FILESTORE_SEGY_SEGYFORMATBASE_H
#define FILESTORE_SEGY_SEGYFORMATBASE_H

// SegyFormatBase: where each named attribute of a SEG-Y store lies in a
// trace (a byte offset in the 240-byte trace header, or 240 for the samples
// themselves) and of which type it is in the file. The base knows three:
// "SEGY.REEL.COUNT" (4, vINT32), "CMP" (20, vINT32) and "TRACE" (240,
// vFLOAT32, as many values as the binary header gives samples, the sample
// interval in milliseconds as its step). The default shot format and the
// format description files derive from it.
//
// A format also carries the store class and subclass that a file gives
// its store, and the names of its key attributes.

#include <list>
#include <vector>

#include "attribute/Attribute.h"
#include "filestore/segy/SegyBinaryHeader.h"
#include "foundation/DataType.h"
#include "foundation/vHandle.h"
#include "foundation/vUCString.h"

class SegyFormatBase {
 public:
  virtual ~SegyFormatBase();
  SegyFormatBase(SegyFormatBase const&) = delete;
  SegyFormatBase& operator=(SegyFormatBase const&) = delete;

  // The definitions of the attributes; fatal without a binary header: "A
  // SegyBinaryHeader is required.".
  std::list<Attribute> getAttributeList() const;
  // Byte offset in the trace, and type in the file, of an attribute; an
  // unknown name is fatal.
  int getAttributeOffset(vUCString const& name) const;
  DataType getSegyType(vUCString const& name) const;

  void setBinaryHeader(vHandle<SegyBinaryHeader> const& header) { m_binaryHeader = header; }
  vHandle<SegyBinaryHeader> const& getBinaryHeader() const { return m_binaryHeader; }
  vUCString const& getStoreClass() const { return m_storeClass; }
  vUCString const& getStoreSubClass() const { return m_storeSubClass; }
  std::vector<vUCString> const& getKeyNames() const { return m_keyNames; }

 protected:
  // Made only as one of the formats built on it.
  SegyFormatBase();

  virtual std::list<Attribute> doGetAttributeList() const;
  virtual int doGetAttributeOffset(vUCString const& name) const;
  virtual DataType doGetSegyType(vUCString const& name) const;

  // "TRACE": the samples of a trace, with the sample count as length and
  // the sample interval in milliseconds as step.
  Attribute myTraceDefinition() const;

  vUCString m_storeClass;
  vUCString m_storeSubClass;
  std::vector<vUCString> m_keyNames;
  vHandle<SegyBinaryHeader> m_binaryHeader;
};

#endif

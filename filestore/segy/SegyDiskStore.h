#ifndef FILESTORE_SEGY_SEGYDISKSTORE_H
#define FILESTORE_SEGY_SEGYDISKSTORE_H

// SegyDiskStore: a SEG-Y file as a read-only store. Its instances are the
// traces, numbered from 1; each attribute is a field of the 240-byte trace
// header or the samples ("TRACE"), laid out by a format object: the default
// shot format, or a format description file (extension "syf") named by the
// store description or lying beside the file. A file with the extension
// "dsegy" has the blocked layout and is read through an instance mapper.
//
// Reads of a range load the whole traces in one file read into a record
// buffer, which keeps the last range: reading several attributes of the
// same traces reads the file once. Header fields are cut out of the records
// (swapped on the way when the file is in the other byte order), samples
// are converted to IEEE floats, and the values then converted to the type
// that the caller's attribute asks for. Key and group reads come from
// DiskStore through the list read.
//
// A file whose size is not the headers plus whole traces gives a message
// and keeps its whole traces. Every writing operation is refused.

#include <list>
#include <vector>

#include "attribute/KeyList.h"
#include "attribute/RecordBuffer.h"
#include "filestore/disk/SingleSetDiskStore.h"
#include "filestore/segy/SegyBinaryHeader.h"
#include "filestore/segy/SegyFormatBase.h"
#include "filestore/segy/SegyHalcyonInstanceMapper.h"
#include "foundation/vFilename.h"
#include "foundation/vHandle.h"
#include "project/StoreDescription.h"
#include "syslayer/FS.h"

class SegyDiskStore : public SingleSetDiskStore {
 public:
  SegyDiskStore();
  explicit SegyDiskStore(vHandle<Project> const& project);
  ~SegyDiskStore() override;

  using DiskStore::open;
  // A flat-file description: its format spec, or a "syf" file beside the
  // data file, names the format description.
  virtual void open(StoreDescription const& description);
  virtual void open(vFilename const& file);
  void close() override;
  unsigned int getNInstances() const override;
  // The file's size in bytes.
  virtual long long getLength() const;
  vLCString getClass() const override;
  vLCString getSubClass() const override;

  using DiskStore::read;
  void read(Attribute& attribute, unsigned int first, unsigned int last) const override;
  void read(Attribute& attribute, std::vector<unsigned int> const& instances) const override;

  // The format description file, blank for the default shot format.
  vFilename const& getFormatFile() const { return m_formatFileName; }
  // The text header as ASCII.
  vString const& getEBCDICHeaderInASCII() const { return m_textHeader; }
  // The binary header of the open file.
  vHandle<SegyBinaryHeader> const& getBinaryHeader() const { return m_binaryHeader; }

 protected:
  unsigned int myGetNInstances();
  void myPrepareRecordBuffer();
  void myReadHeaders();
  // Fills the buffer with the traces of a range or list, unless it holds
  // them already.
  void myAllocateBufferRange(unsigned int first, unsigned int last) const;
  void myAllocateBufferList(std::vector<unsigned int> const& instances) const;
  void myReadHalcyonData(unsigned int first, unsigned int last) const;
  // One file read, fatal with the instance when it comes short, labelled
  // by the caller.
  void myReadTraces(char const* label, unsigned char* target, long long offset, long long count,
                    unsigned int instance) const;
  // Cuts an attribute's values out of the buffer for the instances of a
  // range (list null) or list, and converts them.
  void myExtract(Attribute& attribute, unsigned int first, unsigned int count,
                 std::vector<unsigned int> const* list) const;

 private:
  vString m_formatSpec;
  mutable FS::iFile m_file;
  unsigned int m_nInstances;
  unsigned int m_nSamples;
  int m_traceLength;
  long long m_fileSize;
  vHandle<SegyBinaryHeader> m_binaryHeader;
  vHandle<RecordBuffer> m_recordBuffer;
  vHandle<SegyFormatBase> m_format;
  vFilename m_formatFileName;
  vString m_textHeader;
  vHandle<SegyHalcyonInstanceMapper> m_mapper;
};

#endif

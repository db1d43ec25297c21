#ifndef FILESTORE_SEGD_SEGDDISKSTORE_H
#define FILESTORE_SEGD_SEGDDISKSTORE_H

// SegdDiskStore: the demultiplexed traces of a SEG-D field record on disk as
// a read-only store. Its instances are the traces, numbered from 1, each a
// 20-byte trace header and its samples in format 8015 or 8058. The headers
// before the first trace are as long as the general header says; a file
// with the extension "dsegd" has a further 2048 bytes before its first
// trace.
//
// Attributes: FFID and CHANNEL (typed by their definitions, when the
// vocabulary has them), CHANNELSET, TRACENUMBER and SEQUENCE (the
// instance's place) as 32-bit integers, and TRACE, the samples as floats,
// as many as the record length in milliseconds, at the base scan interval.
// The keys are FFID and CHANNEL.
//
// Reads of a range load the whole traces in one file read into a record
// buffer, which keeps the last range; lists are read by runs of neighbours.
// A file whose size is not the headers plus whole traces gives a message
// and keeps its whole traces. Every writing operation is refused.
//
// A name of the tape forms ("T=", "TAPE=" or "TAPES=", or the word and a
// blank, without regard to case, then tape names separated by ",", ":" or
// "=") is read through a TapeSetReader as one stream, whole, at open: the
// record then reads as a disk copy would, from memory.

#include <list>
#include <vector>

#include "attribute/KeyList.h"
#include "attribute/RecordBuffer.h"
#include "filestore/disk/SingleSetDiskStore.h"
#include "filestore/segd/SegdGeneralHeader.h"
#include "foundation/vFilename.h"
#include "foundation/vHandle.h"
#include "project/StoreDescription.h"
#include "syslayer/FS.h"

class SegdDiskStore : public SingleSetDiskStore {
 public:
  // The 20-byte demultiplexed trace header of one trace. Byte offsets count
  // from 0; the numbers are binary-coded decimal unless said otherwise.
  class TraceHeader {
   public:
    enum HeaderValue {
      FILE_NUMBER,     // 0-1, or 17-19 when 0-1 are both 0xFF
      SCAN_TYPE,       // 2
      CHANNEL_SET,     // 3, or 15-16 when 3 is 0xFF
      TRACE_NUMBER,    // 4-5
      TIMING_WORD,     // 6-8, binary, in 1/256 ms
      EXTENSIONS,      // 9, binary: the 32-byte extension blocks that follow
      SAMPLE_SKEW,     // 10, binary
    };
    TraceHeader() : m_block(nullptr) {}
    // Takes a trace's header; a trace with extension blocks is refused.
    void setHeader(unsigned char const* block);
    int getHeaderValue(int which) const;
    // Trace edit code 2: the trace was muted on recording.
    bool isMuted() const;

   private:
    unsigned char const* myBlock() const;
    unsigned char const* m_block;
  };

  SegdDiskStore();
  explicit SegdDiskStore(vHandle<Project> const& project);
  ~SegdDiskStore() override;

  using DiskStore::open;
  virtual void open(StoreDescription const& description);
  virtual void open(vFilename const& file);
  // The record on a set of tapes (drives or tape images), read whole.
  virtual void openTapes(std::list<vString> const& tapes);
  // The tape names of a name of the tape forms; empty for any other name.
  static std::list<vString> tapeNames(vString const& name);
  void close() override;
  unsigned int getNInstances() const override;
  // The file's size in bytes.
  virtual long long getLength() const;
  vLCString getClass() const override;
  vLCString getSubClass() const override;

  using DiskStore::read;
  void read(Attribute& attribute, unsigned int first, unsigned int last) const override;
  void read(Attribute& attribute, std::vector<unsigned int> const& instances) const override;

  // The general header of the open file.
  vHandle<SegdGeneralHeader> const& getGeneralHeader() const { return m_generalHeader; }
  // Bytes of one trace, header included.
  int getTraceLength() const { return m_traceLength; }

 protected:
  // Reads the general header from the first bytes of the record and sets
  // up the attributes, instances and buffer.
  void mySetUp(unsigned char const* block, long long got);
  unsigned int myGetNInstances();
  void myBuildAttributes();
  // Fills the buffer with the traces of a range or list, unless it holds
  // them already.
  void myAllocateBufferRange(unsigned int first, unsigned int last) const;
  void myAllocateBufferList(std::vector<unsigned int> const& instances) const;
  // One file read of the traces first to last into target.
  void myReadTraces(char const* label, void* target, unsigned int first, unsigned int last) const;
  // Cuts an attribute's values out of the buffer for the instances of a
  // range (list null) or list, and converts them.
  void myExtractData(Attribute& attribute, unsigned int first, unsigned int count,
                     std::vector<unsigned int> const* list) const;

 private:
  mutable FS::iFile m_file;
  unsigned int m_nInstances;
  int m_nSamples;
  int m_traceLength;
  long long m_dataStart;
  long long m_fileSize;
  bool m_gapAfterHeaders;
  // The record read from tapes; empty for a disk file.
  std::vector<unsigned char> m_tapeData;
  vHandle<SegdGeneralHeader> m_generalHeader;
  vHandle<RecordBuffer> m_recordBuffer;
};

#endif

#ifndef FILESTORE_NYX_NYXDISKSTORE_H
#define FILESTORE_NYX_NYXDISKSTORE_H

// NyxDiskStore: the trace files of the Nyx processing system as a store.
// Three kinds are read: "cst" files of fixed records (any name not of the
// other kinds), "dat" files of blocks (extension DAT in any case, laid out
// as NyxDatLayout tells), and tape sets (a name "T=a,b", "TAPE=...",
// "TAPES ..." and the like), read forward only. "cst" files can be made.
//
// Every trace is 64 header words and its samples (NyxTrace). A "cst" file
// is its traces back to back; the first trace's words 8, 9 and 10 tell the
// data format, the bytes of samples and the samples per trace, and its
// byte order is the one in which word 8 is a known format and word 9 the
// samples' bytes. Tapes hold the traces of a "cst" file, after 30 bytes.
//
// Attributes: CMP, SHOT.UNIQUE.ID, CHANNEL, RECEIVER, OFFSET, WDEPTH and
// the samples TRACE (IEEE floats, whatever the file holds); any header word
// by number as WORD00 to WORD63.
//
// Index files: beside a data file, with the extension "idx". Words in
// little-endian order: a header record of four (version 1, the data file's
// trace record length in bytes, the instance count, 0) and then one record
// per instance, the trace's byte offset as a 64-bit word. A "dat" file
// whose index is wrong is read without it, after a message.
// AUTOGENERATEINDEX true makes the index of a "dat" file that has none when
// it is opened.

#include <list>
#include <memory>
#include <ostream>
#include <vector>

#include "attribute/KeyList.h"
#include "filestore/disk/SingleSetDiskStore.h"
#include "filestore/nyx/NyxDatLayout.h"
#include "foundation/vFilename.h"
#include "project/StoreDescription.h"
#include "syslayer/FS.h"

class TapeSetReader;

class NyxDiskStore : public SingleSetDiskStore {
 public:
  enum FileFormat { CST = 1, DAT = 2, TAPES = 3 };

  // One trace record of the open file.
  struct Record {
    int fileFormat = 0;
    int dataFormat = 0;
    int traceType = 0;
    int nSamplesPerTrace = 0;
    int intTraceLengthW = 0;
    int intTraceLengthB = 0;
    int extTraceLengthW = 0;
    int extTraceLengthB = 0;
    float sampleRate = 0.0f;
    int extRecordLengthB = 0;
    int physicalRecLenB = 0;
    int nInstances = 0;
    bool ownData = false;
    std::vector<int32_t> header;

    // Fills the lengths from the format and sample count, and checks them
    // against the file's size (-1: unknown); fatal with label.
    void validateHeader(int fileFormat, int dataFormat, int nSamples, float sampleRate, long long physicalSize,
                        char const* label);
  };

  NyxDiskStore();
  explicit NyxDiskStore(vHandle<Project> const& project);
  ~NyxDiskStore() override;

  using DiskStore::open;
  virtual void open(vFilename const& file);
  virtual void open(StoreDescription const& description);
  using DiskStore::create;
  virtual void create(vFilename const& file);
  virtual void create(StoreDescription const& description);
  void close() override;
  bool isCreating() const { return m_creating; }
  bool hasIndexFile() const;
  static bool hasIndexFile(vFilename const& file);
  void generateIndexFile();
  static void generateIndexFile(vHandle<Project> project, vFilename const& file);
  vLCString getPrimaryAttributeSetName() const { return getName(); }
  Record const& getRecord() const { return m_record; }
  bool isByteSwapped() const { return m_swapped; }
  // Whether the index file was taken (a wrong one is not).
  bool isUsingIndex() const { return !m_index.empty(); }

  vLCString getName() const override;
  unsigned int getNInstances() const override;
  Attribute getAttribute(vUCString const& name) const override;
  // Also the header words "WORDnn" beside the named attributes.
  bool hasAttribute(vUCString const& name) const override;
  vLCString getClass() const override { return vLCString("seismic"); }
  vLCString getSubClass() const override { return m_subClass; }
  void addAttribute(Attribute const& attribute) override;

  using DiskStore::read;
  void read(Attribute& attribute, unsigned int first, unsigned int last) const override;
  void read(Attribute& attribute, std::vector<unsigned int> const& instances) const override;
  using DiskStore::write;
  void write(Attribute const& attribute, unsigned int first, unsigned int last) override;

  // Whether a name is of the tape forms, and its tapes.
  static bool isTapeName(vString const& name, std::list<vString>* tapes = nullptr);

 private:
  void myOpenTapes(std::list<vString> const& tapes);
  void myOpenDat();
  void myOpenCst();
  void myBuildAttributes();
  void myLoadIndex();
  bool myIndexShowsACut(int fd) const;
  // The definition of a name, with the word it reads (-1 for TRACE);
  // false for a name the store doesn't offer.
  bool myDefinition(vUCString const& name, Attribute& definition, int& word) const;
  long long myOffsetOf(unsigned int instance) const;
  // One trace record of the file into record (header words in this
  // machine's order).
  void myReadRecord(unsigned int instance, unsigned char* record) const;
  void myReadTapeRecord(unsigned int instance, unsigned char* record) const;
  void myLoadRange(unsigned int first, unsigned int last) const;
  // The values of the instances' records (rows of the cache or records)
  // into the attribute.
  void myExtract(Attribute& attribute, std::vector<unsigned char const*> const& records) const;
  void myCreateDiskFile();
  void myFlushRecordBuffer();
  long long myFileSize() const;
  // Bytes between records held in memory: a record rounded up to whole
  // words, so that every header starts on a word.
  std::size_t myStride() const { return (static_cast<std::size_t>(m_record.extRecordLengthB) + 3) & ~std::size_t(3); }

  bool m_creating;
  bool m_swapped;
  vString m_displayName;
  vLCString m_subClass;
  Record m_record;
  NyxDatLayout m_dat;
  mutable FS::iFile m_file;
  FS::ioFile m_outFile;
  int m_datFd;
  std::unique_ptr<TapeSetReader> m_tapes;
  mutable unsigned int m_tapeNext;
  mutable bool m_tapeEnded;
  std::vector<long long> m_index;
  // The records of the last range read, kept for the next attribute of the
  // same range; a tape's first header, read at open.
  mutable unsigned int m_cacheFirst;
  mutable unsigned int m_cacheLast;
  mutable std::vector<unsigned char> m_cache;
  mutable std::vector<unsigned char> m_tapeFirst;
  // Creating: the attributes given, the trace's, and the records.
  std::list<Attribute> m_added;
  std::vector<unsigned char> m_records;
  unsigned int m_nCreated;
};

std::ostream& operator<<(std::ostream& out, NyxDiskStore::Record const& record);

#endif

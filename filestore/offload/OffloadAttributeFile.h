#ifndef FILESTORE_OFFLOAD_OFFLOADATTRIBUTEFILE_H
#define FILESTORE_OFFLOAD_OFFLOADATTRIBUTEFILE_H

// OffloadAttributeFile: one offload data file, the traces of one offset of
// a regular survey. Instances are the bins of the survey grid, inline by
// inline; a record holds the trace followed by the header attributes that
// the file's table lists. A fold of zero marks a dead bin, which has no
// trace: polygonal files hold records only for live bins, found through
// the polygon mask, rectangular ones a record for every bin.
//
// The file is opened lazily, at the first question that needs it. Words
// are in the writer's byte order, told by the header length in word 0;
// the values are swapped on the way out. A file that went through a
// word-swapping copy is told by its table holding "LBUS ENI" rather than
// "SUBLINE": its names are read back word by word and its 16-bit samples
// pair by pair.
//
// Reads of a range trim it to its live bins, read their records in one
// go (runs of records for polygonal files) into a window of at least 4096
// instances, and cut the attribute out of that window; instances outside
// the live part read as zeros. CMP, INLINE, CROSSLINE, CMP.FOLD and
// OFFSET.BIN are computed from the grid and the fold map.
//
// New files: create(), then addAttribute (the keys INLINE, CROSSLINE and
// TRACE among them), setGrid, setOffset and possibly setCompression; the
// first write or question lays the file out, with a record for every bin
// and SUBLINE added to the table when the caller has none. Table names are
// the older system's (RondoAttributeTranslator::convertToRondo of the
// caller's); the file answers under the caller's names until it is closed,
// and under the table's names when opened again.
//
// Existing files opened for update (OpenOptions::setUpdate) take writes in
// either shape: a dead bin of a polygonal file gets a record at the end of
// the file. addAttribute and addInstances (whole inlines) on such a file
// lay it out anew in a file beside it, which then replaces it. Writes set
// a fold of 1 on dead bins; flush writes the fold map and polygon mask.

#include <list>
#include <memory>
#include <vector>

#include "attribute/KeyList.h"
#include "attribute/PropertyList.h"
#include "filestore/disk/AttributeFile.h"
#include "filestore/offload/OffloadVersionBits.h"
#include "foundation/vHandle.h"
#include "geometry/CMPBasicGrid.h"
#include "syslayer/FS.h"

class AttributeSetIndexingTable;
class ExistingAttributeFile;

class OffloadAttributeFile : public AttributeFile {
 public:
  enum CompressionType { NONE = 0, INT16 = 1 };

  struct AttributeOffset {
    int id;          // position in the table
    int position;    // word position behind the trace
    vUCString name;  // the store layer's name
    bool operator<(AttributeOffset const& other) const { return name < other.name; }
  };

  OffloadAttributeFile();
  explicit OffloadAttributeFile(vFilename const& name, OpenOptions options = OpenOptions());
  ~OffloadAttributeFile() override;
  // Puts one example into the register under getRegistrationName(), so that
  // offload files open there by their extension. The register refuses a
  // second example, so a call when the name is already there leaves it.
  static void registerFile(ExistingAttributeFile& files);

  vFilename getName() const override { return m_fileName; }
  // Byte offset in a record; -1 for a computed attribute.
  int getOffset(Attribute const& attribute) const override;
  void writeRange(Attribute const& attribute, unsigned int first, unsigned int last) override;
  void readRange(Attribute& attribute, unsigned int first, unsigned int last) override;
  void extractRange(Attribute& attribute, unsigned int first, unsigned int last) override;
  void writeList(Attribute const& attribute, std::vector<unsigned int> const& instances) override;
  void readList(Attribute& attribute, std::vector<unsigned int> const& instances) override;
  unsigned int getNInstances() override;
  void flush() override;
  AttributeFile* makeNew(vFilename const& name, Attribute const& shape, OpenOptions options) override;
  void deleteFile(vFilename const& name) override;
  bool hasAttribute(vUCString const& name) override;
  Attribute getAttribute(vUCString const& name) override;
  unsigned int getNAttributes() override;
  bool prepareBuffer(AttributeSetBuffer& buffer) override;
  void readBufferRange(AttributeSetBuffer& buffer, unsigned int first, unsigned int last) override;
  long long getFileSize() override;
  vString getRegistrationName() const override { return vString("offload"); }
  void setRestoreMute(bool restoreMute) override;
  bool getRestoreMute() const override { return restoreMute; }

  void create(vFilename const& name);
  void addAttribute(Attribute const& attribute);
  // Bins appended as whole inlines, dead until written: count must be a
  // multiple of the crosslines. Only on a file opened for update.
  void addInstances(unsigned int count);
  void setGrid(CMPBasicGrid const& grid);
  CMPBasicGrid const& getGrid();
  void setCompression(CompressionType type);
  void setOffset(double first, double increment, int count, int sequence);
  double getOffsetBin();
  // Words.
  int getRecordLength();
  std::vector<int> const& getPolygonMask();
  std::vector<int> const& getFold();
  // Whether the attribute is computed rather than read.
  bool isCalculatable(vUCString const& name);
  KeyList getKeyList();
  std::list<Attribute> getAttributeList();
  PropertyList const& getProperties();
  // Loads the records of the range, so that extractRange needs no file.
  void cacheRange(unsigned int first, unsigned int last);
  // Instances first to last read into the attribute at the positions
  // given, one for each instance; an attribute without instances is sized
  // to the largest position. The second form does so for each attribute.
  void readRangeScattered(Attribute& attribute, unsigned int first, unsigned int last,
                          std::vector<unsigned int> const& positions);
  void readRangeScattered(std::vector<Attribute*> const& attributes, unsigned int first, unsigned int last,
                          std::vector<unsigned int> const& positions);
  // The instances of groups first to last of the attribute, group after
  // group; groups are its distinct values in ascending order, counted
  // from 1, and a last group of 0 means the last one.
  void locateByGroups(Attribute const& groupAttribute, unsigned int firstGroup, unsigned int lastGroup,
                      std::vector<unsigned int>& result);
  // The instances whose records the buffer holds; false when it holds none.
  bool getBufferRange(unsigned int& first, unsigned int& last) const;
  // The header words as this machine reads them.
  std::vector<int> const& getHeader();
  bool isSwapped();

 private:
  void myOpenFile();
  void myCheckForByteSwap(int word0);
  void myCheckHeader();
  void mySetVersionBits();
  void myBuildAttributes();
  void myCheckForFSCP();
  void mySetupGrid();
  void mySetupProperties();
  void myLoadMaps();
  void myCheckRange(unsigned int first, unsigned int last);
  // The caller's attribute made the file's length, in the caller's type.
  void myShape(Attribute& attribute, Attribute const& definition);
  void myGenerate(Attribute& attribute, unsigned int first, unsigned int last);
  // Whether the grid numbers the header's first and last bins as CMPs 1 and
  // the number of bins; if not, CMPs are counted from 1 by 1, with a report.
  void myTestGenerateCmp();
  void myLoadRecords(unsigned int first, unsigned int last);
  void myReadRecords(long long record, unsigned int count, char* target);
  void myExtract(Attribute& attribute, unsigned int first, unsigned int last);
  void myZapDead(Attribute& attribute, unsigned int first, unsigned int last, unsigned int liveFirst,
                 unsigned int liveLast);
  void myDoCreation();
  // The table's form of an attribute: the older system's name, 32-bit words.
  static Attribute myTableForm(Attribute const& attribute);
  // One instance of the attribute put into a record, in the file's order.
  void myEncode(char* record, Attribute const& attribute, unsigned int instance, Attribute const& definition,
                int offset);
  void myRelayout(Attribute const* added, int moreInlines);
  long long myTraceRecords();
  void myWriteWords(long long record, void const* data, long long bytes);
  Attribute const& myDefinition(char const* label, vUCString const& name);
  int myTraceSamples() const;

  vFilename m_fileName;
  bool m_isOpen;
  OpenOptions m_options;
  FS::iFile m_file;
  FS::ioFile m_ioFile;
  std::vector<int> m_header;
  bool m_swap;
  bool m_fscp;
  vString m_shape;
  std::list<Attribute> m_attributes;       // the store layer's names
  std::list<Attribute> m_tableAttributes;  // as the table has them
  std::vector<AttributeOffset> m_offsets;
  std::vector<char> m_buffer;
  unsigned int m_bufferFirst;
  unsigned int m_bufferLast;
  std::vector<int> m_fold;
  std::vector<int> m_mask;
  vHandle<OffloadVersionBits> m_version;
  CMPBasicGrid m_grid;
  PropertyList m_properties;
  double m_offsetBin;
  bool m_useGenerated;
  bool m_useGeneratedCmp;
  int m_cmpTested;  // 0 not yet, 1 the grid's CMPs, -1 counted from 1
  // Group tables, built at the first group question.
  std::unique_ptr<AttributeSetIndexingTable> m_index;
  // New files.
  bool m_created;
  bool m_laidOut;
  bool m_update;
  bool m_dirty;
  CompressionType m_compression;
  double m_firstOffset, m_offsetIncrement;
  int m_nOffsets, m_sequence;
};

#endif

#ifndef FILESTORE_OFFLOAD_OFFLOADHEADERFILE_H
#define FILESTORE_OFFLOAD_OFFLOADHEADERFILE_H

// OffloadHeaderFile: the small text file that lists the data files of an
// offload set, one per offset. Lines: the creation date, the job name, the
// offsets (first, increment, count), then tokens that are either offset
// limits (a value other than zero) or data file names. A third line with a
// "." holds float offsets (version 2), otherwise integers (version 1).
// Text written by a word-swapping copy (it starts " nuS", " noM", ...) is
// swapped back word by word before it is read.

#include <vector>

#include "filestore/offload/OffloadVersionBits.h"
#include "foundation/vFilename.h"
#include "foundation/vHandle.h"
#include "foundation/vString.h"

class OffloadHeaderFile {
 public:
  OffloadHeaderFile();
  explicit OffloadHeaderFile(vFilename const& name);
  ~OffloadHeaderFile();

  vFilename const& getHeaderFilename() const { return m_fileName; }
  double getFirstOffset() const { return m_firstOffset; }
  double getOffsetIncrement() const { return m_offsetIncrement; }
  int getNOffsets() const { return m_nOffsets; }
  vString const& getJobName() const { return m_jobName; }
  // Fatal before open or create.
  OffloadVersionBits const& getVersion() const;
  vString const& getOwner() const { return m_owner; }
  vString const& getCreatedDate() const { return m_createdDate; }
  vString const& getSubClass() const { return m_subClass; }
  std::vector<double> const& getOffsetLimits() const { return m_offsetLimits; }
  void setDataFilenames(std::vector<vFilename> const& names) { m_dataFilenames = names; }
  std::vector<vFilename> const& getDataFilenames() const { return m_dataFilenames; }
  unsigned int getCRC() const { return m_crc; }

  // A new header of that version (1 or 2) and offsets; save() writes it.
  void create(vFilename const& name, int version, double first, double increment, int count);
  void save();
  void open(vFilename const& name);
  // What open does with the file's bytes.
  void parse(vFilename const& name, char const* text, unsigned long length);

 private:
  vFilename m_fileName;
  double m_firstOffset;
  double m_offsetIncrement;
  int m_nOffsets;
  vString m_jobName;
  vHandle<OffloadVersionBits> m_version;
  vString m_owner;
  vString m_createdDate;
  vString m_subClass;
  std::vector<double> m_offsetLimits;
  std::vector<vFilename> m_dataFilenames;
  unsigned int m_crc;
};

#endif

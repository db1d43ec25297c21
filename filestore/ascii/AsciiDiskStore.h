#ifndef FILESTORE_ASCII_ASCIIDISKSTORE_H
#define FILESTORE_ASCII_ASCIIDISKSTORE_H

// AsciiDiskStore: a text table as a store. Its format comes from the store
// description's format spec, a built-in format the file's first bytes name,
// or the data themselves (see AsciiFormat). The instances are the records
// of the open record set; each record set is an attribute set, named by its
// title (the store's own name for an untitled one). The whole file is read
// at open; the first read of an attribute reads all of its record set.
//
// A new table (create) takes attributes and instances, and writes of whole
// attributes, all kept until close, which writes the file: for a format of
// fixed columns each value right-aligned in its columns, otherwise values
// separated by blanks, after a header line of the attribute names (and
// blank lines for the rest of the format's header). A Pelagos horizon gets
// its own header, its grid from the store's properties (FIRST_INLINE,
// INLINE_INCREMENT, NUM_INLINES, INLINE_INTERVAL, the same for crosslines,
// X_ and Y_SURVEY_ORIGIN, DOMAIN, HORIZONNAME).

#include <list>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "attribute/KeyList.h"
#include "filestore/ascii/AsciiCollator.h"
#include "filestore/ascii/AsciiDataReader.h"
#include "filestore/ascii/AsciiFormat.h"
#include "filestore/disk/SingleSetDiskStore.h"
#include "foundation/vFilename.h"
#include "project/StoreDescription.h"

class AsciiDiskStore : public SingleSetDiskStore {
 public:
  AsciiDiskStore();
  explicit AsciiDiskStore(vHandle<Project> const& project);
  ~AsciiDiskStore() override;

  using DiskStore::open;
  // False, the store closed, when the file does not open. A file with a
  // NUL byte in its first 4096 bytes is not text: it raises.
  virtual bool open(StoreDescription const& description);
  virtual bool open(vFilename const& file);
  using DiskStore::create;
  // A new table in the format of the description's format spec, or a
  // generic one.
  virtual void create(StoreDescription const& description);
  virtual void create(vFilename const& file);
  void close() override;

  unsigned int getNInstances() const override;
  Attribute getAttribute(vUCString const& name) const override;
  // The record sets of the file, each named by its title, or by the
  // store's name when it has none; a new file has the one set.
  vHandle<AttributeSetList> getAttributeSetList() const override;
  void getAttributeSetList(AttributeSetList& names) const override;
  vLCString getAttributeSetName() const override;
  void openAttributeSet(vLCString const& name) override;
  void createAttributeSet(vLCString const& name, KeyList const& keys) override;
  vLCString getClass() const override;
  vLCString getSubClass() const override;
  AsciiFormat const& getFormat() const { return *m_format; }

  using DiskStore::read;
  void read(Attribute& attribute, unsigned int first, unsigned int last) const override;
  void read(Attribute& attribute, std::vector<unsigned int> const& instances) const override;

  void addAttribute(Attribute const& attribute) override;
  void addInstances(unsigned int count) override;
  void write(Attribute const& attribute, unsigned int first, unsigned int last) override;
  void write(Attribute const& attribute, std::vector<unsigned int> const& instances) override;
  void write(Attribute const& attribute, Attribute const& key, unsigned int firstGroup,
             unsigned int lastGroup) override;
  void write(Attribute const& attribute, KeyList const& keys) override;

 private:
  void myCheckWritable(char const* label) const;
  void myConstructPropertyList();
  void myReadHorizonHeader(std::string& horizonName);
  void myOpenSet(int set);
  void myDoBufferedWrites();
  void myFinishWrite(std::string const& text);
  std::string myRecordLine(unsigned int instance) const;
  std::string myHorizonHeader() const;

  std::string m_text;
  std::unique_ptr<AsciiFormat> m_format;
  std::unique_ptr<AsciiCollator> m_collator;
  mutable std::unique_ptr<AsciiDataReader> m_reader;
  unsigned int m_nInstances;
  bool m_isWriting;
  int m_set;
  std::map<vUCString, Attribute> m_buffered;
};

#endif

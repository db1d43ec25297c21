#ifndef FILESTORE_OFFLOAD_OFFLOADDISKSTORE_H
#define FILESTORE_OFFLOAD_OFFLOADDISKSTORE_H

// OffloadDiskStore: an offload set as a store. Opened on a data file, its
// one attribute set is that file; opened on a header file, each data file
// that the header lists is an attribute set, named by the file's root, and
// the first is open. Instances are the bins of the survey grid; the keys
// are INLINE and CROSSLINE. The store's properties are those of the open
// data file. Key and group reads come from DiskStore through the reads by
// instance number.

#include <list>
#include <vector>

#include "filestore/disk/DiskStore.h"
#include "filestore/offload/OffloadAttributeFile.h"
#include "filestore/offload/OffloadHeaderFile.h"
#include "project/StoreCreationOptions.h"
#include "project/StoreDescription.h"
#include "project/StoreOpenOptions.h"

class OffloadDiskStore : public DiskStore {
 public:
  OffloadDiskStore();
  explicit OffloadDiskStore(vHandle<Project> const& project);
  ~OffloadDiskStore() override;

  using DiskStore::open;
  virtual void open(StoreDescription const& description);
  virtual void open(vFilename const& file);
  vFilename getCurrentFilename() const;
  // By file name, with the traces' mute restored when the options ask.
  void open(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
            StoreOpenOptions const* options) override;
  // Traces of every data file opened from now on, and of the open one, from
  // time 0 with the mute zone as zeros.
  void setRestoreMute(bool restoreMute);
  // A new set: a header file named by the options and one data file per
  // offset beside it ("<root>_<k>.offload"), each an attribute set, with
  // the options' attributes, grid (first inline, inline increment, inlines,
  // first crossline, crossline increment, crosslines; inline and crossline
  // intervals) and compression. Writes go to the open set; close writes
  // the fold maps and the header file.
  using DiskStore::create;
  void create(vLCString const& name, vLCString const& className, vLCString const& subClass, KeyList const& keys,
              StoreCreationOptions const* options) override;
  void close() override;
  bool isOpen() const override { return m_isOpen; }
  vLCString getName() const override;
  unsigned int getNInstances() const override;
  Attribute getAttribute(vUCString const& name) const override;
  bool hasAttribute(vUCString const& name) const override;
  std::list<Attribute> getAttributeList() const override;
  void getAttributeList(std::list<Attribute>& attributes) const override;
  std::list<Attribute> getAttributeList(vUCString const& text, AttributeMatch::AttributeMatchType match) const override;
  vHandle<AttributeSetList> getAttributeSetList() const override;
  void getAttributeSetList(AttributeSetList& names) const override;
  vLCString getAttributeSetName() const override;
  void openAttributeSet(vLCString const& name) override;
  KeyList getKeyList() const override;
  unsigned int getNAttributes() const override;
  int getVersion() const override { return 1; }
  vLCString getClass() const override { return vLCString("seismic"); }
  vLCString getSubClass() const override { return vLCString("offloaddisk"); }
  void addAttribute(Attribute const& attribute) override;

  // By file name, for writing into the data files as they are: values of
  // existing attributes in any bin, new attributes, whole new inlines.
  using DiskStore::update;
  virtual void update(vFilename const& file);
  void update(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
              StoreOpenOptions const* options) override;

  // On a store created or opened for update only.
  void write(Attribute const& attribute, unsigned int first, unsigned int last) override;
  void write(Attribute const& attribute, std::vector<unsigned int> const& instances) override;
  void write(Attribute const& attribute, Attribute const& key, unsigned int firstGroup,
             unsigned int lastGroup) override;
  void write(Attribute const& attribute, KeyList const& keys) override;
  void addInstances(unsigned int count) override;

  using DiskStore::read;
  // Fatal unless every key tuple names one instance.
  void read(Attribute& attribute, KeyList const& keys) const override;
  void read(Attribute& attribute, unsigned int first, unsigned int last) const override;
  void read(Attribute& attribute, std::vector<unsigned int> const& instances) const override;
  // INLINE and CROSSLINE straight from the grid; others as DiskStore.
  void getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                         vUtlSort::SortOrder::SortOrderType order) const override;
  void getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const override;

  // The data file of the open attribute set.
  OffloadAttributeFile& getFile() const;

 private:
  void myOpenData(vFilename const& file);
  void myCheckOpen(char const* label) const;
  void myCheckWritable(char const* label) const;
  // After a write: the file's window and the group tables may be stale.
  void myWritten();
  void mySetupProperties();
  // The lines of a key in the order asked for, and the bins on each; false
  // for any other attribute.
  bool myGridGroups(Attribute& attribute, std::vector<unsigned int>* sizes,
                    vUtlSort::SortOrder::SortOrderType order) const;

  bool m_isOpen;
  bool m_created;
  bool m_restoreMute;
  bool m_update;
  std::vector<vHandle<OffloadAttributeFile> > m_createdFiles;
  vFilename m_fileName;
  std::vector<vFilename> m_dataFiles;
  vHandle<OffloadHeaderFile> m_header;
  vHandle<OffloadAttributeFile> m_file;
};

#endif

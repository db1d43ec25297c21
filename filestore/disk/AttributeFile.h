#ifndef FILESTORE_DISK_ATTRIBUTEFILE_H
#define FILESTORE_DISK_ATTRIBUTEFILE_H

// AttributeFile: one file that holds the attributes of a run of instances,
// record by record, as a store over such files reads it. A kind of file
// registers an example of itself with ExistingAttributeFile under its
// extension; makeNew() of the example then opens files of that kind.
//
// Instance numbers are 1-based and ranges inclusive, as in every store.
// Reads fill the attribute given, resizing it; its name says which
// attribute is read. Objects are used by one thread at a time.

#include <vector>

#include "attribute/Attribute.h"
#include "foundation/vFilename.h"
#include "foundation/vString.h"
#include "foundation/vUCString.h"

class AttributeSetBuffer;

class AttributeFile {
 public:
  // What travels with the opening of a file.
  class OpenOptions {
   public:
    OpenOptions() {}

    // Open for reading and writing rather than for reading alone.
    bool getUpdate() const { return m_update; }
    void setUpdate(bool update) { m_update = update; }
    // Offer the traces with their mute restored: the whole trace from time
    // 0 rather than what follows the mute.
    bool getRestoreMute() const { return m_restoreMute; }
    void setRestoreMute(bool restoreMute) { m_restoreMute = restoreMute; }

   private:
    bool m_update = false;
    bool m_restoreMute = false;
  };

  AttributeFile() {}
  virtual ~AttributeFile();

  // The name of the file.
  virtual vFilename getName() const = 0;
  // Where the attribute lies in a record, in the unit of the kind of file.
  virtual int getOffset(Attribute const& attribute) const = 0;
  // The attribute's instances to instances first to last of the file.
  virtual void writeRange(Attribute const& attribute, unsigned int first, unsigned int last) = 0;
  virtual void readRange(Attribute& attribute, unsigned int first, unsigned int last) = 0;
  // The same values as readRange, taken from what the file already holds
  // in memory where it can.
  virtual void extractRange(Attribute& attribute, unsigned int first, unsigned int last) = 0;
  // The attribute's instances to the listed instances, in list order.
  virtual void writeList(Attribute const& attribute, std::vector<unsigned int> const& instances) = 0;
  virtual void readList(Attribute& attribute, std::vector<unsigned int> const& instances) = 0;
  virtual unsigned int getNInstances() = 0;
  // Writes what is held back.
  virtual void flush() = 0;
  // A new object of this kind over the file named. shape describes the data
  // the caller means to reach; a kind of file may ignore it.
  virtual AttributeFile* makeNew(vFilename const& name, Attribute const& shape, OpenOptions options) = 0;
  // Removes the file named, of this kind.
  virtual void deleteFile(vFilename const& name) = 0;
  virtual bool hasAttribute(vUCString const& name) = 0;
  // The definition, without data.
  virtual Attribute getAttribute(vUCString const& name) = 0;
  virtual unsigned int getNAttributes() = 0;
  // Lays the buffer out as the file's records; true when it did.
  virtual bool prepareBuffer(AttributeSetBuffer& buffer) = 0;
  // Instances first to last into the buffer, which holds that many.
  virtual void readBufferRange(AttributeSetBuffer& buffer, unsigned int first, unsigned int last) = 0;
  // Bytes of the file.
  virtual long long getFileSize() = 0;
  // The extension under which the kind of file registers.
  virtual vString getRegistrationName() const = 0;

  virtual void setRestoreMute(bool restoreMute);
  virtual bool getRestoreMute() const;

 protected:
  AttributeFile(AttributeFile const&) = default;
  AttributeFile& operator=(AttributeFile const&) = default;

  bool restoreMute = false;
};

#endif

#ifndef FILESTORE_DISK_ATTRIBUTEFILETESTING_H
#define FILESTORE_DISK_ATTRIBUTEFILETESTING_H

// Test helper: an attribute file kept in memory, so that the users of the
// AttributeFile contract (the register of file kinds, the adaptor, the
// indexing table) are tested against a complete implementation of it.
//
// A MemoryVolume stands for the disk: files by full name, each a list of
// attributes (fixed length, records laid out in the order of the list) with
// all their instances. A MemoryAttributeFile opens one file of a volume.
// It works on its own copy of the content: writes reach the volume at
// flush(), as a file's buffered records reach the disk. Writing needs the
// update option. Failures are fatal messages labelled by the operation.

#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "attribute/AttributeHelper.h"
#include "attribute/AttributeSetBuffer.h"
#include "filestore/disk/AttributeFile.h"
#include "foundation/Message.h"

namespace disk_testing {

struct MemoryFileContent {
  unsigned int nInstances = 0;
  // Each holds all instances.
  std::vector<std::shared_ptr<Attribute> > attributes;
};

class MemoryVolume {
 public:
  // A file of n instances holding these attributes, all values zero;
  // replaces one of the same name.
  void makeFile(vFilename const& name, std::vector<Attribute> const& definitions, unsigned int n) {
    MemoryFileContent content;
    content.nInstances = n;
    for (Attribute const& d : definitions) {
      auto a = std::make_shared<Attribute>(d);
      a->resize(n);
      if (n > 0 && a->getDataType() != vSTRING) std::memset(a->getPointer(1), 0, static_cast<std::size_t>(a->getTotalNBytes()));
      content.attributes.push_back(a);
    }
    m_files[name.getFilename().c_str()] = content;
  }
  bool exists(vFilename const& name) const { return m_files.count(name.getFilename().c_str()) != 0; }
  MemoryFileContent const* find(vFilename const& name) const {
    auto it = m_files.find(name.getFilename().c_str());
    return it == m_files.end() ? nullptr : &it->second;
  }
  void store(vFilename const& name, MemoryFileContent const& content) { m_files[name.getFilename().c_str()] = content; }
  bool remove(vFilename const& name) { return m_files.erase(name.getFilename().c_str()) != 0; }

 private:
  std::map<std::string, MemoryFileContent> m_files;
};

class MemoryAttributeFile : public AttributeFile {
 public:
  // An example for the register: it opens files of the volume.
  MemoryAttributeFile(std::shared_ptr<MemoryVolume> const& volume, vString const& extension)
      : m_volume(volume), m_extension(extension) {}

  vFilename getName() const override { return m_name; }

  // Bytes from the start of a record.
  int getOffset(Attribute const& attribute) const override {
    int offset = 0;
    for (auto const& a : m_content.attributes) {
      if (a->getNameID() == attribute.getNameID()) return offset;
      offset += a->getNBytes();
    }
    myUnknown("MemoryAttributeFile::getOffset", attribute.getName());
  }

  void writeRange(Attribute const& attribute, unsigned int first, unsigned int last) override {
    char const* label = "MemoryAttributeFile::writeRange";
    myMustBeWritable(label);
    Attribute& stored = myFind(label, attribute.getName());
    myCheckRange(label, first, last);
    if (attribute.getNInstances() != last - first + 1)
      Message::fatal(label, 0, "%u instances given for %u places.", attribute.getNInstances(), last - first + 1);
    AttributeHelper::copyRange(attribute, 1, attribute.getNInstances(), stored, first);
  }

  void readRange(Attribute& attribute, unsigned int first, unsigned int last) override {
    char const* label = "MemoryAttributeFile::readRange";
    Attribute const& stored = myFind(label, attribute.getName());
    myCheckRange(label, first, last);
    attribute = stored;
    attribute.resize(last - first + 1);
    AttributeHelper::copyRange(stored, first, last, attribute, 1);
  }

  // Everything is in memory: the same as a read.
  void extractRange(Attribute& attribute, unsigned int first, unsigned int last) override {
    readRange(attribute, first, last);
  }

  void writeList(Attribute const& attribute, std::vector<unsigned int> const& instances) override {
    char const* label = "MemoryAttributeFile::writeList";
    myMustBeWritable(label);
    Attribute& stored = myFind(label, attribute.getName());
    myCheckList(label, instances);
    if (attribute.getNInstances() != instances.size())
      Message::fatal(label, 0, "%u instances given for %u places.", attribute.getNInstances(),
                     static_cast<unsigned int>(instances.size()));
    if (!instances.empty()) AttributeHelper::copy(attribute, 1u, stored, instances);
  }

  void readList(Attribute& attribute, std::vector<unsigned int> const& instances) override {
    char const* label = "MemoryAttributeFile::readList";
    Attribute const& stored = myFind(label, attribute.getName());
    myCheckList(label, instances);
    attribute = stored;
    attribute.resize(static_cast<unsigned int>(instances.size()));
    if (!instances.empty()) AttributeHelper::copy(stored, instances, attribute, 1u);
  }

  unsigned int getNInstances() override { return m_content.nInstances; }

  void flush() override {
    if (m_options.getUpdate()) m_volume->store(m_name, m_content);
  }

  AttributeFile* makeNew(vFilename const& name, Attribute const&, OpenOptions options) override {
    MemoryFileContent const* content = m_volume->find(name);
    if (content == nullptr) Message::fatal("MemoryAttributeFile::makeNew", 0, "File '%s' does not exist.", name.c_str());
    MemoryAttributeFile* file = new MemoryAttributeFile(m_volume, m_extension);
    file->m_name = name;
    file->m_options = options;
    file->setRestoreMute(options.getRestoreMute());
    // A deep copy: the volume changes only at flush().
    file->m_content.nInstances = content->nInstances;
    for (auto const& a : content->attributes) {
      auto copy = std::make_shared<Attribute>(*a);
      copy->copyData(*a);
      file->m_content.attributes.push_back(copy);
    }
    return file;
  }

  void deleteFile(vFilename const& name) override {
    if (!m_volume->remove(name))
      Message::fatal("MemoryAttributeFile::deleteFile", 0, "File '%s' does not exist.", name.c_str());
  }

  bool hasAttribute(vUCString const& name) override { return myLookUp(name) != nullptr; }

  Attribute getAttribute(vUCString const& name) override {
    return Attribute(myFind("MemoryAttributeFile::getAttribute", name));
  }

  unsigned int getNAttributes() override { return static_cast<unsigned int>(m_content.attributes.size()); }

  bool prepareBuffer(AttributeSetBuffer& buffer) override {
    buffer = AttributeSetBuffer();
    for (auto const& a : m_content.attributes) buffer.addAttribute(Attribute(*a));
    return true;
  }

  void readBufferRange(AttributeSetBuffer& buffer, unsigned int first, unsigned int last) override {
    for (Attribute const& definition : buffer.getAttributeList()) {
      Attribute data(definition);
      readRange(data, first, last);
      buffer.setAttributeAndData(data);
    }
  }

  long long getFileSize() override {
    long long recordBytes = 0;
    for (auto const& a : m_content.attributes) recordBytes += a->getNBytes();
    return recordBytes * m_content.nInstances;
  }

  vString getRegistrationName() const override { return m_extension; }

 private:
  Attribute* myLookUp(vUCString const& name) const {
    vUCStringTableData const* id = Attribute::getNameID(name);
    for (auto const& a : m_content.attributes)
      if (a->getNameID() == id) return a.get();
    return nullptr;
  }
  [[noreturn]] void myUnknown(char const* label, vUCString const& name) const {
    Message::fatal(label, 0, "Attribute %s is not in the AttributeFile %s.", name.c_str(), m_name.c_str());
  }
  Attribute& myFind(char const* label, vUCString const& name) const {
    Attribute* a = myLookUp(name);
    if (a == nullptr) myUnknown(label, name);
    return *a;
  }
  void myMustBeWritable(char const* label) const {
    if (!m_options.getUpdate()) Message::fatal(label, 0, "File '%s' is not open for update.", m_name.c_str());
  }
  void myCheckRange(char const* label, unsigned int first, unsigned int last) const {
    if (first == 0 || first > last || last > m_content.nInstances)
      Message::fatal(label, 0, "Instances %u to %u are not in the file '%s' of %u instances.", first, last,
                     m_name.c_str(), m_content.nInstances);
  }
  void myCheckList(char const* label, std::vector<unsigned int> const& instances) const {
    for (unsigned int i : instances)
      if (i == 0 || i > m_content.nInstances)
        Message::fatal(label, 0, "Instance %u is not in the file '%s' of %u instances.", i, m_name.c_str(),
                       m_content.nInstances);
  }

  std::shared_ptr<MemoryVolume> m_volume;
  vString m_extension;
  vFilename m_name;
  OpenOptions m_options;
  MemoryFileContent m_content;
};

}  // namespace disk_testing

#endif

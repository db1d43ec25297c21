#include "filestore/disk/ExistingAttributeFile.h"

#include "foundation/Message.h"

ExistingAttributeFile& ExistingAttributeFile::getInstance() {
  static ExistingAttributeFile instance;
  return instance;
}

void ExistingAttributeFile::registerExample(vString const& extension, AttributeFile* example) {
  if (example == nullptr)
    Message::fatal("ExistingAttributeFile::registerExample", 0, "Example for extension %s was null.",
                   extension.c_str());
  // Owned from here on, also when it is refused.
  vHandle<AttributeFile> owned(example);
  if (isRegistered(extension))
    Message::fatal("ExistingAttributeFile::registerExample", 0, "Extension %s is already registered.",
                   extension.c_str());
  m_examples[extension.c_str()] = owned;
}

bool ExistingAttributeFile::isRegistered(vString const& extension) const {
  return m_examples.find(extension.c_str()) != m_examples.end();
}

AttributeFile& ExistingAttributeFile::myExampleFor(char const* label, vFilename const& name) {
  auto found = m_examples.find(name.getExtension().c_str());
  if (found == m_examples.end())
    Message::fatal(label, 0, "Unknown file extension for file '%s'.", name.c_str());
  return *found->second;
}

vHandle<AttributeFile> ExistingAttributeFile::open(vFilename const& name, Attribute const& shape,
                                                   AttributeFile::OpenOptions options) {
  AttributeFile& example = myExampleFor("ExistingAttributeFile::open", name);
  return vHandle<AttributeFile>(example.makeNew(name, shape, options));
}

void ExistingAttributeFile::deleteFile(vFilename const& name) {
  myExampleFor("ExistingAttributeFile::deleteFile", name).deleteFile(name);
}

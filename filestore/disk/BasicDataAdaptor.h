#ifndef FILESTORE_DISK_BASICDATAADAPTOR_H
#define FILESTORE_DISK_BASICDATAADAPTOR_H

// BasicDataAdaptor: one face over an attribute set or an attribute file, for
// code that only needs to read attributes by range and ask what is there
// (the indexing tables). Each operation goes to whichever was given. The
// adaptor does not own what it is given.

#include "attribute/Attribute.h"
#include "foundation/vString.h"
#include "foundation/vUCString.h"

class AttributeFile;
class AttributeSet;

class BasicDataAdaptor {
 public:
  explicit BasicDataAdaptor(AttributeSet const* set);
  explicit BasicDataAdaptor(AttributeFile* file);

  unsigned int getNInstances() const;
  // Instances first to last of the attribute named.
  void read(Attribute& attribute, unsigned int first, unsigned int last) const;
  unsigned int getNAttributes() const;
  // The one given, or null.
  AttributeSet const* getAttributeSet() const { return m_set; }
  AttributeFile* getAttributeFile() const { return m_file; }
  bool hasAttribute(vUCString const& name) const;
  // The set's name, or the file's full name.
  vString getName() const;
  // The definition, without data.
  Attribute getAttribute(vUCString const& name) const;

 private:
  AttributeSet const* m_set;
  AttributeFile* m_file;
};

#endif

#include "project/AttributeSet.h"

#include "attribute/AttributeSetBuffer.h"
#include "project/Project.h"

AttributeSet::AttributeSet() {}

AttributeSet::AttributeSet(vHandle<Project> const& project) : m_project(project) {}

AttributeSet::~AttributeSet() {}

void AttributeSet::getKeyList(KeyList& keys) const { keys = getKeyList(); }

void AttributeSet::getAttributeList(std::list<Attribute>& attributes) const { attributes = getAttributeList(); }

bool AttributeSet::prepareBuffer(AttributeSetBuffer&) const { return false; }

// Attribute by attribute: a set that keeps its data in records of its own
// does better by moving records.
void AttributeSet::readBufferRange(AttributeSetBuffer& buffer, unsigned int first, unsigned int last) const {
  for (Attribute const& definition : buffer.getAttributeList()) {
    Attribute data(definition);
    read(data, first, last);
    buffer.setAttributeAndData(data);
  }
  // Fields of record buffers go back into their records.
  buffer.multiplex();
}

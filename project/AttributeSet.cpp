#include "project/AttributeSet.h"

#include "project/Project.h"

AttributeSet::AttributeSet() {}

AttributeSet::AttributeSet(vHandle<Project> const& project) : m_project(project) {}

AttributeSet::~AttributeSet() {}

void AttributeSet::getKeyList(KeyList& keys) const { keys = getKeyList(); }

void AttributeSet::getAttributeList(std::list<Attribute>& attributes) const { attributes = getAttributeList(); }

bool AttributeSet::prepareBuffer(AttributeSetBuffer&) const { return false; }

// PENDING(record buffers): the loop over the buffer's attributes.
void AttributeSet::readBufferRange(AttributeSetBuffer&, unsigned int, unsigned int) const {}

// The checks of CapiAttributeSet, each with its message.

#include <algorithm>

#include "filestore/memory/CapiAttributeSet.h"
#include "foundation/Message.h"
#include "foundation/vUtl.h"

void CapiAttributeSet::myMustBeOpen(char const* label) const {
  if (!isOpen()) Message::fatal(label, 0, "AttributeSet is not open.");
}

void CapiAttributeSet::myMustNotBeOpen(char const* label) const {
  if (isOpen()) Message::fatal(label, 0, "AttributeSet is already open as '%s'.", doGetName().c_str());
}

void CapiAttributeSet::myMustBeModifiable(char const* label) const {
  myMustBeOpen(label);
  if (!m_isWriteable)
    Message::fatal(label, 0, "AttributeSet '%s' is not open for modification.", doGetName().c_str());
}

void CapiAttributeSet::myMustHaveAttribute(char const* label, vUCString const& name) const {
  myMustBeOpen(label);
  if (!doHasAttribute(name))
    Message::fatal(label, 0, "Attribute %s is not in the AttributeSet %s.", name.c_str(), doGetName().c_str());
}

void CapiAttributeSet::myMustNotHaveAttribute(char const* label, vUCString const& name) const {
  if (doHasAttribute(name))
    Message::fatal(label, 0, "The AttributeSet %s already has an Attribute called %s.", doGetName().c_str(),
                   name.c_str());
}

void CapiAttributeSet::myCheckNameAndClass(char const* label, vLCString const& name, vLCString const& className,
                                           vLCString const& subClass) const {
  myMustNotBeOpen("CapiAttributeSet::myCheckNameAndClass()");
  if (name.isBlank()) Message::fatal(label, 0, "A blank AttributeSet name is not allowed.");
  if (className.isBlank() && !subClass.isBlank())
    Message::fatal(label, 0, "For AttributeSet '%s': A subClass of '%s' cannot be specified without also giving a class.",
                   name.c_str(), subClass.c_str());
}

void CapiAttributeSet::myCheckFirstLast(unsigned int first, unsigned int last, unsigned int nInstances) const {
  char const* const label = "CapiAttributeSet::myCheckFirstLast()";
  if (first == 0) Message::fatal(label, 0, "first instance must be >0, yours was %lld", static_cast<long long>(first));
  if (first > last)
    Message::fatal(label, 0, "first instance %lld must be <= last instance %lld.", static_cast<long long>(first),
                   static_cast<long long>(last));
  if (last > nInstances)
    Message::fatal(label, 0, "last instance %lld must be <= number of instances %lld.", static_cast<long long>(last),
                   static_cast<long long>(nInstances));
}

void CapiAttributeSet::myCheckRange(char const* label, Attribute const& attribute, unsigned int first,
                                    unsigned int last) const {
  myMustHaveAttribute(label, attribute.getName());
  unsigned int const n = doGetNInstances();
  myCheckFirstLast(first, last == 0 ? n : last, n);
}

void CapiAttributeSet::myCheckGroups(Attribute const& attribute, unsigned int first, unsigned int last) const {
  char const* const label = "CapiAttributeSet::myCheckGroups";
  if (attribute.getDataType() != vINT32)
    Message::fatal(label, 0, "Can only function with Int32 groups at the moment. Your Attribute %s is of type %s.",
                   attribute.getName().c_str(), vUtl::dataTypeName(attribute.getDataType()).c_str());
  if (attribute.getLength() != 1)
    Message::fatal(label, 0, "Can only function with Attributes of length=1. Your Attribute %s has a length of %d.",
                   attribute.getName().c_str(), attribute.getLength());
  myCheckFirstLast(first, last, attribute.getNInstances());
}

void CapiAttributeSet::myCheckList(char const* label, Attribute const& attribute,
                                   std::vector<unsigned int> const& list) const {
  if (list.empty()) return;
  unsigned int const largest = *std::max_element(list.begin(), list.end());
  unsigned int const n = doGetNInstances();
  if (largest > n)
    Message::fatal(label, 0, "Instance numbers must be <%lld, list for '%s' contained %lld.",
                   static_cast<long long>(n) + 1, attribute.getName().c_str(), static_cast<long long>(largest));
}

void CapiAttributeSet::myMustNotHaveZero(char const* label, Attribute const& attribute,
                                         std::vector<unsigned int> const& list) const {
  if (std::find(list.begin(), list.end(), 0u) != list.end())
    Message::fatal(label, 0, "Attribute '%s': the vInstanceList has a zero in it, coont read from instance 0.",
                   attribute.getName().c_str());
}

void CapiAttributeSet::myKeysCheck(KeyList const& keys) const {
  char const* const label = "CapiAttributeSet::myKeysCheck()";
  if (keys.getNKeys() == 0) Message::fatal(label, 0, "KeyList must have at lease one key Attribute.");
  long long const nValues = keys.begin()->getNInstances();
  for (Attribute const& key : keys) {
    if (!doHasAttribute(key.getName()))
      Message::fatal(label, 0, "Attribute %s of the KeyList is not a memeber of the AttributeSet %s.",
                     key.getName().c_str(), doGetName().c_str());
    if (key.getNInstances() == 0)
      Message::fatal(label, 0, "Attribute %s of the KeyList does not have any values with it.", key.getName().c_str());
    if (static_cast<long long>(key.getNInstances()) != nValues)
      Message::fatal(label, 0, "Attribute %s of the KeyList does not have %lld values.", key.getName().c_str(), nValues);
  }
}

bool CapiAttributeSet::myIsListARange(std::vector<unsigned int> const& list) {
  if (list.empty()) return false;
  if (static_cast<unsigned long long>(list.back()) != static_cast<unsigned long long>(list.front()) + list.size() - 1)
    return false;
  for (std::size_t i = 1; i < list.size(); ++i)
    if (list[i] != list[i - 1] + 1) return false;
  return true;
}

// Reads and writes of CapiAttributeSet: the checks, then the derived
// class's work.

#include <algorithm>

#include "filestore/memory/CapiAttributeSet.h"
#include "foundation/Message.h"

namespace {

long long countFound(std::vector<unsigned int> const& list) {
  return std::count_if(list.begin(), list.end(), [](unsigned int i) { return i != 0; });
}

}  // namespace

// --- reads ---------------------------------------------------------------------------------

void CapiAttributeSet::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  myCheckRange("CapiAttributeSet::read(range)", attribute, first, last);
  doReadRange(attribute, first, last);
}

void CapiAttributeSet::read(Attribute& attribute, std::vector<unsigned int> const& instances) const {
  char const* const label = "CapiAttributeSet::read(byList)";
  myMustHaveAttribute(label, attribute.getName());
  myMustNotHaveZero(label, attribute, instances);
  myCheckAndReadList(label, attribute, instances);
}

void CapiAttributeSet::read(Attribute& attribute, Attribute const& groups, unsigned int firstGroup,
                            unsigned int lastGroup) const {
  char const* const label = "CapiAttributeSet::read(byGroups)";
  myMustHaveAttribute(label, attribute.getName());
  myMustHaveAttribute(label, groups.getName());
  if (&attribute == &groups)
    Message::fatal(label, 0, "The address of the Attrbiute '%s' being read, cannot be the same as the groups Attribute.",
                   attribute.getName().c_str());
  std::vector<unsigned int> list;
  myTable(label).locateByGroups(groups, firstGroup, lastGroup, list);
  myCheckAndReadList(label, attribute, list);
}

void CapiAttributeSet::read(Attribute& attribute, KeyList const& keys) const {
  char const* const label = "CapiAttributeSet::read(byKeys)";
  myMustHaveAttribute(label, attribute.getName());
  myKeysCheck(keys);
  std::vector<unsigned int> list;
  myTable(label).locateByKeys(keys, list);
  long long const wanted = keys.begin()->getNInstances();
  long long const found = countFound(list);
  if (found != wanted || static_cast<long long>(list.size()) != wanted)
    Message::fatal(label, 0, "Key list has duplicate or missing values in AttributeSet %s. Wanted %lld value(s) but found %lld.",
                   doGetName().c_str(), wanted, found);
  myCheckAndReadList(label, attribute, list);
}

void CapiAttributeSet::myCheckAndReadList(char const* label, Attribute& attribute,
                                          std::vector<unsigned int> const& list) const {
  if (list.empty()) {
    attribute.resize(0);
    return;
  }
  // The largest of a run is its last: the check costs nothing there.
  myCheckList(label, attribute, list);
  if (myIsListARange(list))
    doReadRange(attribute, list.front(), list.back());
  else
    doReadList(attribute, list);
}

// --- writes -------------------------------------------------------------------------------

void CapiAttributeSet::write(Attribute const& attribute, unsigned int first, unsigned int last) {
  char const* const label = "CapiAttributeSet::write(range)";
  myCheckRange(label, attribute, first, last);
  myMustBeModifiable(label);
  long long const places = static_cast<long long>(last) - static_cast<long long>(first) + 1;
  if (static_cast<long long>(attribute.getNInstances()) != places)
    Message::fatal(label, 0, "The Attribute '%s' to be written has %lld instances, but last-first+1 is %lld.",
                   attribute.getName().c_str(), static_cast<long long>(attribute.getNInstances()), places);
  doWriteRange(attribute, first, last);
  myDataChanged();
}

void CapiAttributeSet::write(Attribute const& attribute, std::vector<unsigned int> const& instances) {
  char const* const label = "CapiAttributeSet::write(list)";
  myMustHaveAttribute(label, attribute.getName());
  myMustBeModifiable(label);
  if (attribute.getNInstances() != instances.size())
    Message::fatal(label, 0, "The Attribute '%s' to be written has %lld instances, but last-first+1 is %lld.",
                   attribute.getName().c_str(), static_cast<long long>(attribute.getNInstances()),
                   static_cast<long long>(instances.size()));
  myMustNotHaveZero(label, attribute, instances);
  myCheckAndWriteList(label, attribute, instances);
}

void CapiAttributeSet::write(Attribute const& attribute, Attribute const& groups, unsigned int firstGroup,
                             unsigned int lastGroup) {
  char const* const label = "CapiAttributeSet::write(byGroups)";
  myMustHaveAttribute(label, attribute.getName());
  myMustHaveAttribute(label, groups.getName());
  myMustBeModifiable(label);
  if (&attribute == &groups)
    Message::fatal(label, 0, "The address of the Attrbiute '%s' being read, cannot be the same as the groups Attribute.",
                   attribute.getName().c_str());
  doWriteGroups(attribute, groups, firstGroup, lastGroup);
}

void CapiAttributeSet::write(Attribute const& attribute, KeyList const& keys) {
  char const* const label = "CapiAttributeSet::write(byKeys)";
  myMustHaveAttribute(label, attribute.getName());
  myMustBeModifiable(label);
  myKeysCheck(keys);
  doWriteKeys(attribute, keys);
}

void CapiAttributeSet::doWriteGroups(Attribute const& attribute, Attribute const& groups, unsigned int firstGroup,
                                     unsigned int lastGroup) {
  char const* const label = "CapiAttributeSet::write(byGroups)";
  std::vector<unsigned int> list;
  myTable(label).locateByGroups(groups, firstGroup, lastGroup, list);
  if (list.size() != attribute.getNInstances())
    Message::fatal(label, 0,
                   "The number of instances (%d) with groups %s does not match the number of instances (%lld) for "
                   "Attribute %s being written.",
                   static_cast<int>(list.size()), groups.getName().c_str(),
                   static_cast<long long>(attribute.getNInstances()), attribute.getName().c_str());
  myCheckAndWriteList(label, attribute, list);
}

void CapiAttributeSet::doWriteKeys(Attribute const& attribute, KeyList const& keys) {
  char const* const label = "CapiAttributeSet::write(byKeys)";
  std::vector<unsigned int> list;
  myTable(label).locateByKeys(keys, list);
  long long const n = attribute.getNInstances();
  if (static_cast<long long>(list.size()) != n)
    Message::fatal(label, 0,
                   "The number of instances (%lld) with keys does not match the number of instances (%lld) for "
                   "Attribute %s being written.",
                   static_cast<long long>(list.size()), n, attribute.getName().c_str());
  long long const wanted = keys.begin()->getNInstances();
  long long const found = countFound(list);
  if (wanted != n || found != wanted)
    Message::fatal(label, 0, "Key list has duplicate or missing values in AttributeSet %s. Wanted %lld value(s) but found %lld.",
                   doGetName().c_str(), wanted, found);
  myCheckAndWriteList(label, attribute, list);
}

void CapiAttributeSet::myCheckAndWriteList(char const* label, Attribute const& attribute,
                                           std::vector<unsigned int> const& list) {
  if (list.empty()) return;
  myCheckList(label, attribute, list);
  doWriteList(attribute, list);
  myDataChanged();
}

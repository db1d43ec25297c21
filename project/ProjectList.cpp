#include "project/ProjectList.h"

#include <algorithm>

void ProjectList::sort() { std::stable_sort(m_entries.begin(), m_entries.end()); }

ProjectList::iterator ProjectList::find(vLCString const& name) {
  return std::find_if(m_entries.begin(), m_entries.end(),
                      [&name](ProjectListEntry const& e) { return e.getName() == name; });
}

ProjectList::const_iterator ProjectList::find(vLCString const& name) const {
  return std::find_if(m_entries.begin(), m_entries.end(),
                      [&name](ProjectListEntry const& e) { return e.getName() == name; });
}

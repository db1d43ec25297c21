#ifndef DECORATOR_GROUPSIZEINFILLTEMPLATE_H
#define DECORATOR_GROUPSIZEINFILLTEMPLATE_H

// GroupSizeInfillTemplate<T, K>: the completed grid of one attribute (of
// value type T) within the groups of a primary key (of type K). Each group
// holds its (value, instance) pairs sorted by value; an instance number of
// 0 marks a value that the grid invents. The groups run in ascending order
// of the key, and the instances of the view in group order.

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

class InfillTemplate {
 public:
  // One instance of the view: its group, its grid value, and the instance
  // below it (0 when invented).
  struct Entry {
    double group;
    double value;
    unsigned int instance;
  };

  virtual ~InfillTemplate() {}
  virtual unsigned int getNInstances() const = 0;
  virtual unsigned int getNGroups() const = 0;
  // viewInstance counts from 1.
  virtual Entry getEntry(unsigned int viewInstance) const = 0;
  virtual void getGroupsAndSizes(std::vector<double>& groups, std::vector<unsigned int>& sizes) const = 0;
};

template <class T, class K>
class GroupSizeInfillTemplate : public InfillTemplate {
 public:
  typedef std::vector<std::pair<T, unsigned int> > Pairs;
  typedef std::map<K, Pairs> Groups;

  Groups& groups() { return m_groups; }

  // Sorts each group and brings the totals and the index up to date.
  void finish() {
    m_starts.clear();
    m_keys.clear();
    m_total = 0;
    for (auto& group : m_groups) {
      std::sort(
          group.second.begin(), group.second.end(),
          [](std::pair<T, unsigned int> const& a, std::pair<T, unsigned int> const& b) { return a.first < b.first; });
      m_starts.push_back(m_total);
      m_keys.push_back(&group);
      m_total += static_cast<unsigned int>(group.second.size());
    }
    m_nGroups = static_cast<unsigned int>(m_groups.size());
  }

  unsigned int getNInstances() const override { return m_total; }
  unsigned int getNGroups() const override { return m_nGroups; }

  Entry getEntry(unsigned int viewInstance) const override {
    std::size_t const g = static_cast<std::size_t>(
                              std::upper_bound(m_starts.begin(), m_starts.end(), viewInstance - 1) - m_starts.begin()) -
                          1;
    auto const& pair = m_keys[g]->second[viewInstance - 1 - m_starts[g]];
    return Entry{static_cast<double>(m_keys[g]->first), static_cast<double>(pair.first), pair.second};
  }

  void getGroupsAndSizes(std::vector<double>& groups, std::vector<unsigned int>& sizes) const override {
    groups.clear();
    sizes.clear();
    for (auto const& group : m_groups) {
      groups.push_back(static_cast<double>(group.first));
      sizes.push_back(static_cast<unsigned int>(group.second.size()));
    }
  }

 private:
  Groups m_groups;
  unsigned int m_nGroups = 0;
  unsigned int m_total = 0;
  std::vector<unsigned int> m_starts;
  std::vector<typename Groups::value_type const*> m_keys;
};

#endif

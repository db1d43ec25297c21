#ifndef REMOTE_SELECTSET_H
#define REMOTE_SELECTSET_H

// SelectSet: descriptors to wait on with select(), for reading or for
// writing as the constructor says. Only the set of that kind is allocated.

#include <sys/select.h>

#include <memory>

#include "remote/CommChan.h"

class SelectSet {
 public:
  explicit SelectSet(CommChan::WaitType type);
  ~SelectSet();

  // Descriptors outside 0..FD_SETSIZE-1 are raised, as select cannot take
  // them.
  void add(int descriptor);
  // True when a descriptor is ready within timeout seconds; a negative
  // timeout waits without limit. An empty set is raised.
  bool waitOn(float timeout);
  bool isSet(int descriptor) const;

 private:
  SelectSet(SelectSet const&) = delete;
  SelectSet& operator=(SelectSet const&) = delete;

  std::unique_ptr<fd_set> m_read;
  std::unique_ptr<fd_set> m_write;
  int m_highest;
};

#endif

#ifndef FOUNDATION_VHANDLE_H
#define FOUNDATION_VHANDLE_H

// vHandle<T>: a reference-counted owning handle.
//
// All handles of one object share a vHandleData record holding a master
// count, a slave count, the object, its deletion policy and, for a
// multi-threaded handle only, a mutex. Masters own: the last master deletes
// the object. Slaves only observe: they keep the record alive and see a null
// object once the masters are gone. A copy of any handle is a master.
// Handles compare by object identity.
//
// A single-threaded handle (the default everywhere) never touches a mutex;
// the multi-threaded flag is copied into each handle so that the fast path
// does not even read the record to decide.

#include "foundation/vHandleHelper.h"

// The record shared by all handles of one object. It is not a template, so
// that a handle of a base and a handle of a derived type (vHandle_cast) share
// one record of one type; the object's own type is kept in m_destroy, chosen
// when the first handle was made, so the object is always released as what
// it was created as.
class vHandleData {
 public:
  typedef void (*Destroy)(void* object, int policy);

  vHandleData(void* object, int policy, bool multiThreaded, Destroy destroy)
      : m_masters(1), m_slaves(0), m_object(object), m_policy(policy),
        m_multiThreaded(multiThreaded), m_mutex(multiThreaded ? vHandleHelper::newMutex() : nullptr),
        m_destroy(destroy) {}
  ~vHandleData() {
    if (m_mutex) vHandleHelper::deleteMutex(m_mutex);
  }
  vHandleData(vHandleData const&) = delete;
  vHandleData& operator=(vHandleData const&) = delete;

  void addReference(bool slave) {
    if (m_multiThreaded) vHandleHelper::lockMutex(m_mutex);
    if (slave)
      ++m_slaves;
    else
      ++m_masters;
    if (m_multiThreaded) vHandleHelper::unlockMutex(m_mutex);
  }

  // A slave release touches the slave count only; the last master releases
  // the object. Returns what is left: zero when neither masters nor slaves
  // remain and the record itself can go.
  int decrementCount(bool slave) {
    if (slave) {
      --m_slaves;
    } else if (--m_masters == 0) {
      myDeleteData();
    }
    return m_masters + m_slaves;
  }

  void myDeleteData() {
    void* p = m_object;
    m_object = nullptr;
    if (p) m_destroy(p, m_policy);
  }

  int m_masters;
  int m_slaves;
  void* m_object;
  int m_policy;
  bool m_multiThreaded;
  vMutex* m_mutex;
  Destroy m_destroy;
};

// Releases an object of type T by its deletion policy; an unknown policy
// behaves as DeleteObject.
template <class T>
void vHandleDestroy(void* object, int policy) {
  T* p = static_cast<T*>(object);
  switch (policy) {
    case vHandleEnum::DeleteArray:
      delete[] p;
      break;
    case vHandleEnum::FreeC:
      vHandleHelper::freeDataC(object);
      break;
    case vHandleEnum::FreeUT:
      vHandleHelper::freeDataUT(object);
      break;
    default:
      delete p;
      break;
  }
}

template <class T>
class vHandle {
 public:
  vHandle(T* object = nullptr, vHandleEnum::DeletionPolicy policy = vHandleEnum::DeleteObject,
                   vHandleEnum::ThreadedPolicy threaded = vHandleEnum::SingleThreaded)
      : m_data(new vHandleData(const_cast<void*>(static_cast<void const*>(object)), policy,
                               threaded == vHandleEnum::MultiThreaded, &vHandleDestroy<T>)),
        m_isSlave(false),
        m_multiThreaded(threaded == vHandleEnum::MultiThreaded) {}

  vHandle(vHandle const& other) : m_data(other.m_data), m_isSlave(false), m_multiThreaded(other.m_data->m_multiThreaded) {
    m_data->addReference(false);
  }

  // A slave of other's object when slave is true, otherwise an ordinary copy.
  vHandle(vHandle const& other, bool slave)
      : m_data(other.m_data), m_isSlave(slave), m_multiThreaded(other.m_data->m_multiThreaded) {
    m_data->addReference(slave);
  }

  // A slave gives back only its slave reference: it never releases the
  // object, but the record must not outlive the last handle that sees it.
  // A destructor cannot pass an exception on: a release that fails (the
  // reserved deletion policy) has been reported by then, and the object is
  // left as it is rather than the process terminated.
  ~vHandle() {
    try {
      myRelease();
    } catch (...) {
    }
  }

  vHandle& operator=(vHandle const& other) {
    // Same object, or the very same record (which also covers an empty
    // handle assigned to itself): nothing changes.
    if (m_data == other.m_data) return *this;
    if (m_data->m_object != nullptr && m_data->m_object == other.m_data->m_object) return *this;
    myReleaseAndAttach(other.m_data);
    return *this;
  }

  T* operator->() const { return get(); }
  T& operator*() const { return *get(); }

  // The object; a null object is a fatal error.
  T* get() const {
    T* p = static_cast<T*>(m_data->m_object);
    if (p == nullptr)
      vHandleHelper::throwit("vHandle::get()",
                             m_isSlave ? "A slave vHandle is trying to get a NULL pointer" : "Trying to get a NULL pointer",
                             447, "vHandle");
    return p;
  }

  // The object or null, without complaint.
  T* pointer() const { return static_cast<T*>(m_data->m_object); }

  bool isEmpty() const { return m_data->m_object == nullptr; }
  bool isMaster() const { return !m_isSlave; }
  bool isSlave() const { return m_isSlave; }
  bool isMultiThreaded() const { return m_multiThreaded; }
  int getMasterCount() const { return m_data->m_masters; }
  int getSlaveCount() const { return m_data->m_slaves; }

  // Drops this master's share and leaves the handle empty with a record of
  // its own. A slave cannot release.
  void release() {
    if (m_isSlave) vHandleHelper::throwit("vHandle::release", "A slave cannot release a vHandle!", 0, "vHandle");
    vHandleData* empty = new vHandleData(nullptr, vHandleEnum::DeleteObject, m_multiThreaded, &vHandleDestroy<T>);
    empty->m_masters = 0;  // myAttach counts this handle
    myReleaseAndAttach(empty);
  }

  bool operator==(vHandle const& o) const { return m_data->m_object == o.m_data->m_object; }
  bool operator!=(vHandle const& o) const { return m_data->m_object != o.m_data->m_object; }
  bool operator<(vHandle const& o) const { return m_data->m_object < o.m_data->m_object; }

 private:
  template <class To, class From>
  friend vHandle<To>& vHandle_cast(vHandle<To>& to, vHandle<From> const& from);

  // Gives back this handle's reference and leaves m_data null. A deletion
  // that throws (the reserved policy) still frees a record nobody sees.
  void myRelease() {
    vHandleData* d = m_data;
    m_data = nullptr;
    int remaining;
    if (m_multiThreaded) {
      vMutex* m = d->m_mutex;
      vHandleHelper::lockMutex(m);
      try {
        remaining = d->decrementCount(m_isSlave);
      } catch (...) {
        vHandleHelper::unlockMutex(m);
        if (d->m_masters + d->m_slaves == 0) delete d;
        throw;
      }
      vHandleHelper::unlockMutex(m);
    } else {
      try {
        remaining = d->decrementCount(m_isSlave);
      } catch (...) {
        if (d->m_masters + d->m_slaves == 0) delete d;
        throw;
      }
    }
    if (remaining == 0) delete d;
  }

  // Releases and then becomes a master of record, also when the release
  // throws.
  void myReleaseAndAttach(vHandleData* record) {
    try {
      myRelease();
    } catch (...) {
      myAttach(record);
      throw;
    }
    myAttach(record);
  }

  void myAttach(vHandleData* record) {
    m_data = record;
    m_isSlave = false;
    m_multiThreaded = record->m_multiThreaded;
    record->addReference(false);
  }

  vHandleData* m_data;
  bool m_isSlave;
  bool m_multiThreaded;
};

// Makes `to` a master of from's object seen as To, sharing from's record.
// An empty source gives an empty handle. A source that is not a To throws
// UtlExcept directly. The record is shared, so the object must sit at the
// same address as its To part (single inheritance); a cast that would move the
// pointer is refused the same way.
template <class To, class From>
vHandle<To>& vHandle_cast(vHandle<To>& to, vHandle<From> const& from) {
  to = vHandle<To>();
  if (from.isEmpty()) return to;
  From* source = from.pointer();
  To* target = dynamic_cast<To*>(source);
  if (target == nullptr || static_cast<void const*>(target) != static_cast<void const*>(source))
    vHandleHelper::throwExcept("vHandle::assign", "Could not convert class with dynamic_cast.", 590, "vHandle");
  to.myReleaseAndAttach(from.m_data);
  return to;
}

// The same, returning a new handle.
template <class To, class From>
vHandle<To> vHandle_cast(vHandle<From> const& from) {
  vHandle<To> to;
  vHandle_cast(to, from);
  return to;
}

#endif

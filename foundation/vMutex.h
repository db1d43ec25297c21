#ifndef FOUNDATION_VMUTEX_H
#define FOUNDATION_VMUTEX_H

// vMutex: a POSIX mutex created at most once, on demand unless asked for at
// construction. Lock policy 0 is recursive, 1 normal, anything else
// error-checking. lock(), tryLock() and unlock() keep the POSIX result as the
// last error and return true on success.
// Creation on demand is not itself locked: a mutex that threads will share
// must be created at construction (createNow) before they start.

class vMutex {
 public:
  enum LockPolicy { Recursive = 0, Normal = 1, ErrorCheck = 2 };

  explicit vMutex(bool createNow = false, LockPolicy policy = Recursive);
  virtual ~vMutex();
  vMutex(vMutex const&) = delete;
  vMutex& operator=(vMutex const&) = delete;

  // Creates the mutex with the given policy unless it already exists.
  virtual void initialize(LockPolicy policy);
  virtual bool lock();
  virtual bool tryLock();
  // Up to n blocking attempts (5 when n is 0); true at the first success.
  virtual bool spinLock(unsigned int n);
  virtual bool unlock();
  virtual bool hasInitialized() const;
  virtual int getLastError() const;
  virtual LockPolicy getLockPolicy() const;
  virtual bool isLocked() const;

 private:
  struct Data;
  void myCreateMutex();

  Data* m_data;
  int m_lastError;
  int m_policy;
  bool m_locked;
};

// Holds a lock for the life of a scope.
class vMutexLocker {
 public:
  explicit vMutexLocker(vMutex& m) : m_mutex(m) { m_mutex.lock(); }
  ~vMutexLocker() { m_mutex.unlock(); }
  vMutexLocker(vMutexLocker const&) = delete;
  vMutexLocker& operator=(vMutexLocker const&) = delete;

 private:
  vMutex& m_mutex;
};

#endif

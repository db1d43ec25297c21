#include "foundation/vMutex.h"

#include <pthread.h>

#include <new>

#include "foundation/Message.h"

struct vMutex::Data {
  pthread_mutex_t mutex;
  pthread_mutexattr_t attributes;
};

vMutex::vMutex(bool createNow, LockPolicy policy) : m_data(nullptr), m_lastError(0), m_policy(policy), m_locked(false) {
  if (createNow) myCreateMutex();
}

vMutex::~vMutex() {
  if (m_data) {
    pthread_mutex_destroy(&m_data->mutex);
    pthread_mutexattr_destroy(&m_data->attributes);
    delete m_data;
  }
}

void vMutex::myCreateMutex() {
  if (m_data) return;
  Data* d = new (std::nothrow) Data;
  if (!d) Message::fatal("vMutex::myCreateMutex", 0, "Could not allocate the memory for the mutex data!");
  int rc = pthread_mutexattr_init(&d->attributes);
  if (rc != 0) {
    delete d;
    Message::fatal("vMutex::myCreateMutex", 0, "Error %d while calling pthread_mutexattr_init!", rc);
  }
  int type;
  switch (m_policy) {
    case Normal:
      type = PTHREAD_MUTEX_NORMAL;
      break;
    case Recursive:
      type = PTHREAD_MUTEX_RECURSIVE;
      break;
    default:
      type = PTHREAD_MUTEX_ERRORCHECK;
      break;
  }
  rc = pthread_mutexattr_settype(&d->attributes, type);
  if (rc != 0) {
    pthread_mutexattr_destroy(&d->attributes);
    delete d;
    Message::fatal("vMutex::myCreateMutex", 0, "Could not set the type of mutex, error %d!", rc);
  }
  rc = pthread_mutex_init(&d->mutex, &d->attributes);
  if (rc != 0) {
    pthread_mutexattr_destroy(&d->attributes);
    delete d;
    Message::fatal("vMutex::myCreateMutex", 0, "Could not create the mutex, error %d!", rc);
  }
  m_data = d;
}

void vMutex::initialize(LockPolicy policy) {
  if (m_data) return;
  m_policy = policy;
  myCreateMutex();
}

bool vMutex::lock() {
  if (!m_data) myCreateMutex();
  m_lastError = pthread_mutex_lock(&m_data->mutex);
  if (m_lastError == 0) m_locked = true;
  return m_lastError == 0;
}

bool vMutex::tryLock() {
  if (!m_data) myCreateMutex();
  m_lastError = pthread_mutex_trylock(&m_data->mutex);
  if (m_lastError == 0) m_locked = true;
  return m_lastError == 0;
}

bool vMutex::spinLock(unsigned int n) {
  if (n == 0) n = 5;
  for (unsigned int i = 0; i < n; ++i)
    if (lock()) return true;
  return false;
}

bool vMutex::unlock() {
  if (!m_data) Message::fatal("vMutex::unlock", 0, "Calling unlock on a non-allocated mutex!");
  m_lastError = pthread_mutex_unlock(&m_data->mutex);
  if (m_lastError == 0) m_locked = false;
  return m_lastError == 0;
}

bool vMutex::hasInitialized() const { return m_data != nullptr; }
int vMutex::getLastError() const { return m_lastError; }
vMutex::LockPolicy vMutex::getLockPolicy() const { return static_cast<LockPolicy>(m_policy); }
bool vMutex::isLocked() const { return m_locked; }

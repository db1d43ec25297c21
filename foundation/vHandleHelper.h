#ifndef FOUNDATION_VHANDLEHELPER_H
#define FOUNDATION_VHANDLEHELPER_H

// vHandleHelper: the out-of-line parts of vHandle<T>, kept out of the
// template so that the header needs neither Message nor UtlExcept nor the
// pthread headers.

class vMutex;

struct vHandleEnum {
  // How the last master releases the object.
  enum DeletionPolicy {
    DeleteObject = 1,  // delete, through the virtual destructor (the default)
    DeleteArray = 2,   // delete[] of an array-new
    FreeC = 3,         // free(), see vHandleHelper::freeDataC
    FreeUT = 4         // reserved, see vHandleHelper::freeDataUT
  };
  enum ThreadedPolicy {
    SingleThreaded = 1,  // counts are not protected (the default)
    MultiThreaded = 2    // counts are changed under a mutex of the record
  };
};

class vHandleHelper {
 public:
  // Reports through Message::fatal(method, 0, reason): the normal fatal path.
  [[noreturn]] static void throwit(char const* method, char const* reason, int line, char const* file);
  // Throws UtlExcept directly, bypassing the handlers.
  [[noreturn]] static void throwExcept(char const* method, char const* reason, int line, char const* file);
  // An unlocked recursive mutex, already created.
  static vMutex* newMutex();
  static void deleteMutex(vMutex* m);
  static void lockMutex(vMutex* m);
  static void unlockMutex(vMutex* m);
  static void freeDataC(void* p);
  [[noreturn]] static void freeDataUT(void* p);
};

#endif

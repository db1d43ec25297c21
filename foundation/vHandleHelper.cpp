#include "foundation/vHandleHelper.h"

#include <cstdlib>

#include "foundation/Message.h"
#include "foundation/UtlExcept.h"
#include "foundation/vMutex.h"

void vHandleHelper::throwit(char const* method, char const* reason, int /*line*/, char const* /*file*/) {
  Message::fatal(method, 0, "%s", reason);
}

void vHandleHelper::throwExcept(char const* method, char const* reason, int line, char const* file) {
  throw UtlExcept(reason, method, line, file);
}

vMutex* vHandleHelper::newMutex() { return new vMutex(true, vMutex::Recursive); }

void vHandleHelper::deleteMutex(vMutex* m) { delete m; }

void vHandleHelper::lockMutex(vMutex* m) {
  if (m) m->lock();
}

void vHandleHelper::unlockMutex(vMutex* m) {
  if (m) m->unlock();
}

void vHandleHelper::freeDataC(void* p) { std::free(p); }

void vHandleHelper::freeDataUT(void*) { Message::fatal("vHandleHelper::freeDataUT", 0, "Not implemented yet!"); }

#ifndef DATABASE_KVS_KVSHELPER_H
#define DATABASE_KVS_KVSHELPER_H

// KvsHelper: gives back the blocks the library hands to its caller, the
// project names of KvsListProjectSite and the general record of
// KvsBaseGetInfo. They come from the library's counted allocation, so only
// these release them (and kvsAllocated tells whether one was kept).

#include "database/kvs/Kvs.h"

namespace kvs {

class KvsHelper {
 public:
  static void free(char** list);
  static void free(KvsBaseInfo* info);
};

}  // namespace kvs

#endif

#include "database/kvs/KvsHelper.h"

namespace kvs {

// Each is one block: the names and the datasets sit behind their headers.
void KvsHelper::free(char** list) { KvsFree(list); }

void KvsHelper::free(KvsBaseInfo* info) { KvsFree(info); }

}  // namespace kvs

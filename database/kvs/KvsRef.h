#pragma once
// The by-reference forms of the Kvs calls, for callers that pass every
// argument by address (Fortran and the like). Each is the by-value call
// with its arguments copied. Texts carry no NUL: their lengths come, in
// the order the texts appear in the call, from kvsStrLen, and trailing
// blanks are dropped. A resource list is pairs of a long* code and its
// value (a long* for numbers, the address of the text or data otherwise),
// ended by a null pointer or a code of 0. kvsget_ puts numbers through the
// long* given and copies texts blank-padded into the buffer given, of the
// length kvsStrLen holds for it.
#include "database/kvs/Kvs.h"

extern "C" {

extern int kvsStrLen[64];

int kvsinit_();
int kvsexit_();
int kvsabort_();
int kvserror_();
kvs::KvsObject kvsroot_();
kvs::KvsObject kvscreate_(kvs::KvsObject* parent, ...);
kvs::KvsObject kvsopen_(kvs::KvsObject* session, ...);
int kvsset_(kvs::KvsObject* o, ...);
int kvsget_(kvs::KvsObject* o, ...);
kvs::KvsObject kvsfind_(kvs::KvsObject* o, const char* name);
kvs::KvsObject kvsfirst_(kvs::KvsObject* o);
kvs::KvsObject kvslast_(kvs::KvsObject* o);
kvs::KvsObject kvsnext_(kvs::KvsObject* o);
kvs::KvsObject kvsprev_(kvs::KvsObject* o);
kvs::KvsObject kvsparent_(kvs::KvsObject* o);
long kvsread_(kvs::KvsObject* o, long* n);
long kvswrite_(kvs::KvsObject* o, long* n);
int kvslseek_(kvs::KvsObject* o, long* row);
int kvsflush_(kvs::KvsObject* o);
int kvsclose_(kvs::KvsObject* o);
int kvsremove_(kvs::KvsObject* o);
int kvsreplace_(kvs::KvsObject* o);
int kvsinsert_(kvs::KvsObject* o);
int kvsdelete_(kvs::KvsObject* o);
int kvsselect_(kvs::KvsObject* o);
int kvstest_(kvs::KvsObject* o);
int kvsprotect_(kvs::KvsObject* o);
int kvsrelease_(kvs::KvsObject* o);
int kvscheck_(kvs::KvsObject* o);
int kvsconnect_(kvs::KvsObject* o);
int kvsdisconnect_(kvs::KvsObject* o);
int kvsclean_(kvs::KvsObject* o);
int kvsfill_(kvs::KvsObject* o);
int kvsgroup_(kvs::KvsObject* o);
int kvsrestore_(kvs::KvsObject* o);
int kvsreorgtable_(kvs::KvsObject* o);
int kvscompacttable_(kvs::KvsObject* o);
kvs::KvsObject kvscreateattrifneed_(kvs::KvsObject* table, const char* name);
int kvsdefquery_(kvs::KvsObject* dataset, const char* domain, const char* text);
int kvsundefquery_(kvs::KvsObject* dataset);
int kvsiskey_(kvs::KvsObject* array);
long kvslocate_(kvs::KvsObject* array, const void* value);
int kvsverifykeys_(kvs::KvsObject* table);
// The table's domain, or the type of a table or dataset, blank-padded
// into out of length kvsStrLen[0].
int kvsdomain_(kvs::KvsObject* table, char* out);
int kvstype_(kvs::KvsObject* o, char* out);
int kvsdump_(const char* path);
int kvsload_(const char* path);
long kvsdtatt_(const char* name);
long kvsdttyp_(const char* name);
long kvsdttab_(const char* name);
long kvsdtdom_(const char* name);
}

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
// The host blank-padded into a buffer of length kvsStrLen[0].
int kvsgetoraclehost_(char* host, long* port);
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
// The reverse look-ups put the name blank-padded into out of length
// kvsStrLen[0] and give 0, or KvsErrDict for an unknown code.
int kvsdtattname_(long* code, char* out);
int kvsdttypname_(long* code, char* out);
int kvsdttabname_(long* code, char* out);
int kvsdtdomname_(long* code, char* out);
int kvsdtfmtname_(long* code, char* out);
int kvsdtfamname_(long* code, char* out);
int kvsdtdimname_(long* code, char* out);
int kvsdtparname_(long* code, char* out);
int kvsdtattasciifmt_(long* att, char* out);
int kvsdtisatt_(const char* name);
int kvsdtistyp_(const char* name);
int kvsdtistab_(const char* name);
int kvsdtisdom_(const char* name);
int kvsdtissubclass_(long* tab, long* sup);
int kvsdtiskey_(long* tab, long* att);
int kvsdtismember_(long* tab, long* att);
long kvsdtkeys2dom_(long* key1, long* key2);
long kvsdtkey1_(long* tab);
long kvsdtkey2_(long* tab);
long kvsdtnbkeys_(long* tab);
long kvsdtattfam_(long* att);
long kvsdtattfmt_(long* att);
long kvsdtattdim_(long* att);
long kvsdtattsup_(long* att);
int kvsconvert_(const void* in, unsigned int* fromFmt, void* out, unsigned int* toFmt, long* n);
void* kvsalloc_(long* n, const char* object);
void* kvsrealloc_(void** p, long* n, const char* object);
void kvsfree_(void** p);
// Texts out (project, site, server) blank-padded into buffers whose
// lengths follow the input text's in kvsStrLen.
int kvsfindproject_(const char* name, char* out);
int kvsextractsiteserver_(const char* name, char* site, char* server);
int kvslistprojectsite_(const char* site, const char* pattern, int* n, char*** list);
int kvsbasegetinfo_(const char* project, const char* site, const char* server, kvs::KvsBaseInfo** info);
}

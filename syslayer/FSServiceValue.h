#ifndef SYSLAYER_FSSERVICEVALUE_H
#define SYSLAYER_FSSERVICEVALUE_H

// The by-value forms of the record file service: FS_xxx calls fs_xxx_ and
// returns its status (or its one result); results that are not the status
// come back through pointers. Included by FSService.h.

#include <cstdint>

#include "syslayer/FSService.h"

inline int FS_open(char const* name, int options, int recordLength, int64_t size, int area, int* id) {
  int status;
  fs_open_(name, options, recordLength, size, area, *id, status);
  return status;
}
inline int FS_close(int id) {
  int status;
  fs_close_(id, status);
  return status;
}
inline int FS_read(int id, void* buffer, int count, int* got) {
  int status;
  fs_read_(id, buffer, count, *got, status);
  return status;
}
inline int FS_write(int id, void const* buffer, int count, int* put) {
  int status;
  fs_write_(id, buffer, count, *put, status);
  return status;
}
inline int FS_partialr(int id, int offset, int length, int64_t first, int64_t last, void* buffer, int* got) {
  int status;
  fs_partialr_(id, offset, length, first, last, buffer, *got, status);
  return status;
}
inline int FS_seekio(int id, int64_t position) {
  int status;
  fs_seekio_(id, position, status);
  return status;
}
inline int FS_getinfo(int id, int item, int64_t* value) {
  int status;
  fs_getinfo_(id, item, *value, status);
  return status;
}
inline int FS_setinfo(int id, int item, int64_t value) {
  int status;
  fs_setinfo_(id, item, value, status);
  return status;
}
inline int FS_lockit(int id) {
  int status;
  fs_lockit_(id, status);
  return status;
}
inline int FS_unlockit(int id) {
  int status;
  fs_unlockit_(id, status);
  return status;
}
inline int FS_opent(char const* name, int options, int* id) {
  int status;
  fs_opent_(name, options, *id, status);
  return status;
}
inline int FS_readt(int id, void* buffer, int maxLength, int blockSize, int* got) {
  int status;
  fs_readt_(id, buffer, maxLength, blockSize, *got, status);
  return status;
}
inline int FS_readti(int id, void* buffer, int maxLength, int* got, int* blockLength) {
  int status;
  fs_readti_(id, buffer, maxLength, *got, *blockLength, status);
  return status;
}
inline int FS_alock(int id, int type, int seconds) {
  int status;
  fs_alock_(id, type, seconds, status);
  return status;
}
inline int FS_chgvol(int id, int volume) {
  int status;
  fs_chgvol_(id, volume, status);
  return status;
}
inline int FS_isnearline(char const* name) {
  int flag;
  fs_isnearline_(name, flag);
  return flag;
}
inline int FS_writet(int id, void const* buffer, int count) {
  int status;
  fs_writet_(id, buffer, count, status);
  return status;
}
inline int FS_closet(int id) {
  int status;
  fs_closet_(id, status);
  return status;
}
inline int FS_exist(char const* name) {
  int exists, status;
  fs_exist_(name, exists, status);
  return exists;
}
inline int FS_mkdir(char const* name, int parents) {
  int status;
  fs_mkdir_(name, parents, status);
  return status;
}
inline int FS_rm(int type, char const* name) {
  int status;
  fs_rm_(type, name, status);
  return status;
}
inline int FS_mv(int type, char const* from, char const* to) {
  int status;
  fs_mv_(type, from, to, status);
  return status;
}
inline int FS_cp(int type, char const* from, char const* to) {
  int status;
  fs_cp_(type, from, to, status);
  return status;
}
inline int FS_fstat(int id, FsStat* info) {
  int status;
  fs_fstat_(id, *info, status);
  return status;
}
inline int FS_trunc(int id) {
  int status;
  fs_trunc_(id, status);
  return status;
}
inline int FS_setsize(int id, int64_t size) {
  int status;
  fs_setsize_(id, size, status);
  return status;
}
inline int FS_zeroex(int id, int64_t size) {
  int status;
  fs_zeroex_(id, size, status);
  return status;
}
inline int FS_rsize(int id, int* recordLength) {
  int status;
  fs_rsize_(id, *recordLength, status);
  return status;
}
inline int FS_bpos(int id, int64_t* bytePosition) {
  int status;
  fs_bpos_(id, *bytePosition, status);
  return status;
}
inline int FS_waitio(int id) {
  int status;
  fs_waitio_(id, status);
  return status;
}
inline int FS_testlock(int id, int type, int* flag) {
  int status;
  fs_testlock_(id, type, *flag, status);
  return status;
}
inline int FS_chkid(int id, char const* routine) {
  int const length = routine ? static_cast<int>(__builtin_strlen(routine)) : 0;
  return fs_chkid_(id, routine, length);
}
inline int FS_openvlr(char const* name, int* id) {
  int status;
  fs_openvlr_(name, *id, status);
  return status;
}
inline int FS_readvlr(int id, void* buffer, int maxLength, int* got) {
  int status;
  fs_readvlr_(id, buffer, maxLength, *got, status);
  return status;
}
inline int FS_writevlr(int id, void const* buffer, int count) {
  int status;
  fs_writevlr_(id, buffer, count, status);
  return status;
}
inline int FS_closevlr(int id) {
  int status;
  fs_closevlr_(id, status);
  return status;
}
inline int FS_bansi(char const* kind, char const* value, char* record) {
  int status;
  fs_bansi_(kind, value, record, status);
  return status;
}
inline int FS_ransi(char const* record, int length, char* kind, char* value, int valueLength) {
  int status;
  fs_ransi_(record, length, kind, value, valueLength, status);
  return status;
}
inline int FS_stat(char const* name, FsStat* info) {
  int status;
  fs_stat_(name, *info, status);
  return status;
}
inline int FS_lstat(char const* name, FsStat* info) {
  int status;
  fs_lstat_(name, *info, status);
  return status;
}
inline int FS_lsinfo(char const* name, int* kind, int* mode, int* sizeKB) {
  int status;
  fs_lsinfo_(name, *kind, *mode, *sizeKB, status);
  return status;
}
inline int FS_getspace(int area, int sizeMB, char* dir, int dirLength) {
  int status;
  fs_getspace_(area, sizeMB, dir, dirLength, status);
  return status;
}
inline int FS_islocked(char const* name, int type, int* flag) {
  int status;
  fs_islocked_(name, type, *flag, status);
  return status;
}
inline int FS_totspace(char const* directory, int64_t* totalMB, int64_t* freeMB) {
  int status;
  fs_totspace_(directory, *totalMB, *freeMB, status);
  return status;
}
inline int FS_checkdir(char const* directory) {
  int status;
  fs_checkdir_(directory, status);
  return status;
}
inline int FS_isremote(char const* name) {
  int flag;
  fs_isremote_(name, flag);
  return flag;
}
inline int FS_chkname(char const* name) {
  int status;
  fs_chkname_(name, status);
  return status;
}
inline int FS_chkopts(int options) {
  int status;
  fs_chkopts_(options, status);
  return status;
}
inline int FS_getcluster(char const* host, char* cluster, int clusterLength) {
  int status;
  fs_getcluster_(host, cluster, clusterLength, status);
  return status;
}
inline void FS_decode(int options, char* text, int length) { fs_decode_(options, text, length); }
inline void FS_errmsg(int status, char* text, int length) { fs_errmsg_(status, text, length); }
inline int FS_rrc(char* text, int length) {
  int status;
  fs_rrc_(status, text, length);
  return status;
}
[[noreturn]] inline void FS_terminate(int status, char const* name) { fs_terminate_(status, name); }
inline void FS_tlock() { fs_tlock_(); }
inline void FS_tunlock() { fs_tunlock_(); }
inline void FS_threadsafe(int flag) { fs_threadsafe_(flag); }
inline void FS_sfailmode(int mode) { fs_sfailmode_(mode); }
inline void FS_testfault(char const* name, int kind, int64_t limit) { fs_testfault_(name, kind, limit); }

#endif

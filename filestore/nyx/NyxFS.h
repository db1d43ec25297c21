#ifndef FILESTORE_NYX_NYXFS_H
#define FILESTORE_NYX_NYXFS_H

// NYXFS: the POSIX file routines of like names (open, read, write, lseek,
// close, fstat) on the record file service, for the Nyx reading code that
// was written against them. Files are byte-addressed; flags and whence
// take the POSIX values (O_RDONLY, O_RDWR, O_CREAT, O_TRUNC; SEEK_SET,
// SEEK_CUR, SEEK_END). Each gives -1 on failure, and NYXFSerrno() then the
// service's status and NYXFSerror() its text.

#include <sys/stat.h>
#include <sys/types.h>

int NYXFSopen2(char const* path, int flags);
int NYXFSopen3(char const* path, int flags, mode_t mode);
long NYXFSread(int fd, void* buffer, unsigned long count);
long NYXFSwrite(int fd, void const* buffer, unsigned long count);
long long NYXFSlseek(int fd, long long offset, int whence);
int NYXFSclose(int fd);
int NYXFSfstat(int fd, struct stat* info);
int NYXFSerrno();
char const* NYXFSerror();

#endif

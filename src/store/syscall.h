// The system calls of the store, through one table of pointers: a test can fail, count or kill at the N-th.
// And the files of pairs: one descriptor per file per process, because closing any descriptor of a file would
// drop all the process's locks on it. Locks themselves: shared/iolock.cpp.
#pragma once
#include <cstddef>
#include <cstdint>
#include <sys/stat.h>
#include <sys/types.h>

namespace zg {

struct IXSYSCALLS {
    int (*open)(const char*, int, mode_t);
    int (*close)(int);
    ssize_t (*pread)(int, void*, size_t, off_t);
    ssize_t (*pwrite)(int, const void*, size_t, off_t);
    int (*ftruncate)(int, off_t);
    int (*fstat)(int, struct stat*);
    int (*unlink)(const char*);
};
extern IXSYSCALLS IXSYS;

// Read up to n bytes at a place: the number got, less than n only at the end of the file; -1 on an error.
ssize_t IXSYSLEES(int fd, void* doel, size_t n, int64_t plaats);
// Write n bytes at a place, all of them: 1, or 0 with errno set (ENOSPC when the file takes no more).
int IXSYSSCHRIJF(int fd, const void* bron, size_t n, int64_t plaats);

// Open a file of a pair; vlaggen as for open (O_CLOEXEC is added), bits 0660 for a new file. A file that the
// process has open already gives the same descriptor, and O_TRUNC then empties it. -1 with errno set.
int IXBESTANDOPEN(const char* pad, int vlaggen);
void IXBESTANDDICHT(int fd);
int64_t IXBESTANDGROOTTE(int fd); // -1 on an error
// Does a handle of this process hold the header lock of this index from open to close? Whoever takes and releases
// that lock too would take it from the handle.
void IXBESTANDVAST(int fd, bool vast);
bool IXBESTANDVAST(int fd);

} // namespace zg

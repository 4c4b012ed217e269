// The system calls by which the order files change, as one table of pointers: a test replaces a row to fail
// or die at the n-th call. Everything that writes under order/ goes through it.
#pragma once
#include <cstddef>
#include <cstdint>
#include <sys/types.h>

namespace zg {

struct ordsysteem {
    int (*open)(const char* pad, int vlaggen, mode_t mode);
    ssize_t (*write)(int fd, const void* buf, size_t n);
    ssize_t (*pwrite)(int fd, const void* buf, size_t n, off_t plaats);
    int (*ftruncate)(int fd, off_t lengte);
    int (*fsync)(int fd);
    int (*rename)(const char* van, const char* naar);
    int (*unlink)(const char* pad);
    int (*close)(int fd);
};
extern ordsysteem ORDSYS;

// All n bytes, at the descriptor's place or at `plaats`; a short write is gone on with until it is refused.
// False with errno set.
bool ordsys_schrijf(int fd, const void* buf, size_t n);
bool ordsys_schrijf_op(int fd, const void* buf, size_t n, int64_t plaats);
// Up to n bytes from a place: the number read, less only at the end of the file; -1 with errno set.
ssize_t ordsys_lees_op(int fd, void* buf, size_t n, int64_t plaats);
// Size of an open file, -1 on failure.
int64_t ordsys_omvang(int fd);

} // namespace zg

// The system calls by which files are opened, written and locked, as one table of pointers: a test replaces a
// row to refuse, count or die at the n-th call. Every file that the package writes goes through it. Over the
// table: whole reads and writes, which go on after a signal and a short answer, and new files with the mode
// and group that a directory in several hands needs.
#pragma once
#include <cstddef>
#include <cstdint>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <sys/types.h>

namespace zg {

struct SYSCALLS {
    int (*open)(const char* pad, int vlaggen, mode_t mode);
    int (*close)(int fd);
    ssize_t (*read)(int fd, void* buf, size_t n);
    ssize_t (*write)(int fd, const void* buf, size_t n);
    ssize_t (*pread)(int fd, void* buf, size_t n, off_t plaats);
    ssize_t (*pwrite)(int fd, const void* buf, size_t n, off_t plaats);
    int (*ftruncate)(int fd, off_t lengte);
    int (*ruimte)(int fd, off_t plaats,
                  off_t n); // on the disk for n bytes there; the length stays. 0, or -1 with errno
    int (*fsync)(int fd);
    int (*fstat)(int fd, struct stat* st);
    int (*fchmod)(int fd, mode_t mode);
    int (*fchown)(int fd, uid_t eigenaar, gid_t groep);
    int (*rename)(const char* van, const char* naar);
    int (*link)(const char* van, const char* naar);
    int (*unlink)(const char* pad);
    int (*mkdir)(const char* pad, mode_t mode);
    int (*rmdir)(const char* pad);
    int (*slot)(int fd, int opdracht, struct flock* gebied); // fcntl with a lock
    int (*naam)(const char* pad); // a name looked up, and nothing asked of it: 0, or -1 with errno
    // No calls, but at the place of them: n bytes of a mapped file, which stand at `van`, are read; or they are put at
    // `naar`, eight by eight, where it is a whole number of these.
    void (*kaartlees)(int fd, void* naar, const void* van, size_t n, off_t plaats);
    void (*kaartzet)(int fd, void* naar, const void* van, size_t n, off_t plaats);
};
extern SYSCALLS SYS;

// Up to n bytes from a place: the number read, less only at the end of the file; -1 with errno set.
ssize_t SYSLEES(int fd, void* buf, size_t n, int64_t plaats);
// Bytes of one write at most: a file that grew in larger pieces is slower to work in ever after.
inline constexpr size_t SYSSTUK = 64 * 1024;
// All n bytes, at the descriptor's place or at `plaats`, a piece at a time; a short write is gone on with until it is refused.
// False with errno set, ENOSPC when the file takes no more; some of the bytes may stand then.
bool SYSSCHRIJF(int fd, const void* buf, size_t n);
bool SYSSCHRIJFOP(int fd, const void* buf, size_t n, int64_t plaats);
// The same over bytes that stand: a refused write puts the old ones back and cuts what was added. Whether that went
// well is not told; false with the errno of the write.
bool SYSVERVANG(int fd, const void* buf, size_t n, int64_t plaats);
// The path of an open file from the root, as the system knows it; empty when it has none.
std::string SYSFDPAD(int fd);
// Size of an open file, -1 with errno set.
int64_t SYSOMVANG(int fd);

// Open a file that may be made here; O_CREAT and O_CLOEXEC are added to `vlaggen`. One that did not exist gets
// mode 0660 whatever the umask, and the group of its directory where the user may give it; one that existed
// keeps what it has. The descriptor, or -1 with errno set.
int SYSNIEUW(const char* pad, int vlaggen);
// Give an open new file mode, owner and group of the file at `pad`, whose place it is going to take, as far as
// the user may; when there is none, those that SYSNIEUW gives there. False with errno set when a call failed for
// another reason than that the user may not, or the file system can't.
bool SYSEVENALS(int fd, const char* pad);
// Make a directory for several hands: the group of the directory that it is made in, and its rights of reading,
// writing and passing on the group (setgid), whatever the umask; the maker's own are whole. False with errno set
// when there is none then.
bool SYSNIEUWEMAP(const char* pad);

} // namespace zg

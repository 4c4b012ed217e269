// IOLOCK and IOFLOCK, the two lock primitives; every lock that the program takes goes through one of them.
// Two traps of these locks: they belong to the process, so it never sees its own; and closing any descriptor
// of a file drops all its locks on that file. So a file that is locked is opened once and kept open.
// A lock that another has is an answer, and who asked may wait for it. A lock that can't be had at all (no room in the
// system's table, a file system without locks, a server that has gone) would be waited for without end, so it stops the
// program with a report.
#include "shared/files.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "shared/teksten.h"
#include "term/scherm.h"
#include <cerrno>
#include <unistd.h>

namespace zg {
namespace {

// False: another has it. Giving one back, or a descriptor that is none, is never a reason to stop.
bool doe(int fd, int opdracht, struct flock* slot) {
    while (SYS.slot(fd, opdracht, slot) < 0) {
        const int fout = errno;
        if (fout == EINTR)
            continue;
        if (fout == EACCES || fout == EAGAIN || fd < 0 || slot->l_type == F_UNLCK)
            return false;
        STOPREDEN(fout);
        SCRFATAL(TXT(T_GEEN_SLOT), IOFDNAAM(fd).c_str(), fout);
    }
    return true;
}

struct flock gebied(short soort, int64_t start, int64_t lengte) {
    struct flock slot {};
    slot.l_type = soort;
    slot.l_whence = SEEK_SET;
    slot.l_start = start;
    slot.l_len = lengte;
    return slot;
}

bool zet(int fd, short soort, int64_t start, int64_t lengte) {
    struct flock slot = gebied(soort, start, lengte);
    return doe(fd, F_SETLK, &slot);
}

bool vrij(int fd, int64_t start, int64_t lengte) {
    struct flock slot = gebied(F_WRLCK, start, lengte);
    return doe(fd, F_GETLK, &slot) && slot.l_type == F_UNLCK;
}

void toon_bezet() {
    if (!SCHERM.bestaat || SCHERM.dicht || SCHERM.aantal >= VENSTERS) {
        usleep(100'000);
        return;
    }
    WINOPEN1(SCHERM.lines - 1, 1, 1, SCHERM.cols);
    SCRPUT(A_WAARDE, 1, 1, "%s", TXT(T_IN_GEBRUIK));
    SCRFLUSH(1);
    WINCLOSE();
}

} // namespace

int IOLOCK(char letter, int fd, int64_t start, int64_t lengte) {
    switch (letter) {
    case 'S':
        // Read lock first, then the question whether a write lock would fit: so two that try at the same
        // moment may both be refused, but never both succeed.
        if (!zet(fd, F_RDLCK, start, lengte))
            return 0;
        if (vrij(fd, start, lengte))
            return 1;
        zet(fd, F_UNLCK, start, lengte);
        return 0;
    case 'E':
        return zet(fd, F_WRLCK, start, lengte);
    case 'T':
        return vrij(fd, start, lengte);
    case 'U':
        return zet(fd, F_UNLCK, start, lengte);
    default:
        return 0;
    }
}

int64_t IOLOCKPID(int fd, int64_t start, int64_t lengte) {
    struct flock slot = gebied(F_WRLCK, start, lengte);
    if (!doe(fd, F_GETLK, &slot) || slot.l_type == F_UNLCK)
        return 0;
    return slot.l_pid > 0 ? slot.l_pid : -1;
}

int IOLOCKERF(int fd) {
    struct flock slot = gebied(F_WRLCK, 0, 0);
    while (SYS.slot(fd, F_OFD_SETLK, &slot) < 0) {
        if (errno == EACCES)
            errno = EAGAIN;
        if (errno != EINTR)
            return 0;
    }
    return 1;
}

int IOFLOCK(int fd, int commando, int64_t lengte) {
    if (lengte < 1 || (commando != 3 && commando != 4 && commando != 13 && commando != 14))
        return 0;
    if (commando == 4 || commando == 14)
        lseek(fd, 0, SEEK_END);
    struct flock slot = gebied(commando >= 13 ? F_UNLCK : F_WRLCK, 0, lengte);
    slot.l_whence = SEEK_CUR;
    while (SYS.slot(fd, F_SETLK, &slot) < 0) {
        if (commando >= 13 || (errno != EACCES && errno != EAGAIN && errno != EINTR))
            return 0; // not a refusal: it would never come free
        if (errno != EINTR)
            toon_bezet();
    }
    return 1;
}

} // namespace zg

// File helpers: tests on paths, temporary names, copy and move, scrambled texts. Directory scans are in
// mapscan.cpp, locks in iolock.cpp.
#include "shared/files.h"
#include "shared/gedeeld.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "shared/teksten.h"
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <optional>
#include <sys/statvfs.h>
#include <unistd.h>
#include <vector>

namespace zg {
namespace {

constexpr int64_t SLOTLENGTE = 2147483646;

std::optional<std::string> hier; // the working directory, when it has been asked

int niets() {
    return 0;
}
int64_t seconden() {
    return time(nullptr);
}

bool zelfde_bestand(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool kopieer(int van, int naar) {
    static char buffer[32768];
    for (;;) {
        ssize_t n = SYS.read(van, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return n == 0;
        if (!SYSSCHRIJF(naar, buffer, static_cast<size_t>(n)))
            return false;
    }
}

// The path with its links resolved; its last part alone need not exist.
std::string volledig(const std::string& pad) {
    if (char* vol = realpath(pad.c_str(), nullptr)) {
        std::string uit = vol;
        free(vol);
        return uit;
    }
    return pad;
}

// Is the path there? Where the disk or the network doesn't say, nobody may go on as if it weren't.
bool staat_er(const char* pad, struct stat* st) {
    if (stat(pad, st) == 0)
        return true;
    const int fout = errno;
    for (const int weg : {EIO, ENOTCONN, ESTALE, EBADFD, ETIMEDOUT, EHOSTDOWN, EREMOTEIO})
        if (fout == weg) {
            STOPREDEN(fout);
            SCRFATAL(TXT(T_NIET_GELEZEN), IOBASENAME(pad), fout);
        }
    return false;
}

} // namespace

int IOTMPSLOT;
int (*IXCOMMITHOOK)() = niets;
int64_t (*SCRAMBLEKLOK)() = seconden;

int IOEXISTS(const char* pad) {
    struct stat st;
    return staat_er(pad, &st);
}

int IOISDIR(const char* pad) {
    struct stat st;
    return staat_er(pad, &st) && S_ISDIR(st.st_mode);
}

int64_t IOSIZE(const char* pad) {
    struct stat st;
    return staat_er(pad, &st) ? st.st_size : -1;
}

int IOUNLINK(const char* pad) {
    return SYS.unlink(pad) == 0 || errno == ENOENT;
}

int IOCHDIR(const char* pad) {
    if (chdir(pad) != 0)
        return 0;
    hier.reset();
    return 1;
}

const std::string& IOHIER() {
    if (!hier) {
        char* p = getcwd(nullptr, 0);
        hier = p ? p : "";
        free(p);
    }
    return *hier;
}

const char* IOTMPNAM(const char* map, const char* prefix) {
    static char eerste = 'A', tweede = 'A';
    static int nummer = -1;
    static std::string pad;
    if (nummer < 0)
        nummer = static_cast<int>(getpid() % 100);
    const bool van_slot = IOTMPSLOT > 0 && IOGEDEELD();
    if (van_slot)
        nummer = IOTMPSLOT % 100;
    std::string stam = map && *map ? std::string(map) + "/" : std::string();
    stam.append(prefix ? prefix : "", prefix ? strnlen(prefix, 4) : 0);
    for (int poging = 0; poging < 26 * 26 * (van_slot ? 1 : 100); poging++) {
        if (++tweede > 'Z') {
            tweede = 'A';
            if (++eerste > 'Z') {
                eerste = 'A';
                nummer = van_slot ? nummer : (nummer + 1) % 100;
            }
        }
        char staart[8];
        snprintf(staart, sizeof staart, "%c%c%02d", eerste, tweede, nummer);
        pad = stam + staart;
        int fd = SYSNIEUW(pad.c_str(), O_RDWR | O_EXCL);
        if (fd >= 0) {
            SYS.close(fd);
            SYS.unlink(pad.c_str());
            return pad.c_str();
        }
        if (errno != EEXIST)
            break;
    }
    pad.clear();
    return pad.c_str();
}

int IOCOPY(const char* van, const char* naar, int hoe) {
    bool op_slot = true;
    int bron = SYS.open(van, O_RDWR | O_CLOEXEC, 0);
    if (bron < 0) {
        op_slot = false;
        bron = SYS.open(van, O_RDONLY | O_CLOEXEC, 0);
    }
    struct stat a, b;
    if (bron < 0)
        return 0;
    // A directory opens and then can't be read: the target would be gone for nothing.
    if (SYS.fstat(bron, &a) < 0 || S_ISDIR(a.st_mode) || (stat(naar, &b) == 0 && zelfde_bestand(a, b))) {
        SYS.close(bron);
        return 0;
    }
    if (op_slot && !IOFLOCK(bron, 3, SLOTLENGTE)) {
        SYS.close(bron);
        return 0;
    }
    bool goed = false;
    // Cut only once the lock is held: another may be at work in the target.
    int doel = SYSNIEUW(naar, O_WRONLY | (hoe < 0 ? O_EXCL : hoe > 0 ? O_APPEND : 0));
    if (doel >= 0) {
        int64_t plaats = hoe > 0 ? lseek(doel, 0, SEEK_END) : 0;
        goed = IOFLOCK(doel, 3, SLOTLENGTE - plaats) && (hoe != 0 || SYS.ftruncate(doel, 0) == 0) &&
               kopieer(bron, doel);
        IXCOMMITHOOK();
        lseek(doel, plaats, SEEK_SET);
        IOFLOCK(doel, 13, SLOTLENGTE - plaats);
        goed = SYS.close(doel) == 0 && goed;
        if (!goed && plaats == 0)
            SYS.unlink(naar);
    }
    lseek(bron, 0, SEEK_SET);
    if (op_slot)
        IOFLOCK(bron, 13, SLOTLENGTE);
    SYS.close(bron);
    return goed;
}

int IOMOVE(const char* van_, const char* naar_, int overschrijf) {
    std::string van = van_, naar = naar_; // either may be the static name of IOTMPNAM
    struct stat a, b;
    if (stat(van.c_str(), &a) < 0)
        return 0;
    if (overschrijf) {
        if (lstat(naar.c_str(), &b) == 0 && zelfde_bestand(a, b))
            // Two names of one file, which rename leaves both; or one name, and then all is done.
            return volledig(van) == volledig(naar) || SYS.unlink(van.c_str()) == 0;
        if (SYS.rename(van.c_str(), naar.c_str()) == 0)
            return 1;
    } else if (SYS.link(van.c_str(), naar.c_str()) == 0) {
        return IOUNLINK(van.c_str());
    } else if (errno == EEXIST) {
        return 0;
    }
    // Across file systems, or where there are no links: copied beside the target, so that it is never half there.
    const std::string naast = naar + "." + std::to_string(getpid());
    if (!IOCOPY(van.c_str(), naast.c_str(), -1))
        return 0;
    const bool gelinkt = !overschrijf && SYS.link(naast.c_str(), naar.c_str()) == 0;
    const bool gelukt = gelinkt || ((overschrijf || lstat(naar.c_str(), &b) < 0) &&
                                    SYS.rename(naast.c_str(), naar.c_str()) == 0);
    if (gelinkt || !gelukt)
        SYS.unlink(naast.c_str());
    return gelukt && IOUNLINK(van.c_str());
}

int64_t IODISKFREE() {
    struct statvfs st;
    return statvfs(".", &st) == 0 ? static_cast<int64_t>(st.f_bavail) : 2147483647;
}

int64_t IODIRSIZE(const char* map) {
    std::string stam = map && *map ? map : ".";
    DIR* dir = opendir(stam.c_str());
    if (!dir)
        return 0;
    int64_t som = 0;
    struct stat st;
    while (const dirent* de = readdir(dir))
        if (stat((stam + "/" + de->d_name).c_str(), &st) == 0 && S_ISREG(st.st_mode))
            som += st.st_size;
    closedir(dir);
    return som;
}

int IOMAXFILES() {
    std::vector<int> fds;
    while (fds.size() < 200) {
        int fd = SYSNIEUW("OPENFILE", O_RDWR);
        if (fd < 0)
            break;
        fds.push_back(fd);
    }
    for (int fd : fds)
        SYS.close(fd);
    SYS.unlink("OPENFILE");
    return static_cast<int>(fds.size());
}

const char* IOBASENAME(const char* pad) {
    const char* deel = strrchr(pad, '\\');
    if (!deel)
        deel = strrchr(pad, '/');
    return deel ? deel + 1 : pad;
}

void SCRAMBLE(char* s) {
    int zaad = (static_cast<int>(SCRAMBLEKLOK() % 94) + 32) | 128;
    int a = zaad / 10 + 1, b = zaad % 10 + 5, teken = -1;
    size_t n = strlen(s);
    for (size_t i = 0; i < n; i++, teken = -teken) {
        int v = static_cast<uint8_t>(s[i]) - 32 + static_cast<int>((i + 1) % 222) * a * teken + b;
        v %= 222;
        s[i] = static_cast<char>((v < 0 ? v + 222 : v) + 32);
    }
    std::reverse(s, s + n);
    s[n] = static_cast<char>(zaad);
    s[n + 1] = 0;
}

void UNSCRAMBLE(char* s) {
    size_t n = strlen(s);
    if (n < 2) {
        *s = 0;
        return;
    }
    n--;
    int zaad = static_cast<uint8_t>(s[n]);
    int modulus = zaad > 127 ? 222 : 94; // 94: how names were hidden before letters had accents
    int a = zaad / 10 + 1, b = zaad % 10 + 5, teken = -1;
    s[n] = 0;
    std::reverse(s, s + n);
    for (size_t i = 0; i < n; i++, teken = -teken) {
        int v = static_cast<uint8_t>(s[i]) - 32 -
                static_cast<int>((i + 1) % static_cast<size_t>(modulus)) * a * teken - b;
        v %= modulus;
        s[i] = static_cast<char>((v < 0 ? v + modulus : v) + 32);
    }
}

} // namespace zg

#include "tools/werkmap.h"
#include "shared/files.h"
#include "shared/gedeeld.h"
#include "shared/syscalls.h"
#include "tools/paar.h"
#include "tools/wie.h"
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <unistd.h>

namespace zg {

namespace fs = std::filesystem;

namespace {

std::string map_van(const std::string& pad) {
    size_t streep = pad.rfind('/');
    return streep == std::string::npos ? "." : pad.substr(0, streep + 1);
}

bool op_schijf(const std::string& pad) {
    int fd = SYS.open(pad.c_str(), O_RDONLY | O_CLOEXEC, 0);
    bool goed = fd >= 0 && SYS.fsync(fd) == 0;
    const int fout = errno;
    if (fd >= 0)
        SYS.close(fd);
    errno = fout;
    return goed;
}

// The rights of the file whose place it takes, on disk together with its bytes.
bool maak_gereed(const std::string& nieuw, const std::string& doel) {
    int fd = SYS.open(nieuw.c_str(), O_RDWR | O_CLOEXEC, 0);
    bool goed = fd >= 0 && SYSEVENALS(fd, doel.c_str()) && SYS.fsync(fd) == 0;
    const int fout = errno;
    if (fd >= 0)
        SYS.close(fd);
    errno = fout;
    return goed;
}

constexpr char SJABLOON[] = ".ixwerkXXXXXX";

// Whose it is: the lock on the directory; on a shared file system, where that says nothing to others, one on a byte of this
// file in it.
constexpr char SLOT[] = "/slot";

// A directory that this program has for itself from now on, -1 when another has it or it is gone. To be swept, on a shared
// file system, only when nobody else is there: its maker's host may have been cut off from it.
int neem(const std::string& map, bool vegen) {
    int fd = SYS.open(map.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC, 0);
    struct stat st, daar;
    bool goed = fd >= 0;
    if (goed && IOSOORTVAN(fd).gedeeld) {
        SYS.close(fd);
        if (vegen && !ALLEEN_GEZEGD)
            return -1;
        fd = SYSNIEUW((map + SLOT).c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK);
        goed = fd >= 0 && IOLOCK('E', fd, 0, 1);
        if (goed && (SYS.fstat(fd, &st) != 0 || stat((map + SLOT).c_str(), &daar) != 0 ||
                     st.st_ino != daar.st_ino)) { // swept just now
            goed = false;
            errno = EWOULDBLOCK;
        }
    } else
        goed = goed && flock(fd, LOCK_EX | LOCK_NB) == 0 && SYS.fstat(fd, &st) == 0 && st.st_nlink > 0;
    if (goed)
        return fd;
    const int fout = errno;
    if (fd >= 0)
        SYS.close(fd);
    errno = fout;
    return -1;
}

// The mark in the index that is replaced: who waits for that file, or has come in by it, is to stop and not to write there.
bool merk(const Paar& oud, uint8_t* busy) {
    constexpr int64_t PLAATS = offsetof(IXHEADER, busy);
    uint8_t was = 0;
    if (SYSLEES(oud.idx, &was, 1, PLAATS) != 1 || !SYSSCHRIJFOP(oud.idx, busy, 1, PLAATS))
        return false;
    *busy = was;
    return true;
}

constexpr int SIGNALEN[] = {SIGINT, SIGTERM, SIGHUP};
std::array<std::string, 6> op_te_ruimen; // paths, ready for a signal

} // namespace

Werkmap::Werkmap(const std::string& doel) {
    veeg(map_van(doel));
    std::string naam;
    while (slot_ < 0) { // another may sweep it between the making and the lock: once more
        naam = map_van(doel) + "/" + SJABLOON;
        if (!mkdtemp(naam.data()))
            return;
        slot_ = neem(naam, false);
        if (slot_ < 0 && errno != EWOULDBLOCK &&
            IOISDIR(naam.c_str())) // no locks here: nobody can sweep either
            break;
    }
    pad_ = naam;
    const std::string paar = naam + "/" + tabelnaam(doel);
    op_te_ruimen = {paar + ".INX", paar + ".TXT", naam + "/keten", naam + "/vorige", naam + SLOT, naam};
    for (int s : SIGNALEN)
        signal(s, [](int nr) {
            ruim_op();
            signal(nr, SIG_DFL);
            raise(nr);
        });
}

Werkmap::~Werkmap() {
    ruim_op();
    if (slot_ >= 0)
        SYS.close(slot_);
}

bool Werkmap::enige_kopie(const std::string& map) {
    struct stat st;
    return stat((map + "/vorige").c_str(), &st) == 0 && st.st_nlink == 1;
}

void Werkmap::veeg(const std::string& map) {
    std::error_code fout;
    for (const auto& e : fs::directory_iterator(map, fout)) {
        if (!IOPAST(".ixwerk??????", e.path().filename().c_str()))
            continue;
        const int fd = neem(e.path(), true);
        if (fd < 0)
            continue;
        if (enige_kopie(e.path()))
            klacht((e.path() / "vorige").string(), "the old records of a load that was killed; left alone");
        else
            for (const auto& f : fs::directory_iterator(e.path(), fout))
                SYS.unlink(f.path().c_str());
        SYS.rmdir(e.path().c_str());
        SYS.close(fd);
    }
}

void Werkmap::ruim_op() {
    for (const std::string& pad : op_te_ruimen)
        if (unlink(pad.c_str()) != 0)
            rmdir(pad.c_str());
}

int Werkmap::naar(const std::string& doel, bool vervang, int seconden) {
    const std::string hier = pad_ + "/" + tabelnaam(doel), vorige = pad_ + "/vorige";
    const std::string txt = doel + ".TXT", inx = doel + ".INX";
    for (const char* ext : {".TXT", ".INX"})
        if (!maak_gereed(hier + ext, doel + ext))
            return klacht(doel, strerror(errno)), FOUT_GEVONDEN;
    Paar oud; // its locks are held until the new pair stands
    const bool was_txt = IOEXISTS(txt.c_str());
    const bool was = was_txt && IOEXISTS(inx.c_str());
    if (was && !vervang)
        return klacht(doel, "exists already"), FOUT_GEBRUIKT;
    const bool gemerkt = was && paar_open(doel, &oud) == GOED;
    if (gemerkt) {
        if (int fout = paar_alleen(&oud, seconden))
            return fout;
        if (oud.gedeeld && !ALLEEN_GEZEGD)
            return klacht(doel, ALLEEN_NODIG), FOUT_GEBRUIKT;
        if (elders_open(oud.dat) || elders_open(oud.idx))
            return klacht(doel, "in use: a program has it open" + open_bij(elders_open(oud.dat) ? txt : inx)),
                   IN_GEBRUIK;
    }
    for (int s : SIGNALEN) // not between the two
        signal(s, SIG_IGN);
    // The data file first: an old index beside new data is refused by its sizes and rebuilt, never believed. Until
    // both stand the old data file keeps a second name, so that a refused index doesn't leave half a pair.
    if (was_txt && SYS.link(txt.c_str(), vorige.c_str()) != 0)
        return klacht(txt, strerror(errno)), FOUT_GEVONDEN;
    uint8_t busy = 1;
    if (gemerkt && !merk(oud, &busy))
        return klacht(inx, strerror(errno)), FOUT_GEVONDEN;
    if (SYS.rename((hier + ".TXT").c_str(), txt.c_str()) != 0) {
        const int fout = errno;
        if (gemerkt)
            merk(oud, &busy);
        return klacht(txt, strerror(fout)), FOUT_GEVONDEN;
    }
    if (SYS.rename((hier + ".INX").c_str(), inx.c_str()) != 0) {
        const int fout = errno;
        if (gemerkt)
            merk(oud, &busy);
        const bool terug =
            was_txt ? SYS.rename(vorige.c_str(), txt.c_str()) == 0 : SYS.unlink(txt.c_str()) == 0;
        klacht(inx, strerror(fout));
        if (!terug && was_txt) {
            klacht(txt, "holds the new records; the old ones can't be put back and stand in " + vorige);
            op_te_ruimen = {};
        }
        return FOUT_GEVONDEN;
    }
    op_schijf(map_van(doel));
    return GOED;
}

} // namespace zg

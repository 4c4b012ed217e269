#include "tools/werkmap.h"
#include "shared/files.h"
#include "shared/syscalls.h"
#include "tools/paar.h"
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace zg {

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

constexpr int SIGNALEN[] = {SIGINT, SIGTERM, SIGHUP};
std::array<std::string, 5> op_te_ruimen; // paths, ready for a signal

} // namespace

Werkmap::Werkmap(const std::string& doel) {
    std::string naam = map_van(doel) + "/.ixwerkXXXXXX";
    if (!mkdtemp(naam.data()))
        return;
    pad_ = naam;
    const std::string paar = naam + "/" + tabelnaam(doel);
    op_te_ruimen = {paar + ".INX", paar + ".TXT", naam + "/keten", naam + "/vorige", naam};
    for (int s : SIGNALEN)
        signal(s, [](int nr) {
            ruim_op();
            signal(nr, SIG_DFL);
            raise(nr);
        });
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
    if (was && paar_open(doel, &oud) == GOED) {
        if (int fout = paar_alleen(&oud, seconden))
            return fout;
        if (elders_open(oud.dat) || elders_open(oud.idx))
            return klacht(doel, "in use: a program has it open"), IN_GEBRUIK;
    }
    for (int s : SIGNALEN) // not between the two
        signal(s, SIG_IGN);
    // The data file first: an old index beside new data is refused by its sizes and rebuilt, never believed. Until
    // both stand the old data file keeps a second name, so that a refused index doesn't leave half a pair.
    if (was_txt && SYS.link(txt.c_str(), vorige.c_str()) != 0)
        return klacht(txt, strerror(errno)), FOUT_GEVONDEN;
    if (SYS.rename((hier + ".TXT").c_str(), txt.c_str()) != 0)
        return klacht(txt, strerror(errno)), FOUT_GEVONDEN;
    if (SYS.rename((hier + ".INX").c_str(), inx.c_str()) != 0) {
        const int fout = errno;
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

#include "tools/werkmap.h"
#include "shared/files.h"
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
    int fd = open(pad.c_str(), O_RDONLY | O_CLOEXEC);
    bool goed = fd >= 0 && fsync(fd) == 0;
    if (fd >= 0)
        close(fd);
    return goed;
}

constexpr int SIGNALEN[] = {SIGINT, SIGTERM, SIGHUP};
std::array<std::string, 4> op_te_ruimen; // paths, ready for a signal

// Has anybody the file open, with or without a lock? What he writes from then on would be lost with the old file.
// Where the system can't tell, nobody has.
bool ergens_open(int fd) {
    signal(SIGIO, SIG_IGN); // who opens it at this very moment
    if (fcntl(fd, F_SETLEASE, F_WRLCK) != 0)
        return errno == EAGAIN;
    fcntl(fd, F_SETLEASE, F_UNLCK);
    return false;
}

} // namespace

Werkmap::Werkmap(const std::string& doel) {
    std::string naam = map_van(doel) + "/.ixwerkXXXXXX";
    if (!mkdtemp(naam.data()))
        return;
    pad_ = naam;
    const std::string paar = naam + "/" + tabelnaam(doel);
    op_te_ruimen = {paar + ".INX", paar + ".TXT", naam + "/keten", naam};
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
    const std::string hier = pad_ + "/" + tabelnaam(doel);
    if (!op_schijf(hier + ".TXT") || !op_schijf(hier + ".INX"))
        return klacht(doel, strerror(errno)), FOUT_GEVONDEN;
    Paar oud; // its locks are held until the new pair stands
    bool was = IOEXISTS((doel + ".INX").c_str()) && IOEXISTS((doel + ".TXT").c_str());
    if (was && !vervang)
        return klacht(doel, "exists already"), FOUT_GEBRUIKT;
    if (was && paar_open(doel, &oud) == GOED) {
        if (int fout = paar_vast(&oud, seconden))
            return fout;
        if (!IOLOCK('E', oud.dat, 0, 0))
            return klacht(doel, "in use: a record is locked"), IN_GEBRUIK;
        if (ergens_open(oud.dat) || ergens_open(oud.idx))
            return klacht(doel, "in use: a program has it open"), IN_GEBRUIK;
    }
    for (int s : SIGNALEN) // not between the two
        signal(s, SIG_IGN);
    // The data file first: an old index beside new data is refused by its sizes and rebuilt, never believed.
    for (const char* ext : {".TXT", ".INX"})
        if (rename((hier + ext).c_str(), (doel + ext).c_str()) != 0)
            return klacht(doel + ext, strerror(errno)), FOUT_GEVONDEN;
    op_schijf(map_van(doel));
    return GOED;
}

} // namespace zg

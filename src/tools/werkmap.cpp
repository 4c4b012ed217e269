#include "tools/werkmap.h"
#include "shared/files.h"
#include "tools/paar.h"
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
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

} // namespace

Werkmap::Werkmap(const std::string& doel) {
    std::string naam = map_van(doel) + "/.ixwerkXXXXXX";
    if (mkdtemp(naam.data()))
        pad_ = naam;
}

Werkmap::~Werkmap() {
    std::error_code fout;
    if (goed())
        std::filesystem::remove_all(pad_, fout);
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
    }
    // The data file first: an old index beside new data is refused by its sizes and rebuilt, never believed.
    for (const char* ext : {".TXT", ".INX"})
        if (rename((hier + ext).c_str(), (doel + ext).c_str()) != 0)
            return klacht(doel + ext, strerror(errno)), FOUT_GEVONDEN;
    op_schijf(map_van(doel));
    return GOED;
}

} // namespace zg

// Notes of changes of the register, see order/noot.h.
#include "order/noot.h"
#include "order/meld.h"
#include "order/wrk.h"
#include "shared/files.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include <cerrno>

namespace zg {

bool noot_schrijf(const Noot& noot, const std::vector<uint8_t>& bytes) {
    const std::string naam = wrk_naam(noot.ext);
    const int fd = wrk_maak(noot.ext_nieuw, O_WRONLY | O_TRUNC);
    bool goed = fd >= 0 && SYSSCHRIJF(fd, bytes.data(), bytes.size()) && SYS.fsync(fd) == 0;
    int fout = errno;
    if (fd >= 0 && SYS.close(fd) != 0 && goed) {
        goed = false;
        fout = errno;
    }
    if (goed && !wrk_hernoem(noot.ext_nieuw, noot.ext)) {
        goed = false;
        fout = errno;
    }
    if (!goed) {
        wrk_verwijder(noot.ext_nieuw);
        SCHRIJFFOUT(IOBASENAME(naam.c_str()), fout);
    }
    return goed;
}

void noot_wis(const Noot& noot) {
    wrk_verwijder(noot.ext);
    wrk_verwijder(noot.ext_nieuw);
}

bool noot_lees(const std::string& pad, std::vector<uint8_t>* bytes) {
    const int fd = SYS.open(pad.c_str(), O_RDONLY | O_CLOEXEC, 0);
    if (fd < 0)
        return false;
    const int64_t omvang = SYSOMVANG(fd);
    bytes->resize(omvang > 0 ? static_cast<size_t>(omvang) : 0);
    const ssize_t n = SYSLEES(fd, bytes->data(), bytes->size(), 0);
    const int fout = errno;
    SYS.close(fd);
    errno = fout;
    return omvang >= 0 && n == omvang;
}

Nootstand noot_open(const Noot& noot, std::vector<uint8_t>* bytes) {
    const std::string naam = wrk_naam(noot.ext);
    if (!IOEXISTS(naam.c_str())) {
        wrk_verwijder(noot.ext_nieuw); // killed while it was written: nothing has changed
        return Nootstand::geen;
    }
    if (noot_lees(naam, bytes))
        return Nootstand::gelezen;
    ord_meld_geen_toegang(IOBASENAME(naam.c_str()), errno);
    return Nootstand::onbereikbaar;
}

} // namespace zg

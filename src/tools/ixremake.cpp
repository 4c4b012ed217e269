// ixremake: the index of pairs rebuilt from their data files, in exclusive use.
#include "shared/files.h"
#include "shared/woordenboek.h"
#include "store/diepcheck.h"
#include "store/node.h"
#include "store/rebuild.h"
#include "tools/opdracht.h"
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zg {

namespace {

bool lees_kop(const std::string& pad, IXHEADER* kop) {
    const int fd = open(pad.c_str(), O_RDONLY | O_CLOEXEC);
    const bool goed = fd >= 0 && pread(fd, kop, sizeof *kop, 0) == static_cast<ssize_t>(sizeof *kop);
    if (fd >= 0)
        close(fd);
    return goed;
}

// The definition to build by; *nieuw: not that of the index, which is to be made anew by the dictionary. Empty when
// good, else what is wrong.
std::string definitie(const std::string& naam, bool woordenboek, IXHEADER* kop, bool* nieuw) {
    const int nr = DDNUMMER(naam.c_str());
    *nieuw = !lees_kop(naam + ".INX", kop) || (woordenboek && DDCOMPARE(nr, naam.c_str()) != 0);
    if (*nieuw && !woordenboek)
        return std::string("no index to take the definition from") +
               (nr ? "; --dictionary makes it anew" : ", and not in the dictionary");
    if (*nieuw && !woordenboekkop(tabelnaam(naam), kop))
        return "not in the dictionary";
    ICB icb{};
    icb.h = *kop;
    IXFIXHDR(&icb);
    *kop = icb.h;
    const char* fout = IXDEFFOUT(*kop);
    return fout ? std::string("header: ") + fout + (nr ? "; --dictionary makes it anew" : "") : "";
}

// The bytes behind the last whole record into a file beside, and off: what a program left that was killed inside a
// write. Nobody else may be in the pair meanwhile.
int kap_af(const Paar& paar, int reclen) {
    struct stat s;
    if (!IOLOCK('E', paar.dat, 0, 0))
        return klacht(paar.naam, "in use: a record is locked"), IN_GEBRUIK;
    if (fstat(paar.dat, &s) != 0)
        return klacht(paar.naam, strerror(errno)), FOUT_GEVONDEN;
    const size_t rest = static_cast<size_t>(s.st_size % reclen);
    if (rest == 0)
        return GOED;
    uint8_t staart[IXRECMAX];
    std::string pad = paar.naam + ".CUT";
    int fd = open(pad.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0660);
    for (int nr = 2; fd < 0 && errno == EEXIST; nr++) {
        pad = paar.naam + ".CUT" + std::to_string(nr);
        fd = open(pad.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0660);
    }
    const auto bytes = static_cast<ssize_t>(rest);
    const bool bewaard = fd >= 0 && pread(paar.dat, staart, rest, s.st_size - bytes) == bytes &&
                         write(fd, staart, rest) == bytes && fsync(fd) == 0;
    const int fout = errno;
    if (fd >= 0)
        close(fd);
    if (!bewaard || ftruncate(paar.dat, s.st_size - bytes) != 0)
        return klacht(pad, strerror(bewaard ? errno : fout)), FOUT_GEVONDEN;
    klacht(paar.naam,
           "the " + std::to_string(rest) + " bytes of half a record at the end now stand in " + pad);
    return GOED;
}

int maak(const std::string& naam, const Opdracht& o) {
    const std::string tabel = tabelnaam(naam);
    const int64_t bytes = IOSIZE((naam + ".TXT").c_str());
    if (bytes < 0)
        return klacht(naam + ".TXT", "No such file or directory"), NIET_TE_OPENEN;
    // Both are looked at before anything changes.
    IXHEADER kop;
    bool nieuw;
    if (std::string kwaal = definitie(naam, o.woordenboek, &kop, &nieuw); !kwaal.empty())
        return klacht(naam, kwaal), FOUT_GEVONDEN;
    const int64_t rest = bytes % kop.reclen;
    if (rest && !o.kap)
        return klacht(naam, "the data file ends inside a record, " + std::to_string(rest) +
                                " bytes behind the last whole one; --truncate saves these and cuts them off"),
               FOUT_GEVONDEN;
    if (nieuw && DDCREATE(DDNUMMER(tabel.c_str()), naam.c_str()) == 0)
        return klacht(naam, "the index can't be created"), FOUT_GEVONDEN;
    {
        // Whoever works in the pair keeps it: the rebuild needs it alone.
        Paar paar;
        if (int fout = paar_open(naam, &paar))
            return fout;
        if (paar.alleen_lezen)
            return klacht(naam, strerror(EACCES)), NIET_TE_OPENEN;
        if (int fout = paar_vast(&paar, o.wacht))
            return fout;
        if (rest)
            if (int fout = kap_af(paar, kop.reclen))
                return fout;
    }
    int gebouwd;
    {
        Werkbalk balk("rebuild " + tabel);
        gebouwd = IXBLDIX(naam.c_str());
    }
    if (!gebouwd)
        return klacht(naam, "can't be rebuilt: something changed meanwhile, or the disk is full"),
               FOUT_GEVONDEN;
    std::vector<std::string> bevindingen;
    {
        Werkbalk balk("check " + tabel);
        bevindingen = IXDIEPCHECK(naam.c_str());
    }
    for (const std::string& b : bevindingen)
        klacht(naam, b);
    if (!bevindingen.empty())
        return FOUT_GEVONDEN;
    if (!o.stil)
        printf("%s: rebuilt\n", naam.c_str());
    return GOED;
}

} // namespace

int ixremake(const Opdracht& o) {
    std::vector<std::string> namen;
    int slechtst = paren(o.namen, &namen) ? GOED : FOUT_GEBRUIKT;
    for (const std::string& naam : namen)
        if (int uitkomst = maak(naam, o))
            slechtst = slechtst == GOED || uitkomst == FOUT_GEVONDEN ? uitkomst : slechtst;
    return slechtst;
}

} // namespace zg

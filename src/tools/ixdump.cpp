// ixdump: a pair as text. Records are read by large pieces, each under the header lock, so that none is seen
// half written and no user is held up; with --hold the whole dump is one moment in time.
#include "shared/woordenboek.h"
#include "tools/dump.h"
#include "tools/opdracht.h"
#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace zg {

namespace {

constexpr int STUK = 1 << 18;

int schrijf(const Opdracht& o, Paar& paar, FILE* uit) {
    Dumpkop kop = dumpkop(paar.kop, tabelnaam(paar.naam));
    const int reclen = paar.kop.reclen;
    DumpSchrijver dump(uit, o.json);
    dump.kop(kop, indeling(kop.naam, paar.kop));
    std::vector<uint8_t> stuk(static_cast<size_t>(STUK / reclen * reclen));
    const int64_t nrecs = paar.datbytes / reclen;
    Balk balk("dump " + kop.naam, nrecs);
    for (int64_t nr = 0; nr < nrecs;) {
        if (!o.heel)
            if (int fout = paar_vast(&paar, o.wacht))
                return fout;
        ssize_t n = pread(paar.dat, stuk.data(), stuk.size(), nr * reclen);
        if (!o.heel)
            paar_los(&paar);
        if (n < reclen)
            break;
        for (const uint8_t* rec = stuk.data(); rec + reclen <= stuk.data() + n && nr < nrecs;
             rec += reclen, nr++) {
            int32_t volgende = -1;
            if (IXRECLIVE(rec, reclen)) {
                dump.record(static_cast<int32_t>(nr), rec);
            } else {
                memcpy(&volgende, rec + 1, static_cast<size_t>(std::min(4, reclen - 1)));
                dump.vrij(static_cast<int32_t>(nr), volgende);
            }
        }
        balk.bij(nr);
        if (!dump.goed())
            return klacht(o.bestand, strerror(errno)), FOUT_GEVONDEN;
    }
    if (fflush(uit) != 0)
        return klacht(o.bestand, strerror(errno)), FOUT_GEVONDEN;
    if (paar.datbytes % reclen != 0)
        return klacht(paar.naam, "the data file ends inside a record; those bytes are left out"),
               FOUT_GEVONDEN;
    return GOED;
}

} // namespace

int ixdump(const Opdracht& o) {
    const std::string naam = een_paar(o.namen);
    if (naam.empty())
        return FOUT_GEBRUIKT;
    Paar paar;
    if (int fout = paar_neem(naam, o.wacht, &paar))
        return fout;
    std::string kwaal = paar_kop(&paar);
    if (o.woordenboek && !woordenboekkop(paar.naam, paar.datbytes, &paar.kop))
        return klacht(paar.naam, "not in the dictionary"), FOUT_GEBRUIKT;
    if (!o.woordenboek && !kwaal.empty())
        return klacht(paar.naam, kwaal), FOUT_GEVONDEN;
    if (!o.heel)
        paar_los(&paar);
    struct stat s, hier;
    if (stat(o.bestand.c_str(), &s) == 0)
        for (int fd : {paar.idx, paar.dat})
            if (fstat(fd, &hier) == 0 && hier.st_dev == s.st_dev && hier.st_ino == s.st_ino)
                return klacht(o.bestand, "is the pair itself"), FOUT_GEBRUIKT;
    FILE* uit = o.bestand.empty() ? stdout : fopen(o.bestand.c_str(), "we");
    if (!uit)
        return klacht(o.bestand, strerror(errno)), NIET_TE_OPENEN;
    int uitkomst = schrijf(o, paar, uit);
    if (uit != stdout && fclose(uit) != 0 && uitkomst == GOED)
        return klacht(o.bestand, strerror(errno)), FOUT_GEVONDEN;
    return uitkomst;
}

} // namespace zg

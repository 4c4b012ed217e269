// ixcopy: a copy of a pair at one moment in time. The header lock keeps writers out while both files are
// copied; the copy is made beside its target, checked and moved into place whole.
#include "shared/files.h"
#include "store/diepcheck.h"
#include "tools/opdracht.h"
#include "tools/schrijver.h"
#include "tools/werkmap.h"
#include <cerrno>
#include <cstring>

namespace zg {

namespace {

bool kopieer(int van, const std::string& naar, int64_t bytes, Balk& balk, int64_t* gedaan) {
    Schrijver uit(naar);
    std::vector<char> stuk(1 << 20);
    for (int64_t p = 0, n; p < bytes; p += n, balk.bij(*gedaan += n)) {
        n = SYSLEES(van, stuk.data(), static_cast<size_t>(std::min<int64_t>(bytes - p, 1 << 20)), p);
        if (n == 0) // never a copy that is only shorter
            errno = EIO;
        if (n <= 0 || !uit.zet(stuk.data(), static_cast<size_t>(n)))
            return false;
    }
    return uit.af();
}

} // namespace

int ixcopy(const Opdracht& o) {
    const std::string naam = een_paar(o.namen);
    if (naam.empty())
        return FOUT_GEBRUIKT;
    std::string doel = IOISDIR(o.doel.c_str()) ? o.doel + "/" + tabelnaam(naam) : o.doel;
    if (IOEXISTS((doel + ".INX").c_str()) && !o.vervang)
        return klacht(doel, "exists already; --replace lets it go"), FOUT_GEBRUIKT;
    Paar paar;
    if (int fout = paar_neem(naam, o.wacht, &paar))
        return fout;
    std::string kwaal = paar_kop(&paar);
    if (!kwaal.empty())
        return klacht(paar.naam, kwaal), FOUT_GEVONDEN;
    Werkmap map(doel);
    if (!map.goed())
        return klacht(doel, strerror(errno)), NIET_TE_OPENEN;
    const std::string hier = map.pad() + "/" + tabelnaam(doel);
    {
        Balk balk("copy " + tabelnaam(paar.naam), paar.idxbytes + paar.datbytes);
        int64_t gedaan = 0;
        if (!kopieer(paar.idx, hier + ".INX", paar.idxbytes, balk, &gedaan) ||
            !kopieer(paar.dat, hier + ".TXT", paar.datbytes, balk, &gedaan))
            return klacht(doel, strerror(errno)), FOUT_GEVONDEN;
    }
    paar_los(&paar);
    if (!paar_wis_wachtrij(hier + ".INX"))
        return klacht(doel, strerror(errno)), FOUT_GEVONDEN;
    if (!o.zonder_check) {
        std::vector<std::string> bevindingen;
        {
            Werkbalk balk("check " + tabelnaam(doel));
            bevindingen = IXDIEPCHECK(hier.c_str());
        }
        for (const std::string& b : bevindingen)
            klacht(paar.naam, b);
        if (!bevindingen.empty())
            return FOUT_GEVONDEN;
    }
    return map.naar(doel, o.vervang, o.wacht);
}

} // namespace zg

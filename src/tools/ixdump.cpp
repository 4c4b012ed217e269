// ixdump: a pair as text. Records are read by large pieces, each under the header lock, so that none is seen
// half written and no user is held up; with --hold the whole dump is one moment in time.
#include "shared/syscalls.h"
#include "shared/woordenboek.h"
#include "store/node.h"
#include "tools/dump.h"
#include "tools/opdracht.h"
#include "tools/uitvoer.h"
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace zg {

namespace {

constexpr int STUK = 1 << 18;

// A field and the bytes that it must have; a text's padding counts for nothing.
struct Voorwaarde {
    Veld veld;
    std::string bytes;
};

std::string inhoud_van(const Veld& veld, const uint8_t* rec) {
    std::string uit(reinterpret_cast<const char*>(rec) + veld.begin, static_cast<size_t>(veld.lengte));
    while (veld.soort == 'c' && !uit.empty() && (uit.back() == ' ' || uit.back() == 0))
        uit.pop_back();
    return uit;
}

// "FIELD=VALUE" in the layout of the records. Empty when *uit holds it, else what is wrong with it.
std::string voorwaarde(const std::string& tekst, const std::vector<Veld>& velden, Voorwaarde* uit) {
    const size_t is = tekst.find('=');
    if (is == std::string::npos)
        return "not FIELD=VALUE: " + tekst;
    const auto v = std::ranges::find(velden, tekst.substr(0, is), &Veld::naam);
    std::string namen;
    for (const Veld& veld : velden)
        namen += " " + veld.naam;
    if (v == velden.end())
        return "no such field: " + tekst.substr(0, is) + "; there are" + namen;
    uint8_t rec[IXRECMAX] = {};
    uit->veld = *v;
    const std::string fout = veld_in(*v, std::string_view(tekst).substr(is + 1), rec);
    uit->bytes = inhoud_van(*v, rec);
    return fout;
}

int schrijf(const Opdracht& o, const std::vector<Veld>& velden, const std::vector<Voorwaarde>& eisen,
            Paar& paar, FILE* uit, int64_t* gelezen) {
    Dumpkop kop = dumpkop(paar.kop, o.tabel.empty() ? tabelnaam(paar.naam) : o.tabel);
    const int reclen = paar.kop.reclen;
    const bool vrije = !o.kaal && eisen.empty();
    if (!vrije)
        kop.freehead = -1;
    DumpSchrijver dump(uit, o.json, o.scheiding);
    dump.kop(kop, velden, o.kaal);
    std::vector<uint8_t> stuk(static_cast<size_t>(STUK / reclen * reclen));
    const int64_t nrecs = *gelezen = paar.datbytes / reclen;
    Balk balk("dump " + kop.naam, nrecs);
    for (int64_t nr = 0; nr < nrecs;) {
        if (!o.heel)
            if (int fout = paar_vast(&paar, o.wacht))
                return fout;
        ssize_t n = SYSLEES(paar.dat, stuk.data(), stuk.size(), nr * reclen);
        if (!o.heel)
            paar_los(&paar);
        if (n < reclen) {
            *gelezen = nr;
            break;
        }
        for (const uint8_t* rec = stuk.data(); rec + reclen <= stuk.data() + n && nr < nrecs;
             rec += reclen, nr++) {
            int32_t volgende = -1;
            if (IXRECLIVE(rec, reclen)) {
                if (std::ranges::all_of(
                        eisen, [&](const Voorwaarde& e) { return inhoud_van(e.veld, rec) == e.bytes; }))
                    dump.record(static_cast<int32_t>(nr), rec);
            } else if (vrije) {
                memcpy(&volgende, rec + 1, static_cast<size_t>(std::min(4, reclen - 1)));
                dump.vrij(static_cast<int32_t>(nr), volgende);
            }
        }
        balk.bij(nr);
        if (!dump.goed())
            return klacht(o.bestand, strerror(errno)), FOUT_GEVONDEN;
    }
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
    if (o.woordenboek && !woordenboekkop(o.tabel.empty() ? paar.naam : o.tabel, paar.datbytes, &paar.kop))
        return klacht(paar.naam, "not in the dictionary"), FOUT_GEBRUIKT;
    if (!o.woordenboek && !kwaal.empty())
        return klacht(paar.naam, kwaal), FOUT_GEVONDEN;
    if (!o.heel)
        paar_los(&paar);
    const std::vector<Veld> velden = indeling(o.tabel.empty() ? tabelnaam(paar.naam) : o.tabel, paar.kop);
    std::vector<Voorwaarde> eisen(o.waarden.size());
    for (size_t i = 0; i < eisen.size(); i++)
        if (kwaal = voorwaarde(o.waarden[i], velden, &eisen[i]); !kwaal.empty())
            return klacht("--where", kwaal), FOUT_GEBRUIKT;
    if (kwaal = uitvoer_bezet(o.bestand, o.vervang); !kwaal.empty())
        return klacht(o.bestand, kwaal), FOUT_GEBRUIKT;
    Uitvoer uit(o.bestand, o.vervang);
    if (!uit.stroom())
        return klacht(o.bestand, strerror(errno)), NIET_TE_OPENEN;
    int64_t gelezen = 0; // records that the data file gave
    if (int uitkomst = schrijf(o, velden, eisen, paar, uit.stroom(), &gelezen))
        return uitkomst;
    if (!uit.af())
        return klacht(o.bestand, strerror(errno)), FOUT_GEVONDEN;
    if (paar.datbytes % paar.kop.reclen != 0)
        return klacht(paar.naam, "the data file ends inside a record; those bytes are left out"),
               FOUT_GEVONDEN;
    // By a header of the dictionary nobody knows how many there were; a selection's says nothing of the data file.
    int64_t zoveel = paar.datbytes / paar.kop.reclen;
    if (!o.woordenboek && !IXTIJDELIJKENAAM(naam.c_str()))
        zoveel = std::max<int64_t>(zoveel, paar.kop.nrecs);
    if (gelezen < zoveel)
        return klacht(paar.naam, "the data file was cut: it ends behind " + std::to_string(gelezen) +
                                     " of its " + std::to_string(zoveel) + " records"),
               FOUT_GEVONDEN;
    return GOED;
}

} // namespace zg

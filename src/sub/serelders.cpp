// See sub/serelders.h. Keys are taken from the files' own headers, since other programs make these files: records go only
// when they are found by what surely is a series or a label's number.
#include "sub/serelders.h"
#include "shared/files.h"
#include "shared/leesstam.h"
#include "shared/report.h"
#include "shared/sleutelstand.h"
#include "shared/syscalls.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

namespace zg {
namespace {

using Record = std::array<uint8_t, IXRECMAX>;

// Is part n (from 0) of a key an integer of so many bytes?
bool geheel(const ICB* icb, int sleutel, int n, int bytes) {
    if (sleutel < 1 || sleutel > icb->h.nkeys || n >= IXDELEN)
        return false;
    const IXKEYDEF& def = icb->h.keydef[sleutel - 1];
    return def.ptype[n] == 'I' && def.pend[n] - def.pstart[n] + 1 == bytes;
}

bool serie_vooraan(const ICB* icb, int sleutel) {
    return geheel(icb, sleutel, 0, 4) && geheel(icb, sleutel, 1, 2) && geheel(icb, sleutel, 2, 2);
}

size_t plaats(const ICB* icb, int sleutel, int n) {
    return icb->h.keydef[sleutel - 1].pstart[n] - size_t{1};
}

template <class T> void zet(Record& rec, size_t waar, T waarde) {
    memcpy(rec.data() + waar, &waarde, sizeof waarde);
}

// The records under the first parts of a key, as `zoek` has them, deleted. Collected first: a walk over what goes would
// lose its place. One that another has in hand is left. False: refused, told.
bool wis_onder(ICB* icb, int sleutel, int delen, const Record& zoek) {
    std::vector<Record> gevonden;
    auto dezelfde = [&](const Record& rec) {
        for (int n = 0; n < delen; n++) {
            const IXKEYDEF& def = icb->h.keydef[sleutel - 1];
            if (memcmp(rec.data() + plaats(icb, sleutel, n), zoek.data() + plaats(icb, sleutel, n),
                       static_cast<size_t>(def.pend[n] - def.pstart[n] + 1)) != 0)
                return false;
        }
        return true;
    };
    {
        const Sleutelstand k(icb, sleutel);
        Record rec = zoek;
        int rest = icb->h.nrecs + 1;
        for (int er = IXFIRSTR(icb, rec.data(), delen); er == 1 && rest > 0; rest--) {
            if (dezelfde(rec))
                gevonden.push_back(rec);
            er = IXNEXTR(icb, rec.data(), delen);
        }
    }
    const Sleutelstand k1(icb);
    for (Record& rec : gevonden) {
        const int gelezen = IXREADT(icb, rec.data());
        if (gelezen == 1 && dezelfde(rec)) {
            if (IXDELETE(icb, rec.data()) < 0)
                return false;
        } else if (gelezen >= 0) {
            IXUNLOCK(icb, rec.data());
        }
    }
    return true;
}

Record seriezoek(const ICB* icb, int sleutel, const seriesleutel& serie) {
    Record zoek{};
    zet(zoek, plaats(icb, sleutel, 0), serie.artikelgroep);
    zet(zoek, plaats(icb, sleutel, 1), serie.kleur);
    zet(zoek, plaats(icb, sleutel, 2), serie.volgnummer);
    return zoek;
}

// The key of a mutation file that begins with a label's number: the one that it has by its definition, else the only one
// that can be. 0: none.
int nummersleutel(const ICB* icb, int volgens_boek) {
    if (volgens_boek)
        return geheel(icb, volgens_boek, 0, 4) && !serie_vooraan(icb, volgens_boek) ? volgens_boek : 0;
    int uit = 0;
    for (int k = 1; k <= icb->h.nkeys; k++)
        if (geheel(icb, k, 0, 4) && !serie_vooraan(icb, k)) {
            if (uit)
                return 0;
            uit = k;
        }
    return uit;
}

// What is kept of advice orders: zeros over each of the series' records in the parameter file.
bool wis_parameters(const seriesleutel& serie) {
    constexpr char NAAM[] = "DTBAPAR.TXT";
    constexpr size_t LENGTE = 432, KEER = 128;
    const int fd = SYS.open(NAAM, O_RDWR | O_CLOEXEC, 0);
    if (fd < 0) {
        if (errno == ENOENT)
            return true;
        SCHRIJFFOUT(NAAM, errno);
        return false;
    }
    std::vector<uint8_t> blok(LENGTE * KEER);
    const uint8_t nul[LENGTE] = {};
    bool goed = true;
    ssize_t n = 0;
    for (int64_t waar = 0; goed && (n = SYSLEES(fd, blok.data(), blok.size(), waar)) > 0; waar += n)
        for (size_t i = 0; goed && i + sizeof serie <= static_cast<size_t>(n); i += LENGTE)
            if (memcmp(blok.data() + i, &serie, sizeof serie) == 0)
                goed = SYSVERVANG(fd, nul, std::min(LENGTE, static_cast<size_t>(n) - i),
                                  waar + static_cast<int64_t>(i));
    goed = goed && n >= 0;
    if (!goed)
        SCHRIJFFOUT(NAAM, errno);
    SYS.close(fd);
    return goed;
}

} // namespace

bool wis_van_serie(ICB* icb, int sleutel, const seriesleutel& serie) {
    return !icb || !serie_vooraan(icb, sleutel) || wis_onder(icb, sleutel, 3, seriezoek(icb, sleutel, serie));
}

bool wis_mutaties(const serrec& serie, const std::vector<int32_t>& labelnummers) {
    static const struct {
        const char* naam;
        int sleutel; // 0: not in the dictionary
    } BESTANDEN[] = {{"DTIO", 0}, {"DTFIN", 2}, {"DTONTV", 1}, {"DTGO", 1}};
    if (labelnummers.empty())
        return true;
    for (const auto& b : BESTANDEN) {
        if (strcmp(b.naam, "DTONTV") == 0 && !serie.voorraad && !serie.verkopen && !serie.correcties)
            continue;
        const Stampaar paar(b.naam, 2);
        const int sleutel = paar.icb ? nummersleutel(paar.icb, b.sleutel) : 0;
        if (!sleutel)
            continue;
        for (const int32_t nummer : labelnummers) {
            Record zoek{};
            zet(zoek, plaats(paar.icb, sleutel, 0), nummer);
            if (!wis_onder(paar.icb, sleutel, 1, zoek))
                return false;
        }
    }
    return true;
}

bool staat_op_zicht(const std::vector<std::string>& codes) {
    constexpr int CODE = 13;
    if (codes.empty())
        return false;
    const Stampaar paar("KSZI", 0);
    if (!paar.icb)
        return false;
    for (int k = 1; k <= paar.icb->h.nkeys; k++) {
        const IXKEYDEF& def = paar.icb->h.keydef[k - 1];
        if (def.ptype[0] != 'C' || def.pend[0] - def.pstart[0] + 1 != CODE)
            continue;
        const Sleutelstand stand(paar.icb, k);
        for (const std::string& code : codes) {
            Record zoek{};
            memcpy(zoek.data() + def.pstart[0] - 1, code.data(), std::min(code.size(), size_t{CODE}));
            if (IXEXISTSP(paar.icb, zoek.data(), 1))
                return true;
        }
        return false;
    }
    return true;
}

bool wis_adviesorders(const seriesleutel& serie) {
    const Stampaar series("DTBASER", 2);
    const bool er = series.icb && serie_vooraan(series.icb, 1) &&
                    IXEXISTSP(series.icb, seriezoek(series.icb, 1, serie).data(), 3);
    if (!wis_parameters(serie))
        return false;
    if (!er)
        return true;
    const Stampaar orders("DTBAORD", 2);
    // The entry last: it is what leads here a second time.
    return wis_van_serie(orders.icb, 1, serie) && wis_van_serie(series.icb, 1, serie);
}

bool wis_barcodes(const seriesleutel& serie) {
    const Stampaar codes("DTBARC", 2);
    return wis_van_serie(codes.icb, 2, serie);
}

} // namespace zg

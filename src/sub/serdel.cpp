// A series goes, with everything that hangs from it. The order is that of a kill: what it leaves can be deleted again.
//
// 1. Nothing is written before all that can stop has been looked at: files that can't be opened, a damaged chain.
// 2. Mutations of its labels, by their numbers.
// 3. The record with no labels, and behind that the chain: never a record that leads to blocks of others.
// 4. Prices, sort indexes, codes, advice orders, picture; the record comes last.
#include "sub/serdel.h"
#include "shared/ean.h"
#include "shared/eanhdl.h"
#include "shared/files.h"
#include "shared/ioeti.h"
#include "shared/ioink.h"
#include "shared/iomaat.h"
#include "shared/leesstam.h"
#include "shared/report.h"
#include "shared/sleutelstand.h"
#include "shared/syscalls.h"
#include "shared/sysrec.h"
#include "sub/omserie.h"
#include "sub/serienummer.h"
#include "sub/teksten.h"
#include "term/prompt.h"
#include "term/vast.h"
#include <array>
#include <cerrno>
#include <climits>
#include <span>
#include <vector>

namespace zg {
namespace {

constexpr char MODULE[] = "../sub/serdel";
constexpr uint8_t OPTIE_ZICHT = 4; // of instel15.optie12
constexpr int BREEDTE = 60, HOOGTE = 5;

using Record = std::array<uint8_t, IXRECMAX>;

// A pair that may be missing, or hold nothing, opened for as long as it lives.
struct Paar {
    Paar(const char* naam, int modus)
        : icb(stam_aanwezig(naam) && IOSIZE((std::string(naam) + ".TXT").c_str()) > 0 ? IXOPEN(naam, modus)
                                                                                      : nullptr) {}
    ~Paar() {
        if (icb)
            IXCLOSE(icb);
    }
    Paar(const Paar&) = delete;
    Paar& operator=(const Paar&) = delete;
    ICB* icb;
};

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

// All records of a series by a key that begins with it.
bool wis_van_serie(ICB* icb, int sleutel, const seriesleutel& serie) {
    return !icb || !serie_vooraan(icb, sleutel) || wis_onder(icb, sleutel, 3, seriezoek(icb, sleutel, serie));
}

// ---- labels

struct Etiketten {
    std::vector<int32_t> verder;    // numbers of labels that are in stock or beyond
    std::vector<std::string> codes; // of those that are sold
};

// The chain from end to end. False: damaged, told.
bool loop_keten(serrec* serie, Etiketten* uit) {
    const seriesleutel sleutel = serie->serie;
    int32_t kop = serie->etiketkop, nummer = kop;
    if (kop < 0)
        return true;
    const etiketketen keten(sleutel, &kop);
    etiket label{};
    int er;
    for (er = ioeti('F', &nummer, &label); er == 1; er = ioeti('N', &nummer, &label)) {
        if (label.status >= ETI_VOORRAAD)
            uit->verder.push_back(nummer);
        if (label.status != ETI_VERKOCHT)
            continue;
        eanrec ean{};
        if (!serie->regtype)
            uit->codes.push_back(ean_etiket(0, nummer));
        else if (leeseanmaat(dtean, &ean, sleutel, label.maat))
            uit->codes.push_back(VASTTEKST(ean.code));
    }
    if (er < 0)
        ioeti_schademeld(sleutel);
    return er == 0;
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

bool wis_mutaties(const serrec& serie, const std::vector<int32_t>& nummers) {
    static const struct {
        const char* naam;
        int sleutel; // 0: not in the dictionary
    } BESTANDEN[] = {{"DTIO", 0}, {"DTFIN", 2}, {"DTONTV", 1}, {"DTGO", 1}};
    if (nummers.empty())
        return true;
    for (const auto& b : BESTANDEN) {
        if (strcmp(b.naam, "DTONTV") == 0 && !serie.voorraad && !serie.verkopen && !serie.correcties)
            continue;
        const Paar paar(b.naam, 2);
        const int sleutel = paar.icb ? nummersleutel(paar.icb, b.sleutel) : 0;
        if (!sleutel)
            continue;
        for (const int32_t nummer : nummers) {
            Record zoek{};
            zet(zoek, plaats(paar.icb, sleutel, 0), nummer);
            if (!wis_onder(paar.icb, sleutel, 1, zoek))
                return false;
        }
    }
    return true;
}

// Is one of these codes among the till sales that are still open? Where that can't be asked it may be.
bool staat_op_zicht(const std::vector<std::string>& codes) {
    constexpr int CODE = 13;
    if (codes.empty())
        return false;
    const Paar paar("KSZI", 0);
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

// ---- the question

std::string samenvatting(const serrec& s) {
    std::string uit;
    for (const auto& [aantal, tekst] :
         {std::pair{int32_t{s.in_nota}, &T_SER_NOTA}, std::pair{int32_t{s.voorraad}, &T_SER_VOORRAAD},
          std::pair{int32_t{s.verkopen}, &T_SER_VERKOPEN},
          std::pair{int32_t{s.correcties}, &T_SER_CORRECTIES}})
        if (aantal)
            uit += TXT(*tekst);
    if (!uit.empty())
        uit.pop_back();
    return uit;
}

bool akkoord(const serrec& serie, const Etiketten& etiketten) {
    const bool geblokkeerd =
        serie.verkopen && (instel15.optie12 & OPTIE_ZICHT) && staat_op_zicht(etiketten.codes);
    if (geblokkeerd)
        FFLASH(-1, 2, A_WAARDE, TXT(T_SER_MELDING), "%s", TXT(T_SER_ZICHT));
    WINOPEN1(SCHERM.lines - HOOGTE, (SCHERM.cols - BREEDTE) / 2 + 1, HOOGTE, BREEDTE);
    WINBOX(nullptr);
    const std::string wat = samenvatting(serie);
    if (wat.empty())
        SCRPUT(A_WAARDE, 1, 2, "%s", TXT(T_SER_GEEN_ETIKETTEN));
    else
        SCRPUT(A_WAARDE, 1, 2, "%s %s", TXT(T_SER_HEEFT), wat.c_str());
    PIEP();
    bool ja = false;
    if (geblokkeerd)
        ENTERWACHT(3, 2);
    else
        ja = JNVRAAG(3, 2, "[-]%s", TXT(T_SER_AKKOORD)) != 0;
    WINCLOSE();
    return ja;
}

// ---- the rest

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

bool wis_adviesorders(const seriesleutel& serie) {
    const Paar series("DTBASER", 2);
    const bool er = series.icb && serie_vooraan(series.icb, 1) &&
                    IXEXISTSP(series.icb, seriezoek(series.icb, 1, serie).data(), 3);
    if (!wis_parameters(serie))
        return false;
    if (!er)
        return true;
    const Paar orders("DTBAORD", 2);
    // The entry last: it is what leads here a second time.
    return wis_van_serie(orders.icb, 1, serie) && wis_van_serie(series.icb, 1, serie);
}

bool wis_barcodes(const seriesleutel& serie) {
    const Paar codes("DTBARC", 2);
    return wis_van_serie(codes.icb, 2, serie);
}

bool wis_codes(const seriesleutel& serie) {
    uint8_t alle[MAATBYTES];
    memset(alle, 0xFF, sizeof alle);
    return eanhdl('D', dtean, serie, alle);
}

bool wis_record(ICB* icb, const serrec& serie) {
    Seriebuffer buffer(serie.serie);
    const Sleutelstand k1(icb);
    return !IXEXISTS(icb, buffer.rec) || IXDELETE(icb, buffer.rec) == 0;
}

bool wis_alles(ICB* icb, serrec* serie, const Etiketten& etiketten) {
    const seriesleutel sleutel = serie->serie;
    if (!wis_mutaties(*serie, etiketten.verder))
        return false;
    if (int32_t kop = serie->etiketkop; kop >= 0) {
        serrec leeg = *serie;
        leeg.etiketkop = -1;
        leeg.correcties = leeg.verkopen = leeg.voorraad = leeg.in_nota = 0;
        if (!serie_schrijf(leeg))
            return false;
        *serie = leeg;
        if (!ioeti_vrij(sleutel, &kop))
            return false;
    }
    if (!ioink_deleteall(sleutel))
        return false;
    serie_index_bij(*serie, nullptr);
    if (!wis_barcodes(sleutel) || !wis_codes(sleutel) || !wis_adviesorders(sleutel) ||
        (dtserpic && !wis_van_serie(dtserpic, 1, sleutel)) || !wis_record(icb, *serie))
        return false;
    serie_mutatie('G', *serie, serie->merk);
    return true;
}

// ---- sort indexes

// The names of the sort indexes over DTSER, of this moment.
std::vector<std::string> sorteerindexen() {
    std::vector<std::string> uit;
    char naam[DIRNAAM] = "DTSER.*";
    if (!DIRECTORY('O', naam, 0))
        return uit;
    while (DIRECTORY('N', naam, 0)) {
        const std::string ext = strrchr(naam, '.') ? strrchr(naam, '.') + 1 : "";
        if (strncmp(naam, "DTSER.", 6) == 0 && ext != "INX" && ext != "TXT")
            uit.push_back(naam);
    }
    DIRECTORY('C', naam, 0);
    return uit;
}

// Is it an index with entries, of that name? Nobody may have it in hand; false with *bezet when somebody has.
bool is_index(const std::string& naam, bool* bezet) {
    constexpr int64_t MET_INGANGEN = 3 * IXBLOK;
    const int fd = SYS.open(naam.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK, 0);
    if (fd < 0)
        OPENFAIL(MODULE, naam.c_str());
    char kop[sizeof IXHEADER::name] = {};
    const int64_t omvang = SYSOMVANG(fd);
    const bool er = omvang >= MET_INGANGEN && omvang % IXBLOK == 0 &&
                    SYSLEES(fd, kop, sizeof kop, 0) == ssize_t{sizeof kop} && VASTGELIJK(kop, naam);
    *bezet = er && !IOLOCK('T', fd, 0, IXBLOK);
    SYS.close(fd);
    return er && !*bezet;
}

// The key of a record under each of an index' keys: out where `eruit`, else in.
void index_bij(ICB* icb, int32_t recnr, const Record& rec, bool eruit) {
    for (int k = 1; k <= icb->h.nkeys; k++) {
        IXSWITCH(icb, k);
        icb->currec = icb->insptr = recnr;
        const int lengte = IXKEYLEN(icb, 0);
        IXBLDKEY(icb, rec.data(), lengte);
        const bool er = IXSEARCH(icb, '=', lengte) == recnr;
        icb->insptr = recnr;
        if (er && eruit)
            IXDELENTRY(icb);
        else if (!er && !eruit)
            IXINSKEY(icb);
    }
}

} // namespace

void serie_index_bij(const serrec& oud, const serrec* nieuw) {
    const std::vector<std::string> namen = sorteerindexen();
    if (namen.empty())
        return;
    Record was{}, wordt{};
    memcpy(was.data(), &oud, sizeof oud);
    if (nieuw)
        memcpy(wordt.data(), nieuw, sizeof *nieuw);
    int32_t recnr = -1;
    {
        const Sleutelstand k1(dtser);
        for (const Record* rec : {&was, &wordt})
            if (recnr < 0 && IXEXISTS(dtser, rec->data()))
                recnr = dtser->currec;
    }
    for (const std::string& naam : namen) {
        bool bezet = false;
        if (!is_index(naam, &bezet) && !bezet)
            continue;
        // Its user goes on with what he has; whoever sorts next makes it anew.
        if (bezet || IXCHECK(naam.c_str()) < 0) {
            IOUNLINK(naam.c_str());
            continue;
        }
        ICB* icb = IXOPEN(naam.c_str(), 1);
        index_bij(icb, recnr, was, true);
        if (nieuw)
            index_bij(icb, recnr, wordt, false);
        IXCLOSE(icb);
    }
}

bool serie_verwijderen(ICB* icb, serrec* serie, bool vraag) {
    if (!icb)
        INTERNAL("serdel", 1);
    if (!dtean)
        INTERNAL("serdel", 2);
    if (!dtserpic && stam_aanwezig("DTSERPIC")) // made since the start
        dtserpic = IXOPEN("DTSERPIC", 2);
    if (!dtserpic && (IOEXISTS("DTSERPIC.INX") || IOEXISTS("DTSERPIC.TXT")))
        INTERNAL("serdel", 3);
    Etiketten etiketten;
    return loop_keten(serie, &etiketten) && (!vraag || akkoord(*serie, etiketten)) &&
           wis_alles(icb, serie, etiketten);
}

} // namespace zg

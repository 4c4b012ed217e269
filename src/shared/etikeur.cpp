// The check of labels and codes, see shared/etikeur.h.
#include "shared/etikeur.h"
#include "shared/ean.h"
#include "shared/etibinnen.h"
#include "shared/iomaat.h"
#include "shared/iotab.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "term/strings.h"
#include "term/vast.h"
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <map>
#include <unistd.h>

namespace zg {
namespace {

constexpr int32_t TELLERS = 4, EANTELLER = 14;
constexpr char EIGEN[] = "2013"; // codes of the firm's own begin with it

void fout(etikeuring* k, const keurmelding& meld, const std::string& tekst) {
    k->fouten++;
    meld(tekst);
}

bool binnen(const etikeuring& k, int32_t nr) {
    return nr >= 0 && static_cast<size_t>(nr) < k.blokken.size();
}

etikeuring::blok& bij(etikeuring* k, int32_t nr) {
    return k->blokken[static_cast<size_t>(nr)];
}

etikeuring::blok lees_uit(const etiblok& b, int32_t nr, const etiketbezoek& bezoek) {
    etikeuring::blok uit{};
    uit.serie = b.serie;
    uit.volgende = b.volgende;
    etiket label;
    for (const auto& plaats : b.plaats) {
        const uint8_t status = eti_status(plaats);
        if (status > ETI_CORRECTIE) {
            uit.slecht++;
            continue;
        }
        uit.per[status]++;
        eti_uit(plaats, b.serie, static_cast<uint8_t>(std::min<uint16_t>(b.etiketsoort, UINT8_MAX)), &label);
        if (bezoek && status != ETI_VRIJ)
            bezoek(nr, label);
        uit.buiten +=
            status != ETI_VRIJ && (label.maat < 1 || label.maat > MATEN || label.filiaal >= firma.filialen);
    }
    return uit;
}

// Free blocks in their order; the chain is whole when it ends at the first block that the file hasn't got.
std::string loop_vrije(etikeuring* k) {
    const sysetiket& t = k->tellers;
    if (t.vrijkop < 0 || t.vrijkop > t.hoogste || t.hoogste > ioeti_hoogste_blok() + 1 ||
        static_cast<size_t>(t.hoogste) < k->blokken.size() + k->half ||
        t.hoogste > static_cast<int64_t>(k->blokken.size()) + eti::VOORUIT)
        return VORM("DTSYS.TXT system record 4: free from block %d, end %d; the file has %zu blocks%s",
                    t.vrijkop, t.hoogste, k->blokken.size(), k->half ? " and a half" : "");
    for (int32_t nr = t.vrijkop; nr != t.hoogste;) {
        if (!binnen(*k, nr) || bij(k, nr).waar != Etiblok::los || !zelfde_serie(bij(k, nr).serie, {}))
            return VORM("free chain: leads to block %d, which isn't a free one", nr);
        bij(k, nr).waar = Etiblok::vrij;
        nr = bij(k, nr).volgende;
    }
    return "";
}

// The free chain read by itself, between two looks at its counters that agree: whole, and as long as they say? Beside
// programs at work what was read before may be older than its counters.
bool vrije_keten_nu_goed() {
    constexpr int POGINGEN = 5, PAUZE = 20'000;
    int32_t record = TELLERS;
    for (int poging = 0; poging < POGINGEN; poging++) {
        sysetiket t, na;
        iotab('R', &record, &t, SYS_RECORD);
        const int64_t omvang = SYSOMVANG(eti::fd), blokken = omvang / static_cast<int64_t>(sizeof(etiblok));
        bool goed = t.vrijkop >= 0 && t.vrijkop <= t.hoogste && t.hoogste <= ioeti_hoogste_blok() + 1 &&
                    eti::begin(t.hoogste) >= omvang && t.hoogste <= blokken + eti::VOORUIT;
        int32_t aantal = 0;
        etiblok b;
        for (int32_t nr = t.vrijkop; goed && nr != t.hoogste; nr = b.volgende)
            goed = nr >= 0 && nr < blokken && aantal++ < blokken &&
                   SYSLEES(eti::fd, &b, sizeof b, eti::begin(nr)) == sizeof b && zelfde_serie(b.serie, {});
        iotab('R', &record, &na, SYS_RECORD);
        if (goed && aantal == t.vrij && !memcmp(&t, &na, sizeof t))
            return true;
        usleep(PAUZE);
    }
    return false;
}

int32_t tel(const etikeuring& k, Etiblok waar) {
    return static_cast<int32_t>(
        std::count_if(k.blokken.begin(), k.blokken.end(), [waar](const auto& b) { return b.waar == waar; }));
}

// A lost block that may still be a series'. What a kill leaves is none: a new block with its first label, or the chain of a
// series whose record says already that it has none. A series without a record was lost, and not deleted, while it has
// labels, prices or codes: the record goes last.
bool hoort_bij(const etikeuring& k, const etikeuring::blok& b) {
    if (b.waar != Etiblok::los || b.slecht || b.breuk || (k.nullen && zelfde_serie(b.serie, {})))
        return b.waar == Etiblok::los;
    const int verder = b.per[ETI_VOORRAAD] + b.per[ETI_VERKOCHT] + b.per[ETI_CORRECTIE];
    const auto s = k.ketens.find(sleutel_van(b.serie));
    if (s == k.ketens.end())
        return b.per[ETI_ORDER] + verder > 0 || k.sporen.contains(sleutel_van(b.serie));
    if (s->second == Etiketen::heel)
        return b.per[ETI_ORDER] > 1 || verder > 0;
    return s->second == Etiketen::stuk;
}

// Told a line a series: its first block and how many more; `na` comes behind the series.
void meld_per_serie(const etikeuring& k, const std::vector<size_t>& blokken, const char* voor, const char* na,
                    const std::function<void(const std::string&)>& meld) {
    std::map<sleutelwaarde, std::pair<size_t, int>> per_serie;
    for (const size_t nr : blokken)
        per_serie.try_emplace(sleutel_van(k.blokken[nr].serie), nr, 0).first->second.second++;
    for (const auto& [serie, waar] : per_serie) {
        const auto& [nr, aantal] = waar;
        const std::string meer = aantal > 1 ? VORM(" and %d more", aantal - 1) : "";
        meld(VORM("%sblock %zu%s%s", voor, nr, meer.c_str(), na) + serie_tekst(sleutel_uit(serie)));
    }
}

// Blocks in no chain.
void meld_verloren(etikeuring* k, const keurmelding& meld) {
    std::vector<size_t> verloren;
    for (size_t nr = 0; nr < k->blokken.size(); nr++) {
        const auto& b = k->blokken[nr];
        if (b.waar == Etiblok::los && (!zelfde_serie(b.serie, {}) || (k->vrijketen_heel && !b.breuk)))
            verloren.push_back(
                nr); // and none of the free ones that can't be walked, or that were told with a series
    }
    if (!verloren.empty()) { // one that is changing hands is nobody's for a moment
        usleep(20'000);
        std::erase_if(verloren, [k](size_t nr) {
            etiblok b;
            return SYSLEES(eti::fd, &b, sizeof b, eti::begin(static_cast<int32_t>(nr))) == sizeof b &&
                   !zelfde_serie(b.serie, k->blokken[nr].serie);
        });
    }
    k->verloren = static_cast<int64_t>(verloren.size());
    meld_per_serie(*k, verloren, "", ": in no chain, of series ",
                   [&](const std::string& wat) { fout(k, meld, wat); });
}

} // namespace

size_t etikeur_vooraf() {
    constexpr int64_t MEEST = 1 << 22;
    return static_cast<size_t>(std::clamp<int64_t>(eti::blokken(), 0, MEEST));
}

bool etikeur_begin(etikeuring* k, const etiketbezoek& bezoek) {
    *k = {};
    int32_t nr = TELLERS;
    iotab('R', &nr, &k->tellers, SYS_RECORD);
    constexpr size_t STUK = 2048;
    std::vector<etiblok> stuk(STUK);
    k->blokken.reserve(etikeur_vooraf());
    for (int64_t plaats = 0;;) {
        const ssize_t n = SYSLEES(eti::fd, stuk.data(), STUK * sizeof(etiblok), plaats);
        if (n < 0)
            return false;
        const size_t hele = static_cast<size_t>(n) / sizeof(etiblok);
        for (size_t i = 0; i < hele; i++) {
            k->blokken.push_back(lees_uit(stuk[i], static_cast<int32_t>(k->blokken.size()), bezoek));
            k->van_serie[sleutel_van(stuk[i].serie)]++;
        }
        k->half = static_cast<size_t>(n) % sizeof(etiblok) != 0;
        if (hele < STUK)
            return true;
        plaats += n;
    }
}

bool etikeur_serie(etikeuring* k, const serrec& rec, etitelling* telling, const keurmelding& meld) {
    *telling = {};
    const auto waar = [&rec](int32_t nr) {
        return "series " + serie_tekst(rec.serie) + (nr == -1 ? ": " : VORM(", block %d: ", nr));
    };
    std::string reden;
    bool heel = true;
    int32_t nr = rec.etiketkop, laatste = -1, lengte = 0;
    for (; nr != -1; nr = bij(k, nr).volgende) {
        if (!binnen(*k, nr)) {
            reden = "outside the file";
            k->erbuiten = true;
        } else if (!zelfde_serie(bij(k, nr).serie, rec.serie))
            reden = "is of series " + serie_tekst(bij(k, nr).serie);
        else if (bij(k, nr).waar != Etiblok::los)
            reden = "the chain goes round";
        if (!reden.empty())
            break;
        laatste = nr;
        lengte++;
        auto& b = bij(k, nr);
        b.waar = Etiblok::keten;
        telling->in_nota += b.per[ETI_ORDER];
        telling->voorraad += b.per[ETI_VOORRAAD];
        telling->verkopen += b.per[ETI_VERKOCHT];
        telling->correcties += b.per[ETI_CORRECTIE];
        if (b.slecht)
            fout(k, meld, waar(nr) + "a label of a status that there isn't");
        if (b.buiten)
            fout(k, meld, waar(nr) + "a label of a size or branch that there isn't");
        heel = heel && !b.slecht;
    }
    // Counted, and in blocks of the series outside its chain: a part of it is cut off.
    const int64_t geteld = int64_t{rec.in_nota} + rec.voorraad + rec.verkopen + rec.correcties;
    if (reden.empty() &&
        geteld > int64_t{telling->in_nota} + telling->voorraad + telling->verkopen + telling->correcties &&
        k->van_serie[sleutel_van(rec.serie)] > lengte)
        reden = "counts more labels than its chain has, and others are in no chain: a part is cut off";
    k->labels += telling->in_nota + telling->voorraad + telling->verkopen + telling->correcties;
    if (!reden.empty()) {
        fout(k, meld, waar(nr == -1 ? laatste : nr) + reden);
        heel = false;
        if (binnen(*k, nr)) {
            bij(k, nr).breuk = true;
            k->nullen |= zelfde_serie(bij(k, nr).serie, {});
        }
    }
    k->ketens[sleutel_van(rec.serie)] = !heel                 ? Etiketen::stuk
                                        : rec.etiketkop == -1 ? Etiketen::geen
                                                              : Etiketen::heel;
    return heel;
}

void etikeur_einde(etikeuring* k, const keurmelding& meld) {
    const std::string reden = loop_vrije(k);
    k->vrijketen_heel = reden.empty();
    const bool telt = tel(*k, Etiblok::vrij) == k->tellers.vrij;
    const bool veranderde = (!reden.empty() || !telt) && vrije_keten_nu_goed();
    if (!reden.empty() && !veranderde)
        fout(k, meld, reden);
    else if (k->half && !k->erbuiten)
        fout(k, meld,
             VORM("half a block behind %zu whole ones, of a write that was broken off", k->blokken.size()));
    else if (!telt && !veranderde)
        fout(k, meld,
             VORM("DTSYS.TXT system record 4: %d free blocks, counted are %d", tel(*k, Etiblok::vrij),
                  k->tellers.vrij));
    meld_verloren(k, meld);
}

bool etikeur_herstel(etikeuring* k, const keurmelding& meld) {
    sysetiket t = k->tellers;
    if (k->half && !k->erbuiten) { // of an append that was broken off
        k->blokken.emplace_back();
        k->half = false;
        meld("DTETI: half a block at the end given back");
    }
    if (!k->vrijketen_heel) {
        // Numbers of blocks that a chain leads to are never given out again, whether the file has them or not.
        if (k->erbuiten || std::any_of(k->blokken.begin(), k->blokken.end(),
                                       [k](const auto& b) { return hoort_bij(*k, b); })) {
            meld("DTETI: free blocks are not given back before the chains of the series are whole");
            return false;
        }
        meld("DTETI: the free chain was made anew");
        // Blocks that were given out and never written lie behind the file: their numbers are left.
        const auto in_bestand = static_cast<int32_t>(eti::blokken());
        if (t.hoogste < in_bestand || t.hoogste > in_bestand + eti::VOORUIT ||
            t.hoogste > ioeti_hoogste_blok() + 1)
            t.hoogste = in_bestand;
        t.vrijkop = t.hoogste;
        for (auto& b : k->blokken)
            b.waar = b.waar == Etiblok::keten ? b.waar : Etiblok::los;
    } else if (t.vrij != tel(*k, Etiblok::vrij)) {
        meld("DTETI: the free blocks were counted again");
    }
    t.vrij = tel(*k, Etiblok::vrij);
    int32_t nr = TELLERS;
    iotab('X', &nr, &k->tellers, SYS_RECORD);
    bool gelukt = true;
    std::vector<size_t> blijven;
    int nullen = 0, slechte = 0,
        geteld_nullen = 0; // those without a series; of them the ones that were told as lost
    for (size_t i = k->blokken.size(); i-- > 0 && gelukt;) {
        auto& b = k->blokken[i];
        if (b.waar != Etiblok::los)
            continue;
        if (hoort_bij(*k, b)) {
            if (zelfde_serie(b.serie, {}))
                (b.breuk || k->nullen ? nullen : slechte)++, geteld_nullen += !b.breuk;
            else
                blijven.push_back(i);
            continue;
        }
        etiblok leeg{};
        leeg.volgende = t.vrijkop;
        gelukt = SYSVERVANG(eti::fd, &leeg, sizeof leeg, eti::begin(static_cast<int32_t>(i)));
        if (gelukt) {
            t.vrijkop = static_cast<int32_t>(i);
            t.vrij++;
            b.waar = Etiblok::vrij;
        }
    }
    const int errnr = errno;
    ioeti_vergeet();
    const bool geteld = iotab('W', &nr, &t, SYS_RECORD) != 0;
    k->tellers = t;
    k->verloren = static_cast<int64_t>(blijven.size()) + geteld_nullen;
    if (nullen)
        meld(VORM("DTETI: %d blocks without a series stay: a series' chain leads to one", nullen));
    if (slechte)
        meld(VORM(
            "DTETI: %d blocks without a series stay: there is a label of a status that there isn't in them",
            slechte));
    std::ranges::sort(blijven);
    meld_per_serie(*k, blijven, "DTETI: ", ": it stays with series ", meld);
    if (!gelukt)
        SCHRIJFFOUT(eti::BESTAND, errnr);
    return gelukt && geteld;
}

bool eankeur(ICB* dtean, const keurserie& heeft, bool herstel, const keurmelding& meld) {
    const auto kwaal = [&](const std::string& tekst) {
        if (!herstel)
            meld(tekst);
    };
    uint32_t hoogste = 0;
    std::map<sleutelwaarde, std::pair<std::string, int>> zonder_serie; // its first code, how many
    uint8_t buffer[IXRECMAX + 1] = {};
    eanrec rec;
    int er;
    for (int32_t nr = 0; (er = IXGET(dtean, buffer, nr)) >= 0; nr++) {
        if (!er)
            continue;
        stam_uit(buffer, dtean->h.reclen, &rec);
        const std::string code = VASTTEKST(rec.code);
        if (code == "0")
            continue;
        if (rec.soort != 'M' && rec.soort != 'A')
            kwaal("code " + code +
                  VORM(": kind byte %02x, of \"MA\"", unsigned{static_cast<uint8_t>(rec.soort)}));
        if (!ean_geldig(code.c_str()))
            kwaal("code " + code + ": not a valid one");
        else if (!code.compare(0, 4, EIGEN))
            hoogste = std::max(hoogste, static_cast<uint32_t>(std::stoul(code.substr(4, 8))));
        const seriesleutel serie = {rec.artikelgroep, rec.kleur, rec.volgnummer};
        const Eanstaat staat = rec.soort == 'M' ? heeft(serie, rec.maat) : Eanstaat::goed;
        if (staat == Eanstaat::dubbel)
            kwaal(VORM("code %s: series %s has another for size %d", code.c_str(), serie_tekst(serie).c_str(),
                       rec.maat));
        else if (staat == Eanstaat::andere_maat)
            kwaal(VORM("code %s: series %s doesn't have size %d", code.c_str(), serie_tekst(serie).c_str(),
                       rec.maat));
        else if (staat != Eanstaat::goed)
            zonder_serie.try_emplace(sleutel_van(serie), code, 0).first->second.second++;
    }
    for (const auto& [serie, codes] : zonder_serie)
        kwaal(VORM("code %s and %d more: of series %s, which isn't there", codes.first.c_str(),
                   codes.second - 1, serie_tekst(sleutel_uit(serie)).c_str()));
    systeller teller;
    int32_t nr = EANTELLER;
    iotab('R', &nr, &teller, SYS_RECORD);
    const auto laatste = static_cast<uint32_t>(teller.laatste);
    if (laatste >= hoogste && laatste <= EANNUMMER_MAX)
        return true;
    kwaal(VORM("DTSYS.TXT system record 14: the last code is %u, ", laatste) +
          (laatste < hoogste ? VORM("there is one of %u", hoogste) : "more than there are"));
    if (herstel) {
        iotab('X', &nr, &teller, SYS_RECORD);
        teller.laatste = static_cast<int32_t>(hoogste);
        if (!iotab('W', &nr, &teller, SYS_RECORD))
            return false;
        meld(VORM("DTEAN: the last code is %u", hoogste));
    }
    return true;
}

} // namespace zg

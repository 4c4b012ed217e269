#include "tools/systeemkeur.h"
#include "control/controle.h"
#include "order/ordrec.h"
#include "shared/files.h"
#include "shared/iofil.h"
#include "shared/iomaat.h"
#include "shared/iotab.h"
#include "shared/syscalls.h"
#include "term/strings.h"
#include "term/vast.h"
#include "tools/veldkeur.h"
#include <algorithm>
#include <cstring>
#include <map>
#include <set>

namespace zg {
namespace {

constexpr int64_t EINDE = SYS_FILIAALREEKS.start + int64_t{SYS_FILIAALREEKS.slots} * SYS_FILIAALREEKS.grootte;
constexpr char SEIZOENEN[] = "ZWK";

// The filled slots of a table.
template <class R, class F> void elk(const Systabel& tabel, F f) {
    Tabelbeeld<R> beeld{tabel};
    for (const auto& s : beeld.alle())
        f(s.nr, s.r);
}

bool er(const Systabel& tabel, int32_t nr) {
    uint8_t ruimte[512];
    return iotab('R', &nr, ruimte, tabel) != 0;
}

void keur_firma(keurbestand* b) {
    auto kwaal = [b](const std::string& wat) { b->kwalen.push_back(wat); };
    for (int i = 0; i < 10; i++)
        if (firma.btw[i] > 1000)
            kwaal(VORM("system record 1: VAT code %d is %d.%d per cent", i + 1, firma.btw[i] / 10,
                       firma.btw[i] % 10));
    if (firma.maatstelsel && !er(SYS_MAATSTELSEL, firma.maatstelsel))
        b->noten.push_back(VORM("system record 1: size system %d isn't there", firma.maatstelsel));
    if (memcmp(status10.release, RELEASE, sizeof status10.release) != 0)
        kwaal("system record 10: release \"" + std::string(VASTUIT(status10.release)) + "\": no program of " +
              RELEASE + "starts");
    if (status10.status > STATUS_KRITIEK && status10.status != STATUS_TEKST)
        kwaal(VORM("system record 10: state %d, which there isn't", status10.status));
    else if (status10.status != STATUS_VRIJ)
        b->noten.push_back(VORM("system record 10: state %d: work is shut", status10.status));
}

void keur_valuta(keurbestand* b) {
    std::set<std::string> codes;
    elk<valutarec>(SYS_VALUTA, [&](int32_t nr, const valutarec& v) {
        const std::string code = VASTTEKST(v.code), wie = VORM("currency %d \"", nr) + code + "\"";
        if (v.decimalen != 0 && v.decimalen != 2)
            b->kwalen.push_back(wie + VORM(": %d decimals", v.decimalen));
        if (!codes.insert(code).second)
            b->kwalen.push_back(wie + ": there twice");
    });
    if (const std::string huis = VASTTEKST(instel15.valuta); !codes.contains(huis))
        b->kwalen.push_back("system record 15: the home currency \"" + huis + "\" isn't there");
}

void keur_gebruikers(keurbestand* b) {
    std::map<std::string, int32_t> namen;
    elk<gebruikerslot>(SYS_GEBRUIKER, [&](int32_t nr, const gebruikerslot& g) {
        const std::string naam = gebruiker_naam(g), wie = VORM("user %d \"", nr) + naam + "\"";
        gebruikerslot ongelezen;
        const bool vrij = iotab('T', &nr, &ongelezen, SYS_GEBRUIKER) != 0;
        if (naam.empty() && g.username[0])
            b->kwalen.push_back(VORM("user %d: a name that can't be read", nr));
        if (const auto [p, nieuw] = namen.emplace(naam, nr); !nieuw && !naam.empty())
            b->noten.push_back(wie + VORM(": also user %d", p->second));
        if (g.userstate > 2 && g.userstate < STAND_KRITIEK)
            b->kwalen.push_back(wie + VORM(": level %d, which there isn't", g.userstate));
        else if (vrij && g.userstate >= STAND_KRITIEK)
            b->kwalen.push_back(wie +
                                ": died in a critical step, no program starts before \"zgstatus free\"");
        else if (vrij && g.userstate == 1)
            b->noten.push_back(wie + ": his program died, or was killed");
        if (g.set > SET_MAX)
            b->kwalen.push_back(wie + VORM(": set %d of codes, of %d", g.set, SET_MAX));
    });
}

// Bars, runs and sets: what stands in bits and sums.
void keur_reeksen(keurbestand* b) {
    auto soort = [b](const std::string& wie, int nr) {
        if (!er(SYS_MAATSOORT, nr))
            b->kwalen.push_back(wie + VORM(": size type %d isn't there", nr));
    };
    elk<maatbalkrec>(SYS_MAATBALK, [&](int32_t nr, const maatbalkrec& m) {
        const std::string wie = VORM("size bar %d", nr);
        soort(wie, m.maatsoort);
        if (std::ranges::all_of(m.maten, [](uint8_t bits) { return bits == 0; }))
            b->kwalen.push_back(wie + ": no sizes");
    });
    elk<maatreeksrec>(SYS_MAATREEKS, [&](int32_t nr, const maatreeksrec& m) {
        const std::string wie = VORM("size run %d", nr);
        soort(wie, m.maatsoort);
        int64_t som = 0;
        for (int i = 1; i <= MATEN; i++)
            som += m.aantal[i];
        if (som != m.aantal[0])
            b->kwalen.push_back(wie + VORM(": its sum is %d, that of its sizes %lld", m.aantal[0],
                                           static_cast<long long>(som)));
    });
    elk<filiaalreeksrec>(SYS_FILIAALREEKS, [&](int32_t nr, const filiaalreeksrec& f) {
        for (int i = firma.filialen; i < 256; i++)
            if (f.filialen[i / 8] >> (i % 8) & 1)
                return b->noten.push_back(VORM("branch set %d: branches that the firm hasn't", nr));
    });
}

// Slots by their fields; slot 0: all of the table.
const struct {
    const char *tabel, *wie;
    const Systabel& plaats;
    int32_t slot;
} SLOTEN[] = {
    {"SYS:firma", "system record", SYS_RECORD, 1},
    {"SYS:teller", "system record", SYS_RECORD, 2},
    {"SYS:teller", "system record", SYS_RECORD, 5},
    {"SYS:afbeelding", "system record", SYS_RECORD, 7},
    {"SYS:status", "system record", SYS_RECORD, 10},
    {"SYS:instel", "system record", SYS_RECORD, 15},
    {"SYS:backup", "system record", SYS_RECORD, 19},
    {"SYS:tekst20", "price class", SYS_PRIJSKLASSE, 0},
    {"SYS:gebruiker", "user", SYS_GEBRUIKER, 0},
    {"SYS:tekst30", "heading of the action codes, slot", SYS_ACTIE_KOP, 0},
    {"SYS:tekst30", "action code", SYS_ACTIE, 0},
    {"SYS:tekst30", "heading of the correction codes, slot", SYS_CORRECTIE_KOP, 0},
    {"SYS:tekst30", "correction code", SYS_CORRECTIE, 0},
    {"SYS:tekst30", "heading of the purchase codes, slot", SYS_INKOOP_KOP, 0},
    {"SYS:tekst30", "purchase code", SYS_INKOOP, 0},
    {"SYS:tekst30", "heading of the part-seasons, slot", SYS_DEELSEIZOEN_KOP, 0},
    {"SYS:tekst30", "part-season", SYS_DEELSEIZOEN, 0},
    {"SYS:valuta", "currency", SYS_VALUTA, 0},
    {"SYS:tekst20", "colour", SYS_KLEUR, 0},
    {"SYS:maatbalk", "size bar", SYS_MAATBALK, 0},
    {"SYS:tekst20", "size system", SYS_MAATSTELSEL, 0},
    {"SYS:tekst20", "size type", SYS_MAATSOORT, 0},
    {"SYS:land", "country", SYS_LAND, 0},
    {"SYS:tekst30", "label kind", SYS_ETIKETSOORT, 0},
    {"SYS:tekst20", "feature kind, slot", SYS_SETCODE, 0},
    {"SYS:maatreeks", "size run", SYS_MAATREEKS, 0},
    {"SYS:artregactie", "dated action", SYS_ARTREGACTIE, 0},
    {"SYS:filiaalreeks", "branch set", SYS_FILIAALREEKS, 0},
};

void keur_velden(keurbestand* b) {
    uint8_t rec[IXRECMAX];
    for (const auto& s : SLOTEN) {
        Veldkeur velden(s.tabel, s.plaats.grootte);
        const int32_t laatste = s.slot ? s.slot : s.plaats.slots;
        for (int32_t nr = std::max(s.slot, 1); nr <= laatste; nr++)
            if (iotab('R', &nr, rec, s.plaats))
                velden.zie(rec, [&] { return VORM("%s %d", s.wie, nr); });
        velden.meld(&b->kwalen);
    }
}

keurbestand tabellen() {
    keurbestand b{"DTSYS.TXT", ""};
    sys_lees();
    const int64_t omvang = SYSOMVANG(iotab_fd());
    if (omvang < EINDE)
        b.kwalen.push_back(VORM("%lld bytes of %lld: what stands behind is empty",
                                static_cast<long long>(omvang), static_cast<long long>(EINDE)));
    keur_firma(&b);
    keur_valuta(&b);
    keur_gebruikers(&b);
    keur_reeksen(&b);
    keur_velden(&b);
    int gebruikers = 0;
    elk<gebruikerslot>(SYS_GEBRUIKER, [&](int32_t, const gebruikerslot&) { gebruikers++; });
    b.telling = keur_aantal(gebruikers, "users");
    return b;
}

keurbestand filialen() {
    keurbestand b{"DTFILGEG.TXT", keur_aantal(firma.filialen, "branches")};
    constexpr int64_t BREED = sizeof(filiaalrec);
    const int64_t omvang = IOSIZE("DTFILGEG.TXT"), nodig = (firma.filialen + 1) * BREED;
    if (!filialen_open()) {
        b.kwalen.push_back(IOEXISTS("DTFILGEG.TXT")
                               ? "can't be read: " + keurlezer("DTFILGEG.TXT").fout + ": no program starts"
                               : "isn't there: no program starts");
        return b;
    }
    if (omvang < nodig)
        b.kwalen.push_back(VORM("%lld bytes, of %lld for %d branches", static_cast<long long>(omvang),
                                static_cast<long long>(nodig), firma.filialen));
    else if (omvang % BREED)
        b.kwalen.push_back("ends inside a record");
    std::map<int, int> nummers;
    const keurlezer bestand("DTFILGEG.TXT");
    Veldkeur velden("DTFILGEG:filiaal", BREED);
    for (int i = 0; i < firma.filialen && (i + 2) * BREED <= omvang; i++) {
        const int nr = iofil_nummer(i);
        if (const auto [p, nieuw] = nummers.emplace(nr, i); !nieuw)
            b.kwalen.push_back(VORM("branch index %d: number %d is also that of index %d", i, nr, p->second));
        filiaalrec op_schijf{};
        SYSLEES(bestand.fd, &op_schijf, sizeof op_schijf, (i + 1) * BREED);
        velden.zie(reinterpret_cast<const uint8_t*>(&op_schijf), [i] { return VORM("branch index %d", i); });
        if (iofil_naam(i).empty())
            b.noten.push_back(VORM("branch index %d: no name", i));
    }
    velden.meld(&b.kwalen);
    return b;
}

keurbestand parameters() {
    keurbestand b{"ORDPARM.SYS", "settings of the order program"};
    std::string bytes;
    ordparm p;
    if (!keur_lees(b.naam, sizeof p, &bytes, &b) || bytes.size() < sizeof p) {
        b.kwalen.push_back(VORM("%zu bytes of %zu: the order program doesn't start", bytes.size(), sizeof p));
        return b;
    }
    memcpy(&p, bytes.data(), sizeof p);
    const std::string map = VORM("%04u%c", p.jaar, p.letter ? p.letter : ' ');
    if (!p.letter || !strchr(SEIZOENEN, p.letter) || p.jaar > 9999)
        b.kwalen.push_back("season \"" + map + "\", which there can't be");
    else if (!IOISDIR(map.c_str()))
        b.kwalen.push_back("the season that is proposed, " + map + ", isn't there: restore it from a copy");
    return b;
}

} // namespace

bool filialen_open() {
    return IOEXISTS("DTFILGEG.TXT") && keurlezer("DTFILGEG.TXT").fd >= 0 && iofil('O', 0, nullptr);
}

keurbestanden systeem_keur() {
    keurbestanden uit{tabellen()};
    uit.push_back(filialen());
    uit.push_back(parameters());
    return uit;
}

} // namespace zg

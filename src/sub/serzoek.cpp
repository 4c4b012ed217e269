// The search for a series by the letters of a key, and its list. The letters say the order; of the file's keys the one
// serves that begins with most of them, and what it lacks is looked for among the records under that beginning.
#include "sub/serzoek.h"
#include "codes/seizoen.h"
#include "shared/report.h"
#include "shared/sleutelstand.h"
#include "sub/merken.h"
#include "sub/omserie.h"
#include "sub/rangorde.h"
#include "sub/serienummer.h"
#include "sub/serletters.h"
#include "sub/teksten.h"
#include "term/ingave.h"
#include "term/lijst.h"
#include "term/prompt.h"
#include "term/vast.h"
#include <algorithm>
#include <cstdlib>
#include <vector>

namespace zg {
namespace {

// ---- by record: the first in the letters' order

struct Beste {
    int sleutel;
    size_t delen; // letters that it begins with
    char
        ertussen; // a number behind them that the letters have later; but for it theirs is the key's order. 0: none
};

char ertussen(const std::string& van_sleutel, const std::string& letters, size_t delen) {
    std::string rest = letters.substr(delen);
    const size_t waar = delen < van_sleutel.size() ? rest.find(van_sleutel[delen]) : std::string::npos;
    if (waar == std::string::npos || serieletter(rest[waar])->type != 'I')
        return 0;
    rest.erase(waar, 1);
    return van_sleutel.substr(delen + 1) == rest ? van_sleutel[delen] : '\0';
}

Beste beste_sleutel(const std::string& letters) {
    Beste uit{1, 0, 0};
    for (int k = 1; k <= dtser->h.nkeys; k++) {
        const std::string van_sleutel = serie_sleutelletters(dtser, k);
        size_t n = 0;
        while (n < letters.size() && n < van_sleutel.size() && letters[n] == van_sleutel[n])
            n++;
        if (n > uit.delen)
            uit = {k, n, ertussen(van_sleutel, letters, n)};
    }
    return uit;
}

// A record with the first n of the letters' fields, and no others.
serrec begin_van(const serrec& rec, const std::string& letters, size_t n) {
    serrec uit{};
    for (size_t i = 0; i < n && i < letters.size(); i++)
        if (const Serieletter* l = serieletter(letters[i]); l && l->type)
            memcpy(reinterpret_cast<char*>(&uit) + l->plaats, reinterpret_cast<const char*>(&rec) + l->plaats,
                   l->breedte);
    return uit;
}

void zet_getal(serrec* rec, const Serieletter& l, uint32_t waarde) {
    memcpy(reinterpret_cast<char*>(rec) + l.plaats, &waarde, l.breedte); // little-endian
}

// The record of the key in force from `plek` on.
bool eerste_record(const serrec& plek, uint8_t* buffer, serrec* rec) {
    memset(buffer, 0, IXRECMAX);
    memcpy(buffer, &plek, sizeof plek);
    const bool er = IXFIRSTR(dtser, buffer, 0) == 1;
    stam_uit(buffer, dtser->h.reclen, rec);
    return er;
}

// By a key with a number in between: of each of its values the first that isn't before `zoek`.
bool eerste_per_waarde(const serrec& zoek, const std::string& letters, const Beste& k, serrec* uit) {
    const Serieletter& l = *serieletter(k.ertussen);
    const auto ervoor = [&](const serrec& a, const serrec& b) {
        return serie_vergelijk(a, b, letters, letters.size()) < 0;
    };
    uint8_t buffer[IXRECMAX];
    serrec rec, plek = begin_van(zoek, letters, k.delen);
    bool gevonden = false;
    for (int rest = dtser->h.nrecs; rest > 0 && eerste_record(plek, buffer, &rec); rest--) {
        if (gevonden && serie_vergelijk(rec, *uit, letters, k.delen) != 0)
            break; // all that have the same beginning have been seen
        const serrec eerste = rec;
        const uint32_t waarde = serie_getal(eerste, l);
        const auto erbij = [&] {
            return serie_getal(rec, l) == waarde && serie_vergelijk(rec, eerste, letters, k.delen) == 0;
        };
        bool er = true;
        if (ervoor(rec, zoek)) {
            plek = zoek;
            zet_getal(&plek, l, waarde);
            er = eerste_record(plek, buffer, &rec);
        }
        for (; er && erbij() && ervoor(rec, zoek); rest--) {
            er = IXNEXT(dtser, buffer) == 1;
            stam_uit(buffer, dtser->h.reclen, &rec);
        }
        if (er && erbij() && (!gevonden || ervoor(rec, *uit))) {
            *uit = rec;
            gevonden = true;
        }
        plek = begin_van(eerste, letters, k.delen);
        zet_getal(&plek, l, waarde + 1);
        if (serie_getal(plek, l) <= waarde)
            break; // it was the highest
    }
    return gevonden;
}

// All that have the beginning that the key has.
bool eerste_van_begin(const serrec& zoek, const std::string& letters, const Beste& k, serrec* uit) {
    const bool heel = k.delen == letters.size();
    uint8_t buffer[IXRECMAX];
    serrec rec, vorige{};
    bool gevonden = false;
    int rest = dtser->h.nrecs + 1;
    for (bool er = eerste_record(begin_van(zoek, letters, k.delen), buffer, &rec); er && rest > 0; rest--) {
        if (gevonden && serie_vergelijk(rec, vorige, letters, k.delen) != 0)
            break;
        vorige = rec;
        if (serie_vergelijk(rec, zoek, letters, letters.size()) >= 0 &&
            (!gevonden || serie_vergelijk(rec, *uit, letters, letters.size()) < 0)) {
            *uit = rec;
            gevonden = true;
            if (heel)
                break;
        }
        er = IXNEXT(dtser, buffer) == 1;
        stam_uit(buffer, dtser->h.reclen, &rec);
    }
    return gevonden;
}

// The first series at or behind `zoek` in the order of the letters; false when there is none.
bool eerste_vanaf(const serrec& zoek, const std::string& letters, serrec* uit) {
    const Beste k = beste_sleutel(letters);
    const Sleutelstand stand(dtser, k.sleutel);
    return k.ertussen ? eerste_per_waarde(zoek, letters, k, uit) : eerste_van_begin(zoek, letters, k, uit);
}

// ---- the fields

struct Veld {
    const Serieletter* l;
    int kolom;
};

enum class Ingave { weg, lijst, onbekend, waarde };

void zet_tekst(serrec* rec, const Serieletter& l, const char* waarde) {
    char* naar = reinterpret_cast<char*>(rec) + l.plaats;
    memset(naar, 0, l.breedte);
    memcpy(naar, waarde, strnlen(waarde, l.breedte));
}

void toon(int rij, const Veld& v, const serrec& rec) {
    SCRPUT(A_WAARDE, rij, v.kolom, "%-*.*s", v.l->kolom, v.l->kolom, serie_waarde(rec, v.l->letter).c_str());
}

// The brand behind a text: digits are its number, else a search name that begins that of one brand alone.
bool lees_merk(const char* tekst, serrec* rec) {
    int aantal = 0;
    const uint16_t merk = merk_van_tekst(tekst, &aantal);
    if (aantal == 1)
        rec->merk = merk;
    else
        error("<%s> %s", tekst, TXT(aantal > 1 ? T_MK_MEERDERE : T_MK_ONBEKEND));
    return aantal == 1;
}

// One field; what it holds comes into *rec. Left empty, it ends the dialogue.
Ingave vraag(int rij, const Veld& v, bool leeg, bool met_lijst, serrec* rec) {
    const Serieletter& l = *v.l;
    char formaat[32], tekst[21] = "";
    snprintf(formaat, sizeof formaat, l.formaat, SEIZOENLETTERS);
    if (leeg)
        strncat(formaat, "I", sizeof formaat - strlen(formaat) - 1);
    const bool getypt = strchr(l.formaat, 's') != nullptr;
    int32_t groot = 0;
    uint16_t klein = 0;
    if (!leeg) {
        const std::string was = serie_waarde(*rec, l.letter);
        snprintf(tekst, sizeof tekst, "%s", was.c_str());
        groot = atoi(was.c_str());
        klein = static_cast<uint16_t>(groot);
    }
    if (met_lijst)
        TOETSAAN(K_F5);
    if (getypt)
        INGAVE(rij, v.kolom, formaat, &SCHERM.toets[key_cancel], tekst);
    else if (strchr(l.formaat, 'l'))
        INGAVE(rij, v.kolom, formaat, &SCHERM.toets[key_cancel], &groot);
    else
        INGAVE(rij, v.kolom, formaat, &SCHERM.toets[key_cancel], &klein);
    if (TOETSWEG())
        return Ingave::weg;
    if (SCHERM.laatste == K_F5)
        return Ingave::lijst;
    if (SCHERM.vlag & V_LEEG)
        return Ingave::weg;
    if (l.letter == 'R')
        return lees_merk(tekst, rec) ? Ingave::waarde : Ingave::onbekend;
    if (l.letter == 'D')
        zet_getal(rec, l, static_cast<uint8_t>(tekst[0]));
    else if (getypt)
        zet_tekst(rec, l, tekst);
    else
        zet_getal(rec, l, strchr(l.formaat, 'l') ? static_cast<uint32_t>(groot) : klein);
    return Ingave::waarde;
}

// ---- the list

struct Loop {
    ICB* icb;
    std::string kolommen; // their letters
    std::string zoekveld; // and that of the field
    LIJST* lijst;
    uint8_t rij[IXRECMAX];
    Rangorde orde{};

    serrec rec() const {
        serrec uit;
        stam_uit(rij, icb->h.reclen, &uit);
        return uit;
    }
} nu;

constexpr int LIJSTBREEDTE = 80, LIJSTTEKST = LIJSTBREEDTE - 4;
constexpr char LIJSTLETTERS[] = "AKVRMmENJSZD";

int32_t haal(int32_t stap) {
    int32_t recnr = static_cast<int32_t>(nu.lijst->positie), goed = recnr;
    if (stap == 0)
        return IXSKIP(nu.icb, nu.rij, 0, 0, &recnr);
    int gedaan = 0;
    for (int over = abs(stap); over > 0 && IXSKIP(nu.icb, nu.rij, 0, stap < 0 ? -1 : 1, &recnr); over--)
        goed = recnr, gedaan++;
    nu.lijst->positie = static_cast<uint32_t>(goed);
    return gedaan != 0 && IXGET(nu.icb, nu.rij, goed) == 1;
}

// Stand on the first record from the key in hand on, else on the last.
bool sta() {
    bool er = IXFIRSTR(nu.icb, nu.rij, 0) == 1;
    if (!er) {
        memset(nu.rij, 0xFF, sizeof nu.rij);
        er = IXLAST(nu.icb, nu.rij) == 1;
    }
    if (er)
        nu.lijst->positie = static_cast<uint32_t>(nu.icb->currec);
    return er;
}

// Which row of how many: the file is walked once.
int64_t rang() {
    auto recnr = static_cast<int32_t>(nu.lijst->positie);
    if (!nu.orde.genomen()) {
        nu.orde.neem(nu.icb, [](const void*) { return true; });
        IXSKIP(nu.icb, nu.rij, 0, 0, &recnr);
    }
    return nu.orde.van(static_cast<int32_t>(nu.lijst->positie));
}

int64_t aantal() {
    rang();
    return nu.orde.aantal();
}

bool rechts(char letter) {
    return strchr("AKV", letter) != nullptr;
}

std::string kolommen(const serrec* rec) {
    std::string uit;
    for (const char letter : nu.kolommen) {
        const Serieletter* l = serieletter(letter);
        const std::string waarde = rec ? serie_waarde(*rec, letter) : std::string(TXT(*l->kop));
        char tekst[32];
        snprintf(tekst, sizeof tekst, rechts(letter) ? "%*.*s " : "%-*.*s ", l->kolom, l->kolom,
                 waarde.c_str());
        if (uit.size() + l->kolom > LIJSTTEKST)
            break;
        uit += tekst;
    }
    return uit;
}

void kopregel() {
    SCRPUT(A_LABEL, 1, 2, "%s", kolommen(nullptr).c_str());
}

const char* regel() {
    static std::string tekst;
    const serrec rec = nu.rec();
    tekst = kolommen(&rec);
    return tekst.c_str();
}

// The search field is the first one of the order.
void toets() {
    const int rij = LIJSTVELDRIJ();
    const Serieletter* l = serieletter(nu.zoekveld[0]);
    SCRCLREOL(rij, 2);
    SCRPUT(A_LABEL, rij, 2, "%s", TXT(*l->label));
    serrec zoek{};
    const Veld veld{l, 3 + static_cast<int>(strlen(TXT(*l->label)))};
    const Ingave uit = vraag(rij, veld, true, false, &zoek);
    if (uit != Ingave::waarde) {
        if (uit != Ingave::weg)
            SCHERM.vlag |= V_LEEG;
        return;
    }
    memset(nu.rij, 0, sizeof nu.rij);
    memcpy(nu.rij, &zoek, sizeof zoek);
    sta();
    nu.lijst->modus = 2;
}

} // namespace

bool serie_lijst(ICB* icb, const char* letters, serrec* rec) {
    const Loop bewaard = nu;
    nu = {icb, "", letters, LIJSTNEW(haal, toets, kopregel, regel), {}, {}};
    if (!nu.lijst)
        NOMEM("serzoek", 1);
    for (const char* bron : {letters, LIJSTLETTERS})
        for (; *bron; bron++)
            if (serieletter(*bron) && serieletter(*bron)->type &&
                nu.kolommen.find(*bron) == std::string::npos)
                nu.kolommen += *bron;
    memcpy(nu.rij, rec, sizeof *rec);
    snprintf(nu.lijst->titel, sizeof nu.lijst->titel, " %s ", TXT(T_SZ_SERIES));
    nu.lijst->breedte = LIJSTBREEDTE;
    nu.lijst->aantal = aantal;
    nu.lijst->rang = rang;
    bool gekozen = false;
    if (sta()) {
        gekozen = LIJSTRUN(nu.lijst, 0) != 0;
        if (gekozen)
            *rec = nu.rec();
    } else {
        MELDBOX(MELD_INFO, TXT(T_SZ_GEEN_INFORMATIE), nullptr, nullptr);
    }
    LIJSTDEL(nu.lijst);
    nu = bewaard;
    return gekozen;
}

bool serie_zoek(int rij, int kolom, const char* letters, serrec* rec) {
    const std::string orde = letters;
    std::vector<Veld> velden;
    for (const char letter : orde) {
        const Serieletter* l = serieletter(letter);
        if (!l || !l->type)
            continue;
        SCRPUT(A_LABEL, rij, kolom, "%s", TXT(*l->label));
        kolom += static_cast<int>(strlen(TXT(*l->label))) + 1;
        velden.push_back({l, kolom});
        kolom += l->kolom + 1;
    }
    serrec zoek{}, gevonden{};
    bool er = false; // is `gevonden` one that begins as what was entered?
    for (size_t i = 0; i < velden.size();) {
        serrec deze = begin_van(er ? gevonden : zoek, orde, i + 1);
        const Ingave uit = vraag(rij, velden[i], !er, true, &deze);
        if (uit == Ingave::weg)
            return false;
        if (uit == Ingave::onbekend)
            continue;
        if (uit == Ingave::lijst) {
            const Sleutelstand stand(dtser, beste_sleutel(orde).sleutel);
            *rec = begin_van(er ? gevonden : zoek, orde, i);
            if (serie_lijst(dtser, letters, rec))
                return true;
            continue;
        }
        zoek = begin_van(deze, orde, i + 1);
        if (!eerste_vanaf(zoek, orde, &gevonden)) {
            error("%s", TXT(T_SZ_GEEN_SERIES));
            zoek = begin_van(zoek, orde, i);
            er = false;
            continue;
        }
        er = true;
        if (serie_vergelijk(gevonden, zoek, orde, i + 1) != 0) {
            const std::string wat = strchr("AKV", velden[i].l->letter)
                                        ? serie_tekst(zoek.serie)
                                        : serie_waarde(zoek, velden[i].l->letter);
            if (velden[i].l->letter == 'V') {
                error("<%s> %s", wat.c_str(), TXT(T_SZ_ONBEKEND));
                return false;
            }
            error("<%s> %s. %s", wat.c_str(), TXT(T_SZ_ONBEKEND), TXT(T_SZ_EERSTVOLGENDE));
            zoek = begin_van(gevonden, orde, i + 1);
            for (size_t k = 0; k <= i; k++)
                toon(rij, velden[k], zoek);
        }
        i++;
    }
    *rec = gevonden;
    return er;
}

} // namespace zg

// The bars of the size type in force: the base bar and its help bars in a list, kept by the toggle grid.
#include "shared/iotab.h"
#include "shared/maatbalk.h"
#include "shared/report.h"
#include "sub/maatsoort.h"
#include "sub/schakelen.h"
#include "sub/teksten.h"
#include "term/keuze.h"
#include "term/lijst.h"
#include "term/prompt.h"
#include "term/teksten.h"
#include "term/vast.h"
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace zg {
namespace {

constexpr int RIJ = 3, HOOGTE = 21, BREEDTE = 80;
constexpr int PAGINA = 18, LAATSTE = 78, CEL = 4; // sizes of a line; F8 below that place
constexpr int KOLOM = 2;

enum Keus { SELECTEREN, TOEVOEGEN, WIJZIGEN, VERWIJDEREN, TONEN };
constexpr char LETTERS[] = "STWV"; // of the actions, in the order of the choices

struct Balk {
    int32_t nr; // 0: the base bar
    uint8_t maten[MAATBYTES];
    std::string namen; // of its sizes, cells of CEL
};

struct Lijststand {
    const char* acties;
    LIJST* lijst;
    std::vector<Balk> balken;
    uint8_t soort;
    size_t van;      // first size of each line that is shown, from 0
    size_t langst;   // sizes of the longest help bar
    bool f6, met_f6; // may that key leave the list; it did
};
Lijststand* st;

void vul() {
    uint8_t alle[MAATBYTES] = {};
    std::vector<mtinfo> maten;
    mtinfo info{};
    for (int er = mtread(maatbalk, 'F', &info, 2); er && maten.size() < size_t{MATEN};
         er = mtread(maatbalk, 'N', &info, 2)) {
        maten.push_back(info);
        maat_aan(alle, info.maatnr);
    }
    st->balken.assign(1, {0, {}, {}});
    memcpy(st->balken[0].maten, alle, sizeof alle);
    st->langst = 0;
    Slot<maatbalkrec> slot{};
    while (iotab('N', &slot, SYS_MAATBALK)) {
        static const uint8_t GEEN[MAATBYTES] = {};
        if (slot.r.maatsoort != st->soort || memcmp(slot.r.maten, GEEN, sizeof GEEN) == 0)
            continue; // an empty bar is no bar
        Balk b{slot.nr, {}, {}};
        for (const mtinfo& m : maten) {
            if (!maat_in(slot.r.maten, m.maatnr))
                continue;
            char cel[CEL + 1];
            snprintf(cel, sizeof cel, "%*.3s", CEL, VASTTEKST(m.naam).c_str());
            b.namen += cel;
            maat_aan(b.maten, m.maatnr);
        }
        st->langst = std::max(st->langst, b.namen.size() / CEL);
        st->balken.push_back(b);
    }
}

const Balk& balk() {
    return st->balken[std::min(static_cast<size_t>(st->lijst->positie), st->balken.size() - 1)];
}

// ---- the actions

// A bar, whose slot is held, in the toggle grid until it is written, or left behind a refused write: without sizes it
// is gone. Then it is let go.
void bewerk(int32_t nr, const Tekst& titel, maatbalkrec* rec) {
    static maatbalkrec geen;
    schakel_open(TXT(titel), rec->maten);
    do
        schakel_bewerk(rec->maten, nullptr);
    while (!iotab('w', &nr, balk_heeft(rec->maten) ? rec : &geen, SYS_MAATBALK) &&
           !JNVRAAG(schakel_vraagrij(), KOLOM, "[-]%s", TXT(T_REC_NIET_VASTLEGGEN)));
    WINCLOSE();
    iotab('U', &nr, rec, SYS_MAATBALK);
}

void voeg_toe() {
    int32_t nr = iotab_vrij(SYS_MAATBALK);
    if (nr == 0) {
        FFLASH(-1, 0, A_WAARDE, nullptr, "%s", TXT(T_BALK_GEEN_VRIJE));
        return;
    }
    maatbalkrec rec{};
    rec.maatsoort = st->soort;
    if (!JNVRAAG(LIJSTVELDRIJ(), KOLOM, "[-]%s", TXT(T_BALK_VRAAG))) {
        iotab('U', &nr, &rec, SYS_MAATBALK);
        return;
    }
    bewerk(nr, T_BALK_W_TOEVOEGEN, &rec);
}

// The bar under the cursor, held and as it is now; false when it is another's by now.
bool neem(int32_t* nr, maatbalkrec* rec) {
    if (iotab('X', nr, rec, SYS_MAATBALK) && rec->maatsoort == st->soort)
        return true;
    iotab('U', nr, rec, SYS_MAATBALK);
    return false;
}

void wijzig() {
    int32_t nr = balk().nr;
    maatbalkrec rec;
    if (neem(&nr, &rec))
        bewerk(nr, T_BALK_W_WIJZIGEN, &rec);
}

void verwijder() {
    int32_t nr = balk().nr;
    maatbalkrec rec;
    if (!neem(&nr, &rec))
        return;
    schakel_open(TXT(T_BALK_W_VERWIJDEREN), rec.maten);
    const bool weg = JNVRAAG(schakel_vraagrij(), KOLOM, "[-]%s", TXT(T_BALK_VERWIJDEREN)) != 0;
    WINCLOSE();
    iotab(weg ? 'D' : 'U', &nr, &rec, SYS_MAATBALK);
}

void toon() {
    schakel_open(TXT(T_BALK_W_OPVRAGEN), balk().maten);
    SCRPUT(A_LABEL, schakel_vraagrij(), KOLOM, "%s", TXT(T_ENTER_VERVOLG));
    BEZIGWIS();
    TOETS();
    BEZIGTOON();
    WINCLOSE();
}

// ---- the list

const char* keustekst(int keus) {
    switch (keus) {
    case SELECTEREN:
        return TXT(T_BALK_SELECTEREN);
    case TOEVOEGEN:
        return TXT(T_BALK_TOEVOEGEN);
    case WIJZIGEN:
        return TXT(T_REC_WIJZIGEN);
    case VERWIJDEREN:
        return TXT(T_REC_VERWIJDEREN);
    default:
        return nullptr;
    }
}

int32_t haal(int32_t stap) {
    const int64_t nu = static_cast<int32_t>(st->lijst->positie);
    int64_t p = nu + stap;
    if (p < 0 && stap < 0 && nu > 0)
        p = 0;
    if (p < 0 || p >= std::ssize(st->balken))
        return 0;
    st->lijst->positie = static_cast<uint32_t>(p);
    return 1;
}

const char* regel() {
    static char tekst[BREEDTE];
    const Balk& b = balk();
    const size_t van = std::min(st->van * CEL, b.namen.size());
    snprintf(tekst, sizeof tekst, "%2d%s", b.nr,
             b.nr == 0 ? TXT(T_BALK_ALLE) : b.namen.substr(van, PAGINA * CEL).c_str());
    return tekst;
}

void kop() {
    SCRCLREOL(1, 1);
    SCRPUT(A_LABEL, 1, 2, "%s", st->van > 0 ? "<<" : "");
    SCRPUT(A_LABEL, 1, 5, "%s", TXT(T_MAAT_MATEN));
    if (st->van + PAGINA < st->langst)
        SCRPUT(A_LABEL, 1, BREEDTE - 3, ">>");
}

void toets() {
    const bool hulp = balk().nr != 0;
    KEUZESTART(keustekst);
    for (int k : {SELECTEREN, TOEVOEGEN, WIJZIGEN, VERWIJDEREN})
        if (strchr(st->acties, LETTERS[k]) && (hulp || k < WIJZIGEN))
            KEUZEAAN(k);
    KEUZELEEG(TONEN);
    if (st->van > 0)
        TOETSAAN(K_F7);
    if (st->van < LAATSTE && st->van + PAGINA < st->langst)
        TOETSAAN(K_F8);
    if (st->f6)
        TOETSAAN(K_F6);
    int keus = KEUZE(LIJSTVELDRIJ(), KOLOM);
    const int32_t toets = SCHERM.laatste;
    if (keus < 0 && toets == K_F3)
        keus = TONEN;
    switch (keus) {
    case SELECTEREN:
        SCHERM.laatste = K_ENTER; // the list closes with the row under the cursor
        SCHERM.vlag |= V_LEEG;
        return;
    case TOEVOEGEN:
        voeg_toe();
        break;
    case WIJZIGEN:
        wijzig();
        break;
    case VERWIJDEREN:
        verwijder();
        break;
    case TONEN:
        toon();
        break;
    default:
        st->met_f6 = toets == K_F6;
        if (st->met_f6)
            SCHERM.laatste = K_CANCEL;
        if (toets != K_F7 && toets != K_F8) {
            SCHERM.vlag |= V_LEEG;
            return;
        }
        st->van = toets == K_F8 ? st->van + PAGINA : st->van - PAGINA;
    }
    vul();
    if (st->van >= st->langst)
        st->van = 0;
    kop();
    st->lijst->modus = 1;
    SCHERM.laatste = K_F8;
    SCHERM.vlag &= ~static_cast<uint32_t>(V_LEEG);
}

} // namespace

bool maatbalk_kiezen(const char* acties, uint8_t* maten, bool f6) {
    if (!maatbalk)
        return false;
    Lijststand stand{gebruiker.userkind == 'I' ? "S" : acties, nullptr, {}, maatbalk->soort, 0, 0, f6, false};
    Lijststand* buiten = st;
    st = &stand;
    vul();
    stand.lijst = LIJSTNEW(haal, toets, kop, regel);
    if (!stand.lijst)
        NOMEM("maatbalk", 1);
    stand.lijst->rij = RIJ, stand.lijst->kolom = 1;
    stand.lijst->hoogte = HOOGTE, stand.lijst->breedte = BREEDTE;
    stand.lijst->positie = 0;
    stand.lijst->vast = 1;
    stand.lijst->aantal = [] { return int64_t{std::ssize(st->balken)}; };
    snprintf(stand.lijst->titel, sizeof stand.lijst->titel, " %-.20s ",
             lijstnaam(MAATSOORTTABEL, {stand.soort, ""}).c_str());
    const bool gekozen = LIJSTRUN(stand.lijst, 0) != 0;
    if (gekozen)
        for (int i = 0; i < MAATBYTES; i++)
            maten[i] |= balk().maten[i];
    LIJSTDEL(stand.lijst);
    if (stand.met_f6)
        SCHERM.laatste = K_F6;
    st = buiten;
    return gekozen;
}

} // namespace zg

// The stored runs of a size type: their list, and how one is made, changed and deleted.
#include "shared/iotab.h"
#include "shared/maatbalk.h"
#include "sub/lijstprint.h"
#include "sub/reeksdelen.h"
#include "sub/teksten.h"
#include "term/prompt.h"
#include "term/teksten.h"
#include <algorithm>
#include <cstring>

namespace zg {
namespace {

enum Keus { SELECTEREN, WIJZIGEN, TOEVOEGEN, VERWIJDEREN, PRINTEN, KEUZES };
constexpr char LETTERS[] = "SWTV"; // printing is always there

const char* acties; // of the list that runs

// What a record holds; a quantity that none can have counts as none.
reeksrij rij_van(const maatreeksrec& rec) {
    reeksrij rij{};
    for (size_t maat = 1; maat < rij.size(); maat++) {
        const int32_t n = rec.aantal[maat];
        rij[maat] = n >= 0 && n <= REEKSMAX ? n : 0;
    }
    reeks_tel(&rij);
    return rij;
}

// Of the row what the bar shows, with its sum.
reeksrij op_balk(const reeksrij& van) {
    reeksrij rij{};
    for (int kol = 1; kol <= balk_kolommen(); kol++) {
        const auto maat = static_cast<size_t>(balk_maat(kol));
        rij[maat] = van[maat];
    }
    reeks_tel(&rij);
    return rij;
}

std::string titel(const Tekst& wat, uint8_t maatsoort) {
    return std::string(TXT(wat)) + " " + TXT(T_REEKS_MAATREEKS) + ", " + reeks_soortnaam(maatsoort);
}

// The row into its slot, which stays held: a run without pieces on the type's sizes is none. 0: refused, told.
bool bewaar(int32_t nr, maatreeksrec* rec, uint8_t maatsoort, const reeksrij& rij) {
    maatreeksrec nieuw{};
    if (op_balk(rij)[0] > 0) {
        nieuw = *rec;
        nieuw.maatsoort = maatsoort;
        memcpy(nieuw.aantal, rij.data(), sizeof nieuw.aantal);
    }
    return iotab('w', &nr, &nieuw, SYS_MAATREEKS) != 0;
}

// A new run, entered; its number, 0 for none.
int32_t voeg_toe(uint8_t maatsoort) {
    const Balkkeuze alle(nullptr);
    maatreeksrec rec{};
    int32_t nr = iotab_vrij(SYS_MAATREEKS);
    if (nr == 0) {
        FFLASH(-1, 0, A_WAARDE, nullptr, "%s", TXT(T_REEKS_GEEN_RUIMTE));
        return 0;
    }
    reeksrij rij{};
    Reeksinvoer in{titel(T_REEKS_TOEVOEGEN, maatsoort)};
    in.afbreekbaar = true;
    reeks_venster(in, rij);
    bool goed = false;
    while (!goed && reeks_invoer(in, &rij) && rij[0] > 0)
        goed = bewaar(nr, &rec, maatsoort, rij);
    WINCLOSE();
    iotab('U', &nr, &rec, SYS_MAATREEKS);
    return goed ? nr : 0;
}

// A run held and as it is now; false when it is another's by now.
bool neem(int32_t* nr, maatreeksrec* rec, uint8_t maatsoort) {
    if (iotab('X', nr, rec, SYS_MAATREEKS) && rec->maatsoort == maatsoort)
        return true;
    iotab('U', nr, rec, SYS_MAATREEKS);
    return false;
}

void wijzig(int32_t nr, uint8_t maatsoort) {
    maatreeksrec rec;
    if (!neem(&nr, &rec, maatsoort))
        return;
    const Balkkeuze alle(nullptr);
    reeksrij rij = rij_van(rec);
    const Reeksinvoer in{titel(T_REEKS_WIJZIGEN, maatsoort)};
    reeks_venster(in, rij);
    for (;;) { // until yes, and written; ESC at the question leaves the run as it was
        reeks_invoer(in, &rij);
        const bool ja = JNVRAAG(REEKSVRAAGRIJ, REEKSKOLOM, "[-]%s", TXT(T_AKKOORD)) != 0;
        if (TOETSWEG() || (ja && bewaar(nr, &rec, maatsoort, rij)))
            break;
    }
    WINCLOSE();
    iotab('U', &nr, &rec, SYS_MAATREEKS);
}

void verwijder(int32_t nr, uint8_t maatsoort) {
    maatreeksrec rec;
    if (!neem(&nr, &rec, maatsoort))
        return;
    const Balkkeuze alle(nullptr);
    reeks_venster({titel(T_REEKS_VERWIJDEREN, maatsoort)}, rij_van(rec));
    const bool weg = JNVRAAG(REEKSVRAAGRIJ, REEKSKOLOM, "[-]%s", TXT(T_REEKS_VERWIJDEREN_VRAAG)) != 0;
    WINCLOSE();
    iotab(weg ? 'D' : 'U', &nr, &rec, SYS_MAATREEKS);
}

const char* keuzetekst(int keus) {
    if (keus == PRINTEN)
        return TXT(T_LIJST_PRINTEN);
    if (keus < 0 || keus >= KEUZES || !strchr(acties, LETTERS[keus]))
        return nullptr;
    return TXT(keus == SELECTEREN  ? T_BALK_SELECTEREN
               : keus == WIJZIGEN  ? T_REC_WIJZIGEN
               : keus == TOEVOEGEN ? T_BALK_TOEVOEGEN
                                   : T_REC_VERWIJDEREN);
}

size_t plaats_van(const std::vector<Reeksregel>& van, int32_t nr, size_t anders) {
    auto r = std::find_if(van.begin(), van.end(), [&](const Reeksregel& x) { return x.nr == nr; });
    return r == van.end() ? anders : static_cast<size_t>(r - van.begin());
}

// The list until a row is selected or it is left.
bool kies(uint8_t maatsoort, reeksrij* rij) {
    const bool mag_toevoegen = strchr(acties, 'T') != nullptr;
    std::vector<Reeksregel> lijst = reeks_regels(maatsoort);
    if (lijst.empty() && mag_toevoegen && voeg_toe(maatsoort))
        lijst = reeks_regels(maatsoort);
    if (lijst.empty())
        return false;
    Reekslijst l{" " + std::string(TXT(T_REEKS_MAATREEKSEN)) + ", " + reeks_soortnaam(maatsoort) + " ",
                 keuzetekst, KEUZES};
    bool gekozen = false;
    reekslijst_open(l);
    for (size_t cursor = 0; !lijst.empty() && !gekozen;) {
        const int keus = reekslijst_kies(l, lijst, &cursor);
        const int32_t nr = lijst[cursor].nr;
        int32_t nieuw = 0;
        if (keus < 0)
            break;
        switch (keus) {
        case SELECTEREN:
            *rij = lijst[cursor].rij;
            gekozen = true;
            continue;
        case TOEVOEGEN:
            nieuw = voeg_toe(maatsoort);
            break;
        case WIJZIGEN:
            wijzig(nr, maatsoort);
            break;
        case VERWIJDEREN:
            verwijder(nr, maatsoort);
            break;
        case PRINTEN:
            reeks_printen(REEKSKEUSRIJ, maatsoort);
            break;
        }
        lijst = reeks_regels(maatsoort);
        cursor =
            plaats_van(lijst, nieuw ? nieuw : nr, lijst.empty() ? 0 : std::min(cursor, lijst.size() - 1));
    }
    WINCLOSE();
    return gekozen;
}

} // namespace

std::vector<Reeksregel> reeks_regels(uint8_t maatsoort) {
    std::vector<Reeksregel> uit;
    Slot<maatreeksrec> slot{};
    while (iotab('N', &slot, SYS_MAATREEKS)) {
        if (slot.r.maatsoort != maatsoort)
            continue;
        const reeksrij rij = op_balk(rij_van(slot.r));
        if (rij[0] > 0)
            uit.push_back({slot.nr, rij});
    }
    return uit;
}

void reeks_op_bestand(uint8_t maatsoort, uint8_t* maten) {
    Slot<maatreeksrec> slot{};
    memset(maten, 0, MAATBYTES);
    while (iotab('N', &slot, SYS_MAATREEKS)) {
        const reeksrij rij = slot.r.maatsoort == maatsoort ? rij_van(slot.r) : reeksrij{};
        for (int maat = 1; maat <= MATEN; maat++)
            if (rij[static_cast<size_t>(maat)] > 0)
                maat_aan(maten, maat);
    }
}

bool reeks_kiezen(uint8_t maatsoort, const char* toegestaan, const uint8_t* maten, reeksrij* rij) {
    uint8_t getoond[MAATBYTES];
    balk_maten(getoond);
    for (int i = 0; maten && i < MAATBYTES; i++)
        getoond[i] &= maten[i];
    const Balkkeuze keuze(getoond);
    if (reeks_geen_maten(maatsoort))
        return false;
    const char* buiten = acties;
    acties = gebruiker.userkind == 'I' ? "S" : toegestaan;
    const bool gekozen = kies(maatsoort, rij);
    acties = buiten;
    return gekozen;
}

} // namespace zg

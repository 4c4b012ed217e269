// Runs laid on the branches of a matrix: the list of the rows that its branches have, a new row, and who has it.
#include "shared/filveld.h"
#include "shared/maatbalk.h"
#include "sub/reeksdelen.h"
#include "sub/teksten.h"
#include "term/scherm.h"
#include "term/toets.h"
#include <algorithm>
#include <cstring>

namespace zg {
namespace {

enum Keus { NIEUW, TOEKENNEN, KEUZES };
constexpr int FILBREEDTE = 60;
constexpr size_t FILBYTES = 32;

struct Stand {
    uint8_t maatsoort;
    aantalmatrix* matrix;
    bool behoud_totalen;
    const uint8_t* uitgesloten;
    std::vector<Reeksregel> regels;
    reeksrij over;
};
Stand* st;

const char* keuzetekst(int keus) {
    return keus == NIEUW ? TXT(T_REEKS_NIEUWE) : keus == TOEKENNEN ? TXT(T_REEKS_TOEKENNEN) : nullptr;
}

int filkolom() {
    return REEKSKOLOM + static_cast<int>(strlen(TXT(T_REEKS_FILIALEN))) + 1;
}

std::string detail(const reeksrij& rij) {
    uint8_t filialen[FILBYTES];
    reeks_branches(*st->matrix, rij, filialen);
    std::string tekst = filreeks_tekst(filialen);
    if (tekst.size() > size_t{FILBREEDTE})
        tekst.resize(FILBREEDTE);
    return std::string(TXT(T_REEKS_FILIALEN)) + " " + tekst;
}

void vul() {
    st->regels.clear();
    for (const reeksrij& rij : reeks_gebruikt(*st->matrix))
        st->regels.push_back({0, rij});
    if (st->behoud_totalen)
        reeks_over(*st->matrix, &st->over);
}

bool kies_bewaarde(reeksrij* rij) {
    return reeks_kiezen(st->maatsoort, "SWTV", nullptr, rij);
}

// A row, entered or picked; false without pieces.
bool nieuwe_reeks(reeksrij* rij) {
    Reeksinvoer in{std::string(TXT(T_REEKS_NIEUW)) + ", " + reeks_soortnaam(st->maatsoort)};
    in.totalen = st->behoud_totalen ? matrix_totalen(*st->matrix) : nullptr;
    in.vervang = kies_bewaarde;
    in.doorlopend = false;
    reeks_op_bestand(st->maatsoort, in.f5);
    *rij = {};
    reeks_venster(in, *rij);
    reeks_invoer(in, rij);
    WINCLOSE();
    return (*rij)[0] > 0;
}

// The branches of a row: those in the text get it, those that are taken out are emptied. An excluded branch gets it
// only if it had it.
void ken_toe(const reeksrij& rij) {
    uint8_t was[FILBYTES], nu[FILBYTES], weg[FILBYTES];
    reeks_branches(*st->matrix, rij, was);
    memcpy(nu, was, sizeof nu);
    SCRCLREOL(REEKSDETAILRIJ, 1);
    SCRPUT(A_LABEL, REEKSDETAILRIJ, REEKSKOLOM, "%s", TXT(T_REEKS_FILIALEN));
    if (!filreeks_veld(REEKSDETAILRIJ, filkolom(), FILBREEDTE, "", nu))
        return;
    for (size_t i = 0; i < FILBYTES; i++) {
        if (st->uitgesloten)
            nu[i] &= static_cast<uint8_t>(~st->uitgesloten[i] | was[i]);
        weg[i] = was[i] & static_cast<uint8_t>(~nu[i]);
    }
    reeks_wissen(st->matrix, weg);
    reeks_toekennen(st->matrix, rij, nu);
    if (!st->behoud_totalen)
        fmtotals(st->matrix);
}

size_t plaats_van(const reeksrij& rij, size_t anders) {
    for (size_t i = 0; i < st->regels.size(); i++)
        if (st->regels[i].rij == rij)
            return i;
    return st->regels.empty() ? 0 : std::min(anders, st->regels.size() - 1);
}

void loop() {
    Reekslijst l{TXT(T_REEKS_GEBRUIKTE), keuzetekst, KEUZES};
    l.detail = detail;
    reekslijst_open(l);
    vul();
    for (size_t cursor = 0;;) {
        if (st->behoud_totalen)
            l.totalen = matrix_totalen(*st->matrix), l.over = st->over.data();
        reeksrij rij{};
        int keus = NIEUW; // an empty table has no list
        if (!st->regels.empty())
            keus = reekslijst_kies(l, st->regels, &cursor);
        if (keus < 0)
            break;
        if (keus == TOEKENNEN) {
            rij = st->regels[cursor].rij;
            ken_toe(rij);
        } else if (nieuwe_reeks(&rij)) {
            // Shown with the others while its branches are asked.
            std::vector<Reeksregel> met = st->regels;
            met.push_back({0, rij});
            reekslijst_toon(l, met, met.size() - 1);
            ken_toe(rij);
        } else if (st->regels.empty()) {
            break;
        }
        vul();
        cursor = plaats_van(rij, cursor);
    }
    WINCLOSE();
}

} // namespace

bool reeks_scherm(uint8_t maatsoort, aantalmatrix* matrix, bool behoud_totalen, const uint8_t* uitgesloten) {
    if (reeks_geen_maten(maatsoort))
        return false;
    const aantalmatrix was = *matrix;
    Stand stand{maatsoort, matrix, behoud_totalen, uitgesloten, {}, {}};
    Stand* buiten = st;
    st = &stand;
    loop();
    st = buiten;
    return *matrix != was;
}

} // namespace zg

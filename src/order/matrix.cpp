// The order matrix, see order/matrix.h. Rows and columns are those of its window, 21 by 78 inside the border.
#include "order/matrix.h"
#include "order/bestanden.h"
#include "order/programma.h"
#include "order/regelscherm.h"
#include "order/regelstam.h"
#include "order/register.h"
#include "order/teksten.h"
#include "price/ing_val.h"
#include "shared/maatbalk.h"
#include "shared/teksten.h"
#include "term/dm_hdl.h"
#include "term/ingave.h"
#include "term/prompt.h"
#include "term/teksten.h"
#include "term/vast.h"
#include <algorithm>
#include <cstring>
#include <iterator>
#include <tuple>

namespace zg {

namespace {

constexpr int KOPRIJ = 3, EERSTE_RIJ = 4, RIJEN = 17, ONDERRIJ = 21;
constexpr int MAATBREEDTE = 5, MATEN_OP_RIJ = 12; // size columns shown, and the step sideways

// A product of a quantity and a price fits in 64 bits; their sum need not, in a file that holds anything.
void tel_op(int64_t* som, int64_t deel) {
    constexpr int64_t GRENS = 9'000'000'000'000'000'000;
    if (__builtin_add_overflow(*som, deel, som))
        *som = GRENS;
    *som = std::min(*som, GRENS);
}

void tel_maten(const uint8_t* maten, matrixrij* rij) {
    for (int i = 0; i < MAATBYTES; i++)
        rij->maten[i] |= maten[i];
}

// The size system of each brand and type met: finding it reads the size table.
class Stelsels {
public:
    uint8_t van(const ordmodel& m) {
        auto [plaats, nieuw] = gezien_.try_emplace({m.merk, m.maatsoort}, uint8_t{0});
        if (nieuw) {
            leesmerk(dtmerk, &merk_, m.merk);
            plaats->second = model_stelsel(m, merk_);
        }
        return plaats->second;
    }

private:
    merkrec merk_{};
    std::map<std::pair<uint16_t, uint8_t>, uint8_t> gezien_;
};

bool past(Matrixkeuze keuze, const ordmodel& m, const ordmodel& als) {
    return keuze == Matrixkeuze::op_model ? VASTGELIJK(m.model, VASTUIT(als.model))
                                          : m.artikelgroep == als.artikelgroep;
}

// One screen: the rows of a block from `eerste` to before `eind`, and the sizes of that block.
struct Blad {
    std::map<matrixsleutel, matrixrij>::const_iterator eerste, eind;
    const uint8_t* maten;
};

// Each size type begins a screen, and so does every eighteenth row of it.
std::vector<Blad> bladen(const ordermatrix& matrix) {
    std::vector<Blad> uit;
    int teller = 0;
    for (auto rij = matrix.rijen.begin(); rij != matrix.rijen.end(); ++rij) {
        if (teller++ % RIJEN == 0)
            uit.push_back({rij, rij, nullptr});
        uit.back().eind = std::next(rij);
        if (!rij->first.totaal)
            continue;
        for (auto blad = uit.rbegin(); blad != uit.rend() && !blad->maten; ++blad)
            blad->maten = rij->second.maten;
        teller = 0;
    }
    return uit;
}

void teken_kop(int kolom) {
    const bool rechts = kolom + MATEN_OP_RIJ <= balk_kolommen();
    SCRPUT(A_LABEL, KOPRIJ, 1, "%3.3s %-2.2s %5.5s%s", TXT(T_K_KLEUR), TXT(T_K_KENMERK), TXT(T_MX_TOT),
           kolom == 1 ? "   " : " <<");
    for (int i = 0; i < MATEN_OP_RIJ && kolom + i <= balk_kolommen(); i++)
        SCRADD(" %4.4s", std::string(VASTTRIM(balk_naam(kolom + i))).c_str());
    SCRADD("%s", rechts ? " >>" : "   ");
    SCRCLREOL(KOPRIJ, WINKOLOM());
}

void teken_rij(int op, const matrixsleutel& sleutel, const matrixrij& rij, int kolom) {
    std::string tekst = sleutel.totaal ? "***   "
                                       : regel_getal(sleutel.kleur, 3) + " " +
                                             VASTTEKST(sleutel.kenmerk).append("  ").substr(0, 2);
    tekst += " " + regel_getal(rij.aantal[0], 5) + "   ";
    for (int i = 0; i < MATEN_OP_RIJ && kolom + i <= balk_kolommen(); i++)
        tekst += " " + regel_getal(rij.aantal[balk_maat(kolom + i)], MAATBREEDTE - 1);
    SCRPUT(A_WAARDE, op, 1, "%-78s", tekst.c_str());
}

void teken(const std::vector<Blad>& alle, size_t nr, int kolom) {
    const Blad& blad = alle[nr];
    const matrixsleutel& eerste = blad.eerste->first;
    balk_open(eerste.stelsel, eerste.maatsoort, blad.maten);
    SCRPUT(A_LABEL, 2, 66, "%s", TXT(T_MX_SCHERM));
    SCRADD(" %zu/%zu", nr + 1, alle.size());
    SCRCLREOL(2, WINKOLOM());
    teken_kop(kolom);
    int op = EERSTE_RIJ;
    for (auto rij = blad.eerste; rij != blad.eind; ++rij)
        teken_rij(op++, rij->first, rij->second, kolom);
    for (; op < EERSTE_RIJ + RIJEN; op++)
        SCRCLREOL(op, 1);
}

void teken_rand(Matrixkeuze keuze, const ordmodel& als, const ordermatrix& matrix) {
    if (keuze == Matrixkeuze::op_model) {
        SCRPUT(A_LABEL, 1, 2, "%s", TXT(T_MX_MODEL));
        SCRPUT(A_WAARDE, 1, 9, "%s", VASTTEKST(als.model).c_str());
    } else {
        artrec groep{};
        leesart(dtart, &groep, als.artikelgroep);
        SCRPUT(A_LABEL, 1, 2, "%s", TXT(T_MX_ARTG));
        SCRPUT(A_WAARDE, 1, 9, "%d %s", als.artikelgroep, VASTTEKST(groep.omschrijving).c_str());
    }
    const std::string valuta = valuta_of_thuis(std::string(kop.valuta, sizeof kop.valuta).c_str());
    SCRPUT(A_LABEL, ONDERRIJ, 35, "%s", TXT(T_F_NETTO));
    SCRPUT(A_WAARDE, ONDERRIJ, 41, "%s %-3.3s", regel_bedrag(valuta, matrix.netto, 11).c_str(),
           valuta.c_str());
    SCRPUT(A_LABEL, ONDERRIJ, 60, "%s", TXT(T_F_INKOOP));
    SCRPUT(A_WAARDE, ONDERRIJ, 67, "%s", regel_bedrag(valuta_of_thuis(""), matrix.inkoop, 11).c_str());
}

// One of "LR-+", 'H' for help; 0 when the user leaves.
char vraag() {
    const std::string prompt = std::string(TXT(T_UW_KEUZE)) + "  ";
    SCRPUT(A_LABEL, ONDERRIJ, 1, "%s", prompt.c_str());
    for (;;) {
        char letter = '\0';
        TOETSAAN(K_HELP);
        INGAVE(ONDERRIJ, 1 + static_cast<int>(prompt.size()), "1c[LR],UA", &SCHERM.toets[key_pgup],
               &SCHERM.toets[key_pgdn], &SCHERM.toets[key_cancel], &letter);
        if (TOETSWEG())
            return 0;
        switch (SCHERM.laatste) {
        case K_PGUP:
            return '-';
        case K_PGDN:
            return '+';
        case K_HELP:
        case K_F1:
            return 'H';
        }
        if (letter == 'L' || letter == 'R')
            return letter;
    }
}

void bekijk(const std::vector<Blad>& alle) {
    size_t nr = 0;
    int kolom = 1;
    for (;;) {
        teken(alle, nr, kolom);
        const matrixsleutel soort = alle[nr].eerste->first;
        const size_t was = nr;
        const int stond = kolom;
        switch (vraag()) {
        case 'L':
            kolom = std::max(kolom - MATEN_OP_RIJ, 1);
            break;
        case 'R':
            if (kolom + MATEN_OP_RIJ <= balk_kolommen())
                kolom += MATEN_OP_RIJ;
            break;
        case '-':
            nr -= nr > 0;
            break;
        case '+':
            nr += nr + 1 < alle.size();
            break;
        case 'H':
            FFLASH(-1, 1, A_WAARDE, TXT(T_MX_MOGELIJKHEDEN), "%s\n%s\n%s\n%s", TXT(T_MX_PGUP), TXT(T_MX_PGDN),
                   TXT(T_MX_LINKS), TXT(T_MX_RECHTS));
            continue;
        default:
            return;
        }
        if (nr == was && kolom == stond)
            PIEP();
        const matrixsleutel& nu = alle[nr].eerste->first;
        if (nu.maatsoort != soort.maatsoort || nu.stelsel != soort.stelsel)
            kolom = 1; // other sizes
    }
}

// The choice of the previous call comes first. False when the user leaves.
bool kies(Matrixkeuze* keuze) {
    static int vorige = static_cast<int>(Matrixkeuze::op_model);
    DMREC* menu = DMNEW(TXT(T_MX_TITEL));
    DMITEM(menu, TXT(T_MX_1_MODEL), static_cast<int>(Matrixkeuze::op_model), 1);
    DMITEM(menu, TXT(T_MX_2_ARTIKELGROEP), static_cast<int>(Matrixkeuze::op_groep), 1);
    const int gekozen = DMRUN(menu, REGELRIJ, vorige);
    if (TOETSWEG() || SCHERM.laatste == K_F6)
        return false;
    vorige = gekozen;
    *keuze = static_cast<Matrixkeuze>(gekozen);
    return true;
}

} // namespace

bool operator<(const matrixsleutel& a, const matrixsleutel& b) {
    auto begin = [](const matrixsleutel& s) { return std::tuple(s.maatsoort, s.stelsel, s.totaal, s.kleur); };
    return begin(a) != begin(b) ? begin(a) < begin(b) : IXCOLLATE(a.kenmerk, b.kenmerk, sizeof a.kenmerk) < 0;
}

ordermatrix matrix_bouw(Matrixkeuze keuze, const ordmodel& als) {
    ordermatrix uit{};
    Stelsels stelsels;
    regelloop loop;
    regelloop_begin(&loop);
    orderregel regel;
    Serie serie;
    labelsom som;
    ors_ingang in{};
    for (bool er = ors_lees('F', &in); er; er = ors_lees('N', &in)) {
        if (!registermodus && in.m == loop.m && !past(keuze, loop.model, als))
            continue; // another line of a model that isn't ours
        // In the full registration a line that can't be loaded has its row, without pieces.
        if ((!regel_som(&loop, in, &regel, &serie, &som) && !registermodus) || !past(keuze, regel.model, als))
            continue;
        matrixsleutel sleutel{
            regel.model.maatsoort, stelsels.van(regel.model), false, regel.dessin.kleur, {}};
        for (size_t i = 0; i < sizeof sleutel.kenmerk; i++)
            sleutel.kenmerk[i] = regel.dessin.kenmerk[i] ? regel.dessin.kenmerk[i] : ' ';
        matrixrij& rij = uit.rijen[sleutel];
        sleutel.totaal = true;
        sleutel.kleur = 0;
        memset(sleutel.kenmerk, ' ', sizeof sleutel.kenmerk);
        matrixrij& totaal = uit.rijen[sleutel];
        tel_maten(regel.dessin.maten, &rij);
        tel_maten(regel.dessin.maten, &totaal);
        for (int maat = 1; maat <= MATEN; maat++) {
            const int64_t aantal = som.besteld[maat];
            if (aantal <= 0)
                continue;
            for (matrixrij* r : {&rij, &totaal})
                r->aantal[0] += aantal, r->aantal[maat] += aantal, maat_aan(r->maten, maat);
            tel_op(&uit.netto, aantal * up_lees(regel.prijzen.netto, maat));
            tel_op(&uit.inkoop, aantal * up_lees(regel.prijzen.inkoop, maat));
        }
    }
    return uit;
}

void order_matrix() {
    Matrixkeuze keuze;
    if (!kies(&keuze))
        return;
    const ordmodel als = regel_nu.model;
    const ordermatrix matrix = matrix_bouw(keuze, als);
    if (matrix.rijen.empty()) {
        MELDBOX(MELD_INFO, TXT(T_GEEN_INFO), nullptr, nullptr);
        return;
    }
    WINOPEN1(2, 1, SCHERM.lines - 2, 80);
    WINBOX(nullptr);
    WINVOET(TXT(T_VOET_ESC));
    teken_rand(keuze, als, matrix);
    bekijk(bladen(matrix));
    WINCLOSE();
}

} // namespace zg

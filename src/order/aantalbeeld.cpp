// The window of order/aantalbeeld.h. Its rows: term and series, sizes, branches, totals, what is free, the line's
// names, and the choices on the last.
#include "order/aantalbeeld.h"
#include "order/programma.h"
#include "order/regelstam.h"
#include "shared/iofil.h"
#include "shared/maatbalk.h"
#include "sub/teksten.h"
#include "term/datum.h"
#include "term/keuze.h"
#include "term/prompt.h"
#include "term/teksten.h"
#include "term/vast.h"
#include <algorithm>
#include <cstring>

namespace zg {

Matrixscherm aantalgrid;

namespace {

constexpr int WINRIJ_AANTALLEN = 6, KOPRIJ = 2, LABELKOLOM = 2, DATUMKOLOM = 16;
constexpr uint8_t PER_TOETS = 1; // of orderparameters.invoerstijl

bool opgeefbaar, opgegeven; // by F6

bool een() {
    return firma.filialen == 1;
}

template <bool MEER> const char* overnametekst(int k) {
    static const Tekst* const T[] = {&T_A_NIEUWE_INGAVE, &T_A_AANTALLEN_OVER, &T_A_TOTALEN_OVER,
                                     MEER ? &T_A_VERDELINGEN_OVER : &T_A_VERDELING_OVER};
    return k >= 0 && k <= OVER_VERDELING ? TXT(*T[k]) : nullptr;
}

// A text with its runs of '_' replaced by numbers, each right in its run.
std::string ingevuld(std::string tekst, std::initializer_list<int64_t> getallen) {
    size_t plaats = 0;
    for (int64_t getal : getallen) {
        const size_t van = tekst.find('_', plaats);
        if (van == std::string::npos)
            break;
        const size_t tot = std::min(tekst.find_first_not_of('_', van), tekst.size());
        std::string cijfers = std::to_string(getal);
        cijfers.insert(0, tot - van > cijfers.size() ? tot - van - cijfers.size() : 0, ' ');
        tekst.replace(van, tot - van, cijfers);
        plaats = van + cijfers.size();
    }
    return tekst;
}

std::string serietekst() {
    const int32_t groep = regel_nu.model.artikelgroep;
    const uint16_t kleur = regel_nu.dessin.kleur, volgnummer = regel_nu.dessin.volgnummer;
    if (!volgnummer)
        return ingevuld(TXT(een() ? T_A_ARTIKEL_EEN : T_A_ARTIKEL), {groep, kleur});
    return TXT(T_A_SERIENUMMER) + std::to_string(groep) + "." + std::to_string(kleur) + "." +
           std::to_string(volgnummer);
}

} // namespace

bool beeld_open() {
    opgegeven = false;
    if (firma.filialen == 0) {
        MELDBOX(MELD_INFO, TXT(T_A_GEEN_FILIALEN), nullptr, nullptr);
        return false;
    }
    regelstam_lees(&regel_nu);
    if (!regel_balk(regel_nu)) {
        error("%s %u: %s", TXT(T_MAAT_NUMMER), regel_nu.model.maatsoort, TXT(T_MAAT_GEEN_MATEN));
        return false;
    }
    WINOPEN1(WINRIJ_AANTALLEN, 1, een() ? 8 : std::min(firma.filialen + 9, SCHERM.lines - 9), SCHERM.cols);
    WINBOX(nullptr);
    return true;
}

void beeld_sluit() {
    WINCLOSE();
}

void beeld_ververs() {
    regelstam_lees(&regel_nu);
    regel_balk(regel_nu);
}

void beeld_begin(const aantalmatrix& matrix) {
    aantalgrid = {};
    aantalgrid.uitgesloten = regel_uitgesloten();
    aantalgrid.magazijn = regel_magazijn();
    // The other terms count with the line, and what was delivered of it.
    aantalgrid.meest = static_cast<int32_t>(std::clamp<int64_t>(
        int64_t{INT32_MAX} - matrix_totalen(regel_nu.order_aantallen)[0] + matrix_totalen(matrix)[0], 0,
        INT32_MAX));
    aantalgrid.opgeefbaar = opgeefbaar;
    aantalgrid.sneltoetsen = orderparameters.invoerstijl == PER_TOETS ? sneltoetsen.c_str() : nullptr;
    matrix_begin(&aantalgrid, KOPRIJ, een() ? KOPRIJ : WINHOOGTE() - 5, matrix);
}

void beeld_titel(const Tekst& titel) {
    WINBOX(" %s ", TXT(titel));
}

void beeld_teken(const Tekst& titel, const char* dagen, const aantalmatrix& matrix, const char* hoeveel) {
    SCRCLREOW(1, 1);
    beeld_titel(titel);
    if (*dagen)
        SCRPUT(A_LABEL, 1, LABELKOLOM, "%s", TXT(T_A_TERMIJN));
    SCRPUT(A_WAARDE, 1, *dagen ? DATUMKOLOM : LABELKOLOM, "%s", *dagen ? dagen : hoeveel);
    const std::string serie = serietekst();
    SCRPUT(A_LABEL, 1, WINBREEDTE() - static_cast<int>(serie.size()), "%s", serie.c_str());
    SCRPUT(A_WAARDE, WINHOOGTE() - (een() ? 1 : 2), LABELKOLOM, "%-4.4s %-15.15s %-12.12s %-12.12s %-2.2s",
           regelmerk.merk ? VASTTEKST(regelmerk.zoeknaam).c_str() : "",
           VASTTEKST(regel_nu.model.model).c_str(), VASTTEKST(regel_nu.dessin.materiaal).c_str(),
           VASTTEKST(regel_nu.dessin.dessin).c_str(), VASTTEKST(regel_nu.dessin.kenmerk).c_str());
    matrix_teken(&aantalgrid, matrix);
}

void beeld_som(const Tekst& titel, const aantalmatrix& matrix) {
    const levtermen& termen = regel_nu.termen;
    char hoeveel[48] = "";
    if (termen.size() > 1)
        snprintf(hoeveel, sizeof hoeveel, "%zu %s", termen.size(), TXT(T_A_TERMIJNEN));
    beeld_teken(titel, termen.size() == 1 ? beeld_termijn(termen[0].van, termen[0].tot, 1, 1) : "", matrix,
                hoeveel);
}

const char* beeld_termijn(uint16_t van, uint16_t tot, int nr, int aantal) {
    static char tekst[48];
    int n = snprintf(tekst, sizeof tekst, "%s - ", DATUM6(van));
    n += snprintf(tekst + n, sizeof tekst - static_cast<size_t>(n), "%s", DATUM6(tot));
    if (aantal > 1)
        snprintf(tekst + n, sizeof tekst - static_cast<size_t>(n), "   %d/%d", nr, aantal);
    return tekst;
}

int beeld_keusrij() {
    return WINHOOGTE();
}

void beeld_toetsen_aan() {
    const RASTER& r = aantalgrid.raster;
    TOETSAAN(K_CANCEL);
    if (r.eerstekol > 1 || r.laatstekol < r.kolommen)
        TOETSAAN(K_F7), TOETSAAN(K_F8);
    if (!een() && (r.eersterij > 0 || r.zichttot < r.laatsterij))
        TOETSAAN(K_PGUP), TOETSAAN(K_PGDN);
}

void beeld_blader(int32_t toets) {
    RASTER* r = &aantalgrid.raster;
    auto stappen = [&](char richting, bool er_is_meer) {
        if (er_is_meer)
            return RASTERSTAP(r, richting);
        // At the end: as far as it goes the other way.
        const char terug = richting == 'R' ? 'L' : richting == 'L' ? 'R' : richting == 'D' ? 'U' : 'D';
        for (int n = 0; n < MATEN + FILIALEN; n++)
            RASTERSTAP(r, terug);
    };
    if (toets == K_F7)
        stappen('L', r->eerstekol > 1);
    else if (toets == K_F8)
        stappen('R', r->laatstekol < r->kolommen);
    else if (toets == K_PGUP)
        stappen('U', r->eersterij > 0);
    else if (toets == K_PGDN)
        stappen('D', r->zichttot < r->laatsterij);
}

void beeld_opgeefbaar(bool ja) {
    opgeefbaar = ja;
    if (ja)
        opgegeven = false;
}

void beeld_f6_aan() {
    if (opgeefbaar)
        TOETSAAN(K_F6);
}

bool beeld_opgegeven() {
    if (!opgeefbaar || SCHERM.laatste != K_F6)
        return false;
    opgegeven = JNVRAAG(beeld_keusrij(), LABELKOLOM, "[-]%s", TXT(T_TOEVOEGEN_AFBREKEN)) != 0;
    SCRCLREOL(beeld_keusrij(), 1);
    return opgegeven;
}

bool beeld_is_opgegeven() {
    return opgegeven;
}

void beeld_overname(const aantalmatrix& matrix, bool meer_termen) {
    KEUZESTART(meer_termen ? overnametekst<true> : overnametekst<false>);
    KEUZEAAN(OVER_NIEUW);
    if (een_filiaal(matrix) == firma.filialen) {
        KEUZEAAN(OVER_TOTALEN);
        KEUZEAAN(OVER_VERDELING);
    } else {
        KEUZEAAN(OVER_AANTALLEN);
    }
    beeld_f6_aan();
}

bool termijn_boek(uint16_t van, uint16_t tot, const aantalmatrix& oud, const aantalmatrix& werk) {
    const int64_t erbij = int64_t{matrix_totalen(werk)[0]} - matrix_totalen(oud)[0];
    for (const aantalmatrix* m : {&regel_nu.nota_aantallen, &regel_nu.order_aantallen})
        if (matrix_totalen(*m)[0] + erbij > INT32_MAX) {
            MELDBOX(MELD_INFO, TXT(T_A_TE_VEEL), nullptr, nullptr);
            return false;
        }
    // What goes first, so that no sum passes its end.
    for (bool weg : {true, false})
        for (int f = 0; f < firma.filialen; f++)
            for (int maat = 1; maat <= MATEN; maat++)
                if (const int32_t verschil = matrix_cel(werk, f, maat) - matrix_cel(oud, f, maat);
                    verschil != 0 && (verschil < 0) == weg) {
                    fmadd(&regel_nu.nota_aantallen, f, maat, verschil);
                    fmadd(&regel_nu.order_aantallen, f, maat, verschil);
                }
    lt_schrijf(&regel_nu.termen, van, tot, werk);
    return true;
}

void naar_een_filiaal(aantalmatrix* matrix) {
    const int naar = std::max(regel_magazijn(), 0);
    for (int f = 0; f < firma.filialen; f++)
        if (f != naar)
            std::fill_n(matrix->begin() + static_cast<ptrdiff_t>(matrix_plaats(f, 0)), MAATKOLOMMEN, 0);
    std::copy_n(matrix_totalen(*matrix), MAATKOLOMMEN,
                matrix->begin() + static_cast<ptrdiff_t>(matrix_plaats(naar, 0)));
}

} // namespace zg

// "A&fdrukken": what of the order is printed, and where to. The choices of the last time are the defaults.
#include "order/bestanden.h"
#include "order/printorder.h"
#include "order/programma.h"
#include "order/teksten.h"
#include "order/wrk.h"
#include "print/xprt.h"
#include "shared/teksten.h"
#include "term/datum.h"
#include "term/ingave.h"
#include "term/keuze.h"
#include "term/natl.h"
#include "term/prompt.h"
#include "term/vast.h"
#include <cstdio>
#include <cstring>
#include <string>

namespace zg {
namespace {

enum Doel { D_PRINTER, D_SCHERM, D_TEKST, D_PDF, D_AANTAL };
constexpr int BESTANDKOLOM = 11;
constexpr int BESTANDNAAM = 39; // the longest that the print layer takes

const char* bladtekst(int k) {
    static const Tekst* const T[] = {&T_PO_KORT, &T_PO_VOLLEDIG, &T_PO_PER_FILIAAL};
    return k >= 0 && k < 3 ? TXT(*T[k]) : nullptr;
}
const char* prijstekst(int k) {
    return k == 0 ? TXT(T_PO_MET) : k == 1 ? TXT(T_PO_ZONDER) : nullptr;
}
const char* doeltekst(int k) {
    static const Tekst* const T[D_AANTAL] = {&T_PO_PRINTER, &T_PO_BEELDSCHERM, &T_PO_TEKSTBESTAND, &T_PO_PDF};
    return k >= 0 && k < D_AANTAL ? TXT(*T[k]) : nullptr;
}

// One choice out of `aantal`; false when it was left.
bool kies(int rij, Keuzetekst tekst, int aantal, int* keus) {
    KEUZESTART(tekst);
    for (int k = 0; k < aantal; k++)
        KEUZEAAN(k);
    KEUZEVAST(*keus);
    TOETSAAN(K_CANCEL);
    const int gekozen = KEUZE(rij, 1);
    if (gekozen < 0)
        return false;
    *keus = gekozen;
    return true;
}

// The name of a file: number of the order, or its supplier and day; one for a PDF ends so. False when it was left, or empty.
bool vraag_bestand(int rij, const char* ext, std::string* naam) {
    char tekst[BESTANDNAAM + 1];
    if (kop.ordernummer)
        snprintf(tekst, sizeof tekst, "order%d.%s", kop.ordernummer, ext);
    else
        snprintf(tekst, sizeof tekst, "order%u-%s.%s", kop.leverancier, DATUM6(kop.orderdatum), ext);
    char formaat[16];
    snprintf(formaat, sizeof formaat, "%ds,", BESTANDNAAM);
    SCRCLREOL(rij, 1);
    SCRPUT(A_LABEL, rij, 1, "%-8.8s: ", TXT(T_PO_BESTAND));
    INGAVE(rij, BESTANDKOLOM, formaat, &SCHERM.toets[key_cancel], tekst);
    const bool weg = TOETSWEG();
    SCRCLREOL(rij, 1);
    *naam = VASTTRIM(tekst);
    const std::string staart = std::string(".") + ext, laatste = naam->substr(naam->rfind('/') + 1);
    const bool map = laatste.empty() || laatste == "." || laatste == ".."; // refused as it stands
    if (*ext == 'p' && !map && !GROOTKOPIE(*naam).ends_with(GROOTKOPIE(staart)))
        *naam += staart; // which makes it one
    return !weg && !naam->empty();
}

// The preview in the width of the screen, whatever printers there are.
uint16_t schermbreedte() {
    const uint16_t masker = XPRT_MASKER();
    return masker & PRT_80 ? PRT_80 : masker & PRT_132 ? PRT_132 : PRT_40;
}

std::vector<ors_ingang> alle_regels() {
    std::vector<ors_ingang> uit;
    ors_ingang in{};
    for (bool er = ors_lees('F', &in); er; er = ors_lees('N', &in))
        uit.push_back(in);
    return uit;
}

// Opened, printed, closed. True when something went where it should.
bool druk_af(const orderafdruk& hoe, const printwens& wens, uint16_t masker, const char* bestand) {
    const std::string titel = std::string(TXT(T_JRN_ORDER)) + " " +
                              std::to_string(kop.ordernummer ? kop.ordernummer : int32_t{kop.leverancier}) +
                              " " + VASTTEKST(leverancier.naam);
    if (!XPRT_OPEN(wens, masker, bestand, titel.c_str()))
        return false;
    if (print_order(hoe, alle_regels(), 0))
        return XPRT_CLOSE() != 0;
    XPRT_STAAK();
    MELDBOX(MELD_INFO, TXT(T_GEEN_INFORMATIE), nullptr, nullptr);
    return false;
}

} // namespace

void order_afdrukken(int vraagrij) {
    static int blad, prijzen, doel;
    if (!kies(vraagrij, bladtekst, 3, &blad) || !kies(vraagrij, prijstekst, 2, &prijzen) ||
        !kies(vraagrij, doeltekst, D_AANTAL, &doel))
        return;
    const orderafdruk hoe{static_cast<Orderblad>(blad), prijzen == 0};
    if (doel == D_PRINTER) {
        druk_af(hoe, XPRT_WENS(), XPRT_MASKER(), nullptr);
        return;
    }
    if (doel == D_SCHERM) {
        druk_af(hoe, {1, PRT_VOORBEELD, 0}, schermbreedte(), nullptr);
        return;
    }
    std::string naam;
    if (vraag_bestand(vraagrij, doel == D_PDF ? "pdf" : "txt", &naam) &&
        druk_af(hoe, {0, PRT_BESTAND, 0}, XPRT_MASKER(), naam.c_str()))
        MELDBOX(MELD_INFO, (std::string(TXT(T_PO_VASTGELEGD)) + " " + XPRT_BESTAND()).c_str(), nullptr,
                nullptr);
}

} // namespace zg

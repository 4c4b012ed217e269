// Ordering a series again: chosen by number or by brand and model, tested, and with new quantities onto the order.
#include "order/aantallen.h"
#include "order/regelscherm.h"
#include "order/regelstam.h"
#include "order/register.h"
#include "order/serie.h"
#include "order/teksten.h"
#include "order/wrk.h"
#include "price/ing_val.h"
#include "price/koers.h"
#include "shared/ioeti.h"
#include "shared/ioink.h"
#include "sub/omserie.h"
#include "sub/serzoek.h"
#include "sub/teksten.h"
#include "term/datum.h"
#include "term/dm_hdl.h"
#include "term/prompt.h"
#include "term/vast.h"
#include <algorithm>
#include <cstring>

namespace zg {
namespace {

constexpr int HOOGTE = 5, ZOEKRIJ = 2, ZOEKKOLOM = 2;

// How a series is looked for: what is asked, under which title.
struct Zoekwijze {
    const Tekst* keuze;
    const Tekst* titel;
    const char* letters;
};
const Zoekwijze ZOEKWIJZEN[] = {
    {&T_BIJ_SERIENUMMER, &T_BIJ_INGAVE_NUMMER, "AKV"},
    {&T_BIJ_MERK_MODEL, &T_BIJ_INGAVE_MERK, "RMAKV"},
};

bool zoek(serrec* rec) {
    DMREC* menu = DMNEW(TXT(T_BIJ_TITEL));
    int nr = 1;
    for (const Zoekwijze& w : ZOEKWIJZEN)
        DMITEM(menu, TXT(*w.keuze), nr++, 1);
    const int keus = DMRUN(menu, REGELRIJ, 0);
    if (keus < 1 || keus > std::ssize(ZOEKWIJZEN) || TOETSWEG())
        return false;
    const Zoekwijze& w = ZOEKWIJZEN[keus - 1];
    WINOPEN1(SERIERIJ, SERIEKOLOM, HOOGTE, SERIEBREEDTE);
    WINBOX(" %s ", TXT(*w.titel));
    const bool gekozen = serie_zoek(ZOEKRIJ, ZOEKKOLOM, w.letters, rec);
    WINCLOSE();
    return gekozen;
}

bool weiger(const seriesleutel& serie, const std::string& waarom) {
    MELDBOX(MELD_WAARSCHUWING, (std::string(TXT(T_SERIE)) + " " + serie_tekst(serie)).c_str(), waarom.c_str(),
            nullptr);
    return false;
}

std::string met_datum(const Tekst& tekst) {
    return std::string(TXT(tekst)) + " " + DATUM8(kop.orderdatum);
}

// Has a label of this supplier and order date been made for the series, or has a line of this order it, also without any?
// A damaged chain counts as one: told.
bool al_besteld(const serrec& rec, bool* stuk) {
    int32_t keten = rec.etiketkop, nummer = keten;
    etiket label{};
    int er = 0;
    *stuk = false;
    if (keten >= 0) {
        const etiketketen in_hand(rec.serie, &keten);
        for (er = ioeti('F', &nummer, &label); er == 1 && !label_van_datum(label);)
            er = ioeti('N', &nummer, &label);
        *stuk = er < 0;
    }
    if (er != 0)
        return true;
    regelloop loop;
    regelloop_begin(&loop);
    loop.zonder_matrices = true;
    orderregel regel;
    ors_ingang in{};
    for (bool volgt = ors_lees('F', &in); volgt; volgt = ors_lees('N', &in))
        if (regel_lees(&loop, in, &regel) && zelfde_serie(regel_serie(regel), rec.serie))
            return true;
    return false;
}

int32_t dag(int32_t stempel) {
    constexpr int32_t SECONDEN = 24 * 60 * 60;
    return stempel / SECONDEN - (stempel % SECONDEN < 0);
}

// The tests on a series, in this order. *rec may get an earlier stamp; it is written with the line.
bool keur(serrec* rec) {
    if (dag(serie_stempel(kop.orderdatum, 0)) <= dag(rec->stempel)) {
        if (!rec->stempel_mag) {
            char tekst[100];
            snprintf(tekst, sizeof tekst, "%s (%-8.8s)", TXT(T_BIJ_NOG_NIET), DATUM8(kop.orderdatum));
            return weiger(rec->serie, tekst);
        }
        rec->stempel = serie_stempel(kop.orderdatum, 0);
    }
    prijsset set{};
    prijsgroepen groepen;
    switch (ioink_find(rec->serie, kop.leverancier, kop.orderdatum, &set, &groepen)) {
    case Prijsset::stuk:
        return false;
    case Prijsset::geen:
        return weiger(rec->serie, met_datum(T_BIJ_GEEN_PRIJZEN));
    case Prijsset::gelezen:
        break;
    }
    auto code = [](const char(&valuta)[VALUTACODE]) {
        return valuta_of_thuis(std::string(valuta, sizeof valuta).c_str());
    };
    if (code(set.valuta) != code(kop.valuta))
        return weiger(rec->serie, TXT(T_BIJ_VALUTA));
    bool stuk;
    if (al_besteld(*rec, &stuk)) {
        if (stuk)
            ioeti_schademeld(rec->serie);
        return !stuk && weiger(rec->serie, met_datum(T_BIJ_AL_BESTELD));
    }
    return true;
}

// The series into regel_nu, at the order's rate and discount; without what was ordered of it before.
bool neem_in_regel(const serrec& rec, prijsrijen* oud) {
    regel_wis(&regel_nu);
    regel_is_nieuw = true;
    regel_nu.serie = rec;
    regel_nu.model.artikelgroep = rec.serie.artikelgroep;
    regel_nu.dessin.kleur = rec.serie.kleur;
    regel_nu.dessin.volgnummer = rec.serie.volgnummer;
    if (!serie_in_regel(&regel_nu))
        return false;
    *oud = regel_nu.prijzen;
    regel_nu.aankoop = {};
    regel_nu.op_bestand = 0;
    regel_wis_aantallen(&regel_nu);
    order_prijscontext();
    up_regelkorting(0);
    if (kop.korting)
        up_netto_alle(&regel_nu.prijzen); // without a discount the set's own stays
    up_inkoop_alle(&regel_nu.prijzen);
    regelstam_lees(&regel_nu);
    if (!regel_balk(regel_nu)) {
        MELDBOX(MELD_WAARSCHUWING, TXT(T_MAAT_GEEN_MATEN), nullptr, nullptr);
        return false;
    }
    regel_advies(&regel_nu);
    return true;
}

} // namespace

bool serie_bijbestellen(prijsrijen* oud) {
    serrec rec{};
    for (;; serie_los()) {
        rec = {};
        if (!zoek(&rec))
            return false;
        // Read again under its lock: it may have gone, or changed, since it was chosen.
        if (!serie_neem(rec.serie, &rec))
            weiger(rec.serie, TXT(T_BIJ_ONBEKEND));
        else if (keur(&rec))
            break;
    }
    if (!neem_in_regel(rec, oud)) {
        serie_los();
        return false;
    }
    if (aantal_nieuw() && !fm_leeg(regel_nu.order_aantallen))
        return true;
    serie_los();
    if (fm_leeg(regel_nu.order_aantallen))
        MELDBOX(MELD_INFO, TXT(T_BIJ_ZONDER), nullptr, nullptr);
    return false;
}

} // namespace zg

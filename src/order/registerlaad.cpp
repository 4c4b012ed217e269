// A line of the full registration out of the register: its series, prices and labels, see order/register.h.
#include "order/programma.h"
#include "order/regelscherm.h"
#include "order/register.h"
#include "price/koers.h"
#include "shared/ioeti.h"
#include "shared/ioink.h"
#include "sub/omserie.h"
#include <algorithm>
#include <cstring>

namespace zg {
namespace {

void neem_velden(orderregel* regel) {
    const serrec& s = regel->serie;
    ordmodel& m = regel->model;
    orddessin& d = regel->dessin;
    m.merk = s.merk;
    m.maatsoort = s.maatsoort;
    m.etiketsoort = s.etiketsoort;
    memcpy(m.model, s.model, sizeof m.model);
    memcpy(d.dessin, s.dessin, sizeof d.dessin);
    memcpy(d.materiaal, s.materiaal, sizeof d.materiaal);
    memcpy(d.omschrijving, s.omschrijving, sizeof d.omschrijving);
    memcpy(d.kenmerk, s.kenmerk, sizeof d.kenmerk);
    memcpy(d.maten, s.maten, sizeof d.maten);
    memcpy(d.adviesblok, s.adviesblok, sizeof d.adviesblok);
    d.doelgroep = s.doelgroep ? s.doelgroep : ' ';
    d.inkoopplan = s.inkoopplan;
    d.regtype = s.regtype;
    d.consprijs = s.consprijs;
}

void zet_valuta(orderregel* regel, const char (&valuta)[VALUTACODE]) {
    memset(regel->aankoop.valuta, 0, sizeof regel->aankoop.valuta);
    memcpy(regel->aankoop.valuta, valuta, sizeof valuta);
}

// Prices of the set that holds for the order; its sizes are the line's then. False: damaged, told.
bool laad_prijzen(orderregel* regel) {
    prijsset set{};
    prijsgroepen groepen;
    regel->prijzen = {};
    regel->opslag = {};
    zet_valuta(regel, kop.valuta);
    regel->aankoop.koers = order_koers();
    regel->aankoop.koersfactor = static_cast<int32_t>(std::min<uint32_t>(kop.toeslag, INT32_MAX));
    switch (ioink_find(regel->serie.serie, kop.leverancier, kop.orderdatum, &set, &groepen)) {
    case Prijsset::stuk:
        return false;
    case Prijsset::geen:
        return true;
    case Prijsset::gelezen:
        break;
    }
    memcpy(regel->dessin.maten, set.maten, sizeof set.maten);
    for (const prijsgroep& groep : groepen)
        up_vul_groep(&regel->prijzen, groep.maten, groep.bruto, groep.netto);
    if (memcmp(set.valuta, kop.valuta, sizeof set.valuta) != 0) {
        zet_valuta(regel, set.valuta);
        regel->aankoop.koers =
            0; // not the order's currency: the rate of the day, without a label that tells it
    }
    regel->aankoop.koersfactor = set.koersfactor;
    return true;
}

// The rate at which a label was bought.
void laad_koers(orderregel* regel, const etiket& label) {
    const int32_t netto = label.status ? up_lees(regel->prijzen.netto, label.maat) : 0;
    if (netto > 0 && label.inkoop > 0)
        regel->aankoop.koers =
            koers_vernauwen(regel->aankoop.valuta, netto, label.inkoop, regel->aankoop.koersfactor);
}

// Everything that hangs from the record in `serie`.
bool laad_inhoud(orderregel* regel, bool* keten_stuk) {
    neem_velden(regel);
    regel_wis_aantallen(regel);
    etiket koers{};
    *keten_stuk = false;
    if (!laad_prijzen(regel))
        return false;
    *keten_stuk = !labels_lees(regel, &koers);
    if (*keten_stuk)
        return false;
    laad_koers(regel, koers);
    return true;
}

// The record alone: is there a series, and is it this line's?
Serie laad_record(orderregel* regel, bool vergrendel) {
    const seriesleutel sleutel = regel_serie(*regel);
    if (!(vergrendel ? serie_neem(sleutel, &regel->serie) : serie_lees(sleutel, &regel->serie)))
        return Serie::weg;
    if (!serie_mag(regel->serie, serie_stempel(kop.orderdatum, regel->dessin.tijdstempel)))
        return Serie::andere;
    return Serie::gelezen;
}

// In the line's own context.
void reken_inkoop(orderregel* regel) {
    regel_prijscontext(*regel);
    up_inkoop_alle(&regel->prijzen);
}

void leeg(orderregel* regel) {
    regel->prijzen = {};
    regel->op_bestand = 0;
    regel_wis_aantallen(regel);
}

} // namespace

bool serie_in_regel(orderregel* regel) {
    bool keten_stuk = false;
    const bool goed = laad_inhoud(regel, &keten_stuk);
    if (keten_stuk)
        ioeti_schademeld(regel->serie.serie);
    if (!goed)
        leeg(regel);
    else
        reken_inkoop(regel);
    return goed;
}

Serie serie_laad(orderregel* regel, bool vergrendel, bool context) {
    if (!regel->dessin.geregistreerd)
        return Serie::in_journaal;
    const prijscontext was = up_context;
    Serie uit = laad_record(regel, vergrendel);
    bool keten_stuk = false;
    if (uit == Serie::gelezen && !laad_inhoud(regel, &keten_stuk)) {
        // Without the lock the series may have gone, or got another chain, in the middle of the walk: once more then.
        uit = Serie::stuk;
        if (keten_stuk && !vergrendel && (uit = laad_record(regel, false)) == Serie::gelezen &&
            !laad_inhoud(regel, &keten_stuk))
            uit = Serie::stuk;
        if (uit == Serie::stuk && keten_stuk)
            ioeti_schademeld(regel->serie.serie, true);
    }
    if (uit != Serie::gelezen) {
        leeg(regel);
        if (vergrendel)
            serie_los();
        return uit;
    }
    reken_inkoop(regel);
    if (!context)
        up_context = was;
    return uit;
}

bool regel_volledig(regelloop* loop, const ors_ingang& ingang, orderregel* regel) {
    if (registermodus)
        loop->zonder_matrices = false; // what was delivered is in no term
    if (!regel_lees(loop, ingang, regel))
        return false;
    if (!registermodus)
        return true;
    const Serie serie = serie_laad(regel, false, false);
    return serie == Serie::gelezen || serie == Serie::in_journaal;
}

void regel_prijscontext(const orderregel& regel) {
    if (!registermodus || !regel.aankoop.koersfactor) {
        order_prijscontext();
        return;
    }
    up_valuta(regel.aankoop.valuta, regel.aankoop.koers, regel.aankoop.koersfactor);
    up_orderkorting(kop.korting / -100.0);
}

} // namespace zg

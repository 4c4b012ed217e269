// A line of the full registration out of the register: its series, prices and labels, see order/register.h.
#include "order/etiketloop.h"
#include "order/programma.h"
#include "order/regelscherm.h"
#include "order/register.h"
#include "order/teksten.h"
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

// Prices of the set that holds for the order; its sizes are the line's then. Damage is told.
Prijsset laad_prijzen(orderregel* regel) {
    prijsset set{};
    prijsgroepen groepen;
    regel->prijzen = {};
    zet_valuta(regel, kop.valuta);
    regel->aankoop.koers = order_koers();
    regel->aankoop.koersfactor = static_cast<int32_t>(std::min<uint32_t>(kop.toeslag, INT32_MAX));
    const Prijsset uit = ioink_find(regel->serie.serie, kop.leverancier, kop.orderdatum, &set, &groepen);
    if (uit != Prijsset::gelezen)
        return uit;
    regel->opslag = {};
    memcpy(regel->dessin.maten, set.maten, sizeof set.maten);
    for (const prijsgroep& groep : groepen)
        up_vul_groep(&regel->prijzen, groep.maten, groep.bruto, groep.netto);
    if (memcmp(set.valuta, kop.valuta, sizeof set.valuta) != 0) {
        zet_valuta(regel, set.valuta);
        regel->aankoop.koers =
            0; // not the order's currency: the rate of the day, without a label that tells it
    }
    regel->aankoop.koersfactor = set.koersfactor;
    return uit;
}

// The rate at which a label was bought.
void laad_koers(orderregel* regel, const etiket& label) {
    const int32_t netto = label.status ? up_lees(regel->prijzen.netto, label.maat) : 0;
    if (netto > 0 && label.inkoop > 0)
        regel->aankoop.koers =
            koers_vernauwen(regel->aankoop.valuta, netto, label.inkoop, regel->aankoop.koersfactor);
}

// What hangs from the record in `serie`.
enum class Inhoud { heel, prijzen_stuk, keten_stuk, zonder_set };

Inhoud laad_inhoud(orderregel* regel, labelsom* som = nullptr) {
    neem_velden(regel);
    if (!som)
        regel_wis_aantallen(regel);
    etiket koers{};
    const Prijsset prijzen = laad_prijzen(regel);
    if (prijzen == Prijsset::stuk)
        return Inhoud::prijzen_stuk;
    if (!(som ? labels_som(regel->serie, som) : labels_lees(regel, &koers)))
        return Inhoud::keten_stuk;
    if (som)
        koers = som->koers;
    const auto is_nul = [](uint8_t b) { return b == 0; };
    if (prijzen == Prijsset::geen && !std::ranges::all_of(regel->serie.maten, is_nul))
        return Inhoud::zonder_set;
    laad_koers(regel, koers);
    return Inhoud::heel;
}

// A series without the set of its order. A kill leaves it so in front of its labels, and the line has the prices that it
// was to get; with labels of that supplier and date the set was lost, with what has changed since. Told, unless another is
// at work on it, who deletes it, say: what comes of that is on the next repaint.
Serie zonder_set(orderregel* regel) {
    bool besteld = false;
    const bool heel = etiketten_loop(
        regel->serie, [&](int32_t, const etiket& label) { besteld = besteld || label_van_datum(label); });
    const bool eigen = heel && !besteld && regel_prijzen_uit_opslag(regel);
    if (!serie_elders_in_hand(regel->serie.serie))
        ioink_ontbreekt("omserie", regel->serie.serie, kop.leverancier, kop.orderdatum,
                        TXT(eigen ? T_REG_PRIJS_ORDER : T_REGEL_ONTOEGANKELIJK));
    return eigen ? Serie::gelezen : Serie::zonder_prijs;
}

// The record alone: is there a series, and is it this line's?
Serie laad_record(orderregel* regel, bool vergrendel) {
    const seriesleutel sleutel = regel_serie(*regel);
    if (!(vergrendel ? serie_neem(sleutel, &regel->serie) : serie_lees(sleutel, &regel->serie)))
        return serie_kwijt(sleutel) ? Serie::stuk : Serie::weg;
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

// As serie_laad; with `som` the labels' sums in place of terms and quantities.
Serie laad(orderregel* regel, bool vergrendel, bool context, labelsom* som) {
    if (!regel->dessin.geregistreerd)
        return Serie::in_journaal;
    const prijscontext was = up_context;
    Inhoud inhoud = Inhoud::heel;
    auto lees = [&] {
        const Serie uit = laad_record(regel, vergrendel);
        if (uit == Serie::gelezen)
            inhoud = laad_inhoud(regel, som);
        return uit;
    };
    Serie uit = lees();
    // Without the lock the series may have gone, or got another chain, in the middle of the walk: once more then.
    if (uit == Serie::gelezen && !vergrendel &&
        (inhoud == Inhoud::keten_stuk || inhoud == Inhoud::zonder_set))
        uit = lees();
    if (uit == Serie::gelezen && inhoud == Inhoud::zonder_set) {
        uit = zonder_set(regel);
    } else if (uit == Serie::gelezen && inhoud != Inhoud::heel) {
        uit = Serie::stuk;
        if (inhoud == Inhoud::keten_stuk)
            ioeti_schademeld(regel->serie.serie, true);
    }
    if (uit != Serie::gelezen && uit != Serie::zonder_prijs) {
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

} // namespace

bool serie_in_regel(orderregel* regel) {
    const Inhoud inhoud = laad_inhoud(regel);
    if (inhoud == Inhoud::keten_stuk)
        ioeti_schademeld(regel->serie.serie);
    if (inhoud != Inhoud::heel)
        leeg(regel);
    else
        reken_inkoop(regel);
    return inhoud == Inhoud::heel;
}

Serie serie_laad(orderregel* regel, bool vergrendel, bool context) {
    return laad(regel, vergrendel, context, nullptr);
}

bool regel_som(regelloop* loop, const ors_ingang& ingang, orderregel* regel, Serie* serie, labelsom* som) {
    loop->zonder_matrices = true;
    *som = {};
    *serie = Serie::in_journaal;
    if (!regel_lees(loop, ingang, regel))
        return false;
    if (registermodus)
        *serie = laad(regel, false, false, som);
    if (*serie == Serie::in_journaal)
        regel_besteld(*regel, [som](const levcel& cel) { som->besteld[cel.maat] += cel.aantal; });
    else if (*serie != Serie::gelezen && *serie != Serie::zonder_prijs)
        *som = {};
    return true;
}

bool regel_volledig(regelloop* loop, const ors_ingang& ingang, orderregel* regel) {
    if (registermodus)
        loop->zonder_matrices = false; // what was delivered is in no term
    if (!regel_lees(loop, ingang, regel))
        return false;
    if (!registermodus)
        return true;
    const Serie serie = serie_laad(regel, false, false);
    return serie == Serie::gelezen || serie == Serie::in_journaal || serie == Serie::zonder_prijs;
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

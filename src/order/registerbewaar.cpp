// A line of the full registration into the register: its series, price set, labels and codes.
//
// 1. What can be refused is refused before anything is written (serie_past).
// 2. Number, record, price set, labels, codes, record again: what a kill leaves hangs from a record. Sets and codes that
//    are found under a new key are of a series that was deleted half, and go first.
#include "control/controle.h"
#include "order/meld.h"
#include "order/register.h"
#include "order/teksten.h"
#include "shared/eanhdl.h"
#include "shared/ioeti.h"
#include "shared/ioink.h"
#include "shared/maatbalk.h"
#include "shared/mutatie.h"
#include "shared/report.h"
#include "shared/schrijfstilte.h"
#include "shared/sysrec.h"
#include "sub/omserie.h"
#include "sub/serzoek.h"
#include "term/datum.h"
#include "term/prompt.h"
#include <algorithm>
#include <cstring>

namespace zg {
namespace {

bool weiger(const Tekst& waarom) {
    MELDBOX(MELD_WAARSCHUWING, TXT(waarom), nullptr, nullptr);
    return false;
}

bool met_codes(const orderregel& regel) {
    return regel.dessin.regtype || instel15.ean_alle;
}

void alle_maten(const orderregel& regel, uint8_t* maten) {
    for (size_t i = 0; i < MAATBYTES; i++)
        maten[i] = regel.serie.maten[i] | regel.dessin.maten[i];
}

// What the line says of its series, into the record.
void vul_record(const orderregel& regel, bool nieuw, serrec* s) {
    const ordmodel& m = regel.model;
    const orddessin& d = regel.dessin;
    if (nieuw) {
        *s = {};
        s->serie = regel_serie(regel);
        s->jaar = kop.jaar;
        s->seizoen = kop.seizoen;
        s->deelseizoen = kop.deelseizoen;
        s->leverancier = kop.leverancier;
        s->etiketkop = -1;
        s->stempel = serie_stempel(std::min(uint16_t{kop.orderdatum}, VANDAAG()), d.tijdstempel);
    }
    s->merk = m.merk;
    s->maatsoort = m.maatsoort;
    s->etiketsoort = m.etiketsoort;
    memcpy(s->model, m.model, sizeof s->model);
    memcpy(s->omschrijving, d.omschrijving, sizeof s->omschrijving);
    memcpy(s->dessin, d.dessin, sizeof s->dessin);
    memcpy(s->materiaal, d.materiaal, sizeof s->materiaal);
    memcpy(s->kenmerk, d.kenmerk, sizeof s->kenmerk);
    memcpy(s->adviesblok, d.adviesblok, sizeof s->adviesblok);
    for (size_t i = 0; i < MAATBYTES; i++) // sizes are only added
        s->maten[i] |= d.maten[i];
    s->doelgroep = d.doelgroep ? d.doelgroep : ' ';
    s->inkoopplan = d.inkoopplan;
    s->regtype = d.regtype;
    s->consprijs = d.consprijs;
    s->laatste_order = std::max<uint16_t>(s->laatste_order, kop.orderdatum);
}

// What a series that was deleted half has left under a number that is given out again.
bool ruim_op(const seriesleutel& sleutel) {
    uint8_t alle[MAATBYTES];
    memset(alle, 0xFF, sizeof alle);
    return ioink_deleteall(sleutel) &&
           (ean_nodig(dtean, sleutel, alle) == MATEN || eanhdl('D', dtean, sleutel, alle));
}

bool maak_record(const orderregel& regel, serrec* s) {
    if (!ruim_op(regel_serie(regel)))
        return false;
    vul_record(regel, true, s);
    const int geweigerd = IXWEIGERINGEN;
    s->nummer = serie_nummer_nieuw();
    if (!s->nummer)
        return IXWEIGERINGEN == geweigerd && weiger(T_REG_GEEN_NUMMER);
    // Its first block of labels comes in front of the record that leads to it.
    etiket leeg{};
    leeg.etiketsoort = s->etiketsoort;
    int32_t eerste = -1, nummer = 0;
    {
        const etiketketen keten(s->serie, &eerste);
        if (!ioeti('I', &nummer, &leeg))
            return false;
    }
    s->etiketkop = eerste;
    if (!serie_schrijf(*s)) {
        ioeti_vrij(s->serie, &eerste);
        return false;
    }
    serie_mutatie(MUT_SERIE, *s);
    return true;
}

// Has one of the fields changed by which others may have sorted the series?
bool zoekvelden_anders(const serrec& a, const serrec& b) {
    constexpr size_t VAN = offsetof(serrec, merk), TOT = offsetof(serrec, maten);
    auto begin = [](const serrec& s) { return reinterpret_cast<const uint8_t*>(&s) + VAN; };
    return memcmp(begin(a), begin(b), TOT - VAN) != 0;
}

void meld_nieuwe_maten(const serrec& oud, const serrec& nu) {
    for (int maat = 1; maat <= MATEN; maat++)
        if (const int positie = maatbalk ? mtpos(maatbalk, maat) : 0;
            positie > 0 && maat_in(nu.maten, maat) && !maat_in(oud.maten, maat))
            serie_mutatie_maat(nu.serie, positie);
}

bool schrijf_codes(const orderregel& regel, const serrec& s) {
    return !met_codes(regel) || eanhdl('W', dtean, s.serie, s.maten, s.stempel_mag, maatbalk);
}

} // namespace

bool serie_past(const orderregel& regel) {
    serrec s = regel.serie;
    if (!s.nummer) {
        s = {};
        s.serie = regel_serie(regel);
        s.etiketkop = -1;
    }
    if (!register_heel() || !labels_passen(regel, s) || !prijzen_schrijfbaar(regel))
        return false;
    uint8_t maten[MAATBYTES];
    alle_maten(regel, maten);
    if (met_codes(regel) && ean_nodig(dtean, regel_serie(regel), maten) > ean_over())
        return weiger(T_REG_GEEN_CODES);
    return true;
}

bool serie_bewaar(orderregel* regel, bool nieuw, const prijsrijen& oude_prijzen) {
    serrec s = regel->serie;
    const uint16_t oud_merk = s.merk;
    char oud_model[sizeof s.model];
    memcpy(oud_model, s.model, sizeof oud_model);
    const Kritiek kritiek;
    if (nieuw) {
        if (!maak_record(*regel, &s))
            return false;
    } else {
        vul_record(*regel, false, &s);
        if (s.merk != oud_merk || memcmp(s.model, oud_model, sizeof oud_model) != 0)
            serie_mutatie(MUT_SERIE, s, oud_merk);
        meld_nieuwe_maten(regel->serie, s);
        if (memcmp(s.adviesblok, regel->serie.adviesblok, sizeof s.adviesblok) != 0)
            serie_mutatie(MUT_PRIJS, s);
    }
    // Codes that are refused are made by the next save; what the series says of its labels stands all the same.
    bool codes = true;
    std::string waarom; // told when the rest stands
    auto vastleggen = [&] {
        {
            const Schrijfstilte stil(&waarom);
            codes = schrijf_codes(*regel, s);
        }
        return serie_schrijf(s);
    };
    if (!prijzen_bij(*regel, nieuw ? nullptr : &oude_prijzen) || !labels_bij(regel, &s, vastleggen))
        return false;
    if (!nieuw && zoekvelden_anders(regel->serie, s))
        serie_index_bij(regel->serie, &s);
    regel->serie = s;
    if (!codes)
        ALARMBOX(waarom.empty() ? nullptr : waarom.c_str(), TXT(T_REG_ZONDER_CODES), TXT(T_REG_CODES_LATER));
    return codes;
}

} // namespace zg

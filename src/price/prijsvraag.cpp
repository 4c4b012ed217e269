// The questions of a price screen for an amount; see price/prijsvraag.h. The range of sizes is price/maatbereik.cpp.
#include "price/prijsvraag.h"
#include "price/bedragveld.h"
#include "price/prijsvenster.h"
#include "price/teksten.h"
#include "term/datum.h"
#include "term/ingave.h"
#include "term/toets.h"
#include <algorithm>
#include <optional>

namespace zg {
namespace {

// An amount field in the column of the group in hand.
struct Bedragvraag {
    Prijskolom kolom;
    const char* valuta; // "" is the home currency
    bool te_annuleren;
    const Tekst* f10; // what F10 does; null: nothing
    double meest = 0; // in units of the field; 0: what the field holds
};

enum class Uit { goed, weg, f10 };

// Asked until it is answered; what was typed before a key stays in *bedrag.
Uit vraag(const Bedragvraag& v, int32_t* bedrag) {
    for (;;) {
        std::optional<prijshint> hint;
        if (v.te_annuleren)
            TOETSAAN(K_CANCEL);
        if (v.f10) {
            TOETSAAN(K_F10);
            TOETSAAN(K_HELP);
            hint.emplace();
        }
        if (v.meest > 0)
            INSTEL.maximum = v.meest;
        bedrag_veld(up_rij(v.kolom), up_lay.nu + 1, "8B,JEP", v.valuta, bedrag);
        if (TOETSWEG())
            return Uit::weg;
        if (SCHERM.laatste == K_F10)
            return Uit::f10;
        if (SCHERM.laatste != K_F1 && SCHERM.laatste != K_HELP)
            return Uit::goed;
        up_toetshulp("<F10>", TXT(*v.f10));
    }
}

// Into the sizes of the group, unless there is no price.
void neem(prijsrij* rij, const prijsgroep_info& groep, int32_t* plaats, int32_t bedrag) {
    if (bedrag < 1)
        return;
    up_vul(rij, groep.maten, bedrag);
    *plaats = bedrag;
}

// The most that a net price may be: 199.99% of the gross price, in whole units.
double netto_grens(int32_t bruto) {
    const double heel = static_cast<double>(static_cast<int64_t>(bruto * 199.99 / 100));
    return up_context.decimalen == 2 ? heel / 100 : heel;
}

int32_t met_korting(int32_t bruto, double korting) {
    return std::clamp(round(bruto * (100 - korting) / 100), 1, PRIJS_ONBEKEND - 1);
}

// The purchase price of all sizes of the group; 0 when they don't have one and the same.
int32_t een_inkoopprijs(const prijsgroep_info& groep) {
    int32_t prijs = 0;
    for (int maat = 1; maat <= MATEN; maat++) {
        if (!maat_in(groep.maten, maat))
            continue;
        if (!up_aanwezig(up_lay.rijen->inkoop, maat))
            return 0;
        const int32_t deze = up_lees(up_lay.rijen->inkoop, maat);
        if (deze && prijs && deze != prijs)
            return 0;
        prijs = std::max(prijs, deze);
    }
    return prijs;
}

} // namespace

bool vraag_bruto(prijsgroep_info* groep, Prijsverloop verloop) {
    const bool nieuw = verloop == Prijsverloop::definieren;
    const Bedragvraag v{PK_BRUTO, up_context.valuta, !nieuw, nieuw ? &T_KORTINGSMETHODE : nullptr};
    int32_t bedrag = groep->bruto;
    Uit uit;
    while ((uit = vraag(v, &bedrag)) == Uit::f10) {
        kortingsmethode_kiezen(up_lay.nu);
        up_toon_methode();
    }
    neem(&up_lay.rijen->bruto, *groep, &groep->bruto, bedrag);
    return uit == Uit::goed;
}

bool vraag_netto(prijsgroep_info* groep, Prijsverloop verloop) {
    if (groep->bruto < 1) {
        if (!vraag_bruto(groep, verloop) || groep->bruto < 1)
            return false;
        up_netto_groep(up_lay.rijen, groep, 0); // what is proposed, and stays on cancel
    }
    const bool wijzigen = verloop == Prijsverloop::wijzigen;
    const Bedragvraag v{PK_NETTO, up_context.valuta, wijzigen, wijzigen ? &T_KORTINGSMETHODE : nullptr,
                        netto_grens(groep->bruto)};
    int32_t bedrag = groep->netto;
    Uit uit;
    while ((uit = vraag(v, &bedrag)) == Uit::f10)
        if (nieuwe_korting_venster(TXT(T_NIEUWE_KORTING), up_lay.nu)) {
            bedrag = met_korting(groep->bruto,
                                 up_totaalkorting(up_context.orderkorting, up_context.nieuwe_korting));
            break;
        }
    neem(&up_lay.rijen->netto, *groep, &groep->netto, bedrag);
    return uit != Uit::weg;
}

bool vraag_advies(prijsgroep_info* groep, int nummer) {
    const int32_t inkoop = een_inkoopprijs(*groep);
    const Bedragvraag v{PK_ADVIES, "", true, inkoop ? &T_BEREKENEN_ADVIES : nullptr};
    int32_t bedrag = groep->advies;
    Uit uit;
    while ((uit = vraag(v, &bedrag)) == Uit::f10)
        if (bereken_advies_venster(nummer, inkoop, &bedrag))
            break;
    neem(&up_lay.rijen->advies, *groep, &groep->advies, bedrag);
    return uit != Uit::weg;
}

} // namespace zg

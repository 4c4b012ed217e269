// A series goes, with everything that hangs from it. The order is that of a kill: what it leaves can be deleted again.
//
// 1. Nothing is written before all that can stop has been looked at: files that can't be opened, a damaged chain.
// 2. Mutations of its labels, by their numbers.
// 3. The record with no labels, and behind that the chain: never a record that leads to blocks of others.
// 4. Prices, sort indexes, codes, advice orders, picture; the record comes last.
#include "sub/serdel.h"
#include "control/controle.h"
#include "shared/ean.h"
#include "shared/eanhdl.h"
#include "shared/files.h"
#include "shared/ioeti.h"
#include "shared/ioink.h"
#include "shared/iomaat.h"
#include "shared/leesstam.h"
#include "shared/mutatie.h"
#include "shared/report.h"
#include "shared/sleutelstand.h"
#include "shared/sysrec.h"
#include "sub/omserie.h"
#include "sub/serelders.h"
#include "sub/serienummer.h"
#include "sub/serzoek.h"
#include "sub/teksten.h"
#include "term/prompt.h"
#include "term/vast.h"
#include <vector>

namespace zg {
namespace {

constexpr uint8_t OPTIE_ZICHT = 4; // of instel15.optie12
constexpr int BREEDTE = 60, HOOGTE = 5;

// ---- labels

struct Etiketten {
    std::vector<int32_t> verder;    // numbers of labels that are in stock or beyond
    std::vector<std::string> codes; // of those that are sold
};

// The chain from end to end. False: damaged, told.
bool loop_keten(serrec* serie, Etiketten* uit) {
    const seriesleutel sleutel = serie->serie;
    int32_t kop = serie->etiketkop, nummer = kop;
    if (kop < 0)
        return true;
    const etiketketen keten(sleutel, &kop);
    etiket label{};
    int er;
    for (er = ioeti('F', &nummer, &label); er == 1; er = ioeti('N', &nummer, &label)) {
        if (label.status >= ETI_VOORRAAD)
            uit->verder.push_back(nummer);
        if (label.status != ETI_VERKOCHT)
            continue;
        eanrec ean{};
        if (!serie->regtype)
            uit->codes.push_back(ean_etiket(0, nummer));
        else if (leeseanmaat(dtean, &ean, sleutel, label.maat))
            uit->codes.push_back(VASTTEKST(ean.code));
    }
    if (er < 0)
        ioeti_schademeld(sleutel);
    return er == 0;
}

// ---- the question

std::string samenvatting(const serrec& s) {
    std::string uit;
    for (const auto& [aantal, tekst] :
         {std::pair{int32_t{s.in_nota}, &T_SER_NOTA}, std::pair{int32_t{s.voorraad}, &T_SER_VOORRAAD},
          std::pair{int32_t{s.verkopen}, &T_SER_VERKOPEN},
          std::pair{int32_t{s.correcties}, &T_SER_CORRECTIES}})
        if (aantal)
            uit += TXT(*tekst);
    if (!uit.empty())
        uit.pop_back();
    return uit;
}

bool akkoord(const serrec& serie, const Etiketten& etiketten) {
    const bool geblokkeerd =
        serie.verkopen && (instel15.optie12 & OPTIE_ZICHT) && staat_op_zicht(etiketten.codes);
    if (geblokkeerd)
        FFLASH(-1, 2, A_WAARDE, TXT(T_SER_MELDING), "%s", TXT(T_SER_ZICHT));
    WINOPEN1(SCHERM.lines - HOOGTE, (SCHERM.cols - BREEDTE) / 2 + 1, HOOGTE, BREEDTE);
    WINBOX(nullptr);
    const std::string wat = samenvatting(serie);
    if (wat.empty())
        SCRPUT(A_WAARDE, 1, 2, "%s", TXT(T_SER_GEEN_ETIKETTEN));
    else
        SCRPUT(A_WAARDE, 1, 2, "%s %s", TXT(T_SER_HEEFT), wat.c_str());
    PIEP();
    bool ja = false;
    if (geblokkeerd)
        ENTERWACHT(3, 2);
    else
        ja = JNVRAAG(3, 2, "[-]%s", TXT(T_SER_AKKOORD)) != 0;
    WINCLOSE();
    return ja;
}

// ---- the rest

bool wis_codes(const seriesleutel& serie) {
    uint8_t alle[MAATBYTES];
    memset(alle, 0xFF, sizeof alle);
    return eanhdl('D', dtean, serie, alle);
}

bool wis_record(ICB* icb, const serrec& serie) {
    Seriebuffer buffer(serie.serie);
    const Sleutelstand k1(icb);
    return !IXEXISTS(icb, buffer.rec) || IXDELETE(icb, buffer.rec) == 0;
}

bool wis_alles(ICB* icb, serrec* serie, const Etiketten& etiketten) {
    const Kritiek kritiek;
    const seriesleutel sleutel = serie->serie;
    if (!wis_mutaties(*serie, etiketten.verder))
        return false;
    if (int32_t kop = serie->etiketkop; kop >= 0) {
        serrec leeg = *serie;
        leeg.etiketkop = -1;
        leeg.correcties = leeg.verkopen = leeg.voorraad = leeg.in_nota = 0;
        if (!serie_schrijf(leeg))
            return false;
        *serie = leeg;
        if (!ioeti_vrij(sleutel, &kop))
            return false;
    }
    if (!ioink_deleteall(sleutel))
        return false;
    serie_index_bij(*serie, nullptr);
    if (!wis_barcodes(sleutel) || !wis_codes(sleutel) || !wis_adviesorders(sleutel) ||
        (dtserpic && !wis_van_serie(dtserpic, 1, sleutel)) || !wis_record(icb, *serie))
        return false;
    serie_mutatie(MUT_SERIE, *serie, serie->merk);
    return true;
}

} // namespace

bool serie_verwijderen(ICB* icb, serrec* serie, bool vraag, bool* geweigerd) {
    if (!icb)
        INTERNAL("serdel", 1);
    if (!dtean)
        INTERNAL("serdel", 2);
    if (!dtserpic && stam_aanwezig("DTSERPIC")) // made since the start
        dtserpic = IXOPEN("DTSERPIC", 2);
    if (!dtserpic && (IOEXISTS("DTSERPIC.INX") || IOEXISTS("DTSERPIC.TXT")))
        INTERNAL("serdel", 3);
    Etiketten etiketten;
    if (!loop_keten(serie, &etiketten) || (vraag && !akkoord(*serie, etiketten)))
        return false;
    const bool weg = wis_alles(icb, serie, etiketten);
    if (geweigerd)
        *geweigerd = !weg;
    return weg;
}

} // namespace zg

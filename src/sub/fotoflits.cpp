// Module fotoflits: shows a picture, by its name in a box that the viewer beside the terminal knows by its place, its size
// and its word. See sub/afb_hdl.h.
#include "sub/afb_hdl.h"
#include "sub/teksten.h"
#include "term/prompt.h"

namespace zg {
namespace {

// The box; a name that doesn't fit on its line isn't shown.
struct Plaats {
    int kolom, breedte;
    size_t meest; // characters of the name
};
constexpr Plaats KLEIN{41, 40, 36}, GROOT{1, 80, 76};
constexpr int RIJ = 20, HOOGTE = 4;

void meld(const Tekst& wat, const std::string& naam) {
    char regel[100] = "";
    snprintf(regel, sizeof regel, naam.size() > 76 ? "%-73.73s..." : "%-.76s", naam.c_str());
    MELDBOX(MELD_INFO, TXT(wat), naam.empty() ? nullptr : regel, nullptr);
}

void toon(const std::string& pad, const Plaats& p) {
    WINOPEN1(RIJ, p.kolom, HOOGTE, p.breedte);
    WINBOX(nullptr);
    SCRPUT(A_WAARDE, 2, 2, "%s", pad.c_str());
    SCRFLUSH(0);
    SCRPUT(A_LABEL, 1, 2, "%s", "Fotoflits"); // no text of a catalogue: the viewer looks for it
    SCRFLUSH(0);
    BEZIGWIS();
    const int32_t toets = TOETS();
    BEZIGTOON();
    WINCLOSE();
    TOETSDRUK(toets);
}

} // namespace

void afb_tonen(const std::string& naam, uint16_t merk) {
    if (naam.empty() || !afb_in_gebruik())
        return meld(T_AFB_GEEN_BESCHIKBAAR, "");
    const Afbnaam oordeel = afb_keur(naam);
    if (oordeel == Afbnaam::soort)
        return meld(T_AFB_FOUTIEF, naam);
    const std::string pad = afb_map(merk) + naam;
    const Plaats& p = afb_alleen_pcx() ? KLEIN : GROOT;
    if (oordeel == Afbnaam::lang || pad.size() > p.meest)
        return meld(T_AFB_NAAM_LANG, pad);
    if (!afb_aanwezig(pad))
        return meld(T_AFB_WEG, pad);
    if (SCHERM.lines < RIJ + HOOGTE - 1 || SCHERM.cols < p.kolom + p.breedte - 1)
        return meld(T_AFB_NIET_TE_TONEN, pad);
    toon(pad, p);
}

void afb_tonen(const seriesleutel& serie) {
    uint16_t merk = 0;
    const std::string naam = afb_van(serie, &merk);
    afb_tonen(naam, merk);
}

} // namespace zg

// Pick list over rows in memory: the callbacks of LIJST on one table, with a search field on the last row.
#include "shared/arraylijst.h"
#include "shared/report.h"
#include "shared/teksten.h"
#include "term/ingave.h"
#include "term/lijst.h"
#include "term/prompt.h"
#include "term/teksten.h"
#include <algorithm>
#include <cstdio>
#include <cstring>

namespace zg {

namespace {

constexpr int PAGINA = 16; // rows of a list with a head on the lowest screen

// The list that runs; lists don't nest inside each other's search field.
const ArrayLijst* nu;
LIJST* lijst;

int32_t haal(int32_t stap) {
    const int64_t n = std::ssize(nu->regels);
    int64_t p = static_cast<int32_t>(lijst->positie) + int64_t{stap};
    if (p < 0 && stap < 0 && static_cast<int32_t>(lijst->positie) > 0)
        p = 0; // a long stride back goes as far as there are rows
    if (p < 0 || p >= n)
        return 0;
    lijst->positie = static_cast<uint32_t>(p);
    return 1;
}

// The record under the cursor, in screens that may show lists of their own; then the page as it is now.
void open_record() {
    const ArrayLijst* deze = nu;
    LIJST* eigen = lijst;
    deze->record(static_cast<int>(eigen->positie));
    nu = deze;
    lijst = eigen;
    const auto laatste = static_cast<uint32_t>(std::max<int64_t>(std::ssize(nu->regels) - 1, 0));
    lijst->positie = std::min(lijst->positie, laatste);
    lijst->modus = 1;
    SCHERM.laatste = K_F10;
    SCHERM.vlag &= ~static_cast<uint32_t>(V_LEEG);
}

void toets() {
    char tekst[21] = "";
    int rij = LIJSTVELDRIJ();
    SCRPUT(A_LABEL, rij, 2, "%s ", nu->vraag);
    TOETSAAN(K_CANCEL);
    if (nu->record)
        TOETSAANMET(K_F10, T_HELP_F_RECORD);
    INGAVE(rij, 3 + static_cast<int>(strlen(nu->vraag)), nu->formaat, &SCHERM.toets[key_f3], tekst);
    if (SCHERM.laatste == K_F10 && nu->record) {
        open_record();
        return;
    }
    if (SCHERM.laatste == K_F3)
        SCHERM.vlag |= V_LEEG;
    if ((SCHERM.vlag & V_LEEG) || TOETSWEG())
        return;
    int gevonden = nu->zoek(tekst);
    if (gevonden >= 0)
        lijst->positie = static_cast<uint32_t>(gevonden);
    lijst->modus = gevonden >= 0 ? 2 : 1; // nothing found: page and cursor stay
}

void kop() {
    SCRPUT(A_LABEL, 1, 2, "%s", nu->kop.c_str());
}

const char* regel() {
    int32_t p = static_cast<int32_t>(lijst->positie);
    return p >= 0 && p < std::ssize(nu->regels) ? nu->regels[static_cast<size_t>(p)].c_str() : "";
}

} // namespace

int arraylijst(const ArrayLijst& deze) {
    if (deze.regels.empty()) {
        MELDBOX(MELD_INFO, TXT(T_GEEN_INFORMATIE), nullptr, nullptr);
        return -1;
    }
    nu = &deze;
    lijst = LIJSTNEW(haal, toets, deze.kop.empty() ? nullptr : kop, regel);
    if (!lijst)
        NOMEM("arraylijst", 1);
    lijst->vast = 1;
    lijst->aantal = [] { return int64_t{std::ssize(nu->regels)}; };
    // The row to begin on with what stands around it; a short list shows whole.
    const int begin = std::clamp(deze.begin, 0, static_cast<int>(std::ssize(deze.regels)) - 1);
    lijst->cursor = begin < PAGINA ? begin : PAGINA / 2;
    lijst->positie = static_cast<uint32_t>(begin - lijst->cursor);
    snprintf(lijst->titel, sizeof lijst->titel, "%s", deze.titel);
    // Wide enough for the search field behind its label.
    size_t breed = 12 + strlen(deze.vraag);
    for (const std::string& r : deze.regels)
        breed = std::max(breed, r.size());
    lijst->breedte = static_cast<int32_t>(breed) + 4;
    int gekozen = LIJSTRUN(lijst, 0) ? static_cast<int>(lijst->positie) : -1;
    LIJSTDEL(lijst);
    lijst = nullptr;
    return gekozen;
}

} // namespace zg

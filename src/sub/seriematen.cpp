// The toggle grid, and the sizes of a series: confirmed, added from bars, changed one by one.
#include "shared/maatbalk.h"
#include "sub/maatsoort.h"
#include "sub/schakelen.h"
#include "sub/teksten.h"
#include "term/ingave.h"
#include "term/prompt.h"
#include "term/teksten.h"
#include "term/vast.h"
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

namespace zg {
namespace {

// ---- toggle grid

constexpr int SCHAKELRIJ = 4, KOLOM = 2, CEL = 4, PER_RIJ = 19, RIJAFSTAND = 3;

std::vector<mtinfo> type_maten() { // of the type in force, in bar order
    std::vector<mtinfo> uit;
    mtinfo info{};
    for (int er = maatbalk ? mtread(maatbalk, 'F', &info, 2) : 0; er && uit.size() < size_t{MATEN};
         er = mtread(maatbalk, 'N', &info, 2))
        uit.push_back(info);
    return uit;
}

int schakelrij(size_t i) {
    return 1 + static_cast<int>(i) / PER_RIJ * RIJAFSTAND;
}
int schakelkolom(size_t i) {
    return KOLOM + static_cast<int>(i) % PER_RIJ * CEL;
}

void toon_schakelaar(size_t i, bool aan) {
    SCRPUT(A_WAARDE, schakelrij(i) + 1, schakelkolom(i) + 2, "%c", TXTLETTER(aan ? T_JA : T_NEE));
}

// ---- sizes of a series

constexpr int PAGINA = 18; // sizes in the window
constexpr int HOOGTE = 5, BREEDTE = 80;

void toon_maten(int van) {
    SCRCLREOL(1, 1);
    SCRPUT(A_LABEL, 1, KOLOM, "%s", van > 1 ? "< " : "  ");
    const int tot = std::min(van + PAGINA - 1, balk_kolommen());
    for (int k = van; k <= tot; k++)
        SCRPUT(A_WAARDE, 1, KOLOM + 2 + (k - van) * CEL, "%*.3s", CEL, balk_naam(k));
    if (tot < balk_kolommen())
        SCRPUT(A_LABEL, 1, KOLOM + 2 + PAGINA * CEL, " >");
}

// Choosing the sizes: the list of bars, the set with its question, the toggle grid; done, or given up.
enum class Stap { lijst, vraag, schakel, klaar, weg };

// Show the set and ask; it pages by itself.
Stap akkoord(int rij, int kolom, const uint8_t* maten, bool f6) {
    balk_kies(maten);
    if (balk_kolommen() == 0) {
        error("%s", TXT(T_MAAT_MINSTENS));
        return Stap::schakel;
    }
    WINOPEN1(std::min(rij, SCHERM.lines - HOOGTE), std::min(kolom, SCHERM.cols - BREEDTE + 1), HOOGTE,
             BREEDTE);
    WINBOX(nullptr);
    int van = 1;
    bool ja;
    do {
        if (SCHERM.laatste == K_F7 || SCHERM.laatste == K_F8)
            van += SCHERM.laatste == K_F8 ? PAGINA : -PAGINA;
        toon_maten(van);
        TOETSAAN(K_F5);
        if (f6)
            TOETSAAN(K_F6);
        if (van > 1)
            TOETSAAN(K_F7);
        if (van + PAGINA <= balk_kolommen())
            TOETSAAN(K_F8);
        ja = JNVRAAG(3, KOLOM, "[+]") != 0;
    } while (SCHERM.laatste == K_F7 || SCHERM.laatste == K_F8);
    WINCLOSE();
    return SCHERM.laatste == K_F5 ? Stap::lijst : ja ? Stap::klaar : Stap::schakel;
}

// The set size by size; it can't be left empty, but for being given up.
Stap schakel(uint8_t* maten, const uint8_t* vast, bool f6) {
    schakel_open(TXT(T_MAAT_WIJZIGEN), maten);
    schakel_bewerk(maten, vast, f6);
    WINCLOSE();
    if (balk_heeft(maten))
        return Stap::vraag;
    if (TOETSWEG())
        return Stap::weg;
    if (SCHERM.laatste != K_F6)
        error("%s", TXT(T_MAAT_MINSTENS));
    return Stap::schakel;
}

} // namespace

void schakel_open(const char* titel, const uint8_t* maten) {
    const auto alle = type_maten();
    WINOPEN1(SCHAKELRIJ, 1, schakel_vraagrij() + 2, BREEDTE);
    WINBOX(" %s ", titel);
    for (size_t i = 0; i < alle.size(); i++) {
        SCRPUT(A_LABEL, schakelrij(i), schakelkolom(i), "%3.3s", VASTTEKST(alle[i].naam).c_str());
        toon_schakelaar(i, maat_in(maten, alle[i].maatnr));
    }
}

int schakel_vraagrij() {
    const size_t n = type_maten().size();
    return schakelrij(n > 0 ? n - 1 : 0) + RIJAFSTAND;
}

void schakel_bewerk(uint8_t* maten, const uint8_t* vast, bool f6) {
    const auto alle = type_maten();
    for (size_t i = 0; i < alle.size();) {
        const int maat = alle[i].maatnr;
        const bool was = maat_in(maten, maat);
        uint8_t aan = was;
        SCHERM.toets[key_btab] = K_LEFT, SCHERM.toets[key_extra] = K_RIGHT;
        if (f6)
            TOETSAAN(K_F6);
        INGAVE(schakelrij(i) + 1, schakelkolom(i) + 2, "b,EA", &SCHERM.toets[key_cancel],
               &SCHERM.toets[key_btab], &SCHERM.toets[key_extra], &aan);
        SCHERM.toets[key_btab] = SCHERM.toets[key_extra] = 0;
        if (TOETSWEG() || SCHERM.laatste == K_F6)
            break;
        const bool links = SCHERM.laatste == K_LEFT;
        if (links || SCHERM.laatste == K_RIGHT) {
            if (links ? i == 0 : i + 1 == alle.size())
                error("%s", TXT(T_ONGELDIGE_TOETS));
            else
                links ? i-- : i++;
            continue;
        }
        if (was && !aan && vast && maat_in(vast, maat)) {
            error("%s", TXT(T_MAAT_MET_AANTALLEN));
            continue;
        }
        aan ? maat_aan(maten, maat) : maat_uit(maten, maat);
        i++;
    }
}

bool serie_maten(int rij, int kolom, uint8_t* maten, const uint8_t* met_aantallen, bool opgeefbaar) {
    if (!maatbalk || type_maten().empty()) {
        error("%s %hu: %s", TXT(T_MAAT_NUMMER), maatbalk ? maatbalk->soort : uint8_t{0},
              TXT(T_MAAT_GEEN_MATEN));
        return false;
    }
    static const uint8_t GEEN[MAATBYTES] = {};
    uint8_t oud[MAATBYTES];
    memcpy(oud, maten, sizeof oud);
    Stap stap = memcmp(maten, GEEN, sizeof GEEN) == 0 ? Stap::lijst : Stap::vraag;
    while (stap != Stap::klaar && stap != Stap::weg) {
        const Stap nu = stap;
        SCHERM.laatste = 0;
        if (nu == Stap::lijst) {
            maatbalk_kiezen("STVW", maten, opgeefbaar);
            stap = Stap::vraag;
        } else if (nu == Stap::vraag) {
            stap = akkoord(rij, kolom, maten, opgeefbaar);
        } else {
            stap = schakel(maten, met_aantallen, opgeefbaar);
        }
        if (opgeefbaar && SCHERM.laatste == K_F6)
            stap = FFLASH(-2, 0, A_WAARDE, nullptr, "[-]%s", TXT(T_TOEVOEGEN_AFBREKEN)) ? Stap::weg : nu;
    }
    if (stap == Stap::weg) {
        memcpy(maten, oud, sizeof oud);
        balk_kies(oud);
        return false;
    }
    return true;
}

} // namespace zg

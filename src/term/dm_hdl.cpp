// A pop-up menu of texts at the right edge. The chain belongs to its maker until DMRUN, which frees it; the
// first record is the title. A menu taller than the screen scrolls with the cursor.
#include "term/dm_hdl.h"
#include "term/natl.h"
#include "term/scherm.h"
#include "term/teksten.h"
#include "term/toets.h"
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace zg {

namespace {

std::string gekozen;

// The report of every module that runs out of memory; its own routine stands above the terminal layer.
[[noreturn]] void geen_geheugen(int nr) {
    SCRFATAL("%s: %s (nr=%d)", "dm_hdl", TXT(T_ONVOLDOENDE_GEHEUGEN), nr);
}

DMREC* maak(char soort, const char* tekst, int nr) {
    auto* r = static_cast<DMREC*>(calloc(1, sizeof(DMREC)));
    if (!r)
        geen_geheugen(nr);
    r->tekst = strdup(tekst ? tekst : "");
    if (!r->tekst)
        geen_geheugen(nr + 1);
    r->soort = soort;
    return r;
}

DMREC* hang(DMREC* menu, DMREC* r) {
    while (menu->volgende)
        menu = menu->volgende;
    return menu->volgende = r;
}

void wis(DMREC* menu) {
    while (menu) {
        DMREC* weg = menu;
        menu = menu->volgende;
        free(weg->tekst);
        free(weg);
    }
}

std::string zonder(const char* tekst, size_t* plaats) {
    std::string s = tekst;
    *plaats = s.find('&');
    if (*plaats != std::string::npos)
        s.erase(*plaats, 1);
    if (*plaats >= s.size())
        *plaats = std::string::npos;
    return s;
}

int letter(const DMREC* r) {
    size_t plaats;
    std::string s = zonder(r->tekst, &plaats);
    return plaats == std::string::npos ? -1 : NGROOT(static_cast<uint8_t>(s[plaats]));
}

void teken(const DMREC* r, int rij, int breedte, bool keus) {
    size_t plaats;
    std::string s = zonder(r->tekst, &plaats);
    if (r->soort == 'S') {
        std::string lijn(static_cast<size_t>(breedte), '-');
        s.resize(std::min(s.size(), lijn.size()));
        lijn.replace((lijn.size() - s.size()) / 2, s.size(), s);
        SCRPUT(keus ? A_KEUS : A_LABEL, rij, 1, "%s", lijn.c_str());
        return;
    }
    const uint32_t attr = keus ? A_KEUS : r->aan ? A_WAARDE : A_LABEL;
    SCRPUT(attr, rij, 1, " %-*.*s", breedte - 1, breedte - 1, s.c_str());
    if (plaats != std::string::npos)
        SCRPUT(attr | A_SNELLETTER, rij, 2 + static_cast<int>(plaats), "%c", s[plaats]);
}

using Rijen = std::vector<const DMREC*>;

template <class Goed> int eerste_die(const Rijen& rijen, Goed goed) {
    auto r = std::find_if(rijen.begin(), rijen.end(), goed);
    return r == rijen.end() ? -1 : static_cast<int>(r - rijen.begin());
}

// The default, else the first item that can be chosen, else whatever is no separator.
int beginrij(const Rijen& rijen, int vast_id) {
    auto item = [](const DMREC* r) { return r->soort == 'I' && r->aan; };
    int keus = eerste_die(rijen, [&](const DMREC* r) { return item(r) && r->id == vast_id; });
    if (keus < 0)
        keus = eerste_die(rijen, item);
    return keus >= 0 ? keus : std::max(0, eerste_die(rijen, [](const DMREC* r) { return r->soort != 'S'; }));
}

// The next row in a direction that is no separator; at the end the same one.
int stap(const Rijen& rijen, int keus, int richting) {
    const int n = static_cast<int>(rijen.size());
    for (int i = keus + richting; i >= 0 && i < n; i += richting)
        if (rijen[static_cast<size_t>(i)]->soort != 'S')
            return i;
    return keus;
}

// The row that a key chooses: ENTER that of the cursor, others by extra key or letter. Null for none.
const DMREC* neem(const Rijen& rijen, int keus, int32_t key) {
    const int groot = key >= 0 && key <= 255 ? NGROOT(static_cast<uint8_t>(key)) : -2;
    const int i = key == K_ENTER ? keus : eerste_die(rijen, [&](const DMREC* r) {
        return r->aan && ((r->toets && r->toets == key) || letter(r) == groot);
    });
    const bool er = i >= 0 && i < static_cast<int>(rijen.size()) && rijen[static_cast<size_t>(i)]->aan;
    return er ? rijen[static_cast<size_t>(i)] : nullptr;
}

} // namespace

DMREC* DMNEW(const char* titel) {
    return maak('T', titel, 1);
}

void DMSEP(DMREC* menu, const char* tekst) {
    hang(menu, maak('S', tekst, 3));
}

void DMITEM(DMREC* menu, const char* tekst, int id, int aan) {
    DMREC* r = hang(menu, maak('I', tekst, 5));
    r->id = id;
    r->aan = aan;
}

void DMKEY(DMREC* menu, const int32_t* sleutel, int id) {
    DMKEY(menu, *sleutel, id);
}

void DMKEY(DMREC* menu, int32_t teken, int id) {
    for (DMREC* r = menu; r; r = r->volgende)
        if (r->soort == 'I' && r->id == id)
            r->toets = teken;
}

int DMRUN(DMREC* menu, int rij, int vast_id) {
    Rijen rijen;
    size_t langste = strlen(menu->tekst);
    for (const DMREC* r = menu->volgende; r; r = r->volgende) {
        rijen.push_back(r);
        langste = std::max(langste, strlen(r->tekst));
    }
    const int onder = SCHERM.lines - 1; // the status line stays free
    const int w = std::min(std::max(static_cast<int>(langste) + 4, 20), SCHERM.cols - 1);
    const int h = std::min(static_cast<int>(rijen.size()) + 2, onder);
    WINOPEN1(std::clamp(rij, 1, onder - h + 1), SCHERM.cols - w, h, w);
    if (menu->tekst[0] == ' ')
        WINBOX("%s", menu->tekst);
    else if (menu->tekst[0])
        WINBOX(" %s ", menu->tekst);
    else
        WINBOX(nullptr);

    BEZIGWIS();
    const DMREC* gekozen_rij = nullptr;
    for (int keus = beginrij(rijen, vast_id), top = 0; !gekozen_rij;) {
        top = std::clamp(top, std::clamp(keus - (h - 2) + 1, 0, keus), keus);
        for (int i = 0; i < h - 2; i++)
            teken(rijen[static_cast<size_t>(top + i)], i + 1, w - 2, top + i == keus);
        WINCURSOR(0);
        const int32_t key = TOETS();
        WINCURSOR(1);
        error("%s", "");
        SCHERM.laatste = key;
        if (key == K_CANCEL || key == K_ESC || key == K_F6)
            break;
        if (key == K_UP || key == K_DOWN)
            keus = stap(rijen, keus, key == K_UP ? -1 : 1);
        else if (gekozen_rij = neem(rijen, keus, key); !gekozen_rij)
            error("%s", TXT(T_ONGELDIGE_TOETS));
    }
    if (gekozen_rij) {
        vast_id = gekozen_rij->soort == 'I' ? gekozen_rij->id : 0;
        size_t plaats;
        gekozen = zonder(gekozen_rij->tekst, &plaats);
    }
    WINCLOSE();
    BEZIGTOON();
    wis(menu);
    return vast_id;
}

const char* DMTEXT() {
    return gekozen.c_str();
}

} // namespace zg

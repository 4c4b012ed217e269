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
    std::vector<const DMREC*> rijen;
    size_t langste = strlen(menu->tekst);
    for (const DMREC* r = menu->volgende; r; r = r->volgende) {
        rijen.push_back(r);
        langste = std::max(langste, strlen(r->tekst));
    }
    const int n = static_cast<int>(rijen.size());
    const int onder = SCHERM.lines - 1; // the status line stays free
    const int w = std::min(std::max(static_cast<int>(langste) + 4, 20), SCHERM.cols - 1);
    const int h = std::min(n + 2, onder);
    const int zicht = h - 2;
    WINOPEN1(std::clamp(rij, 1, onder - h + 1), SCHERM.cols - w, h, w);
    if (menu->tekst[0] == ' ')
        WINBOX("%s", menu->tekst);
    else if (menu->tekst[0])
        WINBOX(" %s ", menu->tekst);
    else
        WINBOX(nullptr);

    auto eerste_die = [&](auto goed) {
        for (int i = 0; i < n; i++)
            if (goed(*rijen[static_cast<size_t>(i)]))
                return i;
        return -1;
    };
    auto item = [](const DMREC& r) { return r.soort == 'I' && r.aan; };
    int keus = eerste_die([&](const DMREC& r) { return item(r) && r.id == vast_id; });
    if (keus < 0)
        keus = eerste_die(item);
    if (keus < 0)
        keus = std::max(0, eerste_die([](const DMREC& r) { return r.soort != 'S'; }));

    BEZIGWIS();
    int antwoord = vast_id, top = 0;
    for (bool klaar = false; !klaar;) {
        top = std::clamp(top, std::max(0, keus - zicht + 1), keus);
        for (int i = 0; i < zicht && top + i < n; i++)
            teken(rijen[static_cast<size_t>(top + i)], i + 1, w - 2, top + i == keus);
        WINCURSOR(0);
        int32_t key = TOETS();
        WINCURSOR(1);
        error("%s", "");
        SCHERM.laatste = key;

        int stap = key == K_UP ? -1 : key == K_DOWN ? 1 : 0;
        if (key == K_CANCEL || key == K_ESC || key == K_F6) {
            klaar = true;
        } else if (stap) {
            int i = keus + stap;
            while (i >= 0 && i < n && rijen[static_cast<size_t>(i)]->soort == 'S')
                i += stap;
            if (i >= 0 && i < n)
                keus = i;
        } else {
            int i = keus;
            if (key != K_ENTER) {
                int groot = key >= 0 && key <= 255 ? NGROOT(static_cast<uint8_t>(key)) : -2;
                i = eerste_die([&](const DMREC& r) {
                    return r.aan && ((r.toets && r.toets == key) || letter(&r) == groot);
                });
            }
            if (i >= 0 && i < n && rijen[static_cast<size_t>(i)]->aan) {
                const DMREC* r = rijen[static_cast<size_t>(i)];
                size_t plaats;
                antwoord = r->soort == 'I' ? r->id : 0;
                gekozen = zonder(r->tekst, &plaats);
                klaar = true;
            }
        }
    }
    WINCLOSE();
    BEZIGTOON();
    wis(menu);
    return antwoord;
}

const char* DMTEXT() {
    return gekozen.c_str();
}

} // namespace zg

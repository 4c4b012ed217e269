// Pull-down menus, the paint: geometry of bar and boxes, items, marks and arrows. Places are 1-based; items
// count from 0, and `eerste` is the first one shown, on the bar and in a column that is taller than the
// screen.
#include "term/menudeel.h"
#include "term/natl.h"
#include <algorithm>
#include <cstring>

namespace zg {

namespace {

constexpr uint32_t ALTCHARSET = A_LIJN_LABEL & ~A_LABEL;
constexpr char T_LIJN = '\xC4', T_VAK = '\xFE', T_VINK = '\xFB'; // with ALTCHARSET: line, square, tick
constexpr int BALKKOLOM = 2;

struct Toontekst {
    std::string tekst;
    size_t letter; // npos: none to be seen
};

Toontekst toon(const TR_ITEM* item, size_t breedte) {
    Toontekst t{std::string(item->tekst).substr(0, breedte), std::string::npos};
    if (item->lijn)
        return t;
    t.letter = t.tekst.find('&');
    if (t.letter != std::string::npos)
        t.tekst.erase(t.letter, 1);
    if (t.letter >= t.tekst.size())
        t.letter = std::string::npos;
    return t;
}

int balkbreedte(const TR_ITEM* item) {
    return static_cast<int>(toon(item, std::string::npos).tekst.size()) + 1;
}

int balkkolom(const TR_MENU* menu, int plaats) {
    int kolom = BALKKOLOM;
    for (int i = menu->eerste; i < plaats; i++)
        kolom += balkbreedte(menu->items[i]);
    return kolom;
}

// Last item of the bar that fits behind `eerste`; always at least that one.
void balkeinde(TR_MENU* menu) {
    int vol = balkbreedte(menu->items[menu->eerste]), i = menu->eerste;
    while (i + 1 < menu->aantal && vol + balkbreedte(menu->items[i + 1]) <= SCHERM.cols - 2)
        vol += balkbreedte(menu->items[++i]);
    menu->laatste = static_cast<uint16_t>(i);
}

void verf_lijn(const TR_BEELD& b, const TR_ITEM* item, int rij) {
    SCRPUT(A_LIJN_LABEL, rij, 1, "%s", std::string(static_cast<size_t>(b.breedte), T_LIJN).c_str());
    const int n = std::min(static_cast<int>(strlen(item->tekst)), b.breedte);
    if (n > 0)
        SCRPUT(A_LABEL, rij, (b.breedte - n) / 2 + 1, "%.*s", n, item->tekst);
}

} // namespace

int TR_LETTER(const TR_MENU* menu, const TR_ITEM* item) {
    const size_t cut = TR_IN_BALK(menu) ? std::string::npos : std::clamp<size_t>(menu->breedte, 5, 64);
    return toon(item, cut).letter == std::string::npos ? 0 : item->letter;
}

TR_BEELD TR_MAAT(TR_MENU* menu) {
    const int lines = SCHERM.lines, cols = SCHERM.cols;
    if (TR_IN_BALK(menu))
        return {menu, 2, 1, cols, 1};
    TR_BEELD b{menu, menu->rij, menu->kolom, std::clamp<int>(menu->breedte, 5, 64), menu->aantal};
    if (b.kolom < 1 || b.kolom > cols - 5)
        b.kolom = 1;
    if (b.rij < 2 || b.rij > lines - 2)
        b.rij = 2;
    if (b.kolom + b.breedte + 1 > cols)
        b.kolom = cols - b.breedte - 1;
    if (b.rij + b.zicht >= lines) {
        b.zicht = std::min(b.zicht, lines - 3);
        b.rij = lines - b.zicht - 1;
    }
    return b;
}

void TR_OPEN(const TR_BEELD& b) {
    if (TR_IN_BALK(b.menu)) {
        WINOPEN7(2, 1, 1, SCHERM.cols);
        return;
    }
    WINOPEN7(b.rij, b.kolom, b.zicht + 2, b.breedte + 2);
    if (b.menu->titel && b.menu->titel[0])
        WINBOX("%.*s", b.breedte, b.menu->titel);
    else
        WINBOX(nullptr);
}

void TR_VERFITEM(const TR_BEELD& b, int plaats, bool keus) {
    const TR_MENU* menu = b.menu;
    const TR_ITEM* item = menu->items[plaats];
    const uint32_t attr = keus ? A_KEUS : item->aan ? A_WAARDE : A_LABEL;
    int rij = 1, kolom = 1;
    Toontekst t;
    if (TR_IN_BALK(menu)) {
        if (plaats < menu->eerste || plaats > menu->laatste)
            return;
        t = toon(item, std::string::npos);
        kolom = balkkolom(menu, plaats);
        SCRPUT(attr, rij, kolom, "%s ", t.tekst.c_str());
    } else {
        rij = plaats - menu->eerste + 1;
        if (rij < 1 || rij > b.zicht)
            return;
        if (item->lijn) {
            verf_lijn(b, item, rij);
            return;
        }
        t = toon(item, static_cast<size_t>(b.breedte));
        SCRPUT(attr, rij, 1, "%-*.*s", b.breedte, b.breedte, t.tekst.c_str());
        if (item->sub)
            SCRLIJN(attr | ALTCHARSET, rij, b.breedte, L_RECHTS, 1);
        if (item->merk == M_VAKAAN || item->merk == M_GEKOZEN)
            SCRPUT(attr | ALTCHARSET, rij, 1, "%c", item->merk == M_VAKAAN ? T_VAK : T_VINK);
    }
    if (item->aan && t.letter != std::string::npos)
        SCRPUT(attr | A_SNELLETTER, rij, kolom + static_cast<int>(t.letter), "%c", t.tekst[t.letter]);
}

void TR_VERF(const TR_BEELD& b, int keus) {
    const TR_MENU* menu = b.menu;
    if (TR_IN_BALK(menu)) {
        SCRPUT(A_LABEL, 1, 1, "%*s", SCHERM.cols, "");
        if (menu->eerste > 0)
            SCRLIJN(A_LIJN_WAARDE, 1, 1, L_LINKS, 1);
        if (menu->laatste + 1 < menu->aantal)
            SCRLIJN(A_LIJN_WAARDE, 1, SCHERM.cols, L_RECHTS, 1);
    }
    for (int i = menu->eerste; i < menu->aantal; i++)
        TR_VERFITEM(b, i, i == keus);
    if (!TR_IN_BALK(menu) && menu->aantal - menu->eerste < b.zicht)
        SCRCLREOW(menu->aantal - menu->eerste + 1, 1); // items went while it was open
}

bool TR_SCHUIF(const TR_BEELD& b, int plaats) {
    TR_MENU* menu = b.menu;
    const int was = menu->eerste, wastot = menu->laatste;
    int eerste = std::min(was, plaats);
    if (TR_IN_BALK(menu)) {
        menu->eerste = static_cast<uint16_t>(eerste);
        for (balkeinde(menu); menu->laatste < plaats; balkeinde(menu))
            menu->eerste++;
        return menu->eerste != was || menu->laatste != wastot;
    }
    menu->eerste = static_cast<uint16_t>(std::max(eerste, plaats - b.zicht + 1));
    return menu->eerste != was;
}

void TR_LEGSUB(const TR_BEELD& b, int plaats) {
    TR_MENU* sub = b.menu->items[plaats]->sub;
    const int lines = SCHERM.lines, cols = SCHERM.cols, breedte = std::clamp<int>(sub->breedte, 5, 64);
    int rij, kolom;
    if (TR_IN_BALK(b.menu)) {
        rij = b.rij + 1;
        kolom = balkkolom(b.menu, plaats);
        if (kolom + breedte + 2 > cols)
            kolom = cols - breedte - 1;
    } else {
        rij = b.rij + (plaats - b.menu->eerste) + 1;
        if (rij + sub->aantal >= lines)
            rij = std::max(2, lines - sub->aantal - 1);
        kolom = b.kolom + b.breedte + 1;
        if (kolom + breedte + 1 > cols)
            kolom = b.kolom - breedte - 1;
        if (kolom < 1)
            kolom = cols - breedte - 1;
    }
    sub->rij = static_cast<int16_t>(rij);
    sub->kolom = static_cast<int16_t>(kolom);
}

void TR_BALKRUST(const TR_MENU* menu) {
    TR_BALKWEG();
    for (int i = menu->eerste; i <= menu->laatste && i < menu->aantal; i++)
        SCRBASE(A_MENUBALK, 2, balkkolom(menu, i), "%s ",
                toon(menu->items[i], std::string::npos).tekst.c_str());
}

void TR_BALKWEG() {
    if (SCHERM.bestaat)
        SCRBASE(A_LABEL, 2, 1, "%*s", SCHERM.cols, "");
}

} // namespace zg

// Pull-down menus as they are met: bar and pop-ups, keys and letters, marks, geometry, typed-ahead keys.
#include "gesprek.h"
#include "term/ingave.h"
#include "term/menu.h"
#include <cstring>

using namespace zg;
using namespace zg::test;

namespace {

std::string spoor;
void handler(TR_MENU*, int32_t id) {
    spoor += vorm("h%d ", id);
}

std::string run(TR_MENU* m, int id) {
    SCHERM.laatste = 77;
    const int uit = TR_RUN(m, id);
    return spoor + vorm("%d %d", uit, SCHERM.laatste);
}

std::string klaar(TR_MENU* m, const std::string& s) {
    TR_FREE(m);
    return s;
}

struct Ingang {
    int onder; // -1: the menu itself
    const char* tekst;
    int id, vlag = 1, toets = 0;
    void (*werk)(TR_MENU*, int32_t) = nullptr;
};
TR_MENU* vul(TR_MENU* m, std::initializer_list<Ingang> ingangen) {
    for (const Ingang& i : ingangen)
        TR_ADD(m, i.onder, i.tekst, i.id, i.vlag, i.toets, i.werk);
    return m;
}

// Orders | Prijzen | Los | Dicht, with a submenu two deep below Prijzen. A bar has no separators: 99 is none.
TR_MENU* balk() {
    return vul(TR_NEW(1 | 2, 0, 0, 0, nullptr), {{-1, "&Orders", 1},
                                                 {-1, "&Prijzen", 2, 1, 0, handler},
                                                 {-1, "", 99, 2},
                                                 {-1, "&Los", 3, 1, 0, handler},
                                                 {-1, "&Dicht", 4, 0},
                                                 {1, "&Nieuw", 11, 1, 0, handler},
                                                 {1, "", 98, 2},
                                                 {1, "&Wijzig", 12, 0, 0, handler},
                                                 {1, "&Toon", 13, 1, '.'},
                                                 {2, "&Netto", 21},
                                                 {2, "&Valuta", 22},
                                                 {22, "&Koers", 221},
                                                 {22, "&Eenheid", 222},
                                                 {4, "&Geheim", 41, 1, 0, handler}});
}

} // namespace

TEST(Menu, BalkToetsen) {
    struct {
        int id;
        const char *keys, *uit;
    } const gevallen[] = {
        {0, "<Enter><Enter>", "h11 11 10"},
        {0, "o.", "13 10"},
        {0, "o,", "13 10"},                               // comma is the point of a numeric keypad
        {0, "<Down><Down><Enter><Down><Enter>", "13 10"}, // the disabled leaf takes no ENTER

        {0, "pv<Enter>", "h2 221 10"},
        {0, "<Right><Enter>v<Left>n", "h2 21 10"}, // left closes a deeper menu only

        {0, "o<Right><Enter>", "h2 21 10"}, // right: the neighbour opens
        {0, "pv<Right><Right><Left><Enter>", "h2 h3 3 10"},
        {0, "o<Left><Enter><Cancel><Cancel>", "0 355"}, // round to the last; nothing in it can be chosen
        {0, "dg<Esc>", "0 355"},
        {0, "l<Enter>", "h3 3 10"}, // an item without submenu opens one of its own

        {12, "<Down><Enter><Down><Enter>",
         "13 10"},                     // a disabled start: the first that can be used, then down
        {222, "<Enter>", "h2 222 10"}, // opens all the way
        {41, "<Enter><Esc><Esc>", "0 355"},
    };
    for (const auto& g : gevallen) {
        SCOPED_TRACE(vorm("%d %s", g.id, g.keys));
        auto kind = [&] {
            TR_MENU* m = balk();
            return klaar(m, run(m, g.id));
        };
        Gesprek t(kind);
        t.toetsen(g.keys);
        EXPECT_EQ(t.antwoord(), g.uit);
        // Typed ahead: the same, also when a letter chooses before anything is shown.
        Gesprek salvo(kind);
        salvo.reeks(g.keys);
        EXPECT_EQ(salvo.antwoord(), g.uit);
    }
}

TEST(Menu, BalkOpHetScherm) {
    Gesprek t([] {
        TR_MENU* m = balk();
        std::string s = run(m, 0);
        TOETS();
        return klaar(m, s);
    });
    const std::string rij = "  Orders  Prijzen  Los  Dicht  ";
    stappen(t, {{"", {{2, 1, rij}}}});
    EXPECT_TRUE(t.cel(2, 3).keus && t.cel(2, 9).keus);
    EXPECT_FALSE(t.cel(2, 11).keus);
    EXPECT_NE(t.cel(2, 11).voor, t.cel(2, 12).voor); // the hot letter
    EXPECT_EQ(t.cel(2, 25).voor, t.cel(2, 26).voor); // none on a disabled item
    stappen(t, {{"<Right><Down>", {{3, 10, "┌─────────┐"}, {4, 10, "│ Netto   │"}, {5, 10, "│ Valuta →│"}}},
                {"<Down><Enter>", {{5, 20, "┌──────────┐ "}, {6, 20, "│ Koers    │ "}}},
                {"<Esc><Esc><Esc>", {{2, 1, rij}}}});
    EXPECT_TRUE(t.cel(2, 3).keus && t.cel(2, 12).keus); // at rest the items stand reversed
    EXPECT_FALSE(t.cel(2, 60).keus);
    stappen(t, {{"x", {{2, 1, std::string(80, ' ')}}}}); // freed: the row is clean again
    EXPECT_EQ(t.antwoord(), "h2 0 355");
}

TEST(Menu, PopupPlaats) {
    struct {
        const char* naam;
        int vlag, rij, kolom, breedte, items;
        Doos doos;
    } const gevallen[] = {

        {"automatic width", 1, 5, 10, 0, 4, {5, 10, 6, 12}},
        {"centred", 1 | 4 | 8, 0, 0, 0, 4, {9, 34, 6, 12}},

        {"too wide, too far right", 0, 5, 40, 100, 4, {5, 15, 6, 66}},

        {"too low", 0, 21, 10, 20, 4, {20, 10, 6, 22}},

        {"taller than the screen", 0, 5, 10, 20, 60, {2, 10, 24, 22}},
    };
    for (const auto& g : gevallen) {
        SCOPED_TRACE(g.naam);
        Gesprek t([&] {
            TR_MENU* m = TR_NEW(g.vlag, g.rij, g.kolom, g.breedte, "Lang");
            for (int i = 1; i <= g.items; i++) // the tall one scrolls, past a separator
                TR_ADD(m, -1, vorm("Regel %02d", i).c_str(), i, i == 59 ? 2 : 1, 0, nullptr);
            std::string s = run(m, 2);
            int plaats = m->aantal;
            TOETS();
            return klaar(m, s + vorm(" %d", plaats));
        });
        EXPECT_EQ(doos(t), g.doos) << t.scherm();
        EXPECT_TRUE(t.cel(g.doos.rij + 2, g.doos.kolom + 1).keus);
        if (g.items > 20)
            stappen(t, {{"<Up><Up><Up><Down>", {{24, 10, "│ Regel 60           │"}}}});
        t.toetsen("<Enter>x");
        EXPECT_EQ(t.antwoord(), vorm("%d 10 %d", g.items > 20 ? 60 : 2, g.items));
    }
}

TEST(Menu, Merken) {
    Gesprek t([] {
        TR_MENU* m = vul(TR_NEW(1, 5, 10, 0, "Opties"), {{-1, "&Vak", 1, 1 | 4, 0, handler},
                                                         {-1, "&Rood", 2, 1 | 32},
                                                         {-1, "&Geel", 3, 1 | 16},
                                                         {-1, "", 0, 2},
                                                         {-1, "&Klein", 4, 1 | 16},
                                                         {-1, "g&Root", 5, 1 | 32},
                                                         {-1, "&Dood", 6, 16}});
        std::string s = run(m, 3);
        s += vorm(" %d %d %d", TR_GETMARK(m, 1), TR_CHOSEN(m, -1, 2), TR_CHOSEN(m, -1, 4));
        TR_SETMARK(m, 2, 32);
        s += vorm(" %d %d %d %x", TR_CHOSEN(m, -1, 3), TR_CHOSEN(m, -1, 5), TR_GETMARK(m, 3), TR_STATE(m, 2));
        return klaar(m, s);
    });
    stappen(t, {{"", {{7, 11, "√Rood"}, {10, 11, " Klein"}, {11, 11, "√gRoot"}}},
                {"<Enter>v4", {{6, 11, "■Vak"}, {7, 11, " Rood"}, {8, 11, "√Geel"}, {11, 11, "√gRoot"}}}});
    t.toetsen("kd<Esc>");
    EXPECT_EQ(t.antwoord(), "h1 0 355 8 3 4 2 4 16 2101");
}

TEST(Menu, TijdOmEnZonderCancel) {
    Gesprek t([] {
        TR_MENU* m = balk();
        TR_TIMEOUT(1);
        TOETS();
        std::string s = run(m, 221);
        TR_TIMEOUT(-1);
        TR_FLAGS(m, 16, -1);
        s += vorm(" %d", TR_RUN(m, 0));
        return klaar(m, s);
    });
    t.stuur("x");
    t.wacht(" Koers"); // a second later all of it has closed
    t.weg(" Koers");
    t.toetsen("<Esc><Cancel>on");
    EXPECT_EQ(t.antwoord(), "h2 -2 77 11");
}

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
        {0, "<Down><Up><Enter>", "13 10"},                // wraps, past the separator
        {0, " <Enter>w t", "13 10"},
        {0, "pv<Enter>", "h2 221 10"},
        {0, "<Right><Enter>v<Left>n", "h2 21 10"}, // left closes a deeper menu only
        {0, "ov<Esc>pvk", "h2 221 10"},
        {0, "o<Right><Enter>", "h2 21 10"}, // right: the neighbour opens
        {0, "pv<Right><Right><Left><Enter>", "h2 h3 3 10"},
        {0, "o<Left><Enter><Cancel><Cancel>", "0 355"}, // round to the last; nothing in it can be chosen
        {0, "dg<Esc>", "0 355"},
        {0, "l<Enter>", "h3 3 10"}, // an item without submenu opens one of its own
        {0, "<Up><Esc>", "0 355"},
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

TEST(Menu, BredeBalkSchuift) {
    Gesprek t([] {
        TR_MENU* m = TR_NEW(1 | 2, 0, 0, 0, nullptr);
        for (int i = 1; i <= 20; i++)
            TR_ADD(m, -1, vorm("Menu nummer %02d", i).c_str(), i, 1, 0, nullptr);
        return klaar(m, run(m, 0));
    });
    const std::string leeg(15, ' '); // 16 columns an item: four fit
    stappen(t,
            {{"", {{2, 1, "  Menu nummer 01  Menu nummer 02  Menu nummer 03  Menu nummer 04" + leeg + "→"}}},
             {"<Right><Right><Right><Right>", {{2, 1, "← Menu nummer 02  "}}},
             {"<Down>", {{3, 50, "┌────────────────┐"}, {5, 50, "└────────────────┘"}}},
             {"<Esc><Left><Left><Left><Left><Left>", {{2, 1, "← Menu nummer 17  "}, {2, 79, "  "}}},
             {"<Enter>", {{3, 50, "┌────────────────┐"}}},
             {"<Enter>", {}}});
    EXPECT_EQ(t.antwoord(), "20 10");
}

TEST(Menu, PopupPlaats) {
    struct {
        const char* naam;
        int vlag, rij, kolom, breedte, items;
        Doos doos;
    } const gevallen[] = {
        {"as given", 0, 5, 10, 20, 4, {5, 10, 6, 22}},
        {"automatic width", 1, 5, 10, 0, 4, {5, 10, 6, 12}},
        {"centred", 1 | 4 | 8, 0, 0, 0, 4, {9, 34, 6, 12}},
        {"too narrow, out of the screen", 0, 1, 0, 2, 4, {2, 1, 6, 7}},
        {"too wide, too far right", 0, 5, 40, 100, 4, {5, 15, 6, 66}},
        {"column past the edge", 0, 5, 77, 20, 4, {5, 1, 6, 22}},
        {"too low", 0, 21, 10, 20, 4, {20, 10, 6, 22}},
        {"row past the edge", 0, 24, 10, 20, 4, {2, 10, 6, 22}},
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

// A row of submenus beside each other: right, right, then no room: to the left, then against the edge.
TEST(Menu, GenesteSubmenus) {
    Gesprek t([] {
        TR_MENU* m = TR_NEW(0, 5, 30, 24, nullptr);
        vul(m, {{-1, "&Een", 1}, {1, "&Twee", 2}, {2, "&Drie", 3}, {3, "&Vier", 4}});
        for (int i = 50; i < 70; i++)
            TR_ADD(m, 4, vorm("Blad %d", i).c_str(), i, 1, 0, nullptr);
        TR_WIDTH(m, 2, 30);
        TR_WIDTH(m, 3, 60);
        return klaar(m, run(m, 0));
    });
    const std::string weg(26, ' ');
    stappen(t, {{"", {{5, 30, "┌────────────────────────┐"}}},
                {"<Right>", {{6, 54, "→┌────────────────────────┐"}}},
                {"<Enter>", {{7, 24, "┌──────────────────────────────┐"}}}, // left of its parent
                {"d", {{8, 18, " ┌───"}, {10, 79, "─┘"}}}, // nor is there room on the left: against the edge
                {"<Left>dv", {{4, 55, "┌────────────────────────┐"}, {25, 80, "┘"}}},
                {"<Left>", {{4, 55, weg}, {9, 20, " Vier"}}},
                {"<Esc><Esc><Esc><Esc>", {}}});
    EXPECT_EQ(t.antwoord(), "0 355");
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

    Gesprek radio([] { // nothing but radio buttons: the choice closes the menu
        TR_MENU* m =
            vul(TR_NEW(1, 5, 10, 0, nullptr),
                {{-1, "Keuze &1", 1, 1 | 32}, {-1, "Keuze &2", 2, 1 | 16}, {-1, "Keuze &3", 3, 1 | 16}});
        std::string s = run(m, 0);
        return klaar(m, s + vorm(" %d", TR_CHOSEN(m, -1, 1)));
    });
    radio.toetsen("3");
    EXPECT_EQ(radio.antwoord(), "0 355 3");
}

TEST(Menu, LetterAchterDeBreedteEnUitgeschakeld) {
    Gesprek t([] {
        TR_MENU* m = vul(TR_NEW(0, 5, 10, 8, nullptr),
                         {{-1, "Te breed &Xyz", 1, 0}, {-1, "", 2, 2}, {-1, "&Uit", 3, 0}});
        std::string s = run(m, 3);
        TR_ENABLE(m, 1, 3);
        TR_ENABLE(m, 3, 1);
        return klaar(m, s + " " + run(m, 3));
    });
    EXPECT_EQ(t.stuk(6, 10, 10), "│ Te bree│");
    EXPECT_TRUE(t.cel(6, 12).keus); // all disabled: the first line that is no separator
    EXPECT_EQ(t.stuk(7, 10, 10), "│────────│");
    t.toetsen("xu<Enter><Esc>x<Up><Enter>"); // no letter to be seen, so none that works
    EXPECT_EQ(t.antwoord(), "0 355 1 10");
}

// Handlers may change the menu that they are called from, and run another one inside.
namespace {
void bouwer(TR_MENU* top, int32_t id) {
    spoor += vorm("h%d ", id);
    if (id == 1) {
        TR_TEXT(top, 2, "&Anders");
        TR_ENABLE(top, 3, 0);
        TR_REMOVE(top, 4);
        TR_REMOVE(top, 5); // open at this moment: stays
    } else {
        TR_MENU* in = vul(TR_NEW(1, 15, 40, 0, "Binnen"), {{-1, "&Ja", 71}});
        spoor += vorm("[%d] ", TR_RUN(in, 0));
        TR_FREE(in);
    }
}
} // namespace

TEST(Menu, HandlersVeranderenHetMenu) {
    Gesprek t([] {
        TR_MENU* m = vul(TR_NEW(0, 5, 10, 12, "Buiten"), {{-1, "&Sub", 5},
                                                          {5, "&Vink", 1, 1 | 4, 0, bouwer},
                                                          {-1, "&Twee", 2, 1, 0, bouwer},
                                                          {-1, "&Drie", 3},
                                                          {-1, "&Vier", 4}});
        return klaar(m, run(m, 0));
    });
    t.toetsen("sv<Esc>");
    EXPECT_EQ(t.stuk(7, 10, 14), "│ Anders     │");
    EXPECT_EQ(t.stuk(9, 10, 14), "│            │");
    t.toetsen("da");
    t.wacht_op(15, 40, "┌Binne┐"); // the width follows from the items
    t.toetsen("j");
    EXPECT_EQ(t.antwoord(), "h1 h2 [71] 2 10");
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

TEST(Menu, VerkeerdeNamen) {
    Gesprek t([] {
        TR_MENU *m = balk(), *leeg = TR_NEW(1, 5, 5, 0, nullptr);
        std::string s = klaar(leeg, vorm("%d %d ", TR_RUN(nullptr, 0), TR_RUN(leeg, 0)));
        s += vorm("%d %d %d ", TR_REMOVE(m, 555), TR_STATE(m, 555), TR_ADD(m, 555, "x", 7, 1, 0, nullptr));
        s += vorm("%.9s %d %d", SCHERM.statustekst, TR_SETID(m, 21, 22), TR_SETID(m, 21, 23));
        return klaar(m, s + vorm(" %c", TR_HOTLETTER(m, 23)));
    });
    EXPECT_EQ(t.antwoord(), "-1 65535 0 65535 0 Item_ID 2 0 1 N");
}

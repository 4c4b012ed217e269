// Pull-down menus as they are met: bar and pop-ups, keys and letters, marks, geometry, typed-ahead keys.
#include "gesprek.h"
#include "term/menu.h"

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
                                                 {1, "Kop", 98, 2},
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
    for (const auto& [id, keys, uit] : Rijen<int, const char*, const char*>{
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
         }) {
        SCOPED_TRACE(vorm("%d %s", id, keys));
        auto kind = [&] {
            TR_MENU* m = balk();
            return klaar(m, run(m, id));
        };
        Gesprek t(kind);
        EXPECT_EQ(t.antwoord(keys), uit);
        // Typed ahead: the same, also when a letter chooses before anything is shown.
        Gesprek salvo(kind);
        salvo.reeks(keys);
        EXPECT_EQ(salvo.antwoord(), uit);
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
    stappen(t, {{"o", {{5, 2, "│───Kop───│"}}}, {"<Esc>", {{2, 1, rij}}}});
    stappen(t, {{"<Right><Down>", {{3, 10, "┌─────────┐"}, {4, 10, "│ Netto   │"}, {5, 10, "│ Valuta →│"}}},
                {"<Down><Enter>", {{5, 20, "┌──────────┐ "}, {6, 20, "│ Koers    │ "}}},
                {"<Esc><Esc><Esc>", {{2, 1, rij}}}});
    EXPECT_TRUE(t.cel(2, 3).keus && t.cel(2, 12).keus); // at rest the items stand reversed
    EXPECT_FALSE(t.cel(2, 60).keus);
    stappen(t, {{"x", {{2, 1, std::string(80, ' ')}}}}); // freed: the row is clean again
    EXPECT_EQ(t.antwoord(), "h2 0 355");
}

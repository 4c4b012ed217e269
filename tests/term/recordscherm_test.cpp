// A record's screen: what is asked, stored and let go of along each way through it.
#include "term/gesprek.h"
#include "term/recordscherm.h"

namespace zg::test {
namespace {

constexpr Tekst NAAM{DETAIL, 1, 1, "Naam"}, KLEUR{DETAIL, 1, 2, "Kleur"}, DEEL{DETAIL, 1, 3, "Deel"},
    HULP{DETAIL, 1, 4, " hulp bij naam"};

std::string verloop; // what was called, in order
char naam[4], kleur[4], deel[4];
int gelezen, weigeringen;

template <char (&VELD)[4]> void toon(int rij) {
    SCRPUT(A_WAARDE, rij, 20, "%-3.3s", VELD);
}
template <char (&VELD)[4]> bool bewerk(int rij) {
    return INGAVE(rij, 20, "3c,", &SCHERM.toets[key_cancel], VELD) != 0;
}
bool nee() {
    return false;
}
const Item DELEN[] = {{11, &NAAM, toon<deel>, bewerk<deel>}};
const Recordrijen DEELRIJEN{9, 10, 6, 50, 4, DELEN};
bool bewerk_deel(int) {
    return recorddeel(DEELRIJEN, "DEEL");
}
void bekijk_deel() {
    recorddeel(DEELRIJEN, "DEEL");
}
const Item RIJEN[] = {
    {11, &NAAM, toon<naam>, bewerk<naam>, nullptr, nullptr, nullptr, &HULP},
    {12, &KLEUR, toon<kleur>, bewerk<kleur>},
    {13, &KLEUR, toon<kleur>, bewerk<kleur>, nullptr, nee}, // absent
    {14, &KLEUR, toon<kleur>, bewerk<kleur>, nee},          // never chosen
    {15, &DEEL, nullptr, bewerk_deel, nullptr, nullptr, bekijk_deel},
};
const Recordscherm SCHERMPJE{{3, 5, 14, 60, 12, RIJEN},
                             [](bool slot) {
                                 verloop += slot ? "slot " : "lees ";
                                 return gelezen;
                             },
                             [] {
                                 verloop += "schrijf ";
                                 return --weigeringen < 0;
                             },
                             [] {
                                 verloop += "wis ";
                                 return --weigeringen < 0;
                             },
                             [] { verloop += "vrij "; }};
const Recordteksten TEKSTEN{"Wilt u toevoegen", "NIEUW", "RAADPLEGEN", "WIJZIGEN", "Weg. Akkoord"};

std::string ren(bool mag) {
    const Recorduit uit = recordscherm(SCHERMPJE, TEKSTEN, mag);
    const char* const woord[] = {"zelfde", "geschreven", "verwijderd"};
    return vorm("%s%s %.3s/%.3s/%.3s", verloop.c_str(), woord[static_cast<int>(uit)], naam, kleur, deel);
}

TEST(RecordScreen, Ways) {
    struct {
        const char* wat;
        int gelezen, weigeringen;
        bool mag;
        const char *toetsen, *uit;
    } const gevallen[] = {
        {"new, every row", 0, 0, true, "J<Enter>a<Enter>b<Enter>c<Enter>", "slot schrijf geschreven a/b/c"},
        {"new, given up at a row", 0, 0, true, "J<Enter>a<Enter><Esc>", "slot vrij zelfde a//"},
        {"ESC in a part is the part's own", 0, 0, true, "J<Enter><Enter><Enter><Esc>",
         "slot schrijf geschreven //"},
        {"new, not allowed", 0, 0, false, "", "lees zelfde //"},
        {"nothing could be had", -1, 0, true, "", "slot zelfde //"},
        {"refused, stayed, changed and written", 0, 1, true,
         "J<Enter>a<Enter>b<Enter><Enter><Enter>11x<Enter><Esc>", "slot schrijf schrijf geschreven x/b/"},
        {"refused and left", 0, 9, true, "J<Enter>a<Enter><Enter><Enter>J<Enter>",
         "slot schrijf vrij zelfde a//"},
        {"one row by its number", 1, 0, true, "W12b<Enter><Esc>", "slot schrijf geschreven /b/"},
        {"nothing changed", 1, 0, true, "W12<Enter><Esc>", "slot vrij zelfde //"},
        {"all rows, ended in the walk", 1, 0, true, "W<Enter>a<Enter><Esc><Esc>",
         "slot schrijf geschreven a//"},
        {"a part by its number", 1, 0, true, "W1511z<Enter><Esc><Esc>", "slot schrijf geschreven //z"},
        {"rows that can't be chosen", 1, 0, true, "W131416<Esc>", "slot vrij zelfde //"},
        {"not deleted", 1, 0, true, "V<Enter><Esc>", "slot vrij zelfde //"},
        {"delete refused", 1, 1, true, "VJ<Enter>", "slot wis vrij zelfde //"},
        {"only looked at, parts too", 1, 0, false, "WV15<Enter>11<Esc>", "lees zelfde //"},
    };
    for (const auto& g : gevallen) {
        SCOPED_TRACE(g.wat);
        gelezen = g.gelezen, weigeringen = g.weigeringen;
        Gesprek t([&] { return ren(g.mag); }, {}, *g.toetsen != 0);
        EXPECT_EQ(t.antwoord(g.toetsen), g.uit);
    }
}

TEST(RecordScreen, Painted) {
    gelezen = 1, weigeringen = 0;
    Gesprek t([] {
        strcpy(naam, "oud");
        return ren(true);
    });
    EXPECT_EQ(t.stuk(5, 7, 22), "11 Naam           oud ");
    EXPECT_EQ(t.stuk(7, 7, 10), "          ") << "absent";
    t.toetsen("W13", 25, 1, "<13> Ongeldige keuze");
    t.toetsen("11", 15, 7, " hulp bij naam");
    t.toetsen("<Esc>");
    EXPECT_EQ(t.antwoord("<Esc>"), "slot vrij zelfde oud//");
}

} // namespace
} // namespace zg::test

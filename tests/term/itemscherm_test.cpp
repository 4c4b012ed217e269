// A screen of items: which are asked, offered and looked at, in the order in which the user meets them.
#include "term/gesprek.h"
#include "term/itemscherm.h"

namespace zg::test {
namespace {

constexpr Tekst TITEL{DETAIL, 1, 1, "PROEF"}, EEN{DETAIL, 1, 2, "&Een"}, TWEE{DETAIL, 1, 3, "&Twee"},
    DRIE{DETAIL, 1, 4, "&Drie"}, VIER{DETAIL, 1, 5, "&Vier"}, VIJF{DETAIL, 1, 6, "Vij&f"};

std::string verloop; // what was called, in order
char waarde[10][4];

template <int N> void toon(int rij) {
    SCRPUT(A_WAARDE, rij, 12, "%-3.3s", waarde[N]);
}
template <int N> bool bewerk(int rij) {
    verloop += std::to_string(N);
    return INGAVE(rij, 12, "3c,", &SCHERM.toets[key_cancel], waarde[N]) != 0;
}
bool niet_gevraagd(int) {
    verloop += "-";
    return false;
}
void bekijk() {
    verloop += "kijk ";
}
bool nee() {
    return false;
}
bool verplicht8;
bool mist8() {
    return verplicht8 && !waarde[8][0];
}
int itemrij(int nummer) {
    return nummer + 1;
}

const Item ITEMS[] = {
    {0, &EEN, toon<0>},                  // shown only
    {1, &TWEE, toon<1>, bewerk<1>},      // before the walk begins
    {3, &DRIE, toon<3>, bewerk<3>, nee}, // asked once, never chosen
    {4, &VIER, toon<4>, bewerk<4>, nullptr, nullptr, bekijk},
    {5, &EEN, toon<5>, bewerk<5>, nullptr, nee}, // not on the screen
    {6, &TWEE, toon<6>, niet_gevraagd, nee},     // opens no field
    {8, &VIJF, toon<8>, bewerk<8>, nullptr, nullptr, nullptr, nullptr, mist8},
};
const Itemscherm SCHERMPJE{&TITEL, 4, 10, 14, 60, 12, 3, itemrij, ITEMS};
const uint8_t VRAAG[32] = {1, 1, 1, 1, 1, 1, 1, 1, 1};
const uint8_t ALLEEN8[32] = {0, 0, 0, 0, 0, 0, 0, 0, 1}, NIETS[32] = {};

TEST(Items, WalkChoicesAndLooking) {
    gesprekken_over<Itemverloop>(
        [](const Itemverloop& hoe) {
            bool anders = false;
            verplicht8 = hoe.vraag == NIETS;
            const bool goed = itemscherm(SCHERMPJE, hoe, &anders);
            // calls, accepted, changed, values of 3, 4 and 8
            return vorm("%s %d %d %s %s %s", verloop.c_str(), goed, anders, waarde[3], waarde[4], waarde[8]);
        },
        {
            // all that are asked, then the choices
            {{Itemwijze::nieuw, VRAAG, true}, "a<Enter>b<Enter>c<Enter><Esc>", "34-8 1 0 a b c"},
            // ESC ends the walk
            {{Itemwijze::nieuw, VRAAG, true}, "a<Enter><Esc><Esc>", "34 1 0 a"},
            // F6 and no: the same item again
            {{Itemwijze::nieuw, VRAAG, true}, "a<Enter><F6><Enter>b<Enter><Esc><Esc>", "344-8 1 0 a b"},
            // F6 and yes
            {{Itemwijze::nieuw, VRAAG, true}, "a<Enter><F6>J<Enter>", "34 0 0 a"},
            // F6 in a chosen field, no and yes
            {{Itemwijze::nieuw, ALLEEN8, true}, "<Esc>V<F6><Enter><F6>J<Enter>", "844 0 0"},
            // what is needed is asked, and asked again by ESC
            {{Itemwijze::nieuw, NIETS, true}, "<Enter><Esc><Esc><Esc>c<Enter><Esc>", "888 1 1   c"},
            // ESC breaks off up to an item of the walk
            {{Itemwijze::nieuw, VRAAG, true, 4}, "a<Enter><Esc>", "34 0 0 a"},
            // and not behind it
            {{Itemwijze::nieuw, VRAAG, true, 3}, "a<Enter><Esc><Esc>", "34 1 0 a"},
            // not to be broken off
            {{Itemwijze::nieuw, ALLEEN8, false}, "<F6><Esc><F6><Esc>", "8 1 0"},
            // a change begins at the choices
            {{Itemwijze::wijzigen, VRAAG, false}, "Vb<Enter>T<Enter><Esc>", "41 1 1  b"},
            // what may not be chosen
            {{Itemwijze::wijzigen}, "D<Back>EFc<Enter><Esc>", "8 1 1   c"},
            // looking
            {{Itemwijze::lezen, VRAAG, true}, "F<Back>T<Back>VV<F6><Esc>", "kijk kijk  1 0"},
        });
}

TEST(Items, Painted) {
    Gesprek t([] {
        strcpy(waarde[4], "oud");
        bool anders = false;
        itemscherm(SCHERMPJE, {Itemwijze::wijzigen}, &anders);
        return std::string("klaar");
    });
    EXPECT_NE(t.regel(4).find(" PROEF "), std::string::npos) << t.scherm();
    EXPECT_EQ(t.stuk(9, 12, 20), "Vier      oud       ") << t.scherm();
    EXPECT_EQ(t.stuk(10, 12, 20), std::string(20, ' ')) << "not on this screen";
    t.wacht_op(16, 24, "Twee, Vier, Vijf");
    t.toetsen("Vnu<Enter>", 9, 22, "nu ");
    EXPECT_EQ(t.antwoord("<Esc>"), "klaar");
}

} // namespace
} // namespace zg::test

// The field with a list on a terminal, over a table of the test's own: typed, unknown, picked, added, its rows'
// records. What a table of the program adds to it stands with that table.
#include "shared/filveld.h"
#include "shared/lijstveld.h"
#include "support/systeem.h"
#include "term/gesprek.h"

namespace zg::test {
namespace {

std::map<int32_t, std::string> rijen;

bool lees(const Lijsttabel&, const Lijstcode& code, std::string* naam) {
    if (!rijen.count(code.nummer))
        return false;
    *naam = rijen[code.nummer];
    return true;
}
void onbekend(const Lijsttabel& tabel, const Lijstcode& code) {
    error("<%d> Onbekend %d", code.nummer, tabel.welke);
}
std::vector<Lijstblad::Rij> blad(const Lijsttabel&) {
    std::vector<Lijstblad::Rij> uit;
    for (const auto& [code, naam] : rijen)
        uit.push_back({{code, ""}, naam});
    return uit;
}
void record(const Lijsttabel&, const Lijstcode& code) {
    if (rijen[code.nummer] == "weg")
        rijen.erase(code.nummer);
    else
        rijen[code.nummer] += "!";
}
bool kies(const Lijsttabel& tabel, Lijstcode* code) {
    return lijstkies(tabel, {"Proef", "kop", "Nr", "4s[0123456789],I", blad, record}, code);
}
std::string vraag(const Lijsttabel&, const Lijstcode& code) {
    return vorm("Wilt u nr %d toevoegen", code.nummer);
}
bool voeg_toe(const Lijsttabel&, const Lijstcode& code) {
    char naam[6] = "";
    INGAVE(12, 10, "5s,", &SCHERM.toets[key_cancel], naam);
    if (!TOETSWEG())
        rijen[code.nummer] = naam;
    return !TOETSWEG();
}
const Lijsttabel VAST{"4u", 7, lees, onbekend, kies};
const Lijsttabel OPEN{"4u", 7, lees, onbekend, kies, vraag, voeg_toe};

// The field on row 5 with 12 in it; then the code, the answer, the key and what is on the row.
std::function<std::string()> veld(const Lijsttabel& tabel) {
    return [&tabel] {
        rijen = {{5, "vijf"}, {12, "twaalf"}, {300, "weg"}};
        uint16_t code = 12;
        TOETSAAN(K_PGDN);
        const Lijstuit uit = lijstveld(tabel, 5, 10, "PZ", &code);
        const char* const woord[] = {"weg", "zelfde", "anders"};
        std::string namen;
        for (const auto& rij : rijen)
            namen += rij.second + " ";
        return vorm("%d %s %d %s", code, woord[static_cast<int>(uit)], SCHERM.laatste, namen.c_str());
    };
}

TEST(ListField, Keys) {
    gesprekken_over<const Lijsttabel*>(
        [](const Lijsttabel* tabel) { return veld(*tabel)(); },
        {
            {&VAST, "5<Enter>", "5 anders 10 vijf twaalf weg"},
            {&VAST, "<Enter>", "12 zelfde 10 vijf twaalf weg"},
            {&VAST, "5<Esc>", "12 weg 27 vijf twaalf weg"},
            {&VAST, "<PgDn>", "12 zelfde 338 vijf twaalf weg"},
            {&VAST, "77<Enter>300<PgDn>", "300 anders 338 vijf twaalf weg"}, // refused, the field stays open
            {&VAST, "<F5><Down><Enter>", "300 anders 10 vijf twaalf weg"},   // the list begins on the code
            {&VAST, "5<F5><Enter>", "12 zelfde 10 vijf twaalf weg"}, // that was there, not on what is typed
            {&VAST, "<F5><Esc><Enter>", "12 zelfde 10 vijf twaalf weg"},
            {&VAST, "<F5>5<Enter><F3>", "5 anders 10 vijf twaalf weg"},
            {&VAST, "<F5><F10><F10><Enter>", "12 zelfde 10 vijf twaalf!! weg"}, // the record of the row
            {&VAST, "<F5><Down><F10><Up><Enter>", "5 anders 10 vijf twaalf"},   // which may go

            {&OPEN, "77<Enter>J<Enter>nieuw<Enter>", "77 anders 10 vijf twaalf nieuw weg"},
            {&OPEN, "77<Enter><Enter>5<Enter>", "5 anders 10 vijf twaalf weg"},       // no is the default
            {&OPEN, "77<Enter>J<Enter><Esc>5<Enter>", "5 anders 10 vijf twaalf weg"}, // given up while adding
        });
}

TEST(ListField, ToldAndShown) {
    Gesprek t(veld(OPEN));
    t.toetsen("77<Enter>", "Wilt u nr 77 toevoegen? (J/N)");
    t.toetsen("<Enter>", 25, 1, "<77> Onbekend 7");
    EXPECT_EQ(t.stuk(5, 10, 4), "12__");
    EXPECT_TRUE(t.cursor_rij() == 5 && t.cursor_kolom() == 10) << "in the field";
    t.toetsen("<F5>5<Enter>");
    EXPECT_EQ(t.scherm().find("Onbekend"), std::string::npos) << "the first row\n" << t.scherm();
    t.toetsen("<Esc><F5>88<Enter>");
    EXPECT_TRUE(t.wacht_op(25, 1, "<88> Onbekend 7")) << "told in the list too\n" << t.scherm();
    t.toetsen("<Up><Enter>");
    EXPECT_TRUE(t.wacht_op(5, 10, "5   ")) << "the picked code\n" << t.scherm();
    EXPECT_EQ(t.antwoord(), "5 anders 10 vijf twaalf weg");
}

// The branches: a number that is not the index, and the name behind the field.
TEST(ListField, Branches) {
    for (const auto& [toetsen, uit, naam] : Rijen<const char*, const char*, const char*>{
             {"14<Enter>", "14 changed", "Filiaal 14 "},
             {"<F5><Down><Down><Enter>", "14 changed", "Filiaal 14 "},
             {"<Esc>", "2", "Filiaal 2 "},
         }) {
        SCOPED_TRACE(toetsen);
        TijdelijkeMap map;
        Gesprek t([] {
            maak_filialen({1, 2, 3, 14, 20});
            uint8_t nummer = 2;
            const int anders = fil_veld(5, 10, 20, "ZP", &nummer);
            return vorm("%d%s", nummer, anders ? " changed" : "");
        });
        t.wacht_op(5, 20, "Filiaal 2 ");
        t.toetsen(toetsen, 5, 20, naam);
        EXPECT_EQ(t.antwoord(), uit);
    }
}

} // namespace
} // namespace zg::test

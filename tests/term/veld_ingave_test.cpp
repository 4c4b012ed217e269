// INGAVE in a real terminal, by table: format, value, keys; then what is stored, the flags, the leaving key
// and what stands on the screen. One forked program runs all cases of a table, and shows on row 24 what it
// got.
#include "gesprek.h"
#include "term/datum.h"
#include "term/formaat.h"
#include "term/natl.h"
#include "veldmaat.h"

namespace zg::test {
namespace {

constexpr int RIJ = 5, KOLOM = 10;
constexpr int MAAT = 300;

struct Geval {
    const char* formaat;
    const char* begin;   // value at the start, in words; dates as DDMMJJJJ
    const char* keys;    // all but the last
    const char* laatste; // the key that should leave the field; "" when it must not
    const char* einde;   // value afterwards
    uint32_t vlag;
    int32_t toets;
    const char* beeld = nullptr;  // field before the last key
    const char* slot = nullptr;   // field afterwards
    const char* status = nullptr; // status line before the last key
    double min = 0.0, max = -1.0;
};

int breedte(const char* formaat) {
    return std::max(1, atoi(formaat));
}

char type(const char* formaat) {
    const char* p = formaat + strspn(formaat, "0123456789.");
    return *p;
}

int tekens(std::string_view utf8) {
    return static_cast<int>(
        std::count_if(utf8.begin(), utf8.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

size_t maat(const char* formaat) {
    return veldmaat(type(formaat), breedte(formaat));
}

// The bytes of a value in words, and back.
void maak(const char* formaat, const char* woord, char* doel) {
    memset(doel, '#', MAAT);
    const char t = type(formaat);
    const int64_t geheel = t == 'D' ? DATUMNR(woord) : atol(woord);
    const double f = atof(woord);
    const size_t n = maat(formaat);
    if (veldgeheel(t) || t == 'f')
        memcpy(doel, t == 'f' ? static_cast<const void*>(&f) : &geheel, n);
    else
        strncpy(doel, woord, n);
}

std::string woord(const char* formaat, const char* doel) {
    const char t = type(formaat);
    const size_t n = maat(formaat);
    double f = 0;
    memcpy(&f, doel, sizeof f);
    if (std::any_of(doel + n, doel + MAAT, [](char c) { return c != '#'; }))
        return "written behind the variable";
    if (t == 'f')
        return vorm("%g", f);
    if (veldgeheel(t) && t != 'D')
        return std::to_string(veldgetal(t, doel));
    char s[MAAT] = "";
    const auto dag = static_cast<uint16_t>(veldgetal('D', doel));
    if (t == 'D' && dag)
        DATUMTEKST(s, dag, true);
    else if (t != 'D')
        memcpy(s, doel, strnlen(doel, n));
    return t == 'D' || std::all_of(doel + strlen(s), doel + n, [](char c) { return c == 0; })
               ? s
               : "bytes behind the text";
}

std::string uitkomst(const std::string& tekst, uint32_t vlag, bool anders, int32_t toets) {
    return vorm("[%s] %u %d %d", tekst.c_str(), vlag, anders, toets);
}

// The program of the tests: field after field, a key between two of them.
void kind(const std::vector<Geval>& gevallen) {
    BEZIGAAN();
    for (const Geval& g : gevallen) {
        alignas(8) char doel[MAAT];
        SCRCLREOW(1, 1);
        maak(g.formaat, g.begin, doel);
        INSTEL.minimum = g.min, INSTEL.maximum = g.max;
        const void* argumenten[] = {&SCHERM.toets[key_cancel], &SCHERM.toets[key_up], &SCHERM.toets[key_down],
                                    &SCHERM.toets[key_f5], doel};
        const bool anders = INGAVEDOE(RIJ, KOLOM, g.formaat, argumenten, 5);
        const std::string uit = uitkomst(woord(g.formaat, doel), SCHERM.vlag, anders, SCHERM.laatste);
        SCRBASE(A_WAARDE, 24, 1, "%-79s", uit.c_str());
        TOETS();
    }
}

void proef(const std::vector<Geval>& gevallen) {
    OpScherm t([&] { kind(gevallen); });
    auto ziet = [&](const char* beeld) {
        if (beeld)
            EXPECT_EQ(t.stuk(RIJ, KOLOM, tekens(beeld)), beeld);
    };
    for (const Geval& g : gevallen) {
        SCOPED_TRACE(std::string(g.formaat) + " \"" + g.begin + "\" " + g.keys + g.laatste);
        t.toetsen(g.keys);
        ziet(g.beeld);
        EXPECT_EQ(t.regel(25), g.status ? g.status : t.regel(25));
        t.toetsen(g.laatste);
        ziet(g.slot);
        EXPECT_EQ(t.regel(24), uitkomst(CP850UTF8(g.einde), g.vlag, g.vlag & V_GEWIJZIGD, g.toets));
        EXPECT_EQ(t.stuk(25, 65, 15), "Even geduld aub") << "the program works again";
        t.toetsen("<Enter>");
    }
    t.stuur("x");
    EXPECT_EQ(t.einde(), 0);
}

constexpr uint32_t NIETS = 0, VERS = V_VERS, ANDERS = V_GEWIJZIGD, LEEG = V_LEEG;

// What ENTER (or an arrow) refuses with this report; ESC then gives the old value back.
Geval weigert(const char* formaat, const char* begin, const char* keys, const char* status,
              const char* beeld = nullptr, double min = 0.0, double max = -1.0) {
    const bool leeg = !*begin || strcmp(begin, "0") == 0;
    return {formaat, begin, keys,    "<Esc>", begin, leeg ? LEEG : NIETS,
            K_ESC,   beeld, nullptr, status,  min,   max};
}

TEST(VeldIngave, Getallen) {
    proef({
        // an untouched field, an empty one, a typed one
        {"4u", "12", "", "<Enter>", "12", VERS, K_ENTER, "12__ ", "12   "},
        {"4u", "0", "", "<Enter>", "0", VERS | LEEG, K_ENTER, "____ ", "     "},
        {"4u,ZE", "0", "", "<Enter>", "0", VERS, K_ENTER, "0___ ", "0    "},
        {"4u", "12", "<Right>7", "<Enter>", "17", ANDERS, K_ENTER, "17__"},
        {"4u", "12", "<Back>", "<Enter>", "0", ANDERS | LEEG, K_ENTER, "____", "    "},
        weigert("4u,E", "12", "<Back><Enter>", "<> Ingave verplicht", "____"),
        // decimals, comma and point, signs
        {"8.2f", "1.23456", "", "<Enter>", "1.23456", VERS, K_ENTER, "1.23____", "1.23    "},
        {"8.2f", "1.23456", "1,23<Left>", "<Enter>", "1.23456", NIETS, K_ENTER},
        {"8.2f", "0", "12,5", "<Enter>", "12.5", ANDERS, K_ENTER, "12,5____", "12.50   "},
        weigert("8.2f", "0", "12.345<Enter>", "<12.345> Teveel cijfers na de komma", "12.345__"),
        {"8.2f", "0", "5-", "<Enter>", "-5", ANDERS, K_ENTER, "5-______", "-5.00   "},

        weigert("8.2f,P", "0", "0<Enter>", "<0> Moet ongelijk zijn aan 0", "0_______"),
        {"8B,ZP", "0", "12,34", "<Enter>", "1234", ANDERS, K_ENTER, "12,34___", "12.34   "},
        // negative ones out of each width
        {"9B", "-123456", "", "<Enter>", "-123456", VERS, K_ENTER, "-1234.56_", "-1234.56 "},
        {"6d", "-321", "", "<Enter>", "-321", VERS, K_ENTER, "-321__"},
        {"4n", "-100", "", "<Enter>", "-100", VERS, K_ENTER, "-100"},
        {"9l", "-3000000", "", "<Enter>", "-3000000", VERS, K_ENTER, "-3000000_"},
        // ranges, in words and with the caller's bounds; what doesn't fit stays whole
        {"4u,PE", "3", "<Back>12345", "<Enter>", "1234", ANDERS, K_ENTER, "1234", "1234",
         "Tik <ENTER> toets"},
        {"2d", "5", "7<Enter>12", "<Enter>", "12", ANDERS, K_ENTER, "12", "12", "", 10, 20},
        weigert("2d", "5", "7<Enter>", "<7> Alleen 10 t/m 20 mogelijk", "7_", 10, 20),
        weigert("5.2f", "0", "1.5<Enter>", "<1.5> Alleen 2.00 t/m 3.50 mogelijk", nullptr, 2, 3.5),
        weigert("4u", "0", "<F11>", "Ongeldige toets", "____"), // composes text only
        weigert("2u", "65535", "<Enter>", "<65535> Alleen 0 t/m 99 mogelijk", "*_"),
        {"1d", "5", "-", "<Enter>", "5", VERS, K_ENTER, "5", "5",
         "<-> Ongeldige ingave!!  (HELP voor toelichting)"},
        // justified on the screen, not in the variable; a full field; automatic ENTER

        {"3U,ZEJP", "7", "", "<Enter>", "7", VERS, K_ENTER, "7__", "  7"},

        weigert("4d,F", "0", "12<Enter>", "<12> Volledig vullen", "12__"),
        {"4d,AZP", "1234", "<End><Left><Right>", "<Enter>", "1234", NIETS, K_ENTER, "1234"},
    });
}

TEST(VeldIngave, Teksten) {
    proef({
        {"6c", "abc", "", "<Enter>", "abc", VERS, K_ENTER, "abc___", "abc   "},
        {"6c", "abcdef", "<End>g", "<Enter>", "abcdef", NIETS, K_ENTER, "abcdef", nullptr,
         "Tik <ENTER> toets"},
        {"6s", "abcdef", "<Back>", "<Enter>", "", ANDERS | LEEG, K_ENTER, "______", "      "},
        weigert("6s,E", "", "<Enter>", "<> Ingave verplicht", "______"),
        {"6s,E", "", "<Up>", "<F5>", "", LEEG, K_F5},
        weigert("6s,F", "abc", "<Down>", "<abc> Volledig vullen", "abc___"),
        {"6s,U", "", "abéq", "<Enter>", "AB\x90Q", ANDERS, K_ENTER, "ABÉQ__"},
        // insert mode, deleting, the start value back
        {"6c", "abcd", "<Right><Ins>xy", "<Enter>", "axybcd", ANDERS, K_ENTER, "axybcd"},
        {"6c", "abcd", "<Right><Ins>x<Ins>y", "<Enter>", "axycd", ANDERS, K_ENTER},
        {"6c", "abcd", "<Del>x", "<Enter>", "x", ANDERS, K_ENTER},
        {"6c", "abcd", "<Del>", "<Enter>", "bcd", VERS | ANDERS, K_ENTER, "bcd___"},
        {"6c", "abcd", "<End><Back><Back>x", "<Enter>", "abx", ANDERS, K_ENTER, "abx___"},
        {"6c", "abcd", "xyz<Home><Home>q", "<Enter>", "qbcd", ANDERS, K_ENTER},
        // leaving at the start gives the old value, behind it the new one
        {"6c", "abcd", "x<Back>", "<Down>", "abcd", NIETS, K_DOWN, "______", "abcd  "},
        {"6c", "abcd", "xyz", "<Esc>", "abcd", NIETS, K_ESC, "xyz___", "abcd  "},

        weigert("6c", "abcd", "xyz<Cancel>", "Ongeldige toets", "xyz___"),
        weigert("6c", "abcd", "<F6><Tab>", "Ongeldige toets", "abcd__"),
        // starting empty: CANCEL and ESC leave the variable alone, other keys store the empty text
        {"6c,I", "abcd", "", "<Esc>", "abcd", LEEG, K_ESC, "______", "      "},
        {"6c,I", "abcd", "", "<Enter>", "", VERS | LEEG, K_ENTER},
        // sets, width 1, a blank as value, justified, automatic, hidden
        {"4s[01],I", "", "120", "<Enter>", "10", ANDERS, K_ENTER, "10__"},
        {"4s[01],I", "", "2", "<Enter>", "", VERS | LEEG, K_ENTER, "____", nullptr,
         "<2> Ongeldige ingave!!  (HELP voor toelichting)"},
        {"c", "a", " ", "<Enter>", " ", ANDERS, K_ENTER, " "},
        {"1c[+*C],EIAU", "", "x", "c", "C", ANDERS, K_ENTER, "_", "C"},
        {"8c,S", "geheim", "nieuw", "<Enter>", "nieuw", ANDERS, K_ENTER, "________", "        "},
        // yes and no
        {"b", "0", "j", "<Enter>", "1", ANDERS, K_ENTER, "J", "J"},
        {"b,EA", "0", "x", "J", "1", ANDERS, K_ENTER, "N", "J"},

    });
}

TEST(VeldIngave, Hexadecimaal) {
    proef({
        {"6x", "1B5B", "ff", "<Enter>", "FF5B", ANDERS, K_ENTER, "FF5B__"},
        {"6x", "", "g", "<Enter>", "", VERS | LEEG, K_ENTER, "______", nullptr,
         "<G> Ongeldige ingave!!  (HELP voor toelichting)"},
        {"6x", "", "\\a\\<Esc>\\<Enter>", "<Enter>", "611B0A", ANDERS, K_ENTER, "611B0A"},
        {"6x", "", "\\\\", "<Enter>", "5C", ANDERS, K_ENTER, "5C____"},
        {"6.4X,", "", "\\é", "<Enter>", "82", ANDERS, K_ENTER, "82__"},
    });
}

TEST(VeldIngave, Datums) {
    proef({
        {"D", "30042016", "", "<Enter>", "30042016", VERS, K_ENTER, "300416 ", "300416 "},
        {"8D", "", "", "<Enter>", "", VERS | LEEG, K_ENTER, "__-__-__ ", "  -  -   "},
        {"8D", "", "010216", "<Enter>", "01022016", ANDERS, K_ENTER, "01-02-16", "01-02-16"},
        {"8D", "", "1-2-16", "<Enter>", "01022016", ANDERS, K_ENTER, "01-02-16"},
        {"10D", "", "1-2-2016", "<Enter>", "01022016", ANDERS, K_ENTER, "01-02-2016", "01-02-2016"},

        weigert("10D", "", "31122079<Enter>", "<31122079> Alleen datum tussen 01-01-1900 en 31-12-2078",
                "__-__-____"),
        // moving and deleting over the separators
        {"8D", "30042016", "<Right><Right>12", "<Enter>", "30122016", ANDERS, K_ENTER, "30-12-16"},
        {"8D", "30042016", "<End><Left><Left><Left>5", "<Enter>", "30052016", ANDERS, K_ENTER, "30-05-16"},
        {"8D", "30042016", "<Right><Right><Back>", "<Enter>", "03042016", ANDERS, K_ENTER, "3 -04-16",
         "03-04-16"},
        weigert("8D", "30042016", "<Del><Enter>", "<00-04-16> Datum voldoet niet aan DD-MM-JJ", "30-04-16"),
        {"8D", "12042016", "<Del>", "<Enter>", "02042016", VERS | ANDERS, K_ENTER, "2_-04-16", "02-04-16"},
        {"8D", "12042016", "<Right><Del>", "<Enter>", "01042016", ANDERS, K_ENTER, "1_-04-16", "01-04-16"},
        {"8D", "12042016", "<End><Back><Back><Back><Back><Back>30517", "<Enter>", "13052017", ANDERS,
         K_ENTER},
        {"8D", "12042016", "<Back>", "<Enter>", "", ANDERS | LEEG, K_ENTER, "__-__-__", "  -  -  "},
        // not in the calendar, not in the range

        weigert("8D", "30042016", "1-<Back><Home><Back>1<Enter>", "<1> Datum voldoet niet aan DD-MM-JJ",
                "30-04-16"),
        weigert("10D", "30042016", "32<Enter>", "<32-04-2016> Datum voldoet niet aan DD-MM-JJJJ",
                "30-04-2016"),
        weigert("8D", "30042016", "010151<Enter>", "<010151> Alleen datum tussen 01-01-1980 en 31-12-2050",
                "30-04-16"),
        {"8D", "30042016", "010516<Enter>010316", "<Enter>", "01032016", ANDERS, K_ENTER, "01-03-16", nullptr,
         "", 42400, 42490},
        {"8D", "01011949", "", "<Enter>", "01011949", VERS, K_ENTER, nullptr, nullptr, nullptr, 0, 0},
        // days from the date that stood there
        {"8D", "03052016", "-7", "<Enter>", "26042016", ANDERS, K_ENTER, "-7______", "26-04-16"},

        weigert("8D", "03052016", "-20000<Enter>", "<310761> Alleen datum tussen 01-01-1980 en 31-12-2050",
                "03-05-16"),
        weigert("8D,E", "", "+0<Enter>", "<+0> Foutieve ingave", "__-__-__"),
        {"8D", "05011900", "-5", "<Enter>", "", ANDERS | LEEG, K_ENTER, nullptr, "  -  -  ", nullptr, 0, 0},
        {"8D", "", "+5", "<Enter>", "05011900", ANDERS, K_ENTER, nullptr, "05-01-00", nullptr, 0, 0},
        {"8D", "03052016", "-7<Back><Back>4-6-17", "<Enter>", "04062017", ANDERS, K_ENTER, "04-06-17"},
    });
}

// Column 9 holds the left marker, column 22 the right one.
TEST(VeldIngave, Schuivend) {
    const char* az = "abcdefghijklmnopqrstuvwxyz";
    const std::string vol = "abcdefghijklmnopqrstuvwxyz0123";
    proef({
        {"30.12C,", az, "", "<Enter>", az, VERS, K_ENTER, "abcdefghijkl→", "abcdefghijkl "},
        {"30.12C,", az, "<End>0", "<Esc>", az, NIETS, K_ESC, "tuvwxyz0___  ", "abcdefghijkl "},
        {"30.12C,", az, "<End>0123", "<Enter>", vol.c_str(), ANDERS, K_ENTER, "tuvwxyz0123  "},
        {"30.12C,", az, "<End><Left><Left><Left><Left><Left><Left><Left><Left><Left><Left><Left><Left>",
         "<Esc>", az, NIETS, K_ESC, "klmnopqrstuv→"},
        {"30.12C,", az,
         "<Right><Right><Right><Right><Right><Right><Right><Right><Right><Right><Right><Right>X", "<Enter>",
         "abcdefghijklXnopqrstuvwxyz", ANDERS, K_ENTER, "efghijklXnop→"},
        {"30.12C,", az, "<End><Home>", "<Esc>", az, NIETS, K_ESC, "abcdefghijkl→"},
        {"30.12C,S", az, "<End>", "<Esc>", az, NIETS, K_ESC, "____________ ", "             "},

    });
}

} // namespace
} // namespace zg::test

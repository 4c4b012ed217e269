// The pick list over data of every size, and the small menu of texts. The data are numbers with gaps, held the
// way a file holds records: found by their own number, also when others have gone in the meantime.
#include "gesprek.h"
#include "term/dm_hdl.h"
#include "term/lijst.h"

using namespace zg;
using namespace zg::test;

namespace {

std::vector<uint32_t> data;
LIJST* lijst;
bool wissen, bericht;

int32_t haal(int32_t stap) {
    const auto p = std::lower_bound(data.begin(), data.end(), lijst->positie);
    const bool er = p != data.end() && *p == lijst->positie;
    if (stap == 0)
        return er;
    const auto i = p - data.begin() + stap - (stap > 0 && !er ? 1 : 0);
    const auto n = static_cast<std::ptrdiff_t>(data.size());
    if (n == 0 || (stap == 1 && i >= n) || (stap == -1 && i < 0))
        return 0;
    lijst->positie = data[static_cast<size_t>(std::clamp<std::ptrdiff_t>(i, 0, n - 1))];
    return 1;
}

void toets() {
    char zoek[5] = "";
    SCRPUT(A_LABEL, LIJSTVELDRIJ(), 2, "Nummer");
    if (wissen)
        TOETSAAN(K_F8);
    INGAVE(LIJSTVELDRIJ(), 9, "4s[0123456789],I", &SCHERM.toets[key_tab], &SCHERM.toets[key_f8], zoek);
    if (SCHERM.laatste == K_CANCEL || SCHERM.laatste == K_ESC)
        return;
    if (!(SCHERM.vlag & V_LEEG)) {
        auto p = std::lower_bound(data.begin(), data.end(), static_cast<uint32_t>(atoi(zoek)));
        lijst->positie = p == data.end() ? data.back() : *p;
    } else if (SCHERM.laatste == K_F8) {
        data.erase(std::lower_bound(data.begin(), data.end(), lijst->positie));
        lijst->modus = 1;
        if (bericht)
            MELDBOX(MELD_INFO, "weg", nullptr, nullptr);
    }
}

void kop() {
    SCRPUT(A_LABEL, 1, 2, "Nummer  Naam");
}

const char* regel() {
    static std::string tekst;
    tekst = vorm("%05u   rij %-10u", lijst->positie, lijst->positie);
    return tekst.c_str();
}

struct Vorm {
    int n;
    int rij = 0, kolom = 0, hoogte = 0, breedte = 0;
    uint8_t merken = 0;
    bool met_kop = false;
    const char* titel = " Rijen ";
    bool nog_eens = false; // after CANCEL the same list again
    bool tellen = false;
};

// Numbers 10, 20, 30 ...; the answer: every row handed back, then the key.
std::string draai(const Vorm& v) {
    data.clear();
    for (int i = 1; i <= v.n; i++)
        data.push_back(static_cast<uint32_t>(i * 10));
    lijst = LIJSTNEW(haal, toets, v.met_kop ? kop : nullptr, regel);
    lijst->positie = 10;
    lijst->rij = v.rij, lijst->kolom = v.kolom, lijst->hoogte = v.hoogte, lijst->breedte = v.breedte;
    lijst->merken = v.merken;
    if (v.tellen) {
        lijst->aantal = [] { return int64_t{std::ssize(data)}; };
        lijst->rang = [] {
            const auto p = std::lower_bound(data.begin(), data.end(), lijst->positie);
            return p != data.end() && *p == lijst->positie ? p - data.begin() + 1 : int64_t{0};
        };
    }
    snprintf(lijst->titel, sizeof lijst->titel, "%s", v.titel);
    SCHERM.laatste = 77;
    std::string uit;
    int aantal = 0;
    if (v.nog_eens && LIJSTRUN(lijst, false))
        return "chosen";
    while (LIJSTRUN(lijst, false)) {
        if (++aantal <= 8)
            uit += vorm("%u ", lijst->positie);
        if (!v.merken)
            break;
    }
    uit += vorm("n=%d k=%d", aantal, SCHERM.laatste);
    LIJSTDEL(lijst);
    return uit;
}

// The highlighted row: its screen row and its number, "5:00010".
std::string keus(Terminal& t) {
    std::string s;
    const Doos d = doos(t);
    for (int r = d.rij + 1; r < d.rij + d.hoogte - 1; r++)
        if (t.cel(r, d.kolom + 2).keus)
            s += vorm("%d:%s", r, t.stuk(r, d.kolom + 2, 5).c_str());
    return s;
}

std::string dm(int items, int rij, int vast) {
    DMREC* m = DMNEW("Keuze");
    for (int i = 1; i <= items; i++) {
        if (i == 4)
            DMSEP(m, "meer");
        static const char* namen[] = {"&Eerste", "&Tweede", "Der&de"};
        DMITEM(m, i <= 3 ? namen[i - 1] : vorm("Item %d", i).c_str(), i, i != 2);
    }
    DMKEY(m, &SCHERM.toets[key_f8], 3);
    DMKEY(m, '*', 5);
    int id = DMRUN(m, rij, vast);
    return vorm("%d %d %s", id, SCHERM.laatste, DMTEXT());
}

} // namespace

TEST(Lijst, Maten) {
    for (const auto& [naam, v, waar] : Rijen<const char*, Vorm, Doos>{
             {"default", {.n = 30}, {3, 55, 21, 26}},
             {"column and height limited", {.n = 30, .rij = 6, .kolom = 70, .hoogte = 30}, {6, 55, 19, 26}},
             {"too wide", {.n = 30, .kolom = 5, .breedte = 100}, {3, 1, 21, 80}},
             {"title wider", {.n = 3, .titel = " Een titel die breder is dan de rijen "}, {3, 39, 21, 42}},
         }) {
        SCOPED_TRACE(naam);
        Gesprek t([&] { return draai(v); });
        EXPECT_EQ(doos(t), waar) << t.scherm();
        EXPECT_EQ(keus(t), vorm("%d:00010", waar.rij + 1));
        EXPECT_EQ(t.antwoord("<Cancel>"), "n=0 k=355");
    }
}

// A page has 17 rows, 4 to 20, 16 with a head.
TEST(Lijst, Lopen) {
    for (const auto& [n, keys, rij] : Rijen<int, const char*, const char*>{
             {1, "<Down><Down><PgDn>", "4:00010"},
             {17, "<PgDn><Down>", "20:00170"},
             {18, "<PgDn><Up>", "4:00170"},
             {40, "<Down><Down><PgDn><PgDn><PgDn>", "9:00400"},
             {40, "<PgDn><Down><PgUp><PgUp>", "4:00010"},
             {50000, "<PgDn><PgDn><PgDn><Up><Up>", "4:00500"},
             {400, "9999<Enter><Up><Up>", "4:03980"},
             {400, "9999<Down>", "4:04000"}, // with a text in the field any key just searches
         }) {
        SCOPED_TRACE(vorm("%d %s", n, keys));
        Gesprek t([&] { return draai({.n = n}); });
        t.toetsen(keys);
        EXPECT_EQ(keus(t), rij) << t.scherm();
        EXPECT_EQ(t.antwoord("<F3>"), vorm("%d n=1 k=267", atoi(rij + std::string(rij).find(':') + 1)));
    }
}

TEST(Lijst, RegelVoorRegelOnderEenKop) {
    Gesprek t([] { return draai({.n = 40, .met_kop = true}); });
    auto keer = [&](int n, const char* key, const char* daarna) {
        while (n-- > 0)
            t.toetsen(key);
        EXPECT_EQ(keus(t), daarna);
    };
    keer(25, "<Down>", "20:00260");
    stappen(t, {{"", {{4, 56, " Nummer  Naam   "}, {5, 57, "00110"}}}});
    keer(20, "<Up>", "5:00060");
    keer(40, "<Down>", "20:00400");
    EXPECT_EQ(t.antwoord("<Enter>"), "400 n=1 k=10");
}

TEST(Lijst, Wissen) {
    Gesprek leeg([] { return draai({.n = 0}); });
    EXPECT_EQ(leeg.antwoord(), "n=0 k=77");
    Gesprek alles([] {
        wissen = bericht = true;
        return draai({.n = 2});
    });
    alles.toetsen("<F8>xx<F8>y"); // the box takes a key, the field gets one: no digit
    EXPECT_EQ(alles.antwoord(), "n=0 k=272");
    for (const auto& [n, keys, rij, boven, onder] :
         Rijen<int, const char*, const char*, const char*, const char*>{
             {40, "<Down><Down><F8>", "6:00040", "00010", "00180"},
             {3, "<Down><Down><F8>", "5:00020", "00010", "     "},
             {18, "<PgDn><F8>", "4:00010", "00010", "00170"}, // the page has gone: the one before it
         }) {
        SCOPED_TRACE(vorm("%d %s", n, keys));
        Gesprek t([&] {
            wissen = true;
            return draai({.n = n});
        });
        t.toetsen(keys);
        EXPECT_EQ(keus(t), rij) << t.scherm();
        EXPECT_EQ(t.stuk(4, 57, 5), boven);
        EXPECT_EQ(t.stuk(20, 57, 5), onder);
        EXPECT_EQ(t.antwoord("<Esc>"), "n=0 k=27");
    }
}

// Which row of how many stands above the search field, where that row is free.
TEST(Lijst, Telling) {
    Gesprek t([] {
        wissen = true;
        return draai({.n = 120, .tellen = true});
    });
    for (auto [keys, telling] : {std::pair{"", " 1 van 120 │"},
                                 {"<Down><Down>", " 3 van 120 │"},
                                 {"1000<Enter>", "100 van 120 │"},
                                 {"<F8>", "100 van 119 │"},
                                 {"<Up>", " 99 van 119 │"},
                                 {"<PgUp><PgUp><PgUp><PgUp><PgUp><PgUp><PgUp>", "  1 van 119 │"}}) {
        t.toetsen(keys);
        EXPECT_TRUE(t.regel(21).ends_with(telling)) << keys << t.scherm();
    }
    EXPECT_EQ(t.antwoord("<Esc>"), "n=0 k=27");
    Gesprek laag([] { return draai({.n = 120, .rij = 20, .hoogte = 5, .met_kop = true, .tellen = true}); });
    EXPECT_EQ(laag.scherm().find("van"), std::string::npos) << laag.scherm();
    laag.toetsen("<Esc>");
}

TEST(Lijst, Merken) {
    gesprekken([] { return draai({.n = 5, .merken = 1}); },
               {{"<Down><Down><F7><F7><Enter><F3>", "30 40 n=2 k=267"}, // ENTER doesn't end it
                {"<F6><Enter><F3>", "10 20 30 40 50 n=5 k=267"},
                {"<Down><Down><F7><F7><Up><F7><F3>", "30 n=1 k=267"},
                {"<Down><Down><F7><F6><F10><F3>", "40 n=1 k=267"}});
    // CANCEL and ESC drop the marks: the next time the list has none.
    gesprekken([] { return draai({.n = 5, .merken = 1, .nog_eens = true}); },
               {{"<F7><F7><Cancel><F3>", "30 n=1 k=267"}, {"<F7><F6><Esc><Down><Enter>", "30 n=1 k=10"}});
}

TEST(Lijst, Merktekens) {
    Gesprek t([] { return draai({.n = 20000, .merken = 1}); });
    for (auto [keys, merken] :
         {std::pair{"<F7><Down><F7>", "→ →  "}, {"<F6>", " → →→"}, {"<PgDn>", "→→→→→"}, {"<F10>", "     "}}) {
        t.toetsen(keys);
        std::string s;
        for (int r = 4; r <= 8; r++)
            s += t.stuk(r, 56, 1);
        EXPECT_EQ(s, merken) << keys;
    }
    EXPECT_EQ(t.antwoord("<F6><F3>"), "10 20 30 40 50 60 70 80 n=20000 k=267");
}

// A whole burst does what the same keys do one by one, and a step sends two rows, not a page.
TEST(Lijst, SalvoEnRust) {
    Vorm v{.n = 300, .merken = 1};
    Gesprek een([&] { return draai(v); }), alles([&] { return draai(v); });
    een.toetsen("<Down><Down><F7><PgDn><F7>15<Enter><Up><F7><F6><F6>");
    const size_t was = een.uitvoer().size();
    een.toetsen("<Down>");
    EXPECT_LT(een.uitvoer().size() - was, 200u);
    een.toetsen("<F3>");
    alles.reeks("<Down><Down><F7><PgDn><F7>15<Enter><Up><F7><F6><F6><Down><F3>");
    EXPECT_EQ(een.antwoord(), alles.antwoord());
}

TEST(DmHdl, Kiezen) {
    Gesprek t([] { return dm(5, 3, 1); });
    EXPECT_EQ(doos(t), (Doos{3, 60, 8, 20}));
    t.toetsen("?");
    EXPECT_EQ(t.regel(25), "Ongeldige toets");
    gesprekken_over<int>(
        [](int vast) { return dm(5, 3, vast); },
        {
            {3, "<Enter>", "3 10 Derde"},
            {2, "<Enter>", "1 10 Eerste"},                   // the default is disabled
            {1, "<Down><Enter><Down><Enter>", "3 10 Derde"}, // ENTER on a disabled row: nothing
            {1, "td", "3 100 Derde"},
            {1, "<F8>", "3 272 Derde"},
            {1, "*", "5 42 Item 5"},
            {3, "<Cancel>", "3 355"},
        });
}

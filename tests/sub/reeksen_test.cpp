// Size runs: the stored ones, and rows laid on branches.
#include "sub/reeksen.h"
#include "support/schrijfstoring.h"
#include "support/systeem.h"
#include "term/gesprek.h"

namespace zg::test {
namespace {

struct Reeksen : Systeem {
    Reeksen() {
        maak_filialen({1, 2, 3, 14, 20});
        firma.maatstelsel = 1;
        std::vector<std::string> maten;
        for (int i = 1; i <= 40; i++)
            maten.push_back(std::to_string(44 + i));
        maak_maatsoort(3, "Herenmaten", maten);
    }
    // The type's first so many sizes in force.
    static void begin(int maten) {
        open();
        dtmaat = IXOPEN("DTMAAT", 2);
        uint8_t masker[MAATBYTES] = {};
        for (int m = 1; m <= maten; m++)
            maat_aan(masker, m);
        balk_open(1, 3, masker);
    }
};

// "1=2 3=1": the pieces by size index; the sum is tested on the way.
std::string tekst(const int32_t* rij) {
    std::string uit;
    int64_t som = 0;
    for (int m = 1; m <= MATEN; m++) {
        if (rij[m])
            uit += (uit.empty() ? "" : " ") + std::to_string(m) + "=" + std::to_string(rij[m]);
        som += rij[m];
    }
    EXPECT_EQ(rij[0], som) << uit;
    return uit;
}

void zet_reeks(int32_t nr, uint8_t soort, std::initializer_list<std::pair<int, int32_t>> cellen) {
    maatreeksrec rec{};
    rec.maatsoort = soort;
    for (auto [maat, n] : cellen)
        rec.aantal[maat] = n, rec.aantal[0] += n;
    Systeem::zet(nr, rec, SYS_MAATREEKS);
}

std::string bewaard(int32_t nr) {
    Slot<maatreeksrec> slot{nr, {}};
    if (!iotab('R', &slot, SYS_MAATREEKS))
        return "-";
    std::array<int32_t, 96> rij;
    memcpy(rij.data(), slot.r.aantal, sizeof rij);
    return tekst(rij.data());
}

TEST_F(Reeksen, StoredRuns) {
    struct {
        const char *acties, *toetsen, *uit;
        std::vector<std::pair<int32_t, const char*>> na;
    } const rijen[] = {
        {"SWTV", "<Enter>", "1 1=1 2=2", {}},
        {"SWTV", "<Down><Enter>", "1 1=2", {}},    // what none can have counts as none
        {"SWTV", "<Down><Down><F3>", "1 1=2", {}}, // the one of sizes that the bar doesn't show isn't listed
        {"SWTV", "<Esc>", "0 ", {{1, "1=1 2=2 40=7"}}},
        // Number 4 is somebody else's: 6. All sizes of the type are asked; those outside the bar are kept.
        {"SWTV", "t<Enter>3<Enter><Left>4<Enter><Esc>s", "1 2=4", {{4, "-"}, {6, "2=4"}}},
        {"SWTV", "t<Esc>t5<Enter><F6>j<Enter><Enter>", "1 1=1 2=2", {{6, "-"}}},
        {"SWTV", "w9<Enter><Esc>j<Enter>s", "1 1=9 2=2", {{1, "1=9 2=2 40=7"}}},
        {"SWTV", "w9<Enter><Esc><Enter>8<Enter><Esc><Esc>s", "1 1=1 2=2", {{1, "1=1 2=2 40=7"}}},
        {"SWTV", "<Down>w0<Enter><Esc>j<Enter>s", "1 1=1 2=2", {{5, "-"}}}, // emptied: gone
        {"SWTV", "v<Enter>vj<Enter>s", "1 1=2", {{1, "-"}}},
        {"S", "twv<Enter>", "1 1=1 2=2", {}},
    };
    int32_t bezet = 4;
    maatreeksrec leeg;
    iotab('X', &bezet, &leeg, SYS_MAATREEKS);
    for (const auto& r : rijen) {
        SCOPED_TRACE(r.toetsen);
        zet_reeks(1, 3, {{1, 1}, {2, 2}, {40, 7}});
        zet_reeks(2, 3, {{40, 1}});
        zet_reeks(3, 2, {{1, 5}});
        zet_reeks(5, 3, {{1, 2}, {2, -3}, {3, 70'000}});
        zet(6, maatreeksrec{}, SYS_MAATREEKS);
        Gesprek t([&] {
            begin(8);
            reeksrij rij{};
            const bool er = reeks_kiezen(3, r.acties, nullptr, &rij);
            return vorm("%d %s", er && balk_kolommen() == 8, tekst(rij.data()).c_str());
        });
        EXPECT_EQ(t.stuk(7, 5, 12), "5     2    2");
        t.toetsen(r.toetsen);
        std::string uit = r.uit;
        EXPECT_EQ(t.antwoord(), uit.substr(0, uit.find_last_not_of(' ') + 1));
        for (const auto& [nr, wat] : r.na)
            EXPECT_EQ(bewaard(nr), wat) << nr;
    }
    // Without one on the bar: a new one is made, where that may be.
    uint8_t negen[MAATBYTES] = {0, 2};
    for (auto [acties, toetsen, uit] : {std::tuple{"SWTV", "<F8><Esc>", "0"}, {"SWV", "", "0"}}) {
        Gesprek t(
            [&] {
                begin(9);
                reeksrij rij{};
                return vorm("%d", reeks_kiezen(3, acties, negen, &rij));
            },
            {}, *toetsen != 0);
        EXPECT_EQ(t.antwoord(toetsen), uit);
    }
}

TEST_F(Reeksen, AtEachWrite) {
    zet_reeks(1, 3, {{1, 1}});
    auto stand = [] {
        open();
        return bewaard(1) + " " + bewaard(2);
    };
    for (const auto& [toetsen, na] : Rijen<const char*, const char*>{
             {"w9\n\033j\n\033", "1=9 -"}, {"t5\n\033\033", "1=1 1=5"}, {"vj\n\033", "- -"}})
        bij_elke_schrijfactie(
            [] {
                begin(8);
                reeksrij rij{};
                reeks_kiezen(3, "SWTV", nullptr, &rij);
            },
            toetsen, {}, stand, {"1=1 -", na});
}

TEST_F(Reeksen, OnBranches) {
    const std::vector<std::array<int32_t, 3>> TWEE{{0, 1, 3}, {0, 2, 1}};
    const char* const TE_VEEL = "Meer dan het totaal (3) van deze maat";
    struct {
        std::vector<std::array<int32_t, 3>> begin; // branch index, size, pieces
        bool behoud;
        const char *toetsen, *uit; // a branch's row each, the totals behind them
        const char* melding = "";
    } const rijen[] = {
        {{},
         false,
         "1<Enter>2<Enter><Esc>1-3<Enter>n3<Enter><Esc>14<Enter>",
         "1=1 2=2|1=1 2=2||1=3||1=5 2=4"},
        // The largest first; of its branches 2 and 20 lose it, 14 gets it, 3 is excluded.
        {{{0, 1, 1}, {1, 2, 5}, {4, 2, 5}}, false, "t3,14<Enter>", "1=1|||2=5||1=1 2=5"},
        {{{0, 1, 1}}, false, "t<Back><Enter><Esc>", "|||||"}, // no branch has it: nothing is left
        {TWEE, true, "n4<Enter>", "1=3 2=1|||||1=3 2=1", TE_VEEL},
        {TWEE, true, "n2<Enter><Esc>2-3<Enter>", "1=3 2=1|1=2||||1=3 2=1"},
        {TWEE, true, "n<F5><Enter>", "1=3 2=1|||||1=3 2=1", TE_VEEL},
        {TWEE, false, "n<F5><Enter>20<Enter>", "1=3 2=1||||1=4|1=7 2=1"},
    };
    zet_reeks(7, 3, {{1, 4}});
    for (const auto& r : rijen) {
        SCOPED_TRACE(r.toetsen);
        Gesprek t([&] {
            begin(8);
            aantalmatrix m;
            uint8_t uitgesloten[32] = {4};
            fmclear(&m);
            for (auto [f, maat, n] : r.begin)
                fmadd(&m, f, maat, n);
            const aantalmatrix was = m;
            const bool anders = reeks_scherm(3, &m, r.behoud, uitgesloten);
            std::string uit;
            for (int f = 0; f <= firma.filialen; f++)
                uit += (f ? "|" : "") + tekst(&matrix_cel(m, f, 0));
            return uit + (anders == (m != was) ? "" : " change not told");
        });
        t.toetsen(r.toetsen);
        EXPECT_EQ(t.regel(25), r.melding);
        while (t.leeft() && !t.regel(24).starts_with("= "))
            t.toetsen("<Esc>");
        EXPECT_EQ(t.antwoord(), r.uit);
    }
}

TEST_F(Reeksen, UsedRows) {
    aantalmatrix m;
    fmclear(&m);
    const int32_t rijen[5][2] = {{2, 0}, {1, 1}, {0, 0}, {2, 0}, {3, 0}};
    for (int f = 0; f < 5; f++)
        for (int maat : {1, 2})
            fmadd(&m, f, maat, rijen[f][maat - 1]);
    std::string uit;
    for (const reeksrij& rij : reeks_gebruikt(m)) {
        uint8_t bits[32];
        reeks_branches(m, rij, bits);
        uit += tekst(rij.data()) + ":" + std::to_string(bits[0]) + " ";
    }
    EXPECT_EQ(uit, "1=3:16 1=2:9 1=1 2=1:2 ") << "largest first, then the lower branch; an empty row is none";
}

} // namespace
} // namespace zg::test

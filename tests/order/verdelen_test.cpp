// Spreading over branches: the rules of an article group worked out by hand, the memory of a model, and the quick way
// through many pieces against one piece at a time.
#include "bouw.h"
#include "order/regelstam.h"
#include "order/verdelen.h"
#include "support/systeem.h"
#include <numeric>
#include <random>

namespace zg::test {
namespace {

using Getallen = std::vector<int>;

// Branches by weight, sizes 1 to n on the bar, an article group; the memory empty.
struct Verdeelmap {
    OrderMap map;
    mthandle balk{};
    explicit Verdeelmap(const Getallen& gewichten, int maten = 3) {
        Getallen nummers(gewichten.size());
        std::iota(nummers.begin(), nummers.end(), 10);
        maak_filialen(nummers);
        regelgroep = {};
        regelgroep.artikelgroep = 100;
        regelgroep.verdeelsoort = 'P';
        regelgroep.magazijn = GEEN_MAGAZIJN;
        std::copy(gewichten.begin(), gewichten.end(), regelgroep.perfiliaal);
        zet_balk(&balk, maten);
        regelmerk = {};
        instel15.optie13 = 0;
        regel_wis(&regel_nu);
        verdeel_vrij();
    }
    ~Verdeelmap() {
        maatbalk = nullptr;
        iofil('C', 0, nullptr);
        instel15.optie13 = 0;
        regelgroep = {};
        regelmerk = {};
        verdeel_vrij();
    }
    // Pieces per size on one branch, divided; per size what the branches have.
    std::vector<Getallen> verdeel(const Getallen& stuks, int bron = 0) {
        aantalmatrix m;
        fmclear(&m);
        for (size_t i = 0; i < stuks.size(); i++)
            fmadd(&m, bron, static_cast<int>(i) + 1, stuks[i]);
        const int32_t totaal = matrix_totalen(m)[0];
        auto_verdelen(&m);
        std::vector<Getallen> uit(stuks.size());
        for (size_t i = 0; i < stuks.size(); i++)
            for (int f = 0; f < firma.filialen; f++)
                uit[i].push_back(matrix_cel(m, f, static_cast<int>(i) + 1));
        const aantalmatrix zo = m;
        fmtotals(&m);
        EXPECT_EQ(m, zo);
        EXPECT_EQ(matrix_totalen(m)[0], totaal);
        return uit;
    }
};

TEST(Verdelen, regels_van_de_artikelgroep) {
    struct Rij {
        const char* waarom;
        Getallen gewichten;
        char soort;
        int minimum, pct, magazijn;
        uint8_t vlaggen;
        bool per_maat;
        uint8_t uitgesloten; // of the first eight branches
        Getallen stuks;
        std::vector<Getallen> uit;
    };
    // clang-format off
    const Rij rijen[] = {
        {"weights, the next size goes on", {3, 2, 1}, 'P', 0, 0, -1, 0, false, 0, {7, 1}, {{4, 2, 1}, {0, 1, 0}}},
        {"each size its own memory", {3, 2, 1}, 'P', 0, 0, -1, 0, true, 0, {7, 1}, {{4, 2, 1}, {1, 0, 0}}},
        {"minimum, percentage", {3, 2, 1}, 'P', 2, 25, 2, 0, false, 0, {20}, {{7, 5, 8}}},
        {"per cent rounds half up: 2.5 of 10", {1, 1, 1}, 'P', 0, 25, 2, 0, false, 0, {10}, {{3, 2, 5}}},
        {"more than all goes to the warehouse", {1, 1, 0}, 'P', 1, 200, 2, 0, false, 0, {9}, {{1, 1, 7}}},
        {"too few for the minimum: one each, then by weight", {3, 2, 1}, 'P', 2, 50, 2, 0, false, 0, {5}, {{2, 2, 1}}},
        {"numbers, the rest", {2, 2, 1}, 'A', 0, 0, 2, 0, false, 0, {9}, {{2, 2, 5}}},
        {"fewer than the numbers", {2, 2, 1}, 'A', 0, 0, 2, 0, false, 0, {4}, {{2, 1, 1}}},
        {"excluded: nothing of its own", {3, 2, 1}, 'P', 1, 0, -1, 0, false, 2, {8}, {{6, 0, 2}}},
        {"excluded source keeps the rest", {3, 2, 1}, 'A', 0, 0, -1, 0, false, 1, {8}, {{5, 2, 1}}},
        {"another kind: all to the rest", {3, 2, 1}, 'X', 0, 0, 1, 0, false, 0, {8}, {{0, 8, 0}}},
        {"no such warehouse: the source", {2, 2, 1}, 'A', 0, 0, 90, 0, false, 0, {9}, {{6, 2, 1}}},
    };
    // clang-format on
    for (const Rij& r : rijen) {
        SCOPED_TRACE(r.waarom);
        Verdeelmap v(r.gewichten);
        regelgroep.verdeelsoort = r.soort;
        regelgroep.minimum = static_cast<uint8_t>(r.minimum);
        regelgroep.magazijnpct = static_cast<uint8_t>(r.pct);
        regelgroep.magazijn = static_cast<uint8_t>(r.magazijn < 0 ? GEEN_MAGAZIJN : 10 + r.magazijn);
        regelgroep.vlaggen = r.vlaggen;
        instel15.optie13 = r.per_maat ? 4 : 0;
        regelmerk.merk = 5;
        regelmerk.uitgesloten[0] = r.uitgesloten;
        EXPECT_EQ(v.verdeel(r.stuks), r.uit);
    }
}

// The comparison with the number takes the low byte: 256 pieces at hand count as none.
TEST(Verdelen, aantal_ziet_de_lage_byte) {
    Verdeelmap v({3, 2});
    regelgroep.verdeelsoort = 'A';
    regelgroep.magazijn = 11;
    aantalmatrix m;
    fmclear(&m);
    fmadd(&m, 1, 1, 4); // the source, since nobody holds all
    fmadd(&m, 0, 1, 256);
    auto_verdelen(&m);
    EXPECT_EQ(matrix_cel(m, 0, 1), 258);
    EXPECT_EQ(matrix_cel(m, 1, 1), 2);
}

// A size outside the bar stays on its branch; without a source nothing moves.
TEST(Verdelen, wat_niet_te_verdelen_is_blijft) {
    Verdeelmap v({1, 1}, 2);
    EXPECT_EQ(v.verdeel({4, 4, 4}), (std::vector<Getallen>{{2, 2}, {2, 2}, {4, 0}}));
    aantalmatrix m;
    fmclear(&m);
    fmadd(&m, 0, 1, 5);
    fmadd(&m, 1, 1, 4);
    const aantalmatrix oud = m;
    auto_verdelen(&m);
    EXPECT_EQ(m, oud);
}

// A second colour goes on where the first stands, as the file tells it.
TEST(Verdelen, tweede_kleur_gaat_verder) {
    struct Rij {
        std::vector<Aantal> eerste; // what the first colour has of size 1
        Getallen uit;               // 7 more
    };
    for (const Rij& r : {Rij{{{0, 1, 4}, {1, 1, 2}, {2, 1, 1}}, {3, 3, 1}},
                         Rij{{{0, 1, 3}, {1, 1, 2}, {2, 1, 2}}, {4, 3, 0}}, // one moved by hand
                         Rij{{}, {4, 2, 1}}}) {
        Verdeelmap v({3, 2, 1});
        Regel eerste = maak_regel(1), tweede = maak_regel(2);
        eerste.termen = {{42000, 42010, r.eerste}};
        tweede.termen = {{42000, 42010, {{0, 1, 9}}}, {42000, 42020, {}}}; // its own stand in memory
        Order o{42500, "", "", {{1, "", {eerste, tweede}}, {2, "", {maak_regel(5)}}}};
        zet("JRN", bytes(o));
        ASSERT_TRUE(kies(0));
        const ors_ingang eigen = regel_op(2);
        ASSERT_TRUE(regel_lees(eigen, &regel_nu));
        verdeel_herbouw(regel_nu, &eigen, 42010);
        EXPECT_EQ(v.verdeel({7}), (std::vector<Getallen>{r.uit}));
        // A further term of the line: the nine of the first count.
        verdeel_herbouw(regel_nu, &eigen, 42020);
        EXPECT_EQ(v.verdeel({1}), (std::vector<Getallen>{{0, 1, 0}}));
        sluit();
    }
}

// Whole rounds at once, deficits of earlier lines, 64 bits: as one piece after the other.
TEST(Verdelen, veel_stuks_als_stuk_voor_stuk) {
    std::mt19937 kans(20161);
    auto tot = [&](int n) { return static_cast<int>(kans() % static_cast<unsigned>(n)); };
    for (int keer = 0; keer < 60; keer++) {
        Getallen w;
        for (int f = tot(6) + 2; f > 0; f--)
            w.push_back(tot(4) ? tot(keer % 2 ? 9 : 256) : 0);
        w[0] = std::max(w[0], 1);
        Verdeelmap v(w);
        verdeel_start(regel_nu.model, regel_uitgesloten());
        std::vector<int64_t> tekort(w.size(), 0);
        const int64_t som = std::accumulate(w.begin(), w.end(), int64_t{0});
        auto boek = [&](size_t f, int64_t n) {
            tekort[f] -= n * som;
            for (size_t g = 0; g < w.size(); g++)
                tekort[g] += n * w[g];
        };
        for (size_t f = 0; f < w.size(); f++) {
            const int had = tot(keer % 5 == 1 ? 30'000 : keer % 3 ? 40 : 3'000);
            verdeel_boek(static_cast<int>(f), 1, had);
            boek(f, had);
        }
        const int stuks = tot(12'000);
        Getallen wil(w.size(), 0);
        for (int n = 0; n < stuks; n++) {
            size_t beste = w.size();
            for (size_t f = 0; f < w.size(); f++)
                if (w[f] && (beste == w.size() || tekort[f] > tekort[beste]))
                    beste = f;
            wil[beste]++;
            boek(beste, 1);
        }
        ASSERT_EQ(v.verdeel({stuks}), (std::vector<Getallen>{wil})) << keer;
    }
    Verdeelmap v({3, 2, 1});
    EXPECT_EQ(v.verdeel({2'000'000'000}), (std::vector<Getallen>{{1'000'000'000, 666'666'667, 333'333'333}}));
    // A memory far out of balance: two share until the first one is in turn again.
    verdeel_boek(0, 1, 1'500'000'000);
    EXPECT_EQ(v.verdeel({2'000'000'000})[0][0], 250'000'000);
    verdeel_vrij();
    verdeel_start(regel_nu.model, regel_uitgesloten());
    verdeel_boek(2, 1, 1'000'000'000); // the deficits of the others are 3 and 2 thousand million
    EXPECT_EQ(v.verdeel({7}), (std::vector<Getallen>{{7, 0, 0}}));
}

} // namespace
} // namespace zg::test

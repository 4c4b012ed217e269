// Many at once: eight processes on one pair, and several handles by turns in one process.
#include "store/diepcheck.h"
#include "store/hulp.h"
#include "store/node.h"
#include <algorithm>
#include <cstring>
#include <map>
#include <numeric>
#include <sys/wait.h>
#include <unistd.h>

namespace zg::test {
namespace {

struct [[gnu::packed]] Rec {
    uint32_t nr;
    uint16_t groep;
    char naam[14];
    int32_t waarde;
    char rest[76];
};
static_assert(sizeof(Rec) == 100);

const char* const sleutels[] = {"k,I,1,4", "n,C,7,20", "g,I,5,6", "gn,I,5,6,C,7,12", "w,I,21,24"};

Tabel tabel(size_t n) {
    return {100, {sleutels, sleutels + n}};
}

Rec rec(uint32_t nr, int32_t waarde) {
    Rec r{};
    r.nr = nr;
    r.groep = static_cast<uint16_t>(nr % 97);
    snprintf(r.naam, sizeof r.naam, "%c%u", 'a' + static_cast<int>(nr % 26), nr * 7919u % 100003u);
    r.waarde = waarde;
    memset(r.rest, static_cast<int>(nr % 200), sizeof r.rest);
    return r;
}

// Walk every key both ways: each record once, in order.
void loop_alles(ICB* icb, int aantal) {
    Rec r;
    for (int k = 1; k <= icb->h.nkeys; k++) {
        IXSWITCH(icb, k);
        const IXKEYDEF def = icb->h.keydef[k - 1];
        uint8_t vorige[64], nu[64];
        int n = 0;
        memset(&r, 0, sizeof r);
        for (int ok = IXFIRST(icb, &r); ok; ok = IXNEXT(icb, &r), n++) {
            IXMAAKSLEUTEL(def, &r, icb->currec, def.keylen, nu);
            if (n > 0) {
                ASSERT_LT(IXVERGELIJK(def, vorige, nu, def.keylen), 0) << "key " << k << " at " << n;
            }
            memcpy(vorige, nu, sizeof nu);
        }
        EXPECT_EQ(aantal, n) << "key " << k;
        memset(&r, 0xFF, sizeof r);
        icb->currec = -1;
        for (n = 0; IXPREVR(icb, &r, 0);)
            n++;
        EXPECT_EQ(aantal, n) << "key " << k << " backwards";
    }
    IXSWITCH(icb, 1);
}

TEST(Samen, HonderdduizendRecordsVijfSleutels) {
    const uint32_t n = 100'000;
    TijdelijkeMap map;
    maak_paar("T", tabel(5));
    std::vector<uint32_t> nrs(n);
    std::iota(nrs.begin(), nrs.end(), 0u);
    Toeval t(11);
    for (uint32_t i = n - 1; i > 0; i--)
        std::swap(nrs[i], nrs[t(i + 1)]);
    EXPECT_EQ(0, processen(8, [&](int p) {
                  ICB* icb = IXOPEN("T", 2);
                  for (uint32_t i = static_cast<uint32_t>(p); i < n; i += 8) {
                      Rec r = rec(nrs[i], 1);
                      if (!IXWRITE(icb, &r))
                          return false;
                  }
                  return IXCLOSE(icb), true;
              }));
    IXTELLING telling;
    EXPECT_EQ(std::vector<std::string>{}, IXDIEPCHECK("T", &telling));
    EXPECT_EQ(n, telling.levend);
    ICB* icb = IXOPEN("T", 2);
    loop_alles(icb, static_cast<int>(n));
    for (uint32_t i = 0; i < n; i += 3) {
        Rec r = rec(nrs[i], 0);
        ASSERT_EQ(1, IXREAD(icb, &r));
        IXDELETE(icb, &r);
    }
    for (uint32_t i = 0; i < n; i += 3) {
        Rec r = rec(nrs[i], 2);
        ASSERT_EQ(1, IXWRITE(icb, &r));
    }
    EXPECT_EQ(static_cast<int>(n), icb->h.nrecs) << "every free slot was used again";
    loop_alles(icb, static_cast<int>(n));
    for (uint32_t i = 0; i < n; i += 7) {
        Rec r = rec(nrs[i], 0), zo = rec(nrs[i], i % 3 ? 1 : 2);
        ASSERT_EQ(1, IXREAD(icb, &r));
        ASSERT_EQ(0, memcmp(&zo, &r, sizeof r));
    }
    IXCLOSE(icb);
    EXPECT_GEZOND("T");
}

// Each handle works near its own place, where it remembers a path that the others keep changing.
TEST(Samen, HandlesOmDeBeurt) {
    for (size_t nkeys = 1; nkeys <= 5; nkeys++)
        for (uint64_t zaad = 1; zaad <= 12; zaad++) {
            TijdelijkeMap map;
            maak_paar("T", tabel(nkeys));
            std::vector<ICB*> handles;
            for (int i = 0; i < 3; i++)
                handles.push_back(IXOPEN("T", 2));
            std::map<uint32_t, int32_t> zou;
            Toeval t(zaad);
            for (int stap = 0; stap < 1500; stap++) {
                uint32_t h = t(3),
                         plaats = h * 1'000'000 + static_cast<uint32_t>(stap / 3) + (zaad % 2 ? t(20) : 0);
                Rec r = rec(plaats, stap);
                auto er = zou.lower_bound(h * 1'000'000 + t(600));
                if (t(4) == 0 && er != zou.end()) {
                    r = rec(er->first, 0);
                    ASSERT_EQ(1, IXREADL(handles[h], &r));
                    if (t(2)) {
                        IXDELETE(handles[h], &r);
                        zou.erase(er);
                    } else {
                        r.waarde = er->second = stap;
                        snprintf(r.naam, sizeof r.naam, "%d", stap * 31 % 1000);
                        ASSERT_EQ(1, IXWRITE(handles[h], &r));
                    }
                } else {
                    ASSERT_EQ(1, IXWRITE(handles[h], &r));
                    zou[plaats] = stap;
                }
            }
            for (ICB* icb : handles) {
                for (auto& [nr, waarde] : zou) {
                    Rec r = rec(nr, 0);
                    ASSERT_EQ(1, IXREAD(icb, &r)) << nr;
                    ASSERT_EQ(waarde, r.waarde);
                }
                loop_alles(icb, static_cast<int>(zou.size()));
            }
            for (ICB* icb : handles)
                IXCLOSE(icb);
            ASSERT_EQ("", gezondheid("T")) << nkeys << " keys, seed " << zaad;
        }
}

// Every process changes its own records, and all of them count in a few common ones, which they also delete and
// create: not one count may be lost. Meanwhile half of them read what the others write.
TEST(Samen, AchtProcessen) {
    const int stappen = 1200, gezamenlijk = 5;
    for (size_t nkeys = 1; nkeys <= 5; nkeys++) {
        TijdelijkeMap map;
        maak_paar("T", tabel(nkeys));
        KorteWacht kort;
        int mis = processen(8, [&](int p) {
            ICB* icb = IXOPEN("T", 2);
            std::map<uint32_t, int32_t> zou;
            int geteld = 0;
            Toeval t(static_cast<uint64_t>(p) * 100 + nkeys);
            for (int stap = 0; stap < stappen; stap++) {
                uint32_t nr = 1000 + t(500) * 8 + static_cast<uint32_t>(p);
                auto er = zou.find(nr);
                Rec r = rec(nr, stap);
                switch (t(10)) {
                case 0:
                case 1:
                case 2:
                    if (IXREAD(icb, &r) != (er != zou.end()) || (er != zou.end() && r.waarde != er->second))
                        return fprintf(stderr, "process %d: record %u is not as it was written\n", p, nr),
                               false;
                    if (er != zou.end()) {
                        IXDELETE(icb, &r);
                        zou.erase(er);
                    }
                    break;
                case 3:
                    r = rec(t(gezamenlijk), 0);
                    if (!IXREADL(icb, &r))
                        r.waarde = 0;
                    r.waarde++;
                    if (!IXWRITE(icb, &r))
                        return false;
                    geteld++;
                    break;
                case 4: { // walk across what others are changing: ascending, and my own are all there
                    uint32_t van = nr;
                    r = rec(van, 0);
                    for (int ok = IXFIRSTR(icb, &r, 0), n = 0; ok && n < 40; ok = IXNEXTR(icb, &r, 0), n++) {
                        auto mijn = zou.lower_bound(van);
                        if (r.nr < van || (mijn != zou.end() && mijn->first < r.nr))
                            return fprintf(stderr, "process %d: walked past %u to %u from %u\n", p,
                                           mijn->first, r.nr, van),
                                   false;
                        van = r.nr + 1;
                    }
                    break;
                }
                default:
                    if (!IXWRITE(icb, &r))
                        return false;
                    zou[nr] = stap;
                }
            }
            for (auto& [nr, waarde] : zou) {
                Rec r = rec(nr, 0);
                if (!IXREAD(icb, &r) || r.waarde != waarde)
                    return fprintf(stderr, "process %d: lost %u\n", p, nr), false;
            }
            IXCLOSE(icb);
            // What is mine, for the count of all.
            schrijf_bestand("mijn" + std::to_string(p),
                            std::to_string(zou.size()) + " " + std::to_string(geteld));
            return true;
        });
        EXPECT_EQ(0, mis) << nkeys << " keys";
        ICB* icb = IXOPEN("T", 2);
        int som = 0, totaal = gezamenlijk;
        for (uint32_t i = 0; i < gezamenlijk; i++) {
            Rec r = rec(i, 0);
            EXPECT_EQ(1, IXREAD(icb, &r));
            som += r.waarde;
        }
        int geteld = 0;
        for (int p = 0; p < 8; p++) {
            int mijn = 0, tel = 0;
            sscanf(lees_bestand("mijn" + std::to_string(p)).c_str(), "%d %d", &mijn, &tel);
            totaal += mijn, geteld += tel;
        }
        EXPECT_EQ(geteld, som) << nkeys << " keys: counts lost";
        loop_alles(icb, totaal);
        IXCLOSE(icb);
        EXPECT_GEZOND("T");
    }
}

// All want the same new keys at the same moment, without asking for a lock first: each key comes to stand once.
TEST(Samen, ZelfdeNieuweSleutels) {
    TijdelijkeMap map;
    maak_paar("T", tabel(2));
    EXPECT_EQ(0, processen(8, [](int p) {
                  ICB* icb = IXOPEN("T", 2);
                  for (uint32_t i = 0; i < 600; i++) {
                      Rec r = rec(i, p);
                      if (!IXWRITE(icb, &r))
                          return false;
                  }
                  return true;
              }));
    ICB* icb = IXOPEN("T", 0);
    EXPECT_EQ(600, icb->h.nrecs);
    loop_alles(icb, 600);
    IXCLOSE(icb);
    EXPECT_GEZOND("T");
}

} // namespace
} // namespace zg::test

// Many at once: eight processes on one pair, and several handles by turns in one process.
#include "store/hulp.h"
#include "store/node.h"

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

// Each handle works near its own place, where it remembers a path that the others keep changing.
TEST(Samen, HandlesOmDeBeurt) {
    // The longest key has seven places in a node: every few inserts split, often up to the root.
    const Tabel tabellen[] = {
        tabel(1), tabel(5), {100, {"k,I,1,4", "lang,C,7,62", "uniek,NODUPS,C,7,62,I,1,4"}}};
    for (const Tabel& welke : tabellen)
        for (uint64_t zaad = 1; zaad <= 8; zaad++) {
            TijdelijkeMap map;
            maak_paar("T", welke);
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
            ASSERT_EQ("", gezondheid("T")) << welke.sleutels.size() << " keys, seed " << zaad;
        }
}

// All of them count in a few common records, which are made by whoever comes first: not one count may be lost. What
// else goes on at once stands in foltering_test.cpp.
TEST(Samen, GeenTellingGaatVerloren) {
    constexpr uint32_t GEZAMENLIJK = 5;
    constexpr int PER = 400, PROCESSEN = 8;
    TijdelijkeMap map;
    KorteWacht kort;
    maak_paar("T", tabel(3));
    EXPECT_EQ(0, processen(PROCESSEN, [&](int p) {
                  ICB* icb = IXOPEN("T", 2);
                  Toeval t(static_cast<uint64_t>(p));
                  for (int i = 0; i < PER; i++) {
                      Rec r = rec(t(GEZAMENLIJK), 0);
                      if (!IXREADL(icb, &r))
                          r.waarde = 0;
                      r.waarde++;
                      if (!IXWRITE(icb, &r))
                          return false;
                  }
                  return IXCLOSE(icb), true;
              }));
    ICB* icb = IXOPEN("T", 2);
    int som = 0;
    for (uint32_t i = 0; i < GEZAMENLIJK; i++) {
        Rec r = rec(i, 0);
        EXPECT_EQ(1, IXREAD(icb, &r));
        som += r.waarde;
    }
    EXPECT_EQ(PER * PROCESSEN, som);
    IXCLOSE(icb);
    EXPECT_GEZOND("T");
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

// Walks by key beside a plain list of the records in key order: first, next and previous by whole keys and by parts,
// with their fences, skipping from live and from deleted records, and keys with one value. Two handles write by turns.
#include "store/hulp.h"
#include "store/node.h"

namespace zg::test {
namespace {

constexpr int RECLEN = 20;
using Records = std::map<int32_t, std::string>;

struct Entry {
    uint8_t sleutel[IXSLEUTELMAX + 4];
    int32_t nr;
};

class Lijst {
public:
    Lijst(ICB* icb, const Records& records) : icb_(icb), def_(IXDEF(icb)) {
        for (const auto& [nr, rec] : records) {
            lijst_.push_back({{}, nr});
            IXMAAKSLEUTEL(def_, rec.data(), nr, def_.keylen, lijst_.back().sleutel);
        }
        std::sort(lijst_.begin(), lijst_.end(), [this](const Entry& a, const Entry& b) {
            return IXVERGELIJK(def_, a.sleutel, b.sleutel, def_.keylen) < 0;
        });
    }
    // Entry that a search for the key of a record ends on ('f': equal or else the next), under a fence of some
    // parts; null for none.
    const Entry* zoek(char op, const void* rec, int32_t nr, int lengte, int hek) const {
        uint8_t s[IXSLEUTELMAX + 4];
        IXMAAKSLEUTEL(def_, rec, nr, lengte, s);
        const Entry* uit = nullptr;
        for (const Entry& e : lijst_) {
            const int d = IXVERGELIJK(def_, e.sleutel, s, lengte);
            if (op == '<' ? d < 0 : !uit && (d > 0 || (d == 0 && op == 'f')))
                uit = &e;
        }
        return uit && hek > 0 && IXVERGELIJK(def_, uit->sleutel, s, IXKEYLEN(icb_, hek)) != 0 ? nullptr : uit;
    }

private:
    ICB* icb_;
    IXKEYDEF def_;
    std::vector<Entry> lijst_;
};

struct Wandel : testing::TestWithParam<int> {
    TijdelijkeMap map;
    Toeval t{static_cast<uint64_t>(GetParam())};
    ICB *icb = nullptr, *ander = nullptr;
    Records records;

    std::string maak() { // few values, so that keys meet
        static const char letters[] = "aAbB\x81u\xE1s\x01 ";
        std::string r(RECLEN, '\0');
        r[0] = static_cast<char>(t(8) * t(3));
        r[1] = static_cast<char>(t(4) == 0);
        r[2] = static_cast<char>(t(t(2) ? 4 : 250));
        for (uint32_t p = 3, n = 3 + t(7); p < n; p++)
            r[p] = letters[t(sizeof letters - 1)];
        r[RECLEN - 1] = 1;
        return r;
    }
    void schrijf() {
        const std::string r = maak();
        ICB* i = t(2) ? icb : ander;
        ASSERT_EQ(1, IXWRITE(i, r.data()));
        records[i->currec] = r;
    }
    void wis() {
        auto r = records.lower_bound(static_cast<int32_t>(t(400)));
        if (r == records.end())
            return;
        ICB* i = t(2) ? icb : ander;
        i->currec = r->first;
        IXDELETE(i, r->second.data());
        records.erase(r);
    }
    int delen() const { return static_cast<int>(strnlen(IXDEF(icb).ptype, IXDELEN)); }

    void stap(const std::string& rec, int n) {
        static const struct {
            int (*doe)(ICB*, void*, int);
            char op;
            bool record;
        } stappen[] = {{IXFIRSTK, 'f', false}, {IXNEXTK, '>', false}, {IXPREVK, '<', false},
                       {IXFIRSTR, 'f', true},  {IXNEXTR, '>', true},  {IXPREVR, '<', true}};
        const auto& s = stappen[t(6)];
        const int32_t nr = s.doe == IXFIRSTR ? 0 : static_cast<int32_t>(t(400)) - 1;
        const Lijst lijst(icb, records);
        const Entry* zou =
            lijst.zoek(s.op, rec.data(), nr, IXKEYLEN(icb, s.record ? 0 : n), s.record ? n : n - 1);
        std::string r = rec;
        icb->currec = nr;
        ASSERT_EQ(zou != nullptr, s.doe(icb, r.data(), n)) << s.op << s.record << n;
        ASSERT_EQ(zou ? zou->nr : -1, icb->currec) << s.op << s.record << n;
        if (zou && s.record) {
            ASSERT_EQ(records[zou->nr], r);
        } else if (zou) { // its key's fields, and no others
            uint8_t sleutel[IXSLEUTELMAX + 4];
            IXMAAKSLEUTEL(IXDEF(icb), r.data(), zou->nr, IXDEF(icb).keylen, sleutel);
            ASSERT_EQ(0, IXVERGELIJK(IXDEF(icb), sleutel, zou->sleutel, IXDEF(icb).keylen));
            ASSERT_EQ(rec.substr(10), r.substr(10));
        }
    }

    // From a record by its number; of a deleted one the caller still has the key.
    void skip(const std::string& rec) {
        const int32_t van = static_cast<int32_t>(t(400)) - 1;
        int stappen = static_cast<int>(t(9)) - 4;
        const Lijst lijst(icb, records);
        auto hier = records.find(van);
        int32_t zou = van, nr = van;
        std::string r = rec, op = hier == records.end() ? rec : hier->second;
        for (int over = hier == records.end() && !stappen ? 1 : stappen; over && zou >= -1;
             over += over < 0 ? 1 : -1) {
            const Entry* e = lijst.zoek(over < 0 ? '<' : '>', op.data(), zou, IXKEYLEN(icb, 0), 0);
            zou = e ? e->nr : -2;
            op = e ? records[e->nr] : op;
        }
        ASSERT_EQ(zou >= 0, IXSKIP(icb, r.data(), 0, stappen, &nr)) << van << " " << stappen;
        if (zou >= 0) {
            ASSERT_EQ(zou, nr);
            ASSERT_EQ(records[zou], r);
        }
    }

    void uniek(const std::string& rec, int deel) {
        const Lijst lijst(icb, records);
        const bool met_nummer = IXDEF(icb).dupflag == 'J' && deel == delen();
        const int lengte = met_nummer ? IXDEF(icb).keylen : IXKEYLEN(icb, deel);
        // The first value under the parts before it, then another one.
        std::string begin = rec, r = rec;
        memset(&begin[0], 0, 10);
        ICB vooraf = *icb;
        vooraf.currec = 0;
        vooraf.curent = vooraf.keybuf;
        memset(vooraf.keybuf, 0, sizeof vooraf.keybuf);
        if (deel > 1)
            IXBLDKEY(&vooraf, rec.data(), IXKEYLEN(icb, deel - 1));
        IXKEYTOREC(&vooraf, begin.data());
        const Entry* een = lijst.zoek('f', begin.data(), 0, lengte, deel - 1);
        const bool zou = een && !lijst.zoek('>', records[een->nr].data(), een->nr, lengte, deel - 1);
        ASSERT_EQ(zou, IXUNIQK(icb, r.data(), deel)) << deel;
        if (zou) {
            ASSERT_EQ(een->nr, icb->currec);
        }
    }
};

TEST_P(Wandel, AlsDoorEenLijst) {
    const Tabel tabellen[] = {{RECLEN, {"k,I,1,2,I,3,3", "t,C,4,9,I,3,3", "g,I,1,2,C,4,9"}},
                              {RECLEN, {"k,C,4,9,I,1,2", "d,C,4,5", "n,NODUPS,I,3,3,C,4,9,I,1,2"}},
                              {RECLEN, {"k,I,1,2,C,4,10", "x,C,4,6,C,7,10", "y,I,3,3"}}};
    icb = maak_open("T", tabellen[GetParam() % 3], 1 + GetParam() % 2);
    ander = icb->mode == 2 ? IXOPEN("T", 2) : icb;
    for (uint32_t n = t(600) + 1; n > 0; n--)
        schrijf();
    for (uint32_t n = t(200); n > 0; n--)
        wis();
    for (int i = 0; i < 400 && !HasFatalFailure(); i++) {
        SCOPED_TRACE("step " + std::to_string(i));
        t(10) ? void() : t(2) ? schrijf() : wis();
        IXSWITCH(icb, 1 + static_cast<int>(t(3)));
        auto er = records.lower_bound(static_cast<int32_t>(t(400)));
        const std::string rec = t(2) && er != records.end() ? er->second : maak();
        const int n = static_cast<int>(t(static_cast<uint32_t>(delen()) + 1));
        switch (t(4)) {
        case 0:
            uniek(rec, std::max(n, 1));
            break;
        case 1:
            skip(rec);
            break;
        default:
            stap(rec, n);
        }
    }
    if (ander != icb)
        IXCLOSE(ander);
    IXCLOSE(icb);
    EXPECT_GEZOND("T");
}

INSTANTIATE_TEST_SUITE_P(Zaden, Wandel, testing::Range(1, 25));

// A record that goes, and its number with another record: the key in the caller's hands is the place, not the dead one's.
TEST(Wandelplaats, VanEenVerdwenenRecord) {
    struct Nr {
        uint32_t nr;
        char rest[8];
    };
    const auto met = [](ICB* icb, uint32_t nr, int (*doe)(ICB*, const void*)) {
        const Nr r{nr, "x"};
        return doe(icb, &r);
    };
    const auto opnieuw = [&](std::initializer_list<uint32_t> nrs) {
        ICB* icb = maak_open("T", {sizeof(Nr), {"k,I,1,4"}}, 2);
        for (const uint32_t nr : nrs)
            met(icb, nr, IXWRITE);
        return icb;
    };
    TijdelijkeMap map;
    Nr r{};
    ICB* icb = opnieuw({2, 3});
    ASSERT_EQ(1, IXFIRST(icb, &r));
    IXDELETE(icb, &r);
    EXPECT_EQ(0, IXGET(icb, &r, 0)); // free: 0xFF, which is also where a walk back begins
    EXPECT_EQ(1, IXLAST(icb, &r));
    EXPECT_EQ(3U, r.nr);
    IXCLOSE(icb);

    // What comes next has gone, and nothing behind it: the buffer stays, and the place with it.
    icb = opnieuw({10, 20, 30});
    r = {};
    for (int stap = 0; stap < 2; stap++)
        ASSERT_EQ(1, stap ? IXNEXT(icb, &r) : IXFIRST(icb, &r));
    EXPECT_EQ(0, in_kind([] {
                  ICB* i = IXOPEN("T", 2);
                  Nr weg{30, ""};
                  IXREADL(i, &weg);
                  IXDELETE(i, &weg);
                  IXCLOSE(i);
              }));
    EXPECT_EQ(0, IXNEXT(icb, &r));
    EXPECT_EQ(20U, r.nr);
    EXPECT_EQ(1, IXLAST(icb, &r));
    EXPECT_EQ(10U, r.nr);
    IXCLOSE(icb);

    for (const bool zelf : {true, false}) { // who takes the number away: the walker, or another program
        icb = opnieuw({10, 20});
        r = {};
        ASSERT_EQ(1, IXFIRST(icb, &r));
        const auto wissel = [&](ICB* i) {
            Nr weg{10, ""};
            IXREADL(i, &weg);
            IXDELETE(i, &weg);
            met(i, 30, IXWRITE);
        };
        if (zelf)
            wissel(icb);
        else
            EXPECT_EQ(0, in_kind([&] {
                          ICB* i = IXOPEN("T", 2);
                          wissel(i);
                          IXCLOSE(i);
                      }));
        r = {30, ""};
        ASSERT_EQ(1, IXREAD(icb, &r));
        EXPECT_EQ(0, IXNEXT(icb, &r)) << zelf;
        r = {30, ""};
        ASSERT_EQ(1, IXREAD(icb, &r));
        EXPECT_EQ(1, IXLAST(icb, &r)) << zelf;
        EXPECT_EQ(20U, r.nr) << zelf;
        IXCLOSE(icb);
    }
}

// The walker writes a key that another had given the record already: it goes on from there, and doesn't meet itself.
TEST(Wandelplaats, NaEenSleutelDieErAlStond) {
    struct Rec {
        uint32_t nr, plaats;
        char rest[8];
    };
    TijdelijkeMap map;
    ICB* icb = maak_open("T", {sizeof(Rec), {"k,I,1,4", "p,I,5,8"}}, 2);
    for (uint32_t nr = 1; nr <= 3; nr++) {
        const Rec r{nr, nr * 10, "x"};
        IXWRITE(icb, &r);
    }
    IXSWITCH(icb, 2);
    Rec r{};
    ASSERT_EQ(1, IXFIRST(icb, &r));
    r.plaats = 15;
    EXPECT_EQ(0, in_kind([&] {
                  ICB* i = IXOPEN("T", 2);
                  IXWRITE(i, &r);
                  IXCLOSE(i);
              }));
    IXWRITE(icb, &r);
    int32_t hier = 0;
    EXPECT_EQ(1, IXSKIP(icb, &r, 0, 1, &hier));
    EXPECT_EQ(20U, r.plaats);
    IXCLOSE(icb);
}

} // namespace
} // namespace zg::test

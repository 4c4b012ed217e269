// Every bit of a small index flipped in turn: nothing crashes, hangs or answers nonsense, programs that write
// included, and the deep check notices each flip but those that it can't; these are counted by the region of the file.
// Then damage by kind, planted and named. ZG_LONG=1 lets programs work after every flip, not after one in a few.
#include "store/diepcheck.h"
#include "store/hulp.h"
#include "store/node.h"
#include "term/scherm.h"
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <map>
#include <sys/wait.h>
#include <unistd.h>

namespace zg::test {
namespace {

#pragma pack(push, 1)
struct Rec {
    uint32_t nr;
    char naam[50];
    uint16_t groep;
};
#pragma pack(pop)

// Five keys; the one of 60 bytes has seven places in a node, so a few records give it two levels.
const Tabel tabel{sizeof(Rec), {"k,I,1,4", "n,C,5,54", "g,I,55,56", "gn,NODUPS,I,55,56,C,5,14", "d,C,5,8"}};

void maak(int records, int gewist) {
    ICB* icb = maak_open("T", tabel, 2);
    Rec r{};
    for (int i = 0; i < records; i++) {
        r.nr = static_cast<uint32_t>(i * 7 % records) * 10;
        snprintf(r.naam, sizeof r.naam, "naam %03d", i);
        r.groep = static_cast<uint16_t>(i * 3);
        IXWRITE(icb, &r);
    }
    for (int i = 0; i < gewist; i++)
        if (IXGET(icb, &r, i * 2) == 1)
            IXDELETE(icb, &r);
    // A reserved key, so that the queue holds something.
    r.nr = 5;
    IXREADL(icb, &r);
    IXCLOSE(icb);
}

// What a program does: through every key, forth and back, and then changes, adds and deletes.
void doorloop(int mode) {
    constexpr int GRENS = 1000;
    ICB* icb = IXOPEN("T", mode);
    uint8_t rec[IXRECMAX] = {}; // a damaged record length is longer than the record
    for (int k = 1; k <= icb->h.nkeys; k++) {
        memset(rec, 0, sizeof rec);
        IXSWITCH(icb, k);
        int n = 0;
        for (int ok = IXFIRST(icb, rec); ok && n <= GRENS; ok = IXNEXT(icb, rec))
            n++;
        for (int ok = IXLAST(icb, memset(rec, 0xFF, sizeof rec)); ok && n <= GRENS; ok = IXPREVR(icb, rec, 0))
            n++;
        if (n > GRENS)
            _exit(77);
        int32_t nr = 5;
        IXSKIP(icb, rec, 0, -3, &nr);
        IXUNIQK(icb, rec, 1);
    }
    IXSWITCH(icb, 1);
    for (int i = 0; mode && i < 16; i++) {
        ZET32(rec, i * 10);
        rec[5] = static_cast<uint8_t>('a' + i);
        if (!IXREADL(icb, rec) || i % 4 == 0)
            IXWRITE(icb, rec);
        else
            IXDELETE(icb, rec);
    }
    IXCLOSE(icb);
}

// Run in a child that may stop with a report (status 1) or end (0), within a minute. Anything else is a fault.
int in_tijd(const std::function<void()>& werk) {
    return in_kind([&] {
        alarm(60);
        int niets = open("/dev/null", O_RDWR);
        dup2(niets, 1);
        dup2(niets, 2);
        SCRFATALHAAK = [] { _exit(1); };
        IXWAITHOOK = [](ICB*) { _exit(1); };
        werk();
    });
}

struct Gebied {
    int bits = 0, gezien = 0;
};

class Kaart {
public:
    explicit Kaart(const std::string& idx) : idx_(idx) { memcpy(&h_, idx.data(), sizeof h_); }
    // Region of a byte of the index.
    std::string gebied(size_t plaats) const {
        const size_t blok = plaats / IXBLOK, in = plaats % IXBLOK;
        if (blok == 0)
            return kop(in);
        const auto& k = *reinterpret_cast<const IXKNOOP*>(idx_.data() + blok * IXBLOK);
        if (in == 2 || in == 3 || in >= 510)
            return "node: bytes without meaning";
        if (blok == static_cast<size_t>(h_.nkeys + 1))
            return in < 5                                    ? "queue: head"
                   : in < 5u + k.count * h_.keydef[0].keylen ? "queue: reserved key"
                                                             : "queue: behind the keys";
        if (in < 5)
            return "node: head";
        const int stap = h_.keydef[k.keyno - 1].keylen + 4;
        const size_t i = (in - 5) / static_cast<size_t>(stap), rest = (in - 5) % static_cast<size_t>(stap);
        if (i >= k.count)
            return "node: behind the entries";
        if (rest >= h_.keydef[k.keyno - 1].keylen)
            return "node: pointer";
        return "node: key";
    }

    // Would the key that a byte belongs to still compare equal with another value of the byte?
    bool zelfde_sleutel(size_t plaats, uint8_t anders) const {
        const uint8_t* blok = reinterpret_cast<const uint8_t*>(idx_.data()) + plaats / IXBLOK * IXBLOK;
        const IXKEYDEF& def = h_.keydef[*blok - 1];
        const size_t begin = (plaats % IXBLOK - 5) / (def.keylen + 4u) * (def.keylen + 4u) + 5;
        uint8_t ander[IXBLOK];
        memcpy(ander, blok, sizeof ander);
        ander[plaats % IXBLOK] = anders;
        return IXVERGELIJK(def, blok + begin, ander + begin, def.keylen) == 0;
    }

private:
    std::string kop(size_t in) const {
        static const struct {
            size_t tot;
            const char* naam;
        } velden[] = {{11, "header: name"},  {12, "header: nkeys"},   {16, "header: freehead"},
                      {20, "header: nrecs"}, {24, "header: nblocks"}, {26, "header: reclen"},
                      {45, "header: title"}, {46, "header: busy"},    {48, "header: unused"}};
        for (const auto& v : velden)
            if (in < v.tot)
                return v.naam;
        if (in >= sizeof(IXHEADER))
            return "header: behind its 260 bytes";
        if (in >= offsetof(IXHEADER, version))
            return "header: version";
        const size_t def = (in - 48) / sizeof(IXKEYDEF), veld = (in - 48) % sizeof(IXKEYDEF);
        if (veld < 8)
            return "key definition: name";
        if (veld >= 41)
            return "key definition: unused byte";
        if (veld >= 11) {
            const size_t deel = (veld - 11) % IXDELEN;
            const IXKEYDEF& d = h_.keydef[def];
            size_t delen = 0;
            while (delen < IXDELEN && d.ptype[delen])
                delen++;
            if (deel > delen || (deel == delen && veld >= 21))
                return "key definition: parts behind the last";
            return deel == delen ? "key definition: end of the parts" : "key definition: parts";
        }
        return "key definition: flag, length, entries";
    }
    std::string idx_;
    IXHEADER h_;
};

// Regions in which some flips can't be seen, and why. In all others every flip must be noticed.
const std::map<std::string, const char*> ONZICHTBAAR = {
    {"header: name", "a name is a name"},
    {"header: title", "any text is a title"},
    {"header: unused", "no meaning"},
    {"header: behind its 260 bytes", "no meaning"},
    {"key definition: name", "a name is a name"},
    {"key definition: unused byte", "no meaning"},
    {"key definition: parts behind the last", "not looked at"},
    {"node: bytes without meaning", "no meaning"},
    {"node: key", "another letter that sorts the same, as an update from one to the other leaves it"},
    {"queue: reserved key", "any key may be reserved"},
};

TEST(Flip, ElkeBitVanDeIndex) {
    TijdelijkeMap map;
    KorteWacht kort;
    maak(13, 2);
    const std::string idx = lees_bestand("T.INX"), dat = lees_bestand("T.TXT");
    const Kaart kaart(idx);
    ASSERT_EQ("", gezondheid("T"));
    std::map<std::string, Gebied> gebieden;
    const size_t bits = idx.size() * 8, stap = getenv("ZG_LONG") ? 1 : 29;
    int fd = open("T.INX", O_RDWR | O_CLOEXEC), data = open("T.TXT", O_RDWR | O_CLOEXEC);
    auto draai = [&](size_t bit) {
        uint8_t b = static_cast<uint8_t>(idx[bit / 8]) ^ static_cast<uint8_t>(1u << bit % 8);
        ASSERT_EQ(1, pwrite(fd, &b, 1, static_cast<off_t>(bit / 8)));
    };
    auto terug = [&](size_t bit) { ASSERT_EQ(1, pwrite(fd, &idx[bit / 8], 1, static_cast<off_t>(bit / 8))); };
    auto herstel = [&] { // in place: the descriptors stay good
        schrijf_bestand("T.INX", idx);
        schrijf_bestand("T.TXT", dat);
    };
    for (size_t bit = 0; bit < bits; bit++) {
        const std::string naam = kaart.gebied(bit / 8);
        Gebied& g = gebieden[naam];
        draai(bit);
        const bool gezien = !IXDIEPCHECK(fd, data).empty();
        terug(bit);
        g.bits++;
        g.gezien += gezien;
        const uint8_t anders = static_cast<uint8_t>(idx[bit / 8] ^ 1 << bit % 8);
        ASSERT_TRUE(gezien || naam != "node: key" || kaart.zelfde_sleutel(bit / 8, anders)) << bit / 8;
        ASSERT_TRUE(gezien || ONZICHTBAAR.count(naam)) << naam << ", byte " << bit / 8 << " bit " << bit % 8;
    }
    // In children, a hundred flips each; a report that stops one costs a child for that flip alone.
    std::vector<size_t> werk;
    for (size_t bit = 0; bit < bits; bit += stap)
        werk.push_back(bit);
    for (size_t van = 0; van < werk.size();) {
        int pijp[2];
        ASSERT_EQ(0, pipe(pijp));
        const int status = in_tijd([&] {
            for (size_t i = van; i < werk.size() && i < van + 100; i++) {
                if (write(pijp[1], &i, sizeof i) < 0)
                    _exit(78);
                draai(werk[i]);
                IXCHECK("T");
                for (int mode : {0, 2, 1})
                    doorloop(mode);
                herstel();
            }
        });
        close(pijp[1]);
        size_t i = van, klaar = van;
        while (read(pijp[0], &i, sizeof i) == static_cast<ssize_t>(sizeof i))
            klaar = i;
        close(pijp[0]);
        herstel();
        ASSERT_TRUE(status == 0 || status == 1)
            << "status " << status << " at byte " << werk[klaar] / 8 << " bit " << werk[klaar] % 8 << ", "
            << kaart.gebied(werk[klaar] / 8);
        van = klaar + 1;
    }
    close(fd);
    close(data);
    int alle = 0, gezien = 0;
    for (const auto& [naam, g] : gebieden) {
        printf("%-40s %6d bits, %6d noticed%s%s\n", naam.c_str(), g.bits, g.gezien,
               g.gezien < g.bits ? "; the others: " : "", g.gezien < g.bits ? ONZICHTBAAR.at(naam) : "");
        alle += g.bits;
        gezien += g.gezien;
    }
    printf("%-40s %6d bits, %6d noticed\n", "together", alle, gezien);
}

// The file as the damage below sees it.
struct Schade {
    std::string idx, dat;
    IXHEADER& h() { return *reinterpret_cast<IXHEADER*>(idx.data()); }
    IXKNOOP& knoop(int32_t blok) {
        return *reinterpret_cast<IXKNOOP*>(idx.data() + static_cast<size_t>(blok) * IXBLOK);
    }
    uint8_t* entry(int sleutel, int32_t blok, int i) {
        return knoop(blok).entries + i * (h().keydef[sleutel - 1].keylen + 4);
    }
    int32_t wijzer(int sleutel, int32_t blok, int i) {
        return LEES32(entry(sleutel, blok, i) + h().keydef[sleutel - 1].keylen);
    }
    void zet_wijzer(int sleutel, int32_t blok, int i, int32_t n) {
        ZET32(entry(sleutel, blok, i) + h().keydef[sleutel - 1].keylen, n);
    }
    // First leaf of a key.
    int32_t blad(int sleutel) {
        int32_t blok = sleutel;
        while (knoop(blok).level > 1)
            blok = wijzer(sleutel, blok, 0);
        return blok;
    }
    void weg(int sleutel, int32_t blok, int i) {
        const size_t stap = h().keydef[sleutel - 1].keylen + size_t{4};
        uint8_t* e = entry(sleutel, blok, i);
        uint8_t* einde = entry(sleutel, blok, knoop(blok).count);
        memmove(e, e + stap, static_cast<size_t>(einde - e) - stap);
        memset(einde - stap, 0, stap);
        knoop(blok).count--;
    }
    char* rec(int nr) { return dat.data() + static_cast<size_t>(nr) * sizeof(Rec); }
};

// Damage of the trees' shape, beside those that every flip makes; programs walk through it too.
TEST(Flip, BomenUitHunVorm) {
    const struct {
        const char* wat;
        void (*doe)(Schade&);
    } gevallen[] = {
        {"belongs to key 3", [](Schade& s) { s.knoop(s.blad(2)).keyno = 3; }},
        {"separator above is not the highest",
         [](Schade& s) { // two children change places
             int32_t a = s.wijzer(2, 2, 0), b = s.wijzer(2, 2, 1);
             s.zet_wijzer(2, 2, 0, b), s.zet_wijzer(2, 2, 1, a);
         }},
        {"entry 2 has the key of the one before", // one child twice, another never
         [](Schade& s) { memcpy(s.entry(2, 2, 1), s.entry(2, 2, 0), 58); }},
        {"says that it is of level 2",
         [](Schade& s) { // a node that is its own child
             int32_t kind = s.blad(2);
             s.knoop(kind).level = 2;
             s.zet_wijzer(2, kind, 0, kind);
         }},
        {"is not found by its key", [](Schade& s) { s.weg(5, s.blad(5), 1); }},
        {"tree has 10 records, the data file has 11", [](Schade& s) { s.weg(3, s.blad(3), 0); }},
        {"is not the key of its record",
         [](Schade& s) { // a record twice in a tree, another never
             s.zet_wijzer(1, 1, 1, s.wijzer(1, 1, 2));
         }},
        {"the data file has 12 in use", // a record twice, by a copy in a free slot
         [](Schade& s) { memcpy(s.rec(s.h().freehead), s.rec(1), sizeof(Rec)); }},
        {"header: a key part lies outside", [](Schade& s) { s.h().keydef[1].pend[0] = 250; }},
        {"header: version 352", [](Schade& s) { s.h().version = 352; }},
        {"leads to block 9, which is no node", [](Schade& s) { s.idx.resize(s.idx.size() - IXBLOK); }},
    };
    TijdelijkeMap map;
    KorteWacht kort;
    maak(13, 2);
    const Schade goed{lees_bestand("T.INX"), lees_bestand("T.TXT")};
    for (const auto& g : gevallen) {
        Schade s = goed;
        g.doe(s);
        ASSERT_TRUE(s.idx != goed.idx || s.dat != goed.dat) << g.wat;
        schrijf_bestand("T.INX", s.idx);
        schrijf_bestand("T.TXT", s.dat);
        EXPECT_NE(std::string::npos, gezondheid("T").find(g.wat)) << g.wat << ", but:\n" << gezondheid("T");
        const int status = in_tijd([] { doorloop(2); });
        EXPECT_TRUE(status == 0 || status == 1) << g.wat << ": status " << status;
    }
}

} // namespace
} // namespace zg::test

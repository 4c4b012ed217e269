// Every bit of a small index flipped in turn: nothing crashes, hangs or answers nonsense, programs that write
// included, and the deep check notices each flip but those that it can't; these are counted by the region of the file.
// Then damage by kind, planted and named. ZG_LONG=1 lets programs work after every flip, not after one in a few.
#include "store/diepcheck.h"
#include "store/hulp.h"
#include "store/node.h"
#include "term/scherm.h"

namespace zg::test {
namespace {

struct [[gnu::packed]] Rec {
    uint32_t nr;
    char naam[50];
    uint16_t groep;
};

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
        SCRFATALHAAK = [] { _exit(1); };
        IXWAITHOOK = [](ICB*) { _exit(1); };
        werk();
    });
}

// Why a byte of the index may have another value and nobody can tell; null when the check must notice.
const char* onzichtbaar(const std::string& idx, size_t plaats, uint8_t anders) {
    const size_t blok = plaats / IXBLOK, in = plaats % IXBLOK;
    IXHEADER h;
    IXKNOOP k;
    memcpy(&h, idx.data(), sizeof h);
    memcpy(&k, idx.data() + blok * IXBLOK, sizeof k);
    if (blok > 0) {
        if (in == 2 || in == 3 || in >= 510)
            return "bytes of a node without meaning";
        const IXKEYDEF& def = h.keydef[k.keyno - 1];
        const size_t stap = def.keylen + (k.level ? 4u : 0u), begin = (in - 5) / stap * stap;
        if (in < 5 || begin >= k.count * stap || in - 5 - begin >= def.keylen)
            return nullptr; // head, behind the entries, pointer
        if (k.level == 0)
            return "any key may be reserved";
        IXKNOOP ander = k;
        ander.entries[in - 5] = anders;
        return IXVERGELIJK(def, k.entries + begin, ander.entries + begin, def.keylen) == 0
                   ? "a letter that sorts the same, as an update from one to the other leaves it"
                   : nullptr;
    }
    if (in < 11 || (in >= offsetof(IXHEADER, title) && in < offsetof(IXHEADER, busy)))
        return "any text is a name or a title";
    if (in >= sizeof h || in == 46 || in == 47)
        return "bytes of the header without meaning";
    if (in < 48 || in >= offsetof(IXHEADER, version))
        return nullptr;
    const size_t veld = (in - 48) % sizeof(IXKEYDEF), deel = (veld - 11) % IXDELEN;
    const size_t delen = strnlen(h.keydef[(in - 48) / sizeof(IXKEYDEF)].ptype, IXDELEN);
    if (veld < 8 || veld >= 41)
        return "name of a key, and a byte without meaning";
    return veld >= 11 && (deel > delen || (deel == delen && veld >= 21)) ? "parts of a key behind the last"
                                                                         : nullptr;
}

TEST(Flip, ElkeBitVanDeIndex) {
    TijdelijkeMap map;
    KorteWacht kort;
    maak(13, 2);
    const std::string idx = lees_index("T.INX"), dat = lees_bestand("T.TXT");
    ASSERT_EQ("", gezondheid("T"));
    std::map<std::string, int> ongezien;
    size_t alle_ongezien = 0;
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
        draai(bit);
        const bool gezien = !IXDIEPCHECK(fd, data).empty();
        terug(bit);
        if (gezien)
            continue;
        const char* waarom = onzichtbaar(idx, bit / 8, static_cast<uint8_t>(idx[bit / 8] ^ 1 << bit % 8));
        ASSERT_TRUE(waarom) << "byte " << bit / 8 << " bit " << bit % 8;
        ongezien[waarom]++;
        alle_ongezien++;
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
            << "status " << status << " at byte " << werk[klaar] / 8 << " bit " << werk[klaar] % 8;
        van = klaar + 1;
    }
    close(fd);
    close(data);
    printf("%zu of %zu flips noticed; not noticed:\n", bits - alle_ongezien, bits);
    for (const auto& [waarom, n] : ongezien)
        printf("%6d %s\n", n, waarom.c_str());
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
    };
    TijdelijkeMap map;
    KorteWacht kort;
    maak(13, 2);
    const Schade goed{lees_index("T.INX"), lees_bestand("T.TXT")};
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

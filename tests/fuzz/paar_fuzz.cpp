// Damaged pairs: a sound one with bytes, words and blocks changed at will, then the store's operations on it in the
// order that the input gives. Nothing may crash, run for ever or read what isn't there; and what a rebuild has
// answered 1 for is sound.
#include "fuzz/hulp.h"
#include "shared/syscalls.h"
#include "store/bestand.h"
#include "store/diepcheck.h"
#include "store/node.h"
#include "store/rebuild.h"
#include <algorithm>
#include <cstring>
#include <unistd.h>
#include <utility>
#include <vector>

using namespace zg;
using namespace zg::fuzz;

namespace {

struct Basis {
    int reclen;
    std::vector<const char*> sleutels;
    int records, gewist;
    std::string idx = {}, dat = {};
};
// Short and long keys, text and numbers, duplicates; long keys give several levels with few records.
std::vector<Basis> bases = {
    {20, {"a,I,1,4"}, 40, 3},
    {64, {"a,I,1,4", "b,C,5,60", "c,C,5,10", "d,I,3,3,C,5,8", "e,NODUPS,I,1,2,I,3,4"}, 60, 9},
    {70, {"a,C,5,64"}, 90, 5},
    {6, {"a,I,1,2", "b,I,2,2"}, 12, 2},
};

void vul(uint8_t* rec, int reclen, uint32_t nr) {
    memset(rec, 0, IXRECMAX);
    memcpy(rec, &nr, 4);
    uint32_t t = nr * 2654435761u;
    for (int i = 4; i < reclen; i++, t = t * 1103515245u + 12345u)
        rec[i] = static_cast<uint8_t>("Aa\x82 Zz-9"[t >> 29]);
}

void maak(Basis& b) {
    ICB* icb = IXCREATE("P", 1);
    IXUPDFCB(icb, 0, ("proef," + std::to_string(b.reclen)).c_str());
    int k = 0;
    for (const char* s : b.sleutels)
        IXUPDFCB(icb, ++k, s);
    IXINIT(icb);
    uint8_t rec[IXRECMAX];
    for (int i = 0; i < b.records; i++) {
        vul(rec, b.reclen, static_cast<uint32_t>(i * 37 % b.records));
        IXWRITE(icb, rec);
    }
    for (int i = 0; i < b.gewist; i++)
        if (IXGET(icb, rec, i * 3) == 1)
            IXDELETE(icb, rec);
    IXCLOSE(icb);
    b.idx = lees("P.INX");
    b.dat = lees("P.TXT");
}

const int32_t LASTIG[] = {0, 1, 2, 5, -1, 127, 128, 255, 256, 511, 512, 32767, 65535, INT32_MAX, INT32_MIN};

// Bytes put over the files, words that are hard on counts and pointers, and an end cut off or added.
void beschadig(Bron& in, std::string& idx, std::string& dat) {
    for (uint32_t n = in.onder(24); n > 0; n--) {
        const uint8_t wat = in.byte();
        std::string& s = wat & 0x80 ? dat : idx;
        if (s.size() < 8)
            continue;
        // Half of the hits on the index fall in the header, which has the most meaning per byte.
        const size_t bereik = wat & 0x40 && !(wat & 0x80) ? std::min(s.size(), size_t{260}) : s.size();
        const size_t plaats = in.onder(static_cast<uint32_t>(bereik));
        if ((wat & 7) == 7)
            s.resize(in.byte() & 1 ? plaats : s.size() + in.onder(IXBLOK));
        else if (wat & 4)
            memcpy(&s[std::min(plaats, s.size() - 4)], &LASTIG[in.onder(std::size(LASTIG))], 4);
        else
            s[plaats] = static_cast<char>(in.byte());
    }
}

struct Werk {
    ICB* icb = nullptr;
    uint8_t rec[IXRECMAX] = {};
};

void dicht(Werk& w) {
    if (ICB* i = std::exchange(w.icb, nullptr))
        IXCLOSE(i);
}

int (*const STAPPEN[])(ICB*, void*, int) = {IXNEXTR, IXPREVR, IXNEXTK, IXPREVK};

// A walk has an end: by record or by key, forward or back.
void loop(Werk& w, uint32_t soort) {
    int64_t rest = SYSOMVANG(w.icb->idxfd) / 5 + 10;
    memset(w.rec, soort & 1 ? 0xFF : 0, sizeof w.rec);
    const int delen = soort & 4 ? 1 : 0;
    while (STAPPEN[soort & 3](w.icb, w.rec, delen))
        if (--rest < 0)
            kapot("a walk without an end, kind " + std::to_string(soort));
}

void herbouw() {
    if (!IXBLDIX("P"))
        return;
    for (const std::string& b : IXDIEPCHECK("P")) // what the records themselves say stays
        if (b.find("have the same value") == std::string::npos &&
            b.find("has the key of the one before") == std::string::npos &&
            b.find("key 1 allows") == std::string::npos && b.rfind("and ", 0) != 0)
            kapot("after a rebuild: " + b);
    if (IXCHECK("P") < 0)
        kapot("after a rebuild: IXCHECK");
}

void opent(Werk& w, Bron& in) {
    w.icb = IXOPEN("P", static_cast<int>(in.onder(3)));
}

// The halves of IXWRITE ask nothing themselves: no second record may get a key 1 by them.
void zet(Werk& w, Bron& in) {
    const uint32_t wijze = in.onder(4);
    if (wijze < 2) {
        (wijze ? IXWRITEK : IXWRITE)(w.icb, w.rec);
        return;
    }
    const int32_t hier = w.icb->currec;
    IXSWITCH(w.icb, 1);
    if (IXEXISTS(w.icb, w.rec)) {
        IXUPDATE(w.icb, w.rec);
    } else if (wijze == 2) {
        IXINSERT(w.icb, w.rec);
    } else {
        w.icb->currec = hier;
        IXUPDATE(w.icb, w.rec);
    }
}

using Daad = void (*)(Werk& w, Bron& in);
const Daad ZONDER[] = {
    // no pair open
    opent,
    opent,
    [](Werk&, Bron&) { IXCHECK("P"); },
    [](Werk&, Bron&) { IXDIEPCHECK("P"); },
    [](Werk&, Bron&) { herbouw(); },
    [](Werk& w, Bron& in) { // as a temporary index
        schrijf("P.07", lees("P.INX"));
        IXCHECK("P.07");
        IXDIEPCHECK("P.07");
        w.icb = IXOPEN("P.07", static_cast<int>(in.onder(3)));
    },
};
int enige(Bron& in) {
    return static_cast<int>(in.onder(12)) - 1;
}
const Daad MET[] = {
    [](Werk& w, Bron&) { dicht(w); },
    [](Werk& w, Bron& in) { IXSWITCH(w.icb, static_cast<int>(in.onder(7))); },
    [](Werk& w, Bron& in) { loop(w, in.onder(8)); },
    [](Werk& w, Bron& in) { vul(w.rec, w.icb->h.reclen, in.onder(200)); },
    [](Werk& w, Bron& in) { w.rec[in.onder(IXRECMAX)] = in.byte(); },
    zet,
    [](Werk& w, Bron& in) { (in.byte() & 1 ? IXREAD : IXREADL)(w.icb, w.rec); },
    [](Werk& w, Bron&) { IXUNLOCK(w.icb, w.rec); },
    [](Werk& w, Bron& in) { IXGET(w.icb, w.rec, static_cast<int32_t>(in.onder(100))); },
    [](Werk& w, Bron& in) {
        int32_t nr = LASTIG[in.onder(std::size(LASTIG))];
        IXSKIP(w.icb, w.rec, enige(in), LASTIG[in.onder(std::size(LASTIG))], &nr);
    },
    [](Werk& w, Bron& in) { STAPPEN[in.onder(4)](w.icb, w.rec, enige(in)); },
    [](Werk& w, Bron&) {
        if (w.icb->currec >= 0 && w.icb->currec < w.icb->h.nrecs)
            IXPUTREC(w.icb, w.rec);
    },
    [](Werk& w, Bron&) {
        if (w.icb->currec >= 0)
            IXDELETE(w.icb, w.rec);
    },
};

// One part of a round; what a report leaves open is dropped.
void deel(const std::function<void(Werk&)>& doe) {
    Werk w;
    const bool heel = ronde([&] {
        doe(w);
        dicht(w);
    });
    if (!heel && w.icb)
        ronde([&] { IXLAATLOS(w.icb); });
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    begin();
    for (Basis& b : bases)
        maak(b);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t n) {
    Bron in(data, n);
    const uint8_t eerste = in.byte();
    const Basis& b = bases[eerste % bases.size()];
    std::string idx = b.idx, dat = b.dat;
    beschadig(in, idx, dat);
    unlink("P.07");
    schrijf("P.INX", idx);
    schrijf("P.TXT", dat);

    // What the input asks for; then every key walked on each kind of handle; then the repair.
    deel([&](Werk& w) {
        for (int i = 0; i < 300 && !in.op(); i++) {
            const uint8_t wat = in.byte();
            (w.icb ? MET[wat % std::size(MET)] : ZONDER[wat % std::size(ZONDER)])(w, in);
        }
    });
    const uint32_t soort = eerste >> 4 & 7;
    for (int k = 1; eerste & 0x80 && k <= IXSLEUTELS; k++)
        deel([&](Werk& w) {
            w.icb = IXOPEN("P", static_cast<int>(soort % 3));
            IXSWITCH(w.icb, k);
            if (k <= w.icb->h.nkeys)
                loop(w, soort + static_cast<uint32_t>(k));
        });
    deel([](Werk&) { herbouw(); });
    return 0;
}

// Damaged pairs: a sound one with bytes, words and blocks changed at will, then the store's operations on it in the
// order that the input gives. Nothing may crash, run for ever or read what isn't there; and what a rebuild has
// answered 1 for is sound.
#include "fuzz/hulp.h"
#include "store/diepcheck.h"
#include "store/node.h"
#include "store/rebuild.h"
#include "store/bestand.h"
#include <algorithm>
#include <cstring>
#include <unistd.h>
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

const int32_t LASTIG[] = {0,   1,   2,   3,   -1,    5,     7,         127,       128,
                          255, 256, 511, 512, 32767, 65535, INT32_MAX, INT32_MIN, INT32_MAX - 3};

void beschadig(Bron& in, std::string& idx, std::string& dat) {
    for (uint32_t n = in.onder(24); n > 0; n--) {
        const uint8_t wat = in.byte();
        std::string& s = wat & 0x80 ? dat : idx;
        if (s.size() < 8)
            continue;
        // Half of the hits on the index fall in the header, which has the most meaning per byte.
        const size_t plaats = wat & 0x40 && !(wat & 0x80) ? in.onder(260) % s.size()
                                                          : in.onder(static_cast<uint32_t>(s.size()));
        switch (wat & 7) {
        case 0:
        case 1:
            s[plaats] = static_cast<char>(in.byte());
            break;
        case 2:
            s[plaats] = static_cast<char>(s[plaats] ^ (1 << (in.byte() & 7)));
            break;
        case 3: {
            int32_t w = LASTIG[in.onder(std::size(LASTIG))];
            memcpy(&s[std::min(plaats, s.size() - 4)], &w, 4);
            break;
        }
        case 4: { // a pointer to somewhere near
            int32_t w = static_cast<int32_t>(in.byte());
            memcpy(&s[std::min(plaats, s.size() - 4)], &w, 4);
            break;
        }
        case 5: { // one block over another
            size_t van = plaats / IXBLOK * IXBLOK,
                   naar = in.onder(static_cast<uint32_t>(s.size() / IXBLOK + 1)) * size_t{IXBLOK};
            if (std::max(van, naar) + IXBLOK <= s.size())
                memmove(&s[naar], &s[van], IXBLOK);
            break;
        }
        case 6:
            s.resize(plaats);
            break;
        default:
            s.append(in.onder(IXBLOK + 1), static_cast<char>(in.byte()));
        }
    }
}

struct Werk {
    ICB* icb = nullptr;
    uint8_t rec[IXRECMAX] = {};

    int64_t stappenmax() const { return SYSOMVANG(icb->idxfd) / 5 + 10; }
    void dicht() {
        if (icb) {
            ICB* i = icb;
            icb = nullptr;
            IXCLOSE(i);
        }
    }
    void loop(int soort) {
        const int64_t max = stappenmax();
        int64_t n = 0;
        auto stap = [&](int ok) {
            if (++n > max)
                kapot("a walk without an end, kind " + std::to_string(soort));
            return ok;
        };
        memset(rec, soort & 1 ? 0xFF : 0, sizeof rec);
        switch (soort) {
        case 0:
            for (int ok = IXFIRST(icb, rec); stap(ok); ok = IXNEXT(icb, rec))
                ;
            break;
        case 1:
            for (int ok = IXLAST(icb, rec); stap(ok); ok = IXPREVR(icb, rec, 0))
                ;
            break;
        case 2:
            for (int ok = IXFIRSTK(icb, rec, 0); stap(ok); ok = IXNEXTK(icb, rec, 0))
                ;
            break;
        case 3:
            for (int ok = IXPREVK(icb, rec, 0); stap(ok); ok = IXPREVK(icb, rec, 0))
                ;
            break;
        default:
            for (int ok = IXFIRSTK(icb, rec, 1); stap(ok); ok = IXNEXTK(icb, rec, 1))
                ;
        }
    }
    void herbouw(const char* naam) {
        if (!IXBLDIX(naam))
            return;
        for (const std::string& b : IXDIEPCHECK(naam))
            if (b.find("has the key of the one before") == std::string::npos &&
                b.find("key 1 allows") == std::string::npos && b.rfind("and ", 0) != 0)
                kapot("after a rebuild: " + b);
        if (IXCHECK(naam) < 0)
            kapot("after a rebuild: IXCHECK");
    }
    void zonder(uint8_t wat, Bron& in) { // without an open pair
        switch (wat % 6) {
        case 0:
            IXCHECK("P");
            break;
        case 1:
            IXDIEPCHECK("P");
            break;
        case 2:
            herbouw("P");
            break;
        case 3: {
            std::string idx = lees("P.INX");
            schrijf("P.07", idx);
            IXCHECK("P.07");
            IXDIEPCHECK("P.07");
            icb = IXOPEN("P.07", static_cast<int>(in.onder(3)));
            break;
        }
        default:
            icb = IXOPEN("P", static_cast<int>(in.onder(3)));
        }
    }
    void met(uint8_t wat, Bron& in) {
        int32_t nr = 0;
        const int delen = static_cast<int>(in.onder(12)) - 1;
        switch (wat % 24) {
        case 0:
            dicht();
            break;
        case 1:
        case 2:
            IXSWITCH(icb, static_cast<int>(in.onder(7)));
            break;
        case 3:
            loop(static_cast<int>(in.onder(5)));
            break;
        case 4:
            vul(rec, icb->h.reclen, in.onder(200));
            break;
        case 5:
            rec[in.onder(IXRECMAX)] = in.byte();
            break;
        case 6:
            IXWRITE(icb, rec);
            break;
        case 7:
            IXWRITEK(icb, rec);
            break;
        case 8:
            IXINSERT(icb, rec);
            break;
        case 9:
            IXUPDATE(icb, rec);
            break;
        case 10:
        case 11:
            if (IXGET(icb, rec, static_cast<int32_t>(in.onder(100))) == 1 && wat & 0x80)
                IXDELETE(icb, rec);
            break;
        case 12:
            IXREAD(icb, rec);
            break;
        case 13:
            IXREADL(icb, rec);
            break;
        case 14:
            IXUNLOCK(icb, rec);
            break;
        case 15:
            nr = LASTIG[in.onder(std::size(LASTIG))];
            IXSKIP(icb, rec, delen, LASTIG[in.onder(std::size(LASTIG))], &nr);
            break;
        case 16:
            IXUNIQK(icb, rec, delen);
            break;
        case 17:
            IXEXISTSP(icb, rec, delen);
            break;
        case 18:
            IXNEXTR(icb, rec, delen);
            break;
        case 19:
            IXPREVR(icb, rec, delen);
            break;
        case 20:
            IXNEXTK(icb, rec, delen);
            IXPREVK(icb, rec, delen);
            break;
        case 21:
            if (icb->mode == 1 && icb->tempidx) {
                IXINITIX(icb);
                IXBULK('O', icb, rec);
                for (int i = static_cast<int>(in.onder(60)); i > 0; i--) {
                    vul(rec, icb->h.reclen, in.byte());
                    icb->currec = i;
                    IXBULK('W', icb, rec);
                }
                IXBULK('C', icb, rec);
            }
            break;
        case 22:
            if (icb->currec >= 0 && icb->currec < icb->h.nrecs)
                IXPUTREC(icb, rec);
            break;
        default:
            if (icb->currec >= 0)
                IXDELETE(icb, rec);
        }
    }
};

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

    // What the input asks for; then on each kind of handle all that a program is likely to do; then the repair.
    auto deel = [](const std::function<void(Werk&)>& doe) {
        Werk w;
        if (!ronde([&] {
                doe(w);
                w.dicht();
            }) &&
            w.icb) {
            ICB* icb = w.icb;
            ronde([icb] { IXLAATLOS(icb); });
        }
    };
    deel([&](Werk& w) {
        for (int i = 0; i < 300 && !in.op(); i++) {
            uint8_t wat = in.byte();
            if (w.icb)
                w.met(wat, in);
            else
                w.zonder(wat, in);
        }
    });
    if (eerste & 0x80) {
        deel([](Werk&) { IXCHECK("P"); });
        deel([](Werk&) { IXDIEPCHECK("P"); });
        const int soort = eerste >> 4 & 7;
        for (int k = 1; k <= IXSLEUTELS; k++)
            deel([&](Werk& w) {
                w.icb = IXOPEN("P", soort % 3);
                IXSWITCH(w.icb, k);
                if (k <= w.icb->h.nkeys)
                    w.loop((soort + k) % 5);
            });
    }
    deel([](Werk& w) { w.herbouw("P"); });
    return 0;
}

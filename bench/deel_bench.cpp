// What an operation costs in a directory, of this machine or shared with others: a pair of 1,000 records of 200 bytes, and
// an order of 1 and of 1,000 lines. Medians, and system calls on files counted at the table that all go through, and beside
// them the looks at a name that a replica asks.
// usage: bench_deel [DIRECTORY], one of its own is made in it
#include "bench/journaal.h"
#include "bench/meting.h"
#include "order/programma.h"
#include "order/wrk.h"
#include "shared/files.h"
#include "shared/gedeeld.h"
#include "shared/sysrec.h"
#include "store/ix.h"
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <unistd.h>

using namespace zg;
using namespace meting;

namespace {

constexpr int RECORDS = 1000, MALEN = 200; // how often each
constexpr int DOOR_ELKAAR = 7919;          // steps through the records out of the order of the key

struct [[gnu::packed]] Rij {
    int32_t nr;
    char naam[12];
    uint16_t groep;
    char code[10], rest[172];
};
static_assert(sizeof(Rij) == 200);

Rij rij(int nr) {
    Rij r{};
    r.nr = nr;
    snprintf(r.naam, sizeof r.naam, "naam %06u", static_cast<unsigned>(nr) * 40503U % 1'000'000U);
    r.groep = static_cast<uint16_t>(nr % 37);
    snprintf(r.code, sizeof r.code, "%d", nr);
    return r;
}

ICB* maak(const char* naam, int sleutels) {
    ICB* icb = IXCREATE(naam, 1);
    IXUPDFCB(icb, 0, "bench,200");
    IXUPDFCB(icb, 1, "nr,NODUPS,I,1,4");
    if (sleutels > 1) {
        IXUPDFCB(icb, 2, "naam,C,5,16");
        IXUPDFCB(icb, 3, "groep,I,17,18,C,19,28");
    }
    IXINIT(icb);
    IXCLOSE(icb);
    return IXOPEN(naam, 1);
}

double blikken;

void meld(const char* naam, const std::vector<double>& ms, double calls, double looks) {
    printf("%-52s %9.3f ms %8.1f calls %6.1f looks\n", naam, mediaan(ms), calls, looks);
    fflush(stdout);
}
void meld_stappen(const char* naam, int malen, const std::function<void(int)>& stap) {
    std::vector<double> ms;
    aanroepen = 0, blikken = 0;
    for (int i = 0; i < malen; i++) {
        const auto t0 = klok::now();
        stap(i);
        ms.push_back(ms_sinds(t0));
    }
    meld(naam, ms, static_cast<double>(aanroepen) / malen, blikken / malen);
}
void goed(bool gelukt) {
    if (!gelukt) {
        fprintf(stderr, "bench_deel: an operation failed\n");
        exit(1);
    }
}

void paar(int sleutels) {
    const std::string naam = sleutels == 1 ? "EEN" : "DRIE";
    const std::string bij = sleutels == 1 ? ", one key" : ", three keys";
    ICB* icb = maak(naam.c_str(), sleutels);
    int nr = 0;
    meld_stappen(("a record added by an exclusive load" + bij).c_str(), RECORDS, [&](int i) {
        const Rij r = rij(i * DOOR_ELKAAR % RECORDS * 10);
        goed(IXWRITE(icb, &r) == 1);
    });
    IXCLOSE(icb);
    icb = IXOPEN(naam.c_str(), 2);
    IXSWITCH(icb, 1);
    Rij r{};
    const auto lees_vast = [&](int welk) {
        r = rij(welk);
        goed(IXREADL(icb, &r));
    };
    if (sleutels > 1) {
        meld_stappen("a record read by its key", MALEN, [&](int i) {
            r = rij(i * DOOR_ELKAAR % RECORDS * 10);
            goed(IXREAD(icb, &r));
        });
        r = {}, icb->currec = 0;
        goed(IXFIRST(icb, &r));
        meld_stappen("a step of a walk", MALEN, [&](int) { goed(IXNEXT(icb, &r)); });
        meld_stappen("a record read and changed under its lock, by key", MALEN, [&](int i) {
            lees_vast(i * 10);
            r.rest[0]++;
            goed(IXWRITE(icb, &r) == 1);
        });
        meld_stappen("the same, here and there", MALEN, [&](int i) {
            lees_vast(i * DOOR_ELKAAR % RECORDS * 10);
            r.rest[0]++;
            goed(IXWRITE(icb, &r) == 1);
        });
    }
    meld_stappen(("a record added, by key" + bij).c_str(), MALEN, [&](int i) {
        r = rij(RECORDS * 10 + i);
        goed(IXWRITE(icb, &r) == 1);
    });
    meld_stappen(("the same, here and there" + bij).c_str(), MALEN, [&](int i) {
        r = rij((nr = i * DOOR_ELKAAR % RECORDS * 10 + 5));
        goed(IXWRITE(icb, &r) == 1);
    });
    IXCLOSE(icb);
}

void order(int regels) {
    firma.filialen = 5;
    seizoensmap = "2016Z", gekozen_leverancier = 12, gekozen_jaar = 2016, gekozen_letter = 'Z';
    std::vector<double> open, dicht;
    long calls_open = 0, calls_dicht = 0;
    double blikken_open = 0, blikken_dicht = 0;
    for (int i = 0; i < RONDEN; i++) {
        maak_journaal("2016Z/ORD0012.JRN", 0, regels);
        journaal = ord_open_jrn("2016Z", 12, O_RDWR);
        ord_eerste_order(journaal);
        ord_lees(journaal, 'R');
        aanroepen = 0, blikken = 0;
        auto t0 = klok::now();
        goed(wrk_open());
        open.push_back(ms_sinds(t0));
        calls_open = aanroepen, blikken_open = blikken;
        memcpy(kop.omschrijving, "gewijzigd", 9);
        werk->offset = 0, werk->tag = 'O';
        ord_schrijf(werk);
        aanroepen = 0, blikken = 0;
        t0 = klok::now();
        goed(wrk_sluit());
        dicht.push_back(ms_sinds(t0));
        calls_dicht = aanroepen, blikken_dicht = blikken;
        if (journaal)
            ord_sluit(journaal);
        journaal = nullptr;
    }
    const std::string wat = "an order of " + std::to_string(regels) + (regels == 1 ? " line" : " lines");
    meld((wat + " opened").c_str(), open, static_cast<double>(calls_open), blikken_open);
    meld((wat + " committed").c_str(), dicht, static_cast<double>(calls_dicht), blikken_dicht);
}

} // namespace

int main(int argc, char** argv) {
    std::string map = std::string(argc > 1 ? argv[1] : "/tmp") + "/zgbenchXXXXXX";
    if (!mkdtemp(map.data()) || !IOCHDIR(map.c_str()) || mkdir("2016Z", 0770) != 0) {
        perror(map.c_str());
        return 1;
    }
    printf("%s: %s\n", argc > 1 ? argv[1] : "/tmp", IOGEDEELD() ? "shared" : "of this machine");
    tel_aanroepen();
    SYS.naam = [](const char* pad) { return blikken++, echt.naam(pad); };
    paar(3);
    paar(1);
    order(1);
    order(1000);
    return std::filesystem::remove_all(map) == 0;
}

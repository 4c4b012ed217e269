// Module konl_mut: the tills and their files, see edi/konl_mut.h.
#include "edi/konl_mut.h"
#include "shared/files.h"
#include "shared/mutatie.h"
#include "shared/regelbij.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "shared/sysrec.h"
#include <algorithm>
#include <bitset>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace zg {
namespace {

constexpr int PER_FILIAAL = 100; // two digits each

std::bitset<size_t{PER_FILIAAL} * PER_FILIAAL> lijst;
bool gelezen;

size_t plaats(int filiaal, int kassa) {
    return static_cast<size_t>(filiaal * PER_FILIAAL + kassa);
}

// "KAS0102.SYS" is branch 1, till 2; digits, no blanks or signs in their place.
bool lees_naam(const char* naam, size_t* plek) {
    if (strlen(naam) != 11 || memcmp(naam, "KAS", 3) != 0 || memcmp(naam + 7, ".SYS", 4) != 0)
        return false;
    size_t n = 0;
    for (const char* p = naam + 3; p < naam + 7; p++) {
        if (!isdigit(static_cast<uint8_t>(*p)))
            return false;
        n = n * 10 + static_cast<size_t>(*p - '0');
    }
    *plek = n;
    return true;
}

// False when there are no tills to ask about.
bool gekoppeld(int filiaal) {
    if (!kassakoppeling())
        return false;
    if (!gelezen)
        INTERNAL("konl_mut", 2);
    if (filiaal != ALLE_FILIALEN && (filiaal < 0 || filiaal >= firma.filialen))
        INTERNAL("konl_mut", 3);
    return true;
}

// Each till that is meant, by number, until `doe` says true; was there such a one?
template <class F> bool vind(int filiaal, int kassa, F doe) {
    const bool elk = filiaal == ALLE_FILIALEN, alle = kassa == ALLE_KASSAS;
    if ((!elk && filiaal >= PER_FILIAAL) || (!alle && (kassa < 0 || kassa >= PER_FILIAAL)))
        return false;
    for (int f = elk ? 0 : filiaal; f <= (elk ? PER_FILIAAL - 1 : filiaal); f++)
        for (int k = alle ? 0 : kassa; k <= (alle ? PER_FILIAAL - 1 : kassa); k++)
            if (lijst[plaats(f, k)] && doe(f, k))
                return true;
    return false;
}

bool schrijf(int filiaal, int kassa, const std::string& regel) {
    char naam[32];
    snprintf(naam, sizeof naam, "DCMU%02d%02d.TXT", filiaal, kassa);
    const int fd = REGELOPEN(naam);
    if (fd < 0)
        OPENFAIL("konl_mut", naam);
    const bool goed = REGELBIJ(fd, regel);
    const int fout = errno;
    SYS.close(fd);
    if (!goed)
        SCHRIJFFOUT(naam, fout);
    return goed;
}

} // namespace

void tills_lees() {
    tills_vrij();
    gelezen = kassakoppeling();
    char naam[DIRNAAM] = "KAS*.SYS";
    if (!gelezen || !DIRECTORY('O', naam, 1))
        return;
    while (DIRECTORY('N', naam, 1))
        if (size_t plek; lees_naam(naam, &plek))
            lijst.set(plek);
    DIRECTORY('C', naam, 1);
}

void tills_vrij() {
    lijst.reset();
    gelezen = false;
}

int tills_count() {
    return static_cast<int>(lijst.count());
}

bool tills_any() {
    return lijst.any();
}

bool tills_of(int filiaal) {
    return tills_has(filiaal, ALLE_KASSAS);
}

bool tills_has(int filiaal, int kassa) {
    return gekoppeld(filiaal) && vind(filiaal, kassa, [](int, int) { return true; });
}

bool tills_write(int filiaal, int kassa, char letter, const std::string& inhoud) {
    bool geschreven = false;
    if (gekoppeld(filiaal))
        vind(filiaal, kassa, [&](int f, int k) {
            geschreven |= schrijf(f, k, letter + inhoud);
            return false;
        });
    return geschreven;
}

} // namespace zg

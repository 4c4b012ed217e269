// The bars of the size type in force: their list, and the sizes of a series.
#include "shared/maatbalk.h"
#include "sub/maatsoort.h"
#include "sub/teksten.h"
#include "term/scherm.h"
#include <cstring>

namespace zg {

bool maatbalk_kiezen(const char*, uint8_t* maten) {
    uint8_t alle[MAATBYTES];
    balk_kies(nullptr);
    balk_maten(alle);
    for (int i = 0; i < MAATBYTES; i++)
        maten[i] |= alle[i];
    balk_kies(maten);
    return balk_kolommen() > 0;
}

bool serie_maten(int, int, uint8_t* maten, const uint8_t*, const seriesleutel*) {
    if (!balk_heeft(maten) && !maatbalk_kiezen("STVW", maten))
        return false;
    balk_kies(maten);
    return true;
}

bool maatsoort_onderhoud(int, int, uint8_t stelsel, uint8_t soort) {
    return maatsoort_gevuld(stelsel, soort);
}

} // namespace zg

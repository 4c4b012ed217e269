// The notes of reserved numbers, a file for each user's slot: whose number is it? By itself, for who asks that without the
// files of the registration.
#include "shared/iotab.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "sub/omserie.h"
#include "sub/serienummer.h"
#include <algorithm>

namespace zg {
namespace {

constexpr size_t MEEST = 64; // keys that are read of a file; the queue holds 63

bool staat_in(const Sleutels& sleutels, const seriesleutel& sleutel) {
    return std::any_of(sleutels.begin(), sleutels.end(),
                       [&](const seriesleutel& s) { return zelfde_serie(s, sleutel); });
}

bool slot_bezet(int32_t slot) {
    gebruikerslot ongelezen;
    return !iotab('T', &slot, &ongelezen, SYS_GEBRUIKER);
}

} // namespace

std::string serie_notitie(int32_t slot) {
    char naam[20];
    snprintf(naam, sizeof naam, "SERNR%02d.RES", slot % 100);
    return naam;
}

Sleutels serie_genoteerd(int32_t slot) {
    Sleutels uit(MEEST);
    const int fd = SYS.open(serie_notitie(slot).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK, 0);
    const ssize_t n = fd < 0 ? 0 : IOLEES(fd, uit.data(), uit.size() * sizeof uit[0], 0);
    if (fd >= 0)
        SYS.close(fd);
    uit.resize(n > 0 ? static_cast<size_t>(n) / sizeof uit[0] : 0);
    return uit;
}

bool serie_nummer_levend(const seriesleutel& sleutel) {
    for (int32_t slot = 1; slot <= SYS_GEBRUIKER.slots; slot++)
        if (slot != sessie && staat_in(serie_genoteerd(slot), sleutel) && slot_bezet(slot))
            return true;
    return false;
}

} // namespace zg

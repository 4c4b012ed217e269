// zgdruk's users: the standard printer that a user's slot names.
#include "print/printtabel.h"
#include "print/xprt.h"
#include "shared/files.h"
#include "shared/iotab.h"
#include "tools/drukwerk.h"
#include "tools/wie.h"
#include <cstdio>
#include <cstring>

namespace zg {
namespace {

constexpr int GEBRUIKERS = 98;

std::string gebruikersnaam(const gebruikerslot& g) {
    return toon(gebruiker_naam(g));
}

void toon_gebruiker(int32_t nr, const gebruikerslot& g) {
    printwens w;
    memcpy(&w, g.vrij18, sizeof w);
    printf("%d %s", nr, gebruikersnaam(g).c_str());
    if (w.code)
        printf(" printer=%d", int{w.code});
    if (w.verbinding)
        printf(" verbinding=%d", int{w.verbinding});
    if (w.vlaggen & PRT_VOORBEELD)
        printf(" voorbeeld");
    if (g.opties)
        printf(" masker=%d", int{g.opties});
    putchar('\n');
}

// The slot of a number or a name, 0 for none.
int32_t zoek_gebruiker(const std::string& wie) {
    gebruikerslot g;
    for (int32_t nr = 1; nr <= GEBRUIKERS; nr++) {
        int32_t slot = nr;
        if (iotab('R', &slot, &g, SYS_GEBRUIKER) && g.username[0] &&
            (wie == std::to_string(nr) || wie == gebruikersnaam(g)))
            return nr;
    }
    return 0;
}

} // namespace

// Show the standard printers, or give one to a user who isn't at work.
Uitkomst druk_gebruikers(bool zetten) {
    if (!IOEXISTS("DTSYS.TXT"))
        return meld(NIET_TE_OPENEN, std::string("DTSYS.TXT: ") + strerror(ENOENT));
    int32_t eerste = 0, nr = 0;
    gebruikerslot g;
    iotab('O', &eerste, nullptr, SYS_RECORD);
    if (!druk_wens.gebruiker.empty() && (nr = zoek_gebruiker(druk_wens.gebruiker)) == 0)
        return meld(FOUT_GEVONDEN, "no such user: " + druk_wens.gebruiker);
    if (!zetten) {
        for (int32_t i = 1; i <= GEBRUIKERS; i++)
            if (int32_t slot = i;
                (nr == 0 || nr == i) && iotab('R', &slot, &g, SYS_GEBRUIKER) && g.username[0])
                toon_gebruiker(i, g);
        return GOED;
    }
    printtabellen t;
    if (druk_wens.code &&
        (!prt_lees(&t) || std::none_of(t.printers.begin(), t.printers.end(),
                                       [](const prtrec& p) { return p.code == druk_wens.code; })))
        return meld(FOUT_GEVONDEN, "there is no printer " + std::to_string(druk_wens.code));
    if (druk_wens.verbinding &&
        std::none_of(t.verbindingen.begin(), t.verbindingen.end(), [](const prtverbinding& v) {
            return v.code == druk_wens.code && v.nummer == druk_wens.verbinding;
        }))
        return meld(FOUT_GEVONDEN, "the printer has no connection " + std::to_string(druk_wens.verbinding));
    if (!iotab_probeer(&nr, &g, SYS_GEBRUIKER)) {
        const int64_t start = SYS_GEBRUIKER.start + int64_t{nr - 1} * SYS_GEBRUIKER.grootte;
        const std::string wie = wie_is(IOLOCKPID(iotab_fd(), start, SYS_GEBRUIKER.grootte), -1);
        return meld(IN_GEBRUIK, druk_wens.gebruiker + " is at work" + (wie.empty() ? "" : " (" + wie + ")"));
    }
    if (in_overgave(g)) {
        iotab('U', &nr, &g, SYS_GEBRUIKER);
        return meld(IN_GEBRUIK, druk_wens.gebruiker + " is at work");
    }
    const printwens w{static_cast<uint16_t>(druk_wens.code),
                      static_cast<uint8_t>(druk_wens.voorbeeld ? PRT_VOORBEELD : 0),
                      static_cast<uint8_t>(druk_wens.verbinding)};
    memcpy(g.vrij18, &w, sizeof w);
    g.opties = static_cast<uint16_t>(druk_wens.masker);
    if (!iotab('W', &nr, &g, SYS_GEBRUIKER))
        return meld(FOUT_GEVONDEN, "not written");
    toon_gebruiker(nr, g);
    return GOED;
}

} // namespace zg

// One record of an indexed master table in hand.
#include "sub/stampost.h"
#include "shared/leesstam.h"
#include "shared/sleutelstand.h"
#include "shared/sysrec.h"
#include "sub/teksten.h"
#include "term/scherm.h"
#include <algorithm>
#include <cstring>

namespace zg {
namespace {

// The record is ours again behind a refused write. False when another has made or deleted it since: told.
bool herneem(Stampost* post) {
    uint8_t nu[IXRECMAX];
    memcpy(nu, post->ruimte, sizeof nu);
    const int gelezen = IXREADL(*post->icb, nu);
    if (gelezen == post->er) {
        post->slot = true;
        return true;
    }
    if (gelezen >= 0)
        IXUNLOCK(*post->icb, nu);
    error("%s", TXT(T_ANDER_GEWIJZIGD));
    return false;
}

} // namespace

bool post_mag(const Stampost& post) {
    return mag_onderhoud() && *post.icb && (*post.icb)->mode != 0;
}

int post_lees(Stampost* post, void* rec, size_t lengte, size_t sleutel, bool slot) {
    auto* beeld = static_cast<uint8_t*>(rec);
    memset(post->ruimte, 0, sizeof post->ruimte);
    memcpy(post->ruimte, beeld, sleutel);
    memset(beeld + sleutel, 0, lengte - sleutel);
    post->slot = post->er = false;
    if (!*post->icb)
        return 0;
    Sleutelstand k1(*post->icb);
    const int gelezen = slot ? IXREADL(k1.icb, post->ruimte) : IXREAD(k1.icb, post->ruimte);
    if (gelezen == 1)
        memcpy(beeld, post->ruimte, lengte);
    post->slot = slot && gelezen >= 0;
    post->er = gelezen == 1;
    return gelezen;
}

bool post_schrijf(Stampost* post, const void* rec, size_t lengte) {
    Sleutelstand k1(*post->icb);
    memcpy(post->ruimte, rec, lengte);
    if (!post->slot && !herneem(post))
        return false;
    const int geweigerd = IXWEIGERINGEN;
    post->slot = false;
    if (IXWRITE(k1.icb, post->ruimte)) {
        post->er = true;
        stam_gewijzigd();
        return true;
    }
    if (IXWEIGERINGEN == geweigerd)
        error("%s", TXT(T_NIET_VASTGELEGD));
    herneem(post);
    return false;
}

bool post_wis(Stampost* post) {
    Sleutelstand k1(*post->icb);
    const bool er =
        IXREAD(k1.icb, post->ruimte) == 1; // to stand on it: its table served for others meanwhile
    post->slot = false;
    if (er && IXDELETE(k1.icb, post->ruimte) < 0) {
        herneem(post);
        return false;
    }
    stam_gewijzigd();
    return true;
}

void post_vrij(Stampost* post) {
    if (post->slot) {
        Sleutelstand k1(*post->icb);
        IXUNLOCK(k1.icb, post->ruimte);
    }
    post->slot = false;
}

} // namespace zg

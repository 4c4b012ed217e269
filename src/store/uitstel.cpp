// Blocks held back; see store/uitstel.h.
#include "store/uitstel.h"
#include "shared/files.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "store/klad.h"
#include "store/node.h"
#include <algorithm>
#include <bit>
#include <cerrno>
#include <memory>
#include <new>
#include <vector>

namespace zg {

size_t UITSTELMAX = 16384; // 8 MB

namespace {

constexpr int32_t PERKEER = SYSSTUK / IXBLOK; // blocks of one write, and of one piece of room
constexpr int32_t ONBEKEND = -1;

struct Plek {
    int32_t blok;
    uint32_t tafel; // where `tafel` leads here
    bool vuil;      // differs from the file
};

struct Uitstel {
    const ICB* icb;
    size_t max;
    std::unique_ptr<uint8_t[]> inhoud;
    std::vector<Plek> plek;
    std::vector<uint32_t> tafel; // place + 1 by block, 0 for none; twice as long as there are places
    size_t vuil = 0;
    int32_t op_schijf = ONBEKEND; // blocks of the file
    int32_t ruimte = 0;           // blocks that the disk has room for

    Uitstel(const ICB* i, size_t n)
        : icb(i), max(n), inhoud(new uint8_t[n * IXBLOK]), tafel(std::bit_ceil(2 * n)) {
        plek.reserve(n);
    }
    uint8_t* blok(size_t p) const { return inhoud.get() + p * IXBLOK; }
    int niveau(size_t p) const { return reinterpret_cast<const IXKNOOP*>(blok(p))->level; }
    // Where `tafel` has the block, or would have it.
    size_t zoek(int32_t nr) const {
        const size_t masker = tafel.size() - 1;
        size_t t = (static_cast<uint32_t>(nr) * 2654435769u) >> 7 & masker;
        while (tafel[t] && plek[tafel[t] - 1].blok != nr)
            t = (t + 1) & masker;
        return t;
    }
    void zet(int32_t nr, const void* wat, bool anders) {
        const size_t t = zoek(nr);
        if (!tafel[t]) {
            plek.push_back({nr, static_cast<uint32_t>(t), false});
            tafel[t] = static_cast<uint32_t>(plek.size());
        }
        const size_t p = tafel[t] - 1;
        memcpy(blok(p), wat, IXBLOK);
        vuil += anders && !plek[p].vuil;
        plek[p].vuil |= anders;
    }
    void leeg() {
        for (const Plek& p : plek)
            tafel[p.tafel] = 0;
        plek.clear();
    }
    // Leaves go; what stands above them stays, while it is little.
    void ruim_op() {
        std::vector<uint8_t> boven;
        std::vector<int32_t> nrs;
        for (size_t p = 0; p < plek.size(); p++)
            if (niveau(p) > 1) {
                nrs.push_back(plek[p].blok);
                boven.insert(boven.end(), blok(p), blok(p) + IXBLOK);
            }
        leeg();
        for (size_t i = 0; i < nrs.size() && nrs.size() <= max / 2; i++)
            zet(nrs[i], boven.data() + i * IXBLOK, false);
    }
};

std::vector<std::unique_ptr<Uitstel>> alle; // one for an exclusive handle that has written

Uitstel* vind(int idxfd) {
    for (const auto& u : alle)
        if (u->icb->idxfd == idxfd)
            return u.get();
    return nullptr;
}

Uitstel* van(const ICB* icb) {
    Uitstel* u = vind(icb->idxfd);
    return u && u->icb == icb ? u : nullptr;
}

// The file is as long as it was left: nothing is written behind an end that isn't.
void eis_lengte(const ICB* icb, int32_t blokken) {
    if (IOOMVANG(icb->idxfd) != int64_t{blokken} * IXBLOK)
        IXSTUK(icb, blokken);
}

// Room on the disk up to so many blocks and some more; on one that is nearly full, for these alone.
Uitstelling vraag_ruimte(Uitstel* u, int32_t blokken) {
    const int32_t vanaf = std::max(u->ruimte, u->op_schijf);
    if (blokken <= vanaf)
        return U_RUIMTE;
    int64_t n = int64_t{blokken} - vanaf + PERKEER;
    const auto vraag = [&] { return SYS.ruimte(u->icb->idxfd, int64_t{vanaf} * IXBLOK, n * IXBLOK) == 0; };
    bool goed = vraag();
    if (!goed && (errno == ENOSPC || errno == EDQUOT || errno == EFBIG)) {
        n -= PERKEER;
        goed = vraag();
    }
    if (goed) {
        u->ruimte = static_cast<int32_t>(std::min<int64_t>(vanaf + n, INT32_MAX));
        return U_RUIMTE;
    }
    const bool onbekend = errno == EOPNOTSUPP || errno == ENOSYS || errno == EINVAL || errno == EPERM;
    return onbekend ? U_NIET : U_GEWEIGERD; // a file system without such a question, or a disk that refuses
}

// New blocks behind the last; refused, the file gets the length that it had.
bool voeg_achter(Uitstel* u, ICB* icb, const void* blokken, int32_t n) {
    const int64_t einde = int64_t{u->op_schijf} * IXBLOK;
    if (SYSSCHRIJFOP(icb->idxfd, blokken, static_cast<size_t>(n) * IXBLOK, einde)) {
        IXCOMMITHOOK();
        u->op_schijf += n;
        return true;
    }
    const int fout = errno;
    if (SYSOMVANG(icb->idxfd) != einde && SYS.ftruncate(icb->idxfd, einde) != 0) {
        icb->h.busy = 1; // and stays so on disk
        IXSCHIJFFOUT(icb, icb->idxfd, einde, n * IXBLOK);
    }
    u->ruimte = 0; // it went with what was cut off
    errno = fout;
    return false;
}

bool overschrijf(ICB* icb, int32_t blok, const void* wordt, int32_t n) {
    uint8_t was[SYSSTUK];
    const size_t bytes = static_cast<size_t>(n) * IXBLOK;
    const int64_t plaats = int64_t{blok} * IXBLOK;
    if (IOLEES(icb->idxfd, was, bytes, plaats) != static_cast<ssize_t>(bytes))
        IXSTUK(icb, blok);
    return IXOVERSCHRIJF(icb, icb->idxfd, plaats, was, wordt, bytes);
}

bool schrijf_alles(Uitstel* u, ICB* icb) {
    if (!u->vuil)
        return true;
    eis_lengte(icb, u->op_schijf);
    std::vector<size_t> volgorde;
    for (size_t p = 0; p < u->plek.size(); p++)
        if (u->plek[p].vuil)
            volgorde.push_back(p);
    const int32_t eerste_nieuwe = u->op_schijf;
    // What is new comes first, and the highest level of the others.
    const auto beurt = [&](size_t p) { return u->plek[p].blok >= eerste_nieuwe ? -99 : -u->niveau(p); };
    std::sort(volgorde.begin(), volgorde.end(), [&](size_t a, size_t b) {
        const int ba = beurt(a), bb = beurt(b);
        return ba != bb ? ba < bb : u->plek[a].blok < u->plek[b].blok;
    });
    uint8_t stuk[SYSSTUK];
    for (size_t i = 0; i < volgorde.size();) {
        const int32_t blok = u->plek[volgorde[i]].blok;
        int32_t n = 0;
        for (; n < PERKEER && i + static_cast<size_t>(n) < volgorde.size(); n++) {
            const size_t p = volgorde[i + static_cast<size_t>(n)];
            if (u->plek[p].blok != blok + n || beurt(p) != beurt(volgorde[i]))
                break;
            memcpy(stuk + n * IXBLOK, u->blok(p), IXBLOK);
        }
        if (!(blok >= eerste_nieuwe ? voeg_achter(u, icb, stuk, n) : overschrijf(icb, blok, stuk, n)))
            return false;
        for (; n > 0; n--, i++) {
            u->plek[volgorde[i]].vuil = false;
            u->vuil--;
        }
    }
    IXVERGEETNA(icb);
    return true;
}

} // namespace

Uitstelling UITSTELRUIMTE(ICB* icb, size_t blokken, int32_t oud, int32_t nieuw) {
    Uitstel* u = vind(icb->idxfd);
    if (blokken > UITSTELMAX / 2 || (u && u->icb != icb))
        return U_NIET;
    if (!u) {
        try {
            u = alle.emplace_back(std::make_unique<Uitstel>(icb, UITSTELMAX)).get();
        } catch (const std::bad_alloc&) {
            return U_NIET;
        }
    }
    if (u->op_schijf == ONBEKEND) {
        eis_lengte(icb, oud);
        u->op_schijf = oud;
    }
    if (u->plek.size() + blokken > u->max) {
        if (!schrijf_alles(u, icb))
            return U_GEWEIGERD;
        u->ruim_op();
    }
    return vraag_ruimte(u, nieuw);
}

void UITSTELZET(const ICB* icb, int32_t blok, const void* inhoud) {
    van(icb)->zet(blok, inhoud, true);
}

bool UITSTELUIT(ICB* icb) {
    Uitstel* u = van(icb);
    if (!u)
        return true;
    if (!schrijf_alles(u, icb))
        return false;
    u->leeg();
    u->op_schijf = ONBEKEND;
    u->ruimte = 0;
    return true;
}

void UITSTELAF(ICB* icb) {
    Uitstel* u = van(icb);
    if (!u)
        return;
    if (!schrijf_alles(u, icb)) {
        icb->h.busy = 1;
        IXSCHIJFFOUT(icb, icb->idxfd, int64_t{u->op_schijf} * IXBLOK, IXBLOK);
    }
    if (u->op_schijf != ONBEKEND && u->ruimte > u->op_schijf)
        static_cast<void>(SYS.ftruncate(icb->idxfd, int64_t{u->op_schijf} * IXBLOK));
    UITSTELWEG(icb);
}

void UITSTELWEG(const ICB* icb) {
    std::erase_if(alle, [icb](const auto& u) { return u->icb == icb; });
}

bool UITSTELLEES(int idxfd, int32_t blok, void* doel, size_t n) {
    const Uitstel* u = alle.empty() ? nullptr : vind(idxfd);
    const uint32_t p = u ? u->tafel[u->zoek(blok)] : 0;
    if (!p)
        return false;
    memcpy(doel, u->blok(p - 1), n);
    return true;
}

int32_t UITSTELSTAND(int idxfd, int32_t anders) {
    const Uitstel* u = alle.empty() ? nullptr : vind(idxfd);
    return u && u->op_schijf != ONBEKEND ? u->op_schijf : anders;
}

void UITSTELBEWAAR(int idxfd, int32_t blok, const void* inhoud) {
    Uitstel* u = alle.empty() ? nullptr : vind(idxfd);
    if (u && u->op_schijf != ONBEKEND && u->plek.size() < u->max / 2 &&
        static_cast<const IXKNOOP*>(inhoud)->level > 1)
        u->zet(blok, inhoud, false);
}

} // namespace zg

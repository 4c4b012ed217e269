// The walk of order/ordloop.h.
#include "order/ordloop.h"
#include "order/ordrec.h"
#include "shared/syscalls.h"
#include <cstring>

namespace zg {

void ordloop_begin(ordloop* l, int fd, int64_t van, int64_t tot, size_t blok) {
    l->fd = fd;
    l->tot = tot;
    l->blok.resize(blok);
    l->blokstart = van;
    l->geldig = l->plaats = 0;
    l->bij_einde = false;
}

void ordloop_naar(ordloop* l, int64_t plaats) {
    if (plaats >= l->blokstart && plaats <= l->blokstart + static_cast<int64_t>(l->geldig))
        l->plaats = static_cast<size_t>(plaats - l->blokstart);
    else
        ordloop_begin(l, l->fd, plaats, l->tot, l->blok.size());
}

namespace {
// Keep what was not used yet and read on behind it.
bool vul_aan(ordloop* l) {
    size_t rest = l->geldig - l->plaats;
    memmove(l->blok.data(), l->blok.data() + l->plaats, rest);
    l->blokstart += static_cast<int64_t>(l->plaats);
    l->plaats = 0;
    int64_t leesplaats = l->blokstart + static_cast<int64_t>(rest);
    int64_t over = l->tot - leesplaats;
    size_t wil = l->blok.size() - rest;
    if (over < static_cast<int64_t>(wil))
        wil = over > 0 ? static_cast<size_t>(over) : 0;
    ssize_t n = SYSLEES(l->fd, l->blok.data() + rest, wil, leesplaats);
    if (n < 0)
        return false;
    l->geldig = rest + static_cast<size_t>(n);
    if (static_cast<size_t>(n) < l->blok.size() - rest)
        l->bij_einde = true;
    return true;
}
} // namespace

loopstand ordloop_volgende(ordloop* l, ordrauw* uit) {
    for (;;) {
        size_t over = l->geldig - l->plaats;
        if (over) {
            const uint8_t* p = l->blok.data() + l->plaats;
            int lengte = ord_lengte(static_cast<char>(*p));
            uit->tag = static_cast<char>(*p);
            uit->offset = l->blokstart + static_cast<int64_t>(l->plaats);
            uit->data = p;
            uit->lengte = static_cast<size_t>(lengte + 1);
            if (lengte < 0)
                return LOOP_TAG;
            if (uit->lengte <= over) {
                l->plaats += uit->lengte;
                return LOOP_RECORD;
            }
            if (l->bij_einde)
                return LOOP_KORT;
        } else if (l->bij_einde) {
            return LOOP_EINDE;
        }
        if (!vul_aan(l))
            return LOOP_FOUT;
    }
}

size_t ordloop_reeks(ordloop* l, char tag) {
    const size_t lengte = static_cast<size_t>(ord_lengte(tag) + 1), begin = l->plaats;
    size_t plaats = begin;
    while (lengte && plaats + lengte <= l->geldig && l->blok[plaats] == static_cast<uint8_t>(tag))
        plaats += lengte;
    l->plaats = plaats;
    return plaats - begin;
}

} // namespace zg

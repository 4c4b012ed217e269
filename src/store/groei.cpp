// Growing a tree in ranks. A level is a list of nodes by first rank, kept in runs of neighbours; the children of a
// node are the next `aantal` nodes of the level below, the ranks of a leaf the bits set from its first rank on.
#include "store/groei.h"
#include "store/node.h"
#include <algorithm>
#include <bit>

namespace zg {

constexpr int32_t BLOKMAX = 2147483644;

Groei::Niveau Groei::een(int32_t blok, uint8_t aantal) {
    Niveau n;
    n.deel.push_back(std::make_unique<Deel>());
    n.deel[0]->n = 1;
    n.deel[0]->begin[0] = 0;
    n.deel[0]->blok[0] = blok;
    n.deel[0]->aantal[0] = aantal;
    n.begin.push_back(0);
    n.lengte = 1;
    return n;
}

Groei::Groei(int32_t wortel, int maxent, int64_t aantal)
    : wortel_(wortel), maxent_(maxent), links_(maxent * 7 / 10), er_(static_cast<size_t>(aantal / 64 + 1)) {
    niveau_.push_back(een(wortel, 1));
}

// Place of the last number that is not above x, of n ascending ones of which the first is not. Without jumps: which way
// the search goes is not to be foretold.
static size_t laatste_tot(const uint32_t* p, size_t n, uint32_t x) {
    const uint32_t* begin = p;
    while (n > 1) {
        size_t half = n / 2;
        p += p[half] <= x ? half : 0;
        n -= half;
    }
    return static_cast<size_t>(p - begin);
}

Groei::Plaats Groei::zoek(const Niveau& n, uint32_t rang) {
    size_t d = laatste_tot(n.begin.data(), n.begin.size(), rang);
    return {d, laatste_tot(n.deel[d]->begin, n.deel[d]->n, rang)};
}

void Groei::voeg_achter(Niveau& n, Plaats p, uint32_t begin, int32_t blok, uint8_t aantal) {
    n.lengte++;
    if (n.deel[p.deel]->n == DEELMAX) {
        // A list that grows at its end stays full behind that end.
        size_t blijft = p.deel + 1 == n.deel.size() && p.i + 1 == DEELMAX ? DEELMAX - 1 : DEELMAX / 2;
        n.deel.insert(n.deel.begin() + static_cast<ptrdiff_t>(p.deel) + 1, std::make_unique<Deel>());
        Deel &a = *n.deel[p.deel], &b = *n.deel[p.deel + 1];
        b.n = a.n - blijft;
        std::copy_n(a.begin + blijft, b.n, b.begin);
        std::copy_n(a.blok + blijft, b.n, b.blok);
        std::copy_n(a.aantal + blijft, b.n, b.aantal);
        a.n = blijft;
        n.begin.insert(n.begin.begin() + static_cast<ptrdiff_t>(p.deel) + 1, b.begin[0]);
        if (p.i >= blijft)
            p = {p.deel + 1, p.i - blijft};
    }
    Deel& d = *n.deel[p.deel];
    size_t naar = p.i + 1;
    std::copy_backward(d.begin + naar, d.begin + d.n, d.begin + d.n + 1);
    std::copy_backward(d.blok + naar, d.blok + d.n, d.blok + d.n + 1);
    std::copy_backward(d.aantal + naar, d.aantal + d.n, d.aantal + d.n + 1);
    d.begin[naar] = begin;
    d.blok[naar] = blok;
    d.aantal[naar] = aantal;
    d.n++;
}

// First rank of what goes to the right when the node that begins at `begin` is split.
uint32_t Groei::grens(size_t niveau, uint32_t begin) const {
    int over = links_;
    if (niveau > 0) {
        const Niveau& onder = niveau_[niveau - 1];
        Plaats p = zoek(onder, begin);
        for (p.i += static_cast<size_t>(over); p.i >= onder.deel[p.deel]->n;)
            p.i -= onder.deel[p.deel++]->n;
        return onder.deel[p.deel]->begin[p.i];
    }
    size_t w = begin / 64;
    uint64_t bits = er_[w] & (~uint64_t{0} << begin % 64);
    for (int n; (n = std::popcount(bits)) < over; bits = er_[++w])
        over -= n;
    while (--over)
        bits &= bits - 1;
    return static_cast<uint32_t>(w * 64 + static_cast<size_t>(std::countr_zero(bits)) + 1);
}

bool Groei::splits(size_t niveau, Plaats p, int32_t* nblocks) {
    if (*nblocks > BLOKMAX)
        return false;
    Deel& d = *niveau_[niveau].deel[p.deel];
    uint32_t begin = d.begin[p.i], rechts = grens(niveau, begin);
    int32_t blok = d.blok[p.i];
    bool wortel = niveau + 1 == niveau_.size();
    d.blok[p.i] = (*nblocks)++; // the left part always moves to a new block
    d.aantal[p.i] = static_cast<uint8_t>(links_);
    if (wortel)
        blok = (*nblocks)++; // the root never moves, so its right part does
    voeg_achter(niveau_[niveau], p, rechts, blok, static_cast<uint8_t>(maxent_ - links_));
    if (wortel) {
        if (niveau_.size() == KNOOPNIVEAUS)
            return false;
        niveau_.push_back(een(wortel_, 2));
        return true;
    }
    Plaats ouder = zoek(niveau_[niveau + 1], begin);
    return ++niveau_[niveau + 1].deel[ouder.deel]->aantal[ouder.i] != maxent_ ||
           splits(niveau + 1, ouder, nblocks);
}

bool Groei::voeg(uint32_t rang, int32_t* nblocks) {
    const Niveau& bladen = niveau_[0];
    Plaats p = laatste_;
    const Deel& d = *bladen.deel[p.deel];
    if (d.begin[p.i] > rang || p.i + 1 >= d.n || d.begin[p.i + 1] <= rang)
        p = zoek(bladen, rang);
    laatste_ = p;
    er_[rang / 64] |= uint64_t{1} << rang % 64;
    return ++niveau_[0].deel[p.deel]->aantal[p.i] != maxent_ || splits(0, p, nblocks);
}

bool Groei::volgende(int niveau, Loop* loop, Knoop* knoop) const {
    const Niveau& n = niveau_[static_cast<size_t>(niveau - 1)];
    if (loop->deel >= n.deel.size())
        return false;
    const Deel& d = *n.deel[loop->deel];
    *knoop = {d.blok[loop->i], d.aantal[loop->i]};
    if (++loop->i == d.n)
        *loop = {loop->deel + 1, 0};
    return true;
}

} // namespace zg

// The memory and the rules of order/verdelen.h.
#include "order/verdelen.h"
#include "order/meld.h"
#include "order/programma.h"
#include "order/regelstam.h"
#include "order/register.h"
#include "order/wrk.h"
#include "shared/filveld.h"
#include "shared/maatbalk.h"
#include "shared/report.h"
#include <algorithm>
#include <cstring>
#include <map>
#include <numeric>

namespace zg {

namespace {

constexpr uint8_t PER_MAAT = 4;             // of instel15.optie13: a memory for each size
constexpr int64_t STUKKENGRENS = 1LL << 46; // times the sum of 250 weights stays within 64 bits

struct Verdeling {
    ordmodel model;
    std::vector<int64_t> stukken; // given, by column and branch; per column the sum behind them
    std::vector<int32_t> gewicht; // by branch
    int64_t som;                  // of the weights
};
Verdeling nu; // no model: `gewicht` is empty

// The pieces of a size's column: firma.filialen cells and their sum.
int64_t* kolom(int maat) {
    const int k = instel15.optie13 & PER_MAAT ? maat : 0;
    return nu.stukken.data() + static_cast<size_t>(k) * (nu.gewicht.size() + 1);
}

int64_t tekort(const int64_t* stukken, size_t filiaal) {
    return stukken[nu.gewicht.size()] * nu.gewicht[filiaal] - stukken[filiaal] * nu.som;
}

void toets_start(int filiaal, int maat) {
    if (nu.gewicht.empty() || filiaal < 0 || filiaal >= std::ssize(nu.gewicht) || maat < 1 || maat > MATEN)
        INTERNAL("verdelen", 1);
}

bool zelfde_model(const ordmodel& a, const ordmodel& b) {
    return a.merk == b.merk && a.maatsoort == b.maatsoort && memcmp(a.model, b.model, sizeof a.model) == 0;
}

// One size being divided: what is left of it, and what each branch gets on top of what it has.
struct Maatdeling {
    const aantalmatrix& matrix;
    int maat, rest, magazijn; // branches: of what nobody gets, the group's warehouse or -1
    int64_t over;
    std::vector<int64_t> krijgt;

    int64_t heeft(size_t f) const { return matrix_cel(matrix, static_cast<int>(f), maat) + krijgt[f]; }
    void geef(size_t f, int64_t aantal) {
        krijgt[f] += aantal;
        over -= aantal;
        verdeel_boek(static_cast<int>(f), maat, aantal);
    }
    // To the branch of the rest, which is not booked.
    void geef_rest(int64_t aantal) {
        krijgt[static_cast<size_t>(rest)] += aantal;
        over -= aantal;
    }
};

// By numbers: everyone his own, the rest to one branch, as long as there is enough for that.
void ronde_aantal(Maatdeling& d) {
    if (d.over < nu.som)
        return;
    const int zonder = regelgroep.vlaggen & ART_GEEN_VERKOOP ? d.magazijn : -1;
    for (size_t f = 0; f < nu.gewicht.size(); f++)
        if (static_cast<int>(f) != zonder)
            d.geef(f, nu.gewicht[f]);
    d.geef_rest(d.over);
}

// By priority: everyone the minimum, the warehouse its percentage of what there was.
void ronde_minimum(Maatdeling& d) {
    const auto mee = std::count_if(nu.gewicht.begin(), nu.gewicht.end(), [](int32_t w) { return w > 0; });
    if (d.over < int64_t{regelgroep.minimum} * mee)
        return;
    const int64_t deel = (int64_t{regelgroep.magazijnpct} * d.over + 50) / 100; // rounded
    for (size_t f = 0; f < nu.gewicht.size(); f++)
        if (nu.gewicht[f])
            d.geef(f, regelgroep.minimum);
    d.geef_rest(std::min(deel, d.over));
}

// One piece for everyone below the minimum, as long as there is one for each.
void rondes_bijvullen(Maatdeling& d) {
    for (;;) {
        std::vector<size_t> onder;
        for (size_t f = 0; f < nu.gewicht.size(); f++)
            if (nu.gewicht[f] && d.heeft(f) < regelgroep.minimum)
                onder.push_back(f);
        if (onder.empty() || d.over < std::ssize(onder))
            return;
        for (size_t f : onder)
            d.geef(f, 1);
    }
}

// The branches that still get pieces of one size, in heaps by weight: with every piece the deficits of one weight rise
// alike, so their order within a heap stays, and only the tops are compared.
struct Mee {
    int64_t tekort; // without what the pieces given meanwhile brought: its weight times Rij::gegeven
    int64_t ruimte; // pieces that it may still get
    int64_t kreeg, kreeg_ronde;
    int64_t begin; // deficit at the begin of the round
    int32_t gewicht;
    size_t filiaal;
};
struct Rij {
    std::vector<Mee> mee;
    std::vector<std::vector<size_t>> hopen; // places in `mee`, each a heap of one weight
    int64_t gegeven = 0;

    int64_t tekort(const Mee& m) const { return m.tekort + m.gewicht * gegeven; }
    auto lager() const {
        return [this](size_t a, size_t b) { // ties keep the lower branch
            return mee[a].tekort != mee[b].tekort ? mee[a].tekort < mee[b].tekort : a > b;
        };
    }
    void maak_hopen() {
        for (auto& hoop : hopen)
            std::make_heap(hoop.begin(), hoop.end(), lager());
    }
    // The heap with the greatest deficit on top; null when nobody gets any more.
    std::vector<size_t>* beste() {
        std::vector<size_t>* uit = nullptr;
        for (auto& hoop : hopen) {
            if (hoop.empty())
                continue;
            const size_t i = hoop[0], j = uit ? (*uit)[0] : i;
            const int64_t ti = tekort(mee[i]), tj = tekort(mee[j]);
            if (!uit || ti > tj || (ti == tj && i < j))
                uit = &hoop;
        }
        return uit;
    }
};

// A round is over in which some branches got pieces and others none. When the deficits of those went down alike, what
// follows is the same round again, until the pieces are out or another one's deficit may reach theirs, whose lowest
// winner was `laagste`: so many times, at once. Answers the length at which a round can repeat itself.
int64_t herhaal_ronde(Rij& rij, int64_t lengte, int64_t over, int64_t laagste) {
    int64_t daling = 0, som = 0, aantal = 0, deler = 0;
    bool gelijk = true;
    for (const Mee& m : rij.mee)
        if (m.kreeg_ronde) {
            const int64_t d = rij.tekort(m) - m.begin;
            gelijk = gelijk && (aantal == 0 || d == daling);
            daling = d, som += m.gewicht, aantal++;
        }
    int64_t keren = over / lengte;
    for (const Mee& m : rij.mee) {
        if (m.kreeg_ronde)
            deler = std::gcd(deler, m.gewicht * aantal + nu.som - som);
        else if (gelijk) // then it isn't above 0
            keren = std::min(keren, (laagste - rij.tekort(m) - 1) / (lengte * m.gewicht - daling));
    }
    if (gelijk && keren > 0) {
        for (Mee& m : rij.mee) {
            m.kreeg += keren * m.kreeg_ronde;
            m.tekort -= keren * m.kreeg_ronde * nu.som;
        }
        rij.gegeven += keren * lengte;
        rij.maak_hopen();
    }
    for (Mee& m : rij.mee)
        m.kreeg_ronde = 0, m.begin = rij.tekort(m);
    const int64_t kortst = nu.som * aantal / std::gcd(deler, nu.som * aantal);
    return (nu.som + kortst - 1) / kortst * kortst; // long enough for everybody in turn to be seen
}

// Piece by piece to the greatest deficit: by priority among all, by numbers among those below theirs, which is compared
// to the low byte of what they have.
void stuk_voor_stuk(Maatdeling& d, bool tot_aantal) {
    Rij rij;
    const int64_t* stukken = kolom(d.maat);
    std::map<int32_t, std::vector<size_t>> per_gewicht;
    for (size_t f = 0; f < nu.gewicht.size(); f++) {
        const int64_t ruimte = tot_aantal ? nu.gewicht[f] - static_cast<uint8_t>(d.heeft(f)) : d.over;
        if (!nu.gewicht[f] || ruimte <= 0)
            continue;
        per_gewicht[nu.gewicht[f]].push_back(rij.mee.size());
        const int64_t t = tekort(stukken, f);
        rij.mee.push_back({t, ruimte, 0, 0, t, nu.gewicht[f], f});
    }
    for (auto& [gewicht, plaatsen] : per_gewicht)
        rij.hopen.push_back(std::move(plaatsen));
    rij.maak_hopen();
    int64_t lengte = nu.som, in_ronde = 0, laagste = INT64_MAX;
    while (rij.gegeven < d.over) {
        auto* hoop = rij.beste();
        if (!hoop)
            break;
        std::pop_heap(hoop->begin(), hoop->end(), rij.lager());
        Mee& m = rij.mee[hoop->back()];
        laagste = std::min(laagste, rij.tekort(m));
        m.tekort -= nu.som;
        m.kreeg++, m.kreeg_ronde++;
        rij.gegeven++;
        if (m.kreeg < m.ruimte)
            std::push_heap(hoop->begin(), hoop->end(), rij.lager());
        else
            hoop->pop_back();
        if (!tot_aantal && ++in_ronde == lengte) {
            lengte = herhaal_ronde(rij, lengte, d.over - rij.gegeven, laagste);
            in_ronde = 0, laagste = INT64_MAX;
        }
    }
    for (const Mee& m : rij.mee)
        d.geef(m.filiaal, m.kreeg);
}

void verdeel_maat(Maatdeling& d) {
    const bool aantal = regelgroep.verdeelsoort == 'A';
    if (aantal)
        ronde_aantal(d);
    else
        ronde_minimum(d);
    rondes_bijvullen(d);
    if (aantal || regelgroep.verdeelsoort == 'P')
        stuk_voor_stuk(d, aantal);
    d.geef_rest(d.over);
}

// The pieces of the other lines of the model where the register holds them. What is of another model is known without its
// labels.
void herbouw_register(const orderregel& regel, const ors_ingang* eigen) {
    regelloop loop;
    regelloop_begin(&loop);
    orderregel ander;
    Serie serie;
    labelsom som;
    ors_ingang in{};
    for (bool er = ors_lees('F', &in); er; er = ors_lees('N', &in))
        if (!(eigen && eigen->d == in.d) && regel_som(&loop, in, &ander, &serie, &som) &&
            zelfde_model(ander.model, regel.model) && regel_volledig(&loop, in, &ander))
            regel_besteld(ander, [](const levcel& cel) { verdeel_boek(cel.filiaal, cel.maat, cel.aantal); });
}

} // namespace

void verdeel_start(const ordmodel& m, const uint8_t* uitgesloten) {
    if (std::ssize(nu.gewicht) == firma.filialen && zelfde_model(nu.model, m))
        return;
    nu.model = m;
    nu.gewicht.assign(firma.filialen, 0);
    nu.som = 0;
    for (int f = 0; f < firma.filialen && regelgroep.artikelgroep != 0; f++)
        if (!fil_in(uitgesloten, f))
            nu.som += nu.gewicht[static_cast<size_t>(f)] = regelgroep.perfiliaal[f];
    nu.stukken.assign((firma.filialen + size_t{1}) * MAATKOLOMMEN, 0);
}

void verdeel_vrij() {
    nu = {};
}

void verdeel_boek(int filiaal, int maat, int64_t aantal) {
    toets_start(filiaal, maat);
    int64_t* stukken = kolom(maat);
    int64_t& som = stukken[nu.gewicht.size()];
    if (som + aantal > STUKKENGRENS)
        return; // only a damaged file holds so many
    stukken[filiaal] += aantal;
    som += aantal;
}

void verdeel_herbouw(const orderregel& regel, const ors_ingang* eigen, uint16_t tot) {
    verdeel_vrij();
    verdeel_start(regel.model, regel_uitgesloten());
    for (const levterm& term : regel.termen)
        if (term.tot != tot)
            for (const levcel& cel : term.cellen)
                verdeel_boek(cel.filiaal, cel.maat, cel.aantal);
    if (!werk)
        return;
    if (registermodus)
        return herbouw_register(regel, eigen);
    ordloop l;
    ordrauw r;
    ordloop_begin(&l, werk->fd, 0, INT64_MAX);
    bool ons_model = false, telt = false;
    while (ord_verder(werk, &l, &r)) {
        if (r.tag == 'F' && telt) {
            ordfil f;
            memcpy(&f, r.data + 1, sizeof f);
            if (f.filiaal < firma.filialen && f.maat >= 1 && f.maat <= MATEN && f.aantal > 0)
                verdeel_boek(f.filiaal, f.maat, f.aantal);
        } else if (r.tag == 'M') {
            ordmodel m;
            memcpy(&m, r.data + 1, sizeof m);
            ons_model = zelfde_model(m, regel.model);
            telt = false;
        } else if (r.tag == 'D') {
            telt = ons_model && !(eigen && eigen->d == r.offset);
        }
    }
}

int bronrij(const aantalmatrix& matrix) {
    const int een = een_filiaal(matrix), magazijn = regel_magazijn();
    return een == firma.filialen && magazijn >= 0 ? magazijn : een;
}

int restrij(int bron) {
    const int magazijn = regel_magazijn();
    return magazijn >= 0 ? magazijn : bron == firma.filialen ? 0 : bron;
}

void auto_verdelen(aantalmatrix* matrix) {
    const int bron = bronrij(*matrix), rest = restrij(bron), magazijn = regel_magazijn();
    if (bron == firma.filialen)
        return;
    verdeel_start(regel_nu.model, regel_uitgesloten());
    for (int k = 1; k <= balk_kolommen(); k++) {
        const int maat = balk_maat(k);
        const int32_t stuks = matrix_cel(*matrix, bron, maat);
        if (stuks <= 0)
            continue;
        fmset(matrix, bron, maat, 0);
        Maatdeling d{*matrix, maat, rest, magazijn, stuks, std::vector<int64_t>(firma.filialen, 0)};
        verdeel_maat(d);
        for (int f = 0; f < firma.filialen; f++)
            fmadd(matrix, f, maat, static_cast<int32_t>(d.krijgt[static_cast<size_t>(f)]));
    }
}

} // namespace zg

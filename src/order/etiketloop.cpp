// Labels of one series read and changed, see order/etiketloop.h.
#include "order/etiketloop.h"
#include "order/register.h"
#include "order/teksten.h"
#include "shared/iomaat.h"
#include "shared/sysrec.h"
#include "shared/teksten.h"

namespace zg {

namespace {

// Blocks leave a chain all at once, with the counts: a series that counts more than its chain has places has lost a part of
// it. Less is what a kill leaves.
bool telling_past(const serrec& s, int64_t plaatsen) {
    int64_t som = 0;
    bool past = true;
    for (const int32_t n : {s.in_nota, s.voorraad, s.verkopen, s.correcties}) {
        past = past && n >= 0;
        som += n;
    }
    if (past && som <= plaatsen)
        return true;
    ioeti_keur_af(s.etiketkop == -1 ? -ETIPLAATSEN : s.etiketkop * ETIPLAATSEN + 1, TXT(T_ETI_GETELD));
    return false;
}

} // namespace

bool etiketten_loop(const serrec& serie, const std::function<void(int32_t, const etiket&)>& doe) {
    int32_t eerste = serie.etiketkop, nummer = eerste;
    const etiketketen in_hand(serie.serie, &eerste);
    etiket label;
    int er = eerste == -1 ? 0 : ioeti('F', &nummer, &label);
    for (; er > 0; er = ioeti('N', &nummer, &label))
        doe(nummer, label);
    return er == 0 && telling_past(serie, eerste == -1 ? 0 : ioeti_plaatsen());
}

bool etiket_past(int32_t nummer, const etiket& label) {
    if (label.maat >= 1 && label.maat <= MATEN && label.filiaal < firma.filialen)
        return true;
    ioeti_keur_af(nummer, TXT(T_REG_CEL));
    return false;
}

bool etiketten_order(const serrec& serie, genummerd* koers, const std::function<void(const etiket&)>& doe) {
    *koers = {};
    bool past = true;
    const bool heel = etiketten_loop(serie, [&](int32_t nummer, const etiket& l) {
        if (!past || !label_van_order(l) || !(past = etiket_past(nummer, l)))
            return;
        const etiket& k = koers->label;
        if (k.status != ETI_ORDER && (l.status == ETI_ORDER || !k.status || l.levering_tot > k.levering_tot))
            *koers = {nummer, l};
        doe(l);
    });
    return heel && past;
}

bool etiketten_zoek(const serrec& serie, const std::function<bool(const etiket&)>& welke,
                    std::vector<genummerd>* uit) {
    const bool heel = etiketten_loop(serie, [&](int32_t nummer, const etiket& label) {
        if (welke(label))
            uit->push_back({nummer, label});
    });
    bool past = heel;
    for (size_t i = 0; past && i < uit->size(); i++)
        past = etiket_past((*uit)[i].nummer, (*uit)[i].label);
    if (!past)
        ioeti_schademeld(serie.serie);
    return past;
}

bool etiketwijziging::schrijf(const genummerd& oud, const etiket& nieuw) {
    int32_t nummer = oud.nummer;
    etiket label = nieuw;
    if (!ioeti('W', &nummer, &label))
        return terug();
    was_.push_back(oud);
    return true;
}

bool etiketwijziging::wis(const genummerd& oud) {
    int32_t nummer = oud.nummer;
    etiket label;
    ioeti('R', &nummer, &label);
    if (ioeti('D', &nummer, &label) < 0)
        return terug();
    was_.push_back(oud);
    return true;
}

bool etiketwijziging::nieuw(const etiket& van) {
    int32_t nummer = 0;
    etiket label = van;
    if (!ioeti('W', &nummer, &label))
        return terug();
    was_.push_back({nummer, {}});
    return true;
}

bool etiketwijziging::terug() {
    std::vector<genummerd> was;
    was.swap(was_);
    for (size_t i = was.size(); i-- > 0;) {
        genummerd& oud = was[i];
        etiket label;
        if (oud.label.status) {
            if (!ioeti('W', &oud.nummer, &oud.label))
                break;
        } else {
            ioeti('R', &oud.nummer, &label);
            if (ioeti('D', &oud.nummer, &label) < 0)
                break;
        }
    }
    return false;
}

} // namespace zg

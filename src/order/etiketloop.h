// Labels of one series read and changed, for the order's side of the registration. A change is read first and written
// then: damage is met before anything is written, and a refused write takes back what went before it.
#pragma once
#include "shared/ioeti.h"
#include <functional>
#include <vector>

namespace zg {

struct genummerd {
    int32_t nummer;
    etiket label;
};

// All labels of a series' chain. False when it is damaged (ioeti_schade); nothing is told.
bool etiketten_loop(const serrec& serie, const std::function<void(int32_t, const etiket&)>& doe);
// Those of this order, ever ordered; *koers becomes the one that tells the rate of the first purchase: the first on order,
// else the one with the highest term, status 0 without any. False when the chain is damaged, or one of them has a size or
// branch that there isn't (ioeti_schade); nothing is told.
bool etiketten_order(const serrec& serie, genummerd* koers, const std::function<void(const etiket&)>& doe);
// Those for which `welke` says yes. False, told, when the chain is damaged or one of them has a size or branch that there
// isn't.
bool etiketten_zoek(const serrec& serie, const std::function<bool(const etiket&)>& welke,
                    std::vector<genummerd>* uit);
// Size and branch of a label of this order; a wrong one is noted as damage of its block.
bool etiket_past(int32_t nummer, const etiket& label);

// The sums of a series (labels_som, order/register.h) hold no longer: a label of it is to be changed.
void labels_som_vergeet(const seriesleutel& serie);

// Changes of labels of a series whose lock is held: *eerste is its first block, which a first label fills in. A call that
// answers false was refused, told: what was done before it is taken back, as far as the disk allows.
class etiketwijziging {
public:
    etiketwijziging(const seriesleutel& serie, int32_t* eerste) : keten_(serie, eerste) {
        labels_som_vergeet(serie);
    }
    bool schrijf(const genummerd& oud, const etiket& nieuw);
    bool wis(const genummerd& oud);
    bool nieuw(const etiket& label);
    bool terug(); // none of it: always false

private:
    etiketketen keten_;
    std::vector<genummerd> was_; // status 0: there was none
};

} // namespace zg

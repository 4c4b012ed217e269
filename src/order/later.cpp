// What doesn't stand yet, see order/later.h. Each row goes when its module comes.
#include "order/later.h"
#include "order/register.h"
#include "order/teksten.h"
#include "term/prompt.h"

namespace zg {

bool nog_niet_beschikbaar() {
    MELDBOX(MELD_INFO, TXT(T_NOG_NIET_BESCHIKBAAR), nullptr, nullptr);
    return false;
}

// Of registerprijs.cpp.
bool prijsset_bij(const orderregel&, bool* veranderd) {
    return *veranderd = false, true;
}
bool label_prijzen(const orderregel&, const prijsrijen&) {
    return true;
}
bool order_korting(int16_t) {
    return false;
}
bool korting_herstel() {
    return true;
}

} // namespace zg

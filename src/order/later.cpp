// What doesn't stand yet, see order/later.h. Each row goes when its module comes.
#include "order/later.h"
#include "order/teksten.h"
#include "term/prompt.h"

namespace zg {

bool nog_niet_beschikbaar() {
    MELDBOX(MELD_INFO, TXT(T_NOG_NIET_BESCHIKBAAR), nullptr, nullptr);
    return false;
}

} // namespace zg

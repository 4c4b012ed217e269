#include "shared/dagtekst.h"
#include "term/datum.h"

namespace zg {

bool is_dag(uint16_t nr) {
    char t[9];
    DATUMTEKST(t, nr, true);
    return nr != 0 && DATUMNR(t) == nr;
}

std::string dag_tekst(uint16_t nr) {
    if (nr == 0)
        return {};
    if (!is_dag(nr))
        return "#" + std::to_string(nr);
    char t[9];
    DATUMTEKST(t, nr, true);
    return std::string(t + 4, 4) + "-" + std::string(t + 2, 2) + "-" + std::string(t, 2);
}

} // namespace zg

// Till mutations, see shared/mutatie.h.
#include "shared/mutatie.h"
#include "shared/sysrec.h"

namespace zg {

bool kassakoppeling() {
    return (firma.vlag30 & 4) != 0;
}

void mutatie(char, const std::string&) {}

} // namespace zg

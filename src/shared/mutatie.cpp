// Till mutations, see shared/mutatie.h.
#include "shared/mutatie.h"
#include "shared/sysrec.h"

namespace zg {

bool (*MUTATIEHAAK)(char letter, const std::string& inhoud);

bool kassakoppeling() {
    return (firma.vlag30 & 4) != 0;
}

bool mutatie(char letter, const std::string& inhoud) {
    return !kassakoppeling() || !MUTATIEHAAK || MUTATIEHAAK(letter, inhoud);
}

} // namespace zg

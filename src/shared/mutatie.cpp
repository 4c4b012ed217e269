// Till mutations, see shared/mutatie.h.
#include "shared/mutatie.h"
#include "shared/sysrec.h"
#include <algorithm>
#include <vector>

namespace zg {

bool (*MUTATIEHAAK)(std::span<const Mutatie> mutaties);

namespace {
std::vector<Mutatie> bewaard;
bool houden;
} // namespace

bool kassakoppeling() {
    return (firma.vlag30 & 4) != 0;
}

bool mutatie(char letter, const std::string& inhoud) {
    const Mutatie m{letter, inhoud};
    if (kassakoppeling() && std::find(bewaard.begin(), bewaard.end(), m) == bewaard.end())
        bewaard.push_back(m);
    return houden || mutaties_stuur();
}

void mutaties_houd() {
    houden = true;
}

bool mutaties_stuur() {
    houden = false;
    std::vector<Mutatie> weg;
    weg.swap(bewaard);
    return weg.empty() || !MUTATIEHAAK || MUTATIEHAAK(weg);
}

} // namespace zg

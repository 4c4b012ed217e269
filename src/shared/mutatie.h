// What the tills must hear of. Master data modules tell it here; the files that carry it don't stand yet, so nothing
// is written.
#pragma once
#include <string>

namespace zg {

bool kassakoppeling(); // are tills linked? (system record 1)
// A mutation for all tills: the letter of its kind ('G', 'W', code 73 is 'I') and its data.
void mutatie(char letter, const std::string& inhoud);

} // namespace zg

// Module serdel: a series goes, with everything that hangs from it in all files of the package.
#pragma once
#include "shared/registerrec.h"

namespace zg {

struct ICB;

// The caller holds the series' lock. With `vraag` first the checks, the summary of its labels and the question. True when
// the series is gone. DTSER null: serdel INTERNAL 1; codes not open: 2; picture links that can't be opened: 3. What a kill
// leaves can be deleted again: the record itself goes near the end.
// *geweigerd: it was begun, and the disk refused.
bool serie_verwijderen(ICB* dtser, serrec* serie, bool vraag, bool* geweigerd = nullptr);

} // namespace zg

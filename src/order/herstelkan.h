// Can an order whose session was broken off be restored, and how? Asked by the program, which then does it, and by the check.
#pragma once
#include "order/ordrec.h"

namespace zg {

enum herstelstand {
    HERSTEL_NIET,
    HERSTEL_AL, // the journal has it already
    HERSTEL_DOEN,
    HERSTEL_LATER, // out of reach just now
};

// Does an ACT file mean something?
bool herstel_act(const act_record& act);
// By a work file and its journal, open for reading; one that isn't there is as an empty one. What can't be read ends in the
// report. Filled as far as it came: the lines of the work file, the status of the order in the journal, and whether the full
// registration has nothing of it. Never HERSTEL_LATER.
herstelstand herstel_kan(int wrk, int jrn, const act_record& act, int32_t* regels, uint8_t* status,
                         bool* zonder_register);

} // namespace zg

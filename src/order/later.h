// What the order line screen offers and other modules of the order program provide: adding, duplicating and
// editing lines, and the series behind them in the full registration. A row that is null is not there yet;
// the screen then says "Geen informatie". The modules hang themselves in here at the start of the program.
#pragma once
#include "order/wrk.h"

namespace zg {

struct regeldiensten {
    bool (*toevoegen)();                   // true when lines came
    bool (*bijbestellen)();                // the same, full registration only
    bool (*dupliceren)(const ors_ingang&); // the same
    void (*matrix)();                      // the order matrix
    bool (*model)(bool lezen);             // screens on the shared line: true when it changed
    bool (*dessin)(bool lezen);
    bool (*prijzen)(bool lezen);
    bool (*aantallen)(bool lezen);
    // Full registration: load the series of the shared line. 1 it is the line's own, 0 gone, -1 another
    // series has taken over its number.
    int (*serie_laad)(bool vergrendel);
    bool (*regel_weg)();     // before a line is deleted: labels, terms and perhaps the series; false keeps it
    void (*serie_bewaar)();  // after a change of the line
    void (*serie_los)();     // give the lock on the series up
    void (*label_korting)(); // a new discount in the labels of the shared line
};
extern regeldiensten REGELDIENSTEN;

} // namespace zg

// Sending a described job, for zgspoel.
#pragma once
#include "print/spooljob.h"

namespace zg {

// Send a job whose description is locked at `slot`, and wait until it is out: all that is there of it is gone then. False: the
// reason and the copies that are out stand in the description, and its report is kept. SIGPIPE must be ignored.
bool spool_verstuur(int slot, spooljob* job);

} // namespace zg

// A job through the user's own terminal. Between the files of this folder.
#pragma once
#include "print/spooljob.h"

namespace zg {

// Send a described job (aux or terminal), all its copies or until the user has enough. False with errno when its spool file
// can't be read.
bool prt_doorgeef(int slot, spooljob* job);

} // namespace zg

// The end by a signal, where it has to wait.
#pragma once

namespace zg {

// While it is on, a hang-up or a request to end waits for the step in hand: ten seconds, unless a key is wanted.
void SCREINDELATER(bool wacht);

} // namespace zg

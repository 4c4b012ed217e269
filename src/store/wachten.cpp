// Pauses, and the patience of a reader; the numbers stand in store/wachten.h.
#include "store/wachten.h"
#include "shared/files.h"
#include "shared/gedeeld.h"
#include "store/bestand.h"
#include "store/kop.h"
#include "store/node.h"
#include <sched.h>

namespace zg {

int IXRUSTIG() {
    return IOGEDEELD() ? NETRUSTIG : RUSTIG;
}

void IXPAUZE(const IXRITME& ritme, int n) {
    if (n < ritme.beurten && !IOGEDEELD())
        sched_yield();
    else
        IOWACHT(n, n < ritme.beurten + ritme.kort_aantal ? ritme.kort_us : ritme.lang_us);
}

Geduld::~Geduld() {
    if (!slot_)
        return;
    icb_->koplock = 0;
    IOLOCK('U', icb_->idxfd, 0, IXBLOK);
}

bool Geduld::neem_slot() {
    for (int keer = 0; keer < IXRUSTIG() && !slot_ && !ALLEEN(icb_) && !IXBESTANDVAST(icb_->idxfd); keer++) {
        if (IOLOCK('E', icb_->idxfd, 0, IXBLOK))
            slot_ = true, icb_->koplock = 1;
        else
            IXPAUZE(R_SLOT, keer);
    }
    return slot_;
}

bool Geduld::nog_eens() {
    if (ALLEEN(icb_))
        return false;
    if (keer_ >= R_LEZER.beurten) {
        if (IXBESTANDVAST(icb_->idxfd)) // another handle of this process has it to itself
            return false;
        if (kijken_) {
            stil_ = IOLOCK('T', icb_->idxfd, 0, IXBLOK) ? stil_ + 1 : 0;
            if (stil_ >= KIJKERSTIL)
                return false;
        } else if (IOLOCK('E', icb_->idxfd, 0, IXBLOK)) {
            slot_ = true;
            icb_->koplock = 1;
            return true;
        }
    }
    IXPAUZE(R_LEZER, keer_);
    if (++keer_ % LEZERMELD == 0) {
        IXHEADER h;
        if (icb_->mode == 0 && IXKOPBLOK(icb_, &h) && h.busy != K_BEZIG)
            return false; // of one who has it to himself: who only reads doesn't wait for him
        IXWAITHOOK(icb_);
    }
    return true;
}

} // namespace zg

// wrk_sluit: the order goes from the work file back into the journal. The only change that a journal ever sees.
//
// 1. TMP is complete, on disk and locked before the journal is touched, and takes its place by one rename
//    while the old journal is still locked. There is never a moment without a whole journal.
// 2. WRK is deleted only behind that. Killed before it, the repair commits again; killed behind it, the
//    repair finds that the journal holds the order.
#include "order/meld.h"
#include "order/programma.h"
#include "order/register.h"
#include "order/wrk.h"
#include "order/wrkbinnen.h"
#include "shared/files.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "sub/omserie.h"
#include <cerrno>
#include <unistd.h>

namespace zg {

namespace {

// The records of a handle's file from `van` up to `tot` into TMP; D records are counted. With `zonder_lege`
// text pieces that begin with NUL stay behind.
void kopieer(const ordhandle* h, int64_t van, int64_t tot, bool zonder_lege, int64_t* regels) {
    ordloop l;
    ordrauw r;
    ordloop_begin(&l, h->fd, van, tot);
    while (ord_verder(h, &l, &r)) {
        if (zonder_lege && r.tag == 'T' && !r.data[2])
            continue;
        if (r.tag == 'D')
            ++*regels;
        if (!tmp_rauw(r.data, r.lengte, false))
            return;
    }
}

// In registermodus a committed order has status 4, in the work file too: a repair writes what the commit
// wrote.
bool zet_status() {
    if (!ord_eerste_order(werk) || kop.status == 4)
        return true;
    kop.status = 4;
    return ord_schrijf(werk);
}

void sluit_werk() {
    ord_sluit(werk);
    werk = nullptr;
}

bool bouw_journaal(int32_t regels, int64_t* totaal) {
    if (!tmp_nieuw(false))
        return false;
    if (order_start >= 1)
        kopieer(journaal, 0, order_start, false, totaal);
    if (regels >= 1)
        kopieer(werk, 0, INT64_MAX, true, totaal);
    if (order_volgende != -1)
        kopieer(journaal, order_volgende, INT64_MAX, false, totaal);
    if (!tmp_af())
        return false;
    // A journal that lost its last line is empty, whatever else stood in it.
    if (*totaal == 0 && SYS.ftruncate(tmp_fd(), 0) != 0)
        return false;
    return tmp_op_schijf();
}

// The order's number record, in front of the journal's change: killed in between, the repair commits again. `kop` is the
// order's header, and so is it behind the copies of other orders, which go by in raw bytes. Without a line that was taken
// out (a repair) no label can have the number left.
void werk_register_bij(int32_t regels) {
    if (!registermodus)
        return;
    if (regels >= 1) {
        ordnr_schrijf();
    } else if (!order_nieuw) {
        ordnr_wis();
        if (regel_uit.artikelgroep)
            label_los(regel_uit);
    }
}

bool vastleggen(int32_t regels) {
    int64_t totaal = 0;
    if (!bouw_journaal(regels, &totaal) || !ord_nog_vast(journaal))
        return false;
    werk_register_bij(regels);
    // Whose turn it was must not be seen in the journal: his colleagues' programs go on with it.
    if (!IOLOCK('E', tmp_fd(), 0, 1) || !SYSEVENALS(tmp_fd(), wrk_naam("JRN").c_str()) ||
        !wrk_hernoem("TMP", "JRN"))
        return false;
    ord_wissel(journaal, tmp_neem());
    return true;
}

} // namespace

bool wrk_sluit() {
    int32_t regels = aantal_regels;
    bool goed = true;
    // An order that was only looked at leaves the journal as it is, and so does a new one that got no lines.
    bool niets =
        (!werk->gewijzigd && regels) || (order_nieuw && !regels && order_start == IOOMVANG(journaal->fd));
    if (wrk_verloren()) { // which has been told
        tmp_weg();
        goed = false;
    } else if (!order_alleen_lezen && !niets) {
        goed = !registermodus ||
               (register_heel(dtordnr, TXT(T_JRN_ORDER_BLIJFT), TXT(T_JRN_ORDER_BEWAARD)) && zet_status());
        if (goed) {
            ors_wis();
            errno = 0;
            goed = vastleggen(regels);
            if (!goed) {
                int reden = errno;
                tmp_weg();
                wrk_geweigerd("TMP", reden, TXT(T_JRN_ORDER_BLIJFT), TXT(T_JRN_ORDER_BEWAARD));
            }
        }
    }
    sluit_werk();
    if (goed) {
        wrk_ruim_op();
        if (wrk_verloren())
            wrk_geweigerd("WRK", journaal->verloren, nullptr, nullptr);
        if (journaal) {
            journaal->offset = 0;
            journaal->tag = 0;
        }
    } else {
        ors_wis();
    }
    aantal_regels = 0;
    wrk_namen_wis();
    return goed;
}

} // namespace zg

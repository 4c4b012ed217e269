// Repair of an order whose session was broken off: WRK is still there. All or nothing: the whole work file
// takes the order's place in the journal by the ordinary commit, or the changes are dropped. Nothing in the
// files left behind is trusted: the journal and WRK are walked, and the offsets in ACT must be orders of that
// journal.
#include "order/herstelkan.h"
#include "order/meld.h"
#include "order/programma.h"
#include "order/wrk.h"
#include "order/wrkbinnen.h"
#include "shared/files.h"
#include "shared/registerrec.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <vector>

namespace zg {

namespace {

// False with errno set when it is out of reach, 0 when it means nothing.
bool lees_act(act_record* act) {
    int fd = SYS.open(wrk_naam("ACT").c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK, 0);
    if (fd < 0)
        return false;
    bool goed = IOOMVANG(fd) == sizeof *act && IOLEES(fd, act, sizeof *act, 0) == sizeof *act;
    SYS.close(fd);
    errno = 0;
    return goed && herstel_act(*act);
}

// One order, from its header to the end of the file; counts its lines. *zonder_register: the full registration has nothing
// of it.
bool toets_werk(int wrk, int32_t* regels, bool* zonder_register) {
    ordloop l;
    ordrauw r;
    bool eerste = true;
    *regels = 0;
    *zonder_register = false;
    ordloop_begin(&l, wrk, 0, INT64_MAX);
    for (;; eerste = false) {
        loopstand stand = ordloop_volgende(&l, &r);
        if (stand == LOOP_EINDE)
            return !eerste;
        if (stand == LOOP_FOUT)
            IOLEESFOUT(wrk);
        if (stand != LOOP_RECORD || (r.tag == 'O') != eerste)
            return false;
        if (r.tag == 'O') {
            ordkop o;
            memcpy(&o, r.data + 1, sizeof o);
            *zonder_register = o.ordernummer == 0;
        } else if (r.tag == 'D') {
            ++*regels;
            if (!r.data[1 + offsetof(orddessin, geregistreerd)])
                *zonder_register = true;
        }
    }
}

// Does the journal hold an order, or its end, at the recorded start, and is the recorded next order the one
// behind it? Also the order's status.
bool toets_plaatsen(int jrn, const act_record& act, uint8_t* status) {
    ordloop l;
    ordrauw r;
    bool start_gezien = false;
    int64_t volgende = -1;
    *status = 0;
    ordloop_begin(&l, jrn, 0, INT64_MAX);
    for (;;) {
        loopstand stand = ordloop_volgende(&l, &r);
        if (stand == LOOP_EINDE)
            break;
        if (stand == LOOP_FOUT)
            IOLEESFOUT(jrn);
        if (stand != LOOP_RECORD)
            return false;
        if (r.tag != 'O')
            continue;
        if (r.offset == act.start) {
            start_gezien = true;
            ordkop gezien;
            memcpy(&gezien, r.data + 1, sizeof gezien);
            *status = gezien.status;
        } else if (r.offset > act.start) {
            volgende = r.offset;
            break;
        }
    }
    return (start_gezien || act.start == act.omvang) && volgende == act.volgende;
}

// What the commit makes of the work file.
std::vector<uint8_t> vastgelegde_order(int wrk) {
    std::vector<uint8_t> uit;
    ordloop l;
    ordrauw r;
    ordloop_begin(&l, wrk, 0, INT64_MAX);
    while (ordloop_volgende(&l, &r) == LOOP_RECORD) // toets_werk has been through it
        if (r.tag != 'T' || r.data[2])
            uit.insert(uit.end(), r.data, r.data + r.lengte);
    if (registermodus)
        uit[1 + offsetof(ordkop, status)] = 4;
    return uit;
}

std::vector<uint8_t> stuk_journaal(int jrn, int64_t plaats, size_t n) {
    std::vector<uint8_t> uit(n);
    if (IOLEES(jrn, uit.data(), n, plaats) != static_cast<ssize_t>(n))
        uit.clear();
    return uit;
}

// The order was only looked at: the work file holds what the journal does, but for the status that a commit would set.
bool alleen_bekeken(const act_record& act) {
    constexpr size_t STATUS = 1 + offsetof(ordkop, status);
    std::vector<uint8_t> order = vastgelegde_order(werk->fd);
    const int64_t lengte = (act.volgende == -1 ? act.omvang : act.volgende) - act.start;
    if (lengte != static_cast<int64_t>(order.size()) || order.size() <= STATUS)
        return false;
    const std::vector<uint8_t> staat = stuk_journaal(journaal->fd, act.start, order.size());
    if (!staat.empty())
        order[STATUS] = staat[STATUS];
    return order == staat;
}

// Killed behind the rename: the journal is the old one with the order already in it (or out of it).
bool al_vastgelegd(int wrk, int jrn, const act_record& act, int32_t regels) {
    std::vector<uint8_t> order;
    if (regels)
        order = vastgelegde_order(wrk);
    int64_t staart = act.volgende == -1 ? 0 : act.omvang - act.volgende;
    int64_t achter = act.start + static_cast<int64_t>(order.size());
    if (IOOMVANG(jrn) != achter + staart)
        return false;
    if (stuk_journaal(jrn, act.start, order.size()) != order)
        return false;
    char tag = 'O';
    return !staart || (IOLEES(jrn, &tag, 1, achter) == 1 && tag == 'O');
}

// A file that is there, and that this user may not read or another holds, can be read by somebody another time.
herstelstand onbereikbaar(const char* ext) {
    const int reden = errno;
    const std::string naam = wrk_naam(ext);
    if (reden)
        ord_meld_geen_toegang(IOBASENAME(naam.c_str()), reden);
    return HERSTEL_LATER;
}

herstelstand onderzoek() {
    act_record act;
    uint8_t status;
    bool zonder_register;
    werk = ord_open_wrk(seizoensmap.c_str(), gekozen_leverancier, O_RDWR);
    if (!werk)
        return errno == ENOENT ? HERSTEL_NIET : onbereikbaar("WRK");
    if (!lees_act(&act))
        return errno == 0 || errno == ENOENT ? HERSTEL_NIET : onbereikbaar("ACT");
    const herstelstand stand =
        herstel_kan(werk->fd, journaal->fd, act, &aantal_regels, &status, &zonder_register);
    if (stand != HERSTEL_DOEN)
        return stand;
    werk->gewijzigd = !alleen_bekeken(act);
    order_start = act.start;
    order_volgende = act.volgende;
    order_nieuw = act.start == act.omvang;
    // Whoever repairs it, what was changed was so by somebody who might.
    order_alleen_lezen = !order_nieuw && (registermodus ? zonder_register : status != 0);
    regel_uit = {};
    return HERSTEL_DOEN;
}

} // namespace

bool herstel_act(const act_record& act) {
    return act.start >= 0 && act.start <= act.omvang &&
           (act.volgende == -1 || (act.volgende > act.start && act.volgende < act.omvang));
}

herstelstand herstel_kan(int wrk, int jrn, const act_record& act, int32_t* regels, uint8_t* status,
                         bool* zonder_register) {
    if (!herstel_act(act) || !toets_werk(wrk, regels, zonder_register))
        return HERSTEL_NIET;
    if (IOOMVANG(jrn) != act.omvang)
        return al_vastgelegd(wrk, jrn, act, *regels) ? HERSTEL_AL : HERSTEL_NIET;
    return toets_plaatsen(jrn, act, status) ? HERSTEL_DOEN : HERSTEL_NIET;
}

bool herstel_order() {
    if (!journaal)
        return false;
    if (wrk_naam("WRK").empty())
        wrk_namen();
    herstelstand stand = onderzoek();
    if (stand == HERSTEL_DOEN && wrk_sluit())
        return true;
    if (stand == HERSTEL_DOEN || stand == HERSTEL_LATER) {
        // The disk refused, or the files are out of reach: nothing is lost while WRK stays, so nobody may go on
        // to an order of this supplier.
        ord_sluit(werk);
        werk = nullptr;
        aantal_regels = 0;
        ord_sluit(journaal);
        journaal = nullptr;
        return false;
    }
    ord_sluit(werk);
    werk = nullptr;
    aantal_regels = 0;
    wrk_ruim_op();
    if (wrk_verloren()) {
        wrk_geweigerd("WRK", journaal->verloren, nullptr, nullptr);
        ord_sluit(journaal);
        journaal = nullptr;
        return false;
    }
    wrk_namen_wis();
    return stand == HERSTEL_AL;
}

} // namespace zg

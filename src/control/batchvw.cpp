// Module batchvw: exclusion of users and batch runs by locks on bytes of DTSYS.TXT.
#include "control/batchvw.h"
#include "control/teksten.h"
#include "shared/files.h"
#include "shared/iotab.h"
#include "shared/report.h"
#include "shared/teksten.h"
#include "term/prompt.h"
#include "term/vast.h"
#include <unistd.h>

namespace zg {

void (*BATCHTERUG)();

namespace {

constexpr int GROEPEN = 16;
constexpr int BYTES = 99; // one for each user slot
constexpr int32_t HOOGSTE_ORDER = 9999999;
constexpr int RIJ = 10, KOLOM = 6, BREEDTE = 70;

int64_t begin(int groep) {
    return SYS_BATCHSLOTEN + int64_t{groep} * BYTES;
}

bool batchrun() {
    return sessie == BATCHGEBRUIKER;
}

void stop(int nr) {
    if (batchrun() && BATCHTERUG)
        BATCHTERUG();
    INTERNAL("batchvw", nr);
}

void controleer(int groep, int nr) {
    if (groep < 0 || groep >= GROEPEN)
        stop(nr);
    if (iotab_fd() < 0)
        stop(3);
}

// Many a run has the group for a moment: a few tries, not in step with another's, before the box.
bool geduld(int64_t plaats, int64_t lengte) {
    constexpr int POGINGEN = 60;
    for (int i = 0; i < POGINGEN; i++) {
        if (IOLOCK('S', iotab_fd(), plaats, lengte))
            return true;
        usleep(static_cast<useconds_t>(1000 + (getpid() + i * 7) % 8 * 1000));
    }
    return false;
}

// The box that stands while a claim waits; the loop without a screen only pauses.
struct Wachtvenster {
    Wachtvenster(int hoogte) : er(SCHERM.bestaat && !SCHERM.dicht && SCHERM.aantal < VENSTERS) {
        if (er) {
            WINOPEN1(RIJ, KOLOM, hoogte, BREEDTE);
            WINBOX("%s", "");
        }
    }
    ~Wachtvenster() {
        if (er)
            WINCLOSE();
    }
    Wachtvenster(const Wachtvenster&) = delete;
    Wachtvenster& operator=(const Wachtvenster&) = delete;
    void vraag(int rij) const {
        SCRCLREOL(rij, 2);
        SCRPUT(A_LABEL, rij, 2, "%s? %s", TXT(T_WILT_U_WACHTEN), TXT(T_JA_NEE));
    }
    // A second's look at the keyboard; false when a key came and the user won't wait.
    bool wacht(int rij, bool mag_vragen) const {
        if (!er || !mag_vragen) {
            sleep(1);
            return true;
        }
        if (!TOETSWACHT(rij, 2, 1))
            return true;
        if (!JNVRAAG(rij, 2, "%s", TXT(T_WILT_U_WACHTEN)))
            return false;
        vraag(rij);
        SCRFLUSH(0);
        return true;
    }
    bool er;
};

void toon_gebruikers(int groep) {
    const std::vector<int32_t> wie = batch_gebruikers(groep);
    const auto aantal = static_cast<int>(wie.size());
    SCRCLREOL(1, 2);
    if (aantal == 1) {
        int32_t nr = wie.front();
        gebruikerslot slot;
        iotab('R', &nr, &slot, SYS_GEBRUIKER);
        std::string tty(VASTUIT(slot.usertty));
        SCRPUT(A_WAARDE, 1, 2, "%s %s%s%s%s", TXT(T_GEBRUIKER), gebruiker_naam(slot),
               tty.empty() ? "" : " (tty", tty.c_str(), tty.empty() ? "" : ")");
    } else if (aantal == BYTES) {
        SCRPUT(A_WAARDE, 1, 2, "%s", TXT(T_VERWERKING_GESTART));
    } else {
        SCRPUT(A_WAARDE, 1, 2, "%s %d", TXT(T_AANTAL_GEBRUIKERS), aantal);
    }
    SCRFLUSH(0);
}

} // namespace

std::vector<int32_t> batch_gebruikers(int groep) {
    std::vector<int32_t> uit;
    for (int32_t u = 1; u <= BYTES; u++)
        if (!IOLOCK('T', iotab_fd(), begin(groep) + u - 1, 1))
            uit.push_back(u);
    return uit;
}

bool batch_claim(int groep) {
    controleer(groep, 1);
    int fd = iotab_fd();
    if (IOLOCK('S', fd, begin(groep), BYTES))
        return true;
    if (batchrun())
        return false;
    Wachtvenster venster(5);
    if (venster.er) {
        SCRPUT(A_LABEL, 2, 2, "%s", TXT(T_GEBRUIKERS_BLOKKEREN));
        venster.vraag(3);
    }
    do {
        if (venster.er)
            toon_gebruikers(groep);
        if (!venster.wacht(3, true))
            return false;
    } while (!IOLOCK('S', fd, begin(groep), BYTES));
    return true;
}

void batch_vrij(int groep) {
    controleer(groep, 1);
    IOLOCK('U', iotab_fd(), begin(groep), BYTES);
}

bool user_claim(int groep, bool mag_vragen) {
    controleer(groep, 2);
    if (sessie < 1 || sessie > BYTES)
        stop(2); // no byte of its own
    int64_t plaats = begin(groep) + sessie - 1;
    if (geduld(plaats, 1))
        return true;
    Wachtvenster venster(4);
    if (venster.er) {
        SCRPUT(A_LABEL, 1, 2, "%s", TXT(T_VERWERKING_ACTIEF));
        if (mag_vragen)
            venster.vraag(2);
        SCRFLUSH(0);
    }
    do {
        if (!venster.wacht(2, mag_vragen))
            return false;
    } while (!IOLOCK('S', iotab_fd(), plaats, 1));
    return true;
}

void user_vrij(int groep) {
    controleer(groep, 2);
    IOLOCK('U', iotab_fd(), begin(groep) + sessie - 1, 1);
}

int32_t order_nummer(bool (*bezet)(int32_t)) {
    return iotab_teller(5, HOOGSTE_ORDER, bezet);
}

} // namespace zg

// The interrupt poll of long runs: at most one look at the keyboard a second; CANCEL or ESC asks whether to
// break off.
#include "term/prompt.h"
#include "term/teksten.h"
#include "term/veldwacht.h"
#include <algorithm>
#include <cstring>
#include <ctime>

namespace zg {

namespace {

bool aan = true;
int onderbroken = 0;
time_t gekeken = 0;

// While the poll lasts only the keyboard and what was typed ahead count: not the keys of a playing macro, nor F2.
class MacroRust {
public:
    MacroRust() : aan_(MACROHAAK.aan), speelt_(MACROHAAK.speelt) { MACROHAAK.aan = MACROHAAK.speelt = 0; }
    ~MacroRust() {
        MACROHAAK.aan = aan_;
        MACROHAAK.speelt = speelt_;
    }
    void stop() {             // it would go on answering a user who breaks off
        MACROHAAK.geduwd = 0; // keys in front of the ESC go, as from the keyboard
        if (speelt_)
            MACROHAAK.stop();
        speelt_ = 0;
    }
    MacroRust(const MacroRust&) = delete;
    MacroRust& operator=(const MacroRust&) = delete;

private:
    int32_t aan_, speelt_;
};

} // namespace

int ONDERBREKVRAAG() {
    VELDWACHT wacht;
    error("%s", "");
    int w = std::max(static_cast<int>(strlen(TXT(T_AKKOORD))) + 17, 24);
    WINOPEN3(SCHERM.lines - 7, 11, 5, w);
    WINBOX(" %s ", TXT(T_ONDERBREKEN));
    onderbroken = JNVRAAG(2, 4, "[+]");
    WINCLOSE();
    return onderbroken;
}

int ONDERBREKEN() {
    time_t nu = time(nullptr);
    if (!SCHERM.bestaat || SCHERM.dicht || !aan || onderbroken || nu == gekeken)
        return onderbroken;
    gekeken = nu;

    MacroRust rust;
    int32_t key = -1;
    while (TOETSKLAAR()) {
        key = TOETS();
        if (key == K_CANCEL || key == K_ESC) {
            rust.stop();
            return ONDERBREKVRAAG();
        }
    }
    if (key != -1) {
        error("%s", TXT(T_ALLEEN_CANCEL));
        SCRFLUSH(0);
    }
    return onderbroken;
}

void ONDERBREKAAN() {
    aan = true;
}
void ONDERBREKUIT() {
    aan = false;
}
void ONDERBREKRESET() {
    onderbroken = 0;
}

} // namespace zg

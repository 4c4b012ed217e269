// Waiting and trying again: every number of tries and every pause of the store, with its reason. Whoever has to wait
// for another process goes through here, so that nobody waits without end for what is not going to change.
#pragma once
#include "store/ix.h"

namespace zg {

// The pauses between tries: so many times the processor is given away, then so many short sleeps, then longer ones.
struct IXRITME {
    int beurten, kort_aantal, kort_us, lang_us;
};

// A writer's bracket takes some 50 microseconds. Asked for quietly for 0.3 seconds in all (RUSTIG tries) before the
// user is told: header lock, queue lock, and the slot of a new record.
// Over a network a bracket takes some ten milliseconds, and so do the pauses (shared/gedeeld.h): a second in all.
inline constexpr IXRITME R_SLOT{50, 100, 50, 1000};
inline constexpr int RUSTIG = 400, NETRUSTIG = 90;
int IXRUSTIG(); // the one that counts here
// A reader who met something odd: a writer at work is mostly done by the next look. On a loaded machine he may have
// lost the processor for a few turns of it, hence the longer sleeps.
inline constexpr IXRITME R_LEZER{10, 20, 100, 2000};
inline constexpr int KIJKERSTIL =
    50; // looks without the lock, nobody writing, after which it counts as it is
inline constexpr int LEZERMELD =
    180; // looks, some 0.3 seconds, after which the user is told who is in the way

inline constexpr int RUSTBEURTEN =
    8; // searches spoiled by writers, after which a reader asks for the header lock
inline constexpr int BLADVERS = 50;       // milliseconds that a leaf in hand serves a walk without a mapping
inline constexpr int KOPRONDEN = 5;       // looks at a header that may be half written, a millisecond apart
inline constexpr int HOOKWACHT = 2;       // seconds that the user can read who is in the way
inline constexpr int CHECKWACHT = 10'000; // milliseconds that the deep check waits for the header lock

// Pause behind the n-th refused try, n from 0.
void IXPAUZE(const IXRITME& ritme, int n);

// What a reader without a lock does about something that doesn't fit together: a writer may be in the middle of it. It
// looks again; after a few looks with the header lock in hand, if that can be had, and then what it sees is what there
// is. The lock goes with this object. `alleen_kijken`: for who is going to ask for other locks meanwhile.
class Geduld {
public:
    explicit Geduld(ICB* icb, bool alleen_kijken = false) : icb_(icb), kijken_(alleen_kijken) {}
    ~Geduld();
    Geduld(const Geduld&) = delete;
    Geduld& operator=(const Geduld&) = delete;
    // Pause, and then true: look again. As long as somebody else holds the header lock this goes on.
    bool nog_eens();
    // The lock at once, for who has looked often enough; false, after a short patience, when it can't be had.
    bool neem_slot();

private:
    ICB* icb_;
    bool kijken_, slot_ = false;
    int keer_ = 0, stil_ = 0;
};

} // namespace zg

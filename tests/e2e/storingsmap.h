// The full registration under faults: a demo directory that goes back to how it stood, and the program in it with its keys
// typed ahead, killed at the n-th call that writes or refused there.
#pragma once
#include "e2e/loop.h"
#include "shared/registerrec.h"

namespace zg::test {

inline constexpr char KIES[] = "<Enter><Enter>99<Enter><Enter>", WEG[] = "<Esc><Esc><Esc><Esc>";
inline constexpr char JRN[] = "2016Z/ORD0099.JRN";
inline constexpr char NIEUW[] =
    "TBROU<Enter>nieuw<Enter>1120<Enter><Enter><Enter>Let op<Esc><Esc>"
    "Katoen<Enter>Streep<Enter>20<Enter>Streeptrui<Enter><Enter>2ook<Esc>M<Enter><Enter>"
    "<Esc><Enter><Down>S<Enter><Enter>20<Enter><Enter><Esc>"
    "010316<Enter>310316<Enter>3<Enter><Enter>4<Enter><Enter><Enter><Esc>";

// The program with its system calls disturbed by `stoor`, once it has begun; what it answers at its end.
std::unique_ptr<Terminal> met_storing(
    const DemoMap& map, std::vector<std::string> argv, const std::function<void()>& stoor,
    const std::function<int()>& einde = [] { return 0; });
// Does a descriptor stand on a file whose path has these words?
bool staat_op(int fd, const char* naam);

struct Storingsmap : DemoMap {
    std::map<std::string, std::string> begin; // files in front of each round
    Storingsmap() : DemoMap("data/demo", "--register") {}
    void zet_terug() const;
    // The program from its season prompt on: 0 when it came to its end, 7 when it was disturbed on the way, 128 + signal.
    int loop(const std::string& toetsen, int n = -1, bool doden = true) const;
    std::unique_ptr<Terminal> start(std::vector<std::string> argv, const std::string& toetsen, int n = -1,
                                    bool doden = true) const;
    static int klaar(Terminal& t);
    // Labels of each series but one, and what else hangs from them: all that this order has nothing to do with.
    std::string vreemde_labels(const std::set<std::pair<int, int>>& eigen) const;
};

// The labels on order of an order number.
std::vector<etiket> labels_van(const DemoMap& map, int32_t ordernummer);

} // namespace zg::test

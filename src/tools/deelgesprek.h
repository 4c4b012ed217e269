// Two programs, on two hosts as a rule, that speak through a directory which both of them see: one waits and answers,
// the other comes and asks. A message is a file's whole content, opened anew each time and with the system's own pages of
// it dropped, which brings what stands there within seconds even where data are old; who is in a hurry takes turns by
// locks (DeelBeurt), once these are known to hold. Nothing waits without end.
#pragma once
#include <cstdint>
#include <string>

namespace zg {

inline constexpr char DEELMAP[] = ".zgdeel"; // in the directory; gone when the two are done
std::string deel_pad(const char* naam);      // of a file in there

// Tells whoever watches over this process what it is going to do.
extern void (*DEELSTAP)(const std::string& wat);

class Deelgesprek {
public:
    enum Begin { BEGONNEN, NIEMAND, BEZET, MISLUKT };
    // Makes the directory and waits for the other; BEZET when another waits there. MISLUKT with *fout.
    Begin wacht(int seconden, std::string* fout);
    // Looks for who waits.
    Begin zoek(int seconden, std::string* fout);
    // False when no answer comes.
    bool vraag(const std::string& wat, std::string* antwoord);
    // The next question, "" when none comes; and what is answered to it.
    std::string volgende();
    bool antwoord(const std::string& tekst);
    void ruim(); // the directory, and all that is in it

private:
    bool zend(const char* naam, const std::string& tekst);
    std::string ontvang(const char* naam, double seconden);
    uint64_t sleutel_ = 0; // of this pair of programs
    int nummer_ = 0, slot_ = -1;
};

// fcntl on a range of an open file: 'r', 'w', 'u'. 1, 0 when another has it, -1 with errno.
int deel_slot(int fd, char soort, int64_t start, int64_t lengte);
// Which lock is in the way of a write lock there: 'r', 'w', 'u' for none, 'E' with errno.
char deel_wie(int fd, int64_t start, int64_t lengte);

// Turns: each side has the byte of its own round locked until it is done with it, and by then has that of the next.
class DeelBeurt {
public:
    // For rounds 0 to n of a phase; the first byte is had from here on.
    DeelBeurt(int fase, bool eerste);
    ~DeelBeurt();
    bool klaar() const { return fd_ >= 0; }
    bool geef(int ronde);  // this side is done with it
    bool wacht(int ronde); // until the other is; false when that takes too long, or it can't be locked
    std::string fout() const { return fout_; }

private:
    int64_t byte(int ronde, bool eerste) const;
    int fd_ = -1, fase_;
    bool eerste_;
    std::string fout_;
};

double deel_nu();              // seconds
void deel_rust(double* pauze); // a short pause, longer each time

} // namespace zg

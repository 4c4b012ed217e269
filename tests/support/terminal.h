// A program in a pseudo-terminal with a terminal emulator behind it: keys in, cells and attributes out.
// Serves unit tests of term/ (a forked child runs a function) and end-to-end cases (the real binary). Rows
// and columns count from 1. Nothing sleeps for a fixed time: waits poll with a limit and fail the test with
// the screen.
#pragma once
#include <functional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace zg::test {

struct Cel {
    std::string teken; // UTF-8
    bool vet, keus, streep, knipper;
    int voor, achter; // palette index, -1 the default colour
};

struct Opties {
    int rijen = 25, kolommen = 80;
    std::string term = "xterm";     // TERM; the program asks for its capitalised entry
    std::string locale = "C.UTF-8"; // LC_ALL; empty: none
    std::string map{};              // working directory, empty: the present one
    std::string klok{}; // fixed moment "2016-03-01 12:00:00" for the real binary, empty: the real clock
    std::vector<std::pair<std::string, std::string>> omgeving{};
    // What the terminal itself takes, whatever the program is told: "UTF-8" or a set of one byte a character that
    // iconv knows. Empty: UTF-8 or bytes, by the locale.
    std::string tekenset{};
    bool antwoordt = true; // to questions, as terminals do
};

class Terminal {
public:
    Terminal(const std::vector<std::string>& argv, const Opties& opties = {});
    Terminal(const std::function<int()>& kind,
             const Opties& opties = {}); // the child's exit status is its answer
    ~Terminal();                         // kills what still runs
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    void stuur(std::string_view bytes); // bytes as the keyboard sends them
    // Keys by name between < >, text as it stands: toetsen("2016<Enter><F5><Down><Esc>"). Names: Enter Esc
    // Tab BTab Up Down Left Right Home End PgUp PgDn Ins Del Back F1..F12 Cancel Help, "<lt>" for '<'. Each
    // key waits until the program has read it and is reading again.
    void toetsen(std::string_view reeks);
    // And then what must come to stand anywhere, or at a place.
    bool toetsen(std::string_view reeks, std::string_view ziet) { return toetsen(reeks), wacht(ziet); }
    bool toetsen(std::string_view reeks, int rij, int kolom, std::string_view ziet) {
        return toetsen(reeks), wacht_op(rij, kolom, ziet);
    }
    // The same in one burst; only what is typed behind an Esc waits until that has been taken.
    void reeks(std::string_view tekst);

    bool kalm(int ms = 20000);                          // until the program waits for a key
    bool wacht(std::string_view tekst, int ms = 20000); // until the text stands anywhere
    bool wacht_op(int rij, int kolom, std::string_view tekst, int ms = 20000);
    bool weg(std::string_view tekst, int ms = 20000);  // until it is gone
    std::string regel(int rij);                        // UTF-8, right-trimmed
    std::string stuk(int rij, int kolom, int breedte); // UTF-8, untrimmed
    std::string scherm();                              // all rows, trailing blanks cut
    Cel cel(int rij, int kolom);
    int cursor_rij();
    int cursor_kolom();
    int bellen(); // bells heard so far

    int einde(int ms = 20000); // wait for the end: exit status, 128 + signal, -1 when it still runs
    bool leeft();
    void sein(int signaal);
    void hangop(); // the terminal goes away
    void maat(int rijen, int kolommen);
    pid_t pid() const;
    std::string uitvoer(); // all bytes that the program has sent

private:
    struct Binnen;
    Binnen* b_;
};

// A temporary directory, removed with the object; the working directory while it lives when `erin`.
class TijdelijkeMap {
public:
    explicit TijdelijkeMap(bool erin = true);
    ~TijdelijkeMap();
    const std::string& pad() const { return pad_; }

private:
    std::string pad_, terug_;
};

std::string lees_bestand(const std::string& pad);
void schrijf_bestand(const std::string& pad, std::string_view inhoud);

} // namespace zg::test

// What the parts of the check of a data directory share: the lines that they tell of a file, reading again what looks
// wrong, and bytes and records as they stand, without a lock and without the store.
#pragma once
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace zg {

struct keurbestand {
    std::string naam, telling;            // "DTSER", "12 series"
    std::vector<std::string> kwalen = {}; // what is wrong
    std::vector<std::string> noten = {}; // what needs no repair, or may be in a program's hand at this moment
    int64_t verloren = 0;                // blocks or records that nobody has; each is among `kwalen`
    bool namen = false;                  // the notes are names of files, in their own bytes
};
using keurbestanden = std::vector<keurbestand>;

// A part of the check. What looks wrong is read again, up to `pogingen` times with a rest in between, and told as wrong when
// it stays: a change is made of several writes, and what only one of two looks saw was one at work.
extern int keur_rust; // microseconds
keurbestanden keur_herhaald(int pogingen, const std::function<keurbestanden()>& deel);
// One line a file: what several parts tell of one stands together. The count of the last that has one counts.
keurbestanden keur_samen(keurbestanden alle);

std::string keur_aantal(int64_t n, const char* wat); // "12 series"
// Findings that many records may have: each is told once, with how many there are.
struct keurhoop {
    void zie(const std::string& wat) { hoop[wat]++; }
    void meld(std::vector<std::string>* naar) const;
    std::map<std::string, int64_t> hoop = {};
};

// A plain file, open for reading; -1 with why in `fout` when it can't be, or is something else.
struct keurlezer {
    explicit keurlezer(const std::string& pad);
    ~keurlezer();
    keurlezer(const keurlezer&) = delete;
    keurlezer& operator=(const keurlezer&) = delete;
    int fd = -1;
    std::string fout;
};
// From here on whatever opens a file opens plain ones only, and reads that the system refuses are remembered: what comes of
// such a file is less than what stands in it, and proves nothing.
void keur_bewaak();
// One line a file that wasn't read whole.
keurbestanden keur_ongelezen();
// Its bytes, `meest` of them at most; false: told in *b, unless it is gone.
bool keur_lees(const std::string& pad, size_t meest, std::string* bytes, keurbestand* b);
// The live records of a pair's data file by their places, as long as its header or the dictionary says. False: it can't be
// read.
bool keur_records(const std::string& naam,
                  const std::function<void(int32_t nr, const uint8_t* rec, int lengte)>& f);

// Is this the shape of a name, where '#' is a digit, '@' a capital, '?' any character, '*' the rest?
bool keur_past(const char* vorm, const std::string& naam);
// The names in a directory that are not "." or "..", in order; empty when it can't be read, with why in *fout.
std::vector<std::string> keur_namen(const std::string& map, std::string* fout = nullptr);

} // namespace zg

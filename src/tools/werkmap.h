// A directory beside a target pair in which its replacement is made, under its own name, and moved into
// place.
#pragma once
#include <string>

namespace zg {

class Werkmap {
public:
    explicit Werkmap(const std::string& doel);
    ~Werkmap();
    Werkmap(const Werkmap&) = delete;
    Werkmap& operator=(const Werkmap&) = delete;
    bool goed() const { return !pad_.empty(); } // else errno tells
    const std::string& pad() const { return pad_; }
    // What killed loads and copies left in a directory, taken away; one that somebody works in, or that holds the only
    // copy of a data file, stays, the latter told. The makers of new ones do this.
    static void veeg(const std::string& map);
    // Does one that was left hold the old records of a pair, which are nowhere else?
    static bool enige_kopie(const std::string& map);
    // Put the pair that was made here on disk and in the target's place. An existing pair must be free: every
    // lock of it is taken first, at most `seconden` long. An Uitkomst, failures told.
    int naar(const std::string& doel, bool vervang, int seconden);
    // Remove the directory and what is left in it: the pair and a file "keten". Also for who leaves by a signal or
    // a report: it is made of unlinks alone. One directory at a time.
    static void ruim_op();

private:
    std::string pad_;
    int slot_ = -1; // holds the directory, so that nobody sweeps it
};

} // namespace zg

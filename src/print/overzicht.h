// A finished report by its pages and lines: where each begins is kept, the text is read when it is shown. Between the
// files of this folder.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zg {

struct Overzicht {
    int fd = -1;
    std::vector<int64_t> regels; // where each line begins in the file
    std::vector<size_t> bladen;  // the first line of each page, and behind them the number of lines
};

// Open a report, for reading only, and find its pages between two places of the file: a form feed ends one, and behind the
// last nothing but blanks makes another. An empty report has one page, without lines. False when it can't be read.
bool overzicht_open(Overzicht* o, const char* pad, int64_t begin, int64_t eind);
void overzicht_sluit(Overzicht* o);
inline int overzicht_bladen(const Overzicht& o) {
    return static_cast<int>(o.bladen.size()) - 1;
}
// A line from a column (0 is the first) up to another; control bytes are points. Empty when it can't be read.
std::string overzicht_regel(const Overzicht& o, size_t regel, int van, int tot);

} // namespace zg

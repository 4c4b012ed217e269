// Where a tool writes what was asked for: standard output, or a file that gets its name once it is whole. Until then
// it has none where the file system can do that, so that not even a killed tool leaves a half one.
#pragma once
#include <cstdio>
#include <string>

namespace zg {

// May an output go to this name? Empty, or why not: what stands in a data directory and halves of pairs stay whatever was
// asked for, another file unless it may be replaced.
std::string uitvoer_bezet(const std::string& pad, bool vervang);

class Uitvoer {
public:
    // "" is standard output; a device or fifo is written as it is. Without `vervang` no file that came meanwhile goes.
    Uitvoer(const std::string& pad, bool vervang);
    ~Uitvoer();
    Uitvoer(const Uitvoer&) = delete;
    Uitvoer& operator=(const Uitvoer&) = delete;
    FILE* stroom() const { return stroom_; } // null: errno tells
    // All of it written, and in the place and with the rights of a file that stood there; false with errno.
    bool af();

private:
    bool plaats();
    std::string pad_, naast_; // its name, and the one that it has meanwhile or on its way
    FILE* stroom_ = nullptr;
    bool vervang_, naamloos_ = false;
};

} // namespace zg

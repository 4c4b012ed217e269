// The files of a directory are set up by one program at a time: while this lives the directory of `pad` is this one's, and
// others wait. Where a directory can't be locked they take their chance. On a shared file system it is a byte of a file in it
// that is locked, and that stays there, empty.
#pragma once

namespace zg {

inline constexpr char BEURTBESTAND[] = "ZGBEURT.LCK";

class IOBEURT {
public:
    explicit IOBEURT(const char* pad);
    ~IOBEURT();
    IOBEURT(const IOBEURT&) = delete;
    IOBEURT& operator=(const IOBEURT&) = delete;

private:
    int fd_;
    const bool gedeeld_;
};

} // namespace zg

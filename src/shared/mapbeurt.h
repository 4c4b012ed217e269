// The files of a directory are set up by one program at a time: while this lives the directory of `pad` is this one's, and
// others wait. Where a directory can't be locked they take their chance.
#pragma once

namespace zg {

class IOBEURT {
public:
    explicit IOBEURT(const char* pad);
    ~IOBEURT();
    IOBEURT(const IOBEURT&) = delete;
    IOBEURT& operator=(const IOBEURT&) = delete;

private:
    int fd_;
};

} // namespace zg

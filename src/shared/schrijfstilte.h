// Refused writes told by who knows better than the box of SCHRIJFFOUT what stays and what doesn't.
#pragma once
#include <string>

namespace zg {

// While one lives no box is shown: its first line goes to *waarom.
class Schrijfstilte {
public:
    explicit Schrijfstilte(std::string* waarom);
    ~Schrijfstilte();
    Schrijfstilte(const Schrijfstilte&) = delete;
    Schrijfstilte& operator=(const Schrijfstilte&) = delete;

private:
    std::string* const was_;
};
extern std::string* SCHRIJFSTIL; // where SCHRIJFFOUT puts it, null while it shows its box

} // namespace zg

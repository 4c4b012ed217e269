// How a report leaves in another character set than that of the data files. One character stays one column.
#include "print/printjob.h"
#include "term/natl.h"

namespace zg {
namespace {

constexpr uint8_t KOPPELTEKEN = 0xF0; // a soft hyphen, which others don't print

} // namespace

std::string prt_omzet(const std::string& bytes, const std::string& tekens) {
    const bool utf8 = tekens == "utf-8", latin1 = tekens == "latin1";
    if (!utf8 && !latin1 && tekens != "ascii")
        return bytes;
    std::string uit;
    uit.reserve(bytes.size() + bytes.size() / 8);
    for (size_t i = 0; i < bytes.size(); i++) {
        const auto c = static_cast<uint8_t>(bytes[i]);
        const char32_t u = CP850UIT(c);
        if (c < 128)
            uit += bytes[i];
        else if (c == KOPPELTEKEN)
            uit += '-';
        else if (utf8)
            uit += CP850UTF8({&bytes[i], 1});
        else
            uit += latin1 && u < 256 ? static_cast<char>(static_cast<uint8_t>(u)) : CP850BASIS(c);
    }
    return uit;
}

} // namespace zg

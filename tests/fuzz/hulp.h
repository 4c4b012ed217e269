// Help for the harnesses: a report that stops the program becomes an exception, which ends the round well; files
// lie in a directory of their own in memory.
#pragma once
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace zg::fuzz {

struct Stop {
    std::string rapport;
};

// Once, from LLVMFuzzerInitialize: hooks, and the working directory in memory, gone at the end.
void begin();
// Run one round: true when it came to its end, false when a report stopped it. Either way no descriptor that the
// store has opened stays open.
bool ronde(const std::function<void()>& werk, std::string* rapport = nullptr);
// A promise that does not hold: tells and traps.
[[noreturn]] void kapot(const std::string& wat);

void schrijf(const char* naam, const std::string& inhoud);
std::string lees(const char* naam);

// The input as a source of numbers; zeros when it has run out.
class Bron {
public:
    Bron(const uint8_t* data, size_t n) : p_(data), einde_(data + n) {}
    bool op() const { return p_ == einde_; }
    uint8_t byte() { return op() ? 0 : *p_++; }
    uint32_t getal(int bytes) {
        uint32_t n = 0;
        while (bytes-- > 0)
            n = n << 8 | byte();
        return n;
    }
    uint32_t onder(uint32_t grens) {
        return grens ? getal(grens > 0xFFFF ? 4 : grens > 0xFF ? 2 : 1) % grens : 0;
    }

private:
    const uint8_t *p_, *einde_;
};

} // namespace zg::fuzz

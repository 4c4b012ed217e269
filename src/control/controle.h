// Module controle: may the package start work? The state in system record 10, the marks of critical steps in the users'
// slots, what the last backup said, and log files.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zg {

enum Toestand : uint8_t {
    STATUS_VRIJ = 0,
    STATUS_FOUT = 1,
    STATUS_FOUT2 = 2,
    STATUS_KRITIEK = 3,
    STATUS_TEKST = 9
};

inline constexpr uint8_t STAND_KRITIEK = 10; // a user's level in a critical step, and above

// The state code with the text that belongs to it, or 9 with a text of at most 49 bytes. False: refused, told.
bool status_zet(uint8_t code);
bool status_tekst_zet(std::string_view tekst);
// The words for a stored text: "@7" is a number in the table of states, "" for one that isn't in it.
std::string status_tekst(std::string_view tekst);
// Why work may not start, or what the last backup said; "" for neither.
std::string status_nu();
// May work start? No with a state that isn't 0, and when another user's process died in a critical step, which is then
// written as the state.
bool status_vrij();
// The slots of such users, the program's own apart. One is looked at three times in 2 seconds: between two programs its
// lock is free for a moment.
std::vector<int32_t> kritiek_gestorven();

// Their marks away, for who has looked after the files. False: refused, told.
bool kritiek_wis();

// The user's level, from 10 on a critical step. The level that stood; nothing without a slot, or for 0.
uint8_t kritiek_zet(uint8_t stand);
// A critical step for as long as it lives; within another it changes nothing.
class Kritiek {
public:
    Kritiek();
    ~Kritiek();
    Kritiek(const Kritiek&) = delete;
    Kritiek& operator=(const Kritiek&) = delete;

private:
    uint8_t stond_;
};

// Read result.bu of the backup program, blocks of three lines (date, outcome, a third): the last one goes into the state's
// text while the code is 0, the day into system record 19, and blocks older than 30 days out of the file. Without a
// block, or a file that is root's or the user's own, nothing happens.
void backup_lezen(const char* map = "/tmp");

// A line "date time text" at the end of a log file, whose name holds ".LOG" (else controle INTERNAL 1), the text moved
// right by `inspring`. False with errno.
bool logregel(const char* pad, int inspring, std::string_view tekst);

} // namespace zg

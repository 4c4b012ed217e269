// Other processes for tests: a piece of code in a child whose end and output are looked at (fatal stops), and
// an agent that does what it is told and stays until it is let go (locks).
#pragma once
#include <functional>
#include <string>
#include <sys/types.h>

namespace zg::test {

struct Afloop {
    int status;          // exit status, 128 + signal, -1 when it had to be killed
    std::string uitvoer; // standard output and error
};
// Runs `doe` in a child without a terminal and without input; its answer is the exit status. Killed after
// `ms`.
Afloop in_proces(const std::function<int()>& doe, int ms = 20000);

// `doe` must stop the program: status 1 and a report that holds `tekst`.
void verwacht_stop(const std::function<void()>& doe, const std::string& tekst);

// A second process. With a plain piece of work: returns when the child has done it, ok() is its answer, and the child
// then stays, with its locks. With commands: `doe` runs in it for each and answers; geen_antwoord is given when it
// doesn't answer within a quarter of a second, which means that it waits for a lock, and antwoord() waits for that one.
class Agent {
public:
    explicit Agent(const std::function<bool()>& doe);
    explicit Agent(std::function<std::string(const std::string&)> doe);
    ~Agent();
    Agent(const Agent&) = delete;
    Agent& operator=(const Agent&) = delete;
    bool ok() const { return ok_; }
    pid_t pid() const { return pid_; }
    std::string vraag(const std::string& opdracht, int ms = 250);
    std::string antwoord(int ms = 10'000); // "dead" when there is none to come
    void dood();                           // SIGKILL, and gone
    static constexpr const char* geen_antwoord = "...";

private:
    pid_t pid_ = -1;
    int heen_ = -1, terug_ = -1;
    bool ok_ = false;
};

} // namespace zg::test

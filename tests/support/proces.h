// Other processes for tests: a piece of code in a child whose end and output are looked at (fatal stops), and
// an agent that does something, says so, and stays until it is let go (locks).
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

class Agent {
public:
    // Returns when the child has done `doe`; ok() is its answer. The child then waits for the end of the
    // object.
    explicit Agent(const std::function<bool()>& doe);
    ~Agent() { laat_los(); }
    Agent(const Agent&) = delete;
    Agent& operator=(const Agent&) = delete;
    bool ok() const { return ok_; }
    pid_t pid() const { return pid_; }
    void laat_los(); // the child ends; returns when it has
    void dood();     // by SIGKILL

private:
    pid_t pid_ = -1;
    int draad_ = -1;
    bool ok_ = false;
};

} // namespace zg::test

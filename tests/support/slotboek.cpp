#include "support/slotboek.h"
#include "shared/syscalls.h"
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <gtest/gtest.h>
#include <map>
#include <unistd.h>
#include <utility>
#include <vector>

namespace zg::test {
namespace {

struct Stuk {
    int64_t van, tot; // up to, not with
    bool operator==(const Stuk&) const = default;
};
struct Bestand {
    std::string pad;
    std::vector<Stuk> stukken;
};
std::map<std::pair<dev_t, ino_t>, Bestand> boek;
pid_t van;
int (*echt_slot)(int, int, struct flock*);
int (*echt_close)(int);

// Locks are not inherited over a fork.
void van_dit_proces() {
    if (van != getpid())
        boek.clear();
    van = getpid();
}

Bestand* bestand(int fd) {
    struct stat st;
    if (fstat(fd, &st) < 0)
        return nullptr;
    Bestand& b = boek[{st.st_dev, st.st_ino}];
    char pad[4096];
    const ssize_t n = readlink(("/proc/self/fd/" + std::to_string(fd)).c_str(), pad, sizeof pad);
    if (n > 0)
        b.pad.assign(pad, static_cast<size_t>(n));
    return &b;
}

int slot(int fd, int opdracht, struct flock* g) {
    const int uit = echt_slot(fd, opdracht, g);
    if (uit < 0 || opdracht == F_GETLK)
        return uit;
    van_dit_proces();
    Bestand* b = bestand(fd);
    if (!b)
        return uit;
    const int64_t begin = g->l_start, einde = g->l_len ? begin + g->l_len : INT64_MAX;
    std::vector<Stuk> over;
    for (const Stuk& s : b->stukken) {
        if (s.van < begin)
            over.push_back({s.van, std::min(s.tot, begin)});
        if (s.tot > einde)
            over.push_back({std::max(s.van, einde), s.tot});
    }
    if (g->l_type != F_UNLCK)
        over.push_back({begin, einde});
    b->stukken = over;
    return uit;
}

// Closing any descriptor of a file drops all its locks.
int sluit(int fd) {
    van_dit_proces();
    struct stat st;
    if (fstat(fd, &st) == 0)
        boek.erase({st.st_dev, st.st_ino});
    return echt_close(fd);
}

// What the ledger can't see is a plain close: the system says whether a lock of this process is there still.
bool staat_nog(ino_t inode) {
    FILE* f = fopen("/proc/locks", "r");
    if (!f)
        return true;
    char regel[256];
    bool er = false;
    while (!er && fgets(regel, sizeof regel, f)) {
        long pid = 0;
        unsigned long nr = 0;
        er = sscanf(regel, "%*s %*s %*s %*s %ld %*x:%*x:%lu", &pid, &nr) == 2 && pid == getpid() &&
             nr == inode;
    }
    fclose(f);
    return er;
}

struct Luisteraar : testing::EmptyTestEventListener {
    void OnTestEnd(const testing::TestInfo& info) override {
        const std::string over = slotboek();
        if (!over.empty())
            ADD_FAILURE() << info.test_suite_name() << "." << info.name() << " leaves locks:\n" << over;
        boek.clear();
    }
};

} // namespace

void slotboek_aan() {
    static bool aan = false;
    if (std::exchange(aan, true))
        return;
    echt_slot = std::exchange(SYS.slot, slot);
    echt_close = std::exchange(SYS.close, sluit);
    testing::UnitTest::GetInstance()->listeners().Append(new Luisteraar);
}

std::string slotboek() {
    van_dit_proces();
    std::string uit;
    for (const auto& [wie, b] : boek)
        for (const Stuk& s : b.stukken)
            if (staat_nog(wie.second))
                uit += b.pad + " from " + std::to_string(s.van) +
                       (s.tot == INT64_MAX ? " on" : " to " + std::to_string(s.tot)) + "\n";
    return uit;
}

} // namespace zg::test

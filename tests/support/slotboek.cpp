#include "support/slotboek.h"
#include <cstdio>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zg::test {
namespace {

namespace fs = std::filesystem;

// Of a file that this process has open.
std::string pad_van(unsigned long inode) {
    struct stat st {};
    std::error_code fout;
    for (const auto& e : fs::directory_iterator("/proc/self/fd"))
        if (stat(e.path().c_str(), &st) == 0 && st.st_ino == inode)
            return fs::read_symlink(e.path(), fout);
    return "inode " + std::to_string(inode);
}

struct Luisteraar : testing::EmptyTestEventListener {
    void OnTestEnd(const testing::TestInfo& info) override {
        const std::string over = slotboek();
        if (!over.empty())
            ADD_FAILURE() << info.test_suite_name() << "." << info.name() << " leaves locks:\n" << over;
    }
};

} // namespace

void slotboek_aan() {
    static bool aan = false;
    if (!aan)
        testing::UnitTest::GetInstance()->listeners().Append(new Luisteraar);
    aan = true;
}

std::string slotboek() {
    std::string uit;
    FILE* f = fopen("/proc/locks", "r");
    char regel[256];
    while (f && fgets(regel, sizeof regel, f)) {
        long pid = 0;
        unsigned long inode = 0;
        char stuk[60];
        if (sscanf(regel, "%*s POSIX %*s %*s %ld %*x:%*x:%lu %59[^\n]", &pid, &inode, stuk) == 3 &&
            pid == getpid())
            uit += pad_van(inode) + " from and to " + stuk + "\n";
    }
    if (f)
        fclose(f);
    return uit;
}

} // namespace zg::test

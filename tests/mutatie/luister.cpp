// In every test program of the mutation run: with ZGMUTANTENLIJST each test adds a line to that file, its name, how many
// milliseconds it took and the changes that it came to. What a suite's set-up came to counts for each of its tests.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace {
constexpr size_t SIZE = 4096;

class Listener : public testing::EmptyTestEventListener {
    unsigned char* marks_ = nullptr;
    std::string set_up_;
    bool first_ = true;

    std::string take() {
        std::string come_to;
        for (size_t i = 1; i < SIZE; i++)
            if (marks_[i])
                come_to += " " + std::to_string(i);
        memset(marks_, 0, SIZE);
        return come_to;
    }

public:
    explicit Listener(unsigned char* marks) : marks_(marks) {}
    void OnTestSuiteStart(const testing::TestSuite&) override { take(), first_ = true; }
    void OnTestStart(const testing::TestInfo&) override {
        const std::string before = take();
        if (first_)
            set_up_ = before;
        first_ = false;
    }
    void OnTestEnd(const testing::TestInfo& test) override {
        if (FILE* f = fopen(getenv("ZGMUTANTENLIJST"), "a")) {
            fprintf(f, "%s.%s\t%d\t%s%s\n", test.test_suite_name(), test.name(),
                    static_cast<int>(test.result()->elapsed_time()), set_up_.c_str(), take().c_str());
            fclose(f);
        }
    }
};

const bool listens = [] {
    const char* name = getenv("ZGMUTANTEN");
    const int fd = name && getenv("ZGMUTANTENLIJST") ? open(name, O_RDWR | O_CLOEXEC) : -1;
    if (fd < 0)
        return false;
    void* p = mmap(nullptr, SIZE, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    close(fd);
    if (p != MAP_FAILED)
        testing::UnitTest::GetInstance()->listeners().Append(new Listener(static_cast<unsigned char*>(p)));
    return p != MAP_FAILED;
}();
} // namespace

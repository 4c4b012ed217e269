// The switch: ZGMUTANT is the number of the change in force, ZGMUTANTEN the file, a byte a change, in which each that was
// come to is marked. Without them the program is as it was written.
#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

bool mutant(int number);

namespace {
constexpr size_t SIZE = 4096;
unsigned char unheard[SIZE];
unsigned char* marks = nullptr;
int in_force = 0;

// Before main, so that no test which counts calls or descriptors sees it.
[[gnu::constructor(101)]] void begin() {
    marks = unheard;
    if (const char* number = getenv("ZGMUTANT"))
        in_force = atoi(number);
    const char* name = getenv("ZGMUTANTEN");
    const int fd = name ? open(name, O_RDWR | O_CLOEXEC) : -1;
    if (fd < 0)
        return;
    if (void* p = mmap(nullptr, SIZE, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0); p != MAP_FAILED)
        marks = static_cast<unsigned char*>(p);
    close(fd);
}
} // namespace

bool mutant(int number) {
    if (marks)
        marks[number] = 1;
    return number == in_force;
}

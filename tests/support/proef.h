// What nearly every test stands on, so that none lists it again: GoogleTest, the system's headers, a directory of its own and
// a terminal, other processes, files and system calls.
#pragma once
#include "shared/files.h"
#include "shared/syscalls.h"
#include "support/proces.h"
#include "support/terminal.h"
#include "term/vast.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <set>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zg::test {

// Does a text hold another? When that is not what was expected it is shown.
inline testing::AssertionResult bevat(const std::string& tekst, const std::string& deel) {
    return (tekst.find(deel) != tekst.npos ? testing::AssertionSuccess() : testing::AssertionFailure())
           << "\"" << deel << "\" in:\n"
           << tekst;
}

// The rows of a table that one loop goes over.
template <class... V> using Rijen = std::initializer_list<std::tuple<V...>>;

// What a piece of work says on the error output.
inline std::string gezegd_door(const std::function<void()>& doe) {
    testing::internal::CaptureStderr();
    doe();
    return testing::internal::GetCapturedStderr();
}

// Other bytes at a place of a file.
inline void wijzig_bestand(const std::string& pad, size_t plaats, std::string_view bytes) {
    std::string alles = lees_bestand(pad);
    schrijf_bestand(pad, alles.replace(plaats, bytes.size(), bytes));
}

// A number's bytes, the lowest first.
inline std::string getal(int64_t n, int bytes) {
    return {reinterpret_cast<const char*>(&n), static_cast<size_t>(bytes)};
}
inline const auto i32 = [](int64_t n) { return getal(n, 4); };
inline const auto i16 = [](int64_t n) { return getal(n, 2); };

// Bytes in hexadecimal, four a word and so many a row, so that a difference can be read.
inline std::string hex(std::string_view bytes, size_t rij = SIZE_MAX) {
    std::string uit;
    for (size_t i = 0; i < bytes.size(); i++) {
        char twee[3];
        snprintf(twee, sizeof twee, "%02X", bytes[i] & 0xFF);
        uit += twee;
        uit += (i + 1) % rij == 0 ? "\n" : i % 4 == 3 ? " " : "";
    }
    return uit;
}

// A test in a directory of its own.
struct InMap : testing::Test {
    TijdelijkeMap map;
};

} // namespace zg::test

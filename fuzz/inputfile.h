// A file for the bytes that a fuzz target is given.
#ifndef MARLUNE_FUZZ_INPUTFILE_H
#define MARLUNE_FUZZ_INPUTFILE_H

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <unistd.h>

struct CInputFile {
    CInputFile() { close(mkstemp(m_Path.data())); }
    CInputFile(const CInputFile&) = delete;
    CInputFile& operator=(const CInputFile&) = delete;
    ~CInputFile() { std::remove(m_Path.c_str()); }

    std::string m_Path =
        (std::filesystem::is_directory("/dev/shm") ? "/dev/shm" : "/tmp") + std::string("/fuzz-XXXXXX");
};

/// A file whose contents change with each input.
inline const std::string& FilePath() {
    static const CInputFile file;
    return file.m_Path;
}

inline void WriteInput(const std::uint8_t* bytes, std::size_t size) {
    if (std::FILE* const file = std::fopen(FilePath().c_str(), "wb")) {
        std::fwrite(bytes, 1, size, file);
        std::fclose(file);
    }
}

/// Ends the run with a message when there is one.
inline void ExpectNoFault(const std::string& fault) {
    if (!fault.empty()) {
        std::fprintf(stderr, "%s\n", fault.c_str());
        std::abort();
    }
}

#endif

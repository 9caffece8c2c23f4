#ifndef MARLUNE_FUZZ_INPUTFILE_H
#define MARLUNE_FUZZ_INPUTFILE_H

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

/// A file whose contents change with each input.
inline const std::string& FilePath() {
    static const std::string path = [] {
        std::string name = std::filesystem::is_directory("/dev/shm") ? "/dev/shm/" : "/tmp/";
        name += "marlune-fuzz-XXXXXX";
        close(mkstemp(name.data()));
        static const std::string kept = name;
        std::atexit([] { std::remove(kept.c_str()); });
        return name;
    }();
    return path;
}

inline void WriteInput(const std::uint8_t* bytes, std::size_t size) {
    if (std::FILE* const file = std::fopen(FilePath().c_str(), "wb")) {
        std::fwrite(bytes, 1, size, file);
        std::fclose(file);
    }
}

#endif

// A simulator that costs next to nothing, for benchmarks of the library itself.
#ifndef MARLUNE_BENCH_FLIMEMORY_STUBSIMULATOR_H
#define MARLUNE_BENCH_FLIMEMORY_STUBSIMULATOR_H

#include <deque>
#include <string>
#include <vector>

#include "mti.h"

// A simulator that does next to nothing, so that what is measured is the library.

struct mtiTypeIdTag {
    mtiTypeKindT m_Kind;
    int m_Length;
};
struct mtiSignalIdTag {
    std::string m_Name;
    mtiTypeIdTag m_Type;
    std::vector<unsigned char> m_Value; // enumeration positions
};

/// The time that the process sees; a new one and CLK at 1 make an edge after a time with CLK at 0.
extern int g_StubNow;

/// An instance of a memory with the given ports; the returned argument is that of its process.
class CStubInstance {
public:
    struct CPort {
        const char* m_Name;
        int m_Length; // 0: a single bit
    };
    CStubInstance(const std::string& path, const std::string& parameters, const std::vector<CPort>& ports);
    ~CStubInstance();
    CStubInstance(const CStubInstance&) = delete;
    CStubInstance& operator=(const CStubInstance&) = delete;

    mtiSignalIdTag& Signal(const std::string& name);
    /// One time at which CLK is 0, and then an edge.
    void Clock();

    std::deque<mtiSignalIdTag> m_Signals;

private:
    void* m_Process = nullptr;
};

#endif

// What a memory instance does, as a model.
#ifndef MARLUNE_TESTS_FLIMEMORY_MEMORYMODEL_H
#define MARLUNE_TESTS_FLIMEMORY_MEMORYMODEL_H

#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "tests/simulator/simulator.h"

/// How an instance under test is made. Prefix "a" has a read port, "b" a write port, "c" a shared port, and "s" one of
/// each, which share their data signals and their state.
struct CShape {
    bool m_Synchronous;
    unsigned m_ByteBitWidth;
    std::uint64_t m_Size;
    int m_DataBits; // 0: a single std_logic
    int m_AddressBits;
};

/// What a memory instance does, in terms of signal values as text. It uses none of the library's own types.
class CMemoryModel {
public:
    /// The path is as messages show it; the names of the instance's signals begin with the scope.
    CMemoryModel(CSimulator& simulator, const CShape& shape, std::string path, std::string scope);

    /// The process wakes. The first time at a point of time decides whether that is one of an edge.
    void Wake();

    /// A cell as text of 1024 bits, and what becomes of a value of at most as many that is stored in it.
    std::string Cell(std::uint64_t address) const;
    void SetCell(std::uint64_t address, const std::string& value);

    void Complain(std::uint64_t address, const std::string& effect);

    const CShape m_Shape;
    const std::string m_Scope;
    std::map<std::string, std::string> m_Driven; // by prefix
    std::string m_Transcript;

private:
    std::string Bits(const std::string& signal) const;
    bool IsOne(const std::string& signal) const { return std::stoul(Bits(signal), nullptr, 2) == 1; }
    void Commit();
    void Serve();
    void Read(const std::string& prefix, const std::string& addressSignal);
    void Record(const std::string& prefix, const std::string& address, bool selected);

    CSimulator& m_Simulator;
    const std::string m_Path;
    int m_LastTime = 0;
    bool m_IsEdge = false;
    std::map<std::uint64_t, std::string> m_Cells;
    std::map<std::string, std::string> m_Samples;
    std::map<std::string, std::string> m_Outputs;
    std::map<std::string, std::pair<std::uint64_t, std::string>> m_Pending;
};

/// A memory instance of the shared library with random traffic on its ports, compared with its model at each step.
class CTestedMemory {
public:
    /// A direct one is served by direct calls in place of its process.
    CTestedMemory(CSimulator& simulator, std::mt19937& random, const CShape& shape, const std::string& path,
                  const std::string& scope, bool isDirect);

    /// Changes inputs and the clock in some delta cycles at another time or at the same again; compares all read data
    /// and messages (GoogleTest assertions).
    void Step();

    CMemoryModel m_Model;

private:
    void ServeDirectly(const std::vector<std::string>& ports);
    static void WakeDirectly(void* memory);
    void Compare();
    bool ChangeInputs();
    std::string RandomLetters(std::size_t length, bool isAddress);

    CSimulator& m_Simulator;
    std::mt19937& m_Random;
    std::vector<mtiSignalIdT> m_Signals; // of a direct one: the ports, and all their values one after the other
    std::vector<std::uint64_t> m_Inputs, m_Outputs;
    void* m_Process = nullptr;
};

#endif

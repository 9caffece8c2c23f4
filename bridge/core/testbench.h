// A test bench's access to the memories in simulators without DPI, by the paths that a user writes.
#ifndef MARLUNE_BRIDGE_CORE_TESTBENCH_H
#define MARLUNE_BRIDGE_CORE_TESTBENCH_H

#include <array>
#include <cstdint>
#include <string>

#include "bridge/core/instance.h"
#include "svdpi.h"

namespace marlune::bridge {

/// A cell's value, as wide as the widest cell: 1024 bits.
using CCellValue = std::array<svLogicVecVal, 32>;

// The names in a path are separated by '.', '/' or ':', and it may begin or end with such a character, as VHDL's
// 'path_name does. Case matters only between instances whose paths differ in nothing else. Addresses count LAUs. Errors
// end the simulation.

/// The instance of the path, or null if there is none or if the path fits several in another case.
mtiRegionIdT FindInstance(const std::string& path);

/// Loads the address space of an image into a memory: the LAUs at base + bank, then every banks-th, into the cells from
/// 0 on.
void Load(const std::string& path, const std::string& file, const std::string& addressSpace, std::uint32_t base,
          std::uint32_t bank, std::uint32_t banks);

/// The library's own load by DPI, followed by its warning, if any.
void LoadByName(const char* name, const char* file, const char* addressSpace, std::uint32_t cellBase,
                std::uint32_t lowAddress, std::uint32_t highAddress, std::uint32_t phase, std::uint32_t stride);

/// Stores the low bits of the value into a cell; X and Z become 0.
void Poke(const std::string& path, std::uint32_t address, const CCellValue& value);

/// The contents of a cell, without sign.
CCellValue Peek(const std::string& path, std::uint32_t address);

/// Writes the cells from the first to the last address to a file in the form of $readmemh, one per line with its
/// address. Cells of a sparse memory that were never accessed are left out.
void Dump(const std::string& path, const std::string& file, std::uint32_t first, std::uint32_t last);

} // namespace marlune::bridge

#endif

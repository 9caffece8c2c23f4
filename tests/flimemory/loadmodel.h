// What a load does, as a model.
#ifndef MARLUNE_TESTS_FLIMEMORY_LOADMODEL_H
#define MARLUNE_TESTS_FLIMEMORY_LOADMODEL_H

#include <cstdint>
#include <map>
#include <random>
#include <string>

#include "objectfile/objectfile.h"
#include "src/flimemory/loadplan.h"

using marlune::foreign::CLoadWindow;

/// Fills the file with up to two sections with random contents, most of them data in the address space "ram". Sections
/// and windows lie around a few places, at both ends of the address range among them.
void AddRandomSections(ObjectFile::CObjectFile& file, std::mt19937& random, int wordBitSize, int bytesPerWord);
CLoadWindow RandomWindow(std::mt19937& random);

/// What a load of an address space does: each LAU of each section is asked on its own whether it is taken.
struct CExpectedLoad {
    std::map<std::uint64_t, std::string> m_Cells; // what it stores, as texts of digits
    std::string m_Error;                          // the beginning of the message in which it ends, or empty
};
CExpectedLoad ExpectedLoad(const ObjectFile::CObjectFile& file, const std::string& space, const CLoadWindow& window,
                           std::size_t width, std::uint64_t size, bool includeStackHeap);
/// Loads the address space of some section into a memory of some kind, through a window around that section. Says where
/// the memory and the model differ, or nothing.
std::string CheckLoad(const ObjectFile::CObjectFile& file, std::mt19937& random);

#endif

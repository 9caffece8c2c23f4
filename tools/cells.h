// What a memory would hold after a load of an image, read block by block without such a memory.
#ifndef MARLUNE_TOOLS_CELLS_H
#define MARLUNE_TOOLS_CELLS_H

#include <cstdint>
#include <string>
#include <vector>

#include "objectfile/objectfile.h"
#include "src/flimemory/loadmemory.h"

namespace marlune::tool {

/// The cells of a memory, of `width` bits (1 to 1024) each, after foreign::LoadMemory has filled them from an image.
/// They are copied from the image's sections, by the load's own code, when they are read.
///
/// Implementation note: they are not stored in the memory model's CSparseCells, which takes 8 bytes for each cell. That
/// is eight times the contents of an 8-bit memory, and the sections already hold them in packed form.
class CLoadedCells {
public:
    /// A range of cells.
    struct CRun {
        std::uint64_t m_First;
        std::uint64_t m_End; // after the last
    };

    /// Borrows the image. `width` in bits, `size` in cells. Throws what foreign::PlanSection does.
    CLoadedCells(const ObjectFile::CObjectFile& image, const std::string& space, std::uint32_t width,
                 std::uint32_t size, const foreign::CLoadWindow& window);

    std::uint32_t Width() const { return m_Width; }
    std::uint32_t Size() const { return m_Size; }
    /// The 64-bit limbs that Read stores for a cell.
    unsigned LimbsPerCell() const { return (m_Width + 63) / 64; }
    /// The byte order that all loaded sections share; little if there are none or if they differ.
    ObjectFile::eByteOrder ByteOrder() const { return m_ByteOrder; }

    /// The cells that are loaded, in ascending order, with neighbours joined.
    const std::vector<CRun>& Runs() const { return m_Runs; }
    /// True if all that was loaded into the cells is zeros that take no memory; false says nothing.
    bool IsZero(std::uint64_t first, std::uint32_t count) const;
    /// Stores `count` cells from `first` on in LimbsPerCell() limbs each, the least significant first. Cells that are
    /// not loaded are 0. Throws std::out_of_range for a LAU that its line lacks, as a load does.
    void Read(std::uint64_t first, std::uint32_t count, std::uint64_t* limbs) const;

private:
    /// LAUs of a section with the cells that they go to.
    struct CPart {
        const ObjectFile::CSection* m_Section;
        foreign::CSectionCopy m_Copy;
        std::uint64_t m_First;  // cell
        std::uint64_t m_End;    // after the last cell
        std::size_t m_Order;    // of two parts that share a cell, the load takes the later one last
        std::uint64_t m_MaxEnd; // the highest m_End of this part and of those before it in m_Parts
    };

    void AddPart(const ObjectFile::CSection& section, const foreign::CSectionCopy& copy);
    /// The index of the LAU that goes to the cell of the part.
    static int IndexOf(const CPart& part, std::uint64_t cell);
    void NoteByteOrder(ObjectFile::eByteOrder order);
    void Sort();
    /// The parts with cells in the range, in the order of the load.
    std::vector<const CPart*> PartsIn(std::uint64_t first, std::uint64_t end) const;

    const std::uint32_t m_Width;
    const std::uint32_t m_Size;
    ObjectFile::eByteOrder m_ByteOrder = ObjectFile::BO_LITTLE;
    std::vector<CPart> m_Parts; // by m_First
    std::vector<CRun> m_Runs;
};

} // namespace marlune::tool

#endif

#include <algorithm>
#include <iostream>

#include "tools/cells.h"
#include "tools/commands.h"
#include "tools/image.h"
#include "tools/output.h"
#include "tools/progress.h"
#include "tools/text.h"

namespace marlune::tool {
namespace {

class CDumper {
public:
    CDumper(const CCells& cells, bool all, std::ostream& out)
        : m_Cells(cells), m_Out(out), m_Digits((cells.m_ByteBitWidth + 3) / 4), m_PerRow(CellsPerRow(m_Digits)),
          m_All(all) {}

    /// Rows of cells behind the address of the first; a star for rows of zeros alone.
    void Hex() {
        std::uint64_t printed = 0; // up to here
        for (std::uint64_t row = 0; row < m_Cells.m_Size; row += m_PerRow) {
            if (!m_All) {
                row = m_Cells.NextPage(static_cast<std::uint32_t>(row));
            }
            const std::uint64_t end = std::min<std::uint64_t>(row + m_PerRow, m_Cells.m_Size);
            const std::string text = Row(row, end);
            if (m_All || text.find_first_not_of("0 ") != std::string::npos) {
                m_Out << (row == printed ? "" : "*\n") << HexDigits(row, ADDRESS_DIGITS) << ": " << text << '\n';
                printed = end;
            }
        }
        m_Out << (printed == m_Cells.m_Size ? "" : "*\n") << HexDigits(m_Cells.m_Size, ADDRESS_DIGITS) << '\n';
    }

    /// "@" and an address before each run of cells.
    void ReadMemH() {
        for (const CCells::SRun& run : Runs()) {
            m_Out << '@' << HexDigits(run.m_First, ADDRESS_DIGITS) << '\n';
            for (std::uint64_t cell = run.m_First; cell < run.m_End; cell += m_PerRow) {
                m_Out << Row(cell, std::min(cell + m_PerRow, run.m_End)) << '\n';
            }
        }
    }

    /// From cell 0 on, each cell as whole bytes, the least significant first.
    void Binary() {
        const unsigned bytes = (m_Cells.m_ByteBitWidth + 7) / 8;
        std::uint64_t next = 0;
        for (const CCells::SRun& run : Runs()) {
            WriteZeros((run.m_First - next) * bytes);
            for (std::uint64_t cell = run.m_First; cell < run.m_End; ++cell) {
                const std::uint32_t* limbs = m_Cells.Find(static_cast<std::uint32_t>(cell));
                for (unsigned byte = 0; byte < bytes; ++byte) {
                    const std::uint32_t limb = limbs == nullptr ? 0 : limbs[byte / 4];
                    m_Out.put(static_cast<char>(static_cast<unsigned char>(limb >> (byte % 4 * 8))));
                }
            }
            next = run.m_End;
        }
    }

private:
    static constexpr unsigned ADDRESS_DIGITS = 8;

    /// The largest power of two, up to 16, with which a row fits on a terminal.
    static std::uint32_t CellsPerRow(unsigned digits) {
        std::uint32_t count = 16;
        while (count > 1 && count * (digits + 1) > 64) {
            count /= 2;
        }
        return count;
    }

    std::string Row(std::uint64_t first, std::uint64_t end) const {
        std::string row;
        for (std::uint64_t cell = first; cell < end; ++cell) {
            row += cell == first ? "" : " ";
            const std::uint32_t* limbs = m_Cells.Find(static_cast<std::uint32_t>(cell));
            for (unsigned digit = m_Digits; digit-- > 0;) {
                const std::uint32_t limb = limbs == nullptr ? 0 : limbs[digit / 8];
                row += "0123456789abcdef"[limb >> (digit % 8 * 4) & 15U];
            }
        }
        return row;
    }

    std::vector<CCells::SRun> Runs() const {
        return m_All ? std::vector<CCells::SRun>{{0, m_Cells.m_Size}} : m_Cells.WrittenRuns();
    }

    void WriteZeros(std::uint64_t count) {
        const std::string zeros(std::size_t{1} << 16, '\0');
        for (; count > 0 && m_Out; count -= std::min<std::uint64_t>(count, zeros.size())) {
            m_Out.write(zeros.data(), static_cast<std::streamsize>(std::min<std::uint64_t>(count, zeros.size())));
        }
    }

    const CCells& m_Cells;
    std::ostream& m_Out;
    const unsigned m_Digits; // of a cell
    const std::uint32_t m_PerRow;
    const bool m_All;
};

void Dump(CDumper dumper, const std::string& format) {
    if (format == "hex") {
        dumper.Hex();
    } else if (format == "bin") {
        dumper.Binary();
    } else {
        dumper.ReadMemH();
    }
}

} // namespace

int RunDump(const SOptions& options) {
    const auto image = LoadImage(options.m_File);
    CCells cells("memory", options.m_Width.value(), options.m_Size);
    const std::string space = options.m_Space.value();
    const foreign::CLoadWindow& window = options.m_Window;
    {
        const CProgress progress("loading the memory", CProgress::READING, 0);
        foreign::LoadMemory(cells, *image, space, window.m_CellBase, window.m_LowAddress, window.m_HighAddress,
                            window.m_Phase, window.m_Stride, false);
    }
    if (cells.WrittenRuns().empty()) {
        std::cerr << "marlune-image: warning: " << Printable(options.m_File) << ": nothing of address space '"
                  << Printable(space) << "' goes into this memory\n";
    }
    WriteOutput(options.m_Output,
                [&](std::ostream& out) { Dump(CDumper(cells, options.m_All, out), options.m_Format); });
    return STATUS_OK;
}

} // namespace marlune::tool

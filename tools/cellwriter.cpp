// Writes cells in the formats that `dump` offers.
#include "tools/cellwriter.h"

#include <algorithm>
#include <array>
#include <ostream>
#include <stdexcept>
#include <string_view>

#include "tools/text.h"

namespace marlune::tool {
namespace {

constexpr std::uint32_t BLOCK_CELLS = 4096; // read at a time; a multiple of every row
constexpr std::size_t RECORD_BYTES = 32;    // contents of a line of a hexadecimal format; divides 64 KiB
constexpr std::uint64_t RECORD_ADDRESSES = std::uint64_t{1} << 32;

using CHexPair = std::array<char, 2>;

template <std::size_t N>
constexpr std::array<CHexPair, 256> MakeHexPairs(const char (&digits)[N]) {
    std::array<CHexPair, 256> pairs{};
    for (std::size_t byte = 0; byte < pairs.size(); ++byte) {
        pairs[byte] = {digits[byte / 16], digits[byte % 16]};
    }
    return pairs;
}
constexpr std::array<CHexPair, 256> LOWER_PAIRS = MakeHexPairs("0123456789abcdef");
constexpr std::array<CHexPair, 256> UPPER_PAIRS = MakeHexPairs("0123456789ABCDEF");

/// Buffers text for a stream, because large pieces cost less than small ones.
class CTextBuffer {
public:
    explicit CTextBuffer(std::ostream& out) : m_Out(out), m_Text(SIZE) {}
    CTextBuffer(const CTextBuffer&) = delete;
    CTextBuffer& operator=(const CTextBuffer&) = delete;
    CTextBuffer(CTextBuffer&&) = delete;
    CTextBuffer& operator=(CTextBuffer&&) = delete;
    ~CTextBuffer() { Flush(); }

    void Put(std::string_view text) {
        while (!text.empty()) {
            const std::string_view part = text.substr(0, SIZE);
            std::copy(part.begin(), part.end(), Extend(part.size()));
            text.remove_prefix(part.size());
        }
    }
    /// Room for `count` characters, at most SIZE, which the caller fills at once.
    char* Extend(std::size_t count) {
        if (count > SIZE - m_Used) {
            Flush();
        }
        m_Used += count;
        return m_Text.data() + m_Used - count;
    }
    /// False once the stream has failed.
    explicit operator bool() const { return static_cast<bool>(m_Out); }

private:
    static constexpr std::size_t SIZE = std::size_t{1} << 16;

    void Flush() {
        m_Out.write(m_Text.data(), static_cast<std::streamsize>(m_Used));
        m_Used = 0;
    }

    std::ostream& m_Out;
    std::vector<char> m_Text;
    std::size_t m_Used = 0;
};

/// A format: what comes before, between and after the cells of the runs.
class CCellWriter {
public:
    CCellWriter(std::ostream& out, const CLoadedCells& cells, const CWriteOptions& options)
        : m_Cells(cells), m_Out(out), m_Options(options), m_Limbs(std::size_t{BLOCK_CELLS} * cells.LimbsPerCell()) {}

    /// Rows of cells after the address of the first; a star for rows of zeros alone.
    void HexRows() {
        std::uint64_t printed = 0; // up to here
        for (const auto& run : m_Options.m_All ? Runs() : BlocksInUse()) {
            ForEachRow(run, !m_Options.m_All, [&](std::uint64_t first, std::uint32_t row, std::uint32_t count) {
                m_Out.Put(first == printed ? "" : "*\n");
                PutAddress(first);
                m_Out.Put(": ");
                PutRow(row, count);
                printed = first + count;
            });
        }
        m_Out.Put(printed == m_Cells.Size() ? "" : "*\n");
        PutAddress(m_Cells.Size());
        m_Out.Put("\n");
    }

    /// "@" and an address before each run of cells.
    void ReadMemH() {
        for (const auto& run : Runs()) {
            m_Out.Put("@");
            PutAddress(run.m_First);
            m_Out.Put("\n");
            ForEachRow(run, false,
                       [&](std::uint64_t /*first*/, std::uint32_t row, std::uint32_t count) { PutRow(row, count); });
        }
    }

    /// The bytes from cell 0 on.
    void Binary() {
        std::uint64_t next = 0;
        for (const auto& run : Runs()) {
            PutZeros((run.m_First - next) * BytesPerCell());
            ForEachBytes(run, [&](std::uint64_t /*address*/, const std::string& bytes) { m_Out.Put(bytes); });
            next = run.m_End;
        }
    }

    /// Intel HEX with extended linear addresses.
    void IntelHex() {
        RequireAddresses();
        std::uint64_t high = 0; // the upper half of the address
        for (const auto& run : Runs()) {
            ForEachRecord(run, [&](std::uint64_t address, std::string_view bytes) {
                if (address >> 16 != high) {
                    high = address >> 16;
                    PutIntelRecord(0, 4, BigEndian(high, 2));
                }
                PutIntelRecord(address & 0xFFFF, 0, bytes);
            });
        }
        PutIntelRecord(0, 1, {});
    }

    /// Motorola S-records with addresses of 32 bits.
    void SRecord() {
        RequireAddresses();
        PutSRecord("S0", BigEndian(0, 2), "marlune");
        for (const auto& run : Runs()) {
            ForEachRecord(run, [&](std::uint64_t address, std::string_view bytes) {
                PutSRecord("S3", BigEndian(address, 4), bytes);
            });
        }
        PutSRecord("S7", BigEndian(0, 4), {});
    }

private:
    using CRun = CLoadedCells::CRun;

    unsigned DigitsPerCell() const { return (m_Cells.Width() + 3) / 4; }
    unsigned BytesPerCell() const { return (m_Cells.Width() + 7) / 8; }

    /// The largest power of two, up to 16, with which a row fits on a terminal.
    std::uint32_t CellsPerRow() const {
        std::uint32_t count = 16;
        while (count > 1 && count * (DigitsPerCell() + 1) > 64) {
            count /= 2;
        }
        return count;
    }

    std::vector<CRun> Runs() const { return m_Options.m_All ? std::vector<CRun>{{0, m_Cells.Size()}} : m_Cells.Runs(); }

    /// The runs extended to whole blocks, so that rows begin at multiples of their length.
    std::vector<CRun> BlocksInUse() const {
        std::vector<CRun> blocks;
        for (const auto& run : m_Cells.Runs()) {
            const std::uint64_t first = run.m_First / BLOCK_CELLS * BLOCK_CELLS;
            const std::uint64_t end = (run.m_End + BLOCK_CELLS - 1) / BLOCK_CELLS * BLOCK_CELLS;
            if (blocks.empty() || first > blocks.back().m_End) {
                blocks.push_back({first, first});
            }
            blocks.back().m_End = std::min<std::uint64_t>(end, m_Cells.Size());
        }
        return blocks;
    }

    /// Reads the cells of a run into m_Limbs block by block.
    template <typename CTake>
    void ForEachBlock(const CRun& run, bool skipZeros, CTake take) {
        for (std::uint64_t first = run.m_First; first < run.m_End && m_Out; first += BLOCK_CELLS) {
            const auto count = static_cast<std::uint32_t>(std::min<std::uint64_t>(BLOCK_CELLS, run.m_End - first));
            if (!skipZeros || !m_Cells.IsZero(first, count)) {
                m_Cells.Read(first, count, m_Limbs.data());
                take(first, count);
            }
        }
    }

    /// Passes on the rows of a run: the first cell, its place in the block, and the number of cells.
    template <typename CTake>
    void ForEachRow(const CRun& run, bool skipZeros, CTake take) {
        const std::uint32_t perRow = CellsPerRow();
        ForEachBlock(run, skipZeros, [&](std::uint64_t first, std::uint32_t count) {
            for (std::uint32_t row = 0; row < count; row += perRow) {
                const std::uint32_t cells = std::min(perRow, count - row);
                if (!skipZeros || !IsZeroInBlock(row, cells)) {
                    take(first + row, row, cells);
                }
            }
        });
    }

    const std::uint64_t* LimbsOf(std::uint32_t cell) const {
        return m_Limbs.data() + std::size_t{cell} * m_Cells.LimbsPerCell();
    }

    bool IsZeroInBlock(std::uint32_t cell, std::uint32_t count) const {
        return std::all_of(LimbsOf(cell), LimbsOf(cell + count), [](std::uint64_t limb) { return limb == 0; });
    }

    /// Eight digits.
    void PutAddress(std::uint64_t address) {
        char* text = m_Out.Extend(8);
        for (const unsigned shift : {24U, 16U, 8U, 0U}) {
            text = std::copy_n(LOWER_PAIRS[address >> shift & 0xFF].begin(), 2, text);
        }
    }

    void PutRow(std::uint32_t cell, std::uint32_t count) {
        const unsigned digits = DigitsPerCell();
        char* text = m_Out.Extend(std::size_t{count} * (digits + 1));
        for (const std::uint32_t end = cell + count; cell < end; ++cell, ++text) {
            const std::uint64_t* const limbs = LimbsOf(cell);
            if (digits % 2 != 0) {
                *text++ = LOWER_PAIRS[ByteOf(limbs, digits / 2)][1];
            }
            for (unsigned byte = digits / 2; byte-- > 0; text += 2) {
                std::copy_n(LOWER_PAIRS[ByteOf(limbs, byte)].begin(), 2, text);
            }
            *text = cell + 1 == end ? '\n' : ' ';
        }
    }

    static unsigned char ByteOf(const std::uint64_t* limbs, unsigned index) {
        return static_cast<unsigned char>(limbs[index / 8] >> (index % 8 * 8));
    }

    /// Passes on the bytes of a run, at most a block at a time, with the address of the first.
    template <typename CTake>
    void ForEachBytes(const CRun& run, CTake take) {
        const unsigned perCell = BytesPerCell();
        const bool big = m_Options.m_Order == ObjectFile::BO_BIG;
        std::string bytes;
        ForEachBlock(run, false, [&](std::uint64_t first, std::uint32_t count) {
            bytes.resize(std::size_t{count} * perCell);
            auto to = bytes.begin();
            for (std::uint32_t cell = 0; cell < count; ++cell) {
                for (unsigned i = 0; i < perCell; ++i) {
                    *to++ = static_cast<char>(ByteOf(LimbsOf(cell), big ? perCell - 1 - i : i));
                }
            }
            take(first * perCell, bytes);
        });
    }

    /// Passes on a run's bytes in lines that end where the address is a multiple of RECORD_BYTES.
    template <typename CTake>
    void ForEachRecord(const CRun& run, CTake take) {
        ForEachBytes(run, [&](std::uint64_t address, const std::string& bytes) {
            for (std::size_t begin = 0; begin < bytes.size();) {
                const std::size_t room = RECORD_BYTES - (address + begin) % RECORD_BYTES;
                const std::string_view record = std::string_view(bytes).substr(begin, room);
                take(address + begin, record);
                begin += record.size();
            }
        });
    }

    void PutZeros(std::uint64_t count) {
        const std::string zeros(std::size_t{1} << 16, '\0');
        for (; count > 0 && m_Out; count -= std::min<std::uint64_t>(count, zeros.size())) {
            m_Out.Put(std::string_view(zeros).substr(0, static_cast<std::size_t>(count)));
        }
    }

    void RequireAddresses() const {
        const auto runs = Runs();
        if (!runs.empty() && runs.back().m_End * BytesPerCell() > RECORD_ADDRESSES) {
            throw std::runtime_error("the format " + m_Options.m_Format +
                                     " has byte addresses up to 0xffffffff, but the " + "cells reach " +
                                     Hex(runs.back().m_End * BytesPerCell() - 1));
        }
    }

    static std::string BigEndian(std::uint64_t value, unsigned bytes) {
        std::string text;
        while (bytes-- > 0) {
            text += static_cast<char>(static_cast<unsigned char>(value >> (8 * bytes)));
        }
        return text;
    }

    void PutIntelRecord(std::uint64_t address, unsigned type, std::string_view bytes) {
        constexpr unsigned NEGATED = 0x100;
        PutRecord(":", BigEndian(bytes.size() << 24 | address << 8 | type, 4), bytes, NEGATED);
    }

    void PutSRecord(const char* type, const std::string& address, std::string_view bytes) {
        constexpr unsigned COMPLEMENT = 0xFF;
        PutRecord(type, BigEndian(address.size() + bytes.size() + 1, 1) + address, bytes, COMPLEMENT);
    }

    /// A line: the mark, head and bytes in hexadecimal, and the low byte of `minuend` minus the sum of both.
    void PutRecord(std::string_view mark, std::string_view head, std::string_view bytes, unsigned minuend) {
        char* text = m_Out.Extend(mark.size() + 2 * (head.size() + bytes.size() + 1) + 1);
        text = std::copy(mark.begin(), mark.end(), text);
        const auto put = [&](char byte) {
            const auto value = static_cast<unsigned char>(byte);
            text = std::copy_n(UPPER_PAIRS[value].begin(), 2, text);
            minuend -= value;
        };
        std::for_each(head.begin(), head.end(), put);
        std::for_each(bytes.begin(), bytes.end(), put);
        put(static_cast<char>(static_cast<unsigned char>(minuend)));
        *text = '\n';
    }

    const CLoadedCells& m_Cells;
    CTextBuffer m_Out;
    const CWriteOptions& m_Options;
    std::vector<std::uint64_t> m_Limbs; // of the cells of a block
};

struct CCellFormat {
    const char* m_Name;
    void (CCellWriter::*m_Write)();
};
constexpr std::array<CCellFormat, 5> FORMATS{{{"hex", &CCellWriter::HexRows},
                                              {"bin", &CCellWriter::Binary},
                                              {"readmemh", &CCellWriter::ReadMemH},
                                              {"ihex", &CCellWriter::IntelHex},
                                              {"srec", &CCellWriter::SRecord}}};

} // namespace

std::vector<std::string> CellFormats() {
    std::vector<std::string> names(FORMATS.size());
    std::transform(FORMATS.begin(), FORMATS.end(), names.begin(),
                   [](const CCellFormat& format) { return format.m_Name; });
    return names;
}

void WriteCells(std::ostream& out, const CLoadedCells& cells, const CWriteOptions& options) {
    const auto* const format = std::find_if(FORMATS.begin(), FORMATS.end(), [&](const CCellFormat& candidate) {
        return options.m_Format == candidate.m_Name;
    });
    CCellWriter writer(out, cells, options);
    (writer.*format->m_Write)();
}

} // namespace marlune::tool

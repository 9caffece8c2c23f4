// The assembly line table: which source line an address comes from.
#include "objectfile/lineinfo.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <iostream>
#include <limits>

#include "objectfile/objectfile.h"

namespace ObjectFile {

namespace {

constexpr int MIN_BYTE_BIT_SIZE = 8;
constexpr int START_ADDRESS_BYTES = 4;
constexpr std::size_t CU_SIZE_LENGTH = 15;
constexpr int NUMBER_DIGITS = 64; // digits of a byte that enter a number modulo 2^64

/// The codes of the line program.
enum eLineCode : char { ADD_ADDRESS = 1, ADD_LINE = 2, SET_FILE = 3, ADD_ROW = 4, END_UNIT = 5 };

/// The number that a whole string stands for; an empty one is 0.
long long ConvertString(const std::string& text) {
    char* end = nullptr;
    errno = 0;
    const long long value = std::strtoll(text.c_str(), &end, 10);
    if (end != text.c_str() + text.size() || errno == ERANGE) {
        throw general_error("Could not convert value stored as a string.");
    }
    return value;
}

int WrappingSum(int a, long long b) {
    return static_cast<int>(static_cast<unsigned int>(a) + static_cast<unsigned int>(b));
}

} // namespace

bool CLineTable::PopulateFromMarluneLineSection() {
    m_Rows.clear();
    m_FileNames.clear();
    const CSection* const section = m_ObjectFile->FindSection(VEXON_LINE_SEC_NAME);
    if (section == nullptr || section->GetSectionData() == nullptr) {
        return false;
    }
    m_Section = section;
    const bool complete = Decode();
    m_Section = nullptr;
    return complete;
}

bool CLineTable::Decode() {
    const int bytesPerWord = m_Section->GetBytesPerWord();
    if (bytesPerWord < 1 || m_Section->GetWordBitSize() / bytesPerWord < MIN_BYTE_BIT_SIZE) {
        std::cerr << "Warning (internal error): Assembly line information is present, but sections have byte size "
                     "smaller than "
                  << MIN_BYTE_BIT_SIZE << " this should not occur.\n";
        return false;
    }
    try {
        for (int position = 0; position < m_Section->GetSectionDataByteCount();) {
            position = PopulateFromLineCU(position, static_cast<int>(m_FileNames.size()));
        }
    } catch (const std::exception& error) {
        std::cerr << "Warning: Invalid format of assembly line info in loaded object file "
                  << m_ObjectFile->GetFileName() << " line information is ignored (" << error.what() << ").\n";
        return false;
    }
    return true;
}

int CLineTable::PopulateFromLineCU(int position, int fileBase) {
    unsigned long long startAddress = 0;
    int cuSize = 0;
    const int program = ReadLineCUHeader(position, &startAddress, &cuSize);
    const int end = ReadLineCUItems(program, fileBase, startAddress);
    if (end - position != cuSize) {
        throw general_error("CU size does not fit the specified CU size from header.");
    }
    return end;
}

int CLineTable::ReadLineCUHeader(int position, unsigned long long* startAddress, int* cuSize) {
    std::string text;
    position = ReadStringZero(position, &text);
    if (text.size() != CU_SIZE_LENGTH) {
        throw general_error("CU size information has invalid length.");
    }
    const long long size = ConvertString(text);
    if (size <= static_cast<long long>(CU_SIZE_LENGTH) + 1) {
        throw general_error("CU size has invalid value.");
    }
    // No section is as long as the largest int, so a larger size does not fit into any.
    *cuSize = static_cast<int>(std::min<long long>(size, std::numeric_limits<int>::max()));
    position = ReadStartAddress(position, startAddress);
    for (position = ReadStringZero(position, &text); !text.empty(); position = ReadStringZero(position, &text)) {
        m_FileNames.push_back(text);
    }
    return position;
}

int CLineTable::ReadLineCUItems(int position, int fileBase, unsigned long long startAddress) {
    CLineInfo row;
    row.m_Address = startAddress;
    row.m_FileIndex = fileBase;
    while (true) {
        char code = 0;
        long long operand = 0;
        position = ReadByte(position, &code);
        if (code >= ADD_ADDRESS && code <= SET_FILE) {
            position = ReadNumAsStringZero(position, &operand);
        }
        switch (code) {
        case ADD_ADDRESS:
            row.m_Address += static_cast<unsigned long long>(operand);
            break;
        case ADD_LINE:
            row.m_Line = WrappingSum(row.m_Line, operand);
            break;
        case SET_FILE:
            row.m_FileIndex = WrappingSum(fileBase, operand);
            break;
        case ADD_ROW:
            m_Rows.push_back(row);
            break;
        case END_UNIT:
            row.m_EndOfSequence = true;
            m_Rows.push_back(row);
            return position;
        default:
            throw general_error("Invalid line number automaton code.");
        }
    }
}

int CLineTable::ReadStartAddress(int position, unsigned long long* address) const {
    std::string digits;
    for (int i = 0; i < START_ADDRESS_BYTES; ++i) {
        digits += SignificantDigits(position + i);
    }
    *address = ConvBinToInt(digits, Section().GetByteOrder());
    return position + START_ADDRESS_BYTES;
}

int CLineTable::ReadByte(int position, char* value) const {
    const eByteOrder order = Section().GetByteOrder();
    const auto number = static_cast<long long>(ConvBinToInt(SignificantDigits(position), order));
    if (number < -256) {
        throw general_error("Signed character value underflow while reading character data.");
    }
    if (number > 255) {
        throw general_error("Unsigned character value overflow while reading character data.");
    }
    *value = static_cast<char>(number);
    return position + 1;
}

int CLineTable::ReadStringZero(int position, std::string* text) const {
    text->clear();
    while (true) {
        char value = 0;
        position = ReadByte(position, &value);
        if (value == 0) {
            return position;
        }
        if (static_cast<signed char>(value) < ' ') {
            throw general_error("Unexpected non-printing character in a string.");
        }
        *text += value;
    }
}

int CLineTable::ReadNumAsStringZero(int position, long long* value) const {
    std::string text;
    position = ReadStringZero(position, &text);
    *value = ConvertString(text);
    return position;
}

/// A byte's text, without those leading digits of a wide byte that have no influence on a 64-bit number.
std::string CLineTable::SignificantDigits(int position) const {
    const CSectionData& data = *Section().GetSectionData();
    const int length = data.GetByteLength(position);
    const int first = Section().GetByteOrder() == BO_LITTLE ? 0 : std::max(0, length - NUMBER_DIGITS);
    return data.GetByteDigits(position, first, NUMBER_DIGITS);
}

const CSection& CLineTable::Section() const {
    if (m_Section == nullptr) {
        throw general_error("There is no assembly line section.");
    }
    return *m_Section;
}

} // namespace ObjectFile

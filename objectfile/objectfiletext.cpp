// The text form of a whole object file: header, placement of the records, loading and saving.
#include <cstdint>
#include <iostream>
#include <limits>
#include <new>
#include <stdexcept>
#include <utility>

#include "objectfile/elfimport.h"
#include "objectfile/objectfile.h"

namespace ObjectFile {

const char* const VEXON_OBJECT_MAGIC = "AgT62kG9y7";
const char* const VEXON_ARCHIVE_MAGIC = "BhF66kG8z4";

namespace {

constexpr int HEADER_LINES = 15;
constexpr char DELIMITER = '\n';

/// Hands out consecutive line addresses.
class CLineAllocator {
public:
    void Place(CPersistentObject& record) {
        record.SetLineAddress(GetNext());
        m_Next += record.GetLineSize();
    }
    int GetNext() const {
        if (m_Next > std::numeric_limits<int>::max()) {
            throw general_error("Too many lines for an object file");
        }
        return static_cast<int>(m_Next);
    }

private:
    std::int64_t m_Next = HEADER_LINES;
};

std::string FlagLetters(int flags) {
    std::string letters = (flags & CObjectFile::FLAG_NO_RELOCATIONS) != 0 ? "X" : "";
    return letters + ((flags & CObjectFile::FLAG_NO_SYMBOLS) != 0 ? "S" : "");
}

/// The letters are checked and then forgotten: the flags are computed from the contents.
void LoadFlags(CInputStream& in) {
    const int count = Int<int>(in.GetLine());
    const std::string letters = in.GetLine();
    if (count < 0 || static_cast<std::size_t>(count) > letters.size() ||
        letters.find_first_not_of("SX") < static_cast<std::size_t>(count)) {
        throw in.Reject();
    }
}

void WriteRecords(COutputStream& out, CPersistentObject::Queue& queue, int start) {
    while (!queue.empty()) {
        CPersistentObject* const record = queue.top();
        queue.pop();
        const std::int64_t target = std::int64_t{start} + record->GetLineAddress();
        if (target < out.GetLineCounter()) {
            throw general_error("Address overlapping!");
        }
        while (out.GetLineCounter() < target) {
            out.EndLine();
        }
        record->SaveToStream(out, queue);
    }
}

void ReadRecords(CInputStream& in, CPersistentObject::Queue& queue) {
    while (!queue.empty()) {
        CPersistentObject* const record = queue.top();
        queue.pop();
        if (record->GetLineAddress() < in.GetLineCounter()) {
            throw general_error("Backward reference in file - wrong object file part address.");
        }
        in.SkipToLine(record->GetLineAddress());
        record->LoadFromStream(in, queue);
    }
}

} // namespace

int CObjectFile::RemapToFile() {
    CLineAllocator lines;
    if (SectionsCount() > 0) {
        lines.Place(*m_Sections);
        for (int i = 0; i < SectionsCount(); ++i) {
            CSection& section = *GetSection(i);
            CSectionData* const data = section.GetSectionData();
            if (data == nullptr) {
                continue;
            }
            data->SetLineAddress(0);
            if (section.GetType() != CSection::TYPE_BSS && data->Count() > 0) {
                lines.Place(*data);
            }
        }
        for (int i = 0; i < SectionsCount(); ++i) {
            CRelocationTable* const relocations = GetSection(i)->GetRelocationTable();
            if (relocations == nullptr) {
                continue;
            }
            relocations->SetLineAddress(0);
            if (relocations->Count() > 0) {
                lines.Place(*relocations);
            }
        }
    }
    if (m_SymbolTables) {
        m_SymbolTables->SetLineAddress(0);
        if (HasSymbols()) {
            lines.Place(*m_SymbolTables);
        }
    }
    return lines.GetNext();
}

void CObjectFile::SaveToStream(COutputStream& out) {
    const int start = out.GetLineCounter();
    RemapToFile();
    SaveHeader(out);
    CPersistentObject::Queue queue;
    if (SectionsCount() > 0) {
        queue.push(m_Sections.get());
    }
    if (HasSymbols()) {
        queue.push(m_SymbolTables.get());
    }
    WriteRecords(out, queue, start);
}

void CObjectFile::SaveHeader(COutputStream& out) {
    out.WriteLine(VEXON_OBJECT_MAGIC);
    m_TimeStamp.SetTime();
    out.WriteLine(CTimeStamp::ToString(static_cast<long>(m_TimeStamp.GetTime())), "timestamp");
    SaveMemoryOrganizationToStream(out);
    const std::string letters = FlagLetters(GetFlags());
    out.WriteLine(std::to_string(letters.size()));
    out.WriteLine(letters, "flags");
    out.WriteLine(m_EntryPointIsSet ? "1" : "0", "is entry point set?");
    out.WriteLine(std::to_string(m_EntryPoint), "byte address of entry point");
    out.WriteLine(Int<int>::ToString(SectionsCount(), 10), "section count");
    out.WriteLine(Int<int>::ToString(HasSymbols() ? SymbolTablesCount() : 0, 10), "symbol table count");
    out.WriteLine(Int<int>::ToString(m_SymbolTables ? m_SymbolTables->GetLineAddress() : 0, 10),
                  "symbol table address");
}

void CObjectFile::LoadFromStream(CInputStream& in) {
    LoadRecords(in);
    LinkRecords();
}

std::optional<CReadFailure> CObjectFile::ReadFromStream(CInputStream& in) {
    bool isReading = true; // afterwards no one line is at fault
    const auto failure = [&](std::string reason) {
        return CReadFailure{std::move(reason), isReading ? std::optional<int>(in.GetLastLine()) : std::nullopt};
    };
    try {
        LoadRecords(in);
        isReading = false;
        LinkRecords();
    } catch (const std::bad_alloc&) {
        return CReadFailure{"there is not enough memory", std::nullopt};
    } catch (const syntax_error& error) {
        return failure(error.GetText());
    } catch (const std::exception& error) {
        return failure(error.what());
    }
    return std::nullopt;
}

void CObjectFile::LinkRecords() {
    CheckLinks();
    PopulateLineInfo();
}

void CObjectFile::LoadRecords(CInputStream& in) {
    Clear();
    CPersistentObject::Queue queue;
    LoadHeader(in, queue);
    ReadRecords(in, queue);
}

void CObjectFile::LoadHeader(CInputStream& in, CPersistentObject::Queue& queue) {
    if (in.GetLine() != VEXON_OBJECT_MAGIC) {
        throw in.Reject("Invalid magic number");
    }
    m_TimeStamp = CTimeStamp(CTimeStamp::Parse(in.GetLine()));
    LoadMemoryOrganizationFromStream(in);
    LoadFlags(in);
    const int entryPointIsSet = Int<int>(in.GetLine());
    if (entryPointIsSet != 0 && entryPointIsSet != 1) {
        throw in.Reject();
    }
    m_EntryPointIsSet = entryPointIsSet == 1;
    m_EntryPoint = Int<unsigned long long>(in.GetLine());
    const int sectionCount = Int<int>(in.GetLine());
    const int symbolTableCount = Int<int>(in.GetLine());
    const int symbolTableLine = Int<int>(in.GetLine());
    if (sectionCount > 0) {
        m_Sections = std::make_unique<CSectionContainer>(this, in.GetLineCounter(), sectionCount);
        queue.push(m_Sections.get());
    }
    if (symbolTableCount > 0) {
        m_SymbolTables = std::make_unique<CSymbolTableContainer>(this, symbolTableLine, symbolTableCount);
        queue.push(m_SymbolTables.get());
    }
}

void CObjectFile::CheckLinks() {
    for (int i = 0; i < SymbolTablesCount(); ++i) {
        CSymbolTable& table = *GetSymbolTable(i);
        for (int k = 0; k < table.Count(); ++k) {
            CSymbol& symbol = *table.GetSymbol(k);
            try {
                symbol.SetSection(GetSection(symbol.GetSectionID()));
            } catch (const std::out_of_range&) {
                throw syntax_error(0, "Section index does not exist");
            }
        }
    }
    for (int i = 0; i < SectionsCount(); ++i) {
        const CSection& section = *GetSection(i);
        for (int k = 0; k < section.RelocationCount(); ++k) {
            if (SymbolTablesCount() == 0) {
                throw syntax_error(0, "Symbol Table does not exist");
            }
            const CSymbolTable& symbols = *GetSymbolTable(0);
            CRelocation& relocation = *section.GetRelocation(k);
            try {
                relocation.m_Symbol =
                    symbols.GetSymbol(relocation.m_Symbol != nullptr ? symbols.FindSymbol(relocation.m_Symbol)
                                                                     : relocation.m_SymbolIndex);
            } catch (const std::out_of_range&) {
                throw syntax_error(0, "Symbol index does not exist");
            }
        }
    }
}

bool CObjectFile::SaveFile(const std::string& path) {
    COutputStream out(path, DELIMITER);
    SaveToStream(out);
    out.CloseFile();
    return !out.Failed();
}

void CObjectFile::LoadFile(const std::string& path) {
    m_FileName = path;
    CFileHandle file = OpenRegularFile(path);
    if (!file) {
        throw file_error("File '" + path + "' could not be opened.");
    }
    if (IsElfFile(*file)) {
        LoadElfFile(std::move(file), path, *this);
        return;
    }
    CInputStream in(std::move(file), DELIMITER);
    if (ReadFromStream(in)) {
        std::cerr << "Error: Object file " << path << " contains errors and could not be loaded.\n";
        throw std::exception(); // without the reason: only the line above is reported
    }
}

} // namespace ObjectFile

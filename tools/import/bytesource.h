// The contents of a program, in its file or in memory, until they become sections.
#ifndef MARLUNE_TOOLS_IMPORT_BYTESOURCE_H
#define MARLUNE_TOOLS_IMPORT_BYTESOURCE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace marlune::tool {

/// Bytes that can be read at any offset.
class CByteSource {
public:
    CByteSource() = default;
    CByteSource(const CByteSource&) = delete;
    CByteSource& operator=(const CByteSource&) = delete;
    CByteSource(CByteSource&&) = delete;
    CByteSource& operator=(CByteSource&&) = delete;
    virtual ~CByteSource() = default;

    /// Stores `count` bytes from `offset` on, all of which exist. Throws std::runtime_error if they cannot be read.
    virtual void Read(std::uint64_t offset, char* to, std::size_t count) const = 0;
};

/// An open file.
class CFileSource : public CByteSource {
public:
    /// Throws std::runtime_error if the file cannot be opened.
    explicit CFileSource(const std::string& path);
    CFileSource(const CFileSource&) = delete;
    CFileSource& operator=(const CFileSource&) = delete;
    CFileSource(CFileSource&&) = delete;
    CFileSource& operator=(CFileSource&&) = delete;
    ~CFileSource() override;

    int Handle() const { return m_Handle; }
    std::uint64_t Size() const { return m_Size; }
    void Read(std::uint64_t offset, char* to, std::size_t count) const override;

private:
    int m_Handle;
    std::uint64_t m_Size;
};

/// Bytes in memory, in blocks, so that growing never copies them.
class CBytePool : public CByteSource {
public:
    std::uint64_t Size() const { return m_Size; }
    void Append(std::string_view bytes);
    void Read(std::uint64_t offset, char* to, std::size_t count) const override;

private:
    static constexpr std::size_t BLOCK = std::size_t{1} << 20;

    std::vector<std::unique_ptr<char[]>> m_Blocks;
    std::uint64_t m_Size = 0;
};

} // namespace marlune::tool

#endif

// Texts that share their characters.
#ifndef MARLUNE_OBJECTFILE_SHAREDTEXT_H
#define MARLUNE_OBJECTFILE_SHAREDTEXT_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace ObjectFile {

/// A text that never changes. Copies, and texts that were cut from one block, share the characters.
class CSharedText {
public:
    CSharedText() = default;
    /// A text with characters of its own.
    explicit CSharedText(std::string_view text);
    /// `part` lies in the block that `owner` keeps alive.
    CSharedText(const std::shared_ptr<const void>& owner, std::string_view part)
        : m_Characters(owner, part.data()), m_Size(part.size()) {}

    std::string_view View() const { return {m_Characters.get(), m_Size}; }
    std::string String() const { return std::string(View()); }

private:
    std::shared_ptr<const char> m_Characters;
    std::size_t m_Size = 0;
};

/// Makes texts that share blocks, which saves an allocation for each.
class CTextPool {
public:
    CSharedText Add(std::string_view text);

private:
    static constexpr std::size_t MAX_BLOCK = std::size_t{1} << 16; // unless a text alone is longer

    std::shared_ptr<char> m_Block;
    std::size_t m_Size = 0; // of the block
    std::size_t m_Used = 0; // of it
};

} // namespace ObjectFile

#endif

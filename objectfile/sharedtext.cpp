// Texts that share their characters.
#include "objectfile/sharedtext.h"

#include <algorithm>

namespace ObjectFile {

CSharedText::CSharedText(std::string_view text) : CSharedText(CTextPool().Add(text)) {}

CSharedText CTextPool::Add(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    if (text.size() > m_Size - m_Used) {
        m_Size = std::max(text.size(), std::min(2 * m_Size, MAX_BLOCK));
        m_Block = std::shared_ptr<char>(new char[m_Size], std::default_delete<char[]>());
        m_Used = 0;
    }
    char* const characters = m_Block.get() + m_Used;
    std::copy(text.begin(), text.end(), characters);
    m_Used += text.size();
    return {m_Block, {characters, text.size()}};
}

} // namespace ObjectFile

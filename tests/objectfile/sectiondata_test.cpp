#include "objectfile/sectiondata.h"
#include "testfile.h"

#include <random>
#include <stdexcept>

using namespace ObjectFile;

namespace {

/// Section data as a plain list of texts, against which the packed form is checked.
struct CTextModel {
    std::size_t m_Word;
    std::size_t m_Byte;
    std::vector<std::string> m_Lines;

    void Add(std::string bits) {
        if (!m_Lines.empty() && m_Lines.back().size() < m_Word && m_Lines.back().size() >= m_Byte) {
            const std::size_t room = m_Word - m_Lines.back().size() / m_Byte * m_Byte;
            m_Lines.back() += bits.substr(0, room);
            bits.erase(0, room);
        }
        for (; !bits.empty(); bits.erase(0, m_Word)) {
            m_Lines.push_back(bits.substr(0, m_Word));
        }
    }
    void FillZero(std::size_t count) {
        const std::size_t perWord = m_Word / m_Byte;
        for (bool open = !m_Lines.empty() && m_Lines.back().size() < m_Word && m_Lines.back().size() >= m_Byte;
             count > 0; --count) {
            if (!open) {
                m_Lines.emplace_back();
            }
            std::string& line = m_Lines.back();
            const std::size_t end = std::min(line.size() / m_Byte, perWord - 1) * m_Byte + m_Byte;
            line.resize(std::max(line.size(), end / m_Byte == perWord ? m_Word : end), '0');
            open = line.size() < m_Word;
        }
    }
    std::string GetByte(std::size_t address) const {
        const std::size_t perWord = m_Word / m_Byte;
        const std::string& line = m_Lines.at(address / perWord);
        const std::size_t position = address % perWord * m_Byte;
        return position < line.size() ? line.substr(position, m_Byte) : "out of range";
    }
};

std::string ByteOf(const CSectionData& data, int address) {
    try {
        return data.GetByte(address);
    } catch (const std::out_of_range&) {
        return "out of range";
    }
}

std::string Bits(std::uint64_t value, std::size_t width) {
    return ConvUnsignToBin(value, static_cast<int>(width));
}

void ExpectSame(const CSectionData& data, const CTextModel& model) {
    ASSERT_EQ(data.Count(), static_cast<int>(model.m_Lines.size()));
    for (int line = 0; line < data.Count(); ++line) {
        ASSERT_EQ(data.GetWord(line), model.m_Lines[static_cast<std::size_t>(line)]) << line;
    }
    for (int address = 0; address < data.GetByteCount(); ++address) {
        const std::string text = model.GetByte(static_cast<std::size_t>(address));
        ASSERT_EQ(ByteOf(data, address), text) << address;
        std::uint64_t limbs[3] = {};
        if (data.GetByteBits(address, limbs)) {
            std::string bits = Bits(limbs[2], 64) + Bits(limbs[1], 64) + Bits(limbs[0], 64);
            ASSERT_EQ(bits.substr(bits.size() - model.m_Byte), text) << address;
        }
    }
}

/// CopyBytes from some places must give what GetByte gives, and begin where GetByteBits answers.
void ExpectCopies(const CSectionData& data, std::mt19937& random) {
    for (int i = 0; i < 20 && data.GetByteCount() > 0 && data.GetByteBitSize() <= 64; ++i) {
        const int first = static_cast<int>(random() % static_cast<unsigned>(data.GetByteCount()));
        const int stride = 1 + static_cast<int>(random() % 3);
        const bool reversed = random() % 2 == 0;
        std::vector<std::uint64_t> cells(50);
        const int copied = data.CopyBytes(first, stride, 50, reversed, cells.data());
        std::uint64_t bits = 0;
        for (int k = 0; k < copied; ++k) {
            ASSERT_TRUE(data.GetByteBits(first + k * stride, &bits));
            std::string text = Bits(cells[static_cast<std::size_t>(k)], 64).substr(64U - data.GetByte(first).size());
            ASSERT_EQ(reversed ? ReverseEndianess(text) : text, data.GetByte(first + k * stride));
        }
        ASSERT_EQ(copied > 0, data.GetByteBits(first, &bits));
    }
}

} // namespace

TEST(SectionData, AnswersLikeAListOfTexts) {
    std::mt19937 random(7);
    const std::vector<std::pair<int, int>> shapes = {{32, 4}, {8, 1},  {24, 3},  {16, 4}, {64, 1},  {20, 4},
                                                     {1, 1},  {96, 2}, {150, 1}, {13, 1}, {128, 2}, {160, 4}};
    for (const auto& [word, perWord] : shapes) {
        SCOPED_TRACE(testing::Message() << word << "/" << perWord);
        CSectionData data(word, perWord);
        CTextModel model{static_cast<std::size_t>(word), static_cast<std::size_t>(word / perWord), {}};
        for (int step = 0; step < 300; ++step) {
            const unsigned action = random() % 8;
            const int address =
                data.GetByteCount() == 0 ? 0 : static_cast<int>(random() % static_cast<unsigned>(data.GetByteCount()));
            const auto line = static_cast<std::size_t>(address / perWord);
            if (action < 3) {
                std::string bits;
                for (std::size_t i = random() % 9 * model.m_Byte + (random() % 20 == 0 ? 1 : 0); i > 0; --i) {
                    bits += random() % 2 == 0 ? '0' : '1';
                }
                data.Add(bits.c_str());
                model.Add(bits);
            } else if (action == 3) {
                const int count = static_cast<int>(random() % 7);
                data.FillZero(count);
                model.FillZero(static_cast<std::size_t>(count));
            } else if (action == 4 && line < model.m_Lines.size()) {
                const std::string text =
                    random() % 10 == 0 ? "x" : Bits(random(), random() % 10 == 0 ? 3 : model.m_Word);
                data.SetWord(static_cast<int>(line), text);
                model.m_Lines[line] = text;
            } else if (action > 4 && ByteOf(data, address) != "out of range") {
                const std::string text = random() % 20 == 0 ? "2" : Bits(random(), model.m_Byte);
                data.SetByte(address, text);
                const std::size_t position = static_cast<std::size_t>(address % perWord) * model.m_Byte;
                model.m_Lines[line].replace(position, model.m_Byte, text);
            }
        }
        ASSERT_NO_FATAL_FAILURE(ExpectSame(data, model));
        ASSERT_NO_FATAL_FAILURE(ExpectCopies(data, random));
        ASSERT_NO_FATAL_FAILURE(ExpectSame(CSectionData(data), model));
    }
}

TEST(SectionData, LinesComeBackAsTheyWereWritten) {
    std::string text;
    std::mt19937 random(3);
    for (int i = 0; i < 40000; ++i) { // several buffers of lines, some of them irregular
        text += i % 5000 == 17 ? "01\t// short\n" : Bits(random(), 32) + (i % 999 == 0 ? "\r\n" : "\n");
    }
    const CTestFile file(text);
    CSectionData data(0, 160000, 32, 4);
    CPersistentObject::Queue queue;
    CInputStream in(file.Path(), '\n');
    data.LoadFromStream(in, queue);
    EXPECT_EQ(in.GetLineCounter(), 40000);
    const CTestFile saved;
    COutputStream out(saved.Path(), '\n');
    data.SaveToStream(out, queue);
    out.CloseFile();
    std::string expected;
    for (const std::string& line : Lines(text)) {
        expected += line.substr(0, line.find_first_of("/\r")) + "\n";
    }
    EXPECT_TRUE(ReadFile(saved.Path()) == expected);
    std::vector<std::uint64_t> cells(160000);
    EXPECT_EQ(data.CopyBytes(0, 1, 160000, false, cells.data()), 17 * 4); // up to the first irregular line
    EXPECT_EQ(data.CopyBytes(18 * 4, 1, 160000, true, cells.data()), 4999 * 4);
}

TEST(SectionData, AddressesOutsideAreRefused) {
    CSectionData data(32, 4);
    data.Add(std::string(48, '1').c_str());
    EXPECT_EQ(data.GetWord(1), std::string(16, '1'));
    EXPECT_EQ(data.GetByte(5), "11111111");
    data.SetWord(1, "101");
    EXPECT_EQ(data.GetByte(4), "101");
    EXPECT_EQ(data.GetByteLength(4), 3);
    EXPECT_THROW(data.GetByte(5), std::out_of_range);
    const auto errorOf = [](auto action) -> std::string {
        try {
            action();
        } catch (const std::out_of_range& error) {
            return error.what();
        }
        return "none";
    };
    for (const int address : {-1, 6}) {
        EXPECT_EQ(errorOf([&] { data.GetByte(address); }), "Address out of range while reading byte");
        EXPECT_EQ(errorOf([&] { data.SetByte(address, "0"); }), "Address out of range while writing byte");
        EXPECT_EQ(errorOf([&] { data.GetWord(address); }), "Address out of range while reading word");
        EXPECT_EQ(errorOf([&] { data.SetWord(address, "0"); }), "Address out of range while writing word");
        std::uint64_t cell = 0;
        EXPECT_FALSE(data.GetByteBits(address, &cell));
        EXPECT_EQ(data.CopyBytes(address, 1, 1, false, &cell), 0);
    }
    EXPECT_THROW(CSectionData(0, 0).Add("1"), invalid_format);
    EXPECT_THROW(CSectionData(4, 8).FillZero(1), invalid_format);
}

TEST(SectionData, ZeroFilledGigabytesTakeNoMemory) {
    const long before = PeakMemory();
    CSectionData data(32, 4);
    data.FillZero(1 << 30);
    data.FillZero(6);
    EXPECT_EQ(data.Count(), (1 << 28) + 2);
    EXPECT_EQ(data.GetWord(data.Count() - 1), std::string(16, '0'));
    EXPECT_TRUE(data.IsUntouchedZero(0, (1 << 30) + 6));
    data.SetByte(900000001, "10000001");
    data.SetWord(7, std::string(32, '1'));
    EXPECT_EQ(data.GetWord(225000000), "00000000100000010000000000000000");
    EXPECT_EQ(data.GetByte(31), "11111111");
    EXPECT_FALSE(data.IsUntouchedZero(0, 32));
    EXPECT_TRUE(data.IsUntouchedZero(1 << 25, 1 << 25));
    EXPECT_FALSE(data.IsUntouchedZero(1 << 30, 7));
    EXPECT_THROW(data.FillZero(2147483647), general_error);

    CSectionData wide(2147483646, 2147483646 / 3); // a byte of three bits, a word of gigabits
    wide.FillZero(2000000000);
    wide.SetByte(1999999999, "101");
    EXPECT_EQ(wide.GetByte(1999999999), "101");
    EXPECT_LT(PeakMemory() - before, 40000);
}

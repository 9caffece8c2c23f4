#include "testfile.h"

#include <stdexcept>

using namespace ObjectFile;

TEST(SymbolTable, TheSecondSymbolOfAName) {
    CSymbolTable table;
    EXPECT_TRUE(table.AddSymbol(std::make_unique<CSymbol>("f", CSymbol::TYPE_PRIVATE)));
    const std::string warning =
        ErrorOutput([&] { EXPECT_FALSE(table.AddSymbol(std::make_unique<CSymbol>("f", CSymbol::TYPE_PRIVATE))); });
    EXPECT_EQ(warning, "Warning: local/private symbol with name f is already present in the object file's symbol "
                       "table. This is not supported by the VEXON file format, symbol is ignored.\n");
    EXPECT_EQ(table.Count(), 1);
    try {
        table.AddSymbol(std::make_unique<CSymbol>("f", CSymbol::TYPE_WEAK));
        FAIL();
    } catch (const general_error& error) {
        EXPECT_STREQ(error.what(), "General error: Non-local symbol with name f is already present in the object "
                                   "file's symbol table.");
    }
}

TEST(SymbolTable, IndexFollowsRenaming) {
    CSymbolTable table;
    for (const char* const name : {"a", "b", "c"}) {
        table.AddSymbol(std::make_unique<CSymbol>(name, CSymbol::TYPE_EXTERN));
    }
    CSymbol* const second = table.FindSymbol("b");
    EXPECT_EQ(second->ID(), 1);
    second->UpdateName("z");
    EXPECT_EQ(table.LookUpSymbol("b"), nullptr);
    EXPECT_EQ(table.LookUpSymbol("z"), second);
    table.UpdateSymbolName(second->GetName(), second->GetName());
    EXPECT_THROW(second->UpdateName("a"), general_error);
    EXPECT_THROW(table.UpdateSymbolName("b", "y"), general_error);
    EXPECT_EQ(table.ExternSymbolCount(), 3);
    EXPECT_THROW(table.GetSymbol(3), std::out_of_range);
    EXPECT_THROW(table.GetSymbol(-1), std::out_of_range);
    const CSymbol stranger;
    EXPECT_EQ(table.FindSymbol(&stranger), -1);
    EXPECT_EQ(stranger.ID(), -1);
    EXPECT_TRUE(second->IsSameSymbolAs(second, true));
    EXPECT_FALSE(second->IsSameSymbolAs(table.GetSymbol(0), false));
    EXPECT_EQ(table.GetLineSize(), 9 * 3 + 2);
}

TEST(ExpansionTable, TheFirstTwoLinesAreReadAsAHeader) {
    CExpansionTable table;
    for (const char* const line : {"4", "text//x", "third line"}) {
        table.AddLine(line);
    }
    const CTestFile file;
    COutputStream out(file.Path(), '\n');
    table.SaveToStream(out);
    out.CloseFile();
    EXPECT_EQ(ReadFile(file.Path()), "3\t// symbol expansion data - count of lines\n4\ntext//x\nthird line\n");
    CExpansionTable loaded;
    CInputStream in(file.Path(), '\n');
    loaded.LoadFromStream(in);
    EXPECT_EQ(loaded.GetHeaderText(), "text");
    EXPECT_EQ(loaded.GetLines(), std::vector<std::string>{"third"});
    EXPECT_EQ(loaded.Count(), 3);
}

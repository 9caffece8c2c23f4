// Writes a program image with one section, reads it back and prints what it reads.
#include <iostream>

#include "marlune_int"
#include "number_cast"
#include "objectfile/objectfile.h"
#include "objectfile/objectfileutils.h"

int main() {
    ObjectFile::CObjectFile written(8, 1, ObjectFile::BO_BIG, "ram");
    ObjectFile::CSection* section = written.CreateSection(ObjectFile::CSection::TYPE_DATA, ".data");
    section->SetMemoryByteAddressIsAbsolute(true);
    section->AddData("00101010");
    if (!written.SaveFile("image.vexon")) {
        return 1;
    }
    ObjectFile::CObjectFile read;
    read.LoadFile("image.vexon");
    const auto& data = *read.GetSection(0)->GetSectionData();
    std::cout << read.GetSection(0)->GetName() << " "
              << static_cast<int>(marlune::marlune_int<1024, true>("0b" + data.GetByte(0))) << "\n";
}

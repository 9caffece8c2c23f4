// What must hold for any file that is loaded as an image, for tests and fuzz targets.
#ifndef MARLUNE_TESTS_OBJECTFILE_IMAGECHECK_H
#define MARLUNE_TESTS_OBJECTFILE_IMAGECHECK_H

#include <random>
#include <string>

#include "objectfile/sectiondata.h"

/// Loads the file and, when that works, does with it what the system does with an image: checks its links, saves it and
/// loads it again, decodes its line table, loads it into memories, applies its relocations. Answers "loaded" or "error"
/// (one of the documented errors), or says what is wrong: an error that is not documented, or two results that differ.
std::string CheckImage(const std::string& path);

/// Reads bytes in all the ways that there are; says where they differ, or nothing.
std::string CheckBytes(const ObjectFile::CSectionData& data, std::mt19937& random);

#endif

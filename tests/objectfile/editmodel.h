// The editing operations of an object file against a naive model of it, for tests and fuzz targets.
#ifndef MARLUNE_TESTS_OBJECTFILE_EDITMODEL_H
#define MARLUNE_TESTS_OBJECTFILE_EDITMODEL_H

#include <string>
#include <string_view>

/// Takes the bytes as a list of operations: sections and symbols come, go and change, and so do the sections' contents.
/// Says where the object file and the model differ, or nothing. In the end the object file is saved as `path` and what
/// was saved is checked as an image.
std::string RunEdits(std::string_view bytes, const std::string& path);

#endif

// The version of a library, to be found in its file: strings -a libmarlune_direct.so | grep '^libmarlune'

extern "C" {

extern const char marlune_version[];
const char marlune_version[] = MARLUNE_VERSION_TEXT;

} // extern "C"

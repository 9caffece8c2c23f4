// The types of ports.
#include "bridge/core/signal.h"

namespace {

mtiTypeIdTag g_StdLogic;

} // namespace

mtiSignalIdTag::mtiSignalIdTag(std::string name) : m_Name(std::move(name)) {}

mtiSignalIdTag::mtiSignalIdTag(std::string name, int length)
    : m_Name(std::move(name)), m_Type{MTI_TYPE_ARRAY, length, &g_StdLogic} {}

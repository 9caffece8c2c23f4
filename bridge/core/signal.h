// The ports of an instance as the foreign language interface knows them: signals, their types, and drivers.
#ifndef MARLUNE_BRIDGE_CORE_SIGNAL_H
#define MARLUNE_BRIDGE_CORE_SIGNAL_H

#include <string>
#include <type_traits>

#include "mti.h"
#include "src/flimemory/direct.h"

namespace marlune::bridge {

/// The value of a port in the simulator. Values are positions in 'U', 'X', '0', '1', 'Z', 'W', 'L', 'H', '-', a byte
/// for each element, the leftmost element first.
class CSignalValue {
public:
    CSignalValue() = default;
    virtual ~CSignalValue() = default;
    CSignalValue(const CSignalValue&) = delete;
    CSignalValue& operator=(const CSignalValue&) = delete;

    /// Writes the present value to the positions, which are as many as the signal has elements.
    virtual void Read(unsigned char* positions) const = 0;

    /// Assigns a value.
    virtual void Drive(const unsigned char* positions) = 0;
};

} // namespace marlune::bridge

/// What the foreign language interface knows as a type: std_logic, or an array of it.
struct mtiTypeIdTag {
    mtiTypeKindT m_Kind = MTI_TYPE_ENUM;
    mtiInt32T m_Length = 0;         // elements of an array
    mtiTypeIdT m_Element = nullptr; // of an array
};

/// A port of an instance. Its address is its handle.
struct mtiSignalIdTag {
    /// A single std_logic.
    explicit mtiSignalIdTag(std::string name);

    /// An array of so many elements.
    mtiSignalIdTag(std::string name, int length);

    mtiSignalIdTag(const mtiSignalIdTag&) = delete; // the type's address is handed out
    mtiSignalIdTag& operator=(const mtiSignalIdTag&) = delete;

    marlune_direct_signal m_Place{}; // for the memory library: where a directly served instance has its value
    std::string m_Name;
    mtiTypeIdTag m_Type;
    marlune::bridge::CSignalValue* m_Value = nullptr; // null for a directly served instance; the host owns it
    bool m_IsUsed = false;                            // a process is sensitive to it, or it has a driver
};

static_assert(std::is_standard_layout_v<mtiSignalIdTag>, "a signal's address must be that of its m_Place");

/// A driver is no more than its signal, because a port of a memory has only one.
struct mtiDriverIdTag {
    mtiSignalIdT m_Signal;
};

#endif

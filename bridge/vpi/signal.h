#ifndef MARLUNE_BRIDGE_VPI_SIGNAL_H
#define MARLUNE_BRIDGE_VPI_SIGNAL_H

#include "bridge/vpi/vpi.h"
#include "mti.h"

#include <string>
#include <vector>

/// What the foreign language interface knows as a type: std_logic, or an array of them.
struct mtiTypeIdTag {
    mtiTypeKindT m_Kind = MTI_TYPE_ENUM;
    mtiInt32T m_Length = 0;         ///< elements of an array
    mtiTypeIdT m_Element = nullptr; ///< of an array
};

/// A port of an instance: the nine-valued signal behind a VPI object. Values are positions in 'U','X','0','1','Z','W',
/// 'L','H','-'; an array is handed over with its leftmost element first, a byte each.
struct mtiSignalIdTag {
    /// The object stays the simulator's. `literals` are the characters that write the nine values in this simulator.
    mtiSignalIdTag(std::string name, vpiHandle object, const char* literals);

    mtiSignalIdTag(const mtiSignalIdTag&) = delete; // its address is the handle, and its type points into it
    mtiSignalIdTag& operator=(const mtiSignalIdTag&) = delete;

    /// Whether it is std_logic or a vector of it. No other function may be called for another one.
    bool IsSupported() const { return m_Width > 0; }

    const std::string& GetName() const { return m_Name; }
    vpiHandle GetObject() const { return m_Object; }
    mtiTypeIdT GetType() { return &m_Type; }
    int GetWidth() const { return m_Width; } ///< in elements, 1 for std_logic

    /// Writes the present value's positions, GetWidth() bytes.
    void Read(unsigned char* positions) const;

    /// Assigns a value, given as to mti_SetSignalValue: a position, or the address of GetWidth() of them. Assigning the
    /// last assigned value again does nothing: the bridge is the port's only driver.
    void Drive(mtiLongT value);

private:
    void Put();

    std::string m_Name;
    vpiHandle m_Object;
    const char* m_Literals;
    int m_Width;
    mtiTypeIdTag m_Type;
    std::vector<unsigned char> m_Driven; // the last assigned positions, empty before the first
    std::string m_Text;                  // the same as text, here to be used again
};

/// A driver adds nothing to its signal: a port of a memory has one.
struct mtiDriverIdTag {
    mtiSignalIdT m_Signal;
};

#endif

// Signals whose values are read and assigned through VPI.
#ifndef MARLUNE_BRIDGE_VPI_SIGNAL_H
#define MARLUNE_BRIDGE_VPI_SIGNAL_H

#include <string>
#include <vector>

#include "bridge/core/signal.h"
#include "bridge/vpi/vpi.h"

namespace marlune::bridge {

/// The width of a VPI object in bits; 0 if it is neither a bit nor a bit vector but a real or a scalar of several bits
/// (VHDL's integers and enumerations).
int WidthOf(vpiHandle object);

class CVpiSignal : public CSignalValue {
public:
    /// Borrows the object. `literals` are the characters for the nine values in this simulator.
    CVpiSignal(vpiHandle object, int width, const char* literals)
        : m_Object(object), m_Literals(literals), m_Width(width) {}

    vpiHandle GetObject() const { return m_Object; }

    void Read(unsigned char* positions) const override;

    /// Does nothing if the value is the last assigned one, because this is the port's only driver.
    void Drive(const unsigned char* positions) override;

private:
    void Put();

    vpiHandle m_Object;
    const char* m_Literals;
    int m_Width;
    std::vector<unsigned char> m_Driven; // the last assigned positions, empty before the first
    std::string m_Text;                  // the same as text; kept to reuse its memory
};

} // namespace marlune::bridge

#endif

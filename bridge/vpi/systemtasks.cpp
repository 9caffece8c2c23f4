// System tasks by which a test bench without DPI reaches the memories.
#include "bridge/vpi/systemtasks.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <vector>

#include "bridge/core/failure.h"
#include "bridge/core/testbench.h"
#include "bridge/vpi/host.h"
#include "bridge/vpi/vpi.h"
#include "svdpi.h"

namespace marlune::bridge {

namespace {

constexpr PLI_INT32 RECORD_BITS = 32;
constexpr std::size_t REQUIRED_TEXTS = 2; // a path and a file; an address space may have no name

/// The call that runs, with its arguments.
class CCall {
public:
    CCall() : m_Call(vpi_handle(vpiSysTfCall, nullptr)) {
        m_Arguments = GetObjects(vpiArgument, m_Call);
        m_Name = GetText(vpiName, m_Call);
    }

    std::size_t GetCount() const { return m_Arguments.size(); }
    PLI_INT32 GetType(std::size_t index) const { return vpi_get(vpiType, m_Arguments[index]); }
    bool IsReal(std::size_t index) const {
        return GetType(index) == vpiRealVar ||
               (GetType(index) == vpiConstant && vpi_get(vpiConstType, m_Arguments[index]) == vpiRealConst);
    }
    PLI_INT32 GetSize(std::size_t index) const { return vpi_get(vpiSize, m_Arguments[index]); }

    std::string GetTextValue(std::size_t index) const {
        std::string text = bridge::GetTextValue(m_Arguments[index]);
        if (text.empty() && index < REQUIRED_TEXTS) {
            Refuse(index, "must be a text");
        }
        return text;
    }

    /// An unsigned number of 32 bits, or the default when there is no such argument.
    std::uint32_t GetNumber(std::size_t index, std::uint32_t otherwise = 0) const {
        if (index >= m_Arguments.size()) {
            return otherwise;
        }
        const std::vector<t_vpi_vecval> records = GetRecords(index);
        for (std::size_t record = 0; record < records.size(); ++record) {
            if (records[record].bval != 0 || (record > 0 && records[record].aval != 0)) {
                Refuse(index, "must be a number of 32 bits without X and Z");
            }
        }
        return records[0].aval;
    }

    CCellValue GetCellValue(std::size_t index) const {
        CCellValue value{};
        const std::vector<t_vpi_vecval> records = GetRecords(index);
        std::copy_n(records.begin(), std::min(records.size(), value.size()), value.begin());
        return value;
    }

    void Assign(std::size_t index, const CCellValue& value) const {
        const auto count = static_cast<std::size_t>((GetSize(index) + RECORD_BITS - 1) / RECORD_BITS);
        std::vector<t_vpi_vecval> records(std::max(count, value.size()));
        std::copy(value.begin(), value.end(), records.begin());
        t_vpi_value assigned{vpiVectorVal, {nullptr}};
        assigned.value.vector = records.data();
        vpi_put_value(m_Arguments[index], &assigned, nullptr, vpiNoDelay);
    }

    [[noreturn]] void Refuse(const std::string& reason) const {
        Fail("", GetText(vpiFile, m_Call) + ":" + std::to_string(vpi_get(vpiLineNo, m_Call)) + ": " + m_Name + " " +
                     reason + ".");
    }
    [[noreturn]] void Refuse(std::size_t index, const std::string& reason) const {
        Refuse("argument " + std::to_string(index + 1) + " " + reason);
    }

private:
    /// In the last record Icarus leaves foreign bits above the expression's own. An expression of the type string has
    /// no records; only here does that show.
    std::vector<t_vpi_vecval> GetRecords(std::size_t index) const {
        t_vpi_value value{vpiVectorVal, {nullptr}};
        vpi_get_value(m_Arguments[index], &value);
        if (value.format != vpiVectorVal) {
            Refuse(index, "must be a number");
        }
        const PLI_INT32 size = GetSize(index);
        std::vector<t_vpi_vecval> records(value.value.vector,
                                          value.value.vector + (size + RECORD_BITS - 1) / RECORD_BITS);
        if (size % RECORD_BITS != 0) {
            const std::uint32_t own = (std::uint32_t{1} << (size % RECORD_BITS)) - 1;
            records.back().aval &= own;
            records.back().bval &= own;
        }
        return records;
    }

    vpiHandle m_Call;
    std::vector<vpiHandle> m_Arguments;
    std::string m_Name;
};

void LoadImage(const CCall& call) {
    Load(call.GetTextValue(0), call.GetTextValue(1), call.GetTextValue(2), call.GetNumber(3), 0, 1);
}

void LoadBank(const CCall& call) {
    Load(call.GetTextValue(0), call.GetTextValue(1), call.GetTextValue(2), call.GetNumber(5), call.GetNumber(3),
         call.GetNumber(4));
}

void PokeCell(const CCall& call) {
    Poke(call.GetTextValue(0), call.GetNumber(1), call.GetCellValue(2));
}

void PeekCell(const CCall& call) {
    call.Assign(2, Peek(call.GetTextValue(0), call.GetNumber(1)));
}

/// A task. A letter gives the kind of each argument: t for a text, n for a number, v for a variable that is assigned.
/// Arguments after the blank are optional.
struct CTask {
    const char* m_Name;
    const char* m_Kinds;
    const char* m_Form;
    void (*m_Run)(const CCall&);
};

constexpr CTask TASKS[] = {
    {"$marlune_load_image", "ttt n", "(path, file, space [, base])", LoadImage},
    {"$marlune_load_bank", "tttnn n", "(path, file, space, bank, banks [, base])", LoadBank},
    {"$marlune_poke", "tnn", "(path, address, value)", PokeCell},
    {"$marlune_peek", "tnv", "(path, address, variable)", PeekCell},
};

// What may be assigned as a whole. Icarus aborts on the assignment to a part select with a variable index.
bool IsVariable(PLI_INT32 type) {
    return type == vpiMemoryWord || std::find(std::begin(VARIABLES), std::end(VARIABLES), type) != std::end(VARIABLES);
}

/// When the design is read: refuses a call with arguments of the wrong number or kind.
PLI_INT32 CheckCall(PLI_BYTE8* userData) {
    const CTask& task = *reinterpret_cast<const CTask*>(userData);
    const CCall call;
    const std::string kinds = task.m_Kinds;
    const std::size_t blank = kinds.find(' ');
    const std::size_t least = std::min(blank, kinds.size());
    const std::size_t most = kinds.size() - (blank == std::string::npos ? 0 : 1);
    if (call.GetCount() < least || call.GetCount() > most) {
        call.Refuse(std::string("takes ") + task.m_Form);
    }
    for (std::size_t i = 0; i < call.GetCount(); ++i) {
        const char kind = kinds[i < blank ? i : i + 1];
        const PLI_INT32 type = call.GetType(i);
        if (call.IsReal(i)) {
            call.Refuse(i, "must not be real: the task takes " + std::string(task.m_Form));
        }
        if (kind == 'v' && !IsVariable(type)) {
            call.Refuse(i, "must be a whole variable, and neither a part of one nor an expression: the task takes " +
                               std::string(task.m_Form));
        }
        if (kind == 'n' && type == vpiStringVar) {
            call.Refuse(i, "must be a number: the task takes " + std::string(task.m_Form));
        }
    }
    return 0;
}

PLI_INT32 RunCall(PLI_BYTE8* userData) {
    reinterpret_cast<const CTask*>(userData)->m_Run(CCall());
    return 0;
}

} // namespace

void RegisterSystemTasks() {
    for (const CTask& task : TASKS) {
        // The interface takes writable data, but only hands it back.
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast)
        auto* const userData = reinterpret_cast<PLI_BYTE8*>(const_cast<CTask*>(&task));
        t_vpi_systf_data data{vpiSysTask, 0, task.m_Name, RunCall, CheckCall, nullptr, userData};
        vpi_register_systf(&data);
    }
}

} // namespace marlune::bridge

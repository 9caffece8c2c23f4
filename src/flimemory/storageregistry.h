// The registry in which a test bench finds the memories by their names.
#ifndef MARLUNE_FLIMEMORY_STORAGEREGISTRY_H
#define MARLUNE_FLIMEMORY_STORAGEREGISTRY_H

#include <string>
#include <string_view>
#include <unordered_map>

#include "src/flimemory/storage.h"

namespace marlune::foreign::fli {

/// Storages by normalised instance name, borrowed from their CProcessInfo.
///
/// Implementation note: a test bench looks up a name at every access, usually the same as before. The last name is
/// compared first, which costs a fraction of hashing it.
class CStorageRegistry {
public:
    /// Registers the storage, in place of one that had the name.
    void Set(const std::string& name, CStorage* storage) {
        m_Storages[name] = storage;
        m_LastFound = nullptr;
    }

    void Erase(const std::string& name) {
        m_Storages.erase(name);
        m_LastFound = nullptr;
    }

    /// The storage of exactly this name, or null. Allocates nothing unless the name is longer than any before.
    CStorage* Find(std::string_view name) {
        if (m_LastFound == nullptr || m_LastName != name) {
            m_LastName = name;
            const auto found = m_Storages.find(m_LastName);
            m_LastFound = found != m_Storages.end() ? found->second : nullptr;
        }
        return m_LastFound;
    }

private:
    std::unordered_map<std::string, CStorage*> m_Storages;
    std::string m_LastName;
    CStorage* m_LastFound = nullptr; // the storage of m_LastName
};

} // namespace marlune::foreign::fli

#endif

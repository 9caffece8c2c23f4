// Finds likely mistakes in an instance, and describes them.
#include "bridge/core/instancereport.h"

#include <algorithm>
#include <numeric>
#include <stdexcept>
#include <vector>

#include <strings.h>

#include "bridge/core/failure.h"
#include "general_error"
#include "number_cast"
#include "src/flimemory/parameters.h"
#include "src/flimemory/ports.h"
#include "src/flimemory/projectname.h"

namespace marlune::bridge {

namespace {

using foreign::fli::CPortGroup;
using foreign::fli::DescribeGroups;
using foreign::fli::HasRole;

const char* const PARAMETER_NAMES[] = {"read_is_synchronous", "byte_bit_width", "size_in_bytes"};

std::string Join(const std::vector<std::string>& words, const char* quote) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : ", ") + (quote + word) + quote;
    }
    return text;
}

std::vector<CPortGroup> GroupsOf(const mtiRegionIdTag& region) {
    return region.m_Ports.empty() ? std::vector<CPortGroup>() : DescribeGroups(region.m_Ports.data());
}

/// RE0 has no effect, and CLK belongs to no group.
bool MayBeUnused(const std::string& name) {
    return HasRole(name, "RE0") || strcasecmp(name.c_str(), "CLK") == 0;
}

/// The group of the prefix that lacks the fewest ports; null if there is none.
const CPortGroup* MostComplete(const std::vector<CPortGroup>& groups, const std::string& prefix) {
    const CPortGroup* best = nullptr;
    for (const CPortGroup& group : groups) {
        if (group.m_Prefix == prefix && !group.m_Missing.empty() &&
            (best == nullptr || group.m_Missing.size() < best->m_Missing.size())) {
            best = &group;
        }
    }
    return best;
}

/// The number of insertions, deletions and replacements that turn one text into the other (R. Wagner, M. Fischer, The
/// String-to-String Correction Problem, 1974).
std::size_t EditDistance(const std::string& from, const std::string& to) {
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (const char character : from) {
        std::size_t diagonal = row[0]++;
        for (std::size_t i = 0; i < to.size(); ++i) {
            const std::size_t replaced = diagonal + (character == to[i] ? 0 : 1);
            diagonal = row[i + 1];
            row[i + 1] = std::min({replaced, row[i] + 1, row[i + 1] + 1});
        }
    }
    return row.back();
}

} // namespace

void CheckWidth(const mtiRegionIdTag& region) {
    constexpr unsigned MOST_BITS = 1024;
    try {
        const unsigned width = foreign::fli::ParseParameters(region.m_Parameters).m_ByteBitWidth;
        if (width > MOST_BITS) {
            Fail(region.m_Path, "A width of " + std::to_string(width) +
                                    " bits is not possible: a test bench's words have 1024, and so has a cell.");
        }
    } catch (const std::exception&) { // the memory library reports it
        return;
    }
}

std::string DescribeWrongParameter(const std::string& parameters) {
    const std::vector<std::string> arguments = foreign::fli::SplitArguments(parameters);
    for (std::size_t i = 0; i < arguments.size() && i < std::size(PARAMETER_NAMES); ++i) {
        try {
            int suffixBits = 0;
            if (i == 0) {
                detail::number_cast<bool>::Convert(arguments[i], suffixBits);
            } else {
                detail::number_cast<unsigned>::Convert(arguments[i], suffixBits);
            }
        } catch (const std::invalid_argument&) {
            return "Parameter " + std::to_string(i + 1) + ", <" + PARAMETER_NAMES[i] + ">, is '" + arguments[i] +
                   "'; all are '" + parameters + "'.";
        }
    }
    return "";
}

std::string DescribeShortPort(const mtiRegionIdTag& region) {
    constexpr std::size_t ROLE_LENGTH = 3; // of the longest roles
    for (const mtiSignalIdTag& signal : region.m_Signals) {
        if (signal.m_Name.size() < ROLE_LENGTH) {
            return "Port '" + signal.m_Name + "' needs a prefix, as in 'a_" + signal.m_Name + "'.";
        }
    }
    return "";
}

void WarnOfPorts(const mtiRegionIdTag& region) {
    for (const mtiSignalIdTag& signal : region.m_Signals) {
        if (signal.m_IsUsed && signal.m_Type.m_Length > 1 &&
            (HasRole(signal.m_Name, "WE0") || HasRole(signal.m_Name, "CS0"))) {
            PrintWarning(region.m_Path, "port '" + signal.m_Name + "' has " + std::to_string(signal.m_Type.m_Length) +
                                            " bits and is active only if its whole value is 1. "
                                            "For byte enables use a memory for each byte.");
        }
    }
    std::vector<std::pair<std::string, std::vector<std::string>>> unused; // names by prefix, in the order of the ports
    for (const mtiSignalIdTag& signal : region.m_Signals) {
        if (signal.m_IsUsed || MayBeUnused(signal.m_Name)) {
            continue;
        }
        const std::string prefix = foreign::fli::PrefixOf(signal.m_Name);
        const auto known =
            std::find_if(unused.begin(), unused.end(), [&](const auto& ports) { return ports.first == prefix; });
        auto& ports = known != unused.end() ? *known : unused.emplace_back(prefix, std::vector<std::string>());
        ports.second.push_back(signal.m_Name);
    }
    const std::vector<CPortGroup> groups = unused.empty() ? std::vector<CPortGroup>() : GroupsOf(region);
    for (const auto& [prefix, names] : unused) {
        const bool isOne = names.size() == 1;
        const CPortGroup* group = MostComplete(groups, prefix);
        PrintWarning(region.m_Path,
                     (isOne ? "port " : "ports ") + Join(names, "'") + (isOne ? " is" : " are") + " not used: " +
                         (group == nullptr ? std::string("the name ends in no role.")
                                           : (isOne ? "its" : "their") + std::string(" group lacks ") +
                                                 Join(group->m_Missing, "") + " to be a " + group->m_Kind + " port."));
    }
}

std::string DescribeInstance(const mtiRegionIdTag& region) {
    const foreign::fli::CParameters parameters = foreign::fli::ParseParameters(region.m_Parameters);
    std::string text = region.m_Path + ": name " + region.m_Name + ", mode " +
                       (parameters.m_ReadIsSynchronous ? "1" : "0") + ", width " +
                       std::to_string(parameters.m_ByteBitWidth) + ", size " + std::to_string(parameters.m_SizeInBytes);
    for (const CPortGroup& group : GroupsOf(region)) {
        if (group.m_Missing.empty()) {
            text += ", " + group.m_Kind + " port " + (group.m_Prefix.empty() ? "without prefix" : group.m_Prefix);
        }
    }
    return text;
}

std::string DescribeClosest(const std::deque<mtiRegionIdTag>& regions, const std::string& name) {
    constexpr std::size_t MOST = 10;
    std::vector<std::pair<std::size_t, std::string>> candidates;
    candidates.reserve(regions.size());
    for (const mtiRegionIdTag& region : regions) {
        candidates.emplace_back(EditDistance(name, region.m_Name), region.m_Path);
    }
    if (candidates.empty()) {
        return "There is no memory.";
    }
    std::sort(candidates.begin(), candidates.end());
    std::vector<std::string> paths;
    for (std::size_t i = 0; i < candidates.size() && i < MOST; ++i) {
        paths.push_back(candidates[i].second);
    }
    const std::string more = candidates.size() > MOST ? " and more" : "";
    return "The memories are: " + Join(paths, "'") + more + ".";
}

} // namespace marlune::bridge

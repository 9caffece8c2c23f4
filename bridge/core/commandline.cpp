// Reads the +marlune_ options.
#include "bridge/core/commandline.h"

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <string_view>

#include "bridge/core/failure.h"
#include "bridge/core/text.h"

namespace marlune::bridge {

namespace {

constexpr std::string_view LOAD = "+marlune_load=";
constexpr std::string_view DUMP = "+marlune_dump=";
constexpr std::string_view LIST = "+marlune_list";

constexpr const char* FORMS =
    "+marlune_load=PATH,FILE[,SPACE[,BASE[,BANK/BANKS]]], +marlune_dump=PATH,FILE[,FIRST,LAST] or "
    "+marlune_list";

[[noreturn]] void Refuse(const std::string& argument, const std::string& reason) {
    Fail("", "Option '" + argument + "': " + reason + ". The options are " + FORMS + ".");
}

std::vector<std::string> Split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    for (;;) {
        const std::size_t end = text.find(separator);
        parts.emplace_back(text.substr(0, end));
        if (end == std::string_view::npos) {
            return parts;
        }
        text.remove_prefix(end + 1);
    }
}

/// A number of 32 bits, written as in C.
std::uint32_t ReadNumber(const std::string& argument, const std::string& text) {
    char* end = nullptr;
    errno = 0;
    const unsigned long long number = std::strtoull(text.c_str(), &end, 0);
    const bool isDigit = !text.empty() && text.front() >= '0' && text.front() <= '9';
    if (!isDigit || *end != '\0' || errno != 0 || number > 0xFFFFFFFF) {
        Refuse(argument, "'" + text + "' is not a number of 32 bits");
    }
    return static_cast<std::uint32_t>(number);
}

CLoadOption ReadLoad(const std::string& argument) {
    const std::vector<std::string> parts = Split(std::string_view(argument).substr(LOAD.size()), ',');
    if (parts.size() < 2 || parts.size() > 5 || parts[0].empty() || parts[1].empty()) {
        Refuse(argument, "a path and a file are needed, and at most three more values");
    }
    CLoadOption option;
    option.m_Path = parts[0];
    option.m_File = parts[1];
    if (parts.size() > 2 && !parts[2].empty()) {
        option.m_AddressSpace = parts[2];
    }
    if (parts.size() > 3) {
        option.m_Base = ReadNumber(argument, parts[3]);
    }
    if (parts.size() > 4) {
        const std::vector<std::string> bank = Split(parts[4], '/');
        if (bank.size() != 2) {
            Refuse(argument, "'" + parts[4] + "' is not of the form BANK/BANKS");
        }
        option.m_Bank = ReadNumber(argument, bank[0]);
        option.m_Banks = ReadNumber(argument, bank[1]);
        if (option.m_Bank >= option.m_Banks) {
            Refuse(argument, "the bank must be below the number of banks");
        }
    }
    return option;
}

CDumpOption ReadDump(const std::string& argument) {
    const std::vector<std::string> parts = Split(std::string_view(argument).substr(DUMP.size()), ',');
    if ((parts.size() != 2 && parts.size() != 4) || parts[0].empty() || parts[1].empty()) {
        Refuse(argument, "a path and a file are needed, and a first address only with a last one");
    }
    CDumpOption option;
    option.m_Path = parts[0];
    option.m_File = parts[1];
    if (parts.size() == 4) {
        option.m_First = ReadNumber(argument, parts[2]);
        option.m_Last = ReadNumber(argument, parts[3]);
        if (option.m_First > option.m_Last) {
            Refuse(argument, "the first address must not be above the last one");
        }
    }
    return option;
}

} // namespace

/// The system has the arguments however the simulator was started, even if the user wrote the main program.
COptions ReadCommandLine() {
    COptions options;
    std::ifstream arguments("/proc/self/cmdline", std::ios::binary);
    for (std::string argument; std::getline(arguments, argument, '\0');) {
        if (BeginsWith(argument, LOAD)) {
            options.m_Loads.push_back(ReadLoad(argument));
        } else if (BeginsWith(argument, DUMP)) {
            options.m_Dumps.push_back(ReadDump(argument));
        } else if (argument == LIST) {
            options.m_IsListWanted = true;
        } else if (BeginsWith(argument, "+marlune_")) {
            Refuse(argument, "there is no such option");
        }
    }
    return options;
}

} // namespace marlune::bridge

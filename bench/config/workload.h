// The files and questions that every configuration library is measured with. No Qt: KConfig brings another one.
#pragma once

#include <fstream>
#include <string>

namespace workload {

// Groups of 50 entries, numbers as most settings are, in the order in which they are saved.
inline constexpr int kEntriesPerGroup = 50;

inline std::string padded(int number)
{
    const std::string digits = std::to_string(number);
    return std::string(5 - digits.size(), '0') + digits;
}
inline std::string group(int entry) { return "Group" + padded(entry / kEntriesPerGroup); }
inline std::string key(int entry) { return "SettingName" + padded(entry % kEntriesPerGroup); }
inline int value(int entry) { return entry * 37 % 10007; }

// `separator` is " = " or "=": some of the libraries keep the blanks as part of the value.
inline std::string text(int entries, const std::string &separator = " = ")
{
    std::string all;
    for (int entry = 0; entry < entries; ++entry) {
        if (entry % kEntriesPerGroup == 0)
            all.append("[").append(group(entry)).append("]\n");
        all.append(key(entry)).append(separator).append(std::to_string(value(entry))).append("\n");
    }
    return all;
}

// Files stand in the working directory, which is on the disk that is to be measured.
inline std::string file(const std::string &name, int entries, const std::string &separator = " = ")
{
    const std::string path = name + std::to_string(entries) + ".cfg";
    std::ofstream(path, std::ios::trunc | std::ios::binary) << text(entries, separator);
    return path;
}

}

#include "services/telephony/UniqueNames.h"

#include <map>
#include <set>

namespace telephonyservice {

void MakeNamesUnique(std::vector<LineDevice>& devices) {
    std::set<std::string> given;
    for (const LineDevice& device : devices)
        given.insert(device.name);
    std::map<std::string, int> last;
    for (LineDevice& device : devices) {
        int& number = last[device.name];
        if (++number == 1)
            continue;
        std::string numbered = device.name + " " + std::to_string(number);
        while (!given.insert(numbered).second)
            numbered = device.name + " " + std::to_string(++number);
        device.name = std::move(numbered);
    }
}

} // namespace telephonyservice

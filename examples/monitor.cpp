// Prints which services come, change and go. Usage: monitor TABLE…, each the payload of one datagram of
// 224.0.23.60:4937, in the order in which they were received.
#include <common/ChannelMap.h>
#include <lls/ParseSLT.h>

#include <cstdio>
#include <map>
#include <vector>

#include "Files.h"

namespace {

CChannelMap s_map;
std::map<void*, std::string> s_known;  // services of the map, and what was printed of them
std::vector<void*> s_announced;        // services of the table that is being parsed

std::string Describe(void* service)
{
    int id = 0;
    int major = 0;
    int minor = 0;
    s_map.GetServiceNumber(service, nullptr, &id, &major, &minor, nullptr, nullptr, nullptr);
    unsigned char name[64];
    unsigned short length = sizeof name;
    s_map.GetServiceName(service, name, length);
    unsigned int address = 0;
    unsigned short port = 0;
    s_map.GetDestination(service, &address, &port);
    return std::to_string(id) + " " + std::to_string(major) + "." + std::to_string(minor) + " " +
           std::string(reinterpret_cast<const char*>(name), length) + " at " + Dotted(address) + ":" +
           std::to_string(port);
}

// The map announces a service before its name and address are set: what is new is told at the table's end.
void OnAnnounced(void*, void* service)
{
    s_announced.push_back(service);
}

// The last moment in which the service is good. A service with another channel number is another one.
void OnDropped(void*, const SParseSLT::SService* service, CParseSLT::EDropReason reason)
{
    if (reason == CParseSLT::DROP_GONE) {
        std::printf("gone     %s\n", s_known[service->service].c_str());
        s_known.erase(service->service);
    } else {
        std::printf("dropped  %d, reason %d\n", service->serviceId, reason);
    }
}

void OnTable(void*, int)
{
    for (void* service : s_announced) {
        const std::string text = Describe(service);
        const auto known = s_known.emplace(service, text);
        if (known.second) {
            std::printf("new      %s\n", text.c_str());
        } else if (known.first->second != text) {
            std::printf("changed  %s\n", text.c_str());
            known.first->second = text;
        }
    }
    s_announced.clear();
}

}  // namespace

int main(int argc, char** argv)
{
    CParseSLT slt;
    const CChannelMap::SCallback announced = {nullptr, OnAnnounced};
    const CParseSLT::SCallback table = {nullptr, OnTable};
    const CParseSLT::SDropCallback dropped = {nullptr, OnDropped};
    if (!s_map.Create() || !s_map.SetCallback(&announced) || !slt.Create(&s_map, &table)) {
        return 1;
    }
    slt.SetLenient(true);        // take services that leave out flags, as many stations do
    slt.SetReplace(true, true);  // what a new table does not have leaves the channel map
    slt.SetDropCallback(&dropped);
    for (int i = 1; i < argc; ++i) {
        const std::string bytes = ReadFile(argv[i]);
        IParse::SItem item = Item(bytes);
        // A new table is taken whether it parses or not; of a repeat nothing is read.
        const bool isNew = slt.Parse(&item);
        std::printf("%s: %s\n", argv[i], !isNew ? "a repeat" : Reason().empty() ? "taken" : Reason().c_str());
    }
    slt.Destroy();
    s_map.Destroy();
    return 0;
}

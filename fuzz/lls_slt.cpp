// Service list tables, up to eight in a row on one parser, with every getter after each.
// Sources: src/lls/ParseSLT.cpp src/lls/ParseLLS.cpp src/common/ChannelMap.cpp
#include <algorithm>
#include <string>

#include "Fuzz.h"
#include "Mutate.h"
#include "common/ChannelMap.h"
#include "lls/ParseSLT.h"
#include "platform/Platform.h"

VYR_MUTATOR(MutateXml)

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    SetLogPriority(LOG_PRIORITY_SILENT);
    static const SPlatform platform = {nullptr, [](const char*, int* value) {
                                           *value = 1;
                                           return true;
                                       }};
    SetPlatform(&platform);
    CScript script(data, size);
    const std::uint8_t options = script.Byte();
    CChannelMap map;
    map.Create();
    CParseSLT slt;
    slt.Create(&map, nullptr);
    slt.SetLenient(options & 1);
    slt.SetReplace(options & 2, options & 4);
    const std::vector<unsigned char> all = script.Rest();
    // What sets the tables of one input apart.
    static const unsigned char k_mark[] = {0xFF, 'N', 'E', 'X', 'T'};
    auto begin = all.begin();
    for (int i = 0; i < 8 && begin != all.end(); ++i) {
        const auto end = std::search(begin, all.end(), std::begin(k_mark), std::end(k_mark));
        const std::vector<unsigned char> table(begin, end);
        const unsigned int length = static_cast<unsigned int>(table.size());
        IParse::SItem item = {table.data(), length, length * 8, 0, true};
        slt.AddLLSGroupId(static_cast<unsigned char>(options & 2 ? i / 4 : i));
        if (length > 0) {
            slt.Parse(&item);
        }
        for (int index = -1; index <= slt.ServiceCount(); ++index) {
            void* service = nullptr;
            const bool there = slt.GetService(index, service);
            Require(there == (index >= 0 && index < slt.ServiceCount()));
            int id = 0;
            unsigned char name[8];
            unsigned short room = sizeof name;
            Require(!there ||
                    (map.GetServiceNumber(service, nullptr, &id, nullptr, nullptr, nullptr, nullptr, nullptr) &&
                     id == slt.GetServiceInfo(index)->serviceId && map.GetServiceName(service, name, room)));
        }
        std::string text;
        EATSC3UrlType type = ATSC3_URL_NONE;
        Require(slt.SltInetUrlCount() == 0 || slt.GetSltInetUrl(slt.SltInetUrlCount() - 1, text, type));
        Require(!slt.GetSltInetUrl(slt.SltInetUrlCount(), text, type));
        begin = end == all.end() ? end : end + sizeof k_mark;
    }
    slt.Destroy();
    map.Destroy();
    return 0;
}

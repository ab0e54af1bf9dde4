#include <algorithm>

#include "entries/Entries.h"
#include "mmt/desc/MMTDesc.h"
#include "mmt/desc/MMTDescFactory.h"
#include "mmt/desc/MMTUsbd.h"
#include "mmt/msg/MMTMsgFactory.h"
#include "mmt/table/MMTTblFactory.h"

namespace {

/// What a factory makes of the first bytes.
template <class T>
struct SMade {
    bool Parse(const TBytes& bytes) { return FeedItem(*object, bytes); }
    void Destroy() { object.reset(); }

    T object;
};

using SMessage = SMade<std::shared_ptr<CMMTMsg>>;
using STable = SMade<std::unique_ptr<CMMTTbl>>;
using SDescriptor = SMade<std::unique_ptr<CMMTDesc>>;

const unsigned char* Begin(const TBytes& bytes)
{
    return reinterpret_cast<const unsigned char*>(bytes.data());
}

IParse::SItem Head(const TBytes& bytes)
{
    const unsigned int size = static_cast<unsigned int>(std::min<std::size_t>(bytes.size(), 8));
    return {Begin(bytes), size, size * 8, 0, true};
}

bool Create(SMessage& message, const TBytes& bytes)
{
    message.object = CMMTMsgFactory::CreateMessage(Begin(bytes), bytes.size() < 2 ? 0 : 2);
    return message.object != nullptr;
}

bool Create(STable& table, const TBytes& bytes)
{
    IParse::SItem item = Head(bytes);
    table.object.reset(CMMTTblFactory::GenerateTbl(&item));
    return table.object != nullptr;
}

bool Create(SDescriptor& descriptor, const TBytes& bytes)
{
    IParse::SItem item = Head(bytes);
    descriptor.object.reset(CMMTDescFactory::GenerateDesc(&item));
    return descriptor.object != nullptr;
}

/// What is told of is what it dumps. A descriptor loop ends at the first that does not parse.
template <class T>
SEntryKind MadeKind(const std::string& seed, std::size_t skip)
{
    return EntryKind<T>(
        seed, skip, Create, [](T& made, TBytes& bytes) { return made.Parse(bytes); },
        [](const T& made) {
            made.object->Dump();
            return std::string();
        },
        true);
}

std::string Digest(const CMMTUsbd& usbd)
{
    std::string uri, name;
    std::vector<std::string> ratings;
    usbd.GetsTSIDUri(uri);
    usbd.GetComponentName(usbd.ComponentInfoSize() - 1, name);
    usbd.GetRatingStringTable(ratings);
    return TextOf(usbd.GlobalServiceId()) + uri + name + (ratings.empty() ? "" : ratings.back());
}

}  // namespace

TEntryKinds MmtEntries()
{
    TEntryKinds kinds = {DocumentKind<CMMTUsbd>("mmt_usbd/every-element", 1, Digest)};
    for (const std::string seed : {"pa", "mpi-with-mp", "mpt", "dci", "cri", "ac", "ls", "adc", "ldc", "signed-mpt",
                                   "atsc-usbd-gzip", "atsc-rsat", "atsc-video"}) {
        kinds.push_back(MadeKind<SMessage>("mmt_message/" + seed, 0));
    }
    for (const std::string seed : {"pa-every-location", "mp-every-identifier", "mp-every-descriptor", "mpi", "si"}) {
        kinds.push_back(MadeKind<STable>("mmt_table/" + seed, 0));
    }
    for (const std::string seed : {"video", "audio", "security", "captions", "dependencies", "mpu-timestamps"}) {
        kinds.push_back(MadeKind<SDescriptor>("mmt_descriptors/" + seed, 2));
    }
    return kinds;
}

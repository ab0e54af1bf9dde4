// Lists the assets of an MMT package, and where they are. Usage: package MESSAGE…, each a signalling message.
#include <mmt/IdentifierUnit/IdentifierUnit0.h>
#include <mmt/msg/MMTMsgFactory.h>
#include <mmt/msg/MMTMsgMpt.h>
#include <mmt/msg/MMTMsgPa.h>

#include <cstdio>

#include "Files.h"

namespace {

std::string Place(const CMMTElementLocation& location)
{
    const CLocationUnitBase* unit = location.Location();
    unsigned int packet = 0;
    unsigned int address = 0;
    unsigned short port = 0;
    std::string url;
    if (unit == nullptr) {
        return "nowhere";
    }
    if (unit->GetUrl(url)) {
        return url;
    }
    if (!unit->GetPacketId(&packet)) {
        return "location of type " + std::to_string(location.LocationType());
    }
    // Type 0 is the flow that carries this message; type 1 names its address. Here a product has the others, too.
    const bool elsewhere = location.LocationType() == 1 && unit->GetIpv4DstAddr(&address) && unit->GetDstPort(&port);
    return "packet id " + std::to_string(packet) +
           (elsewhere ? " at " + Dotted(address) + ":" + std::to_string(port) : "");
}

void Show(CMMTTblMp& table)
{
    std::printf("  package %s, version %d\n", table.PackageId() != nullptr ? table.PackageId() : "(goes on)",
                table.Version());
    for (int i = 0; i < table.AssetCount(); ++i) {
        CMMTTblMpAsset& asset = *table.Asset(i);
        const auto* id = dynamic_cast<const CIdentifierUnit0*>(asset.Identifier()->Identifier());
        std::printf("    asset \"%s\", %.4s\n", id != nullptr ? id->AssetId()->AssetId() : "",
                    reinterpret_cast<const char*>(asset.AssetType()));
        for (unsigned char k = 0; k < asset.LocationCount(); ++k) {
            std::printf("      %s\n", Place(*asset.Location(k)).c_str());
        }
    }
}

}  // namespace

int main(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        // Here a product's MMTP receiver hands over what it has put together of packets of type 2.
        const std::string bytes = ReadFile(argv[i]);
        IParse::SItem item = Item(bytes);
        // A new object for each message, as lists of one that is used again grow. Repeats have the version of the last.
        const auto message = CMMTMsgFactory::CreateMessage(item.buffer, item.size);
        std::printf("%s\n", argv[i]);
        if (!message || !message->Parse(&item)) {
            std::printf("  not taken: %s\n", message ? Reason().c_str() : "a message without a class");
            continue;
        }
        if (message->ClassType() == CMMTMsg::CLASS_TYPE_MPT) {
            Show(*static_cast<CMMTMsgMpt&>(*message).MPTable());
        } else if (message->ClassType() == CMMTMsg::CLASS_TYPE_PA) {
            auto& pa = static_cast<CMMTMsgPa&>(*message);
            for (int k = 0; k < pa.TableCount(); ++k) {
                CMMTTbl* table = pa.Table(k);
                if (table != nullptr && table->ClassType() == CMMTTbl::CLASS_TYPE_MP) {
                    Show(static_cast<CMMTTblMp&>(*table));
                }
            }
        }
    }
    return 0;
}

// A receiver's signalling: what the tuner receives goes in, the channel list comes out.
// Usage: receiver CAPTURE [ADDRESS:PORT=PACKAGE…], each PACKAGE the signalling of the service at that address.
#include <common/ChannelMap.h>
#include <common/Owned.h>
#include <lls/ParseSLT.h>
#include <lls/ParseSystemTime.h>
#include <route/SLS/ROUTEUsbd.h>
#include <route/SLS/STSID.h>
#include <route/SLSManager.h>

#include <cstdio>
#include <map>
#include <memory>

#include "Capture.h"
#include "Files.h"
#include "Gunzip.h"

namespace {

/// The signalling of one ROUTE service, from its choice on until another is chosen, or it is gone.
struct SSignalling {
    SSignalling()
    {
        CSLSManager::SCallback callbacks = {};
        callbacks.pUserData = this;
        callbacks.cbMPDInfo = [](void* self, SMPDInfo*) { static_cast<SSignalling*>(self)->hasMpd = true; };
        manager.Create(&callbacks);
    }
    ~SSignalling() { manager.Destroy(); }

    CSLSManager manager;
    bool hasMpd = false;
};

/// What one tuner needs, from one tuning to the next: parsers take a header that they know for a repeat, whatever
/// station it is of. Several tuners may have handles of their own on the channel map, which is one for all; the mark
/// given to CParseSLT::Start tells whose a service is (CChannelMap::Channel).
class CReceiver {
  public:
    CReceiver() { m_map.Create(); }
    ~CReceiver()
    {
        m_parsers.clear();  // before the map that they fill
        m_map.Destroy();
    }

    /// Here a product's tuner hands over the datagrams of 224.0.23.60:4937, one table each.
    void OnTable(const std::string& bytes)
    {
        constexpr std::size_t k_most = 32;  // a transmitter can make up 256 groups of each table
        const std::string key = bytes.substr(0, 2);
        if (bytes.size() < 4 || (m_parsers.count(key) == 0 && m_parsers.size() >= k_most)) {
            return;
        }
        // One parser for each table id and group: it knows repeats by the one header that came last.
        TOwned<TCParseLLS>& parser = m_parsers[key];
        if (!parser) {
            parser = m_MakeParser(static_cast<unsigned char>(key[0]), static_cast<unsigned char>(key[1]));
        }
        IParse::SItem item = Item(bytes);
        if (!parser || !parser->Parse(&item)) {
            return;  // a table that nobody wants, or a repeat
        }
        if (!Reason().empty()) {
            std::printf("table %d: %s\n", key[0], Reason().c_str());
        } else if (const auto* time = dynamic_cast<const CParseSystemTime*>(parser.get())) {
            std::printf("local time is UTC%+d s\n", time->UtcLocalOffset());
        }
    }

    /// Here a product's ROUTE receiver hands over the whole objects of TSI 0 of the service's session, each once.
    void OnPackage(unsigned int address, unsigned short port, const std::string& object)
    {
        const std::string text = Gunzip(object);  // the manager takes no compressed package
        SSignalling& service = m_signalling[{address, port}];
        const CSLSManager::SSessionInfo session = {0, 0xFFFFFFFF, address, port};
        service.manager.Parse(reinterpret_cast<const unsigned char*>(text.data()),
                              static_cast<unsigned int>(text.size()), &session, false);
        for (const char* document : {"USBD", "STSID", "MPD"}) {
            if (const std::string reason = Reason(document); !reason.empty()) {
                std::printf("%s of %s:%d: %s\n", document, Dotted(address).c_str(), port, reason.c_str());
                service.hasMpd = service.hasMpd && document != std::string("MPD");
            }
        }
        const CROUTEUsbd* usbd = service.manager.Usbd();
        const CSTSID* stsid = service.manager.Stsid();
        if (usbd == nullptr || stsid == nullptr || !service.hasMpd) {
            std::printf("%s:%d is not complete\n", Dotted(address).c_str(), port);
            return;
        }
        // Complete. Here a product opens these sessions, and gives its player what they carry and the MPD.
        std::printf("%s:%d is complete: service %d\n", Dotted(address).c_str(), port, usbd->ServiceId());
        for (int i = 0; i < stsid->NumberOfRouteSessions(); ++i) {
            for (int j = 0; j < stsid->NumberOfLctSessions(i); ++j) {
                unsigned int tsi = 0;
                std::string content;
                stsid->GetTSI(i, j, &tsi);
                stsid->GetContentId(i, j, content);
                std::printf("  TSI %u: content %s\n", tsi, content.c_str());
            }
        }
    }

  private:
    TOwned<TCParseLLS> m_MakeParser(unsigned char table, unsigned char group)
    {
        if (table == 1) {
            auto slt = std::make_unique<CParseSLT>();
            const CParseSLT::SCallback taken = {this, [](void* self, int) { static_cast<CReceiver*>(self)->m_Show(); }};
            const CParseSLT::SDropCallback dropped = {this, m_OnDropped};
            if (slt->Create(&m_map, &taken)) {
                slt->AddLLSGroupId(group);
                slt->SetLenient(true);  // else services without "protected", "hidden", … are dropped
                slt->SetReplace(true, true);
                slt->SetDropCallback(&dropped);
                return TOwned<TCParseLLS>(slt.release());
            }
        } else if (table == 3) {
            auto time = std::make_unique<CParseSystemTime>();
            if (time->Create(group)) {
                return TOwned<TCParseLLS>(time.release());
            }
        }
        return nullptr;  // here a product makes its parsers of ratings, alerts, screen notices and certificates
    }

    /// The service is good for the last time: what is kept for it goes, too.
    static void m_OnDropped(void* self, const SParseSLT::SService* service, CParseSLT::EDropReason reason)
    {
        if (reason == CParseSLT::DROP_GONE) {
            std::printf("service %d is gone\n", service->serviceId);
            static_cast<CReceiver*>(self)->m_signalling.erase(
                {service->slsDestinationIpAddress, static_cast<unsigned short>(service->slsDestinationUdpPort)});
        }
    }

    /// Here a product shows its channel list. The map has all that the table says of its services.
    void m_Show()
    {
        std::printf("channel list\n");
        m_map.GetServiceList(
            [](void* self, void* service) {
                CChannelMap& map = static_cast<CReceiver*>(self)->m_map;
                int id = 0;
                int major = 0;
                int minor = 0;
                unsigned char name[64];
                unsigned short length = sizeof name;
                bool hidden = false;
                map.GetServiceNumber(service, nullptr, &id, &major, &minor, nullptr, nullptr, nullptr);
                map.GetServiceName(service, name, length);
                map.GetServiceCategory(service, nullptr, nullptr, &hidden);
                if (!hidden) {
                    std::printf("  %d.%d %.*s, service %d\n", major, minor, int{length},
                                reinterpret_cast<const char*>(name), id);
                }
            },
            this);
    }

    CChannelMap m_map;
    std::map<std::string, TOwned<TCParseLLS>> m_parsers;
    std::map<std::pair<unsigned int, unsigned short>, SSignalling> m_signalling;
};

}  // namespace

int main(int argc, char** argv)
{
    constexpr unsigned int k_address = 0xE000173C;  // 224.0.23.60
    constexpr unsigned short k_port = 4937;
    CReceiver receiver;
    const auto take = [&receiver](const SDatagram& datagram) {
        if (datagram.address == k_address && datagram.port == k_port) {
            receiver.OnTable(datagram.payload);
        }
    };
    if (argc < 2 || !EachDatagram(argv[1], take)) {
        return 1;
    }
    for (int i = 2; i < argc; ++i) {
        unsigned int a = 0;
        unsigned int b = 0;
        unsigned int c = 0;
        unsigned int d = 0;
        unsigned short port = 0;
        int file = 0;
        if (std::sscanf(argv[i], "%u.%u.%u.%u:%hu=%n", &a, &b, &c, &d, &port, &file) == 5 && file > 0) {
            receiver.OnPackage(a << 24 | b << 16 | c << 8 | d, port, ReadFile(argv[i] + file));
        }
    }
    return 0;
}

#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "judge/Facts.h"
#include "model/Items.h"

namespace vyr::inspect {

struct SAssetFacts {
    std::string id;    ///< empty: none that tells it from others
    std::string type;  ///< "hev1"
    /// Destination ("239.255.8.1:30200"; empty: the session of the MP table) and packet_id.
    std::vector<std::pair<std::string, std::uint64_t>> places;
    bool elsewhere = false;  ///< at places of other kinds, too
};

struct SMpTableFacts {
    std::string package;
    unsigned tableId = 0;  ///< 32: the complete table
    std::vector<SAssetFacts> assets;
    SSource source;
    std::optional<STime> last;  ///< when it came last
};

struct SMmtUsbdFacts {
    std::optional<unsigned> serviceId;
    std::string globalServiceId;
    std::string package;
    std::vector<std::string> components;  ///< asset ids
    bool route = false;                   ///< something of the service comes by ROUTE
    bool broadband = false;               ///< something of it comes by broadband
    bool whole = true;
    SSource source;
};

/// The signalling by MMTP that one session has now.
struct SMmtFacts {
    std::vector<unsigned> announced;  ///< services that the service lists have at the session
    std::map<std::string, std::vector<SMpTableFacts>> mpTables;  ///< of each message that has any, by its key
    std::map<std::string, SMmtUsbdFacts> usbds;
    SArrivals messages;
    std::set<std::string> destinations;  ///< other than the session, that MP tables had
    std::size_t entries = 0;             ///< assets and components
    bool whole = true;                   ///< false: messages, or something of them, were left out

    /// Whether what the MP table says is so now. One of a package that is over is sent no more, for `longest` seconds
    /// of signalling at least; of the next package it may be sent ahead, until a USBD names the package.
    bool Holds(const SMpTableFacts& table, double longest) const;
    /// Calls `visit` with each MP table.
    template <class TVisit>
    void EachTable(TVisit visit) const
    {
        for (const auto& [key, tables] : mpTables) {
            for (const SMpTableFacts& table : tables) {
                visit(table);
            }
        }
    }
};

/// Takes what the message says in place of what the one that it replaces said.
void HoldMessage(std::map<std::string, SMmtFacts>& sessions, const SMessage& message);

}  // namespace vyr::inspect

#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "base/JsonFwd.h"
#include "model/Items.h"

// What the documents of a service's signalling say, as far as it is held against other things. Lists are bounded;
// `whole` is false where some of them is not there: nothing is concluded then from what is not found.

namespace vyr::inspect {

constexpr std::size_t k_mostFacts = 1024;  ///< entries of a list

struct SUsbdFacts {
    std::optional<unsigned> serviceId;
    std::string globalServiceId;
    std::vector<std::string> broadcast;  ///< base patterns
    std::vector<std::string> unicast;
    bool whole = true;

    std::size_t Bytes() const;
};

/// A file of an EFDT.
struct SFileFacts {
    TToi toi;
    std::string name;
    std::optional<std::uint64_t> length;  ///< as it is sent
};

constexpr std::uint64_t k_neverExpires = 0xFFFFFFFF;

/// An LCT session of an S-TSID.
struct SLctFacts {
    std::string destination;  ///< "239.255.7.1:30100"; what is not given of it is that of the session of the S-TSID
    std::string source;       ///< empty: any
    std::uint64_t tsi = 0;
    std::optional<std::uint64_t> bandwidth;  ///< bw, kbit/s
    std::string startTime;
    std::string endTime;
    // Of its source flow:
    bool sourceFlow = false;
    bool realTime = false;
    bool entities = false;        ///< header fields go before the files
    bool otherPayloadId = false;  ///< packets may have no start_offset
    std::string contentId;
    std::string contentType;
    std::string lang;
    std::string repId;
    std::string fileTemplate;
    std::vector<SFileFacts> files;
    std::optional<std::uint64_t> expires;  ///< of the EFDT, NTP seconds: the latest
    bool hasEfdt = false;
    // Since when S-TSIDs have said the same of it; none: for as long as any came.
    std::optional<STime> rateSince;    ///< bandwidth and repId
    std::optional<STime> windowSince;  ///< startTime and endTime
};

struct SStsidFacts {
    std::vector<SLctFacts> sessions;
    bool whole = true;

    std::size_t Bytes() const;
};

/// A period of an MPD; seconds from its begin.
struct SPeriodFacts {
    std::optional<double> start;
    std::optional<double> duration;
};

/// A representation of an MPD, with what it has from the levels above.
struct SRepresentationFacts {
    std::string id;
    std::string contentType;  ///< "video", of contentType or mimeType
    std::string lang;
    std::uint64_t bandwidth = 0;  ///< bit/s; 0: not given
    bool isProtected = false;
    std::string media;  ///< templates, with their base URL
    std::string initialization;
    std::size_t period = 0;                    ///< its number
    std::optional<STime> bandwidthSince = {};  ///< MPDs have given it this bandwidth; none: for as long as any came
};

struct SMpdFacts {
    bool dynamic = false;
    std::string publishTime;
    std::string availabilityStartTime;
    std::optional<double> updatePeriod;  ///< minimumUpdatePeriod, seconds
    std::vector<SPeriodFacts> periods;
    std::vector<SRepresentationFacts> representations;
    bool isProtected = false;  ///< something of it is
    bool isLocked = false;     ///< in a period all video is, or all audio
    bool whole = true;

    std::size_t Bytes() const;
};

/// Where delivery descriptors say that the guide is.
struct SGuideFacts {
    bool came = false;                   ///< a delivery descriptor
    std::set<std::string> destinations;  ///< "239.255.7.1:30100"
    bool whole = true;

    void Add(const TJson& descriptor);
};

SUsbdFacts UsbdFacts(const TJson& usbd);
SStsidFacts StsidFacts(const TJson& stsid);
SMpdFacts MpdFacts(const TJson& mpd);

/// What came of something that is sent again and again.
struct SArrivals {
    std::uint64_t count = 0;
    SSource first;
    SSource last;
    double longest = 0;  ///< seconds between two of them
    SSource longestEnd;  ///< the second of the two
    bool ended = false;  ///< no more of it is due, unless it begins anew

    void Add(const SSource& source);
};

/// Destination, source (empty: any) and TSI.
using TLctKey = std::tuple<std::string, std::string, std::uint64_t>;

/// The signalling that a service, or a session without one, has now.
struct SPackageFacts {
    std::string session;              ///< "239.255.7.1:30100"; empty: a raw file
    std::vector<unsigned> announced;  ///< services that the service lists have at the session, the first ones
    std::optional<SUsbdFacts> usbd;
    std::optional<SStsidFacts> stsid;
    std::optional<SMpdFacts> mpd;
    SSource source;                                  ///< of the last object that brought something
    std::map<ESlsDocument, SSource> documentSource;  ///< of the last of each kind that parsed
    std::map<ESlsDocument, bool> broken;             ///< the last of the kind did not parse
    std::set<TLctKey> earlier;                       ///< LCT sessions of S-TSIDs that hold no more
    bool allEarlier = true;                          ///< those of `earlier` are all

    /// About what the facts hold.
    std::size_t Bytes() const
    {
        return (usbd ? usbd->Bytes() : 0) + (stsid ? stsid->Bytes() : 0) + (mpd ? mpd->Bytes() : 0);
    }
};

}  // namespace vyr::inspect

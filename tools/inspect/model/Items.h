#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/Bytes.h"
#include "lls/ParseSLT.h"
#include "model/Counts.h"
#include "model/OptionalContent.h"
#include "model/Signed.h"
#include "model/Source.h"

namespace vyr::inspect {

/// A service of the service list table; its channel map handle is not to be used.
struct SSltService : SParseSLT::SService {
    std::string notListed;  ///< why a receiver does not list it, and read no more of it; empty: it does
    /// Tells apart what stands in the list of the service, but for its sltSvcSeqNum; 0: not known.
    std::uint64_t text = 0;
};

/// What the service list table holds.
struct SSlt {
    int bsid = 0;
    std::string capabilities;
    std::vector<SParseSLT::SSltInetUrl> inetUrls;
    std::vector<SSltService> services;  ///< first those that a receiver lists
    unsigned dropped = 0;               ///< those that it does not
    std::size_t leftOut = 0;            ///< of both, those that are too many for `services`
    bool cmsSignedData = false;
};

/// Where a service list, or another LLS table, stands: its stream and its LLS group.
using TListKey = std::pair<std::string, unsigned>;

/// One LLS table that came.
struct STable {
    SSource source;
    /// "224.0.23.60:4937", of another broadcast there "224.0.23.60:4937 bsid 2049"; empty for a raw file.
    std::string stream;
    SLlsHeader header;
    EStatus status = EStatus::NEW;
    SView payload;  ///< behind the header, good during the report only
    const char* encoding = "";
    std::optional<double> interval;  ///< seconds since the same table came last
    bool parserExists = false;
    bool insideMultiTable = false;
    std::optional<SSlt> slt;  ///< when it parsed; another table has a content
    COptionalContent content;
    bool cmsSignedData = false;                                ///< it has an element of that name
    std::shared_ptr<const SSigned> signedBytes;                ///< null: it has no signature that is verified
    TCertificates certificates;                                ///< that it announces, the first ones
    std::vector<std::vector<unsigned char>> certificateBytes;  ///< of those that can be read, DER
    std::vector<TListKey> listsGone;                           ///< whose tables all hold no more from here on
};

/// Documents of the service-layer signalling (SLS) of ROUTE, in the order in which the library parses
/// them.
enum class ESlsDocument { USBD, STSID, EFDT, MPD, APPLICATION_LIST, HELD, RSAT };
constexpr std::size_t k_slsDocuments = 7;

/// What is new about a document against the last one of its kind in its session.
enum class EDocumentStatus { NEW, CHANGED, UNCHANGED };

/// One document of a package.
struct SSlsDocument {
    ESlsDocument kind = ESlsDocument::USBD;
    std::size_t size = 0;  ///< bytes, from its start tag through its end tag
    EDocumentStatus status = EDocumentStatus::NEW;
    bool parsed = false;
    std::string reason;  ///< why it did not
    COptionalContent content;
    std::string key;   ///< tells the document apart from all but those that it replaces
    SView bytes = {};  ///< good during the report only
};

/// An item of the metadata envelope, as given.
struct SEnvelopeItem {
    std::optional<std::string> metadataURI;
    std::optional<std::string> version;
    std::optional<std::string> contentType;
};

/// A part of a package, as its header fields have it.
struct SPackagePart {
    std::string contentType;
    std::string contentLocation;
    std::size_t size = 0;             ///< bytes, without the header
    std::vector<std::string> readAs;  ///< names of what is read of it; none: nothing is
    std::string root;                 ///< root element of what is not read; empty: it is no XML
    SView bytes = {};                 ///< without the header, good during the report only
};

/// One object of a service's signalling that is not a repeat.
struct SSignalling {
    SSource source;
    std::string session;             ///< "239.255.7.1:30100"; empty for a raw file
    std::vector<unsigned> services;  ///< that the service list has at this session
    std::optional<TToi> toi;         ///< not for a raw file
    EStatus status = EStatus::NEW;
    std::size_t size = 0;  ///< bytes as they were sent
    bool gzip = false;
    SView sent = {};          ///< the object, good during the report only; none of a repeat
    SView text = {};          ///< the same inflated
    std::string contentType;  ///< of the package; empty: not given
    std::vector<SEnvelopeItem> items;
    std::vector<SPackagePart> parts;  ///< the first ones; none: it is no package
    std::uint64_t moreParts = 0;
    bool partsEnded = true;                      ///< the last boundary of the package came
    COptionalContent signature;                  ///< of the package: its form
    std::shared_ptr<const SSigned> signedBytes;  ///< null: it has no signature that is verified
    std::vector<SSlsDocument> documents;
};

/// One MMT signalling message that is not a repeat.
struct SMessage {
    SSource source;
    std::string session;                    ///< "239.255.8.1:30200"; empty for a raw file
    std::string key;                        ///< tells it apart from all but those that it replaces
    std::vector<unsigned> services;         ///< that the service list has at this session
    std::optional<std::uint16_t> packetId;  ///< not for a raw file
    std::vector<unsigned> kind;             ///< messages of one kind and packet id replace each other
    unsigned id = 0;
    unsigned version = 0;
    EStatus status = EStatus::NEW;
    SView payload;       ///< behind the header, good during the report only
    SView sent = {};     ///< header and payload, good during the report only
    SView carried = {};  ///< of those, what an ATSC 3.0 message carries, as it was sent
    bool supported = false;
    COptionalContent content;  ///< when it parsed
};

/// A whole file of an LCT session that is not streaming.
struct SFile {
    SSource source;
    std::string session;             ///< "239.255.7.1:30100"
    std::vector<unsigned> services;  ///< whose signalling names the LCT session
    std::uint64_t tsi = 0;
    TToi toi;
    std::string contentLocation;  ///< empty: nothing tells
    std::string contentType;      ///< the same
    std::string contentEncoding;  ///< the same
    SView sent;                   ///< good during the report only
    SView body;                   ///< of those, what stands behind the header fields of entity mode
};

/// "224.0.23.60:4937 group 0": tells service lists apart.
std::string ServiceListName(const std::string& stream, unsigned groupId);
/// "239.255.7.1:30100": where the list says that the signalling of the service is; empty: nowhere.
std::string SessionOf(const SSltService& service);
/// "BundleDescriptionROUTE" and the like: the name of its element.
const char* DocumentName(ESlsDocument kind);
/// "new", "changed" or "unchanged".
const char* DocumentStatusName(EDocumentStatus status);

}  // namespace vyr::inspect

#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "lls/ParseSLT.h"
#include "model/Counts.h"
#include "wire/Lct.h"

namespace vyr::inspect {

using TJson = nlohmann::ordered_json;

struct STime {
    std::int64_t seconds = 0;  ///< since 1970, UTC; before the year 10000
    std::int32_t nanoseconds = 0;
};

/// Where something stands in the input.
struct SSource {
    std::string file;
    std::uint64_t packet = 0;  ///< from 1; 0: the file as a whole
    std::optional<STime> time;
};

struct SLlsHeader {
    unsigned char tableId = 0;
    unsigned char groupId = 0;
    unsigned char groupCountMinus1 = 0;
    unsigned char version = 0;
};

/// A service of the service list table; its channel map handle is not to be used.
struct SSltService : SParseSLT::SService {
    std::string notListed;   ///< why a receiver does not list it; empty: it does
    bool flagsRead = true;   ///< whether its flags, channel and category were read before it was left
    bool othersRead = true;  ///< and what is behind them
};

/// What the service list table holds.
struct SSlt {
    int bsid = 0;
    std::string capabilities;
    std::vector<SParseSLT::SSltInetUrl> inetUrls;
    std::vector<SSltService> services;  ///< first those that a receiver lists
    unsigned dropped = 0;               ///< those that it does not
    bool cmsSignedData = false;
};

/// What another table holds, ready for both forms of report.
struct SContent {
    std::string headline;  ///< "2 alerts"
    std::string text;      ///< indented lines
    TJson json = TJson::object();
    std::vector<std::string> faults;  ///< documents within that did not parse, and why
};

/// One LLS table that came.
struct STable {
    SSource source;
    std::string stream;  ///< "224.0.23.60:4937"; empty for a raw file
    SLlsHeader header;
    EStatus status = EStatus::NEW;
    SView payload;  ///< behind the header, good during the report only
    const char* encoding = "";
    std::optional<double> interval;  ///< seconds since the same table came last
    bool parserExists = false;
    bool insideMultiTable = false;
    std::optional<SSlt> slt;  ///< when it parsed; another table has a content
    std::optional<SContent> content;
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
    bool sameText = false;  ///< though it changed, its text says what the last one's said
    std::optional<SContent> content;
    std::string reason;  ///< why there is none
};

/// An item of the metadata envelope, as given.
struct SEnvelopeItem {
    std::optional<std::string> metadataURI;
    std::optional<std::string> version;
    std::optional<std::string> contentType;
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
    std::string contentType;  ///< of the package; empty: not given
    std::vector<SEnvelopeItem> items;
    std::vector<SSlsDocument> documents;
};

/// One MMT signalling message that is not a repeat.
struct SMessage {
    SSource source;
    std::string session;                    ///< "239.255.8.1:30200"; empty for a raw file
    std::vector<unsigned> services;         ///< that the service list has at this session
    std::optional<std::uint16_t> packetId;  ///< not for a raw file
    std::vector<unsigned> kind;             ///< messages of one kind and packet id replace each other
    unsigned id = 0;
    unsigned version = 0;
    EStatus status = EStatus::NEW;
    SView payload;  ///< behind the header, good during the report only
    bool supported = false;
    std::optional<SContent> content;  ///< when it parsed
};

enum class EFault {
    INPUT_MISSING,
    INPUT_UNREADABLE,
    INPUT_DIRECTORY,
    INPUT_EMPTY,
    INPUT_UNKNOWN,
    INPUT_TOO_LARGE,
    CAPTURE_DAMAGED,
    LINK_TYPE,
    PACKETS_CUT,
    PACKETS_MALFORMED,
    TABLE_TOO_SHORT,
    TABLE_NOT_PARSED,
    CHANGED_WITHOUT_VERSION,
    SERVICE_DROPPED,
    BAD_ADDRESS,
    BAD_CERTIFICATE,
    BAD_SIGNATURE,
    TOO_MANY_SERVICES,
    ASSERTION,
    NO_LLS,
    NO_SLT,
    LCT_MALFORMED,
    MMTP_MALFORMED,
    OBJECT_NOT_READ,
    DOCUMENT_NOT_PARSED,
    MESSAGE_NOT_PARSED,
    NO_SIGNALLING,
    NO_SESSIONS,
    GUIDE_NOT_PARSED,
    GUIDE_INCOMPLETE,
    GUIDE_TOO_LARGE
};

constexpr const char* k_faultNames[] = {"input-missing",
                                        "input-unreadable",
                                        "input-directory",
                                        "input-empty",
                                        "input-unknown",
                                        "input-too-large",
                                        "capture-damaged",
                                        "link-type",
                                        "packets-cut",
                                        "packets-malformed",
                                        "table-too-short",
                                        "table-not-parsed",
                                        "changed-without-version",
                                        "service-dropped",
                                        "bad-address",
                                        "bad-certificate",
                                        "bad-signature",
                                        "too-many-services",
                                        "assertion",
                                        "no-lls",
                                        "no-slt",
                                        "lct-malformed",
                                        "mmtp-malformed",
                                        "object-not-read",
                                        "document-not-parsed",
                                        "message-not-parsed",
                                        "no-signalling",
                                        "no-sessions",
                                        "guide-not-parsed",
                                        "guide-incomplete",
                                        "guide-too-large"};

struct SFault {
    EFault code = EFault::INPUT_UNKNOWN;
    std::string message;
    SSource source;
    std::optional<SLlsHeader> header = std::nullopt;
    std::optional<unsigned> serviceId = std::nullopt;
    std::string attribute = {};
    std::string serviceList = {};  ///< as ServiceListName has it: of the service that is not signalled
    bool note = false;             ///< nothing is wrong with the broadcast: it is worth knowing
};

/// "224.0.23.60:4937 group 0": tells service lists apart.
std::string ServiceListName(const std::string& stream, unsigned groupId);

/// "table-not-parsed" and the like.
const char* FaultName(EFault code);
/// "BundleDescriptionROUTE" and the like: the name of its element.
const char* DocumentName(ESlsDocument kind);
/// "new", "changed" or "unchanged".
const char* DocumentStatusName(EDocumentStatus status);
/// Whether the input itself could not be inspected.
bool IsInputFault(EFault code);

/// What a run found, by the names of the JSON report.
struct SSummary {
    std::uint64_t inputs = 0;
    std::uint64_t captures = 0;
    std::uint64_t rawTables = 0;
    std::uint64_t slsFiles = 0;
    std::uint64_t rawMessages = 0;
    std::uint64_t guideFiles = 0;
    SPacketCounts packets;
    std::uint64_t llsDatagrams = 0;
    std::map<unsigned, STableCounts> tables;  ///< by LLS_table_id
    std::uint64_t services = 0;               ///< in the tables that hold at the end
    std::uint64_t servicesDropped = 0;
    std::uint64_t routeServices = 0;      ///< of `services`, those that are carried by ROUTE
    std::uint64_t mmtpServices = 0;       ///< of `services`, those that MMTP carries
    std::uint64_t servicesSignalled = 0;  ///< of both, those whose signalling came
    SRouteCounts route;
    SSignallingCounts signalling;
    SMmtpCounts mmtp;
    SMmtMessageCounts messages;
    SGuideCounts guide;
    std::uint64_t faults = 0;
    std::map<EFault, std::uint64_t> faultsByCode;
    std::uint64_t notes = 0;
    std::map<EFault, std::uint64_t> notesByCode;
    std::vector<SFault> firstFaults;

    template <class TVisit>
    void Each(const TVisit& visit) const
    {
        visit("inputs", inputs);
        visit("captures", captures);
        visit("rawTables", rawTables);
        visit("slsFiles", slsFiles);
        visit("rawMessages", rawMessages);
        visit("guideFiles", guideFiles);
        SPacketCounts::Each(packets, visit);
        visit("llsDatagrams", llsDatagrams);
        visit("tables", tables);
        visit("services", services);
        visit("servicesDropped", servicesDropped);
        visit("routeServices", routeServices);
        visit("mmtpServices", mmtpServices);
        visit("servicesSignalled", servicesSignalled);
        SRouteCounts::Each(route, visit);
        visit("signalling", signalling);
        SMmtpCounts::Each(mmtp, visit);
        visit("messages", messages);
        visit("guide", guide);
        visit("faults", faults);
        visit("faultsByCode", faultsByCode);
        visit("notes", notes);
        visit("notesByCode", notesByCode);
    }
};

struct SGuide;
struct SGuideObject;

/// One form of the report. Every call writes what it is told at once.
class IReportWriter {
  public:
    virtual ~IReportWriter() = default;
    virtual void Table(const STable& table) = 0;
    virtual void Signalling(const SSignalling& signalling) = 0;
    virtual void Message(const SMessage& message) = 0;
    virtual void GuideObject(const SGuideObject& object) = 0;
    virtual void Guide(const SGuide& guide) = 0;
    virtual void Fault(const SFault& fault) = 0;
    virtual void Summary(const SSummary& summary) = 0;
    /// Whether the summary is told of when only faults are wanted, too.
    virtual bool AlwaysSummary() const { return false; }
};

/// What a run finds, on its way to the writer: counts it for the summary.
class CReport {
  public:
    /// With `quiet`, the writer is told of faults only, and of the summary if it always wants it; the page, if there
    /// is one, of everything.
    CReport(IReportWriter& writer, bool quiet, IReportWriter* page = nullptr);

    void Table(const STable& table);
    void Signalling(const SSignalling& signalling);
    void Message(const SMessage& message);
    void GuideObject(const SGuideObject& object);
    void Guide(const SGuide& guide);
    void Fault(const SFault& fault);
    void Finish();
    /// For the counts that only its users know.
    SSummary& Summary() { return m_summary; }

  private:
    static constexpr std::size_t k_firstFaults = 20;

    template <class TTell>
    void m_Tell(TTell tell);

    IReportWriter& m_writer;
    IReportWriter* const m_page;
    const bool m_quiet;
    SSummary m_summary;
};

}  // namespace vyr::inspect

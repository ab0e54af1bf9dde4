#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Ipv4.h"
#include "lls/ParseSLT.h"

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

enum class EStatus { NEW, CHANGED, REPEATED, CHANGED_WITHOUT_VERSION, NEW_VERSION_SAME_CONTENT };
constexpr std::size_t k_statuses = 5;

/// What the service list table holds.
struct SSlt {
    int bsid = 0;
    std::string capabilities;
    std::vector<SParseSLT::SSltInetUrl> inetUrls;
    std::vector<SParseSLT::SService> services;  ///< their channel map handles are not to be used
    unsigned dropped = 0;
    bool cmsSignedData = false;
};

/// What another table holds, ready for both forms of report.
struct SContent {
    std::string headline;  ///< "2 alerts"
    std::string text;      ///< indented lines
    TJson json = TJson::object();
};

/// One LLS table that came.
struct STable {
    SSource source;
    std::string stream;  ///< "224.0.23.60:4937"; empty for a raw file
    SLlsHeader header;
    EStatus status = EStatus::NEW;
    SBytes payload;  ///< behind the header, good during the report only
    const char* encoding = "";
    std::optional<double> interval;  ///< seconds since the same table came last
    bool parserExists = false;
    bool insideMultiTable = false;
    std::optional<SSlt> slt;  ///< when it parsed; another table has a content
    std::optional<SContent> content;
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
    NO_SLT
};

struct SFault {
    EFault code = EFault::INPUT_UNKNOWN;
    std::string message;
    SSource source;
    std::optional<SLlsHeader> header = std::nullopt;
    std::optional<unsigned> serviceId = std::nullopt;
    std::string attribute = {};
};

/// "table-not-parsed" and the like.
const char* FaultName(EFault code);
/// "new", "changed-without-version" and the like.
const char* StatusName(EStatus status);
/// Whether the input itself could not be inspected.
bool IsInputFault(EFault code);

struct STableCounts {
    std::array<std::uint64_t, k_statuses> byStatus{};
    std::uint64_t notParsed = 0;
    std::uint64_t intervals = 0;
    double intervalSum = 0;
};

struct SSummary {
    unsigned inputs = 0;
    unsigned captures = 0;
    unsigned rawTables = 0;
    SPacketCounts packets;
    std::uint64_t llsDatagrams = 0;
    std::map<unsigned, STableCounts> tables;  ///< by LLS_table_id
    std::uint64_t services = 0;               ///< in the tables that hold at the end
    std::uint64_t servicesDropped = 0;
    std::uint64_t faults = 0;
    std::map<EFault, std::uint64_t> faultsByCode;
    std::vector<SFault> firstFaults;
};

/// One form of the report. Every call writes what it is told at once.
class IReportWriter {
  public:
    virtual ~IReportWriter() = default;
    virtual void Table(const STable& table) = 0;
    virtual void Fault(const SFault& fault) = 0;
    virtual void Summary(const SSummary& summary) = 0;
};

/// What a run finds, on its way to the writer: counts it for the summary.
class CReport {
  public:
    /// With `quiet`, the writer is told of faults only.
    CReport(IReportWriter& writer, bool quiet);

    void Table(const STable& table);
    void Fault(const SFault& fault);
    void Finish();
    /// For the counts that only its users know.
    SSummary& Summary() { return m_summary; }

  private:
    static constexpr std::size_t k_firstFaults = 20;

    IReportWriter& m_writer;
    const bool m_quiet;
    SSummary m_summary;
};

}  // namespace vyr::inspect

#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "model/Counts.h"
#include "model/Finding.h"

namespace vyr::inspect {

struct STable;
struct SSignalling;
struct SMessage;
struct SGuide;
struct SDelivery;
struct SGuideObject;
struct SVerdicts;
struct SInterim;

/// What a run found, by the names of the JSON report.
struct SSummary {
    std::vector<std::string> chosen;  ///< by which options what is told was chosen; none: it is everything
    std::uint64_t inputs = 0;
    std::uint64_t captures = 0;
    std::uint64_t interfaces = 0;  ///< that were read live
    std::uint64_t rawTables = 0;
    std::uint64_t slsFiles = 0;
    std::uint64_t rawMessages = 0;
    std::uint64_t guideFiles = 0;
    std::vector<SInputTimes> times;  ///< of captures whose packets have times
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
    std::uint64_t errors = 0;
    std::uint64_t warnings = 0;
    std::uint64_t notes = 0;
    std::map<ERule, std::uint64_t> findings;
    std::vector<SFinding> firstFindings;  ///< that are no notes, their messages clipped

    /// Findings of that severity and above.
    std::uint64_t From(ESeverity least) const
    {
        return errors + (least <= ESeverity::WARNING ? warnings : 0) + (least == ESeverity::NOTE ? notes : 0);
    }

    template <class TVisit>
    void Each(const TVisit& visit) const
    {
        visit("inputs", inputs);
        visit("captures", captures);
        visit("interfaces", interfaces);
        visit("rawTables", rawTables);
        visit("slsFiles", slsFiles);
        visit("rawMessages", rawMessages);
        visit("guideFiles", guideFiles);
        visit("times", times);
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
        visit("errors", errors);
        visit("warnings", warnings);
        visit("notes", notes);
        visit("findings", findings);
    }
};

/// One form of the report. Every call writes what it is told at once.
class IReportWriter {
  public:
    virtual ~IReportWriter() = default;
    virtual void Table(const STable& table) = 0;
    virtual void Signalling(const SSignalling& signalling) = 0;
    virtual void Message(const SMessage& message) = 0;
    virtual void GuideObject(const SGuideObject& object) = 0;
    virtual void Guide(const SGuide& guide) = 0;
    virtual void Finding(const SFinding& finding) = 0;
    virtual void Verdicts(const SVerdicts&) {}
    virtual void Summary(const SSummary& summary) = 0;
    virtual void Delivery(const SDelivery&) {}
    /// What follows, up to Interim(), is of a report on the way: told anew in the next one, and at the end.
    virtual void BeginInterim() {}
    /// The report on the way, and all that was counted up to it.
    virtual void Interim(const SInterim&, const SSummary&) {}
    /// The input went on by as many bytes: the report may be the longer for it.
    virtual void Received(std::size_t) {}
    /// Whether the document, known by its key, need have a text, when it changed; whether it need have a content at all
    /// when it has not changed.
    virtual bool WantsText(const std::string&) const { return true; }
    virtual bool WantsUnchanged(const std::string&) const { return true; }
    /// Whether the summary is told of when only findings are wanted, too.
    virtual bool AlwaysSummary() const { return false; }
};

}  // namespace vyr::inspect

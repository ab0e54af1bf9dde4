#pragma once

#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "common/ChannelMap.h"
#include "content/LibraryPort.h"
#include "model/Report.h"
#include "model/ServiceSession.h"

namespace vyr::inspect {

/// Follows the LLS of one broadcast: tells of each table what is new about it, and keeps the services of the
/// current service list of each LLS group in the channel map.
class CLlsFollower {
  public:
    static constexpr std::size_t k_maxServices = 16384;

    /// `stream` names the stream in the report; all references outlive the follower. So many services are held at
    /// most.
    CLlsFollower(std::string stream, bool lenient, CChannelMap& channelMap, CReport& report,
                 std::size_t mostServices = k_maxServices);
    /// Takes its services out of the channel map.
    ~CLlsFollower();
    CLlsFollower(const CLlsFollower&) = delete;
    CLlsFollower& operator=(const CLlsFollower&) = delete;

    /// Takes one LLS table: one UDP payload of the stream. With it, what others had at `gone` holds no more.
    void Take(SView table, const SSource& source, const std::vector<TListKey>& gone = {})
    {
        m_gone = gone;
        m_Take(table, source, false);
    }
    /// No more comes: lets go of all services. The places of all tables that came.
    std::vector<TListKey> End();

    const std::string& Stream() const { return m_stream; }

    std::uint64_t Tables() const { return m_taken; }
    bool SawSlt() const { return m_sawSlt; }
    /// Services in the lists that hold now.
    std::size_t Services() const;
    /// Told, whenever the list of an LLS group is replaced or let go, which services it has from now on.
    using TServiceListener = std::function<void(unsigned char groupId, std::vector<SListedService>)>;
    void SetServiceListener(TServiceListener listener) { m_serviceListener = std::move(listener); }

  private:
    static constexpr std::size_t k_maxTable = 1048576;  ///< bytes of an inflated table

    /// The services of one list; its address is their channel in the channel map.
    struct SCurrentSlt {
        std::vector<void*> services;
    };
    struct SState {
        SLlsHeader header;
        std::size_t size = 0;
        std::uint64_t hash = 0;      ///< as sent
        std::uint64_t textHash = 0;  ///< inflated
        std::optional<STime> lastSeen;
    };
    struct SOutcome {
        std::optional<SSlt> slt;
        std::string reason;  ///< why there is none
        std::vector<SFinding> findings;
        std::vector<std::vector<unsigned char>> inner;
    };

    void m_Take(SView table, const SSource& source, bool insideMultiTable);
    SOutcome m_ParseOther(SView bytes, STable& table);
    static std::uint64_t m_TextHash(SView payload, std::uint64_t hash);
    EStatus m_Compare(const SLlsHeader& header, SView payload, STable& table, const SSource& source);
    static void m_Explain(const STable& table, SOutcome& outcome);
    static void m_AddAssertions(const std::vector<SAssertion>& assertions, const STable& table, SOutcome& outcome);
    SOutcome m_ParseSlt(SView bytes, const STable& table);
    void m_Read(CParseSLT& parser, SView bytes, const STable& table, SOutcome& outcome);
    void m_Hold(unsigned char groupId, std::unique_ptr<SCurrentSlt> current, const STable& table, SOutcome& outcome);
    void m_Release(unsigned char groupId);
    void m_DropGroups(const SLlsHeader& header, const std::optional<STime>& now);

    const std::string m_stream;
    const bool m_lenient;
    const std::size_t m_mostServices;
    CChannelMap& m_channelMap;
    CReport& m_report;
    TServiceListener m_serviceListener = [](unsigned char, const std::vector<SListedService>&) {};
    std::map<unsigned, SState> m_states;                    ///< by group id and table id
    std::map<unsigned char, std::optional<STime>> m_heard;  ///< when something of the group came last
    std::map<unsigned char, std::unique_ptr<SCurrentSlt>> m_current;
    std::list<unsigned char> m_groups;  ///< of m_current, oldest list first
    std::vector<TListKey> m_gone;       ///< to be told with the next table
    std::uint64_t m_taken = 0;
    bool m_sawSlt = false;
};

}  // namespace vyr::inspect

#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "follow/GuideFollower.h"
#include "model/ServiceSession.h"
#include "wire/Ipv4Decoder.h"
#include "wire/ObjectAssembler.h"

class CSTSID;

namespace vyr::inspect {

/// Follows the sessions that carry the service guide: of each ROUTE session that signals a guide service,
/// the LCT sessions with files that its S-TSID names; of other ones, those whose files are the guide's by
/// their type. Gives the objects to the follower of the guide.
class CGuideSessions {
  public:
    /// Both references outlive it.
    CGuideSessions(CGuideFollower& guide, CReport& report);
    ~CGuideSessions();
    CGuideSessions(const CGuideSessions&) = delete;
    CGuideSessions& operator=(const CGuideSessions&) = delete;

    /// The S-TSID that holds from now on in the session.
    void Signal(const SFollowed& followed, const CSTSID& stsid);
    /// The session is followed no longer.
    void Release(const SServiceSession& session);
    /// Takes a datagram; false: it belongs to none of the sessions.
    bool Take(const SDatagram& datagram, const SSource& source);
    /// Calls with every LCT session that is followed now, and its TSI.
    void Each(const std::function<void(const SServiceSession&, std::uint64_t)>& visit) const;
    /// The end of the input: adds to the summary, and tells which guides did not come, if it was received `whole`.
    void Finish(const std::string& file, bool whole);

  private:
    static constexpr std::size_t k_maxStreams = 256;  ///< of all sessions
    static constexpr std::size_t k_maxFiles = 4096;   ///< of an LCT session

    using TEndpoint = std::pair<std::uint32_t, std::uint16_t>;
    struct SFile {
        std::string contentLocation;
        std::string contentType;
    };
    /// An LCT session that is followed.
    class CStream;
    struct SOwner {
        std::string name;
        std::set<unsigned> services;  ///< that announce the guide
        std::vector<std::unique_ptr<CStream>> streams;
    };

    std::vector<std::unique_ptr<CStream>> m_Streams(const SFollowed& followed, const CSTSID& stsid,
                                                    const SOwner& owner);
    void m_Unlist(const SOwner& owner);
    void m_Drop(SOwner& owner);
    void m_Follow(SOwner& owner, std::unique_ptr<CStream> stream);
    std::string m_Missing(const SOwner& owner) const;

    CGuideFollower& m_guide;
    CReport& m_report;
    CAssemblyMemory m_memory;
    std::map<SServiceSession, SOwner> m_owners;  ///< by the session that signals
    std::multimap<TEndpoint, CStream*> m_streams;
    std::size_t m_notFollowed = 0;
};

}  // namespace vyr::inspect

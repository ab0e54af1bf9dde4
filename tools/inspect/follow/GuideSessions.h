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
struct SEFDTInfo;

namespace vyr::inspect {

/// Follows the sessions that carry the service guide: of each ROUTE session that signals a guide service,
/// the LCT sessions with files that its S-TSID names; of other ones, those whose files are the guide's by
/// their type. Gives the objects to the follower of the guide. With `files`, it follows all LCT sessions with files,
/// and tells the report of the files that are nothing of the guide; what it says of the guide stays the same.
class CGuideSessions {
  public:
    /// Both references outlive it.
    CGuideSessions(CGuideFollower& guide, CReport& report, bool files = false);
    ~CGuideSessions();
    CGuideSessions(const CGuideSessions&) = delete;
    CGuideSessions& operator=(const CGuideSessions&) = delete;

    /// The S-TSID that holds in the session from now on, which `source` says.
    void Signal(const SFollowed& followed, const CSTSID& stsid, const SSource& source);
    /// The session is followed no longer.
    void Release(const SServiceSession& session);
    /// Takes a datagram; false: it belongs to none of the sessions of the guide.
    bool Take(const SDatagram& datagram, const SSource& source);
    /// Calls with every LCT session that is followed now for the guide, and its TSI.
    void Each(const std::function<void(const SServiceSession&, std::uint64_t)>& visit) const;
    /// The end of the input, or of a part that is reported: adds to the summary, and tells which guides did not come,
    /// if it was received `whole`.
    void Finish(const SInputTimes& times, bool whole) const;
    /// Lets go of all sessions, behind Finish().
    void Close();

  private:
    static constexpr std::size_t k_maxStreams = 256;       ///< of all sessions
    static constexpr std::size_t k_maxFileStreams = 1024;  ///< of all sessions, of files alone
    static constexpr std::size_t k_maxFiles = 4096;        ///< of an LCT session
    static constexpr double k_longestRound = 600;          ///< seconds, of a guide that is sent again and again

    using TEndpoint = std::pair<std::uint32_t, std::uint16_t>;
    struct SNamedFile {
        std::string contentLocation;
        std::string contentType;
        std::string contentEncoding;
    };
    /// The files of an LCT session.
    struct SFiles {
        std::map<std::uint64_t, SNamedFile> byToi;
        std::string fileTemplate;
    };
    /// An LCT session that is followed.
    class CStream;
    struct SOwner {
        std::string name;
        std::set<unsigned> services;  ///< that announce the guide
        std::vector<unsigned> all;    ///< services, the first ones
        std::vector<std::unique_ptr<CStream>> streams;
    };

    std::vector<std::unique_ptr<CStream>> m_Streams(const SFollowed& followed, const CSTSID& stsid,
                                                    const SOwner& owner);
    void m_Unlist(const SOwner& owner);
    void m_Drop(SOwner& owner);
    void m_Follow(SOwner& owner, std::unique_ptr<CStream> stream);
    static SFiles m_Files(const SEFDTInfo* efdt);
    std::string m_Missing(const SOwner& owner, const std::optional<STime>& last) const;

    CGuideFollower& m_guide;
    CReport& m_report;
    const bool m_files;
    CAssemblyMemory m_memory;
    CAssemblyMemory m_fileMemory;                ///< of files alone, which take nothing from the guide
    std::map<SServiceSession, SOwner> m_owners;  ///< by the session that signals
    std::multimap<TEndpoint, CStream*> m_streams;
    /// Followed now, and not for want of room: for files alone, and for the guide.
    std::size_t m_followed[2] = {};
    std::size_t m_notFollowed[2] = {};
};

}  // namespace vyr::inspect

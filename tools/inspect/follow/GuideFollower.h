#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "base/BoundedMap.h"
#include "content/GuideReader.h"
#include "model/Allowance.h"
#include "model/Report.h"
#include "model/ServiceSession.h"

namespace vyr::inspect {

/// Where an object of the guide came from. A raw file has none of this.
struct SGuidePlace {
    std::string session;  ///< "239.255.7.1:30100"
    std::uint64_t tsi = 0;
    TToi toi;
    std::string contentLocation;
    std::string contentType;
    std::set<unsigned> services;  ///< that announce the guide
};

/// How much a guide may be.
struct SGuideLimits {
    std::size_t fragments = 65536;
    std::size_t bytes = 67108864;   ///< of the fragments' texts
    std::size_t joined = 67108864;  ///< bytes of the services and programmes, about
};

/// Whether a media type is that of a delivery unit or a document of the guide.
bool IsGuideType(const std::string& contentType);

/// Follows the guide of one input, object by object: holds its fragments by their ids, each in its newest
/// version, and joins them.
class CGuideFollower {
  public:
    /// The report outlives the follower.
    explicit CGuideFollower(CReport& report, SGuideLimits limits = {}) : m_report(report), m_limits(limits) {}

    /// Takes one whole object, from a session or a raw file. False: it is nothing of the guide.
    bool Take(const std::optional<SGuidePlace>& place, SView object, const SSource& source);
    /// The services that the list of an LLS group, known by its stream and id, announces from now on.
    using TGroup = TListKey;
    void Announce(const TGroup& group, const std::vector<SListedService>& services);
    /// The end of the input: shows the guide unless it was shown as it stands, and adds to the summary.
    void Finish(const std::string& file);
    /// Tells of the guide as it is now, if it is not what was told last.
    void Show(const SSource& source);
    /// Whether any fragment has come.
    bool Holds() const { return !m_fragments.empty(); }

  private:
    static constexpr std::size_t k_maxObjects = 4096;
    static constexpr std::uint64_t k_growth = 32;  ///< bytes of guide that may be shown for one that was sent

    using TFragment = std::pair<unsigned, std::string>;            ///< type and id
    using TObject = std::tuple<std::string, std::uint64_t, TToi>;  ///< session, TSI and TOI
    struct SObject {
        std::size_t size = 0;
        std::uint64_t hash = 0;  ///< as sent
        std::size_t textSize = 0;
        std::uint64_t textHash = 0;  ///< inflated
        bool guide = false;
        std::string contentLocation;
    };
    struct SHeld {
        SGuideFragment fragment;
        std::list<TFragment>::iterator order;
    };
    class CJoin;

    bool m_Repeated(const SObject& known, SGuideObject& object);
    void m_CountSent(const SObject& object);
    EStatus m_Remember(const SGuidePlace& place, const SObject& now);
    void m_ForgetFile(const TObject& key, const SObject& object);
    void m_Hold(SGuideFragment&& fragment, const std::optional<SGuidePlace>& place, const SSource& source);
    void m_MakeRoom(const SSource& source);
    void m_Show(const SSource& source);
    void m_Finding(ERule rule, const std::string& message, const std::optional<SGuidePlace>& place,
                   const SSource& source);

    CReport& m_report;
    const SGuideLimits m_limits;
    CBoundedMap<TObject, SObject> m_objects{k_maxObjects};
    std::map<std::pair<std::string, std::string>, TObject> m_files;  ///< latest object, by session and location
    std::map<TFragment, SHeld> m_fragments;
    std::list<TFragment> m_order;  ///< of m_fragments, oldest first
    std::size_t m_held = 0;        ///< bytes of the fragments' texts
    std::map<TGroup, std::vector<SListedService>> m_services;
    std::size_t m_sinceShown = 0;         ///< bytes of the objects that came since, inflated, repeats included
    CAllowance m_allowance{0, k_growth};  ///< the guide that was shown against what was sent since
    bool m_changed = false;               ///< since the guide was shown
    bool m_toldFull = false;
    bool m_toldCut = false;
    std::size_t m_shownServices = 0;
    std::size_t m_shownProgrammes = 0;
};

}  // namespace vyr::inspect

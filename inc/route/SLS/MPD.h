#pragma once

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "../../common/XmlElement.h"
#include "../../platform/Api.h"

// What an MPD (ISO/IEC 23009-1 clause 5) says, in records to walk. Texts are zero-terminated and belong to
// the SMPDInfo; null: not given. Numbers are -1 and optional values empty when not given, unless it says
// otherwise. Durations and times are seconds with fractions; in a duration a year has 365 days and a month
// 30, and times count from 1970, UTC, which is also the zone of those that name none.

/// A property of a kind that its scheme defines: Role, Accessibility, Rating, EssentialProperty,
/// SupplementalProperty, AudioChannelConfiguration, UTCTiming, the head of an EventStream (5.8.2).
struct SMPDDescriptor {
    const char* schemeIdUri = nullptr;  ///< URI of the scheme
    const char* value = nullptr;        ///< in the terms of the scheme
    const char* id = nullptr;           ///< those of one id are equivalent
};

/// A protection scheme and what its licence system needs (5.8.4.1).
struct SMPDContentProtection : SMPDDescriptor {
    const char* defaultKid = nullptr;      ///< cenc:default_KID, a UUID
    std::vector<const char*> pssh;         ///< base64 of whole "pssh" boxes
    std::vector<const char*> licenceUrls;  ///< of Laurl, dashif:Laurl or laurl
};

/// The descriptors that adaptation sets, representations and preselections can have.
struct SMPDDescriptors {
    std::vector<SMPDContentProtection> contentProtections;  ///< ContentProtection
    std::vector<SMPDDescriptor> roles;                      ///< Role
    std::vector<SMPDDescriptor> accessibilities;            ///< Accessibility
    std::vector<SMPDDescriptor> ratings;                    ///< Rating
    std::vector<SMPDDescriptor> essentialProperties;        ///< EssentialProperty

    std::vector<SMPDDescriptor> supplementalProperties;      ///< SupplementalProperty
    std::vector<SMPDDescriptor> audioChannelConfigurations;  ///< AudioChannelConfiguration (5.8.4.7)
};

/// When segments can be asked for, beside what their times say (5.3.9.2, 5.6).
struct SMPDAvailability {
    std::optional<double> timeOffset;  ///< seconds earlier; infinite: at any time before
    std::optional<bool> timeComplete;  ///< whether a segment is whole then; true when not given
};

/// A run of segments of one duration, in units of the timescale (5.3.9.6).
struct SMPDSegment {
    long long t = -1;  ///< start; worked out where not given; -1: behind a run without end
    long long n = -1;  ///< number of the first one
    long long d = 0;   ///< duration of each
    long long r = 0;   ///< how often it is repeated; negative: until the next run, or the end of the period
    long long k = 1;   ///< parts that each is cut into
};

/// One segment of a segment list (5.3.9.3).
struct SMPDSegmentURL {
    const char* media = nullptr;       ///< URL, relative to the base
    const char* mediaRange = nullptr;  ///< "first-last", bytes
    const char* index = nullptr;       ///< URL of the index segment
    const char* indexRange = nullptr;  ///< of the index, "first-last", bytes
};

/// What templates and lists have in common (5.3.9.2).
struct SMPDSegments {
    long long timescale = -1;                                  ///< units per second; 1: not given
    long long duration = -1;                                   ///< of each segment, in units of the timescale
    long long startNumber = -1;                                ///< 1: not given
    long long presentationTimeOffset = -1;                     ///< in units of the timescale; 0: not given
    std::shared_ptr<const std::vector<SMPDSegment>> timeline;  ///< null: none
    SMPDAvailability availability;                             ///< availabilityTimeOffset, availabilityTimeComplete
};

/// Segments whose names follow from a pattern (5.3.9.4).
struct SMPDSegmentTemplate : SMPDSegments {
    const char* media = nullptr;           ///< URL with $Number$, $Time$ and the like
    const char* index = nullptr;           ///< the same of the index segments
    const char* initialization = nullptr;  ///< URL of the initialization segment
};

/// Segments that are listed (5.3.9.3).
struct SMPDSegmentList : SMPDSegments {
    const char* initialization = nullptr;                     ///< sourceURL of Initialization
    const char* initializationRange = nullptr;                ///< range of Initialization, "first-last", bytes
    std::shared_ptr<const std::vector<SMPDSegmentURL>> urls;  ///< null: none
};

/// Where the segments are, of a period, an adaptation set or a representation. What a level does not say it
/// has from the level above, whole objects being shared.
struct SMPDSegmentInfo {
    std::vector<const char*> baseUrls;  ///< of this level alone, to be resolved against those above
    std::shared_ptr<const SMPDSegmentTemplate> segmentTemplate;  ///< null: none
    std::shared_ptr<const SMPDSegmentList> segmentList;          ///< null: none
    std::vector<SMPDAvailability> baseUrlAvailabilities;         ///< of each of the base URLs
};

/// Attributes common to adaptation sets and representations (5.3.7).
struct SMPDCommon {
    const char* profiles = nullptr;           ///< URNs, with commas between
    long long width = -1;                     ///< pixels
    long long height = -1;                    ///< pixels
    const char* sar = nullptr;                ///< sample aspect ratio, "n:m"
    const char* frameRate = nullptr;          ///< frames per second, "n" or "n/m"
    const char* audioSamplingRate = nullptr;  ///< hertz, or lowest and highest
    const char* mimeType = nullptr;           ///< RFC 2046
    const char* codecs = nullptr;             ///< RFC 6381
    long long startWithSAP = -1;              ///< type of the access point that each segment starts with, 0 to 6
    const char* scanType = nullptr;           ///< "progressive", "interlaced" or "unknown"
    long long selectionPriority = -1;         ///< 1: not given
    const char* tag = nullptr;                ///< for selection by the application
};

/// One encoding of the content of its adaptation set (5.3.5). Common attributes that it does not say are
/// those of the set; so are its segments.
struct SMPDRepresentation : SMPDCommon, SMPDSegmentInfo, SMPDDescriptors {
    const char* id = nullptr;            ///< one of its own in its period
    long long bandwidth = -1;            ///< bit/s
    long long qualityRanking = -1;       ///< lower is better
    const char* dependencyId = nullptr;  ///< ids of those that it needs, with spaces between
};

/// Interchangeable encodings of one media component (5.3.3). Its descriptors hold for all of them.
struct SMPDAdaptationSet : SMPDCommon, SMPDSegmentInfo, SMPDDescriptors {
    const char* id = nullptr;                         ///< one of its own in its period
    long long group = -1;                             ///< sets of one group exclude each other; 0: goes with any
    const char* lang = nullptr;                       ///< BCP 47
    const char* contentType = nullptr;                ///< "audio", "video", "text" …
    const char* par = nullptr;                        ///< picture aspect ratio, "n:m"
    long long minBandwidth = -1;                      ///< bit/s
    long long maxBandwidth = -1;                      ///< bit/s
    long long minWidth = -1;                          ///< pixels
    long long maxWidth = -1;                          ///< pixels
    long long minHeight = -1;                         ///< pixels
    long long maxHeight = -1;                         ///< pixels
    const char* minFrameRate = nullptr;               ///< frames per second, "n" or "n/m"
    const char* maxFrameRate = nullptr;               ///< frames per second, "n" or "n/m"
    const char* segmentAlignment = nullptr;           ///< "true", "false" or a number
    std::vector<SMPDRepresentation> representations;  ///< Representation, in document order
};

/// A combination of media components that form one experience (5.3.11).
struct SMPDPreselection : SMPDDescriptors {
    const char* id = nullptr;                      ///< one of its own in its period
    const char* preselectionComponents = nullptr;  ///< ids of the components, with spaces between
    const char* lang = nullptr;                    ///< BCP 47
    const char* order = nullptr;                   ///< "undefined", "time-ordered" or "fully-ordered"
};

/// A stretch of the presentation (5.3.2).
struct SMPDPeriod : SMPDSegmentInfo {
    const char* id = nullptr;                       ///< one of its own in the presentation
    std::optional<double> start;                    ///< since the start of the presentation
    std::optional<double> duration;                 ///< as given, seconds
    std::vector<SMPDAdaptationSet> adaptationSets;  ///< AdaptationSet, in document order
    std::vector<SMPDPreselection> preselections;    ///< Preselection
    std::vector<SMPDDescriptor> eventStreams;       ///< EventStream, their heads

    std::vector<SMPDDescriptor> supplementalProperties;  ///< SupplementalProperty
};

/// The presentation (5.3.1).
struct SMPDInfo {
    const char* id = nullptr;                          ///< of the presentation
    const char* profiles = nullptr;                    ///< URNs, with commas between
    bool dynamic = false;                              ///< type; false: "static", or not given
    std::optional<double> availabilityStartTime;       ///< since 1970; anchor of the segments' times, when dynamic
    std::optional<double> availabilityEndTime;         ///< since 1970
    std::optional<double> publishTime;                 ///< since 1970: when this version was made
    std::optional<double> mediaPresentationDuration;   ///< seconds
    std::optional<double> minimumUpdatePeriod;         ///< seconds until the next version, at least
    std::optional<double> minBufferTime;               ///< seconds
    std::optional<double> timeShiftBufferDepth;        ///< seconds
    std::optional<double> suggestedPresentationDelay;  ///< seconds behind the live edge
    std::vector<const char*> baseUrls;                 ///< BaseURL
    std::vector<SMPDDescriptor> essentialProperties;   ///< EssentialProperty
    std::vector<SMPDPeriod> periods;                   ///< Period, in document order

    std::vector<SMPDDescriptor> supplementalProperties;   ///< SupplementalProperty
    std::vector<SMPDDescriptor> utcTimings;               ///< UTCTiming: where receivers have the time from (5.8.4.11)
    std::vector<SMPDAvailability> baseUrlAvailabilities;  ///< of each of the base URLs
};

/// Parser of a DASH media presentation description. A parse that succeeds replaces the record of the one
/// before; one that fails leaves none. An object that is not created is asserted ("m").
class VYR_API CMPD : public CXmlElement {
  public:
    /// Ratings: scheme and value, without doubles.
    using TRatings = std::set<std::pair<std::string, std::string>>;

    /// Told at the end of each parse that succeeds, in this order, inside Parse and on its thread: the record is
    /// complete, and good until the next Parse or Destroy, the ratings during the call. A null function is not
    /// called. What they may call: see XMLBase; after one that throws there is no record.
    struct SCallback {
        void* context;                                       ///< handed back to the functions
        void (*mpdInfo)(void* context, SMPDInfo* info);      ///< the record stays the parser's
        void (*ratingInfo)(void* context, const TRatings&);  ///< scheme and value of every Rating, maybe none
    };

    /// Copies the record; null takes it back. False before Create.
    bool SetCallback(const SCallback* callback);

    using XMLBase::Parse;
    /// As XMLBase says; the record of an earlier parse is let go first.
    bool Parse(const char* buffer, unsigned int length, bool compressed) override;

    /// What was parsed; null when nothing is. Good until the next Parse or Destroy.
    SMPDInfo* GetMPDInfo() const;

  private:
    vyr::SXmlKind t_Kind() const override;
};

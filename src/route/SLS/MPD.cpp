#include "route/SLS/MPD.h"

#include <cstring>
#include <memory_resource>

#include "common/XmlNode.h"
#include "common/XmlParser.h"
#include "common/XmlRead.h"
#include "common/XsTime.h"
#include "platform/Log.h"

using vyr::CNodeText;

namespace {

long long Number(void* node, const char* name)
{
    const long long value = CNodeText::Attribute(node, name).LLong(-1);
    return value < 0 ? -1 : value;
}

/// A duration or time; empty when the attribute is missing or is none.
std::optional<double> Seconds(void* node, const char* name, bool (*read)(const char*, double&))
{
    const CNodeText text = CNodeText::Attribute(node, name);
    double seconds = 0;
    if (!text.Found()) {
        return std::nullopt;
    }
    if (!read(text.Text(), seconds)) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CMPD] %s[%s] is no time", name, text.Text());
        return std::nullopt;
    }
    return seconds;
}

/// What a representation does not say is what its adaptation set says.
void Inherit(SMPDCommon& own, const SMPDCommon& above)
{
    for (const char* SMPDCommon::*text :
         {&SMPDCommon::profiles, &SMPDCommon::sar, &SMPDCommon::frameRate, &SMPDCommon::audioSamplingRate,
          &SMPDCommon::mimeType, &SMPDCommon::codecs, &SMPDCommon::scanType, &SMPDCommon::tag}) {
        own.*text = own.*text ? own.*text : above.*text;
    }
    for (long long SMPDCommon::*number :
         {&SMPDCommon::width, &SMPDCommon::height, &SMPDCommon::startWithSAP, &SMPDCommon::selectionPriority}) {
        own.*number = own.*number != -1 ? own.*number : above.*number;
    }
}

void Inherit(SMPDSegments& own, const SMPDSegments& above)
{
    for (long long SMPDSegments::*number : {&SMPDSegments::timescale, &SMPDSegments::duration,
                                            &SMPDSegments::startNumber, &SMPDSegments::presentationTimeOffset}) {
        own.*number = own.*number != -1 ? own.*number : above.*number;
    }
    if (!own.timeline) {
        own.timeline = above.timeline;
    }
    if (!own.availability.timeOffset) {
        own.availability.timeOffset = above.availability.timeOffset;
    }
    if (!own.availability.timeComplete) {
        own.availability.timeComplete = above.availability.timeComplete;
    }
}

void Inherit(SMPDSegmentTemplate& own, const SMPDSegmentTemplate& above)
{
    Inherit(static_cast<SMPDSegments&>(own), above);
    for (const char* SMPDSegmentTemplate::*text :
         {&SMPDSegmentTemplate::media, &SMPDSegmentTemplate::index, &SMPDSegmentTemplate::initialization}) {
        own.*text = own.*text ? own.*text : above.*text;
    }
}

void Inherit(SMPDSegmentList& own, const SMPDSegmentList& above)
{
    Inherit(static_cast<SMPDSegments&>(own), above);
    if (!own.initialization && !own.initializationRange) {
        own.initialization = above.initialization;
        own.initializationRange = above.initializationRange;
    }
    if (!own.urls) {
        own.urls = above.urls;
    }
}

/// Completes an object that its level alone holds so far, or shares that of the level above.
template <class T>
void Inherit(std::shared_ptr<const T>& own, const std::shared_ptr<const T>& above)
{
    if (!own) {
        own = above;
    } else if (above) {
        Inherit(const_cast<T&>(*own), *above);
    }
}

void Inherit(SMPDSegmentInfo& own, const SMPDSegmentInfo& above)
{
    Inherit(own.segmentTemplate, above.segmentTemplate);
    Inherit(own.segmentList, above.segmentList);
}

template <class T>
void SetDefaults(const std::shared_ptr<const T>& segments)
{
    if (segments) {
        SMPDSegments& values = const_cast<T&>(*segments);
        values.timescale = values.timescale > 0 ? values.timescale : 1;
        values.startNumber = values.startNumber != -1 ? values.startNumber : 1;
        values.presentationTimeOffset = values.presentationTimeOffset != -1 ? values.presentationTimeOffset : 0;
    }
}

void SetDefaults(const SMPDSegmentInfo& level)
{
    SetDefaults(level.segmentTemplate);
    SetDefaults(level.segmentList);
}

/// Hands down what the levels share, and then sets what nobody said.
void Resolve(SMPDPeriod& period)
{
    for (SMPDAdaptationSet& set : period.adaptationSets) {
        Inherit(static_cast<SMPDSegmentInfo&>(set), period);
        set.selectionPriority = set.selectionPriority != -1 ? set.selectionPriority : 1;
        for (SMPDRepresentation& representation : set.representations) {
            Inherit(static_cast<SMPDSegmentInfo&>(representation), set);
            Inherit(static_cast<SMPDCommon&>(representation), set);
        }
    }
    SetDefaults(period);
    for (SMPDAdaptationSet& set : period.adaptationSets) {
        SetDefaults(set);
        for (SMPDRepresentation& representation : set.representations) {
            SetDefaults(representation);
        }
    }
}

/// The walk keeps where it is in the current pointers; an element where it has no business is passed over.
struct SState : vyr::SXmlState {
    std::pmr::monotonic_buffer_resource texts;
    std::unique_ptr<SMPDInfo> info;
    CMPD::TRatings ratings;
    CMPD::SCallback callback{};

    SMPDPeriod* period = nullptr;
    SMPDAdaptationSet* set = nullptr;
    SMPDRepresentation* representation = nullptr;
    SMPDPreselection* preselection = nullptr;
    SMPDContentProtection* protection = nullptr;
    SMPDSegments* segments = nullptr;
    SMPDSegmentList* list = nullptr;
    std::vector<SMPDSegmentURL>* urls = nullptr;
    std::vector<SMPDSegment>* timeline = nullptr;
    long long nextStart = 0;

    void Clear()
    {
        info.reset();
        ratings.clear();
        texts.release();
    }

    bool m_ProcessParse(void* root) override;
    void Walk(void* node);
    const char* Keep(const char* text, std::size_t length);
    const char* Keep(void* node, const char* name);
    const char* KeepUri(void* node);
    SMPDSegmentInfo* Level()
    {
        return representation ? representation : set ? set : static_cast<SMPDSegmentInfo*>(period);
    }
    SMPDDescriptors* Descriptors()
    {
        return representation ? representation : set ? set : static_cast<SMPDDescriptors*>(preselection);
    }
    void ReadMpd(void* node);
    void ReadCommon(void* node, SMPDCommon& common);
    void ReadDescriptor(void* node, SMPDDescriptor& descriptor);
    void ReadSegments(void* node, SMPDSegments& values);
    void Add(void* node, std::vector<SMPDDescriptor> SMPDDescriptors::*kind);
};

/// A text of the record, which lives as long as the record.
const char* SState::Keep(const char* text, std::size_t length)
{
    char* copy = static_cast<char*>(texts.allocate(length + 1, 1));
    std::memcpy(copy, text, length);
    copy[length] = '\0';
    return copy;
}

const char* SState::Keep(void* node, const char* name)
{
    const CNodeText text = CNodeText::Attribute(node, name);
    return text.Found() ? Keep(text.Text(), std::strlen(text.Text())) : nullptr;
}

/// The text of an element without the white space around it; null when nothing is left.
const char* SState::KeepUri(void* node)
{
    static constexpr char k_space[] = " \t\r\n";
    const CNodeText text = CNodeText::Content(node);
    if (!text.Found()) {
        return nullptr;
    }
    const char* begin = text.Text() + std::strspn(text.Text(), k_space);
    std::size_t length = std::strlen(begin);
    while (length > 0 && std::strchr(k_space, begin[length - 1])) {
        --length;
    }
    return length > 0 ? Keep(begin, length) : nullptr;
}

void Misplaced(void* node)
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMPD::m_ProcessParseMPD] %s is out of place", vyr::NodeName(node));
}

SMPDAvailability ReadAvailability(void* node)
{
    SMPDAvailability availability;
    vyr::ReadAttribute(node, "availabilityTimeOffset", availability.timeOffset);
    vyr::ReadAttribute(node, "availabilityTimeComplete", availability.timeComplete);
    return availability;
}

void SState::ReadMpd(void* node)
{
    info->id = Keep(node, "id");
    info->profiles = Keep(node, "profiles");
    const CNodeText type = CNodeText::Attribute(node, "type");
    info->dynamic = type.Found() && std::strcmp(type.Text(), "dynamic") == 0;
    info->availabilityStartTime = Seconds(node, "availabilityStartTime", vyr::ReadDateTime);
    info->availabilityEndTime = Seconds(node, "availabilityEndTime", vyr::ReadDateTime);
    info->publishTime = Seconds(node, "publishTime", vyr::ReadDateTime);
    info->mediaPresentationDuration = Seconds(node, "mediaPresentationDuration", vyr::ReadDuration);
    info->minimumUpdatePeriod = Seconds(node, "minimumUpdatePeriod", vyr::ReadDuration);
    info->minBufferTime = Seconds(node, "minBufferTime", vyr::ReadDuration);
    info->timeShiftBufferDepth = Seconds(node, "timeShiftBufferDepth", vyr::ReadDuration);
    info->suggestedPresentationDelay = Seconds(node, "suggestedPresentationDelay", vyr::ReadDuration);
}

void sm_CbPeriod(SState* m, void* node)
{
    if (m->period) {
        return Misplaced(node);
    }
    SMPDPeriod& period = m->info->periods.emplace_back();
    period.id = m->Keep(node, "id");
    period.start = Seconds(node, "start", vyr::ReadDuration);
    period.duration = Seconds(node, "duration", vyr::ReadDuration);
    const vyr::CScoped<SMPDPeriod*> current(m->period, &period, nullptr);
    m->Walk(node);
}

void SState::ReadCommon(void* node, SMPDCommon& common)
{
    common.profiles = Keep(node, "profiles");
    common.width = Number(node, "width");
    common.height = Number(node, "height");
    common.sar = Keep(node, "sar");
    common.frameRate = Keep(node, "frameRate");
    common.audioSamplingRate = Keep(node, "audioSamplingRate");
    common.mimeType = Keep(node, "mimeType");
    common.codecs = Keep(node, "codecs");
    common.startWithSAP = Number(node, "startWithSAP");
    common.scanType = Keep(node, "scanType");
    common.selectionPriority = Number(node, "selectionPriority");
    common.tag = Keep(node, "tag");
}

void sm_CbAdaptationSet(SState* m, void* node)
{
    if (!m->period || m->set || m->preselection) {
        return Misplaced(node);
    }
    SMPDAdaptationSet& set = m->period->adaptationSets.emplace_back();
    m->ReadCommon(node, set);
    set.id = m->Keep(node, "id");
    set.group = Number(node, "group");
    set.lang = m->Keep(node, "lang");
    set.contentType = m->Keep(node, "contentType");
    set.par = m->Keep(node, "par");
    set.minBandwidth = Number(node, "minBandwidth");
    set.maxBandwidth = Number(node, "maxBandwidth");
    set.minWidth = Number(node, "minWidth");
    set.maxWidth = Number(node, "maxWidth");
    set.minHeight = Number(node, "minHeight");
    set.maxHeight = Number(node, "maxHeight");
    set.minFrameRate = m->Keep(node, "minFrameRate");
    set.maxFrameRate = m->Keep(node, "maxFrameRate");
    set.segmentAlignment = m->Keep(node, "segmentAlignment");
    const vyr::CScoped<SMPDAdaptationSet*> current(m->set, &set, nullptr);
    m->Walk(node);
}

void sm_CbRepresentation(SState* m, void* node)
{
    if (!m->set || m->representation) {
        return Misplaced(node);
    }
    SMPDRepresentation& representation = m->set->representations.emplace_back();
    m->ReadCommon(node, representation);
    representation.id = m->Keep(node, "id");
    representation.bandwidth = Number(node, "bandwidth");
    representation.qualityRanking = Number(node, "qualityRanking");
    representation.dependencyId = m->Keep(node, "dependencyId");
    const vyr::CScoped<SMPDRepresentation*> current(m->representation, &representation, nullptr);
    m->Walk(node);
}

void sm_CbPreselection(SState* m, void* node)
{
    if (!m->period || m->set || m->preselection) {
        return Misplaced(node);
    }
    SMPDPreselection& preselection = m->period->preselections.emplace_back();
    preselection.id = m->Keep(node, "id");
    preselection.preselectionComponents = m->Keep(node, "preselectionComponents");
    preselection.lang = m->Keep(node, "lang");
    preselection.order = m->Keep(node, "order");
    const vyr::CScoped<SMPDPreselection*> current(m->preselection, &preselection, nullptr);
    m->Walk(node);
}

void sm_CbEventStream(SState* m, void* node)
{
    if (!m->period || m->set || m->preselection) {
        return Misplaced(node);
    }
    m->ReadDescriptor(node, m->period->eventStreams.emplace_back());
}

void SState::ReadSegments(void* node, SMPDSegments& values)
{
    values.timescale = Number(node, "timescale");
    values.duration = Number(node, "duration");
    values.startNumber = Number(node, "startNumber");
    values.presentationTimeOffset = Number(node, "presentationTimeOffset");
    values.availability = ReadAvailability(node);
    const vyr::CScoped<SMPDSegments*> current(segments, &values, nullptr);
    Walk(node);
}

void sm_CbSegmentTemplate(SState* m, void* node)
{
    if (!m->Level() || m->segments) {
        return Misplaced(node);
    }
    const auto segmentTemplate = std::make_shared<SMPDSegmentTemplate>();
    segmentTemplate->media = m->Keep(node, "media");
    segmentTemplate->index = m->Keep(node, "index");
    segmentTemplate->initialization = m->Keep(node, "initialization");
    m->ReadSegments(node, *segmentTemplate);
    m->Level()->segmentTemplate = segmentTemplate;
}

void sm_CbSegmentList(SState* m, void* node)
{
    if (!m->Level() || m->segments) {
        return Misplaced(node);
    }
    const auto list = std::make_shared<SMPDSegmentList>();
    const auto urls = std::make_shared<std::vector<SMPDSegmentURL>>();
    const vyr::CScoped<SMPDSegmentList*> currentList(m->list, list.get(), nullptr);
    const vyr::CScoped<std::vector<SMPDSegmentURL>*> currentUrls(m->urls, urls.get(), nullptr);
    m->ReadSegments(node, *list);
    if (!urls->empty()) {
        list->urls = urls;
    }
    m->Level()->segmentList = list;
}

void sm_CbInitialization(SState* m, void* node)
{
    if (!m->list) {
        return Misplaced(node);
    }
    m->list->initialization = m->Keep(node, "sourceURL");
    m->list->initializationRange = m->Keep(node, "range");
}

void sm_CbSegmentURL(SState* m, void* node)
{
    if (!m->urls) {
        return Misplaced(node);
    }
    SMPDSegmentURL& url = m->urls->emplace_back();
    url.media = m->Keep(node, "media");
    url.mediaRange = m->Keep(node, "mediaRange");
    url.index = m->Keep(node, "index");
    url.indexRange = m->Keep(node, "indexRange");
}

void sm_CbSegmentTimeline(SState* m, void* node)
{
    if (!m->segments || m->timeline) {
        return Misplaced(node);
    }
    const auto timeline = std::make_shared<std::vector<SMPDSegment>>();
    m->nextStart = 0;
    const vyr::CScoped<std::vector<SMPDSegment>*> current(m->timeline, timeline.get(), nullptr);
    m->Walk(node);
    m->segments->timeline = timeline;
}

void sm_CbS(SState* m, void* node)
{
    if (!m->timeline) {
        return Misplaced(node);
    }
    SMPDSegment& segment = m->timeline->emplace_back();
    segment.t = Number(node, "t");
    segment.n = Number(node, "n");
    segment.d = CNodeText::Attribute(node, "d").LLong(0);
    segment.r = CNodeText::Attribute(node, "r").LLong(0);
    segment.k = CNodeText::Attribute(node, "k").LLong(1);
    segment.t = segment.t != -1 ? segment.t : m->nextStart;
    long long length = 0;
    if (segment.t == -1 || segment.r < 0 || segment.d < 0 || __builtin_add_overflow(segment.r, 1, &length) ||
        __builtin_mul_overflow(length, segment.d, &length) ||
        __builtin_add_overflow(segment.t, length, &m->nextStart)) {
        m->nextStart = -1;
    }
}

void sm_CbBaseURL(SState* m, void* node)
{
    if (const char* url = m->KeepUri(node)) {
        SMPDSegmentInfo* level = m->Level();
        (level ? level->baseUrls : m->info->baseUrls).push_back(url);
        (level ? level->baseUrlAvailabilities : m->info->baseUrlAvailabilities).push_back(ReadAvailability(node));
    }
}

void SState::ReadDescriptor(void* node, SMPDDescriptor& descriptor)
{
    descriptor.schemeIdUri = Keep(node, "schemeIdUri");
    descriptor.value = Keep(node, "value");
    descriptor.id = Keep(node, "id");
}

void sm_CbContentProtection(SState* m, void* node)
{
    if (!m->Descriptors() || m->protection) {
        return Misplaced(node);
    }
    SMPDContentProtection& protection = m->Descriptors()->contentProtections.emplace_back();
    m->ReadDescriptor(node, protection);
    protection.defaultKid = m->Keep(node, "default_KID");
    if (!protection.defaultKid) {
        protection.defaultKid = m->Keep(node, "cenc:default_KID");
    }
    const vyr::CScoped<SMPDContentProtection*> current(m->protection, &protection, nullptr);
    m->Walk(node);
}

void sm_CbPssh(SState* m, void* node)
{
    if (!m->protection) {
        return Misplaced(node);
    }
    if (const char* pssh = m->KeepUri(node)) {
        m->protection->pssh.push_back(pssh);
    }
}

void sm_CbLaurl(SState* m, void* node)
{
    if (!m->protection) {
        return Misplaced(node);
    }
    const char* text = m->KeepUri(node);
    if (const char* url = text ? text : m->Keep(node, "licenseUrl")) {
        m->protection->licenceUrls.push_back(url);
    }
}

void SState::Add(void* node, std::vector<SMPDDescriptor> SMPDDescriptors::*kind)
{
    if (!Descriptors()) {
        return Misplaced(node);
    }
    ReadDescriptor(node, (Descriptors()->*kind).emplace_back());
}

void sm_CbRole(SState* m, void* node)
{
    m->Add(node, &SMPDDescriptors::roles);
}

void sm_CbAccessibility(SState* m, void* node)
{
    m->Add(node, &SMPDDescriptors::accessibilities);
}

void sm_CbEssentialProperty(SState* m, void* node)
{
    if (m->period) {
        m->Add(node, &SMPDDescriptors::essentialProperties);
    } else {
        m->ReadDescriptor(node, m->info->essentialProperties.emplace_back());
    }
}

void sm_CbSupplementalProperty(SState* m, void* node)
{
    if (m->Descriptors()) {
        m->Add(node, &SMPDDescriptors::supplementalProperties);
    } else {
        m->ReadDescriptor(
            node, (m->period ? m->period->supplementalProperties : m->info->supplementalProperties).emplace_back());
    }
}

void sm_CbAudioChannelConfiguration(SState* m, void* node)
{
    m->Add(node, &SMPDDescriptors::audioChannelConfigurations);
}

void sm_CbUTCTiming(SState* m, void* node)
{
    if (m->period) {
        return Misplaced(node);
    }
    m->ReadDescriptor(node, m->info->utcTimings.emplace_back());
}

void sm_CbRating(SState* m, void* node)
{
    std::pair<std::string, std::string> rating;
    CNodeText::Attribute(node, "schemeIdUri").CopyTo(rating.first);
    CNodeText::Attribute(node, "value").CopyTo(rating.second);
    m->ratings.insert(std::move(rating));
    m->Add(node, &SMPDDescriptors::ratings);
}

// A prefix that the document does not declare stays part of the name.
constexpr vyr::SElementHandler<SState> k_handlers[] = {
    {"Period", sm_CbPeriod},
    {"AdaptationSet", sm_CbAdaptationSet},
    {"Representation", sm_CbRepresentation},
    {"SegmentTemplate", sm_CbSegmentTemplate},
    {"SegmentList", sm_CbSegmentList},
    {"Initialization", sm_CbInitialization},
    {"SegmentURL", sm_CbSegmentURL},
    {"SegmentTimeline", sm_CbSegmentTimeline},
    {"S", sm_CbS},
    {"BaseURL", sm_CbBaseURL},
    {"ContentProtection", sm_CbContentProtection},
    {"pssh", sm_CbPssh},
    {"cenc:pssh", sm_CbPssh},
    {"Laurl", sm_CbLaurl},
    {"dashif:Laurl", sm_CbLaurl},
    {"laurl", sm_CbLaurl},
    {"dashif:laurl", sm_CbLaurl},
    {"Role", sm_CbRole},
    {"Accessibility", sm_CbAccessibility},
    {"EssentialProperty", sm_CbEssentialProperty},
    {"SupplementalProperty", sm_CbSupplementalProperty},
    {"AudioChannelConfiguration", sm_CbAudioChannelConfiguration},
    {"UTCTiming", sm_CbUTCTiming},
    {"Rating", sm_CbRating},
    {"Preselection", sm_CbPreselection},
    {"EventStream", sm_CbEventStream},
};

bool SState::m_ProcessParse(void* root)
{
    Clear();
    if (!xml->Compare(root, "MPD")) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CMPD::m_ProcessParseMPD] the root is %s", vyr::NodeName(root));
        return false;
    }
    /// A parse that an exception ends leaves no record.
    struct SRecordEnd {
        SState* state;
        bool keep = false;

        ~SRecordEnd()
        {
            if (!keep) {
                state->Clear();
            }
        }
    } record{this};
    info = std::make_unique<SMPDInfo>();
    ReadMpd(root);
    Walk(root);
    for (SMPDPeriod& each : info->periods) {
        Resolve(each);
    }
    if (callback.mpdInfo) {
        callback.mpdInfo(callback.context, info.get());
    }
    if (callback.ratingInfo) {
        callback.ratingInfo(callback.context, ratings);
    }
    record.keep = true;
    return true;
}

void SState::Walk(void* node)
{
    vyr::DispatchChildren(this, k_handlers, node, "[CMPD::m_ProcessParseMPD] %s");
}

}  // namespace

bool CMPD::SetCallback(const SCallback* callback)
{
    return vyr::SetCallback(t_State<SState>(), callback);
}

SMPDInfo* CMPD::GetMPDInfo() const
{
    const auto* m = t_State<SState>();
    return VYR_ASSERT(m, "m") ? m->info.get() : nullptr;
}

bool CMPD::Parse(const char* buffer, unsigned int length, bool compressed)
{
    auto* m = t_State<SState>();
    if (m && !Parsing()) {
        m->Clear();
    }
    return XMLBase::Parse(buffer, length, compressed);
}

vyr::SXmlKind CMPD::t_Kind() const
{
    return vyr::XmlKind<SState>("CMPD");
}

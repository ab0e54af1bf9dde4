// DASH MPD: up to three documents in a row on one parser, all of the record walked.
// Sources: src/route/SLS/MPD.cpp
#include <cstring>

#include "Fuzz.h"
#include "Mutate.h"
#include "platform/Platform.h"
#include "route/SLS/MPD.h"

namespace {

std::size_t g_read = 0;

void Read(const char* text)
{
    g_read += text ? std::strlen(text) : 0;
}

void Read(const std::vector<const char*>& texts)
{
    for (const char* text : texts) {
        Require(*text != '\0');
        Read(text);
    }
}

void Read(const std::vector<SMPDDescriptor>& descriptors)
{
    for (const SMPDDescriptor& descriptor : descriptors) {
        Read(descriptor.schemeIdUri);
        Read(descriptor.value);
        Read(descriptor.id);
    }
}

void Read(const SMPDDescriptors& all)
{
    for (const SMPDContentProtection& protection : all.contentProtections) {
        Read(protection.defaultKid);
        Read(protection.pssh);
        Read(protection.licenceUrls);
    }
    Read(all.roles);
    Read(all.accessibilities);
    Read(all.ratings);
    Read(all.essentialProperties);
}

void Read(const SMPDSegments& segments)
{
    Require(segments.timescale > 0 && segments.startNumber >= 0 && segments.presentationTimeOffset >= 0);
    if (segments.timeline) {
        for (const SMPDSegment& segment : *segments.timeline) {
            Require(segment.t >= -1);
        }
    }
}

void Read(const SMPDSegmentInfo& info, const SMPDSegmentInfo* above)
{
    Read(info.baseUrls);
    if (info.segmentTemplate) {
        Read(*info.segmentTemplate);
        Read(info.segmentTemplate->media);
        Read(info.segmentTemplate->initialization);
    }
    if (info.segmentList) {
        Read(*info.segmentList);
        Require(!info.segmentList->urls || !info.segmentList->urls->empty());
    }
    Require(!above || !above->segmentTemplate || info.segmentTemplate);
    Require(!above || !above->segmentList || info.segmentList);
}

void Read(const SMPDCommon& common)
{
    Read(common.mimeType);
    Read(common.codecs);
    Read(common.frameRate);
    Require(common.width >= -1 && common.height >= -1);
}

void Read(const SMPDInfo& info)
{
    Read(info.id);
    Read(info.baseUrls);
    for (const SMPDPeriod& period : info.periods) {
        Read(period.id);
        Read(period, nullptr);
        Read(period.eventStreams);
        for (const SMPDPreselection& preselection : period.preselections) {
            Read(preselection.preselectionComponents);
            Read(preselection);
        }
        for (const SMPDAdaptationSet& set : period.adaptationSets) {
            Read(set.lang);
            Read(static_cast<const SMPDCommon&>(set));
            Read(static_cast<const SMPDDescriptors&>(set));
            Read(set, &period);
            for (const SMPDRepresentation& representation : set.representations) {
                Read(representation.id);
                Read(static_cast<const SMPDCommon&>(representation));
                Read(static_cast<const SMPDDescriptors&>(representation));
                Read(representation, &set);
                Require(!set.codecs || representation.codecs);
            }
        }
    }
}

void OnInfo(void* context, SMPDInfo* info)
{
    Require(info == static_cast<CMPD*>(context)->GetMPDInfo());
    Read(*info);
}

void OnRatings(void* /*context*/, const CMPD::TRatings& ratings)
{
    g_read += ratings.size();
}

}  // namespace

VYR_MUTATOR(MutateXml)

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    SetLogPriority(LOG_PRIORITY_SILENT);
    CMPD mpd;
    mpd.Create();
    const CMPD::SCallback callback = {&mpd, OnInfo, OnRatings};
    mpd.SetCallback(&callback);
    ForEachPart(CScript(data, size).Rest(), 3, [&mpd](const std::vector<unsigned char>& document) {
        const bool parsed = mpd.Parse(reinterpret_cast<const char*>(document.data()),
                                      static_cast<unsigned int>(document.size()), false);
        Require(parsed == (mpd.GetMPDInfo() != nullptr));
        if (parsed) {
            Read(*mpd.GetMPDInfo());
        }
    });
    mpd.Destroy();
    return 0;
}

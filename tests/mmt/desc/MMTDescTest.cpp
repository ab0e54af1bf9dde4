#include <functional>
#include <memory>
#include <sstream>

#include "mmt/desc/MMTDescFactory.h"
#include "mmt/desc/MMTDescs.h"
#include "support/MmtBuilder.h"
#include "support/Show.h"

namespace {

class MMTDescTest : public CRecorder {
  protected:
    static void Remove(void* /*context*/, void* element) { delete static_cast<CMMTDesc*>(element); }
    /// Item over `bytes`, which must outlive it.
    static IParse::SItem Item(const std::vector<unsigned char>& bytes)
    {
        const unsigned int size = static_cast<unsigned int>(bytes.size());
        return {bytes.data(), size, size * 8, 0, true};
    }

    CCPtrArray m_array{Remove, nullptr};
};

CMmtBuilder Head(unsigned int tag, unsigned int length)
{
    return CMmtBuilder().Put(16, tag).Put(16, length);
}

std::string CriBody()
{
    return CMmtBuilder().Put(8, 7).Put(6, 0x2A).Put(42, 0x3A1B2C3D4E5).Put(64, 0x0102030405060708).Bytes();
}

TEST_F(MMTDescTest, ClockRelationReadsOneRecord)
{
    CMMTDescCri cri;
    EXPECT_EQ(cri.Tag(), 65535u);
    const SFed fed(cri, MmtDesc(0, CriBody()) + "behind");
    EXPECT_EQ(Join(fed.result, fed.item.valid, fed.Cursor()), "1|1|19");
    EXPECT_EQ(Join(cri.Tag(), cri.Length(), cri.ClockRelationId(), cri.Reserved()), Join(0, 15, 7, 0x2A));
    EXPECT_EQ(cri.STCSample(), 0x1B2C3D4E5u & 0xFFFFFFFF);
    EXPECT_EQ(cri.NTPTimestampSample(), 0x05060708u);
    cri.Dump();
    DumpUnseen(cri);
    EXPECT_EQ(Logged("stc samlpe[" + std::to_string(cri.STCSample()) + "]"), 1);
}

TEST_F(MMTDescTest, ClockRelationLengths)
{
    const struct {
        unsigned int tag;
        unsigned int length;
        std::size_t body;  // bytes that are there
        bool result;
        bool valid;
        unsigned int cursor;
    } k_cases[] = {{0, 30, 30, true, true, 4},   {0, 45, 0, true, true, 4},   {0, 14, 30, false, false, 4},
                   {0, 16, 30, false, false, 4}, {0, 0, 30, false, false, 4}, {1, 15, 15, false, true, 4},
                   {0, 15, 14, false, false, 11}};
    for (const auto& c : k_cases) {
        SCOPED_TRACE(c.length);
        CMMTDescCri cri;
        const SFed fed(cri, Head(c.tag, c.length).Put(std::string(c.body, 'x')).Bytes());
        EXPECT_EQ(fed.result, c.result);
        EXPECT_EQ(fed.item.valid, c.valid);
        EXPECT_EQ(fed.Cursor(), c.cursor);
        EXPECT_TRUE(c.body < c.length || cri.ClockRelationId() == 0);
        EXPECT_EQ(cri.NTPTimestampSample(), 0u);
    }
    EXPECT_EQ(Logged("[CMMTDescCri::Parse] Wrong tag : 1"), 1);
    EXPECT_EQ(Logged("[CMMTDescCri::Parse] DescLength mismatch ERROR Length = 14"), 1);
    CMMTDescCri cri;
    EXPECT_FALSE(SFed(cri, std::string(3, '\0')).item.valid);
    EXPECT_FALSE(cri.Parse(nullptr));
    EXPECT_EQ(TakeAssertions(), "item");
}

TEST_F(MMTDescTest, FactoryTags)
{
    const auto made = [](unsigned int tag) {
        const std::vector<unsigned char> bytes =
            Exact(CMmtBuilder().Put(16, 0).Put(16, tag).Put(16, 2).Put("abc").Bytes());
        IParse::SItem item = Item(bytes);
        item.bitpos = 16;
        std::unique_ptr<CMMTDesc> desc(CMMTDescFactory::GenerateDesc(&item));
        EXPECT_EQ(Join(item.bitpos, item.valid, !desc || desc->Tag() == 65535), "16|1|1");
        return desc;
    };
    EXPECT_NE(dynamic_cast<CMMTDescCri*>(made(0).get()), nullptr);
    const struct {
        unsigned int tag;
        const char* kind;
    } k_unknown[] = {{3, ""},          {6, "Reserved"},      {7, "Reserved"},     {10, "Reserved"},   {11, "Reserved"},
                     {15, "Reserved"}, {0x7FFF, "Reserved"}, {0x8000, "Private"}, {0xFFFF, "Private"}};
    for (const auto& unknown : k_unknown) {
        SCOPED_TRACE(unknown.tag);
        s_log.clear();
        EXPECT_EQ(made(unknown.tag), nullptr);
        EXPECT_EQ(Logged(" Description TAG ["), *unknown.kind ? 1 : 0);
        EXPECT_EQ(Logged(std::string(unknown.kind) + " Description TAG [" + std::to_string(unknown.tag)),
                  *unknown.kind ? 1 : 0);
    }
    EXPECT_EQ(Logged("RAW: ff ff 00 02 61 62 "), 1);
    EXPECT_EQ(Logged("RAW: ff ff 00 02 61 62 63"), 0);
}

TEST_F(MMTDescTest, FactoryAtTheEndOfTheData)
{
    const std::vector<unsigned char> bytes = Exact(std::string(4, '\0'));
    const struct {
        unsigned int size;
        unsigned int bitpos;
        bool made;
    } k_cases[] = {{0, 0, false},  {1, 0, false},  {2, 0, true},   {4, 16, true},
                   {4, 17, false}, {4, 32, false}, {2, ~0u, false}};
    for (const auto& c : k_cases) {
        IParse::SItem item = {bytes.data(), c.size, c.size * 8, c.bitpos, true};
        const std::unique_ptr<CMMTDesc> desc(CMMTDescFactory::GenerateDesc(&item));
        EXPECT_EQ(desc != nullptr, c.made) << c.size << " " << c.bitpos;
        EXPECT_EQ(Join(item.valid, item.bitpos), Join(1, c.bitpos));
    }
    EXPECT_EQ(Logged("[CMMTDescFactory::GenerateDesc] item->bitpos + 16 = 33 > item->size * 8 = 32"), 1);
    EXPECT_EQ(CMMTDescFactory::GenerateDesc(nullptr), nullptr);
    EXPECT_EQ(TakeAssertions(), "item");
}

TEST_F(MMTDescTest, LoopLengths)
{
    const std::string low = MmtDesc(14, "");
    const struct {
        std::string bytes;
        int length;
        bool result;
        int size;
        bool valid;
    } k_cases[] = {
        {low + low + low, 8, true, 2, true},                     // no more than the length
        {low + MmtDesc(0x8000, "x") + low, 13, false, 1, true},  // an unknown tag ends the loop
        {low, 0, true, 0, true},                                 // nothing
        {low, 5, false, 1, true},                                // longer than the data
        {low + MmtDesc(0, CriBody()), 23, true, 2, true},
        {low + MmtDesc(0, "x") + low, 13, false, 1, false},  // a clock relation makes the item invalid
        {low + MmtDesc(14, "").substr(0, 3), 7, false, 1, false},
        {Head(14, 1).Bytes(), 4, false, 0, true},
    };
    for (const auto& c : k_cases) {
        SCOPED_TRACE(c.length);
        const std::vector<unsigned char> bytes = Exact(c.bytes);
        IParse::SItem item = Item(bytes);
        EXPECT_EQ(CMMTDescFactory::ParseDescriptors(&item, c.length, &m_array), c.result);
        EXPECT_EQ(m_array.Size(), c.size);
        EXPECT_EQ(item.valid, c.valid);
        m_array.RemoveAll();
    }
    EXPECT_EQ(Logged("p_desc = CMMTDescFactory::GenerateDesc(item)"), 2);
    EXPECT_EQ(Logged("p_desc->Parse(item)"), 3);
    IParse::SItem item = {nullptr, 0, 0, 0, true};
    EXPECT_FALSE(CMMTDescFactory::ParseDescriptors(nullptr, 1, &m_array));
    EXPECT_FALSE(CMMTDescFactory::ParseDescriptors(&item, 1, nullptr));
    EXPECT_FALSE(CMMTDescFactory::ParseDescriptors(&item, -1, &m_array));
    EXPECT_EQ(TakeAssertions(), "item; array; length >= 0");
}

// The fields of each descriptor as one text, in the order of the wire; what is absent is not in it.

class CFields;

template <class T, class = void>
constexpr bool g_isTold = false;
template <class T>
constexpr bool g_isTold<T, std::void_t<decltype(Tell(std::declval<CFields&>(), std::declval<const T&>()))>> = true;

class CFields {
  public:
    /// Names and values in turn; the fields of a record have their own names.
    template <class T, class... TRest>
    void operator()(const char* name, const T& value, const TRest&... rest)
    {
        Add(name, value);
        if constexpr (sizeof...(rest) > 0) {
            (*this)(rest...);
        }
    }
    std::string Text() const { return m_text.str(); }

  private:
    template <class T>
    void Add(const char* name, const T& value)
    {
        if constexpr (g_isTold<T>) {
            Tell(*this, value);
        } else if constexpr (std::is_arithmetic_v<T>) {
            m_text << name << +value << ' ';
        } else if constexpr (std::is_convertible_v<T, std::string_view>) {
            const std::string_view text = value;
            m_text << (text.empty() ? "" : name + std::string(text) + ' ');
        } else if constexpr (g_isList<T>) {
            for (const auto& entry : value) {
                Add(name, entry);
            }
        } else if (value) {
            Add(name, *value);
        }
    }

    std::ostringstream m_text;
};

/// Defines what is told of a descriptor or of a part of it, `s`.
#define TELL(TYPE, ...)                  \
    void Tell(CFields& f, const TYPE& s) \
    {                                    \
        f(__VA_ARGS__);                  \
    }

TELL(CMMTDescMpuTimestamp::STimestamp, "seq", s.mpuSequenceNumber, "ntp", s.presentationTime)
TELL(CMMTDescMpuTimestamp, "", s.Timestamps())
TELL(CMMTDescDependency::SAsset, "scheme", s.scheme, "id", s.assetId)
TELL(CMMTDescDependency, "", s.Assets())
TELL(CMMTDescSi::SSystem, "system", s.systemId, "key", s.keyIds, "data", s.data)
TELL(CMMTDescSi, "", s.Systems())
TELL(CMMTDescCaption::SAsset, "id", s.assetId, "lang", s.language, "role", s.role, "aspect", s.aspectRatio, "easy",
     s.easyReader, "profile", s.profile, "3d", s.support3d)
TELL(CMMTDescCaption, "", s.Assets())
TELL(CMMTDescSp::SSystem, "system", s.systemId, "data", s.data)
TELL(CMMTDescSp::SLicenseUrl, "type", s.type, "url", s.url)
TELL(CMMTDescSp::SAsset, "id", s.assetId, "scheme", s.schemeCode, "key", s.defaultKeyId, "", s.systems, "",
     s.licenseUrls)
TELL(CMMTDescSp, "", s.Assets())
TELL(CMMTDescLowDelay::SLowDelay, "offset", s.basePresentationTimeOffset, "flag", s.codingDependencyStructureFlag,
     "period", s.periodOfIntrapicture, "duration", s.defaultSampleDuration, "size", s.defaultSampleSize, "flags",
     s.defaultSampleFlags)
TELL(CMMTDescLowDelay, "", s.Fields())
TELL(CMMTDescAsp::SPresentation, "presentation", s.id, "", s.interactivityEnabled ? "interactive" : "", "profile",
     s.profileLevelIndication, "channels", s.audioChannelConfig, "rendering", s.audioRenderingIndication, "lang",
     s.languages, "access", s.accessibility, "role", s.role, "label", s.label, "aux", s.auxStreamIds)
TELL(CMMTDescAsp::SAuxiliaryStream, "by", s.deliveryMethod, "aux", s.auxiliaryStreamId)
TELL(CMMTDescAsp::SMultiStream, "main", s.thisIsMainStream, "stream", s.thisStreamId, "bundle", s.bundleId, "",
     s.auxiliaryStreams)
TELL(CMMTDescAsp::STime, "at", s.seconds, "ms", s.milliseconds)
TELL(CMMTDescAsp::SAsset, "id", s.assetId, "codec", s.codecCode, "", s.presentations, "", s.multiStream, "",
     s.emergencyStart, "", s.emergencyEnd)
TELL(CMMTDescAsp, "", s.Assets())
TELL(CMMTDescVsp::STemporalScalability, "sub-layers", s.maxSubLayersInstream, "ptl", s.subLayerProfileTierLevelPresent,
     "filter", s.temporalFilterPresent, "max", s.tidMax, "min", s.tidMin, "tfweight", s.tfweight)
TELL(CMMTDescVsp::SMultiview, "view", s.viewNuhLayerId, "pos", s.viewPos, "disp", s.minDispWithOffset, "range",
     s.maxDispRange)
TELL(CMMTDescVsp::SResolution, "w", s.width, "h", s.height, "chroma", s.chromaFormatIdc, "plane",
     s.separateColourPlaneFlag, "still", s.videoStillPresent, "24h", s.video24hrPicPresent, "luma",
     s.bitDepthLumaMinus8, "c", s.bitDepthChromaMinus8)
TELL(CMMTDescVsp::SPictureRate, "rate", s.code, "avg", s.average)
TELL(CMMTDescVsp::SBitRate, "bits", s.average, "most", s.maximum)
TELL(CMMTDescVsp::SColour, "prim", s.colourPrimaries, "trans", s.transferCharacteristics, "matrix", s.matrixCoeffs,
     "cg", s.cgCompatibility, "eotf", s.eotfInfo)
TELL(CMMTDescVsp::SProfile, "space", s.profileSpace, "tier", s.tierFlag, "profile", s.profileIdc, "compatible",
     s.compatibilityFlags, "", s.progressiveSourceFlag, "", s.interlacedSourceFlag, "", s.nonPackedConstraintFlag, "",
     s.frameOnlyConstraintFlag, "constraints", s.constraintFlags)
TELL(CMMTDescVsp::SSubLayer, "", "sub", "", s.profile, "level", s.levelIdc)
TELL(CMMTDescVsp::SProfileTierLevel, "", s.profile, "level", s.levelIdc, "", s.subLayers)
TELL(CMMTDescVsp::SAsset, "id", s.assetId, "codec", s.codecCode, "", s.temporalScalability, "layer", s.assetLayerId, "",
     s.multiview, "", s.resolution, "", s.pictureRates, "", s.bitRates, "", s.colour, "", s.profileTierLevel)
TELL(CMMTDescVsp, "", s.Assets())

template <class TDesc>
std::string Fields(const CMMTDesc& desc)
{
    CFields fields;
    Tell(fields, dynamic_cast<const TDesc&>(desc));
    return fields.Text();
}

const std::string k_profile = "space1 tier1 profile2 compatible1610612736 1 0 1 0 constraints8796093022209 ";

const std::string k_id = "0123456789abcdef";

/// One descriptor: its payload, and the fields that are read of it.
struct SDescCase {
    const char* name;
    unsigned int tag;
    std::string payload;
    std::function<std::string(const CMMTDesc&)> fields;
    std::string expected;
};

std::vector<SDescCase> DescCases()
{
    std::vector<SDescCase> cases;
    const auto add = [&cases](const char* name, unsigned int tag, const CMmtBuilder& payload, auto fields,
                              const std::string& expected) {
        cases.push_back({name, tag, payload.Bytes(), fields, expected});
    };
    const std::string a = MmtCountedId("A").Bytes();
    const std::string b = MmtCountedId("B").Bytes();
    const auto list = [](unsigned int count) { return CMmtBuilder().Put(8, count); };

    add("timestamps", 1, CMmtBuilder().Put(32, 1).Put(64, 0xE000000180000002).Put(32, 2).Put(64, 3),
        Fields<CMMTDescMpuTimestamp>, "seq1 ntp16140901070938308610 seq2 ntp3 ");
    add("dependencies", 2, list(2).Put("url " + a + "uuid" + b), Fields<CMMTDescDependency>,
        "schemeurl  idA schemeuuid idB ");
    CMmtBuilder security = list(2).Put(k_id).Put(8, 1).Put("fedcba9876543210").Put(16, 1);
    security.Put("d" + k_id).Put(24, 0);
    add("security", 4, security, Fields<CMMTDescSi>,
        "system" + k_id + " keyfedcba9876543210 datad system" + k_id + " ");
    add("video", 5, CMmtBuilder().Put(MmtVideo()), Fields<CMMTDescVsp>,
        "idA codechev1 sub-layers2 ptl1 filter1 max5 min1 tfweight2 layer33 view9 pos10 disp1025 range1026 w3840 h2160 "
        "chroma3 plane1 still0 24h1 luma2 c3 rate255 avg5994 rate6 bits100 most200 bits300 most400 prim9 trans16 "
        "matrix10 cg1 eotfeo " +
            k_profile + "level153 sub " + k_profile +
            "level120 idB codecavc1 w1 h2 chroma1 still1 24h0 luma0 c1 prim8 trans16 matrix1 " + k_profile +
            "level90 ");
    add("captions", 8, list(2).Put(a).Put(8, 2).Put("en").Put(16, 0x52BF).Put(b).Put(24, 0x3400),
        Fields<CMMTDescCaption>, "idA langen role5 aspect2 easy1 profile1 3d1 idB role3 aspect4 easy0 profile0 3d0 ");
    add("audio", 9, CMmtBuilder().Put(MmtAudio()), Fields<CMMTDescAsp>,
        "idA codecac-4 presentation1 interactive profile70000 channels80000 rendering3 langen langes access4 access5 "
        "role6 labelMain aux7 aux8 presentation2 profile9 channels10 role11 main1 stream1 bundle2 by1 aux3 by0 aux4 "
        "at1000 ms999 at2000 ms1 idB codecmhm1 at3000 ms5 ");
    add("security properties", 12, list(1).Put(a + "cenc" + k_id).Put(8, 1).Put(k_id).Put(16, 1).Put("d"),
        Fields<CMMTDescSp>, "idA schemecenc key" + k_id + " system" + k_id + " datad ");
    add("license URLs", 13, list(2).Put(a).Put(24, 0x020101).Put("u").Put(16, 0x0202).Put("vw" + b).Put(8, 0),
        Fields<CMMTDescSp>, "idA type1 urlu type2 urlvw idB ");
    add("low delay", 14, CMmtBuilder().Put(32, 1).Put(24, 0x800002).Put(32, 3).Put(32, 4).Put(32, 5),
        Fields<CMMTDescLowDelay>, "offset1 flag1 period2 duration3 size4 flags5 ");
    add("low delay without a period", 14, CMmtBuilder().Put(32, 1).Put(8, 0x7F).Put(32, 3), Fields<CMMTDescLowDelay>,
        "offset1 flag0 duration3 ");
    return cases;
}

TEST_F(MMTDescTest, WholePayloads)
{
    for (const SDescCase& c : DescCases()) {
        SCOPED_TRACE(c.name);
        const std::vector<unsigned char> bytes = Exact(MmtDesc(c.tag, c.payload + "\x7F") + "behind");
        IParse::SItem item = Item(bytes);
        const std::unique_ptr<CMMTDesc> desc(CMMTDescFactory::GenerateDesc(&item));
        ASSERT_NE(desc, nullptr);
        ASSERT_TRUE(desc->Parse(&item));
        EXPECT_EQ(item.bitpos, (4 + c.payload.size() + 1) * 8);
        EXPECT_EQ(desc->Tag(), c.tag);
        EXPECT_EQ(c.fields(*desc), c.expected);
        const auto& kept = dynamic_cast<const CMMTDescPayload&>(*desc);
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(kept.RawData()), kept.RawLength()), c.payload + "\x7F");
        // Again, and emptied: nothing of the first is left.
        EXPECT_TRUE(SFed(*desc, MmtDesc(c.tag, "")).result);
        EXPECT_EQ(c.fields(*desc), "");
    }
}

TEST_F(MMTDescTest, CutPayloadsLoseOnlyTheirEnd)
{
    for (const SDescCase& c : DescCases()) {
        std::size_t told = 0;
        for (std::size_t size = 0; size < c.payload.size(); ++size) {
            SCOPED_TRACE(std::string(c.name) + " " + std::to_string(size));
            const std::vector<unsigned char> bytes = Exact(MmtDesc(c.tag, c.payload.substr(0, size)) + "behind");
            IParse::SItem item = Item(bytes);
            const std::unique_ptr<CMMTDesc> desc(CMMTDescFactory::GenerateDesc(&item));
            ASSERT_NE(desc, nullptr);
            ASSERT_EQ(Each({desc->Parse(&item), item.valid}), "11");
            EXPECT_EQ(item.bitpos, (4 + size) * 8);
            const std::string fields = c.fields(*desc);
            EXPECT_EQ(fields, c.expected.substr(0, fields.size()));
            EXPECT_GE(fields.size(), told);
            told = fields.size();
            desc->Dump();
            DumpUnseen(*desc);
            // Announced whole: the length runs past the item, which stays valid.
            const SFed past(
                *desc, Head(c.tag, static_cast<unsigned int>(c.payload.size())).Put(c.payload.substr(0, size)).Bytes());
            EXPECT_EQ(Join(past.result, past.item.valid), "0|1");
        }
        EXPECT_GT(told, 0u) << c.name;
    }
    EXPECT_GT(Logged("[CMMTDescVsp::Parse] DescLength mismatch ERROR Length = "), 0);
    CMMTDescVsp video;
    EXPECT_FALSE(video.Parse(nullptr));
    EXPECT_EQ(TakeAssertions(), "item");
    EXPECT_EQ(Each({SFed(video, MmtDesc(4, "")).result, video.RawData() != nullptr}), "00");
    EXPECT_EQ(Logged("[CMMTDescVsp::Parse] Wrong tag : 4"), 1);
}

/// The fields of a video asset with these bytes behind its codec.
std::string VideoFields(const std::string& tail)
{
    CMMTDescVsp video;
    const std::string head = CMmtBuilder().Put(8, 2).Put(MmtCountedId("A").Bytes()).Put("hev1").Bytes();
    EXPECT_TRUE(SFed(video, MmtDesc(5, head + tail + MmtCountedId("B").Bytes())).result);
    return Fields<CMMTDescVsp>(video);
}

TEST_F(MMTDescTest, VideoSubLayers)
{
    const auto tail = [](unsigned int subLayers, bool ptl, unsigned int rates) {
        CMmtBuilder b;
        b.Put(8, 0x84).Put(6, subLayers).Put(1, ptl).Put(1, 0).Put(8, 0);
        for (unsigned int i = 1; i <= rates; ++i) {
            b.Put(16, i).Put(16, i);
        }
        MmtPutProfile(b, 2);
        b.Put(8, 90);
        return b;
    };
    const std::string level = k_profile + "level90 ";
    const auto head = [](const char* subLayers) { return std::string("idA codechev1 sub-layers") + subLayers; };
    const std::string rest = " filter0 max0 min0 bits1 most1 ";
    // Without the flag one entry stands for all, and there are no sub-layers in the profile.
    EXPECT_EQ(VideoFields(tail(7, false, 1).Bytes()), head("7 ptl0") + rest + level + "idB ");
    for (const unsigned int none : {0u, 1u}) {
        EXPECT_EQ(VideoFields(tail(none, true, 1).Bytes()), head(none ? "1 ptl1" : "0 ptl1") + rest + level + "idB ");
    }
    CMmtBuilder two = tail(3, true, 3);
    two.Put(4, 0b0110).Put(12, 0).Put(8, 60);
    MmtPutProfile(two, 2);
    EXPECT_EQ(VideoFields(two.Bytes()),
              head("3 ptl1") + rest + "bits2 most2 bits3 most3 " + level + "sub level60 sub " + k_profile + "idB ");
    CMmtBuilder six = tail(7, true, 7);
    EXPECT_NE(VideoFields(six.Put(16, 0).Bytes()).find(level + "sub sub sub sub sub sub idB "), std::string::npos);
    // More than there can be: the profile is absent, and the next asset cannot be found.
    CMmtBuilder many = tail(8, true, 8);
    EXPECT_EQ(VideoFields(many.Put(16, 0).Bytes()), head("8 ptl1") + rest +
                                                        "bits2 most2 bits3 most3 bits4 most4 bits5 most5 bits6 most6 "
                                                        "bits7 most7 bits8 most8 ");
}

}  // namespace

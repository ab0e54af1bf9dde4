#include <set>

#include "mmt/IdentifierUnit/IdentifierUnit1.h"
#include "mmt/element/MMTElementIdentifierMapping.h"
#include "mmt/table/MMTTblCri.h"
#include "mmt/table/MMTTblDci.h"
#include "mmt/table/MMTTblFactory.h"
#include "mmt/table/MMTTblMp.h"
#include "mmt/table/MMTTblMpi.h"
#include "mmt/table/MMTTblPa.h"
#include "mmt/table/MMTTblSi.h"
#include "support/MmtBuilder.h"
#include "support/Show.h"

SHOW(CMMTTblDci::SAsset, s.assetId.AssetId(), s.mimeType.MimeType(), s.codecComplexityFlag, s.averageBitrate,
     s.maximumBitrate, s.horizontalResolution, s.verticalResolution, s.temporalResolution, s.minimumBufferSize,
     s.requiredStorage)

namespace {

class MMTTblTest : public CRecorder {
  protected:
    /// Cuts a table at every byte, first as it is, then with a length of 0, which asks for no bytes: no part
    /// parses then but those of `good` bytes.
    template <class TTable>
    static void ExpectNoPrefixParses(std::string bytes, const std::set<std::size_t>& good = {})
    {
        for (int pass = 0; pass < 2; ++pass) {
            for (std::size_t size = 0; size < bytes.size(); ++size) {
                TTable table;
                EXPECT_EQ(SFed(table, bytes.substr(0, size)).result, pass == 1 && good.count(size) != 0)
                    << pass << " " << size;
                table.Process();
                MmtClocks(table);
                table.Dump();
            }
            bytes.replace(2, 2, 2, '\0');
        }
        TTable table;
        EXPECT_TRUE(SFed(table, bytes).result);
        // Parsed twice: whatever comes of it, nothing is lost.
        EXPECT_TRUE(SFed(table, bytes).result);
        EXPECT_FALSE(table.Parse(nullptr));
        TakeAssertions();
    }
};

TEST_F(MMTTblTest, FactoryByTableId)
{
    struct {
        int first;
        int last;
        unsigned int type;
        const char* name;
    } const k_cases[] = {{0x00, 0x00, 0, "CLASS_TYPE_PA"},  {0x01, 0x10, 1, "CLASS_TYPE_MPI"},
                         {0x11, 0x20, 2, "CLASS_TYPE_MP"},  {0x21, 0x21, 3, "CLASS_TYPE_CRI"},
                         {0x22, 0x22, 4, "CLASS_TYPE_DCI"}, {0x23, 0x23, 5, "CLASS_TYPE_SI"}};
    for (const auto& c : k_cases) {
        for (const int id : {c.first, c.last}) {
            const unsigned char bytes[] = {0xFF, static_cast<unsigned char>(id)};
            IParse::SItem item = {bytes, 2, 16, 8, true};
            const std::unique_ptr<CMMTTbl> table(CMMTTblFactory::GenerateTbl(&item));
            ASSERT_TRUE(table) << id;
            EXPECT_EQ(table->ClassType(), c.type);
            EXPECT_STREQ(table->ClassString(), c.name);
            EXPECT_EQ(Join(table->TableId(), table->Version(), table->Length()), "255|0|0");
            EXPECT_EQ(item.bitpos, 8u);
        }
    }
    const unsigned char bytes[] = {0x24, 0xFF};
    IParse::SItem item = {bytes, 2, 16, 0, true};
    EXPECT_EQ(CMMTTblFactory::GenerateTbl(&item), nullptr);
    EXPECT_EQ(Logged("invalid table id[0x24]"), 1);
    item.bitpos = 16;
    EXPECT_EQ(CMMTTblFactory::GenerateTbl(&item), nullptr);
    EXPECT_EQ(Logged("invalid table id"), 1);
    EXPECT_EQ(CMMTTblFactory::GenerateTbl(nullptr), nullptr);
    ASSERT_EQ(s_assertions.size(), 1u);
    EXPECT_EQ(s_assertions[0].file + std::to_string(s_assertions[0].line), "src/mmt/table/MMTTblFactory24");
    EXPECT_EQ(TakeAssertions(), "item");
}

struct CProbe : CMMTTbl {
    CProbe() : CMMTTbl(6) {}
    bool GetDescriptors(void (*)(void*, CMMTDesc*), void*) override { return true; }
    using CMMTTbl::t_GetIdentifier;
    using CMMTTbl::t_GetMMTGeneralLocationInfo;
};

TEST_F(MMTTblTest, FlatRecords)
{
    CProbe probe;
    EXPECT_STREQ(probe.ClassString(), "UNKONWN CLASS TYPE");
    EXPECT_FALSE(probe.Process());
    EXPECT_TRUE(SFed(probe, "\x21\x04\x12\x34").result);
    EXPECT_EQ(Join(probe.TableId(), probe.Version(), probe.Length()), Join(0x21, 4, 0x1234));
    EXPECT_EQ(Logged("CMMTTbl version  [4]"), 1);

    SLocationInfo info = {77, {78}};
    CMMTElementLocation location;
    EXPECT_FALSE(probe.t_GetMMTGeneralLocationInfo(&info, &location));
    EXPECT_EQ(Join(info.locationType, info.info.packetId), "77|78");
    EXPECT_TRUE(SFed(location, std::string("\0ab", 3)).result);
    EXPECT_TRUE(probe.t_GetMMTGeneralLocationInfo(&info, &location));
    EXPECT_EQ(Join(info.locationType, info.info.packetId), Join(0, 0x6162));
    CMMTElementLocation other;
    EXPECT_TRUE(SFed(other,
                     "\x9"
                     "abcd")
                    .result);
    EXPECT_FALSE(probe.t_GetMMTGeneralLocationInfo(&info, &other));
    EXPECT_EQ(Join(info.locationType, info.info.packetId), "9|0");
    EXPECT_EQ(Logged("location type 0x 9"), 1);

    SIdentifier identifier = {};
    CMMTElementIdentifierMapping mapping;
    EXPECT_TRUE(SFed(mapping, '\0' + MmtAssetId("film")).result);
    EXPECT_TRUE(probe.t_GetIdentifier(&identifier, &mapping));
    EXPECT_EQ(std::string(identifier.identifier.assetIdScheme, identifier.identifier.assetIdScheme + 4), "urn ");
    EXPECT_STREQ(identifier.identifier.assetId, "film");
    EXPECT_EQ(Logged("asset id film"), 1);
    delete[] identifier.identifier.assetId;
    EXPECT_TRUE(SFed(mapping, std::string("\x3\0\1r", 4)).result);
    EXPECT_FALSE(probe.t_GetIdentifier(&identifier, &mapping));
    EXPECT_EQ(Join(identifier.identifierType, identifier.identifier.assetId), "3|-");
    EXPECT_EQ(Logged("SIdentifier type 0x 3"), 1);
    EXPECT_EQ(Each({probe.t_GetIdentifier(&identifier, nullptr), probe.t_GetMMTGeneralLocationInfo(nullptr, &other)}),
              "00");
    EXPECT_EQ(TakeAssertions(), "mapping; out");
}

TEST_F(MMTTblTest, PaReportsEntriesWithBothLocations)
{
    static std::string s_told;
    s_told.clear();
    CMMTTblPa pa;
    const SFed fed(pa, MmtPaTable() + "next");
    ASSERT_EQ(Join(fed.result, pa.InfoCount()), "1|4");
    EXPECT_EQ(fed.Cursor(), MmtPaTable().size());
    EXPECT_EQ(pa.PrivateFlag(), 1);
    EXPECT_EQ(Join(pa.Info(0)->Flag(), pa.Info(0)->AlternativeLocation()->Location() != nullptr), "0|0");
    EXPECT_EQ(Join(pa.Info(3)->Flag(), pa.Info(3)->AlternativeLocation()->LocationType()), "1|8");
    EXPECT_TRUE(pa.Process());
    int user = 0;
    const CMMTTblPa::SCallback callback = {
        &user, [](void* context, unsigned char id, unsigned char version, SLocationInfo* a, SLocationInfo* b) {
            ++*static_cast<int*>(context);
            for (const unsigned int n :
                 {0u + id, 0u + version, a->locationType, a->info.packetId, b->locationType, b->info.packetId}) {
                s_told += std::to_string(n) + " ";
            }
        }};
    pa.SetCallback(&callback);
    EXPECT_TRUE(pa.Process());
    EXPECT_EQ(s_told, "34 3 0 259 1 260 ");
    pa.SetCallback(nullptr);
    EXPECT_EQ(Join(pa.Process(), pa.GetDescriptors(nullptr, nullptr)), "1|1");
    EXPECT_EQ(user, 1);
    pa.Dump();
    DumpUnseen(pa);
    DumpUnseen(*pa.Info(3));

    // Longer than the data; an entry that does not parse.
    CMMTTblPa cut;
    const SFed tooLong(cut, std::string("\0\1\0\2\0", 5));
    EXPECT_EQ(Join(tooLong.result, tooLong.item.valid), "0|0");
    EXPECT_EQ(Logged("[CMMTTblPa::Parse] ERROR"), 1);
    EXPECT_EQ(Each({SFed(cut, MmtTable(0, "\1\x11\1\x0D")).result, cut.InfoCount() != 0}), "00");
    EXPECT_EQ(Logged("_CHECK FAIL: src/mmt/table/MMTTblPa:75, p_unit->Parse(item)"), 1);
    ExpectNoPrefixParses<CMMTTblPa>(MmtPaTable());
}

std::string ShowAsset(const CMMTTblMpAsset& a)
{
    return Join(std::string(a.AssetType(), a.AssetType() + 4), a.DefaultAssetFlag(), a.AssetClockRelationFlag(),
                a.AssetTimeScaleFlag(), a.AssetClockRelationId(), a.AssetTimeScale(), a.LocationCount(),
                a.AssetDescriptorSize());
}

TEST_F(MMTTblTest, MpAssets)
{
    CMMTTblMp mp;
    EXPECT_EQ(mp.PackageId(), nullptr);
    const std::string bytes = MmtMpTable(0x20);
    const SFed fed(mp, bytes + "next");
    ASSERT_EQ(Join(fed.result, mp.AssetCount(), mp.Process()), "1|3|1");
    EXPECT_EQ(fed.Cursor(), bytes.size());
    EXPECT_EQ(Join(mp.Mode(), mp.PackageIdLength(), mp.DescriptorCount(), mp.Descriptor(0) != nullptr), "2|3|1|1");
    EXPECT_STREQ(mp.PackageId(), "pkg");
    EXPECT_EQ(Logged("[CMMTTblMp::Parse] assetNum = 3"), 1);
    EXPECT_EQ(MmtClocks(mp), "1 2 ");
    CMMTTblMpAsset &a = *mp.Asset(0), &b = *mp.Asset(1);
    EXPECT_EQ(ShowAsset(a) + " " + ShowAsset(b) + " " + ShowAsset(*mp.Asset(2)),
              "hev1|1|1|1|9|90000|2|1 mp4a|0|1|0|8|0|0|0 stpp|0|0|0|0|0|0|0");
    ASSERT_EQ(Join(a.LocationCount(), a.AssetDescriptorSize(), a.AssetDescriptor(0) != nullptr), "2|1|1");
    unsigned int packet = 0;
    EXPECT_EQ(Join(a.Location(1)->Location()->GetPacketId(&packet), packet), Join(1, 0x1002));
    EXPECT_EQ(a.AssetDescriptor(1), nullptr);
    EXPECT_STREQ(static_cast<CIdentifierUnit1*>(b.Identifier()->Identifier())->Url(1), "url2");
    EXPECT_EQ(Each({mp.Asset(3) != nullptr, b.Location(0) != nullptr, mp.GetDescriptors(nullptr, nullptr)}), "000");
    EXPECT_EQ(TakeAssertions(), "0 <= index && index < m_size; 0 <= index && index < m_size; callback");
}

TEST_F(MMTTblTest, MpTableIds)
{
    for (const unsigned int id : {0x11u, 0x12u, 0x1Fu, 0x20u}) {
        CMMTTblMp mp;
        EXPECT_TRUE(SFed(mp, MmtMpTable(id)).result) << id;
        EXPECT_EQ(mp.PackageId() != nullptr, id == 0x11 || id == 0x20);
        EXPECT_EQ(MmtClocks(mp), id == 0x11 || id == 0x20 ? "1 2 " : "2 ");
        // Required: cut in mode, package id, length of the descriptors or number of assets, and so early in the
        // descriptors (bytes 11 to 29) that none has begun.
        const bool package = id == 0x11 || id == 0x20;
        ExpectNoPrefixParses<CMMTTblMp>(MmtMpTable(id), package
                                                            ? std::set<std::size_t>{4, 5, 6, 7, 8, 9, 10, 11, 12, 30}
                                                            : std::set<std::size_t>{4, 5});
    }
    CMMTTblMp mp;
    EXPECT_TRUE(SFed(mp, MmtTable(0x11, std::string("\2\0\0\0\0", 5))).result);
    EXPECT_STREQ(mp.PackageId(), "");
    s_log.clear();
    EXPECT_TRUE(SFed(mp, MmtTable(0x11, std::string("\2\5", 2))).result);
    EXPECT_EQ(Logged("[CMMTDescFactory::ParseDescriptors] item->bitpos:48, max:48"), 1);
    EXPECT_EQ(Each({SFed(mp, MmtMpTable(0x10)).result, SFed(mp, MmtMpTable(0x21)).result}), "00");
    EXPECT_EQ(Logged("[CMMTTblMp::Parse] Table ID ERROR ID=10"), 1);
    EXPECT_EQ(Logged("[CMMTTblMp::Parse] Table ID ERROR ID=21"), 1);
    EXPECT_FALSE(SFed(mp, MmtTable(0x12, "\2\1\x9")).result);
    EXPECT_FALSE(
        SFed(mp, MmtTable(0x12, "\2\1" + ('\0' + MmtAssetId("")) + "hev1" + std::string("\0\1\x0D", 3))).result);
    EXPECT_GE(Logged("_CHECK FAIL: src/mmt/table/MMTTblMp:84, p_asset->Parse(item)"), 2);
    EXPECT_GE(Logged("_CHECK FAIL: src/mmt/table/MMTTblMpAsset:73, location->Parse(item)"), 1);
    // The last asset may announce more descriptors than there are; one that another follows may not.
    const std::string asset = '\0' + MmtAssetId("a") + "hev1" + std::string("\0\0\0\x20", 4) + MmtCri(7);
    for (const char assets : {'\1', '\2'}) {
        CMMTTblMp last;
        EXPECT_EQ(SFed(last, MmtTable(0x12, std::string("\2") + assets + asset)).result, assets == 1);
        EXPECT_EQ(last.AssetCount(), 1);
        EXPECT_EQ(MmtClocks(last), "7 ");
    }
}

TEST_F(MMTTblTest, DescriptorLoops)
{
    struct {
        std::string loop;
        unsigned int length;
        bool result;
        const char* clocks;
        bool cut = false;
    } const k_cases[] = {
        {"", 0, true, ""},
        {MmtCri(1) + MmtCri(2), 38, true, "1 2 "},
        {MmtUnknown() + MmtCri(2), 25, true, ""},
        {std::string("\0\0\0\x1E", 4) + std::string(30, 'x'), 34, true, "0 "},
        // A clock relation that cannot be makes the item invalid, a loop past the data does not: the number of assets
        // behind it is missing, which is no failure.
        {std::string("\0\0\0\x0E", 4) + std::string(14, 'x'), 18, false, ""},
        {MmtCri(1), 20, true, "1 ", true},
        {MmtCri(1) + '\0', 24, true, "1 ", true},
        {MmtCri(1).substr(0, 18), 24, false, "", true},
        // One that runs past its loop costs nothing that follows: a clock relation is taken, what is longer not.
        {MmtCri(1).substr(0, 18) + '\0', 18, true, "1 "},
        {std::string("\0\1\0\x28\0", 5) + std::string(50, 'x'), 4, true, ""},
    };
    for (const auto& c : k_cases) {
        SCOPED_TRACE(c.length);
        CMmtBuilder b;
        b.Put(8, 0x11).Put(8, 1).Put(16, 0).Put(8, 2).Put(8, 0).Put(16, c.length).Put(c.loop);
        CMMTTblMp mp;
        const SFed fed(mp, b.Bytes() + (c.cut ? "" : std::string(1, '\0')));
        EXPECT_EQ(fed.result, c.result);
        EXPECT_EQ(fed.item.valid, c.result && !c.cut);
        EXPECT_EQ(MmtClocks(mp), c.clocks);
    }
}

TEST_F(MMTTblTest, MpiContents)
{
    for (const unsigned int id : {0x01u, 0x10u}) {
        CMMTTblMpi mpi;
        const std::string bytes = MmtMpiTable(id);
        const SFed fed(mpi, bytes + "next");
        ASSERT_EQ(Join(fed.result, mpi.PiContentCount(), mpi.Process()), "1|2|0");
        EXPECT_EQ(fed.Cursor(), bytes.size());
        EXPECT_EQ(Join(mpi.PiMode(), mpi.DescriptorCount(), mpi.Descriptor(0) != nullptr), "1|1|1");
        EXPECT_EQ(MmtClocks(mpi), "4 5 ");
        CMMTTblMpiContent& content = *mpi.PiContent(0);
        EXPECT_EQ(Join(content.PiContentTypeLen(), content.PiContentNameLen(), content.PiContentLen()), "9|1|7");
        EXPECT_STREQ(content.PiContentType(), "text/html");
        EXPECT_STREQ(content.PiContentName(), "a");
        EXPECT_STREQ(content.PiContent(), "<html/>");
        EXPECT_EQ(Join(content.DescriptorCount(), content.Descriptor(0) != nullptr), "1|1");
        EXPECT_STREQ(mpi.PiContent(1)->PiContent(), "");
        DumpUnseen(content);
    }
    ExpectNoPrefixParses<CMMTTblMpi>(MmtMpiTable(1));
    CMMTTblMpi mpi;
    EXPECT_EQ(Each({SFed(mpi, MmtMpiTable(0)).result, SFed(mpi, MmtMpiTable(0x11)).result}), "00");
    EXPECT_EQ(Logged("[CMMTTblMpi::Parse] Table ID ERROR ID="), 2);
    EXPECT_GE(Logged("_CHECK FAIL: src/mmt/table/MMTTblMpi:71, p_content->Parse(item)"), 1);

    const std::string body(7, '\0');
    CMMTTblMpiContent content;
    EXPECT_EQ(Each({SFed(content, body).result, SFed(content, body).result}), "11");
    std::string places;
    for (const SAssertion& assertion : s_assertions) {
        places += assertion.file + ":" + std::to_string(assertion.line) + " ";
    }
    const std::string source = "src/mmt/table/MMTTblMpiContent:";
    EXPECT_EQ(places, source + "24 " + source + "32 " + source + "49 ");
    EXPECT_EQ(TakeAssertions(), "!m_piContentType; !m_piContentName; !m_piContent");
}

TEST_F(MMTTblTest, TablesBoundedByTheirLength)
{
    CMMTTblCri cri;
    const std::string two = std::string("\0\0\0\x1E", 4) + std::string(30, 'x');
    const std::string bytes = MmtTable(0x21, "\3" + MmtCri(6) + two + MmtCri(7) + "trail");
    const SFed fed(cri, bytes + "next");
    EXPECT_EQ(Join(fed.result, cri.Process(), cri.DescriptorCount(), cri.Descriptor(2) != nullptr), "1|1|3|1");
    EXPECT_EQ(fed.Cursor(), bytes.size());
    EXPECT_EQ(MmtClocks(cri), "6 0 7 ");
    ASSERT_EQ(cri.PayloadLength(), bytes.size() - 4);
    EXPECT_EQ(std::string(cri.Payload(), cri.Payload() + cri.PayloadLength()), bytes.substr(4));
    cri.Dump();
    CMMTTblCri other;
    EXPECT_TRUE(SFed(other, MmtTable(0x21, "\xFF" + MmtCri(1) + MmtUnknown())).result);
    EXPECT_EQ(MmtClocks(other), "1 ");
    const SFed mismatch(other, MmtTable(0x21, std::string("\1\0\0\0\xE", 5) + std::string(14, 'x')));
    EXPECT_EQ(Join(mismatch.result, mismatch.item.valid), "0|0");
    EXPECT_FALSE(SFed(other, bytes.substr(0, bytes.size() - 1)).result);
    EXPECT_EQ(Logged("[CMMTTblCri::Parse] ERROR"), 1);

    CMMTTblSi si;
    const SFed siFed(si, MmtTable(0x23, MmtCri(8) + MmtUnknown() + MmtCri(9)) + "next");
    EXPECT_EQ(Join(siFed.result, siFed.Cursor(), si.PayloadLength(), si.Process()), "1|48|44|1");
    EXPECT_EQ(Join(MmtClocks(si), si.DescriptorCount(), si.Descriptor(0) != nullptr), "8 |1|1");
    si.Dump();
    EXPECT_EQ(Each({SFed(si, std::string("\x23\1\0\1", 4)).result, si.Parse(nullptr)}), "00");
    EXPECT_EQ(TakeAssertions(), "item");
}

TEST_F(MMTTblTest, DciAssets)
{
    CMmtBuilder b;
    b.Put(8, 4);
    b.Put(MmtAssetId("v")).Open(8).Put("video/mp4").Close().Put(8, 0xFF);
    b.Put(16, 1).Put(16, 2).Put(16, 3840).Put(16, 2160).Put(8, 60).Put(16, 6);
    b.Put(MmtAssetId("a")).Open(8).Put("audio/mp4").Close().Put(8, 1).Put(16, 11).Put(16, 12).Put(16, 16);
    b.Put(MmtAssetId("f")).Open(8).Put("video/x").Close().Put(8, 0xFE).Put(32, 70000);
    b.Put(MmtAssetId("t")).Open(8).Put("text/x").Close().Put(8, 1);
    const std::string body = b.Bytes();
    CMMTTblDci dci;
    const SFed fed(dci, MmtTable(0x22, body + "trail"));
    ASSERT_EQ(Join(fed.result, dci.AssetCount(), dci.Process(), dci.GetDescriptors(nullptr, nullptr)), "1|4|1|1");
    EXPECT_EQ(fed.Cursor(), fed.block.size());
    EXPECT_EQ(Join(dci.Asset(0), dci.Asset(1), dci.Asset(2), dci.Asset(3)),
              "v|video/mp4|1|1|2|3840|2160|60|6|-|a|audio/mp4|1|11|12|-|-|-|16|-|f|video/x|0|-|-|-|-|-|-|70000|"
              "t|text/x|1|-|-|-|-|-|-|-");
    dci.Dump();
    DumpUnseen(dci);
    DumpUnseen(dci.Asset(0)->mimeType);
    // Cut anywhere, under a length that says so: what fits is there.
    int assets = 0;
    for (std::size_t size = 0; size <= body.size(); ++size) {
        CMMTTblDci cut;
        ASSERT_TRUE(SFed(cut, MmtTable(0x22, body.substr(0, size))).result);
        EXPECT_LE(assets, cut.AssetCount());
        assets = cut.AssetCount();
        if (size == 1 + 9 + 10 + 1 + 2) {
            EXPECT_EQ(Join(assets, cut.Asset(0)->averageBitrate, cut.Asset(0)->maximumBitrate), "1|1|-");
        }
    }
    EXPECT_EQ(assets, 4);
}

}  // namespace

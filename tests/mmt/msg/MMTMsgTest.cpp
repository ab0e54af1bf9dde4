#include <functional>

#include "mmt/msg/MMTMsgAc.h"
#include "mmt/msg/MMTMsgAdc.h"
#include "mmt/msg/MMTMsgCri.h"
#include "mmt/msg/MMTMsgDci.h"
#include "mmt/msg/MMTMsgFactory.h"
#include "mmt/msg/MMTMsgLdc.h"
#include "mmt/msg/MMTMsgLr.h"
#include "mmt/msg/MMTMsgLs.h"
#include "mmt/msg/MMTMsgMpi.h"
#include "mmt/msg/MMTMsgMpt.h"
#include "mmt/msg/MMTMsgPa.h"
#include "mmt/msg/MMTMsgSmm.h"
#include "mmt/table/MMTTblPa.h"
#include "support/MmtBuilder.h"
#include "support/Show.h"

SHOW(CMMTMsgAc::SEntry, s.packetId, s.windowTimeout, s.serverAddress, s.serverPort)
SHOW(CMMTMsgAdc::SAdc, s.validityStartTime, s.validityDuration, s.adcLevelFlag, s.flowLabelFlag, s.mpuSequenceNumber,
     s.packetId, s.lossTolerance, s.jitterSensitivity, s.classOfService, s.bidirectionIndicator, s.sustainableRate,
     s.bufferSize, s.peakRate, s.maxMfuSize, s.mfuPeriod, s.flowLabel)

namespace {

class MMTMsgTest : public CRecorder {
  protected:
    /// A message as a caller makes it: two bytes for the factory.
    static std::shared_ptr<CMMTMsg> Create(unsigned int id)
    {
        const std::vector<unsigned char> bytes = Exact(CMmtBuilder().Put(16, id).Bytes());
        return CMMTMsgFactory::CreateMessage(bytes.data(), 2);
    }

    /// Cuts a payload at every byte, under a length that says so, and hands each message that parses to `use`.
    template <class TMsg>
    static void ForEachCut(unsigned int bits, const std::string& payload, const std::function<void(TMsg&)>& use)
    {
        for (std::size_t size = 0; size <= payload.size(); ++size) {
            TMsg msg;
            const SFed fed(msg, MmtMessage(0x200, bits, payload.substr(0, size)) + "next");
            ASSERT_TRUE(fed.result) << size;
            EXPECT_EQ(fed.Cursor(), fed.block.size() - 4);
            EXPECT_EQ(std::string(msg.Payload(), msg.Payload() + msg.PayloadLength()), payload.substr(0, size));
            msg.Dump();
            EXPECT_EQ(Join(msg.Process(), msg.GetDescriptors([](void*, CMMTDesc*) {}, nullptr)), "1|1");
            use(msg);
        }
    }
};

TEST_F(MMTMsgTest, FactoryByMessageId)
{
    struct {
        std::vector<unsigned int> ids;
        int type;
        const char* log;
    } const k_cases[] = {
        {{0x0000}, 0, ""},
        {{0x0001, 0x0005, 0x0010}, 1, ""},
        {{0x0011, 0x0020}, 2, ""},
        {{0x0200}, 3, ""},
        {{0x0201}, 4, ""},
        {{0x0206}, 12, ""},
        {{0x0209}, 17, ""},
        {{0x020B}, 7, ""},
        {{0x020E}, 16, ""},
        {{0x8100}, 18, ""},
        {{0x8101}, 19, ""},
        {{0x0202}, -1, "UNSUPPORTED MESSAGE TYPE: 0x202 [MMT_MSG_ID_SSWR]!!!"},
        {{0x0203}, -1, "UNSUPPORTED MESSAGE TYPE: 0x203 [MMT_MSG_ID_AL_FEC]!!!"},
        {{0x0204}, -1, "UNSUPPORTED MESSAGE TYPE: 0x204 [MMT_MSG_ID_HRBM]!!!"},
        {{0x0205}, -1, "UNSUPPORTED MESSAGE TYPE: 0x205 [MMT_MSG_ID_MC]!!!"},
        {{0x0207}, -1, "UNSUPPORTED MESSAGE TYPE: 0x207 [MMT_MSG_ID_AF]!!!"},
        {{0x0208}, -1, "UNSUPPORTED MESSAGE TYPE: 0x208 [MMT_MSG_ID_RQF]!!!"},
        {{0x020A}, -1, "UNSUPPORTED MESSAGE TYPE: 0x20a [MMT_MSG_ID_HRBM_REMOVAL]!!!"},
        {{0x020C}, -1, "UNSUPPORTED MESSAGE TYPE: 0x20c [MMT_MSG_ID_LR]!!!"},
        {{0x020D}, -1, "UNSUPPORTED MESSAGE TYPE: 0x20d [MMT_MSG_ID_NAMF]!!!"},
        {{0x020F, 0x6FFF}, -1, "UNSUPPORTED MMT_MSG_ID_ISO_16 TYPE: 0x"},
        {{0x7000, 0x7FFF}, -1, "UNSUPPORTED MMT_MSG_ID_ISO_32 TYPE: 0x"},
        {{0x0021, 0x01FF, 0x8000, 0x80FF, 0x8102, 0xFFFF}, -1, "UNSUPPORTED MESSAGE TYPE: 0x"},
    };
    for (const auto& c : k_cases) {
        for (const unsigned int id : c.ids) {
            SCOPED_TRACE(id);
            s_log.clear();
            const std::shared_ptr<CMMTMsg> msg = Create(id);
            ASSERT_EQ(msg != nullptr, c.type >= 0);
            EXPECT_EQ(Logged("UNSUPPORTED"), c.type < 0);
            EXPECT_EQ(Logged(c.type < 0 ? std::string("[CMMTMsgFactory::CreateMessage] ") + c.log : "type: 0x"), 1);
            if (msg) {
                EXPECT_EQ(msg->ClassType(), c.type);
                EXPECT_EQ(Join(msg->Id(), msg->Version(), msg->Length()), "65535|0|0");
                EXPECT_FALSE(msg->Parse(nullptr));
                IParse::SItem none = {nullptr, 0, 0, 0, true};
                EXPECT_FALSE(msg->Parse(&none));
                EXPECT_EQ(TakeAssertions(), "item; item->buffer");
            }
        }
    }
}

TEST_F(MMTMsgTest, FactoryWithoutAnId)
{
    EXPECT_FALSE(CMMTMsgFactory::CreateMessage(reinterpret_cast<const unsigned char*>(""), 1));
    EXPECT_TRUE(s_log.empty());
    EXPECT_FALSE(CMMTMsgFactory::CreateMessage(nullptr, 2));
    ASSERT_EQ(s_assertions.size(), 1u);
    EXPECT_EQ(s_assertions[0].file + std::to_string(s_assertions[0].line), "src/mmt/msg/MMTMsgFactory77");
    EXPECT_EQ(TakeAssertions(), "data");
    EXPECT_EQ(Each({Create(0) != nullptr, Create(0) != nullptr}), "11");
    CMMTMsgFactory::InitializeFactory();
    EXPECT_LE(Logged("[CMMTMsgFactory::InitializeFactory] BEGIN"), 1);
    SetLogPriority(LOG_PRIORITY_SILENT);
    EXPECT_FALSE(Create(0x020C));
}

struct CProbe : CMMTMsg {
    explicit CProbe(int type) : CMMTMsg(static_cast<EClassType>(type)) {}
    bool Process() override { return true; }
    bool GetDescriptors(void (*)(void*, CMMTDesc*), void*) override { return true; }
};

TEST_F(MMTMsgTest, ClassNames)
{
    const char* const k_names[] = {"PA",          "MPI", "MPT", "CRI", "DCI", "SSWR", "ALFEC", "LS",  "LR",    "HRBM",
                                   "HRBMREMOVAL", "MC",  "AC",  "AF",  "RQF", "NAM",  "LDC",   "ADC", "ATSC3", "SMM"};
    for (int type = 0; type < 20; ++type) {
        EXPECT_EQ(CProbe(type).ClassString(), std::string("CLASS_TYPE_") + k_names[type]);
    }
    EXPECT_STREQ(CProbe(20).ClassString(), "UNKONWN CLASS TYPE");
    CProbe probe(0);
    EXPECT_TRUE(SFed(probe, "\x12\x34\x05").result);
    probe.Dump();
    EXPECT_EQ(Logged("[CMMTMsg::Dump] MSGID:4660, VER:5 LENGTH:0"), 1);
}

template <class T>
std::unique_ptr<CMMTMsg> Make()
{
    return std::make_unique<T>();
}

TEST_F(MMTMsgTest, Framing)
{
    struct {
        std::unique_ptr<CMMTMsg> (*make)();
        unsigned int bits;
        std::string payload;
        const char* name;
    } const k_cases[] = {
        {Make<CMMTMsgPa>, 32, std::string("\1\x20\3\0\0", 5) + MmtMpTable(0x20), "Pa"},
        {Make<CMMTMsgMpi>, 32, "\x1" + MmtMpiTable(0x10) + MmtMpTable(0x11), "Mpi"},
        {Make<CMMTMsgMpt>, 16, MmtMpTable(0x20), "Mpt"},
        {Make<CMMTMsgCri>, 16, MmtTable(0x21, "\1" + MmtCri(1)), "Cri"},
        {Make<CMMTMsgDci>, 16, MmtTable(0x22, std::string(1, '\0')), "Dci"},
        {Make<CMMTMsgAc>, 16, "abc", "AC"},
        {Make<CMMTMsgAdc>, 32, "abc", "Adc"},
        {Make<CMMTMsgLs>, 32, "abc", "Ls"},
        {Make<CMMTMsgLr>, 32, "abc", "Lr"},
        {Make<CMMTMsgLdc>, 16, "abc", "Ldc"},
        {Make<CMMTMsgSmm>, 32, "abc", "Smm"},
    };
    for (const auto& c : k_cases) {
        SCOPED_TRACE(c.name);
        const std::string bytes = MmtMessage(0x8234, c.bits, c.payload);
        const auto whole = c.make();
        const SFed fed(*whole, bytes + "trail");
        EXPECT_TRUE(fed.result);
        EXPECT_EQ(fed.Cursor(), bytes.size());
        EXPECT_EQ(Join(whole->Id(), whole->Version(), whole->Length()), Join(0x8234, 7, c.payload.size()));
        whole->Dump();
        EXPECT_EQ(whole->Process(), whole->ClassType() != CMMTMsg::CLASS_TYPE_MPI);
        EXPECT_TRUE(SFed(*whole, bytes).result);

        const std::size_t header = 3 + c.bits / 8;
        for (std::size_t size = 0; size < bytes.size(); ++size) {
            const auto cut = c.make();
            EXPECT_FALSE(SFed(*cut, bytes.substr(0, size)).result) << size;
            EXPECT_EQ(Logged("Item size ERROR"), size < header ? 0 : 1) << size;
            const bool adc = whole->ClassType() == CMMTMsg::CLASS_TYPE_ADC;
            const std::string text = std::string("> [CMMTMsg") + c.name + "::Parse] Item size ERROR len[" +
                                     std::to_string(size) + (adc ? "], actual_len[" : "], length[") +
                                     std::to_string(c.payload.size()) + "]";
            EXPECT_EQ(Logged(text), size < header ? 0 : 1);
            cut->GetDescriptors([](void*, CMMTDesc*) {}, nullptr);
            cut->Process();
            cut->Dump();
            s_log.clear();
        }
    }
}

TEST_F(MMTMsgTest, PaCarriesTables)
{
    const std::string list("\3\0\1\0\2\x20\3\0\4\x7F\5\0\6", 13);
    const std::string tables = MmtPaTable() + MmtMpTable(0x11) + MmtMpiTable(0x01);
    CMMTMsgPa pa;
    const SFed fed(pa, MmtMessage(0, 32, list + tables));
    ASSERT_EQ(Join(fed.result, pa.TableCount(), pa.Table(2) != nullptr), "1|3|1");
    EXPECT_EQ(fed.Cursor(), fed.block.size());
    EXPECT_EQ(MmtClocks(pa), "1 2 4 5 ");
    EXPECT_EQ(Logged("[CMMTMsgPa::Parse] Table ClassType: 2/CLASS_TYPE_MP"), 1);
    // What the list says is kept, whatever the tables are.
    unsigned char id = 0, version = 0;
    unsigned short length = 0;
    EXPECT_EQ(Join(pa.GetTableInfo(2, id, version, length), id, version, length), "1|127|5|6");
    EXPECT_EQ(pa.Table(2)->TableId(), 1);
    ASSERT_EQ(pa.Table(0)->ClassType(), CMMTTbl::CLASS_TYPE_PA);
    int told = 0;
    const CMMTTblPa::SCallback callback = {&told, [](void* user, unsigned char, unsigned char, SLocationInfo*,
                                                     SLocationInfo*) { ++*static_cast<int*>(user); }};
    static_cast<CMMTTblPa*>(pa.Table(0))->SetCallback(&callback);
    EXPECT_EQ(Join(pa.Process(), told), "1|1");
    EXPECT_EQ(Join(pa.Table(3) != nullptr, pa.GetTableInfo(-1, id, version, length)), "0|0");
    EXPECT_EQ(TakeAssertions(), "0 <= index && index < m_size; 0 <= index && index < m_size");

    EXPECT_EQ(Each({SFed(pa, MmtMessage(0, 32, std::string(1, '\0'))).result, pa.TableCount() == 0}), "11");
    EXPECT_FALSE(SFed(pa, MmtMessage(0, 32, list + MmtPaTable())).result);
    EXPECT_EQ(Join(pa.TableCount(), pa.Table(0) != nullptr, pa.Table(1) != nullptr, pa.Process()), "3|1|0|1");
    EXPECT_EQ(Logged("_CHECK FAIL: src/mmt/msg/MMTMsgPa:89, p_tbl = CMMTTblFactory::GenerateTbl(item)"), 1);
    EXPECT_FALSE(SFed(pa, MmtMessage(0, 32, list + MmtPaTable() + "\x24")).result);
    EXPECT_EQ(Logged("invalid table id[0x24]"), 1);
    EXPECT_EQ(Each({SFed(pa, MmtMessage(0, 32, list + MmtTable(0x12, "\2\1\x9"))).result, pa.Table(0) != nullptr}),
              "00");
    EXPECT_EQ(Logged("_CHECK FAIL: src/mmt/msg/MMTMsgPa:90, p_tbl->Parse(item)"), 1);
    EXPECT_EQ(Each({SFed(pa, MmtMessage(0, 32, list.substr(0, 12))).result, pa.Table(0) != nullptr}), "00");
    EXPECT_EQ(pa.TableCount(), 2);
}

TEST_F(MMTMsgTest, MpiAndMpt)
{
    CMMTMsgMpi mpi;
    ASSERT_TRUE(SFed(mpi, MmtMessage(1, 32, "\xFF" + MmtMpiTable(1) + MmtMpTable(0x20))).result);
    EXPECT_EQ(Join(mpi.AssociatedMPTableFlag(), mpi.MPITable()->PiContentCount()), "1|2");
    EXPECT_EQ(MmtClocks(mpi), "4 5 1 2 ");
    EXPECT_FALSE(mpi.GetDescriptors(nullptr, nullptr));
    EXPECT_EQ(TakeAssertions(), "callback");
    CMMTMsgMpi alone;
    ASSERT_TRUE(SFed(alone, MmtMessage(1, 32, "\xFE" + MmtMpiTable(1) + MmtMpTable(0x20))).result);
    EXPECT_EQ(Join(alone.AssociatedMPTableFlag(), alone.MPTable()->AssetCount()), "0|0");
    EXPECT_EQ(MmtClocks(alone), "4 5 ");
    CMMTMsgMpi bad;
    EXPECT_FALSE(SFed(bad, MmtMessage(1, 32, "\x1" + MmtMpiTable(1) + MmtMpTable(0x10))).result);
    CMMTMsgMpt mpt;
    ASSERT_TRUE(SFed(mpt, MmtMessage(0x11, 16, MmtMpTable(0x11))).result);
    EXPECT_EQ(mpt.MPTable()->AssetCount(), 3);
    EXPECT_EQ(MmtClocks(mpt), "1 2 ");
}

TEST_F(MMTMsgTest, ArqConfiguration)
{
    CMmtBuilder b;
    b.Put(8, 3).Put(16, 0x101).Put(32, 1000).Put(8, 0x7F).Put("\1\2\3\4").Put(16, 5001);
    b.Put(16, 0x102).Put(32, 2000).Put(8, 0x80).Put("0123456789abcdef").Put(16, 5002).Put(16, 0x103);
    std::size_t most = 0;
    ForEachCut<CMMTMsgAc>(16, b.Bytes(), [&most](CMMTMsgAc& ac) {
        const auto& e = ac.Entries();
        EXPECT_GE(e.size(), most);
        most = e.size();
        if (ac.PayloadLength() == 12) {
            EXPECT_EQ(Show(e), "[257|1000|\1\2\3\4|-]");
        }
        if (ac.PayloadLength() == 41) {
            EXPECT_EQ(Show(e), "[257|1000|\1\2\3\4|5001 258|2000|0123456789abcdef|5002 259|-||-]");
        }
    });
    EXPECT_EQ(most, 3u);
}

TEST_F(MMTMsgTest, AssetDeliveryCharacteristics)
{
    CMmtBuilder b;
    b.Put(32, 11).Put(32, 12).Put(8, 0xC0).Put(32, 13).Put(16, 14).Put(8, 15).Put(8, 16).Put(8, 0x80);
    b.Put(16, 17).Put(16, 18).Put(16, 19).Put(8, 20).Put(8, 21).Put(7, 22).Put(1, 1);
    ForEachCut<CMMTMsgAdc>(32, b.Bytes(), [](CMMTMsgAdc& adc) {
        const CMMTMsgAdc::SAdc& f = adc.Fields();
        EXPECT_EQ(f.validityStartTime == 11u, adc.PayloadLength() >= 4);
        EXPECT_EQ(f.flowLabelFlag == true, adc.PayloadLength() >= 9);
        EXPECT_EQ(f.packetId == 14, adc.PayloadLength() >= 15);
        EXPECT_EQ(f.flowLabel.has_value(), adc.PayloadLength() == 27);
        if (f.flowLabel) {
            EXPECT_EQ(Show(f), "11|12|1|1|13|14|15|16|1|0|17|18|19|20|21|22");
        }
    });
    CMMTMsgAdc bare;
    const std::string none("\0\0\0\1\0\0\0\2\0\1\2\3\4\x40\1\3\5\6", 18);
    ASSERT_TRUE(SFed(bare, MmtMessage(0x209, 32, none)).result);
    EXPECT_EQ(Show(bare.Fields()), "1|2|0|0|-|258|3|4|0|1|-|-|259|5|6|-");
}

TEST_F(MMTMsgTest, LicencesAndLowDelay)
{
    const std::string one = MmtAssetId("asset") + std::string("\0\3lic", 5);
    const std::string payload = "\2" + one + MmtAssetId("") + std::string(2, '\0');
    const auto check = [&](CMMTMsgLicence& msg) {
        const unsigned int size = msg.PayloadLength();
        EXPECT_EQ(msg.LicenceCount(), size < 14 ? 0 : (size < 27 ? 1 : 2)) << size;
        if (size >= 14) {
            EXPECT_STREQ(msg.Licence(0)->assetId.AssetId(), "asset");
            EXPECT_EQ(msg.Licence(0)->data.Length(), size < 19 ? 0u : 3u);
        }
    };
    ForEachCut<CMMTMsgLs>(32, payload, check);
    ForEachCut<CMMTMsgLr>(32, payload, check);
    ForEachCut<CMMTMsgLdc>(16, std::string("\0\0\0\1\xFF\0\2\0\0\0\3\0\0\0\4\0\0\0\5", 19), [](CMMTMsgLdc& ldc) {
        const CMMTDescLowDelay::SLowDelay& f = ldc.Fields();
        EXPECT_EQ(f.periodOfIntrapicture == 2, ldc.PayloadLength() >= 7);
        EXPECT_EQ(f.defaultSampleFlags == 5u, ldc.PayloadLength() == 19);
    });
}

/// The payload of a signed message.
std::string Signed(const std::string& wrapped)
{
    return CMmtBuilder().Put(16, 1001).Open(32).Put(wrapped).Close().Open(16).Put("CMS").Close().Bytes();
}

TEST_F(MMTMsgTest, SignedMessages)
{
    const std::string mpt = MmtMessage(0x20, 16, MmtMpTable(0x20));
    const std::string payload = Signed(mpt);
    const std::size_t block = 6 + mpt.size();
    ForEachCut<CMMTMsgSmm>(32, payload, [&](CMMTMsgSmm& smm) {
        const std::size_t size = smm.PayloadLength();
        EXPECT_EQ(smm.ServiceId(), size < 2 ? 0 : 1001);
        EXPECT_EQ(smm.MessageData(), size < block ? "" : mpt);
        EXPECT_EQ(smm.Message() != nullptr, size >= block);
        EXPECT_EQ(smm.SignedBlock(), size < block ? "" : payload.substr(0, block));
        EXPECT_EQ(smm.Signature(), size < block + 5 ? "" : "CMS");
        EXPECT_EQ(MmtClocks(smm), size < block ? "" : "1 2 ");
    });

    // Its processing is that of what it wraps.
    CMMTMsgSmm smm;
    ASSERT_TRUE(
        SFed(smm, MmtMessage(0x8101, 32, Signed(MmtMessage(0, 32, std::string("\1\0\1\0\0", 5) + MmtPaTable()))))
            .result);
    int told = 0;
    const CMMTTblPa::SCallback callback = {&told, [](void* user, unsigned char, unsigned char, SLocationInfo*,
                                                     SLocationInfo*) { ++*static_cast<int*>(user); }};
    auto* pa = dynamic_cast<CMMTMsgPa*>(smm.Message().get());
    ASSERT_TRUE(pa);
    static_cast<CMMTTblPa*>(pa->Table(0))->SetCallback(&callback);
    EXPECT_EQ(Join(smm.Process(), told), "1|1");

    // What is unsupported, cut or too short is there as bytes.
    for (const std::string& wrapped :
         {MmtMessage(0x20C, 32, "x"), mpt.substr(0, 20), std::string("\0", 1), std::string()}) {
        EXPECT_EQ(Each({SFed(smm, MmtMessage(0x8101, 32, Signed(wrapped))).result, smm.Message() != nullptr}), "10");
        EXPECT_EQ(smm.MessageData(), wrapped);
    }

    std::string nested = mpt;
    for (int i = 0; i < 40; ++i) {
        nested = MmtMessage(0x8101, 32, Signed(nested));
        if (i == 3 || i == 4 || i == 39) {
            CMMTMsgSmm outer;
            EXPECT_TRUE(SFed(outer, nested).result);
            EXPECT_EQ(MmtClocks(outer), i == 3 ? "1 2 " : "");
            EXPECT_EQ(Logged("signed messages are nested too deep"), i == 3 ? 0 : 1);
            s_log.clear();
        }
    }
}

}  // namespace

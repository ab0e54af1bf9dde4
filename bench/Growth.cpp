// What a byte may cost: every entry point is given, three times on the same object, documents, tables and
// messages of one shape repeated, the shapes that cost it most. Told are CPU time, bytes left behind and log
// lines at the default level, each per byte; and the time for ten times the work.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "Bench.h"
#include "common/ChannelMap.h"
#include "common/CoreOS/PtrArray.h"
#include "common/RSAT.h"
#include "esg/ESGContentFragment.h"
#include "esg/ESGFragmentMap.h"
#include "esg/ESGScheduleFragment.h"
#include "esg/ESGServiceFragment.h"
#include "esg/SGDUParse.h"
#include "esg/SGResponse.h"
#include "lls/LLSSMTParser.h"
#include "lls/ParseAEAT.h"
#include "lls/ParseCDT.h"
#include "lls/ParseOnscreenNoti.h"
#include "lls/ParseRRT.h"
#include "lls/ParseSLT.h"
#include "lls/ParseSystemTime.h"
#include "mmt/desc/MMTUsbd.h"
#include "mmt/msg/MMTMsgFactory.h"
#include "platform/Platform.h"
#include "route/SLS/EFDT.h"
#include "route/SLS/MPD.h"
#include "route/SLS/ROUTEUsbd.h"
#include "route/SLS/STSID.h"
#include "route/SLSManager.h"
#include "support/MmtWriter.h"

namespace {

/// What is given to an entry point, and what it keeps of it.
struct CTarget {
    virtual ~CTarget() = default;
    virtual void Parse(const std::string& input) = 0;
};

template <class TParser>
struct CXmlTarget : CTarget {
    CXmlTarget() { parser.Create(); }
    ~CXmlTarget() override { parser.Destroy(); }
    void Parse(const std::string& input) override
    {
        parser.Parse(input.data(), static_cast<unsigned int>(input.size()));
    }
    TParser parser;
};

template <class TParser>
bool CreateLls(TParser& parser)
{
    return parser.Create();
}
bool CreateLls(CParseAEAT& parser)
{
    return parser.Create(nullptr);
}
bool CreateLls(CParseSystemTime& parser)
{
    return parser.Create(1);
}

/// A table under a header that it has not seen.
void ParseTable(TCParseLLS& parser, const std::string& input)
{
    static unsigned char version = 0;
    const std::string table = std::string("\1\1\0", 3) + static_cast<char>(++version) + input;
    IParse::SItem item = Item(table);
    parser.Parse(&item);
}

template <class TParser>
struct CLlsTarget : CTarget {
    CLlsTarget() { CreateLls(parser); }
    ~CLlsTarget() override { parser.Destroy(); }
    void Parse(const std::string& input) override { ParseTable(parser, input); }
    TParser parser;
};

template <bool TLenient>
struct CSltTarget : CTarget {
    CSltTarget()
    {
        map.Create();
        slt.Create(&map, nullptr);
        slt.SetLenient(TLenient);
    }
    ~CSltTarget() override
    {
        slt.Destroy();
        map.Destroy();
    }
    void Parse(const std::string& input) override { ParseTable(slt, input); }
    CChannelMap map;
    CParseSLT slt;
};

struct CCmsTarget : CLlsTarget<CParseCDT> {
    void Parse(const std::string& input) override
    {
        const std::string table = "\6\1\0\1" + input;
        parser.CheckCMS(reinterpret_cast<const unsigned char*>(table.data()), static_cast<int>(table.size()), xml, cms);
    }
    std::string xml;
    std::string cms;
};

/// What takes an item of bytes.
template <class TParser>
struct CItemTarget : CTarget {
    CItemTarget() { parser.Create(); }
    ~CItemTarget() override { parser.Destroy(); }
    void Parse(const std::string& input) override
    {
        IParse::SItem item = Item(input);
        parser.Parse(&item);
    }
    TParser parser;
};

struct CSlsTarget : CTarget {
    CSlsTarget() { parser.Create(nullptr); }
    ~CSlsTarget() override { parser.Destroy(); }
    void Parse(const std::string& input) override
    {
        const CSLSManager::SSessionInfo session{1, 2, 3, 4};
        parser.Parse(reinterpret_cast<const unsigned char*>(input.data()), static_cast<unsigned int>(input.size()),
                     &session, false);
    }
    CSLSManager parser;
};

/// A message on an object of its own, as the factory makes them, which takes the place of the last.
struct CMmtTarget : CTarget {
    void Parse(const std::string& input) override
    {
        message = CMMTMsgFactory::CreateMessage(reinterpret_cast<const unsigned char*>(input.data()), 2);
        IParse::SItem item = Item(input);
        message->Parse(&item);
    }
    std::shared_ptr<CMMTMsg> message;
};

template <class T>
std::unique_ptr<CTarget> Make()
{
    return std::make_unique<T>();
}

// ---- inputs

constexpr std::size_t k_size = 32000;

std::string Repeat(const std::string& unit, std::size_t size = k_size)
{
    std::string text;
    text.reserve(size);
    while (text.size() + unit.size() <= size) {
        text += unit;
    }
    return text;
}

/// "A B C" as open tags, or as the end tags of them.
std::string Open(const std::string& path)
{
    std::string text;
    for (std::size_t at = 0; at < path.size();) {
        const std::size_t end = std::min(path.find('>', at), path.size());
        text += "<" + path.substr(at, end - at) + ">";
        at = end + 1;
    }
    return text;
}

std::string Close(const std::string& path)
{
    std::string text;
    for (std::size_t at = 0; at < path.size();) {
        const std::size_t end = std::min(path.find('>', at), path.size());
        const std::string tag = path.substr(at, end - at);
        text.insert(0, "</" + tag.substr(0, tag.find(' ')) + ">");
        at = end + 1;
    }
    return text;
}

struct SInput {
    std::string name;
    std::string bytes;
};

/// Documents of one element repeated. `rows`: a path of parents, then the elements that are tried there.
std::vector<SInput> Documents(const std::vector<std::vector<std::string>>& rows)
{
    std::vector<SInput> inputs;
    const auto add = [&inputs](const std::string& name, const std::string& path, const std::string& body) {
        inputs.push_back({name, Open(path) + body + Close(path)});
    };
    const std::string& root = rows[0][0];
    for (const char* unit : {"<a/>", "x<a/>", "<a></a>", "<a b=''/>", "<a b='1' c='2' d='3'/>", "<!---->x", "<?a?>x",
                             "<p:a/>", "<a p:b=''/>", "&#65;", "]]&gt;"}) {
        add(unit, root, Repeat(unit));
    }
    std::string tag = "<a";
    for (int i = 0; i < 1000; ++i) {
        tag += " a" + std::to_string(i) + "=''";
        if (i == 399) {
            add("400 attributes", root, Repeat(tag + "/>"));
        }
    }
    add("1000 attributes once", root, tag + "/>");
    for (const std::vector<std::string>& row : rows) {
        for (std::size_t i = 1; i < row.size(); ++i) {
            const std::string& element = row[i];
            const std::string name = element.substr(0, element.find(' '));
            const std::string in = row[0].substr(row[0].rfind('>') + 1) + "/";
            add(in + element, row[0], Repeat("<" + element + "/>"));
            add(in + "x" + element, row[0], Repeat("x<" + element + "/>"));
            add(in + element + " text", row[0], Repeat("<" + element + ">x</" + name + ">"));
            std::string deep;
            for (int d = 0; d < 200; ++d) {
                deep += "<" + element + ">";
            }
            deep += Repeat("<" + element + "/>", 4000);
            for (int d = 0; d < 200; ++d) {
                deep += "</" + name + ">";
            }
            add(in + element + " nested", row[0], deep);
            inputs.push_back({in + element + " entities", "<!DOCTYPE a [<!ENTITY e ''>]>" + Open(row[0]) + "<" +
                                                              element + " id='" + Repeat("x&e;") + "'>" +
                                                              Repeat("x&e;") + "</" + name + ">" + Close(row[0])});
            inputs.push_back({in + element + " namespace",
                              Open(row[0]) + "<a xmlns='" + std::string(k_size, 'n') + "'/>" + Close(row[0])});
            // All in one long namespace.
            std::string path = row[0];
            path.insert(std::min(path.find('>'), path.size()), " xmlns='" + std::string(k_size, 'n') + "'");
            inputs.back().bytes = Open(path) + Repeat("<" + element + "/>") + Close(path);
        }
    }
    return inputs;
}

std::string Bytes(unsigned int value, int count)
{
    std::string text;
    while (count-- > 0) {
        text += static_cast<char>(value >> 8 * count);
    }
    return text;
}

std::string Unit(const std::vector<std::string>& fragments, unsigned int type)
{
    std::string unit = Bytes(0, 6) + Bytes(static_cast<unsigned int>(fragments.size()), 3);
    unsigned int offset = 0;
    for (const std::string& fragment : fragments) {
        unit += Bytes(1, 4) + Bytes(1, 4) + Bytes(offset, 4);
        offset += static_cast<unsigned int>(fragment.size()) + 2;
    }
    for (const std::string& fragment : fragments) {
        unit += Bytes(type, 2) + fragment;
    }
    return unit;
}

std::vector<SInput> Units()
{
    std::vector<SInput> inputs;
    for (const char* text :
         {"<a/>", "<", "<Service/>", "<Service id=''/>", "<Service id='1'><Genre>1</Genre></Service>"}) {
        const std::vector<std::string> fragments(k_size / (std::char_traits<char>::length(text) + 14), text);
        inputs.push_back({text, Unit(fragments, 1)});
        inputs.push_back({std::string(text) + " type 9", Unit(fragments, 9)});
    }
    for (const SInput& input : Documents({{"Service id=''", "Genre", "Name", "PrivateExt"}})) {
        inputs.push_back({input.name, Unit({input.bytes}, 1)});
    }
    std::string other = Bytes(0, 6) + Bytes(2000, 3);
    for (int i = 0; i < 2000; ++i) {
        other += Bytes(0, 12);
    }
    inputs.push_back({"other encoding", other + std::string(2000, '\1')});
    return inputs;
}

std::string Message(unsigned int id, unsigned int bits, const std::string& payload)
{
    return CMmtBuilder().Put(16, id).Put(8, 1).Open(bits).Put(payload).Close().Bytes();
}

std::string Table(unsigned int id, const std::string& body)
{
    return CMmtBuilder().Put(8, id).Put(8, 1).Open(16).Put(body).Close().Bytes();
}

std::string Asset(const std::string& locations, unsigned int count, const std::string& descriptors)
{
    return CMmtBuilder()
        .Put(8, 0)
        .Put("urn ")
        .Put(32, 0)
        .Put("hev1")
        .Put(8, 0xFC)
        .Put(8, count)
        .Put(locations)
        .Open(16)
        .Put(descriptors)
        .Close()
        .Bytes();
}

std::string Descriptor(unsigned int tag, const std::string& body)
{
    return CMmtBuilder().Put(16, tag).Open(16).Put(body).Close().Bytes();
}

std::string Content(unsigned int type, const std::string& content)
{
    return Message(
        0x8100, 32,
        CMmtBuilder().Put(16, 1).Put(16, type).Put(8, 1).Put(8, 0).Put(8, 0).Open(32).Put(content).Close().Bytes());
}

std::vector<SInput> Messages()
{
    std::vector<SInput> inputs;
    const auto mpt = [&inputs](const std::string& name, const std::string& asset) {
        std::string body = std::string("\xFF\0\0\0", 4);
        const std::size_t assets = std::min<std::size_t>(255, 60000 / asset.size());
        body += static_cast<char>(assets);
        for (std::size_t i = 0; i < assets; ++i) {
            body += asset;
        }
        inputs.push_back({"MPT " + name, Message(0x11, 16, Table(0x20, body))});
    };
    mpt("empty assets", Asset("", 0, ""));
    for (const int type : {0, 1, 5, 7, 8}) {
        const int size[] = {2, 12, 0, 0, 0, 1, 0, 0, 2};
        std::string locations;
        for (int i = 0; i < 255; ++i) {
            locations +=
                static_cast<char>(type) + std::string(static_cast<std::size_t>(size[type]), type == 5 ? '\0' : '\1');
        }
        mpt("locations of type " + std::to_string(type), Asset(locations, 255, ""));
    }
    for (const unsigned int tag : {0u, 1u, 2u, 4u, 5u, 8u, 9u, 12u, 13u, 14u, 0x8001u}) {
        for (const std::size_t size : {0u, 1u, 12u, 60u}) {
            for (const char fill : {'\0', '\1', '\xFF'}) {
                const std::string one = Descriptor(tag, std::string(size, fill));
                inputs.push_back({"descriptors " + std::to_string(tag) + " of " + std::to_string(size) + "x" +
                                      std::to_string(static_cast<unsigned char>(fill)),
                                  Content(9, Repeat(one))});
            }
        }
        mpt("loops of " + std::to_string(tag), Asset("", 0, Descriptor(tag, std::string(19, '\0'))));
    }
    // Assets of nothing, in every descriptor that lists them; presentations of two bytes.
    for (const unsigned int tag : {5u, 8u, 9u, 12u, 13u}) {
        for (const char fill : {'\0', '\1'}) {
            std::string body(1, '\xFF');
            body += std::string(8000, fill);
            inputs.push_back({"assets in " + std::to_string(tag) + "x" + std::to_string(fill),
                              Content(9, Repeat(Descriptor(tag, body)))});
        }
    }
    const std::string presentations =
        std::string(1, '\x1') + Bytes(0, 4) + "ac-4" + '\xFF' + '\0' + std::string(510, '\0');
    inputs.push_back({"presentations", Content(9, Repeat(Descriptor(9, presentations)))});
    const std::string languages = std::string(1, '\x1') + Bytes(0, 4) + "ac-4" + '\xFF' + '\0' +
                                  Repeat(std::string("\1\4\xFF", 3) + std::string(256, '\0'), 60000);
    inputs.push_back({"languages", Content(9, Descriptor(9, languages))});
    const std::string urls = std::string(1, '\xFF') + Repeat(Bytes(0, 4) + '\xFF' + std::string(510, '\0'), 60000);
    inputs.push_back({"licence urls", Content(9, Descriptor(13, urls))});
    const std::string vsp = std::string(1, '\xFF') + Repeat(Bytes(0, 4) + "hev1" + '\0' + std::string(13, '\0'), 60000);
    inputs.push_back({"video assets", Content(9, Descriptor(5, vsp))});
    std::string pa(1, '\xFF');
    for (int i = 0; i < 255; ++i) {
        pa += Bytes(0, 4);
    }
    inputs.push_back({"PA of empty tables", Message(0, 32, pa + Repeat(Table(0, std::string(2, '\0')), 1530))});
    for (const unsigned int id : {0x200u, 0x201u, 0x206u, 0x20Bu, 0x20Eu, 0x1u}) {
        for (const char fill : {'\0', '\1', '\xFF'}) {
            for (const unsigned int bits : {16u, 32u}) {
                inputs.push_back(
                    {"message " + std::to_string(id) + "x" + std::to_string(static_cast<unsigned char>(fill)),
                     Message(id, bits, std::string(16000, fill))});
            }
        }
    }
    for (const char fill : {'\0', '\1', '\xFF'}) {
        for (const unsigned int id : {0x10u, 0x21u, 0x22u, 0x23u}) {
            inputs.push_back({"table " + std::to_string(id) + "x" + std::to_string(static_cast<unsigned char>(fill)),
                              Message(0, 32, std::string("\1") + Bytes(0, 4) + Table(id, std::string(16000, fill)))});
        }
    }
    for (const SInput& usbd :
         Documents({{"BundleDescriptionMMT>UserServiceDescription", "Name", "ServiceLanguage",
                     "ComponentInfo componentProtectedFlag=''", "ComponentInfo", "ContentAdvisoryRatings"}})) {
        inputs.push_back({"USBD " + usbd.name, Content(1, usbd.bytes)});
    }
    std::string nested = Message(0x8100, 32, std::string(8000, '\0'));
    for (int i = 0; i < 5; ++i) {
        nested = Message(0x8101, 32, CMmtBuilder().Put(16, 1).Open(32).Put(nested).Close().Put(16, 0).Bytes());
    }
    inputs.push_back({"signed in signed", nested});
    return inputs;
}

std::vector<SInput> MultiTables()
{
    return {{"payloads of nothing", std::string(1, '\xFF') + std::string(255 * 4 + 2, '\0')}};
}

std::vector<SInput> SignedTexts()
{
    std::vector<SInput> inputs;
    for (const char* unit : {"<", "<CMSSignedDat", "<CMSSignedData></CMSSignedDat"}) {
        inputs.push_back({unit, Repeat(unit)});
    }
    return inputs;
}

// ---- measuring

unsigned long long g_lines = 0;

double Now()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

double Held()
{
    return static_cast<double>(mallinfo2().uordblks + mallinfo2().hblkhd);
}

struct SCost {
    double time = 1e30;
    double left = 0;
    double third = 1e30;
    double leftByThird = 0;
    double lines = 0;
};

SCost Measure(std::unique_ptr<CTarget> (*make)(), const std::string& input)
{
    SCost cost;
    for (int run = 0; run < 3; ++run) {
        const std::unique_ptr<CTarget> target = make();
        double held[4];
        double time[4];
        held[0] = Held();
        const unsigned long long lines = g_lines;
        for (int i = 1; i <= 3; ++i) {
            const double start = Now();
            target->Parse(input);
            time[i] = Now() - start;
            held[i] = Held();
            if (i == 1) {
                cost.lines = static_cast<double>(g_lines - lines);
            }
        }
        cost.time = std::min(cost.time, time[1]);
        cost.third = std::min(cost.third, time[3]);
        cost.left = held[1] - held[0];
        cost.leftByThird = held[3] - held[0];
    }
    const double bytes = static_cast<double>(input.size());
    return {cost.time / bytes, cost.left / bytes, cost.third / bytes, cost.leftByThird / bytes, cost.lines / bytes};
}

/// The worst that was found for an entry point.
struct SAttacks {
    std::string name;
    double most[5];
    std::string inputs[5];
};

std::vector<SAttacks> g_attacks;

/// The most of each, over the inputs, and which input it was.
void Attack(benchmark::State& state, const std::string& name, std::unique_ptr<CTarget> (*make)(),
            const std::vector<SInput>& inputs)
{
    static const SPlatform k_counting = {[](int, const char*, const char*, va_list) { ++g_lines; }, nullptr};
    SetPlatform(&k_counting);
    SetLogPriority(LOG_PRIORITY_INFO);
    static constexpr double SCost::*k_what[] = {&SCost::time, &SCost::third, &SCost::left, &SCost::leftByThird,
                                                &SCost::lines};
    SCost most{0, 0, 0, 0, 0};
    std::string names[5];
    for (auto _ : state) {
        for (const SInput& input : inputs) {
            const SCost cost = Measure(make, input.bytes);
            if (std::getenv("VYR_BENCH_ALL")) {
                std::printf("%8.1f %8.1f %8.1f %8.1f %8.3f  %s\n", cost.time, cost.third, cost.left, cost.leftByThird,
                            cost.lines, input.name.c_str());
            }
            for (int i = 0; i < 5; ++i) {
                if (cost.*k_what[i] > most.*k_what[i]) {
                    most.*k_what[i] = cost.*k_what[i];
                    names[i] = input.name;
                }
            }
        }
    }
    SetLogPriority(LOG_PRIORITY_SILENT);
    SetPlatform(nullptr);
    SAttacks row{name, {}, {}};
    for (int i = 0; i < 5; ++i) {
        row.most[i] = most.*k_what[i];
        row.inputs[i] = names[i];
    }
    g_attacks.push_back(row);
}

void RegisterAttack(const std::string& name, std::unique_ptr<CTarget> (*make)(), std::vector<SInput> (*inputs)())
{
    benchmark::RegisterBenchmark(("attack/" + name).c_str(), [name, make, inputs](benchmark::State& state) {
        Attack(state, name, make, inputs());
    })->Iterations(1);
}

/// One parse by an object made for it, of an input of n elements.
void Grow(benchmark::State& state, std::unique_ptr<CTarget> (*make)(), const std::string& input)
{
    TCParseLLS::SetDecompressLLS(false);  // what is compressed has a limit
    for (auto _ : state) {
        make()->Parse(input);
    }
    TCParseLLS::SetDecompressLLS(true);
}

/// Runs of `run` with 1,000, 10,000 and 100,000 elements.
void RegisterGrowth(const std::string& name, const std::function<void(benchmark::State&, int)>& run)
{
    for (const int n : {1000, 10000, 100000}) {
        benchmark::RegisterBenchmark(("growth/" + name + "/" + std::to_string(n)).c_str(),
                                     [run, n](benchmark::State& state) { run(state, n); })
            ->Repetitions(3)
            ->ComputeStatistics("least", Least)
            ->ReportAggregatesOnly();
    }
}

/// Documents of one element n times; "%" in it is its number.
void RegisterGrowth(const std::string& name, std::unique_ptr<CTarget> (*make)(), const std::string& path,
                    const std::string& element)
{
    RegisterGrowth(name, [=](benchmark::State& state, int n) {
        const std::size_t mark = element.find('%');
        std::string body;
        for (int i = 0; i < n; ++i) {
            body += mark == std::string::npos ? element
                                              : element.substr(0, mark) + std::to_string(i) + element.substr(mark + 1);
        }
        Grow(state, make, Open(path) + body + Close(path));
    });
}

void RegisterAllGrowth()
{
    const std::string flags = "' protected='' hidden='' broadbandAccessRequired=''";
    RegisterGrowth("slt", Make<CSltTarget<false>>, "SLT", "<Service serviceId='%" + flags + "/>");
    RegisterGrowth("slt-equal", Make<CSltTarget<false>>, "SLT", "<Service serviceId='1" + flags + "/>");
    RegisterGrowth("slt-urls", Make<CSltTarget<false>>, "SLT", "<sltInetUrl>%</sltInetUrl>");
    RegisterGrowth("aeat", Make<CLlsTarget<CParseAEAT>>, "AEAT", "<AEA aeaId='%'/>");
    RegisterGrowth("aeat-media", Make<CLlsTarget<CParseAEAT>>, "AEAT>AEA", "<Media url='%'/>");
    RegisterGrowth("rrt", Make<CLlsTarget<CParseRRT>>, "RatingRegionTables>RatingRegionTable>Dimension",
                   "<Rating ratingValue='%'/>");
    RegisterGrowth("onscreen", Make<CLlsTarget<CParseOnscreenNoti>>, "OnscreenMessageNotification",
                   "<KeepScreenClear bsid='%'/>");
    RegisterGrowth("cdt", Make<CLlsTarget<CParseCDT>>, "CertificationData>ToBeSignedData",
                   "<Certificates>%</Certificates>");
    RegisterGrowth("rsat", Make<CXmlTarget<CRSAT>>, "RSAT timestamp=''", "<Service frequency='%'/>");
    RegisterGrowth("stsid-sessions", Make<CXmlTarget<CSTSID>>, "S-TSID>RS", "<LS tsi='%'/>");
    RegisterGrowth("stsid-ratings", Make<CXmlTarget<CSTSID>>, "S-TSID>RS>LS>SrcFlow>ContentInfo>MediaInfo",
                   "<ContentRating value='%'/>");
    RegisterGrowth("efdt", Make<CXmlTarget<CEFDT>>, "EFDT>FDT-Instance", "<File TOI='%'/>");
    RegisterGrowth("usbd", Make<CXmlTarget<CROUTEUsbd>>, "BundleDescriptionROUTE>UserServiceDescription",
                   "<ServiceLanguage>%</ServiceLanguage>");
    RegisterGrowth("usbd-patterns", Make<CXmlTarget<CROUTEUsbd>>,
                   "BundleDescriptionROUTE>UserServiceDescription>DeliveryMethod>UnicastAppService",
                   "<BasePattern>%</BasePattern>");
    RegisterGrowth("mpd-timeline", Make<CXmlTarget<CMPD>>, "MPD>Period>SegmentTemplate>SegmentTimeline", "<S d='%'/>");
    RegisterGrowth("mpd-representations", Make<CXmlTarget<CMPD>>, "MPD>Period>AdaptationSet codecs='c'",
                   "<Representation id='%'/>");
    RegisterGrowth("mmt-usbd", Make<CXmlTarget<CMMTUsbd>>, "BundleDescriptionMMT>UserServiceDescription",
                   "<ComponentInfo componentProtectedFlag='' componentId='%'/>");
    RegisterGrowth("esg-genres", Make<CXmlTarget<CESGServiceFragment>>, "Service id=''", "<Genre>:%</Genre>");
    RegisterGrowth("esg-schedule", Make<CXmlTarget<CESGScheduleFragment>>, "Schedule id=''",
                   "<ContentReference idRef='%'/>");
    RegisterGrowth("sgdd", Make<CXmlTarget<CSGDDParse>>,
                   "ServiceGuideDeliveryDescriptor>DescriptorEntry>ServiceGuideDeliveryUnit", "<Fragment id='%'/>");
    RegisterGrowth("sg-response", Make<CXmlTarget<CSGResponse>>, "SGResponse xmlns='n'",
                   "<ServiceGuideDeliveryDescriptor id='%'/>");
    RegisterGrowth("sgdu", [](benchmark::State& state, int n) {
        Grow(state, Make<CItemTarget<CSGDUParse>>,
             Unit(std::vector<std::string>(static_cast<std::size_t>(n), "<Service id='1'/>"), 1));
    });
    RegisterGrowth("mmt-descriptors", [](benchmark::State& state, int n) {
        Grow(state, Make<CMmtTarget>,
             Content(9, Repeat(Descriptor(9, std::string(4, '\0')), static_cast<std::size_t>(8 * n))));
    });
    RegisterGrowth("array", [](benchmark::State& state, int n) {
        for (auto _ : state) {
            CCPtrArray array(CCPtrArray::DummyCallback, nullptr);
            for (int i = 0; i < n; ++i) {
                array.Add(&array);
            }
        }
    });
    RegisterGrowth("rsat-getter", [](benchmark::State& state, int n) {
        CXmlTarget<CRSAT> rsat;
        rsat.Parse("<RSAT timestamp=''><Service>" + Repeat("<Update/>", static_cast<std::size_t>(9 * n)) +
                   "</Service></RSAT>");
        SRSATUpdateInfo info;
        for (auto _ : state) {
            for (int i = 0; i < n; ++i) {
                benchmark::DoNotOptimize(rsat.parser.GetUpdateInfo(0, i, &info));
            }
        }
    });
    RegisterGrowth("map", [](benchmark::State& state, int n) {
        CChannelMap map;
        map.Create();
        std::vector<void*> services(static_cast<std::size_t>(n));
        for (auto _ : state) {
            for (int i = 0; i < n; ++i) {
                services[static_cast<std::size_t>(i)] = map.AddService(nullptr, 1, i, 1, 1, 0, 0, 0, false, nullptr);
            }
            for (void* service : services) {
                map.RemoveService(service);
            }
        }
        map.Destroy();
    });
    RegisterGrowth("fragment-map", [](benchmark::State& state, int n) {
        CESGFragmentMap map;
        map.Create();
        for (auto _ : state) {
            for (int i = 0; i < n; ++i) {
                map.Add(std::to_string(i).c_str());
            }
            for (int i = n; i-- > 0;) {
                map.Remove(std::to_string(i).c_str());
            }
        }
        map.Destroy();
    });
}

const bool g_registered = [] {
    RegisterAllGrowth();
    RegisterAttack("slt", Make<CSltTarget<false>>, [] {
        return Documents({{"SLT", "Service", "Service protected='' hidden='' broadbandAccessRequired=''", "sltInetUrl"},
                          {"SLT>Service protected='' hidden='' broadbandAccessRequired=''", "SimulcastTSID",
                           "BroadcastSvcSignaling", "SvcInetUrl"}});
    });
    RegisterAttack("slt-lenient", Make<CSltTarget<true>>, [] {
        std::vector<SInput> inputs = Documents({{"SLT", "Service", "sltInetUrl"}});
        std::string services;
        for (int i = 0; services.size() < k_size; ++i) {
            services += "<Service serviceId='" + std::to_string(i) + "'/>";
        }
        inputs.push_back({"different services", "<SLT>" + services + "</SLT>"});
        return inputs;
    });
    RegisterAttack("aeat", Make<CLlsTarget<CParseAEAT>>, [] {
        return Documents({{"AEAT", "AEA", "Header", "LiveMedia"},
                          {"AEAT>AEA", "Header", "EventCode", "EventDesc", "Location", "AEAText", "LiveMedia", "Media"},
                          {"AEAT>AEA>LiveMedia", "ServiceName"}});
    });
    RegisterAttack("rrt", Make<CLlsTarget<CParseRRT>>, [] {
        return Documents({{"RatingRegionTables", "RatingRegionTable", "RegionIdText", "Rating"},
                          {"RatingRegionTables>RatingRegionTable", "RegionIdText", "Dimension"},
                          {"RatingRegionTables>RatingRegionTable>Dimension", "DimensionTitle", "Rating"},
                          {"RatingRegionTables>RatingRegionTable>Dimension>Rating", "RatingValueAbbrev"}});
    });
    RegisterAttack("onscreen", Make<CLlsTarget<CParseOnscreenNoti>>, [] {
        return Documents({{"OnscreenMessageNotification", "KeepScreenClear"}});
    });
    RegisterAttack("cdt", Make<CLlsTarget<CParseCDT>>, [] {
        return Documents({{"CertificationData", "ToBeSignedData", "Certificates", "CMSSignedData", "CertReplacement"},
                          {"CertificationData>ToBeSignedData", "Certificates", "OCSPResponse", "OCSPRefresh",
                           "CertReplacement NextCertFrom='2020-01-01T00:00:00Z'"}});
    });
    RegisterAttack("system-time", Make<CLlsTarget<CParseSystemTime>>, [] { return Documents({{"SystemTime", "a"}}); });
    RegisterAttack("cms", Make<CCmsTarget>, SignedTexts);
    RegisterAttack("multi-table", Make<CItemTarget<CLLSSMTParser>>, MultiTables);
    RegisterAttack("rsat", Make<CXmlTarget<CRSAT>>, [] {
        return Documents({{"RSAT timestamp=''", "Service", "Update"}, {"RSAT timestamp=''>Service", "Update"}});
    });
    const auto stsid = [] {
        return Documents({{"S-TSID", "RS"},
                          {"S-TSID>RS", "LS", "LS startTime='2020-01-01T00:00:00Z'"},
                          {"S-TSID>RS>LS", "SrcFlow"},
                          {"S-TSID>RS>LS>SrcFlow", "ContentInfo", "EFDT"},
                          {"S-TSID>RS>LS>SrcFlow>EFDT", "FDT-Instance", "FileTemplate"},
                          {"S-TSID>RS>LS>SrcFlow>EFDT>FDT-Instance", "File", "FDT-Instance"},
                          {"S-TSID>RS>LS>SrcFlow>ContentInfo", "MediaInfo", "AEAMedia"},
                          {"S-TSID>RS>LS>SrcFlow>ContentInfo>MediaInfo", "ContentRating"}});
    };
    RegisterAttack("stsid", Make<CXmlTarget<CSTSID>>, stsid);
    RegisterAttack("efdt", Make<CXmlTarget<CEFDT>>, [] {
        std::vector<SInput> inputs =
            Documents({{"EFDT", "FDT-Instance", "FileTemplate"}, {"EFDT>FDT-Instance", "File"}});
        inputs.push_back({"spaces", "<EFDT><FDT-Instance appContextIdList='" + Repeat(" ") + "'/></EFDT>"});
        inputs.push_back({"tokens", "<EFDT><FDT-Instance appContextIdList='" + Repeat("a ") + "'/></EFDT>"});
        return inputs;
    });
    const auto usbd = [] {
        return Documents(
            {{"BundleDescriptionROUTE>UserServiceDescription", "Name", "ServiceLanguage", "DeliveryMethod",
              "ServiceLinkage", "UserServiceDescription"},
             {"BundleDescriptionROUTE>UserServiceDescription>DeliveryMethod", "BroadcastAppService",
              "UnicastAppService"},
             {"BundleDescriptionROUTE>UserServiceDescription>DeliveryMethod>UnicastAppService", "BasePattern"}});
    };
    RegisterAttack("usbd", Make<CXmlTarget<CROUTEUsbd>>, usbd);
    const auto mpd = [] {
        return Documents({{"MPD", "Period", "BaseURL", "EssentialProperty", "Rating"},
                          {"MPD>Period", "AdaptationSet", "Preselection", "EventStream", "SegmentTemplate",
                           "SegmentList", "BaseURL", "Period start='PT1S'"},
                          {"MPD>Period>AdaptationSet", "Representation", "ContentProtection", "Role", "Rating"},
                          {"MPD>Period>AdaptationSet>Representation", "SegmentTemplate", "SegmentList", "Role"},
                          {"MPD>Period>SegmentTemplate>SegmentTimeline", "S"},
                          {"MPD>Period>SegmentList", "SegmentURL", "Initialization", "SegmentTimeline"},
                          {"MPD>Period>AdaptationSet>ContentProtection", "pssh", "Laurl"}});
    };
    RegisterAttack("mpd", Make<CXmlTarget<CMPD>>, mpd);
    RegisterAttack("sls-manager", Make<CSlsTarget>, [] {
        std::vector<SInput> inputs = Documents({{"S-TSID>RS", "LS"}});
        const char* tags[] = {"BundleDescriptionROUTE", "S-TSID",         "MPD", "HELD",
                              "RSAT timestamp=''",      "ApplicationList"};
        std::string nested = Repeat("x<a/>");
        for (const char* tag : tags) {
            nested = Open(tag) + nested + Close(tag);
        }
        inputs.push_back({"documents in documents", nested});
        inputs.push_back({"<S-TSI", Repeat("<S-TSI")});
        inputs.push_back({"<", Repeat("<")});
        return inputs;
    });
    RegisterAttack("mmt-usbd", Make<CXmlTarget<CMMTUsbd>>, [] {
        const std::string usd = "BundleDescriptionMMT>UserServiceDescription";
        return Documents(
            {{usd, "Name", "ServiceLanguage", "Channel", "MPUComponent", "ROUTEComponent", "BroadbandComponent",
              "ComponentInfo componentProtectedFlag=''", "ServiceLinkage", "ContentAdvisoryRatings"},
             {usd + ">ContentAdvisoryRatings", "RatingDescription", "RatingDimVal", "RegionIdentifier"},
             {usd + ">ContentAdvisoryRatings>RatingDimVal", "RatingValueString"}});
    });
    RegisterAttack("mmt-message", Make<CMmtTarget>, Messages);
    RegisterAttack("esg-service", Make<CXmlTarget<CESGServiceFragment>>, [] {
        const std::string service = "Service id=''";
        return Documents({{service, "ServiceType", "Name", "Description", "AudioLanguage", "TextLanguage",
                           "ContentAdvisoryRatings", "TargetUserProfile", "Genre", "BroadcastArea", "PrivateExt"},
                          {service + ">ContentAdvisoryRatings", "RatingDescription", "RatingDimVal", "RatingDimension",
                           "RatingValueString"},
                          {service + ">BroadcastArea", "TargetArea", "ZipCode", "CellTargetArea"},
                          {service + ">PrivateExt>ATSC3ServiceExtension", "Icon"}});
    });
    RegisterAttack("esg-content", Make<CXmlTarget<CESGContentFragment>>, [] {
        const std::string content = "Content id=''";
        return Documents({{content, "Name", "Genre", "TermsOfUse", "Length", "Popularity", "Freshness", "PrivateExt"},
                          {content + ">PrivateExt", "ContentIcon", "Preview", "Components", "Capabilities"},
                          {content + ">PrivateExt>Components", "VideoComponent"},
                          {content + ">TermsOfUse", "Country", "Language", "PreviewDataIDRef", "TermsOfUseText"}});
    });
    RegisterAttack("esg-schedule", Make<CXmlTarget<CESGScheduleFragment>>, [] {
        const std::string schedule = "Schedule id=''";
        return Documents({{schedule, "ServiceReference", "ContentReference", "TermsOfUse"},
                          {schedule + ">ContentReference", "PresentationWindow", "DistributionWindow"}});
    });
    RegisterAttack("sgdu", Make<CItemTarget<CSGDUParse>>, Units);
    RegisterAttack("sgdd", Make<CXmlTarget<CSGDDParse>>, [] {
        const std::string sgdd = "ServiceGuideDeliveryDescriptor";
        return Documents({{sgdd, "DescriptorEntry"},
                          {sgdd + ">DescriptorEntry", "GroupingCriteria", "Transport", "AlternativeAccessURL",
                           "ServiceGuideDeliveryUnit"},
                          {sgdd + ">DescriptorEntry>ServiceGuideDeliveryUnit", "Fragment"},
                          {sgdd + ">DescriptorEntry>GroupingCriteria", "ServiceCriteria", "GenreGroupingCriteria"}});
    });
    RegisterAttack("sg-response", Make<CXmlTarget<CSGResponse>>, [] {
        return Documents(
            {{"SGResponse", "SupportedVersion", "ServiceGuideDeliveryDescriptor", "ResponseValidity", "PrivateExt"}});
    });
    return true;
}();

}  // namespace

void PrintAttacks()
{
    static constexpr const char* k_names[] = {"ns per byte", "... third time", "bytes left per byte", "... after three",
                                              "log lines per byte"};
    for (const SAttacks& attack : g_attacks) {
        std::printf("\n%s\n", attack.name.c_str());
        for (int i = 0; i < 5; ++i) {
            std::printf("  %-20s %9.2f  %s\n", k_names[i], attack.most[i], attack.inputs[i].c_str());
        }
    }
}

#include "common/XML.h"

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <pthread.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <random>
#include <thread>

#include "platform/Failure.h"
#include "support/Patience.h"
#include "support/Places.h"
#include "support/Programs.h"
#include "support/Recorder.h"
#include "support/Show.h"

// What a program around the library may still set for all of libxml2, which calls it old.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace {

class XMLTest : public CRecorder {
  protected:
    void TearDown() override
    {
        if (m_xml.FlagCreate()) {
            m_xml.Destroy();
        }
        CRecorder::TearDown();
    }

    bool Open(const std::string& text, bool compressed = false)
    {
        if (m_xml.FlagCreate()) {
            m_xml.Destroy();
        }
        const std::vector<unsigned char> bytes = Exact(text);
        return m_xml.Create(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size()), compressed) &&
               m_xml.MoveRoot(&m_root);
    }

    std::string Prop(const char* name)
    {
        bool found = false;
        const std::string text = m_xml.getStringProp(m_root, name, &found);
        return found ? text : "(absent)";
    }

    /// Parses within a fraction of what an attack would take.
    bool OpensQuickly(const std::string& text)
    {
        const CPatience patience(text.substr(0, 200));
        return Open(text);
    }

    CXML m_xml;
    void* m_root = nullptr;
};

TEST_F(XMLTest, AttributesAndContent)
{
    ASSERT_TRUE(
        Open("<p:r xmlns:p='u:n' p:q='namespaced' e='' a='A&amp;B&#x41;' t='true' tx='trueX' T='TRUE' one='1'\n"
             " n=' -12abc' big='4294967297' huge='1234567890123'>x<c>y<![CDATA[<z>]]></c>&lt;</p:r>"));
    EXPECT_TRUE(m_xml.Compare(m_root, "r"));
    EXPECT_FALSE(m_xml.Compare(m_root, "R"));
    EXPECT_FALSE(m_xml.Compare(m_root, nullptr));
    EXPECT_STREQ(m_xml.Name(m_root), "r");
    EXPECT_EQ(Prop("q"), "namespaced");
    EXPECT_EQ(Prop("e"), "");
    EXPECT_EQ(Prop("a"), "A&BA");
    EXPECT_EQ(Prop("none"), "(absent)");
    bool found = false;
    EXPECT_EQ(m_xml.getStringContent(m_root, &found), "xy<z><");
    EXPECT_TRUE(found);
    const std::unique_ptr<char[]> ns(m_xml.Ns(m_root, &found));
    EXPECT_STREQ(ns.get(), "u:n");
    EXPECT_TRUE(found);
    const std::unique_ptr<char[]> none(m_xml.Ns(m_xml.MoveNext(m_xml.MoveChild(m_root)), &found));
    EXPECT_STREQ(none.get(), "");
    EXPECT_FALSE(found);

    static const struct {
        const char* name;
        bool value, found;
    } k_booleans[] = {
        {"t", true, true}, {"tx", true, true}, {"T", false, true}, {"one", false, true}, {"no", false, false}};
    for (const auto& c : k_booleans) {
        EXPECT_EQ(m_xml.PropBool(m_root, c.name, &found), c.value) << c.name;
        EXPECT_EQ(found, c.found) << c.name;
    }
    static const struct {
        const char* name;
        int value;
        long long wide;
        bool found;
    } k_numbers[] = {{"n", -12, -12, true},
                     {"big", 1, 4294967297, true},
                     {"huge", 1912276171, 1234567890123, true},
                     {"t", 0, 0, true},
                     {"e", 0, 0, true},
                     {"no", -1, -1, false}};
    for (const auto& c : k_numbers) {
        EXPECT_EQ(m_xml.PropInt(m_root, c.name, &found), c.value) << c.name;
        EXPECT_EQ(found, c.found) << c.name;
        EXPECT_EQ(m_xml.PropLLong(m_root, c.name, nullptr), c.wide) << c.name;
    }

    CXML::CStr peeked;
    EXPECT_FALSE(m_xml.PeekPropStr(m_root, "no", &peeked));
    EXPECT_EQ(peeked.String(), nullptr);
    ASSERT_TRUE(m_xml.PeekPropStr(m_root, "q", &peeked));
    const std::unique_ptr<char, void (*)(void*)> first(const_cast<char*>(peeked.String()), xmlFree);
    EXPECT_TRUE(m_xml.PeekPropStr(m_root, "t", &peeked));
    EXPECT_FALSE(m_xml.PeekPropStr(m_root, "no", &peeked));
    EXPECT_STREQ(peeked.String(), "true");
    EXPECT_NE(first.get(), peeked.String());
    EXPECT_STREQ(first.get(), std::unique_ptr<char[]>(m_xml.PropStr(m_root, "q", nullptr)).get());
}

TEST_F(XMLTest, EveryNodeIsWalkedAndSafe)
{
    // A reference, a comment and an instruction that bear an element's name are no elements.
    ASSERT_TRUE(Open("<!DOCTYPE r [<!ENTITY Service 'text'>]><r> <Service/><!--c--><?Service a='1'?>&Service;</r>"));
    std::string names;
    for (void* child = m_xml.MoveChild(m_root); child; child = m_xml.MoveNext(child)) {
        bool found = false;
        names += std::string(m_xml.Name(child)) +
                 (m_xml.getStringProp(child, "a", &found) + m_xml.getStringContent(child, &found)) + ";";
        const std::unique_ptr<char[]> ns(m_xml.Ns(child, &found));
        EXPECT_FALSE(found);
    }
    EXPECT_EQ(names, "text ;Service;commentc;Servicea='1';Servicetext;");
}

TEST_F(XMLTest, SizeLimits)
{
    EXPECT_FALSE(m_xml.Create("<", 1, false));
    EXPECT_FALSE(m_xml.Create(nullptr, 10, false));
    EXPECT_EQ(Logged("XML Create Fail buffer["), 2);

    const auto document = [](std::size_t size) { return "<r>" + std::string(size - 7, 'x') + "</r>"; };
    static const struct {
        std::size_t size;
        bool gzip, compressed, opens;
    } k_cases[] = {{524288, false, true, true}, {524289, false, true, false}, {524289, false, false, true},
                   {524288, true, true, true},  {524289, true, true, false},  {1000, true, false, false}};
    for (const auto& c : k_cases) {
        SCOPED_TRACE(testing::Message() << c.size << (c.gzip ? " gzip " : " plain ") << c.compressed);
        EXPECT_EQ(Open(c.gzip ? Gzip(document(c.size)) : document(c.size), c.compressed), c.opens);
    }
    EXPECT_EQ(Logged("XML Create Fail. File size is too big. length[524289]"), 1);
    EXPECT_EQ(Logged("_CHECK FAIL: src/common/XML:"), 2);
    EXPECT_EQ(Logged(", m->pdoc = xmlParseMemory((const char*)buf, size)"), 2);

    std::string cut = Gzip(document(1000));
    cut.pop_back();
    EXPECT_FALSE(Open(cut, true));
    EXPECT_TRUE(Open(Gzip(document(1000)) + "rubbish", true));
}

TEST_F(XMLTest, AttackOnEntitiesIsRefused)
{
    const auto references = [](int n) {
        std::string text;
        while (n-- > 0) {
            text += "&e;";
        }
        return text;
    };
    const auto dtd = [](std::size_t size) { return "<!DOCTYPE r [<!ENTITY e \"" + std::string(size, 'x') + "\">]>"; };
    const std::string inAttribute = dtd(10000) + "<r a=\"" + references(10000) + "\"/>";
    EXPECT_FALSE(OpensQuickly(inAttribute));
    EXPECT_FALSE(OpensQuickly(dtd(10000) + "<r>" + references(10000) + "</r>"));
    // By the library, or by a libxml2 that sees it sooner.
    EXPECT_EQ(Logged("entities expand to more than 524288 bytes") + Logged("entity amplification factor exceeded"), 2);
    EXPECT_EQ(Logged("_CHECK FAIL"), 2);
    // Up to the limit, to the byte, in both places together.
    EXPECT_TRUE(OpensQuickly(dtd(4096) + "<r a=\"" + references(64) + "\">" + references(64) + "</r>"));
    EXPECT_EQ(m_xml.getStringContent(m_root, nullptr).size(), 262144u);
    EXPECT_EQ(Prop("a").size(), 262144u);
    EXPECT_FALSE(OpensQuickly(dtd(4096) + "<r a=\"" + references(64) + "\">" + references(64) + "x</r>"));
    // References to nothing cost time all the same.
    std::string nested = "<!DOCTYPE r [<!ENTITY a \"\">";
    for (char c = 'b'; c < 'k'; ++c) {
        nested += std::string("<!ENTITY ") + c + " \"";
        for (int i = 0; i < 10; ++i) {
            nested += std::string("&") + static_cast<char>(c - 1) + ";";
        }
        nested += "\">";
    }
    EXPECT_FALSE(OpensQuickly(nested + "]><r a='&j;'/>"));
    for (const int more : {0, 1}) {
        std::string flat = "<!DOCTYPE r [<!ENTITY nothing-here \"\">]><r>";
        for (int i = 0; i < 524288 + more; ++i) {
            flat += "&nothing-here;";
        }
        EXPECT_EQ(Open(flat + "</r>"), more == 0);
    }
}

TEST_F(XMLTest, EncodingsAndDtdThatAreFine)
{
    static const struct {
        std::string text;
        const char* value;
    } k_cases[] = {
        {"<?xml version='1.0' encoding='ISO-8859-1' standalone='yes'?><r a='\xE9'/>", "\xC3\xA9"},
        {"<?xml version=\"1.0\" encoding=\"EUC-KR\"?><r a='\xC7\xD1'/>", "\xED\x95\x9C"},
        {std::string("\xFF\xFE<\0r\0 \0a\0=\0'\0\xE9\0'\0/\0>\0", 22), "\xC3\xA9"},
        {std::string("\xFE\xFF\0<\0r\0 \0a\0=\0'\xD5\x5C\0'\0/\0>", 22), "\xED\x95\x9C"},
        {"\xEF\xBB\xBF<?xml version='1.0' encoding='utf-8'?><r a='\xC3\xA9'/>", "\xC3\xA9"},
        {"<!DOCTYPE r [<!ENTITY e 'f'><!ATTLIST r a CDATA 'default'>]><r/>", "default"},
        {"<!-- a --><?p b?><!DOCTYPE r [<!ENTITY e 'x'>]><r a='&e;&e;'/>", "xx"},
        // What is declared elsewhere is nothing.
        {"<?xml version='1.0' standalone='no'?><!DOCTYPE r SYSTEM 'u' [<!ENTITY e 'x'>]><r a='1&u;&e;'>&u;&e;</r>",
         "1x"},
    };
    for (const auto& c : k_cases) {
        ASSERT_TRUE(Open(c.text)) << c.text;
        EXPECT_EQ(Prop("a"), c.value);
    }
}

void HostError(void* told, const char* /*format*/, ...)
{
    ++*static_cast<int*>(told);
}

TEST_F(XMLTest, HostSettingsDoNotLeakIn)
{
    const CTemporary file("secret");
    xmlSubstituteEntitiesDefault(1);
    xmlKeepBlanksDefault(0);
    xmlLoadExtDtdDefaultValue = 1;
    static int s_told;
    xmlSetGenericErrorFunc(&s_told, HostError);
    ASSERT_TRUE(Open("<!DOCTYPE r [<!ENTITY e SYSTEM '" + file.Name() + "'>]><r> <a/>&e;</r>"));
    EXPECT_STREQ(m_xml.Name(m_xml.MoveChild(m_root)), "text");
    EXPECT_EQ(m_xml.getStringContent(m_root, nullptr).find("secret"), std::string::npos);
    ASSERT_TRUE(Open("<!DOCTYPE r [<!ENTITY e '<a/>'>]><r>&e;</r>"));
    EXPECT_STREQ(m_xml.Name(m_xml.MoveChild(m_root)), "e");  // a reference stays one
    EXPECT_FALSE(Open("<r>"));
    EXPECT_EQ(s_told, 0);
    EXPECT_EQ(Join(xmlGenericError == HostError, xmlGenericErrorContext == &s_told), "1|1");
    xmlSetGenericErrorFunc(nullptr, nullptr);
    xmlSubstituteEntitiesDefault(0);
    xmlKeepBlanksDefault(1);
    xmlLoadExtDtdDefaultValue = 0;
}

TEST_F(XMLTest, DumpsAndFiles)
{
    ASSERT_TRUE(m_xml.Create(CTemporary("<r><c a='1'  b=\"&lt;\">x</c></r>").Name().c_str()));
    ASSERT_TRUE(m_xml.MoveRoot(&m_root));
    int size = -1;
    std::unique_ptr<char[]> text(m_xml.NodeDump(m_xml.MoveChild(m_root), &size));
    EXPECT_STREQ(text.get(), "<c a=\"1\" b=\"&lt;\">x</c>");
    EXPECT_EQ(size, 23);
    const std::unique_ptr<xmlNode, void (*)(xmlNodePtr)> nothing(xmlNewText(nullptr), xmlFreeNode);
    text.reset(m_xml.NodeDump(nothing.get(), &size));
    EXPECT_STREQ(text.get(), "");
    EXPECT_EQ(size, 0);
    text.reset(CXML().Dump(m_xml.Doc(), &size));
    EXPECT_STREQ(text.get(), "<?xml version=\"1.0\"?>\n<r><c a=\"1\" b=\"&lt;\">x</c></r>\n");
    EXPECT_EQ(size, 53);

    CXML wrapper;
    EXPECT_TRUE(wrapper.Create(m_xml.Doc()));
    wrapper.Destroy();
    EXPECT_TRUE(m_xml.Compare(m_root, "r"));
    EXPECT_FALSE(wrapper.Create("no/such/file.xml"));
    EXPECT_EQ(Logged("m->pdoc = xmlParseFile((const char*)filename)"), 1);
}

TEST_F(XMLTest, MisuseIsAsserted)
{
    m_xml.Destroy();
    EXPECT_EQ(s_assertions.back().file, "src/common/XML");
    EXPECT_FALSE(m_xml.Create(static_cast<void*>(nullptr)));
    EXPECT_EQ(TakeAssertions(), "m; docPtr");
    ASSERT_TRUE(Open("<r/>"));
    EXPECT_EQ(Each({m_xml.Create("<r/>", 4, false), m_xml.Create("f"), m_xml.Create(m_xml.Doc())}), "000");
    EXPECT_EQ(TakeAssertions(), "!m; !m; !m");
    EXPECT_FALSE(Open("<r><a></r>"));
    EXPECT_GE(Logged("[Xml Error Info]"), 1);
    EXPECT_FALSE(m_xml.FlagCreate());
}

/// What libxml2 alone makes of a document: its tree serialised, empty when it refuses; and what it says.
std::string PlainlyParsed(const std::string& text, std::string* nodes, std::vector<std::string>* said)
{
    CRecorder::s_log.clear();
    xmlSetGenericErrorFunc(nullptr, XmlError);
    const xmlParserCtxtPtr context = xmlNewParserCtxt();
    const xmlDocPtr doc = xmlCtxtReadMemory(context, text.data(), static_cast<int>(text.size()), nullptr, nullptr, 0);
    xmlFreeParserCtxt(context);
    *said = CRecorder::s_log;
    xmlChar* dump = nullptr;
    int size = 0;
    const xmlBufferPtr buffer = xmlBufferCreate();
    if (doc) {
        xmlDocDumpMemory(doc, &dump, &size);
        xmlNodeDump(buffer, nullptr, xmlDocGetRootElement(doc), 0, 0);
    }
    *nodes = reinterpret_cast<const char*>(xmlBufferContent(buffer));
    const std::string whole = dump ? reinterpret_cast<const char*>(dump) : "";
    xmlBufferFree(buffer);
    xmlFree(dump);
    xmlFreeDoc(doc);
    xmlSetGenericErrorFunc(nullptr, nullptr);
    return whole;
}

TEST_F(XMLTest, TheSameAsPlainLibxml2)
{
    std::vector<std::string> texts = {
        "<r xml:id='i' xml:lang='e'><a xmlns='u' xmlns:p='v' p:b=\"'\"/>\r\n\t\xC3\xA4<?p "
        "i?><!--c--><![CDATA[<]]></r>\n",
        "<r a=' x&#10;y&#13;\t\n' b='\xE2\x82\xAC&quot;&gt;'>&lt;&#13;&amp;<e></e> <t>]]&gt;</t></r> <!--end-->",
        "<?xml version='1.0' encoding='utf-8' standalone='yes'?>\r\n<r>\r<a>\xF0\x9F\x93\xBA</a>\r\n</r>\r\n",
        "\xEF\xBB\xBF<r/>",
        "<r>\xE9</r>",
        "<r>" + std::string(9000, 'x') + "<a/>" + std::string(9000, '\n') + "</r>",
        "<!DOCTYPE r [<!ENTITY e 'f'>]><r a='&e;'>&e;</r>",
        std::string("<r>\0</r>", 8)};
    for (const auto& entry : std::filesystem::recursive_directory_iterator(DataFile())) {
        const std::string name = entry.path().lexically_relative(DataFile()).string();
        const std::string bytes = entry.is_regular_file() && name.find("pcap") == name.npos ? ReadData(name) : "";
        for (std::size_t at = bytes.find("<?xml"); at != bytes.npos && bytes.size() < 65536;
             at = bytes.find("<?xml", at + 1)) {
            const std::string rest = bytes.substr(at);
            texts.push_back(rest.substr(0, rest.find("\n--_")));
        }
    }
    ASSERT_GT(texts.size(), 80u);
    std::mt19937 random(1);
    const std::size_t originals = texts.size();
    for (std::size_t i = 0; i < originals * 12; ++i) {
        std::string text = texts[i % originals];
        const std::size_t at = random() % text.size();
        switch (random() % 4) {
            case 0:
                text.resize(at);
                break;
            case 1:
                text.erase(at, 1 + random() % 3);
                break;
            case 2:
                text[at] = static_cast<char>(random());
                break;
            default:
                text.insert(at, 1, "<>&\"'/=: \r\xC3]"[random() % 12]);
        }
        texts.push_back(text);
    }
    for (const std::string type : {"", "<!DOCTYPE r [<!ENTITY e 'f'>]>"}) {
        std::string large = type + "<r>\n";
        while (large.size() < 2000000) {
            large += "<e a='" + std::to_string(large.size()) + "'>" + (type.empty() ? "" : "&e;") + "text\r\n</e>\n";
        }
        texts.insert(texts.end(), {large + "</r>", large + "</e>"});
    }
    int accepted = 0;
    for (const std::string& text : texts) {
        std::string nodes;
        std::vector<std::string> said;
        const std::string whole = PlainlyParsed(text, &nodes, &said);
        for (const bool gzip : {false, true}) {
            s_log.clear();
            if (!Open(gzip ? Gzip(text) : text, gzip)) {
                ASSERT_TRUE(whole.empty() || Logged("refused: ") == 1 || text.size() < 2) << text;
            } else {
                int size = 0;
                const std::unique_ptr<char[]> all(m_xml.Dump(m_xml.Doc(), &size)),
                    root(m_xml.NodeDump(m_root, nullptr));
                ASSERT_EQ(std::string(all.get()), whole) << text;
                ASSERT_EQ(std::string(root.get()), nodes);
                ++accepted;
            }
            for (const std::string& line : said) {
                ASSERT_TRUE(text.size() < 2 || Logged("refused: ") == 1 || Logged(line) > 0) << line << " of " << text;
            }
        }
    }
    EXPECT_GT(accepted, 500);
}

int g_untilFailure = -1;
bool g_failsOnce = false;
int g_blocks = 0;

bool Fails()
{
    return (g_untilFailure == 0 && !g_failsOnce) || g_untilFailure-- == 0;
}

/// Gives libxml2 allocators that count, and fail when told to, for as long as it lives.
struct SAllocators {
    SAllocators()
    {
        xmlResetLastError();
        xmlMemGet(&free, &malloc, &realloc, &strdup);
        xmlMemSetup(
            [](void* block) {
                g_blocks -= block != nullptr;
                std::free(block);
            },
            [](std::size_t size) { return Fails() ? nullptr : (++g_blocks, std::malloc(size)); },
            [](void* old, std::size_t size) { return Fails() ? nullptr : (g_blocks += !old, std::realloc(old, size)); },
            [](const char* from) { return Fails() ? nullptr : (++g_blocks, ::strdup(from)); });
    }
    ~SAllocators()
    {
        xmlMemSetup(free, malloc, realloc, strdup);
        g_untilFailure = -1;
    }

    xmlFreeFunc free;
    xmlMallocFunc malloc;
    xmlReallocFunc realloc;
    xmlStrdupFunc strdup;
};

TEST_F(XMLTest, OutOfMemoryOfLibxml2)
{
    ASSERT_TRUE(Open("<r/>"));
    m_xml.Destroy();
    // Larger when dumped than read: libxml2 leaks when it cannot copy a text of more than 4,096 bytes.
    const std::string text =
        "<!DOCTYPE r [<!ENTITY e 'f'>]><r a='&e;'>&e;" + std::string(3000, '>') + "<e>&lt;</e></r>";
    const std::string plain = "<r a='b'>" + std::string(3000, '>') + "<e a='c'/>&lt;</r>";
    for (int i = 0; i < 4; ++i) {
        const std::string& document = i % 2 == 0 ? text : plain;
        g_failsOnce = i < 2;
        bool whole = false;
        for (int n = 0; !whole && n < 10000; ++n) {
            const SAllocators allocators;
            const int blocks = g_blocks;
            g_untilFailure = n;
            if (m_xml.Create(document.data(), static_cast<int>(document.size()), false) && m_xml.MoveRoot(&m_root)) {
                int size = 0;
                const std::unique_ptr<char[]> all(m_xml.Dump(m_xml.Doc(), &size)), root(m_xml.NodeDump(m_root, &size));
                whole = all && root && g_untilFailure > 0;
                EXPECT_TRUE(!root || std::string(root.get()).find("</r>") != std::string::npos) << n;
                m_xml.Destroy();
            }
            xmlResetLastError();
            EXPECT_EQ(g_blocks, blocks) << n;
        }
        EXPECT_TRUE(whole);
    }

    // One that is decoded only to be refused.
    std::string wide = "\xFE\xFF";
    for (const char c : "<!DOCTYPE r [<!ENTITY % p ''>]><r>" + std::string(5000, 'x') + "</r>") {
        wide += {'\0', c};
    }
    std::string causes;
    g_failsOnce = true;
    for (bool failed = true; failed && causes.size() < 1000;) {
        const SAllocators allocators;
        const int blocks = g_blocks;
        g_untilFailure = static_cast<int>(causes.size());
        EXPECT_FALSE(m_xml.Create(wide.data(), static_cast<int>(wide.size()), false));
        causes += LastFailure()->cause == FAILURE_MEMORY ? 'm' : LastFailure()->cause == FAILURE_LIMIT ? 'l' : '?';
        xmlResetLastError();
        EXPECT_EQ(g_blocks, blocks) << causes;
        failed = g_untilFailure < 0;
    }
    EXPECT_GT(causes.size(), 3u);
    EXPECT_EQ(causes, std::string(causes.size() - 1, 'm') + 'l');
}

/// A text that reads like libxml2's own words.
TEST_F(XMLTest, WordsOfTheDocumentAreNoFailureOfMemory)
{
    for (const ELogPriority priority : {LOG_PRIORITY_DEBUG, LOG_PRIORITY_ERROR}) {
        SetLogPriority(priority);
        EXPECT_FALSE(Open("<r>\nMemory allocation failed : <"));
        EXPECT_EQ(LastFailure()->cause, FAILURE_XML);
    }
    SetLogPriority(LOG_PRIORITY_DEBUG);
}

/// A document that is let go of late.
struct SLate {
    CXML xml;
    ~SLate()
    {
        if (xml.FlagCreate()) {
            xml.Destroy();
        }
    }
    bool Open() { return xml.FlagCreate() || xml.Create(k_text, sizeof k_text - 1, false); }
    static constexpr char k_text[] = "<r a='1' b='longer than a short text is'><e>text</e><e>another</e><!--c--></r>";
};
SLate g_late;

TEST_F(XMLTest, NodesOutliveNothing)
{
    // Freed by static objects, by other threads, by what a thread leaves to the very end.
    ASSERT_TRUE(g_late.Open());
    SLate mine;
    ASSERT_TRUE(mine.Open());
    static pthread_key_t s_key;
    ASSERT_EQ(pthread_key_create(&s_key, [](void* late) { delete static_cast<SLate*>(late); }), 0);
    std::thread([&mine, this] {
        static thread_local SLate s_late;
        std::unique_ptr<SLate> last = std::make_unique<SLate>();
        EXPECT_EQ(Each({s_late.Open(), last->Open(), Open("<r/>")}), "111");
        mine.xml.Destroy();
        EXPECT_EQ(pthread_setspecific(s_key, last.release()), 0);
    }).join();
    EXPECT_EQ(pthread_key_delete(s_key), 0);
    // More than a thread keeps.
    std::string many = "<r>";
    for (int i = 0; i < 3000; ++i) {
        many += "<e a='1'/>";
    }
    ASSERT_EQ(Each({Open(many + "</r>"), Open(many + "</r>")}), "11");

    // Nodes of one allocator are not freed by another, which gets back all that it gave.
    {
        const SAllocators allocators;
        const int blocks = g_blocks;
        for (int i = 0; i < 3; ++i) {
            SLate other;
            EXPECT_TRUE(other.Open());
            EXPECT_GT(g_blocks, blocks + 10);
        }
        EXPECT_EQ(g_blocks, blocks);
    }
    // Who wants to be told of freed nodes is told of all of them.
    static int s_nodes;
    const xmlDeregisterNodeFunc before = xmlDeregisterNodeDefault([](xmlNodePtr) { ++s_nodes; });
    {
        SLate told;
        EXPECT_TRUE(told.Open());
    }
    xmlDeregisterNodeDefault(before);
    EXPECT_EQ(s_nodes, 11);
}

/// First test of a process of its own, so that the library is what starts libxml2.
TEST(XMLStartTest, FirstParsesOfManyThreads)
{
    SetLogPriority(LOG_PRIORITY_SILENT);
    std::atomic<int> waiting{8};
    std::atomic<int> opened{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&waiting, &opened] {
            SLate late;
            for (--waiting; waiting > 0;) {
            }
            opened += late.Open() && !CXML().Create("<r>", 3, false);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(opened, 8);
}

}  // namespace

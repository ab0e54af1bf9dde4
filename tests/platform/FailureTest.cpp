#include "platform/Failure.h"

#include <functional>

#include "common/RSAT.h"
#include "esg/ESGServiceFragment.h"
#include "lls/ParseSystemTime.h"
#include "mmt/msg/MMTMsgAtsc3.h"
#include "mmt/msg/MMTMsgPa.h"
#include "mmt/table/MMTTblPa.h"
#include "route/SLS/EFDT.h"
#include "route/SLSManager.h"
#include "support/MmtBuilder.h"
#include "support/ParserTest.h"
#include "support/Seed.h"
#include "support/Show.h"

namespace {

using FailureTest = CRecorder;

/// "cause: detail (line) | step at source", the parts that there are; empty: nothing failed.
std::string Told(const char* document = "")
{
    const SFailure* failure = LastFailure(document);
    if (!failure) {
        return "";
    }
    constexpr const char* k_causes[] = {"none", "misuse", "memory", "size", "xml", "limit", "kind"};
    std::string text = k_causes[failure->cause];
    text += *failure->detail ? ": " + std::string(failure->detail) : "";
    text += failure->documentLine > 0 ? " (" + std::to_string(failure->documentLine) + ")" : "";
    EXPECT_EQ(*failure->step != 0, failure->line > 0);
    return text + (*failure->step ? " | " + std::string(failure->step) + " at " + failure->source : "");
}

TEST_F(FailureTest, WhatFailedFirstAndWhy)
{
    CRSAT rsat;
    ASSERT_TRUE(rsat.Create());
    SCreated<CESGServiceFragment> service;
    SCreated<CParseSystemTime, 1> time;
    CMMTMsgPa pa;
    CMMTTblPa paTable;
    const auto xml = [&rsat](const std::string& text) {
        rsat.Parse(text.data(), static_cast<unsigned int>(text.size()), true);
    };
    unsigned char version = 0;
    const auto table = [&](const std::string& text) {
        SFed(time, std::string("\3\1\0", 3) + static_cast<char>(++version) + text);
    };
    std::string rich = "<RSAT";
    for (int i = 0; i < 1025; ++i) {
        rich += " a" + std::to_string(i) + "=''";
    }
    const std::string create = " | m->pdoc = xmlParseMemory((const char*)buf, size) at src/common/XML";
    const struct {
        const char* name;
        std::function<void()> call;
        std::string told;
    } k_cases[] = {
        {"taken", [&] { xml("<RSAT timestamp='1'/>"); }, ""},
        {"not well-formed", [&] { xml("<RSAT>\n<a>\n</b></RSAT>"); },
         "xml: Opening and ending tag mismatch: a line 2 and b (3)" + create},
        {"a prefix that is not bound is not why", [&] { xml("<p:RSAT>\n<q:>\n</c></p:RSAT>"); },
         "xml: Opening and ending tag mismatch: q: line 2 and c (3)" + create},
        {"a fault of a document that is taken, but for its root", [&] { xml("<p:RSAT/>"); },
         "kind | m_ProcessParse(root) at src/common/ParseXML"},
        {"taken again", [&] { xml("<RSAT timestamp='1'/>"); }, ""},
        {"beyond a limit", [&] { xml(rich + "/>"); }, "limit: more than 1024 attributes" + create},
        {"refused by the scan", [&] { xml("<!DOCTYPE a [<!x>]><a/>"); }, "xml: not well-formed" + create},
        {"gzip too long", [&] { xml(std::string(524289, ' ')); },
         "size: XML Create Fail. File size is too big. length[524289] | t_xml.Create(buffer, length, compressed) at "
         "src/common/ParseXML"},
        {"misuse", [&] { rsat.Parse(static_cast<const char*>(nullptr), 0U); }, "misuse: buffer"},
        {"table of another kind", [&] { table("<RSAT/>"); },
         "kind | m_ProcessParseSystemTime(root) at src/lls/ParseSystemTime"},
        {"table", [&] { table("<SystemTime currentUtcOffset='37'/>"); }, ""},
        {"fragment", [&] { service.Parse("<Content id='1'/>", 17); },
         "kind | m_ProcessESGServiceFragment(root) at src/esg/ESGServiceFragment"},
        {"message too short", [&] { SFed(pa, CMmtBuilder().Put(16, 0).Put(8, 1).Put(32, 9).Put(8, 0).Bytes()); },
         "size: [CMMTMsgPa::Parse] Item size ERROR len[8], length[9]"},
        {"table of a message",
         [&] { SFed(pa, CMmtBuilder().Put(16, 0).Put(8, 1).Put(32, 9).Put(8, 1).Put(32, 0).Put(32, 9).Bytes()); },
         "size: [CMMTTblPa::Parse] ERROR | p_tbl->Parse(item) at src/mmt/msg/MMTMsgPa"},
        {"table by itself", [&] { SFed(paTable, CMmtBuilder().Put(8, 0).Put(8, 1).Put(16, 9).Bytes()); },
         "size: [CMMTTblPa::Parse] ERROR"},
        {"whole table", [&] { SFed(paTable, CMmtBuilder().Put(8, 0).Put(8, 1).Put(16, 2).Put(16, 0).Bytes()); }, ""},
    };
    for (const auto priority : {LOG_PRIORITY_DEBUG, LOG_PRIORITY_INFO}) {
        SetLogPriority(priority);
        for (const auto& trial : k_cases) {
            trial.call();
            EXPECT_EQ(Told(), trial.told) << trial.name;
            TakeAssertions();
        }
    }
    rsat.Destroy();
}

TEST_F(FailureTest, EachDocumentOfAPackage)
{
    CSLSManager manager;
    const CSLSManager::SCallback callback{};
    const CSLSManager::SSessionInfo session{};
    ASSERT_TRUE(manager.Create(&callback));
    const auto parse = [&](const std::string& text) {
        manager.Parse(reinterpret_cast<const unsigned char*>(text.data()), static_cast<unsigned int>(text.size()),
                      &session, false);
    };
    parse("<S-TSID><RS></S-TSID> <RSAT></RSAT> <MPD></MPD> ");
    EXPECT_EQ(Told("STSID").substr(0, 35), "xml: Opening and ending tag mismatc");
    EXPECT_EQ(Told("RSAT").substr(0, 7), "kind | ");
    for (const char* document : {"", "USBD", "EFDT", "MPD", "another"}) {
        EXPECT_EQ(Told(document), "") << document;
    }
    EXPECT_EQ(LastFailure(nullptr), nullptr);
    parse("<S-TSID></S-TSID> ");
    EXPECT_EQ(Told("STSID") + Told("RSAT"), "");
    manager.Destroy();
}

TEST_F(FailureTest, TagsWithoutAClass)
{
    CMmtBuilder b;
    b.Put(16, 0x8100).Put(8, 3).Open(32).Put(16, 1).Put(16, CMMTMsgAtsc3::CONTENT_TYPE_ASP).Put(24, 0x10100);
    b.Open(32).Put(16, 0x8001).Put(16, 1).Put(8, 0).Close().Close();
    CMMTMsgAtsc3 message;
    EXPECT_TRUE(SFed(message, b.Bytes()).result);
    const SFailure* failure = LastFailure();
    ASSERT_NE(failure, nullptr);
    ASSERT_EQ(failure->tags, 1);
    EXPECT_EQ(failure->unknownTags[0], 0x8001U);
    EXPECT_EQ(Told(), "none");
    // The tables of a message share its record, the whole one behind a faulty one included.
    CMmtBuilder tables;
    tables.Put(16, 0).Put(8, 1).Open(32).Put(8, 2).Put(32, 0).Put(32, 0);
    tables.Put(8, 1).Put(8, 1).Open(16).Put(8, 0).Open(16).Put(16, 0x8002).Put(16, 0).Close().Put(8, 0).Close();
    tables.Put(8, 1).Put(8, 1).Open(16).Put(8, 0).Put(16, 0).Put(8, 0).Close().Close();
    CMMTMsgPa pa;
    EXPECT_TRUE(SFed(pa, tables.Bytes()).result);
    ASSERT_NE(LastFailure(), nullptr);
    EXPECT_EQ(LastFailure()->unknownTags[0], 0x8002U);
    CEFDT efdt;
    ASSERT_EQ(Each({efdt.Create(), efdt.Parse("<EFDT/>", 7)}), "11");
    EXPECT_EQ(LastFailure(), nullptr);
    efdt.Destroy();
}

}  // namespace

#include "common/XmlElement.h"

#include <fstream>

#include "esg/ESGElement/Icon.h"
#include "esg/ESGServiceFragment.h"
#include "esg/SGResponse.h"
#include "mmt/desc/MMTName.h"
#include "route/SLS/RS.h"
#include "route/SLS/UnicastAppSvc.h"
#include "support/ParserTest.h"
#include "support/Places.h"
#include "support/Show.h"

namespace {

/// A line of a source, from 1; empty: there is none.
std::string Line(const std::string& source, unsigned int number)
{
    std::ifstream file(TreeFile(source + std::string(".cpp")));
    std::string line;
    for (; number > 0 && std::getline(file, line); --number) {
    }
    return number == 0 ? line : std::string();
}

using XmlElementTest = CRecorder;

TEST_F(XmlElementTest, WhatABaseAssertsNamesTheSourceOfTheClassAndALineOfIt)
{
    const struct {
        const char* source;
        const char* asserted;
        void (*misuse)();
    } k_cases[] = {
        {"src/route/SLS/RS", "m; m != nullptr; !m",
         [] {
             CRS rs;
             rs.Destroy();
             EXPECT_FALSE(ParseXml(rs, "<RS/>"));
             EXPECT_EQ(Each({rs.Create(), rs.Create(), rs.State() != nullptr}), "101");
             rs.Destroy();
             EXPECT_EQ(rs.State(), nullptr);
         }},
        {"src/route/SLS/AppSvc", "m", [] { CUnicastAppSvc().Destroy(); }},
        {"src/mmt/desc/MMTName", "m", [] { CMMTName().Destroy(); }},
        {"src/esg/SGResponse", "m", [] { CSGResponse().Destroy(); }},
        {"src/esg/ESGElement/Icon", "doc", [] { CIcon().Create(nullptr, nullptr); }},
        {"src/esg/ESGServiceFragment", "m", [] { CESGServiceFragment().Destroy(); }},
    };
    for (const auto& one : k_cases) {
        one.misuse();
        for (const SAssertion& assertion : s_assertions) {
            EXPECT_EQ(assertion.file, one.source);
            EXPECT_NE(Line(assertion.file, assertion.line).find("Kind"), std::string::npos) << assertion.line;
        }
        EXPECT_EQ(TakeAssertions(), one.asserted);
    }
}

}  // namespace

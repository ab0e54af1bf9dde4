// The other LLS tables, at the sizes that broadcasts have, and the signed multi-table.
#include <benchmark/benchmark.h>

#include <cstdio>

#include "Bench.h"
#include "lls/LLSSMTParser.h"
#include "lls/ParseAEAT.h"
#include "lls/ParseCDT.h"
#include "lls/ParseRRT.h"

namespace {

std::string Table(const std::string& xml)
{
    return std::string("\1\1\0\1", 4) + Gzip(xml);
}

std::string Text(const char* format, int a, int b = 0)
{
    char text[512];
    std::snprintf(text, sizeof text, format, a, b);
    return text;
}

/// A region of the size of the United States': 8 dimensions, 6 to 7 values each, in two languages.
std::string MakeRrt()
{
    std::string xml =
        "<RatingRegionTables><RatingRegionTable regionIdentifier=\"1\"><RegionIdText lang=\"en\">US (50 states + "
        "possessions)</RegionIdText>";
    for (int d = 0; d < 8; ++d) {
        xml += Text(
            "<Dimension dimensionLevels=\"7\" dimensionGraduated=\"true\"><DimensionTitle lang=\"en\">Dimension %d"
            "</DimensionTitle><DimensionTitle lang=\"es\">Medida %d</DimensionTitle>",
            d, d);
        for (int k = 0; k < 7; ++k) {
            xml += Text("<Rating ratingValue=\"%d\"><RatingValueAbbrev lang=\"en\">TV-%d</RatingValueAbbrev>", k, k) +
                   Text(
                       "<RatingValueString lang=\"en\">Suitable for viewers of %d years</RatingValueString>"
                       "<RatingValueString lang=\"es\">Para mayores de %d</RatingValueString></Rating>",
                       k, k);
        }
        xml += "</Dimension>";
    }
    return Table(xml + "</RatingRegionTable></RatingRegionTables>");
}

std::string MakeAeat()
{
    std::string xml = "<AEAT xmlns=\"tag:atsc.org,2016:XMLSchemas/ATSC3/Delivery/AEAT/1.0/\">";
    for (int i = 0; i < 20; ++i) {
        xml +=
            Text(
                "<AEA aeaId=\"issuer.%d\" issuer=\"NWS\" audience=\"public\" aeaType=\"alert\" priority=\"%d\" "
                "wakeup=\"true\">",
                i, i % 5) +
            "<Header effective=\"2027-01-15T12:30:45Z\" expires=\"2027-01-15T13:30:45Z\"><EventCode "
            "type=\"SAME\">EVI</EventCode>"
            "<EventDesc lang=\"en\">Evacuation Immediate</EventDesc><Location type=\"FIPS\">006109</Location></Header>"
            "<AEAText lang=\"en\">Leave the area at once by the marked roads and follow the instructions of the "
            "authorities."
            "</AEAText><AEAText lang=\"es\">Abandone la zona de inmediato por las carreteras indicadas.</AEAText>" +
            Text(
                "<Media lang=\"en\" mediaDesc=\"map\" mediaType=\"EventSymbol\" url=\"http://alert.example/%d.png\" "
                "contentType=\"image/png\" contentLength=\"%d\"/></AEA>",
                i, 10000 + i);
    }
    return Table(xml + "</AEAT>");
}

std::string MakeCdt()
{
    // Base64 that does not compress better than a certificate does.
    std::string certificate;
    unsigned int state = 1;
    while (certificate.size() < 1800) {
        state = state * 1103515245 + 12345;
        certificate += "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/"[state >> 26];
    }
    return Table("<CertificationData><ToBeSignedData OCSPRefresh=\"PT168H\"><Certificates>" + certificate +
                 "</Certificates><Certificates>" + certificate + "</Certificates><CurrentCert>" +
                 certificate.substr(0, 28) + "</CurrentCert><CertReplacement NextCert=\"" + certificate.substr(0, 28) +
                 "\" NextCertFrom=\"2027-05-01T00:00:00Z\" CurrentCertUntil=\"2027-05-15T12:30:00Z\"/></ToBeSignedData>"
                 "<OCSPResponse>" +
                 certificate + "</OCSPResponse><CMSSignedData>" + certificate + "</CMSSignedData></CertificationData>");
}

/// Two payloads of 0x200 bytes and a signature of 0x800.
std::string MakeSmt()
{
    std::string table("\2", 1);
    table += std::string("\1\1\2\0", 4) + std::string(0x200, 'p');
    table += std::string("\3\1\2\0", 4) + std::string(0x200, 'q');
    return table + std::string("\10\0", 2) + std::string(0x800, 's');
}

/// One pass over the same bytes that only adds up what is there.
void SmtFloor(const std::string& table)
{
    unsigned int sum = 0;
    for (const char byte : table) {
        sum += static_cast<unsigned char>(byte);
    }
    benchmark::DoNotOptimize(sum);
}

const bool g_registered = [] {
    const std::string rrt = MakeRrt();
    Register("rrt/floor/gzip", Floor, rrt);
    Register(
        "rrt/parse/gzip",
        [](const std::string& table) {
            CParseRRT parser;
            parser.Create();
            Feed(parser, table);
        },
        rrt);
    const std::string aeat = MakeAeat();
    Register("aeat/floor/gzip", Floor, aeat);
    Register(
        "aeat/parse/gzip",
        [](const std::string& table) {
            CParseAEAT parser;
            parser.Create(nullptr);
            Feed(parser, table);
        },
        aeat);
    const std::string cdt = MakeCdt();
    Register("cdt/floor/gzip", Floor, cdt);
    Register(
        "cdt/parse/gzip",
        [](const std::string& table) {
            CParseCDT parser;
            parser.Create();
            Feed(parser, table);
        },
        cdt);
    const std::string smt = MakeSmt();
    Register("smt/floor/" + std::to_string(smt.size()) + "bytes", SmtFloor, smt);
    Register(
        "smt/parse/" + std::to_string(smt.size()) + "bytes",
        [](const std::string& table) {
            CLLSSMTParser parser;
            parser.Create();
            Feed(parser, table);
        },
        smt);
    return true;
}();

}  // namespace

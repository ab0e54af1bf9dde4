// The service guide: fragments on a parser made anew, and delivery units of fragments of the three kinds,
// against what zlib and libxml2 need for the same bytes. Genre names are known, as on a receiver.
#include <benchmark/benchmark.h>
#include <zlib.h>

#include <vector>

#include "Bench.h"
#include "esg/ESGContentFragment.h"
#include "esg/ESGScheduleFragment.h"
#include "esg/ESGServiceFragment.h"
#include "esg/GenreNameParse.h"
#include "esg/SGDUParse.h"

namespace {

std::string N(int number)
{
    return std::to_string(number);
}

std::string MakeService(int i)
{
    return "<Service xmlns=\"tag:atsc.org,2016:XMLSchemas/ATSC3/ESG/1.0/\" id=\"bcast://example.com/Service-" + N(i) +
           "\" version=\"1\" validFrom=\"3981234567\" validTo=\"3981320967\" "
           "globalServiceID=\"urn:atsc:serviceid:example_" +
           N(i) + "\" weight=\"1\">\n  <ServiceType>1</ServiceType>\n  <Name xml:lang=\"en\">Channel " + N(i) +
           "</Name>\n  <Description xml:lang=\"en\">News, sports and weather of the region</Description>\n  "
           "<AudioLanguage languageSDPTag=\"en\">English</AudioLanguage>\n  <AudioLanguage "
           "languageSDPTag=\"es\">Spanish</AudioLanguage>\n  <TextLanguage languageSDPTag=\"en\">English"
           "</TextLanguage>\n  <Genre type=\"main\">urn:tva:metadata:cs:ContentCS:2011:3</Genre>\n  <PrivateExt>\n    "
           "<ATSC3ServiceExtension>\n      <MajorChannelNum>5</MajorChannelNum>\n      <MinorChannelNum>" +
           N(i % 100) +
           "</MinorChannelNum>\n      <Icon MIMEType=\"image/png\" width=\"64\" height=\"48\" dataSize=\"3000\">"
           "http://example.com/icon.png</Icon>\n    </ATSC3ServiceExtension>\n  </PrivateExt>\n</Service>\n";
}

std::string MakeContent(int i)
{
    return "<Content xmlns=\"tag:atsc.org,2016:XMLSchemas/ATSC3/ESG/1.0/\" id=\"bcast://example.com/Content-" + N(i) +
           "\" version=\"1\" validFrom=\"3981234567\" validTo=\"3981320967\" globalContentID=\"urn:content:" + N(i) +
           "\">\n  <ServiceReference idRef=\"bcast://example.com/Service-1\" weight=\"1\"/>\n  <Name xml:lang=\"en\">"
           "Evening News " +
           N(i) +
           "</Name>\n  <Description xml:lang=\"en\">What happened in the country and the world today, and the weather "
           "of tomorrow: reports, interviews and background, with sign language on the web.</Description>\n  "
           "<AudioLanguage languageSDPTag=\"en\">English</AudioLanguage>\n  <Length>1800</Length>\n  "
           "<ContentAdvisoryRatings>\n    <RegionIdentifier>1</RegionIdentifier>\n    <RatedDimensions>1"
           "</RatedDimensions>\n    <RatingDescription>TV-PG</RatingDescription>\n    <RatingDimVal>\n      "
           "<RatingDimension>0</RatingDimension>\n      <RatingValueString lang=\"en\">TV-PG</RatingValueString>\n    "
           "</RatingDimVal>\n  </ContentAdvisoryRatings>\n  <Genre type=\"main\">urn:tva:metadata:cs:ContentCS:2011:3"
           "</Genre>\n  <PrivateExt>\n    <Components>\n      <VideoComponent>Primary</VideoComponent>\n      "
           "<AudioComponent language=\"en\">Complete main</AudioComponent>\n    </Components>\n    <ContentIcon "
           "MIMEType=\"image/png\" dataSize=\"3000\">http://example.com/news.png</ContentIcon>\n  </PrivateExt>\n"
           "</Content>\n";
}

std::string MakeSchedule(int i)
{
    std::string xml =
        "<Schedule xmlns=\"tag:atsc.org,2016:XMLSchemas/ATSC3/ESG/1.0/\" "
        "id=\"bcast://example.com/Schedule-" +
        N(i) +
        "\" version=\"1\" validFrom=\"3981234567\" validTo=\"3981320967\">\n  <ServiceReference "
        "idRef=\"bcast://example.com/Service-" +
        N(i) + "\"/>\n";
    for (unsigned int j = 0; j < 8; ++j) {
        xml += "  <ContentReference idRef=\"bcast://example.com/Content-" + std::to_string(j) +
               "\">\n    <PresentationWindow startTime=\"" + std::to_string(3981234567 + 1800 * j) + "\" endTime=\"" +
               std::to_string(3981236367 + 1800 * j) +
               "\">\n      <Duration>1800</Duration>\n    </PresentationWindow>\n  </ContentReference>\n";
    }
    return xml + "</Schedule>\n";
}

unsigned int Number(const char* bytes, int count)
{
    unsigned int value = 0;
    while (count-- > 0) {
        value = value << 8 | static_cast<unsigned char>(*bytes++);
    }
    return value;
}

std::string Bytes(unsigned int value, int count)
{
    std::string text;
    while (count-- > 0) {
        text += static_cast<char>(value >> 8 * count);
    }
    return text;
}

/// A delivery unit in which contents are in the majority, as in a guide.
std::string MakeUnit(int fragments)
{
    std::string head = Bytes(0, 6) + Bytes(static_cast<unsigned int>(fragments), 3);
    std::string body;
    for (int i = 0; i < fragments; ++i) {
        head += Bytes(static_cast<unsigned int>(i), 4) + Bytes(1, 4) + Bytes(static_cast<unsigned int>(body.size()), 4);
        const int kind = i % 10 == 0 ? 1 : i % 10 == 1 ? 3 : 2;
        body += Bytes(static_cast<unsigned int>(kind), 2);
        body += kind == 1 ? MakeService(i) : kind == 2 ? MakeContent(i) : MakeSchedule(i);
    }
    return head + body;
}

/// What zlib and libxml2 need for the bytes of a unit, reading nothing.
void FloorUnit(const std::string& unit)
{
    static std::vector<char> room(8 << 20);
    const char* data = unit.data();
    std::size_t size = unit.size();
    if (*data == '\x1F') {
        z_stream stream{};
        stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data));
        stream.avail_in = static_cast<uInt>(size);
        stream.next_out = reinterpret_cast<Bytef*>(room.data());
        stream.avail_out = static_cast<uInt>(room.size());
        inflateInit2(&stream, 47);
        inflate(&stream, Z_FINISH);
        data = room.data();
        size = stream.total_out;
        inflateEnd(&stream);
    }
    const std::size_t count = Number(data + 6, 3);
    const char* body = data + 9 + 12 * count;
    const std::size_t length = size - 9 - 12 * count;
    for (std::size_t i = 0; i < count; ++i) {
        const char* entry = data + 9 + 12 * i;
        const std::size_t begin = Number(entry + 8, 4) + 2;
        const std::size_t end = i + 1 < count ? Number(entry + 20, 4) : length;
        FloorDocument(std::string(body + begin, end - begin));
    }
}

void ParseUnit(const std::string& unit)
{
    CSGDUParse sgdu;
    sgdu.Create();
    sgdu.SetCompress(unit[0] == '\x1F');
    IParse::SItem item = Item(unit);
    sgdu.Parse(&item);
    sgdu.Destroy();
}

template <class TFragment>
void ParseFragment(const std::string& text)
{
    TFragment fragment;
    fragment.Create();
    fragment.Parse(text.data(), static_cast<unsigned int>(text.size()));
    fragment.Destroy();
}

template <class TFragment>
void RegisterFragment(const std::string& subject, const std::string& text)
{
    Register(subject + "/floor/1", FloorDocument, text);
    Register(subject + "/parse/1", ParseFragment<TFragment>, text);
}

const bool g_registered = [] {
    CGenreNameParse names;
    names.Create();
    const std::string scheme =
        "<ClassificationScheme><Term termID=\"3\"><Name>News</Name></Term></ClassificationScheme>";
    names.Parse(scheme.data(), static_cast<unsigned int>(scheme.size()));
    names.Destroy();
    RegisterFragment<CESGServiceFragment>("service", MakeService(1));
    RegisterFragment<CESGContentFragment>("content", MakeContent(1));
    RegisterFragment<CESGScheduleFragment>("schedule", MakeSchedule(1));
    for (const int fragments : {10, 100, 1000}) {
        for (const char* variant : {"plain", "gzip"}) {
            const std::string unit = MakeUnit(fragments);
            const std::string sent = *variant == 'g' ? Gzip(unit) : unit;
            Register("sgdu/floor/" + std::string(variant) + "/" + N(fragments), FloorUnit, sent);
            Register("sgdu/parse/" + std::string(variant) + "/" + N(fragments), ParseUnit, sent);
        }
    }
    return true;
}();

}  // namespace

// A day of a made broadcast, through a pipe into the inspector as its users run it: service lists, times, alerts,
// notices, signalling of ROUTE and MMT and a guide come over and over, each changing in its own time, so that what the
// inspector holds must be let go of again. Tells the memory of the inspector at 1 %, a half and all of the day.
// Usage: vyr-bench-day [HOURS], 24 unless said.
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "inspect/GuideObjects.h"
#include "inspect/Packets.h"
#include "support/Gzip.h"
#include "support/MmtWriter.h"
#include "support/Places.h"

namespace {

using namespace packets;

std::string Text(unsigned number)
{
    return std::to_string(number);
}

std::string Table(unsigned id, unsigned version, const std::string& xml)
{
    return Number(id, 1) + Number(0, 2) + Number(version % 256, 1) + Gzip(xml);
}

/// Six services, of which the last goes and comes.
std::string ServiceList(unsigned version)
{
    std::string services;
    for (unsigned id = 1; id <= 5 + version % 2; ++id) {
        services += "<Service serviceId='" + Text(id) + "' globalServiceID='urn:s" + Text(id) + "' sltSvcSeqNum='" +
                    Text(version % 256) + "' majorChannelNo='7' minorChannelNo='" + Text(id) + "' serviceCategory='" +
                    (id == 5 ? "4" : "1") + "' shortServiceName='S" + Text(version / id) +
                    "'><BroadcastSvcSignaling slsProtocol='" + (id == 4 ? "2" : "1") +
                    "' slsDestinationIpAddress='239.255.7.1' slsDestinationUdpPort='" + Text(6000 + id) +
                    "' slsSourceIpAddress='192.0.2.10'/></Service>";
    }
    return Table(1, version, "<SLT bsid='5'>" + services + "</SLT>");
}

/// The signalling of a ROUTE service, of which the MPD changes most.
std::string Package(unsigned id, unsigned hour, unsigned version)
{
    std::string files, segments;
    for (unsigned i = 0; i < 8; ++i) {
        files += "<File TOI='" + Text(hour * 8 + i) + "' Content-Location='f" + Text(hour) + "-" + Text(i) + "'/>";
        segments += "<S t='" + Text(version * 8 + i) + "' d='" + Text(90 + (version + i) % 7) + "'/>";
    }
    return "Content-type: multipart/related; "
           "boundary=x\r\n\r\n--x\r\n\r\n<BundleDescriptionROUTE><UserServiceDescription "
           "serviceId='" +
           Text(id) + "' globalServiceID='urn:s" + Text(id) +
           "'/></BundleDescriptionROUTE>\r\n--x\r\n\r\n<S-TSID><RS><LS tsi='20'><SrcFlow rt='false'><EFDT tsi='20' "
           "version='" +
           Text(hour) + "'><FDT-Instance Expires='4000000000'>" + files +
           "</FDT-Instance></EFDT></SrcFlow></LS></RS></S-TSID>\r\n--x\r\n\r\n<MPD "
           "xmlns='urn:mpeg:dash:schema:mpd:2011' type='dynamic' publishTime='2027-01-15T08:00:00Z' id='" +
           Text(version) +
           "'><Period id='p'><AdaptationSet mimeType='video/mp4'><SegmentTemplate media='$Time$'><SegmentTimeline>" +
           segments +
           "</SegmentTimeline></SegmentTemplate><Representation id='v' bandwidth='9'/></AdaptationSet></Period></MPD>"
           "\r\n--x--\r\n";
}

/// A PA message with a package of two assets.
std::string Message(unsigned version)
{
    CMmtBuilder b;
    b.Put(16, 0).Put(8, version % 256).Open(32).Put(8, 0);
    b.Put(8, 0x20).Put(8, version % 256).Open(16).Put(8, 0xFC).Open(8).Put("p" + Text(version % 5)).Close();
    b.Put(16, 0).Put(8, 2);
    for (unsigned i = 0; i < 2; ++i) {
        b.Put(8, 0).Put("urn ").Open(32).Put("a" + Text(i)).Close().Put(i == 0 ? "hev1" : "mp4a");
        b.Put(8, 0xFC).Put(8, 1).Put(8, 0).Put(16, (version + i) % 8192).Put(16, 0);
    }
    return b.Close().Close().Bytes();
}

/// Eight programmes of three services; the first goes when the next one comes.
std::string Guide(unsigned first)
{
    std::vector<std::pair<int, std::string>> fragments;
    for (unsigned id = 1; id <= 3; ++id) {
        fragments.emplace_back(1, "<Service id='s" + Text(id) + "' version='1' globalServiceID='urn:s" + Text(id) +
                                      "'><Name>Service " + Text(id) + "</Name></Service>");
        std::string windows;
        for (unsigned i = first; i < first + 8; ++i) {
            const std::string content = "c" + Text(id) + '-' + Text(i % 48);
            fragments.emplace_back(2, guide::Fragment("Content", content, static_cast<int>(1 + i / 48),
                                                      guide::Text("Name", "en", "Programme " + Text(i))));
            windows += guide::Reference("Content", content,
                                        guide::Window(guide::k_evening + i * 1800, guide::k_evening + (i + 1) * 1800));
        }
        fragments.emplace_back(3, guide::Fragment("Schedule", "t" + Text(id), static_cast<int>(first + 1),
                                                  guide::Reference("Service", "s" + Text(id)) + windows));
    }
    return Gzip(guide::Unit(fragments));
}

/// What is on the air in a second of the day, each thing as often as it comes and changing in its own time.
std::vector<std::string> Second(unsigned now)
{
    SIpv4 session;
    session.destination = k_session;
    const auto lls = [](const std::string& table) { return Ethernet(Ipv4(Udp(table))); };
    const auto route = [&](unsigned id, unsigned tsi, unsigned toi, const std::string& object) {
        return Ethernet(
            Ipv4(Udp(Lct({toi, 0, static_cast<int>(object.size()), true, tsi}, object), 6000 + id), session));
    };
    std::vector<std::string> packets;
    if (now % 5 == 0) {
        packets.push_back(lls(ServiceList(now / 600)));
        packets.push_back(lls(Table(3, now / 60,
                                    "<SystemTime currentUtcOffset='37' utcLocalOffset='-PT5H' dsStatus='" +
                                        std::string(now / 60 % 2 != 0 ? "true" : "false") + "' dsHour='" +
                                        Text(now / 3600 % 24) + "'/>")));
    }
    if (now % 10 == 1) {
        const unsigned hour = now / 900;
        packets.push_back(lls(Table(4, hour,
                                    "<AEAT><AEA aeaId='A" + Text(hour) +
                                        "' issuer='I' audience='public' aeaType='alert' priority='3'><Header "
                                        "effective='2027-01-15T08:00:00Z' expires='2027-01-15T09:00:00Z'><EventCode "
                                        "type='SAME'>EVI</EventCode></Header><AEAText lang='en'>Text " +
                                        Text(hour) + "</AEAText></AEA></AEAT>")));
        packets.push_back(
            lls(Table(5, hour,
                      "<OnscreenMessageNotification><KeepScreenClear bsid='5' serviceId='" + Text(1 + hour % 6) +
                          "' version='" + Text(hour % 64) + "'/></OnscreenMessageNotification>")));
    }
    for (const unsigned id : {1u, 2u, 3u}) {
        const unsigned version = now / (5 + id);
        packets.push_back(route(id, 0, 1 + version, Package(id, now / 3600, version)));
    }
    packets.push_back(Ethernet(Ipv4(Udp(Mmtp({now}, Message(now / 20)), 6004), session)));
    if (now % 10 == 3) {
        const std::string file = "<File TOI='" + Text(1 + now / 1800) + "' Content-Location='g'/>";
        packets.push_back(route(5, 0, 1 + now / 1800,
                                "<S-TSID><RS><LS tsi='9'><SrcFlow rt='false'><EFDT><FDT-Instance "
                                "Content-Type='application/vnd.oma.bcast.sgdu'>" +
                                    file + "</FDT-Instance></EFDT></SrcFlow></LS></RS></S-TSID>\n"));
        packets.push_back(route(5, 9, 1 + now / 1800, Guide(now / 1800)));
    }
    return packets;
}

/// kB of memory that a process has.
long Resident(pid_t process)
{
    std::ifstream file("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(file, line);) {
        if (line.rfind("VmRSS:", 0) == 0) {
            return std::strtol(line.c_str() + 6, nullptr, 10);
        }
    }
    return 0;
}

/// Runs the inspector with these arguments behind a pipe that `feed` writes to, with a look at its memory.
bool Run(const std::vector<const char*>& arguments, const std::function<bool(std::FILE*, pid_t)>& feed)
{
    int ends[2];
    if (pipe(ends) != 0) {
        return false;
    }
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[0], STDIN_FILENO);
        close(ends[0]);
        close(ends[1]);
        std::vector<char*> argv = {const_cast<char*>("vyr-atsc30-inspect")};
        for (const char* argument : arguments) {
            argv.push_back(const_cast<char*>(argument));
        }
        argv.push_back(nullptr);
        if (std::freopen("/dev/null", "w", stdout)) {
            execv(k_inspect, argv.data());
        }
        _exit(2);
    }
    close(ends[0]);
    std::FILE* const out = fdopen(ends[1], "w");
    const bool fed = child > 0 && feed(out, child);
    std::fclose(out);
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) < 2 && fed;
}

}  // namespace

int main(int argc, char** argv)
{
    const unsigned seconds = static_cast<unsigned>((argc > 1 ? std::strtod(argv[1], nullptr) : 24) * 3600);
    std::signal(SIGPIPE, SIG_IGN);
    std::printf("%-8s %9s %9s %9s %9s %9s\n", "report", "packets", "MB", "kB at 1%", "kB at 50%", "kB at all");
    std::fflush(stdout);
    bool good = seconds >= 100;
    const std::vector<std::vector<const char*>> forms = {{"-"}, {"--json", "-"}, {"-q", "--html", "/dev/null", "-"}};
    for (const auto& form : forms) {
        good = good && Run(form, [&](std::FILE* out, pid_t inspector) {
                   std::size_t packets = 0, bytes = 0;
                   long early = 0, half = 0;
                   bool fine = std::fwrite(CCapture(1).Bytes().data(), 24, 1, out) == 1;
                   for (unsigned now = 0; now < seconds && fine; ++now) {
                       for (const std::string& packet : Second(now)) {
                           const std::string record = Number(1800000000 + now, 4) + Number(0, 4) +
                                                      Number(packet.size(), 4) + Number(packet.size(), 4) + packet;
                           fine = fine && std::fwrite(record.data(), record.size(), 1, out) == 1;
                           ++packets;
                           bytes += record.size();
                       }
                       early = now == seconds / 100 ? Resident(inspector) : early;
                       half = now == seconds / 2 ? Resident(inspector) : half;
                   }
                   std::fflush(out);
                   std::printf("%-8s %9zu %9zu %9ld %9ld %9ld\n",
                               form.size() == 1   ? "text"
                               : form.size() == 2 ? "json"
                                                  : "page",
                               packets, bytes / 1000000, early, half, Resident(inspector));
                   std::fflush(stdout);
                   return fine;
               });
    }
    return good ? 0 : 1;
}
